#pragma once
// The LLDP agent's status over all ports, at "Statebase/l2discovery/lldp/status/all".

#include "LldpAgent/Attribute.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/StatusBase.h"
#include "Ondo/IntfId.h"

namespace Lldp {

// clang-format off
#define LLDP_ALL_STATUS_ATTRIBUTES(scalar, entities, records, map, slotOnly)     \
  entities(Ondo::IntfId, portStatus, PortStatus, Lldp::PortStatus, intfId, true)
// clang-format on

class AllStatus : public StatusBase {
 public:
  // Where the state database holds it.
  static constexpr char const* path = "Statebase/l2discovery/lldp/status/all";

  class NotifieeConst : public StatusBase::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_ALL_STATUS_ATTRIBUTES)
  };

  AllStatus();

  LLDP_ATTRIBUTE_ACCESSORS(LLDP_ALL_STATUS_ATTRIBUTES)

 private:
  LLDP_ATTRIBUTE_FIELDS(LLDP_ALL_STATUS_ATTRIBUTES)
};

#undef LLDP_ALL_STATUS_ATTRIBUTES

}  // namespace Lldp
