#include "LldpAgent/MacPhyConfigStatusInfo.h"

#include <ostream>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

using Info = MacPhyConfigStatusInfo;

constexpr auto const& form = macPhyConfigStatusInfoForm;

}  // namespace

Info::MacPhyConfigStatusInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

std::uint16_t Info::autoNegAdvertisedCapAsU16() const {
  std::uint16_t bits = 0;
  for (unsigned n = 0; n < 16; ++n) {
    if ((autoNegAdvertisedCap >> n) & 1u) {
      bits |= static_cast<std::uint16_t>(1u << (15 - n));
    }
  }
  return bits;
}

Zet::String valueToStrep(Info const& info) { return form.toStrep(info); }

std::ostream& operator<<(std::ostream& os, Info const& info) { return os << valueToStrep(info); }

}  // namespace Lldp
