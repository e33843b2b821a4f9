#pragma once
// The number of an Ethernet port as the LLDP MIBs show it (LldpPortNumber).

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "Zet/String.h"

namespace Interface {

class EthPortId {
 public:
  static constexpr std::uint16_t min = 0;
  static constexpr std::uint16_t max = 4094;

  EthPortId() = default;
  // Raises a Zet::RangeException above max.
  explicit EthPortId(std::uint16_t raw);
  // Reads the text of valueToStrep; a number out of range raises as above.
  EthPortId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint16_t value() const { return value_; }
  void valueIs(std::uint16_t raw);

  friend bool operator==(EthPortId, EthPortId) = default;
  friend auto operator<=>(EthPortId, EthPortId) = default;

 private:
  std::uint16_t value_ = 0;
};

// The number, in decimal.
Zet::String valueToStrep(EthPortId id);
std::ostream& operator<<(std::ostream& os, EthPortId id);

}  // namespace Interface

template <>
struct std::hash<Interface::EthPortId> {
  std::size_t operator()(Interface::EthPortId id) const noexcept { return std::hash<std::uint16_t>()(id.value()); }
};
