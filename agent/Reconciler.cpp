#include "Reconciler.h"

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "Snmp/Conversions.h"
#include "Statebase/Statebase.h"
#include "Zet/Assert.h"
#include "Zet/Entity.h"

namespace {

// Snapshots count seconds from the agent's start; entities hold stamps on the clock.
double stampOf(double secondsSinceStart) { return Snmp::uptimeOrigin() + secondsSinceStart; }

// Makes a keyed record collection hold exactly `desired`: the entries whose key
// is gone leave first, then every desired record is written. The entity drops a
// write of the value it holds, so an unchanged entry is not announced.
template <class Entries, class Record, class Del, class Is>
void syncRecords(Entries const& present, std::vector<Record> const& desired, Del const& del, Is const& is) {
  using Key = typename Entries::key_type;
  std::unordered_set<Key> wanted;
  for (Record const& record : desired) {
    wanted.insert(Key(Lldp::recordKey(record)));
  }
  std::vector<Key> stale;
  for (auto const& [key, record] : present) {
    if (!wanted.contains(key)) {
      stale.push_back(key);
    }
  }
  for (Key const& key : stale) {
    del(key);
  }
  for (Record const& record : desired) {
    is(record);
  }
}

void unmountIfOurs(char const* path, Zet::Ptr<Zet::Entity> const& entity) {
  if (entity && Statebase::entity(path) == entity) {
    Statebase::entityDel(path);
  }
}

}  // namespace

Reconciler::~Reconciler() {
  unmountIfOurs(configPath, config_);
  unmountIfOurs(statusPath, status_);
  unmountIfOurs(localSystemPath, localSystem_);
}

std::vector<Reconciler::Port> Reconciler::ports() const {
  std::vector<Port> result;
  result.reserve(ports_.size());
  for (PortEntry const& entry : ports_) {
    result.push_back(entry.port);
  }
  return result;
}

void Reconciler::apply(DesiredState const& state) {
  bool const first = !config_;
  if (first) {
    config_ = Zet::makePtr<Lldp::Config>();
    status_ = Zet::makePtr<Lldp::AllStatus>();
    localSystem_ = Zet::makePtr<Lldp::LocalSystem>();
  }

  config_->messageTxIntervalIs(state.config.messageTxInterval);
  config_->messageTxHoldIs(state.config.messageTxHold);
  config_->reinitDelayIs(state.config.reinitDelay);
  config_->txDelayIs(state.config.txDelay);

  applyLocalSystem(state.localSystem);

  // Removals first, so that a number or name that moves to another port is free when it arrives.
  removeStalePorts(state.ports);
  std::unordered_map<Ondo::IntfId, PortEntry*> kept;
  for (PortEntry& entry : ports_) {
    kept.emplace(entry.port.name, &entry);
  }
  std::vector<PortEntry> ordered;
  ordered.reserve(state.ports.size());
  for (DesiredPort const& desired : state.ports) {
    if (auto const it = kept.find(desired.name); it != kept.end()) {
      applyPort(*it->second, desired);
      ordered.push_back(std::move(*it->second));
      kept.erase(it);
    } else {
      ordered.push_back(makePort(desired));
    }
  }
  ports_ = std::move(ordered);

  status_->remTablesInsertsIs(state.status.remTablesInserts);
  status_->remTablesDeletesIs(state.status.remTablesDeletes);
  status_->remTablesDropsIs(state.status.remTablesDrops);
  status_->remTablesAgeoutsIs(state.status.remTablesAgeouts);
  // Last: whoever wakes on the change time finds the tables and counters it announces.
  status_->remTablesLastChangeTimeIs(stampOf(state.status.remTablesLastChangeTime));

  if (first) {
    Statebase::entityIs(configPath, config_);
    Statebase::entityIs(statusPath, status_);
    Statebase::entityIs(localSystemPath, localSystem_);
  }
}

void Reconciler::applyLocalSystem(DesiredLocalSystem const& desired) {
  Lldp::LocalSystem& local = *localSystem_;
  local.chassisIdentifierIs(desired.chassisIdSubtype, desired.chassisId);
  local.sysNameIs(desired.sysName);
  local.sysDescIs(desired.sysDesc);
  local.sysCapSupportedIs(desired.sysCapSupported);
  local.sysCapEnabledIs(desired.sysCapEnabled);

  // A priority must name an address that is there when it is announced: priorities
  // that go or change leave before any address does, and new ones come after all addresses.
  std::map<Lldp::ManAddrPriority, Lldp::ManagementAddress::Key> wanted;
  for (DesiredManAddrPriority const& entry : desired.managementAddressPrio) {
    wanted.insert_or_assign(entry.priority, entry.address);
  }
  std::vector<Lldp::ManAddrPriority> stale;
  for (auto const& [priority, key] : local.managementAddressPrio()) {
    auto const it = wanted.find(priority);
    if (it == wanted.end() || !(it->second == key)) {
      stale.push_back(priority);
    }
  }
  for (Lldp::ManAddrPriority const& priority : stale) {
    local.managementAddressPrioDel(priority);
  }
  syncRecords(
      local.managementAddress(), desired.managementAddress,
      [&](Lldp::ManagementAddress::Key const& key) { local.managementAddressDel(key); },
      [&](Lldp::ManagementAddress const& address) { local.managementAddressIs(address); });
  for (auto const& [priority, key] : wanted) {
    ZET_ASSERT(local.managementAddressHas(key));
    local.managementAddressPrioIs(priority, key);
  }
}

void Reconciler::removeStalePorts(std::vector<DesiredPort> const& desired) {
  std::unordered_map<Ondo::IntfId, Interface::EthPortId> numbers;
  for (DesiredPort const& port : desired) {
    numbers.emplace(port.name, port.number);
  }
  // A port that keeps its name but changes its number leaves and joins again:
  // the MIB's rows of a port are keyed by its number.
  std::erase_if(ports_, [&](PortEntry const& entry) {
    auto const it = numbers.find(entry.port.name);
    if (it != numbers.end() && it->second == entry.port.number) {
      return false;
    }
    status_->portStatusDel(entry.port.name);
    localSystem_->localPortDel(entry.port.name);
    return true;
  });
}

Reconciler::PortEntry Reconciler::makePort(DesiredPort const& desired) {
  PortEntry entry;
  entry.port.name = desired.name;
  entry.port.number = desired.number;
  entry.port.portConfig = Zet::makePtr<Lldp::PortConfig>();
  entry.port.portStatus = Zet::makePtr<Lldp::PortStatus>(desired.name);
  entry.port.localPort = Zet::makePtr<Lldp::LocalPort>(desired.name);
  // Complete before it is published, so that a reader sees the port whole at once.
  applyPort(entry, desired);
  status_->portStatusIs(entry.port.portStatus);
  localSystem_->localPortIs(entry.port.localPort);
  return entry;
}

void Reconciler::applyPort(PortEntry& entry, DesiredPort const& desired) {
  Lldp::PortConfig& config = *entry.port.portConfig;
  config.adminStatusIs(desired.config.adminStatus);
  config.enabledTlvsIs(desired.config.enabledTlvs);
  config.manAddrTxEnableIs(desired.config.manAddrTxEnable);
  config.portVlanTxEnableIs(desired.config.portVlanTxEnable);
  config.dot3EnabledTlvsIs(desired.config.dot3EnabledTlvs);

  Lldp::LocalPort& local = *entry.port.localPort;
  local.portIdSubtypeIs(desired.localPort.portIdSubtype);
  local.portIdIs(desired.localPort.portId);
  local.portDescIs(desired.localPort.portDesc);
  local.portVlanIdIs(desired.localPort.portVlanId);
  local.linkAggStatusIs(desired.localPort.linkAggStatus);
  local.linkAggPortIdIs(desired.localPort.linkAggPortId);
  local.maxFrameSizeIs(desired.localPort.maxFrameSize);

  Lldp::PortStatus& status = *entry.port.portStatus;
  status.txFramesTotalIs(desired.portStatus.txFramesTotal);
  status.rxFramesDiscardedTotalIs(desired.portStatus.rxFramesDiscardedTotal);
  status.rxFramesErrorsIs(desired.portStatus.rxFramesErrors);
  status.rxFramesTotalIs(desired.portStatus.rxFramesTotal);
  status.rxTLVsDiscardedTotalIs(desired.portStatus.rxTLVsDiscardedTotal);
  status.rxTLVsUnrecognizedTotalIs(desired.portStatus.rxTLVsUnrecognizedTotal);
  status.rxAgeoutsTotalIs(desired.portStatus.rxAgeoutsTotal);

  applyNeighbors(entry, desired.neighbors);
}

void Reconciler::applyNeighbors(PortEntry& entry, std::vector<DesiredNeighbor> const& desired) {
  Lldp::PortStatus& status = *entry.port.portStatus;
  std::unordered_map<std::int32_t, DesiredNeighbor const*> wanted;
  for (DesiredNeighbor const& neighbor : desired) {
    wanted.emplace(neighbor.index, &neighbor);
  }
  // A neighbour under its index is an identity: a new msap is another neighbour,
  // told as the old one's removal before the new one's insertion.
  std::erase_if(entry.neighbors, [&](auto const& present) {
    auto const& [index, neighbor] = present;
    auto const it = wanted.find(index);
    if (it != wanted.end() && it->second->msap == neighbor->msap()) {
      return false;
    }
    status.remoteSystemByMsapDel(neighbor->msap());
    status.remoteSystemDel(index);
    return true;
  });
  for (DesiredNeighbor const& neighbor : desired) {
    if (auto const it = entry.neighbors.find(neighbor.index); it != entry.neighbors.end()) {
      applyNeighbor(*it->second, neighbor);
      continue;
    }
    auto const added = Zet::makePtr<Lldp::RemoteSystem>(neighbor.index, neighbor.msap);
    // Filled first: a new neighbour's collections are copied once, when it arrives.
    applyNeighbor(*added, neighbor);
    status.remoteSystemIs(added);
    status.remoteSystemByMsapIs(added);
    entry.neighbors.emplace(neighbor.index, added);
  }
}

void Reconciler::applyNeighbor(Lldp::RemoteSystem& neighbor, DesiredNeighbor const& desired) const {
  neighbor.portDescIs(desired.portDesc);
  neighbor.sysNameIs(desired.sysName);
  neighbor.sysDescIs(desired.sysDesc);
  neighbor.sysCapSupportedIs(desired.sysCapSupported);
  neighbor.sysCapEnabledIs(desired.sysCapEnabled);
  syncRecords(
      neighbor.managementAddress(), desired.managementAddress,
      [&](auto const& key) { neighbor.managementAddressDel(key); },
      [&](auto const& record) { neighbor.managementAddressIs(record); });
  syncRecords(
      neighbor.unknownTlv(), desired.unknownTlv, [&](auto const& key) { neighbor.unknownTlvDel(key); },
      [&](auto const& record) { neighbor.unknownTlvIs(record); });
  syncRecords(
      neighbor.unknownOrgDefTlv(), desired.unknownOrgDefTlv,
      [&](auto const& key) { neighbor.unknownOrgDefTlvDel(key); },
      [&](auto const& record) { neighbor.unknownOrgDefTlvIs(record); });
  neighbor.portVlanIdTlvReceivedIs(desired.portVlanIdTlvReceived);
  neighbor.portVlanIdIs(desired.portVlanId);
  syncRecords(
      neighbor.portAndProtocolVlan(), desired.portAndProtocolVlan,
      [&](auto const& key) { neighbor.portAndProtocolVlanDel(key); },
      [&](auto const& record) { neighbor.portAndProtocolVlanIs(record); });
  syncRecords(
      neighbor.vlanName(), desired.vlanName, [&](auto const& key) { neighbor.vlanNameDel(key); },
      [&](auto const& record) { neighbor.vlanNameIs(record); });
  syncRecords(
      neighbor.protocolIdentityInfo(), desired.protocolIdentityInfo,
      [&](auto const& key) { neighbor.protocolIdentityInfoDel(key); },
      [&](auto const& record) { neighbor.protocolIdentityInfoIs(record); });
  neighbor.linkAggregationTlvReceivedIs(desired.linkAggregationTlvReceived);
  neighbor.linkAggregationInfoIs(desired.linkAggregationInfo);
  neighbor.macPhyConfigStatusTlvReceivedIs(desired.macPhyConfigStatusTlvReceived);
  neighbor.macPhyConfigStatusInfoIs(desired.macPhyConfigStatusInfo);
  neighbor.powerViaMdiTlvReceivedIs(desired.powerViaMdiTlvReceived);
  neighbor.powerViaMdiInfoIs(desired.powerViaMdiInfo);
  neighbor.maximumFrameSizeTlvReceivedIs(desired.maximumFrameSizeTlvReceived);
  neighbor.maximumFrameSizeInfoIs(desired.maximumFrameSizeInfo);
  // Last: the time filter reads it as the moment the rest changed.
  neighbor.lastChangeTimeIs(stampOf(desired.lastChangeTime));
}
