#include "LldpAgent/PowerViaMdiInfo.h"

#include <ostream>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

using Info = PowerViaMdiInfo;

constexpr auto const& form = powerViaMdiInfoForm;

}  // namespace

Info::PowerViaMdiInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

Zet::String valueToStrep(Info const& info) { return form.toStrep(info); }

std::ostream& operator<<(std::ostream& os, Info const& info) { return os << valueToStrep(info); }

}  // namespace Lldp
