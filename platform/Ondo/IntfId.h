#pragma once
// The identity of an interface, by its name ("Ethernet1"); copied by value.

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <utility>

#include "Zet/String.h"

namespace Ondo {

class IntfId {
 public:
  IntfId() = default;
  explicit IntfId(Zet::String name) : name_(std::move(name)) {}
  // Reads the text of valueToStrep: the name, quoted.
  IntfId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  // The interface's name; empty for the empty identifier.
  Zet::String stringValue() const { return name_; }
  bool empty() const { return name_.empty(); }
  // Sets the identifier from a name; the empty string gives the empty identifier.
  void handleInitialized(Zet::String name) { name_ = std::move(name); }
  std::size_t hash() const { return std::hash<Zet::String>()(name_); }

  // Ordered by the bytes of the name: a total order, nothing more is promised.
  friend bool operator==(IntfId const&, IntfId const&) = default;
  friend auto operator<=>(IntfId const&, IntfId const&) = default;

 private:
  Zet::String name_;
};

Zet::String valueToStrep(IntfId const& id);
// Writes the name as it stands.
std::ostream& operator<<(std::ostream& os, IntfId const& id);

}  // namespace Ondo

template <>
struct std::hash<Ondo::IntfId> {
  std::size_t operator()(Ondo::IntfId const& id) const noexcept { return id.hash(); }
};
