#pragma once
// VLAN identifiers: VlanId is a real VLAN (1 to 4094); VlanIdOrNone also
// allows 0, which stands for no VLAN, as in the MIB's VlanIdOrNone.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>

#include "Zet/String.h"

namespace Bridging {

class VlanId {
 public:
  static constexpr std::uint16_t min = 1;
  static constexpr std::uint16_t max = 4094;

  VlanId() = default;
  // Raises a Zet::RangeException outside 1 to 4094.
  explicit VlanId(std::uint16_t raw);
  // Reads the text of valueToStrep; a number out of range raises as above.
  VlanId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint16_t value() const { return value_; }
  void valueIs(std::uint16_t raw);

  friend bool operator==(VlanId, VlanId) = default;
  friend auto operator<=>(VlanId, VlanId) = default;

 private:
  std::uint16_t value_ = 1;
};

class VlanIdOrNone {
 public:
  static constexpr std::uint16_t none = 0;
  static constexpr std::uint16_t max = VlanId::max;

  VlanIdOrNone() = default;
  // Raises a Zet::RangeException above 4094.
  explicit VlanIdOrNone(std::uint16_t raw);
  VlanIdOrNone(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint16_t value() const { return value_; }
  void valueIs(std::uint16_t raw);
  bool isNone() const { return value_ == 0; }

  friend bool operator==(VlanIdOrNone, VlanIdOrNone) = default;
  friend auto operator<=>(VlanIdOrNone, VlanIdOrNone) = default;

 private:
  std::uint16_t value_ = 0;
};

// The number, in decimal.
Zet::String valueToStrep(VlanId id);
Zet::String valueToStrep(VlanIdOrNone id);
std::ostream& operator<<(std::ostream& os, VlanId id);
std::ostream& operator<<(std::ostream& os, VlanIdOrNone id);

}  // namespace Bridging

template <>
struct std::hash<Bridging::VlanId> {
  std::size_t operator()(Bridging::VlanId id) const noexcept { return std::hash<std::uint16_t>()(id.value()); }
};

template <>
struct std::hash<Bridging::VlanIdOrNone> {
  std::size_t operator()(Bridging::VlanIdOrNone id) const noexcept {
    return std::hash<std::uint16_t>()(id.value());
  }
};
