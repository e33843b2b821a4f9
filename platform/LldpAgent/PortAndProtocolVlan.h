#pragma once
// A port and protocol VLAN that a neighbour announces (802.1 TLV).

#include <iosfwd>

#include "Bridging/VlanId.h"
#include "Zet/RecordForm.h"
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

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm portAndProtocolVlanForm{"Lldp::PortAndProtocolVlan",
                                                         Zet::field("portAndProtocolVlanId", &PortAndProtocolVlan::portAndProtocolVlanId),
                                                         Zet::field("supported", &PortAndProtocolVlan::supported),
                                                         Zet::field("enabled", &PortAndProtocolVlan::enabled)};

Zet::String valueToStrep(PortAndProtocolVlan const& vlan);
std::ostream& operator<<(std::ostream& os, PortAndProtocolVlan const& vlan);

}  // namespace Lldp
