#pragma once
// The LLDP state of one port: its frame counters and the neighbours heard on it.

#include <cstdint>

#include "LldpAgent/Attribute.h"
#include "LldpAgent/RemoteSystem.h"
#include "Ondo/IntfId.h"
#include "Zet/Entity.h"

namespace Lldp {

// remoteSystemByMsap holds the neighbours of remoteSystem once more, by identity; remoteSystem
// is their parent. Times are seconds on the clock of Zet::System::currentTime().
// clang-format off
#define LLDP_PORT_STATUS_ATTRIBUTES(scalar, entities, records, map, slotOnly)                                 \
  scalar(std::uint32_t, txFramesTotal, TxFramesTotal, 0)                                                      \
  scalar(std::uint32_t, txFramesLengthExceeded, TxFramesLengthExceeded, 0)                                    \
  scalar(std::uint32_t, txFramesNoMemErrors, TxFramesNoMemErrors, 0)                                          \
  scalar(double, lastTxTime, LastTxTime, 0.0)                                                                 \
  scalar(std::uint32_t, rxFramesDiscardedTotal, RxFramesDiscardedTotal, 0)                                    \
  scalar(std::uint32_t, rxFramesErrors, RxFramesErrors, 0)                                                    \
  scalar(std::uint32_t, rxFramesTotal, RxFramesTotal, 0)                                                      \
  scalar(std::uint32_t, rxTLVsDiscardedTotal, RxTLVsDiscardedTotal, 0)                                        \
  scalar(std::uint32_t, rxTLVsUnrecognizedTotal, RxTLVsUnrecognizedTotal, 0)                                  \
  scalar(std::uint32_t, rxAgeoutsTotal, RxAgeoutsTotal, 0)                                                    \
  entities(std::int32_t, remoteSystem, RemoteSystem, Lldp::RemoteSystem, index, true)                         \
  entities(Lldp::RemoteSystem::Msap, remoteSystemByMsap, RemoteSystemByMsap, Lldp::RemoteSystem, msap, false) \
  scalar(std::int32_t, nextRemoteSystemIndex, NextRemoteSystemIndex, 1)                                       \
  scalar(std::uint32_t, ceeSeqNumToSend, CeeSeqNumToSend, 0)                                                  \
  scalar(std::uint32_t, ceeSeqNumToAck, CeeSeqNumToAck, 0)
// clang-format on

class PortStatus : public Zet::Entity {
 public:
  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_PORT_STATUS_ATTRIBUTES)
  };

  explicit PortStatus(Ondo::IntfId intfId);

  Ondo::IntfId intfId() const { return intfId_; }
  LLDP_ATTRIBUTE_ACCESSORS(LLDP_PORT_STATUS_ATTRIBUTES)

 private:
  Ondo::IntfId const intfId_;
  LLDP_ATTRIBUTE_FIELDS(LLDP_PORT_STATUS_ATTRIBUTES)
};

#undef LLDP_PORT_STATUS_ATTRIBUTES

}  // namespace Lldp
