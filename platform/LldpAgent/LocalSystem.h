#pragma once
// What this system advertises about itself, at "Statebase/l2discovery/lldp/localSystem":
// its identity, its ports and its management addresses.

#include <cstdint>

#include "LldpAgent/Attribute.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "Ondo/IntfId.h"
#include "Zet/Entity.h"
#include "Zet/String.h"

namespace Lldp {

// chassisIdentifier is the pair chassisIdSubtype and chassisId, which only change together.
// managementAddressPrio names each address of managementAddress, best first.
// clang-format off
#define LLDP_LOCAL_SYSTEM_ATTRIBUTES(scalar, entities, records, map, slotOnly)                                   \
  slotOnly(ChassisIdentifier)                                                                                    \
  scalar(Zet::String, sysName, SysName, {})                                                                      \
  scalar(Zet::String, sysDesc, SysDesc, {})                                                                      \
  scalar(Lldp::SystemCapabilitiesMap, sysCapSupported, SysCapSupported, {})                                      \
  scalar(Lldp::SystemCapabilitiesMap, sysCapEnabled, SysCapEnabled, {})                                          \
  entities(Ondo::IntfId, localPort, LocalPort, Lldp::LocalPort, intfId, true)                                    \
  records(Lldp::ManagementAddress::Key, managementAddress, ManagementAddress, Lldp::ManagementAddress)           \
  scalar(Lldp::ManagementAddress, ip6ManagementAddress, Ip6ManagementAddress, {})                                \
  map(Lldp::ManAddrPriority, managementAddressPrio, ManagementAddressPrio, Lldp::ManagementAddress::Key, Sorted)
// clang-format on

class LocalSystem : public Zet::Entity {
 public:
  // Where the state database holds it.
  static constexpr char const* path = "Statebase/l2discovery/lldp/localSystem";

  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_LOCAL_SYSTEM_ATTRIBUTES)
  };

  LocalSystem();

  // LldpChassisIdSubtype, as a number: the MIB shows whatever is stored.
  std::int32_t chassisIdSubtype() const { return chassisIdSubtype_; }
  Zet::String chassisId() const { return chassisId_; }
  // Delivers onChassisIdentifier() once when either half changes.
  void chassisIdentifierIs(std::int32_t subtype, Zet::String id);

  LLDP_ATTRIBUTE_ACCESSORS(LLDP_LOCAL_SYSTEM_ATTRIBUTES)

 private:
  std::int32_t chassisIdSubtype_ = 0;
  Zet::String chassisId_;
  LLDP_ATTRIBUTE_FIELDS(LLDP_LOCAL_SYSTEM_ATTRIBUTES)
};

#undef LLDP_LOCAL_SYSTEM_ATTRIBUTES

}  // namespace Lldp
