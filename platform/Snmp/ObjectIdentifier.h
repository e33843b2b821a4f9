#pragma once
// An SNMP object identifier as a plain value: its sub-identifiers in order.
// Ordered as SNMP orders OIDs: sub-identifier by sub-identifier, a prefix first.

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <memory>
#include <span>
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "Zet/String.h"

namespace Snmp {

class ObjectIdentifier {
 public:
  ObjectIdentifier() = default;
  explicit ObjectIdentifier(std::vector<std::uint64_t> const& subIds) : ObjectIdentifier(std::span(subIds)) {}
  ObjectIdentifier(std::initializer_list<std::uint64_t> subIds) : ObjectIdentifier(std::span(subIds)) {}
  // Reads the text of valueToStrep: the dotted form, quoted.
  ObjectIdentifier(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  // Reads "1.3.6.1" (a leading dot is allowed, "" is the empty OID); anything
  // else raises a Zet::ParseException.
  static ObjectIdentifier fromDotted(std::string_view text);

  std::span<std::uint64_t const> subIds() const { return {subIds_.get(), size_}; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  // "1.3.6.1"; the empty OID gives "".
  Zet::String stringValue() const;

  friend bool operator==(ObjectIdentifier const& a, ObjectIdentifier const& b) {
    return std::ranges::equal(a.subIds(), b.subIds());
  }
  friend std::strong_ordering operator<=>(ObjectIdentifier const& a, ObjectIdentifier const& b) {
    return std::lexicographical_compare_three_way(a.subIds().begin(), a.subIds().end(), b.subIds().begin(),
                                                  b.subIds().end());
  }

 private:
  explicit ObjectIdentifier(std::span<std::uint64_t const> subIds);

  // Copies share the sub-identifiers: a neighbour's address and its mirror
  // row hold the same OID, one block for both.
  std::shared_ptr<std::uint64_t const[]> subIds_;
  std::size_t size_ = 0;
};

// The dotted form, quoted: '1.3.6.1'.
Zet::String valueToStrep(ObjectIdentifier const& oid);
// The dotted form.
std::ostream& operator<<(std::ostream& os, ObjectIdentifier const& oid);

}  // namespace Snmp
