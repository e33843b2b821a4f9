#pragma once
// One neighbour on a port, as learnt from its LLDPDUs; one per entry of PortStatus::remoteSystem.

#include <cstdint>

#include "Bridging/VlanId.h"
#include "LldpAgent/Attribute.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "Zet/Entity.h"
#include "Zet/String.h"

namespace Lldp {

// The records below are keyed by one of their fields, as the MIB's tables index them.
inline std::uint32_t recordKey(UnknownTlv const& tlv) { return tlv.type; }
inline Bridging::VlanIdOrNone recordKey(PortAndProtocolVlan const& vlan) { return vlan.portAndProtocolVlanId; }
inline Bridging::VlanId recordKey(VlanName const& name) { return name.vlanId; }
inline std::int32_t recordKey(ProtocolIdentityInfo const& info) { return info.index; }

// networkPolicyTlv maps an LLDP-MED application type to its policy's three octets (flags,
// VLAN, priorities) as received. Times are seconds on the clock of Zet::System::currentTime().
// clang-format off
#define LLDP_REMOTE_SYSTEM_ATTRIBUTES(scalar, entities, records, map, slotOnly)                        \
  scalar(std::uint16_t, ttl, Ttl, 0)                                                                   \
  scalar(Lldp::BoundedString255, portDesc, PortDesc, {})                                               \
  scalar(Lldp::BoundedString255, sysName, SysName, {})                                                 \
  scalar(Lldp::BoundedString255, sysDesc, SysDesc, {})                                                 \
  scalar(Lldp::SystemCapabilitiesMap, sysCapSupported, SysCapSupported, {})                            \
  scalar(Lldp::SystemCapabilitiesMap, sysCapEnabled, SysCapEnabled, {})                                \
  records(Lldp::ManagementAddress::Key, managementAddress, ManagementAddress, Lldp::ManagementAddress) \
  records(std::uint32_t, unknownTlv, UnknownTlv, Lldp::UnknownTlv)                                     \
  records(Lldp::UnknownOrgDefTlv::Key, unknownOrgDefTlv, UnknownOrgDefTlv, Lldp::UnknownOrgDefTlv)     \
  scalar(bool, portVlanIdTlvReceived, PortVlanIdTlvReceived, false)                                    \
  scalar(Bridging::VlanIdOrNone, portVlanId, PortVlanId, {})                                           \
  records(Bridging::VlanIdOrNone, portAndProtocolVlan, PortAndProtocolVlan, Lldp::PortAndProtocolVlan) \
  records(Bridging::VlanId, vlanName, VlanName, Lldp::VlanName)                                        \
  records(std::int32_t, protocolIdentityInfo, ProtocolIdentityInfo, Lldp::ProtocolIdentityInfo)        \
  scalar(bool, vidUsageDigestTlvReceived, VidUsageDigestTlvReceived, false)                            \
  scalar(std::uint32_t, vidUsageDigest, VidUsageDigest, 0)                                             \
  scalar(bool, managementVidTlvReceived, ManagementVidTlvReceived, false)                              \
  scalar(Bridging::VlanIdOrNone, managementVid, ManagementVid, {})                                     \
  scalar(bool, linkAggregationTlvReceived, LinkAggregationTlvReceived, false)                          \
  scalar(Lldp::LinkAggregationInfo, linkAggregationInfo, LinkAggregationInfo, {})                      \
  scalar(bool, macPhyConfigStatusTlvReceived, MacPhyConfigStatusTlvReceived, false)                    \
  scalar(Lldp::MacPhyConfigStatusInfo, macPhyConfigStatusInfo, MacPhyConfigStatusInfo, {})             \
  scalar(bool, powerViaMdiTlvReceived, PowerViaMdiTlvReceived, false)                                  \
  scalar(Lldp::PowerViaMdiInfo, powerViaMdiInfo, PowerViaMdiInfo, {})                                  \
  scalar(bool, medCapabilitiesTlvReceived, MedCapabilitiesTlvReceived, false)                          \
  scalar(std::uint32_t, medCapabilitiesInfo, MedCapabilitiesInfo, 0)                                   \
  map(std::uint8_t, networkPolicyTlv, NetworkPolicyTlv, std::uint32_t, Hashed)                         \
  scalar(bool, maximumFrameSizeTlvReceived, MaximumFrameSizeTlvReceived, false)                        \
  scalar(std::uint16_t, maximumFrameSizeInfo, MaximumFrameSizeInfo, 0)                                 \
  scalar(Lldp::BoundedString32, hardwareRevisionTlvInfo, HardwareRevisionTlvInfo, {})                  \
  scalar(Lldp::BoundedString32, firmwareRevisionTlvInfo, FirmwareRevisionTlvInfo, {})                  \
  scalar(Lldp::BoundedString32, softwareRevisionTlvInfo, SoftwareRevisionTlvInfo, {})                  \
  scalar(Lldp::BoundedString32, serialNumberTlvInfo, SerialNumberTlvInfo, {})                          \
  scalar(Lldp::BoundedString32, manufacturerNameTlvInfo, ManufacturerNameTlvInfo, {})                  \
  scalar(Lldp::BoundedString32, modelNameTlvInfo, ModelNameTlvInfo, {})                                \
  scalar(Lldp::BoundedString32, assetIDTlvInfo, AssetIDTlvInfo, {})                                    \
  scalar(Zet::String, locationId, LocationId, {})                                                      \
  scalar(double, creationTime, CreationTime, 0.0)                                                      \
  scalar(double, lastChangeTime, LastChangeTime, 0.0)                                                  \
  scalar(double, lastRefreshTime, LastRefreshTime, 0.0)                                                \
  scalar(double, expiryTime, ExpiryTime, 0.0)                                                          \
  scalar(Zet::String, ethAddr, EthAddr, {})
// clang-format on

class RemoteSystem : public Zet::Entity {
 public:
  using Msap = RemoteSystemMsap;

  class NotifieeConst : public Zet::Entity::NotifieeConst {
   public:
    LLDP_NOTIFIEE_SLOTS(LLDP_REMOTE_SYSTEM_ATTRIBUTES)
  };

  // `index` is unique within the port and becomes lldpRemIndex.
  RemoteSystem(std::int32_t index, Msap msap);

  // The index as text.
  Zet::Name name() const override;
  std::int32_t index() const { return index_; }
  Msap msap() const { return msap_; }
  LLDP_ATTRIBUTE_ACCESSORS(LLDP_REMOTE_SYSTEM_ATTRIBUTES)

 private:
  std::int32_t const index_;
  Msap const msap_;
  LLDP_ATTRIBUTE_FIELDS(LLDP_REMOTE_SYSTEM_ATTRIBUTES)
};

#undef LLDP_REMOTE_SYSTEM_ATTRIBUTES

}  // namespace Lldp
