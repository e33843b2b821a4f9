#pragma once
// Reference-counted immutable byte string: copies share the bytes.

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Zet/Ptr.h"

namespace Zet {

class String {
 public:
  using IteratorConst = std::string_view::const_iterator;

  String() = default;
  String(char const* text) : String(std::string_view(text ? text : "")) {}
  String(std::string_view bytes);
  String(std::string const& bytes) : String(std::string_view(bytes)) {}
  String(char const* data, std::size_t size) : String(std::string_view(data, size)) {}

  // Never null: the empty string gives "".
  char const* charPtr() const;
  std::string_view view() const { return rep_ ? std::string_view(rep_->data(), rep_->size) : std::string_view(); }
  std::string stdString() const { return std::string(view()); }
  std::size_t size() const { return rep_ ? rep_->size : 0; }
  bool empty() const { return size() == 0; }
  IteratorConst begin() const { return view().begin(); }
  IteratorConst end() const { return view().end(); }

  friend bool operator==(String const& a, String const& b) { return a.view() == b.view(); }
  friend auto operator<=>(String const& a, String const& b) { return a.view() <=> b.view(); }
  friend String operator+(String const& a, std::string_view b);

 private:
  // The bytes follow the count in the one block, with a terminating NUL: a
  // string is a single allocation, the size of its bytes and a few words.
  struct Rep : PtrInterface {
    static Rep* make(std::string_view bytes);
    char const* data() const { return reinterpret_cast<char const*>(this + 1); }
    std::size_t const size;

   private:
    explicit Rep(std::size_t n) : size(n) {}
    void handleZeroRef() const override;
  };
  Ptr<Rep const> rep_;
};

// The name of an entity.
using Name = String;

std::ostream& operator<<(std::ostream& os, String const& s);

}  // namespace Zet

template <>
struct std::hash<Zet::String> {
  std::size_t operator()(Zet::String const& s) const noexcept { return std::hash<std::string_view>()(s.view()); }
};
