#pragma once
// A port and protocol VLAN that a neighbour announces (802.1 TLV).

#include <iosfwd>

#include "Bridging/VlanId.h"
#include "Zet/String.h"

namespace Lldp {

struct PortAndProtocolVlan {
  Bridging::VlanIdOrNone portAndProtocolVlanId;
  bool supported = false;
  bool enabled = false;

  PortAndProtocolVlan() = default;
  PortAndProtocolVlan(Bridging::VlanIdOrNone portAndProtocolVlanId, bool supported, bool enabled);
  PortAndProtocolVlan(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(PortAndProtocolVlan const&, PortAndProtocolVlan const&) = default;
};

Zet::String valueToStrep(PortAndProtocolVlan const& vlan);
std::ostream& operator<<(std::ostream& os, PortAndProtocolVlan const& vlan);

}  // namespace Lldp
