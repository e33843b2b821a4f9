#pragma once
// An SNMP object identifier as a plain value: its sub-identifiers in order.
// Ordered as SNMP orders OIDs: sub-identifier by sub-identifier, a prefix first.

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string_view>
#include <utility>
#include <vector>

#include "Zet/String.h"

namespace Snmp {

class ObjectIdentifier {
 public:
  ObjectIdentifier() = default;
  explicit ObjectIdentifier(std::vector<std::uint64_t> subIds) : subIds_(std::move(subIds)) {}
  ObjectIdentifier(std::initializer_list<std::uint64_t> subIds) : subIds_(subIds) {}
  // Reads the text of valueToStrep: the dotted form, quoted.
  ObjectIdentifier(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  // Reads "1.3.6.1" (a leading dot is allowed, "" is the empty OID); anything
  // else raises a Zet::ParseException.
  static ObjectIdentifier fromDotted(std::string_view text);

  std::vector<std::uint64_t> const& subIds() const { return subIds_; }
  std::size_t size() const { return subIds_.size(); }
  bool empty() const { return subIds_.empty(); }
  // "1.3.6.1"; the empty OID gives "".
  Zet::String stringValue() const;

  friend bool operator==(ObjectIdentifier const&, ObjectIdentifier const&) = default;
  friend auto operator<=>(ObjectIdentifier const&, ObjectIdentifier const&) = default;

 private:
  std::vector<std::uint64_t> subIds_;
};

// The dotted form, quoted: '1.3.6.1'.
Zet::String valueToStrep(ObjectIdentifier const& oid);
// The dotted form.
std::ostream& operator<<(std::ostream& os, ObjectIdentifier const& oid);

}  // namespace Snmp
