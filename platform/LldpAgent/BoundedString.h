#pragma once
// Octet strings with an upper bound on their length in bytes (not characters):
// the identifiers and texts of the LLDP MIB. One template makes the family;
// each member's range message carries its own name and limit.

#include <algorithm>
#include <compare>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string_view>
#include <utility>

#include "Zet/String.h"

namespace Lldp {

// A type's name as a template argument.
template <std::size_t size>
struct BoundedStringName {
  constexpr BoundedStringName(char const (&text)[size]) { std::copy_n(text, size, chars); }
  constexpr std::string_view view() const { return {chars, size - 1}; }
  char chars[size]{};
};

namespace detail {
// Raises "<typeName>::value::bytes > <maxBytes> not allowed".
[[noreturn]] void throwBoundedStringRange(std::string_view typeName, std::size_t maxBytes);
Zet::String readBoundedString(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);
Zet::String boundedStringStrep(Zet::String const& value);
}  // namespace detail

template <BoundedStringName typeName, std::size_t byteLimit>
class BoundedString {
 public:
  static constexpr std::size_t maxBytes = byteLimit;

  BoundedString() = default;
  // Raises a Zet::RangeException when `raw` has more than maxBytes bytes.
  explicit BoundedString(Zet::String raw) { valueIs(std::move(raw)); }
  // Reads the text of valueToStrep, a quoted string; too long a string raises as above.
  BoundedString(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
    valueIs(detail::readBoundedString(pos, end));
  }

  Zet::String const& value() const { return value_; }
  void valueIs(Zet::String raw) {
    if (raw.size() > maxBytes) {
      detail::throwBoundedStringRange(typeName.view(), maxBytes);
    }
    value_ = std::move(raw);
  }

  friend bool operator==(BoundedString const&, BoundedString const&) = default;
  friend auto operator<=>(BoundedString const&, BoundedString const&) = default;

 private:
  Zet::String value_;
};

// The bytes quoted and escaped, as Zet::valueToStrep writes a string.
template <BoundedStringName typeName, std::size_t byteLimit>
Zet::String valueToStrep(BoundedString<typeName, byteLimit> const& s) {
  return detail::boundedStringStrep(s.value());
}

// The bytes as they stand.
template <BoundedStringName typeName, std::size_t byteLimit>
std::ostream& operator<<(std::ostream& os, BoundedString<typeName, byteLimit> const& s) {
  return os << s.value();
}

using ChassisId = BoundedString<"ChassisId", 255>;
using PortId = BoundedString<"PortId", 255>;
using BoundedString32 = BoundedString<"BoundedString32", 32>;
using BoundedString255 = BoundedString<"BoundedString255", 255>;
using BoundedString507 = BoundedString<"BoundedString507", 507>;
using BoundedString511 = BoundedString<"BoundedString511", 511>;

}  // namespace Lldp

template <Lldp::BoundedStringName typeName, std::size_t byteLimit>
struct std::hash<Lldp::BoundedString<typeName, byteLimit>> {
  std::size_t operator()(Lldp::BoundedString<typeName, byteLimit> const& s) const noexcept {
    return std::hash<Zet::String>()(s.value());
  }
};
