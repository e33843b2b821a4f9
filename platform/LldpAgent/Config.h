#pragma once
// The LLDP agent's global settings, at "Statebase/l2discovery/lldp/config".

#include <cstdint>

#include "LldpAgent/Attribute.h"
#include "Zet/Entity.h"

namespace Lldp {

// Initial values are the LLDP-MIB's DEFVALs.
// clang-format off
#define LLDP_CONFIG_ATTRIBUTES(scalar, entities, records, map, slotOnly) \
  scalar(std::int32_t, messageTxInterval, MessageTxInterval, 30)         \
  scalar(std::int32_t, messageTxHold, MessageTxHold, 4)                  \
  scalar(std::int32_t, reinitDelay, ReinitDelay, 2)                      \
  scalar(std::int32_t, txDelay, TxDelay, 2)
// clang-format on

class Config : public Zet::Entity {
 public:
  // Where the state database holds it.
  static constexpr char const* path = "Statebase/l2discovery/lldp/config";

  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_CONFIG_ATTRIBUTES)
  };

  Config();

  LLDP_ATTRIBUTE_ACCESSORS(LLDP_CONFIG_ATTRIBUTES)

  // The multiplier of messageTxInterval that gives the TTL advertised: lldpMessageTxHoldMultiplier.
  std::int32_t messageTxHoldMultiplier() const { return messageTxHold(); }
  // Fixed by the agent, not configurable: lldpNotificationInterval.
  static constexpr std::int32_t notificationInterval() { return 5; }

 private:
  LLDP_ATTRIBUTE_FIELDS(LLDP_CONFIG_ATTRIBUTES)
};

#undef LLDP_CONFIG_ATTRIBUTES

}  // namespace Lldp
