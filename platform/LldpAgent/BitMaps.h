#pragma once
// Bit sets of the LLDP TLVs, held as they arrive: bit n is the MIB's named bit n.
// Part of the 32 bits is significant; the rest is kept and ignored.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>

#include "Zet/String.h"
#include "Zet/TextForm.h"

namespace Lldp {

// LldpSystemCapabilitiesMap: the two low bytes are significant.
class SystemCapabilitiesMap {
 public:
  SystemCapabilitiesMap() = default;
  explicit SystemCapabilitiesMap(std::uint32_t raw) : value_(raw) {}
  SystemCapabilitiesMap(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
      : value_(Zet::readValue<std::uint32_t>(pos, end)) {}

  std::uint32_t value() const { return value_; }
  void valueIs(std::uint32_t raw) { value_ = raw; }

  friend bool operator==(SystemCapabilitiesMap, SystemCapabilitiesMap) = default;
  friend auto operator<=>(SystemCapabilitiesMap, SystemCapabilitiesMap) = default;

 private:
  std::uint32_t value_ = 0;
};

// LldpLinkAggStatusMap: the low byte is significant.
class LinkAggStatusMap {
 public:
  LinkAggStatusMap() = default;
  explicit LinkAggStatusMap(std::uint32_t raw) : value_(raw) {}
  LinkAggStatusMap(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end)
      : value_(Zet::readValue<std::uint32_t>(pos, end)) {}

  std::uint32_t value() const { return value_; }
  void valueIs(std::uint32_t raw) { value_ = raw; }

  friend bool operator==(LinkAggStatusMap, LinkAggStatusMap) = default;
  friend auto operator<=>(LinkAggStatusMap, LinkAggStatusMap) = default;

 private:
  std::uint32_t value_ = 0;
};

// The number, in decimal.
inline Zet::String valueToStrep(SystemCapabilitiesMap m) { return Zet::strepOf(m.value()); }
inline Zet::String valueToStrep(LinkAggStatusMap m) { return Zet::strepOf(m.value()); }
inline std::ostream& operator<<(std::ostream& os, SystemCapabilitiesMap m) { return os << m.value(); }
inline std::ostream& operator<<(std::ostream& os, LinkAggStatusMap m) { return os << m.value(); }

}  // namespace Lldp

template <>
struct std::hash<Lldp::SystemCapabilitiesMap> {
  std::size_t operator()(Lldp::SystemCapabilitiesMap m) const noexcept { return std::hash<std::uint32_t>()(m.value()); }
};

template <>
struct std::hash<Lldp::LinkAggStatusMap> {
  std::size_t operator()(Lldp::LinkAggStatusMap m) const noexcept { return std::hash<std::uint32_t>()(m.value()); }
};
