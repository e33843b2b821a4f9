#include "Bridging/VlanId.h"

#include <ostream>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Bridging {

VlanId::VlanId(std::uint16_t raw) { valueIs(raw); }

VlanId::VlanId(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  valueIs(Zet::readValue<std::uint16_t>(pos, end));
}

void VlanId::valueIs(std::uint16_t raw) {
  // 0 and 4095 are reserved by IEEE 802.1Q.
  if (raw < min || raw > max) {
    Zet::throwRangeException("VlanId::value < 1 or > 4094 not allowed");
  }
  value_ = raw;
}

VlanIdOrNone::VlanIdOrNone(std::uint16_t raw) { valueIs(raw); }

VlanIdOrNone::VlanIdOrNone(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  valueIs(Zet::readValue<std::uint16_t>(pos, end));
}

void VlanIdOrNone::valueIs(std::uint16_t raw) {
  if (raw > max) {
    Zet::throwRangeException("VlanIdOrNone::value > 4094 not allowed");
  }
  value_ = raw;
}

Zet::String valueToStrep(VlanId id) { return Zet::strepOf(id.value()); }

Zet::String valueToStrep(VlanIdOrNone id) { return Zet::strepOf(id.value()); }

std::ostream& operator<<(std::ostream& os, VlanId id) { return os << id.value(); }

std::ostream& operator<<(std::ostream& os, VlanIdOrNone id) { return os << id.value(); }

}  // namespace Bridging
