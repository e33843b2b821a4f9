#pragma once
// Which optional TLVs a port sends: lldpPortConfigTLVsTxEnable (EnabledTlvs)
// and lldpXdot3PortConfigTLVsTxEnable (Dot3EnabledTlvs). Four named bits
// each, bit n being the MIB's named bit n; the port configuration keeps the raw
// U32 and the table code builds these from it, which is where a bad value raises.

#include <compare>
#include <cstdint>
#include <iosfwd>

#include "Zet/String.h"

namespace Lldp {

class EnabledTlvs {
 public:
  static constexpr std::uint32_t max = 0xf;

  EnabledTlvs() = default;
  // Raises a Zet::RangeException above max.
  explicit EnabledTlvs(std::uint32_t raw);
  EnabledTlvs(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint32_t value() const { return value_; }
  void valueIs(std::uint32_t raw);

  friend bool operator==(EnabledTlvs, EnabledTlvs) = default;
  friend auto operator<=>(EnabledTlvs, EnabledTlvs) = default;

 private:
  std::uint32_t value_ = 0;
};

class Dot3EnabledTlvs {
 public:
  static constexpr std::uint32_t max = 0xf;

  Dot3EnabledTlvs() = default;
  // Raises a Zet::RangeException above max.
  explicit Dot3EnabledTlvs(std::uint32_t raw);
  Dot3EnabledTlvs(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint32_t value() const { return value_; }
  void valueIs(std::uint32_t raw);

  friend bool operator==(Dot3EnabledTlvs, Dot3EnabledTlvs) = default;
  friend auto operator<=>(Dot3EnabledTlvs, Dot3EnabledTlvs) = default;

 private:
  std::uint32_t value_ = 0;
};

// The number, in decimal.
Zet::String valueToStrep(EnabledTlvs tlvs);
Zet::String valueToStrep(Dot3EnabledTlvs tlvs);
std::ostream& operator<<(std::ostream& os, EnabledTlvs tlvs);
std::ostream& operator<<(std::ostream& os, Dot3EnabledTlvs tlvs);

}  // namespace Lldp
