#include "LldpAgent/EnabledTlvs.h"

#include <ostream>

#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Lldp {

EnabledTlvs::EnabledTlvs(std::uint32_t raw) { valueIs(raw); }

EnabledTlvs::EnabledTlvs(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  valueIs(Zet::readValue<std::uint32_t>(pos, end));
}

void EnabledTlvs::valueIs(std::uint32_t raw) {
  if (raw > max) {
    Zet::throwRangeException("EnabledTlvs::value > 0xf not allowed");
  }
  value_ = raw;
}

Dot3EnabledTlvs::Dot3EnabledTlvs(std::uint32_t raw) { valueIs(raw); }

Dot3EnabledTlvs::Dot3EnabledTlvs(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  valueIs(Zet::readValue<std::uint32_t>(pos, end));
}

void Dot3EnabledTlvs::valueIs(std::uint32_t raw) {
  if (raw > max) {
    Zet::throwRangeException("Dot3EnabledTlvs::value > 0xf not allowed");
  }
  value_ = raw;
}

Zet::String valueToStrep(EnabledTlvs tlvs) { return Zet::strepOf(tlvs.value()); }

Zet::String valueToStrep(Dot3EnabledTlvs tlvs) { return Zet::strepOf(tlvs.value()); }

std::ostream& operator<<(std::ostream& os, EnabledTlvs tlvs) { return os << tlvs.value(); }

std::ostream& operator<<(std::ostream& os, Dot3EnabledTlvs tlvs) { return os << tlvs.value(); }

}  // namespace Lldp
