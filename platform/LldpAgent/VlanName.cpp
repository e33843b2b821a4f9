#include "LldpAgent/VlanName.h"

#include <ostream>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = vlanNameForm;

}  // namespace

VlanName::VlanName(Bridging::VlanId vlanId, BoundedString32 vlanName) : vlanId(vlanId), vlanName(std::move(vlanName)) {}

VlanName::VlanName(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

Zet::String valueToStrep(VlanName const& name) { return form.toStrep(name); }

std::ostream& operator<<(std::ostream& os, VlanName const& name) { return os << valueToStrep(name); }

}  // namespace Lldp
