#include "LldpAgent/PortAndProtocolVlan.h"

#include <ostream>

#include "Zet/RecordForm.h"

namespace Lldp {

namespace {

constexpr auto const& form = portAndProtocolVlanForm;

}  // namespace

PortAndProtocolVlan::PortAndProtocolVlan(Bridging::VlanIdOrNone portAndProtocolVlanId, bool supported, bool enabled)
    : portAndProtocolVlanId(portAndProtocolVlanId), supported(supported), enabled(enabled) {}

PortAndProtocolVlan::PortAndProtocolVlan(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  form.read(*this, pos, end);
}

Zet::String valueToStrep(PortAndProtocolVlan const& vlan) { return form.toStrep(vlan); }

std::ostream& operator<<(std::ostream& os, PortAndProtocolVlan const& vlan) { return os << valueToStrep(vlan); }

}  // namespace Lldp
