#pragma once
// What this system advertises on one of its ports; one per port in LocalSystem::localPort.

#include <cstdint>

#include "Bridging/VlanId.h"
#include "LldpAgent/Attribute.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "Ondo/IntfId.h"
#include "Zet/Entity.h"

namespace Lldp {

// clang-format off
#define LLDP_LOCAL_PORT_ATTRIBUTES(scalar, entities, records, map, slotOnly) \
  scalar(Lldp::PortIdSubtype, portIdSubtype, PortIdSubtype, {})              \
  scalar(Lldp::PortId, portId, PortId, {})                                   \
  scalar(Lldp::BoundedString255, portDesc, PortDesc, {})                     \
  scalar(Bridging::VlanIdOrNone, portVlanId, PortVlanId, {})                 \
  scalar(Lldp::LinkAggStatusMap, linkAggStatus, LinkAggStatus, {})           \
  scalar(std::int32_t, linkAggPortId, LinkAggPortId, 0)                      \
  scalar(std::uint16_t, maxFrameSize, MaxFrameSize, 0)
// clang-format on

class LocalPort : public Zet::Entity {
 public:
  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_LOCAL_PORT_ATTRIBUTES)
  };

  explicit LocalPort(Ondo::IntfId intfId);

  Ondo::IntfId intfId() const { return intfId_; }
  LLDP_ATTRIBUTE_ACCESSORS(LLDP_LOCAL_PORT_ATTRIBUTES)

 private:
  Ondo::IntfId const intfId_;
  LLDP_ATTRIBUTE_FIELDS(LLDP_LOCAL_PORT_ATTRIBUTES)
};

#undef LLDP_LOCAL_PORT_ATTRIBUTES

}  // namespace Lldp
