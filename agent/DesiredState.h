#pragma once
// A complete snapshot of the LLDP state that a feed wants served, in plain
// values: a scenario file or the LLDP daemon fills it, and the Reconciler makes
// the state database match it.
//
// Times are seconds since the agent's start (the uptime origin), not stamps on
// the clock, so that a snapshot yields the same TimeTicks in every run.
// Defaults are those of the entities the values end up in. What an LLDP agent
// keeps by itself (the remote tables' counters and change times) is optional:
// left empty, the Reconciler works it out from what the snapshot changed; given,
// it is served as given. Within each
// collection the keys are unique, and every priority names an address of its
// local system; the feeds see to both.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "Ondo/IntfId.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/String.h"

// Lldp::Config; the initial values are the LLDP-MIB's DEFVALs.
struct DesiredConfig {
  std::int32_t messageTxInterval = 30;
  std::int32_t messageTxHold = 4;  // served as lldpMessageTxHoldMultiplier
  std::int32_t reinitDelay = 2;
  std::int32_t txDelay = 2;

  friend bool operator==(DesiredConfig const&, DesiredConfig const&) = default;
};

// The counters of Lldp::AllStatus. Empty: the change time moves to the moment
// of an apply that changed the remote tables, inserts and deletes count the
// neighbours that came and went, drops and ageouts keep their value.
struct DesiredStatus {
  std::optional<double> remTablesLastChangeTime;  // seconds since start
  std::optional<std::uint32_t> remTablesInserts;
  std::optional<std::uint32_t> remTablesDeletes;
  std::optional<std::uint32_t> remTablesDrops;
  std::optional<std::uint32_t> remTablesAgeouts;

  friend bool operator==(DesiredStatus const&, DesiredStatus const&) = default;
};

// One entry of Lldp::LocalSystem::managementAddressPrio.
struct DesiredManAddrPriority {
  Lldp::ManAddrPriority priority;
  Lldp::ManagementAddress::Key address;

  friend bool operator==(DesiredManAddrPriority const&, DesiredManAddrPriority const&) = default;
};

// Lldp::LocalSystem without its ports, which come with each DesiredPort.
struct DesiredLocalSystem {
  std::int32_t chassisIdSubtype = 0;  // an LldpChassisIdSubtype, served as it stands
  Zet::String chassisId;
  Zet::String sysName;
  Zet::String sysDesc;
  Lldp::SystemCapabilitiesMap sysCapSupported;
  Lldp::SystemCapabilitiesMap sysCapEnabled;
  std::vector<Lldp::ManagementAddress> managementAddress;
  std::vector<DesiredManAddrPriority> managementAddressPrio;

  friend bool operator==(DesiredLocalSystem const&, DesiredLocalSystem const&) = default;
};

// An Lldp::RemoteSystem: what one neighbour announced on a port.
struct DesiredNeighbor {
  std::int32_t index = 1;  // lldpRemIndex, unique within the port
  Lldp::RemoteSystemMsap msap;
  Lldp::BoundedString255 portDesc;
  Lldp::BoundedString255 sysName;
  Lldp::BoundedString255 sysDesc;
  Lldp::SystemCapabilitiesMap sysCapSupported;
  Lldp::SystemCapabilitiesMap sysCapEnabled;
  std::vector<Lldp::ManagementAddress> managementAddress;
  std::vector<Lldp::UnknownTlv> unknownTlv;
  std::vector<Lldp::UnknownOrgDefTlv> unknownOrgDefTlv;
  bool portVlanIdTlvReceived = false;
  Bridging::VlanIdOrNone portVlanId;
  std::vector<Lldp::PortAndProtocolVlan> portAndProtocolVlan;
  std::vector<Lldp::VlanName> vlanName;
  std::vector<Lldp::ProtocolIdentityInfo> protocolIdentityInfo;
  bool linkAggregationTlvReceived = false;
  Lldp::LinkAggregationInfo linkAggregationInfo;
  bool macPhyConfigStatusTlvReceived = false;
  Lldp::MacPhyConfigStatusInfo macPhyConfigStatusInfo;
  bool powerViaMdiTlvReceived = false;
  Lldp::PowerViaMdiInfo powerViaMdiInfo;
  bool maximumFrameSizeTlvReceived = false;
  std::uint16_t maximumFrameSizeInfo = 0;
  // Seconds since start; lldpRemTimeMark. Empty: the moment of the apply that
  // brought the neighbour or last changed it.
  std::optional<double> lastChangeTime;

  friend bool operator==(DesiredNeighbor const&, DesiredNeighbor const&) = default;
};

// Lldp::PortConfig. The TLV sets are raw, as the entity keeps them.
struct DesiredPortConfig {
  Lldp::AdminStatus adminStatus = Lldp::AdminStatus::txAndRx;
  std::uint32_t enabledTlvs = 0;
  bool manAddrTxEnable = false;
  bool portVlanTxEnable = false;
  std::uint32_t dot3EnabledTlvs = 0;

  friend bool operator==(DesiredPortConfig const&, DesiredPortConfig const&) = default;
};

// Lldp::LocalPort: what this system announces on the port.
struct DesiredLocalPort {
  Lldp::PortIdSubtype portIdSubtype{};
  Lldp::PortId portId;
  Lldp::BoundedString255 portDesc;
  Bridging::VlanIdOrNone portVlanId;
  Lldp::LinkAggStatusMap linkAggStatus;
  std::int32_t linkAggPortId = 0;
  std::uint16_t maxFrameSize = 0;

  friend bool operator==(DesiredLocalPort const&, DesiredLocalPort const&) = default;
};

// The counters of Lldp::PortStatus that the MIB shows.
struct DesiredPortStatus {
  std::uint32_t txFramesTotal = 0;
  std::uint32_t rxFramesDiscardedTotal = 0;
  std::uint32_t rxFramesErrors = 0;
  std::uint32_t rxFramesTotal = 0;
  std::uint32_t rxTLVsDiscardedTotal = 0;
  std::uint32_t rxTLVsUnrecognizedTotal = 0;
  std::uint32_t rxAgeoutsTotal = 0;

  friend bool operator==(DesiredPortStatus const&, DesiredPortStatus const&) = default;
};

// The interface behind a port, for IF-MIB's ifTable and ifXTable (master
// mode only). The enumerations hold IF-MIB's numbers.
struct DesiredInterface {
  std::optional<std::string> ifDescr;  // empty: the port's name
  std::int32_t ifType = 6;             // IANAifType ethernetCsmacd
  std::int32_t ifMtu = 1500;
  std::uint64_t speed = 0;             // bits per second; 0: unknown
  std::optional<Zet::String> physAddress;  // empty: the port ID when it is a MAC address
  std::string ifAlias;
  std::int32_t adminStatus = 1;              // up
  std::optional<std::int32_t> operStatus;    // empty: as adminStatus, up or down

  friend bool operator==(DesiredInterface const&, DesiredInterface const&) = default;
};

// One port: its name and the number the MIB shows for it are paired here and
// nowhere else.
struct DesiredPort {
  Ondo::IntfId name;
  Interface::EthPortId number;
  DesiredPortConfig config;
  DesiredLocalPort localPort;
  DesiredPortStatus portStatus;
  std::vector<DesiredNeighbor> neighbors;  // indexes unique within the port
  DesiredInterface interface;

  friend bool operator==(DesiredPort const&, DesiredPort const&) = default;
};

// SNMPv2-MIB's system group (master mode only). Empty: worked out from the
// local system where it can be, else net-snmp's value (or --config's).
struct DesiredSystem {
  std::optional<std::string> sysDescr;
  std::optional<Snmp::ObjectIdentifier> sysObjectID;
  std::optional<std::string> sysContact;
  std::optional<std::string> sysName;
  std::optional<std::string> sysLocation;
  std::optional<std::int32_t> sysServices;

  friend bool operator==(DesiredSystem const&, DesiredSystem const&) = default;
};

struct DesiredState {
  DesiredConfig config;
  DesiredStatus status;
  DesiredLocalSystem localSystem;
  std::vector<DesiredPort> ports;  // names and numbers unique
  DesiredSystem system;

  friend bool operator==(DesiredState const&, DesiredState const&) = default;
};
