#pragma once
// The LLDP settings of one port. The two TLV sets are kept raw; readers build the typed
// sets from them, and a raw value out of range raises there.

#include <cstdint>

#include "LldpAgent/Attribute.h"
#include "LldpAgent/EnabledTlvs.h"
#include "LldpAgent/Enumerations.h"
#include "Zet/Entity.h"

namespace Lldp {

// Initial values are the MIB's DEFVALs: send and receive, no optional TLV, no address.
// clang-format off
#define LLDP_PORT_CONFIG_ATTRIBUTES(scalar, entities, records, map, slotOnly)     \
  scalar(Lldp::AdminStatus, adminStatus, AdminStatus, Lldp::AdminStatus::txAndRx) \
  scalar(std::uint32_t, enabledTlvs, EnabledTlvs, 0)                              \
  scalar(bool, manAddrTxEnable, ManAddrTxEnable, false)                           \
  scalar(bool, portVlanTxEnable, PortVlanTxEnable, false)                         \
  scalar(std::uint32_t, dot3EnabledTlvs, Dot3EnabledTlvs, 0)
// clang-format on

class PortConfig : public Zet::Entity {
 public:
  using EnabledTlvs = Lldp::EnabledTlvs;
  using Dot3EnabledTlvs = Lldp::Dot3EnabledTlvs;

  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_PORT_CONFIG_ATTRIBUTES)
  };

  PortConfig();

  LLDP_ATTRIBUTE_ACCESSORS(LLDP_PORT_CONFIG_ATTRIBUTES)

 private:
  LLDP_ATTRIBUTE_FIELDS(LLDP_PORT_CONFIG_ATTRIBUTES)
};

#undef LLDP_PORT_CONFIG_ATTRIBUTES

}  // namespace Lldp
