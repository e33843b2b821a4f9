#pragma once
// The name of a VLAN that a neighbour announces (802.1 TLV).

#include <iosfwd>

#include "Bridging/VlanId.h"
#include "LldpAgent/BoundedString.h"
#include "Zet/RecordForm.h"
#include "Zet/String.h"

namespace Lldp {

struct VlanName {
  Bridging::VlanId vlanId;
  BoundedString32 vlanName;

  VlanName() = default;
  VlanName(Bridging::VlanId vlanId, BoundedString32 vlanName);
  VlanName(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  friend bool operator==(VlanName const&, VlanName const&) = default;
};

// Its fields in order: the text form and the scenario reader both go by them.
inline constexpr Zet::RecordForm vlanNameForm{"Lldp::VlanName",
                                              Zet::field("vlanId", &VlanName::vlanId),
                                              Zet::field("vlanName", &VlanName::vlanName)};

Zet::String valueToStrep(VlanName const& name);
std::ostream& operator<<(std::ostream& os, VlanName const& name);

}  // namespace Lldp
