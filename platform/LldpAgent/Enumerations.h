#pragma once
// The enumerations of the LLDP MIBs, numbered as their textual conventions, so
// that a value goes to SNMP unchanged. Any S32 can be held: 0, no enumerator,
// is what a missing source reads as.
//
// Each enumeration has a table of its MIB names, so that text (a scenario,
// a trace) can give a value by name or by number.

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <system_error>

#include "Zet/Exception.h"

namespace Lldp {

// LldpPortIdSubtype
enum class PortIdSubtype : std::int32_t {
  interfaceAlias = 1,
  portComponent = 2,
  macAddress = 3,
  networkAddress = 4,
  interfaceName = 5,
  agentCircuitId = 6,
  local = 7,
};

// LldpChassisIdSubtype
enum class ChassisIdSubtype : std::int32_t {
  chassisComponent = 1,
  interfaceAlias = 2,
  portComponent = 3,
  macAddress = 4,
  networkAddress = 5,
  interfaceName = 6,
  local = 7,
};

// LldpManAddrIfSubtype
enum class ManAddrIfSubtype : std::int32_t {
  unknown = 1,
  ifIndex = 2,
  systemPortNumber = 3,
};

// LldpPowerPortClass (LLDP-EXT-DOT3-MIB)
enum class PowerPortClass : std::int32_t {
  pClassPSE = 1,
  pClassPD = 2,
};

// lldpPortConfigAdminStatus
enum class AdminStatus : std::int32_t {
  txOnly = 1,
  rxOnly = 2,
  txAndRx = 3,
  disabled = 4,
};

struct EnumName {
  std::string_view name;
  std::int32_t number;
};

// The names of an enumeration: `typeName` and `table`, one entry per enumerator.
template <class E>
struct EnumNames;

template <>
struct EnumNames<PortIdSubtype> {
  static constexpr std::string_view typeName = "PortIdSubtype";
  static constexpr std::array table{EnumName{"interfaceAlias", 1}, EnumName{"portComponent", 2},
                                    EnumName{"macAddress", 3},     EnumName{"networkAddress", 4},
                                    EnumName{"interfaceName", 5},  EnumName{"agentCircuitId", 6},
                                    EnumName{"local", 7}};
};

template <>
struct EnumNames<ChassisIdSubtype> {
  static constexpr std::string_view typeName = "ChassisIdSubtype";
  static constexpr std::array table{EnumName{"chassisComponent", 1}, EnumName{"interfaceAlias", 2},
                                    EnumName{"portComponent", 3},    EnumName{"macAddress", 4},
                                    EnumName{"networkAddress", 5},   EnumName{"interfaceName", 6},
                                    EnumName{"local", 7}};
};

template <>
struct EnumNames<ManAddrIfSubtype> {
  static constexpr std::string_view typeName = "ManAddrIfSubtype";
  static constexpr std::array table{EnumName{"unknown", 1}, EnumName{"ifIndex", 2},
                                    EnumName{"systemPortNumber", 3}};
};

template <>
struct EnumNames<PowerPortClass> {
  static constexpr std::string_view typeName = "PowerPortClass";
  static constexpr std::array table{EnumName{"pClassPSE", 1}, EnumName{"pClassPD", 2}};
};

template <>
struct EnumNames<AdminStatus> {
  static constexpr std::string_view typeName = "AdminStatus";
  static constexpr std::array table{EnumName{"txOnly", 1}, EnumName{"rxOnly", 2}, EnumName{"txAndRx", 3},
                                    EnumName{"disabled", 4}};
};

template <class E>
concept NamedEnum = requires {
  EnumNames<E>::typeName;
  EnumNames<E>::table;
};

// The MIB's name of `value`; empty for a number that has none, such as 0.
template <NamedEnum E>
std::string_view enumName(E value) {
  for (EnumName const& entry : EnumNames<E>::table) {
    if (entry.number == static_cast<std::int32_t>(value)) {
      return entry.name;
    }
  }
  return {};
}

// Reads a MIB name or a decimal number in S32 range; anything else raises a
// Zet::ParseException naming the enumeration.
template <NamedEnum E>
E enumFromText(std::string_view text) {
  for (EnumName const& entry : EnumNames<E>::table) {
    if (entry.name == text) {
      return static_cast<E>(entry.number);
    }
  }
  std::int32_t number = 0;
  auto const [next, ec] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || ec != std::errc() || next != text.data() + text.size()) {
    throw Zet::ParseException("'" + std::string(text) + "' is no " + std::string(EnumNames<E>::typeName) +
                              " name or number");
  }
  return static_cast<E>(number);
}

// "macAddress(3)", or the bare number where the MIB has no name for it.
template <NamedEnum E>
std::ostream& operator<<(std::ostream& os, E value) {
  std::string_view const name = enumName(value);
  if (!name.empty()) {
    os << name << '(';
  }
  os << static_cast<std::int32_t>(value);
  if (!name.empty()) {
    os << ')';
  }
  return os;
}

}  // namespace Lldp
