#pragma once
// An organisationally unique identifier: 24 bits in the low three bytes of a
// U32, the most significant byte first as the OUI is written (00-80-C2 is 0x0080c2).

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "Zet/String.h"

namespace Lldp {

class Oui {
 public:
  Oui() = default;
  explicit Oui(std::uint32_t raw) : value_(raw) {}
  // Reads the text of valueToStrep.
  Oui(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint32_t value() const { return value_; }
  void valueIs(std::uint32_t raw) { value_ = raw; }

  // Ordered as the plain unsigned number.
  friend bool operator==(Oui, Oui) = default;
  friend auto operator<=>(Oui, Oui) = default;

 private:
  std::uint32_t value_ = 0;
};

// The number, in decimal.
Zet::String valueToStrep(Oui oui);
// The three bytes as written: "00-80-c2".
std::ostream& operator<<(std::ostream& os, Oui oui);

}  // namespace Lldp

template <>
struct std::hash<Lldp::Oui> {
  std::size_t operator()(Lldp::Oui oui) const noexcept { return std::hash<std::uint32_t>()(oui.value()); }
};
