#pragma once
// Reference-counted immutable byte string: copies share the bytes.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include "Zet/PtrInterface.h"

namespace Zet {

class String {
 public:
  using IteratorConst = std::string_view::const_iterator;

  String() = default;
  String(char const* text) : String(std::string_view(text ? text : "")) {}
  String(std::string_view bytes);
  String(std::string const& bytes) : String(std::string_view(bytes)) {}
  String(char const* data, std::size_t size) : String(std::string_view(data, size)) {}
  String(String const& other) noexcept : rep_(other.rep_) { acquire(rep_); }
  String(String&& other) noexcept : rep_(std::exchange(other.rep_, nullptr)) {}
  String& operator=(String other) noexcept {
    std::swap(rep_, other.rep_);
    return *this;
  }
  ~String() { release(rep_); }

  // Never null: the empty string gives "".
  char const* charPtr() const { return rep_ ? rep_->data() : ""; }
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
  // The count and the size, then the bytes with a terminating NUL, in one
  // block: a neighbour holds a dozen short strings, and a counted object's
  // own header would be three times this one.
  struct Rep {
    mutable std::atomic<std::uint32_t> refs;
    std::uint32_t size;
    char const* data() const { return reinterpret_cast<char const*>(this + 1); }
  };

  // Counted as Zet::Ptr counts: plainly, unless the process asked for atomic counts.
  static void acquire(Rep const* rep) {
    if (!rep) {
      return;
    }
    if (VFPtrInterface::threadSafePointers_) {
      rep->refs.fetch_add(1, std::memory_order_relaxed);
    } else {
      rep->refs.store(rep->refs.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
  }
  static void release(Rep const* rep) {
    if (!rep) {
      return;
    }
    std::uint32_t after;
    if (VFPtrInterface::threadSafePointers_) {
      after = rep->refs.fetch_sub(1, std::memory_order_acq_rel) - 1;
    } else {
      after = rep->refs.load(std::memory_order_relaxed) - 1;
      rep->refs.store(after, std::memory_order_relaxed);
    }
    if (after == 0) {
      destroy(rep);
    }
  }
  static void destroy(Rep const* rep);

  Rep const* rep_ = nullptr;
};

// The name of an entity.
using Name = String;

std::ostream& operator<<(std::ostream& os, String const& s);

}  // namespace Zet

template <>
struct std::hash<Zet::String> {
  std::size_t operator()(Zet::String const& s) const noexcept { return std::hash<std::string_view>()(s.view()); }
};
