#pragma once
// Counters of the remote tables, common to the agent's status entities.

#include <cstdint>

#include "LldpAgent/Attribute.h"
#include "Zet/Entity.h"
#include "Zet/String.h"

namespace Lldp {

// clang-format off
#define LLDP_STATUS_BASE_ATTRIBUTES(scalar, entities, records, map, slotOnly) \
  scalar(double, remTablesLastChangeTime, RemTablesLastChangeTime, 0.0)       \
  scalar(std::uint32_t, remTablesInserts, RemTablesInserts, 0)                \
  scalar(std::uint32_t, remTablesDeletes, RemTablesDeletes, 0)                \
  scalar(std::uint32_t, remTablesDrops, RemTablesDrops, 0)                    \
  scalar(std::uint32_t, remTablesAgeouts, RemTablesAgeouts, 0)                \
  scalar(Zet::String, mgmtAddrVrf, MgmtAddrVrf, {})
// clang-format on

class StatusBase : public Zet::Entity {
 public:
  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_STATUS_BASE_ATTRIBUTES)
  };

  LLDP_ATTRIBUTE_ACCESSORS(LLDP_STATUS_BASE_ATTRIBUTES)

 protected:
  explicit StatusBase(Zet::Name name);

 private:
  LLDP_ATTRIBUTE_FIELDS(LLDP_STATUS_BASE_ATTRIBUTES)
};

#undef LLDP_STATUS_BASE_ATTRIBUTES

}  // namespace Lldp
