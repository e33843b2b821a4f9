#pragma once
// A management address: its bytes as they arrive in the TLV (for IPv4 the four
// bytes of the address), no length limit tested here.

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <utility>

#include "Zet/String.h"

namespace Lldp {

class ManAddress {
 public:
  ManAddress() = default;
  explicit ManAddress(Zet::String bytes) : value_(std::move(bytes)) {}
  // Reads the text of valueToStrep, a quoted string.
  ManAddress(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Zet::String const& value() const { return value_; }
  void valueIs(Zet::String bytes) { value_ = std::move(bytes); }
  std::size_t size() const { return value_.size(); }

  friend bool operator==(ManAddress const&, ManAddress const&) = default;
  // The order of the address as an index without IMPLIED: its OID carries the
  // length first, so a shorter address sorts first, then bytes as unsigned.
  friend std::strong_ordering operator<=>(ManAddress const& a, ManAddress const& b) {
    if (auto const bySize = a.size() <=> b.size(); bySize != 0) {
      return bySize;
    }
    return a.value_ <=> b.value_;
  }

 private:
  Zet::String value_;
};

// The bytes quoted and escaped.
Zet::String valueToStrep(ManAddress const& address);
// Four bytes as dotted decimal ("10.0.0.1"), others as colon-separated hex.
std::ostream& operator<<(std::ostream& os, ManAddress const& address);

}  // namespace Lldp

template <>
struct std::hash<Lldp::ManAddress> {
  std::size_t operator()(Lldp::ManAddress const& a) const noexcept { return std::hash<Zet::String>()(a.value()); }
};
