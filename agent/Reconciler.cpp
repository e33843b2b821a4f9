#include "Reconciler.h"

#include <algorithm>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
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
#include "Zet/System.h"

namespace {

// Snapshots count seconds from the agent's start; entities hold stamps on the clock.
double stampOf(double secondsSinceStart) { return Snmp::uptimeOrigin() + secondsSinceStart; }

// Writes `wanted` when the entity holds another value; true when it did.
template <class Entity, class T>
bool update(Entity& entity, T (Entity::*get)() const, void (Entity::*set)(T const&), T const& wanted) {
  if ((entity.*get)() == wanted) {
    return false;
  }
  (entity.*set)(wanted);
  return true;
}

// Makes a keyed record collection hold exactly `desired`: the entries whose key
// is gone leave first, then every desired record is written. The entity drops a
// write of the value it holds, so an unchanged entry is not announced. True
// when anything differed.
template <class Entries, class Record, class Del, class Is>
bool syncRecords(Entries const& present, std::vector<Record> const& desired, Del const& del, Is const& is) {
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
  bool changed = !stale.empty();
  for (Record const& record : desired) {
    auto const it = present.find(Key(Lldp::recordKey(record)));
    changed = changed || it == present.end() || !(it->second == record);
    is(record);
  }
  return changed;
}

// A neighbour as an operator knows it: by the name it announces, else by its chassis ID.
std::string neighborName(Lldp::RemoteSystem const& neighbor, Ondo::IntfId const& port) {
  std::string name = neighbor.sysName().value().stdString();
  if (name.empty()) {
    // Printable identifiers (names, addresses as text) as they are, others (MACs) as hex pairs.
    std::string const id = neighbor.msap().chassisId.value().stdString();
    bool const printable = !id.empty() && std::all_of(id.begin(), id.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
    std::ostringstream text;
    text << "chassis ";
    for (std::size_t i = 0; !printable && i < id.size(); ++i) {
      text << (i > 0 ? ":" : "") << std::hex << std::setw(2) << std::setfill('0')
           << static_cast<unsigned>(static_cast<unsigned char>(id[i]));
    }
    name = printable ? "chassis " + id : text.str();
  }
  return name + " on " + port.stringValue().stdString();
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

Reconciler::Report Reconciler::apply(DesiredState const& state) {
  Pass pass(*this, state);
  while (pass.step()) {
  }
  return pass.finish();
}

Reconciler::Pass::Pass(Reconciler& reconciler, DesiredState const& state)
    : reconciler_(reconciler), state_(state), first_(!reconciler.config_) {
  Reconciler& r = reconciler_;
  if (first_) {
    r.config_ = Zet::makePtr<Lldp::Config>();
    r.status_ = Zet::makePtr<Lldp::AllStatus>();
    r.localSystem_ = Zet::makePtr<Lldp::LocalSystem>();
    // No change yet: sysUpTime 0, not a stamp from before the agent started.
    r.status_->remTablesLastChangeTimeIs(stampOf(0.0));
  }
  changes_.now = Zet::System::currentTime();

  r.config_->messageTxIntervalIs(state.config.messageTxInterval);
  r.config_->messageTxHoldIs(state.config.messageTxHold);
  r.config_->reinitDelayIs(state.config.reinitDelay);
  r.config_->txDelayIs(state.config.txDelay);

  r.applyLocalSystem(state.localSystem);

  // Removals first, so that a number or name that moves to another port is free when it arrives.
  r.removeStalePorts(state.ports, changes_);
  // Until finish() the reconciler's ports stay where they are: these point into them.
  for (PortEntry& entry : r.ports_) {
    kept_.emplace(entry.port.name, &entry);
  }
  placed_.reserve(state.ports.size());
}

bool Reconciler::Pass::step() {
  if (placed_.size() == state_.ports.size()) {
    return false;
  }
  DesiredPort const& desired = state_.ports[placed_.size()];
  if (auto const it = kept_.find(desired.name); it != kept_.end()) {
    reconciler_.applyPort(*it->second, desired, changes_);
    placed_.push_back(it->second);
    kept_.erase(it);
  } else {
    made_.push_back(reconciler_.makePort(desired, changes_));
    placed_.push_back(nullptr);
  }
  return placed_.size() < state_.ports.size();
}

Reconciler::Report Reconciler::Pass::finish() {
  Reconciler& r = reconciler_;
  std::vector<PortEntry> ordered;
  ordered.reserve(placed_.size());
  auto made = made_.begin();
  for (PortEntry* const entry : placed_) {
    ordered.push_back(entry ? std::move(*entry) : std::move(*made++));
  }
  r.ports_ = std::move(ordered);

  r.applyStatus(state_.status, changes_);

  if (first_) {
    Statebase::entityIs(configPath, r.config_);
    Statebase::entityIs(statusPath, r.status_);
    Statebase::entityIs(localSystemPath, r.localSystem_);
  }
  // Sorted: neighbours are held by hash, and a log should read the same every time.
  for (auto* names : {&changes_.report.portsJoined, &changes_.report.portsLeft, &changes_.report.neighborsAdded,
                      &changes_.report.neighborsRemoved, &changes_.report.neighborsChanged}) {
    std::sort(names->begin(), names->end());
  }
  return std::move(changes_.report);
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
  // The mirror keeps the value a local address had when it came, so one that
  // changes under its key goes (with its priority) and comes back.
  std::unordered_set<Lldp::ManagementAddress::Key> changed;
  for (Lldp::ManagementAddress const& address : desired.managementAddress) {
    auto const it = local.managementAddress().find(address.key());
    if (it != local.managementAddress().end() && !(it->second == address)) {
      changed.insert(address.key());
    }
  }
  std::vector<Lldp::ManAddrPriority> stale;
  for (auto const& [priority, key] : local.managementAddressPrio()) {
    auto const it = wanted.find(priority);
    if (it == wanted.end() || !(it->second == key) || changed.contains(key)) {
      stale.push_back(priority);
    }
  }
  for (Lldp::ManAddrPriority const& priority : stale) {
    local.managementAddressPrioDel(priority);
  }
  for (Lldp::ManagementAddress::Key const& key : changed) {
    local.managementAddressDel(key);
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

void Reconciler::applyStatus(DesiredStatus const& desired, RemoteChanges& changes) {
  Lldp::AllStatus& status = *status_;
  double const changeTime = status.remTablesLastChangeTime();
  status.remTablesInsertsIs(desired.remTablesInserts.value_or(status.remTablesInserts() + changes.inserts));
  status.remTablesDeletesIs(desired.remTablesDeletes.value_or(status.remTablesDeletes() + changes.deletes));
  status.remTablesDropsIs(desired.remTablesDrops.value_or(status.remTablesDrops()));
  status.remTablesAgeoutsIs(desired.remTablesAgeouts.value_or(status.remTablesAgeouts()));
  // Last: whoever wakes on the change time finds the tables and counters it announces.
  if (desired.remTablesLastChangeTime) {
    status.remTablesLastChangeTimeIs(stampOf(*desired.remTablesLastChangeTime));
  } else if (changes.any) {
    status.remTablesLastChangeTimeIs(changes.now);
  }
  changes.report.remTablesLastChangeTimeMoved = status.remTablesLastChangeTime() != changeTime;
}

void Reconciler::removeStalePorts(std::vector<DesiredPort> const& desired, RemoteChanges& changes) {
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
    // Its neighbours go with it, as they do when a port goes down.
    for (auto const& [index, neighbor] : entry.neighbors) {
      changes.report.neighborsRemoved.push_back(neighborName(*neighbor, entry.port.name));
    }
    changes.report.portsLeft.push_back(entry.port.name.stringValue().stdString());
    changes.deletes += static_cast<std::uint32_t>(entry.neighbors.size());
    changes.any = changes.any || !entry.neighbors.empty();
    if (portObserver_) {
      portObserver_->onPortLeaving(entry.port);
    }
    status_->portStatusDel(entry.port.name);
    localSystem_->localPortDel(entry.port.name);
    if (portObserver_) {
      portObserver_->onPortLeft(entry.port);
    }
    return true;
  });
}

Reconciler::PortEntry Reconciler::makePort(DesiredPort const& desired, RemoteChanges& changes) {
  PortEntry entry;
  entry.port.name = desired.name;
  entry.port.number = desired.number;
  entry.port.portConfig = Zet::makePtr<Lldp::PortConfig>();
  entry.port.portStatus = Zet::makePtr<Lldp::PortStatus>(desired.name);
  entry.port.localPort = Zet::makePtr<Lldp::LocalPort>(desired.name);
  // Complete before it is published, so that a reader sees the port whole at once.
  applyPort(entry, desired, changes);
  status_->portStatusIs(entry.port.portStatus);
  localSystem_->localPortIs(entry.port.localPort);
  changes.report.portsJoined.push_back(desired.name.stringValue().stdString());
  if (portObserver_) {
    portObserver_->onPortJoined(entry.port);
  }
  return entry;
}

void Reconciler::applyPort(PortEntry& entry, DesiredPort const& desired, RemoteChanges& changes) {
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

  applyNeighbors(entry, desired.neighbors, changes);
}

void Reconciler::applyNeighbors(PortEntry& entry, std::vector<DesiredNeighbor> const& desired,
                                RemoteChanges& changes) {
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
    changes.report.neighborsRemoved.push_back(neighborName(*neighbor, entry.port.name));
    status.remoteSystemByMsapDel(neighbor->msap());
    status.remoteSystemDel(index);
    ++changes.deletes;
    changes.any = true;
    return true;
  });
  for (DesiredNeighbor const& neighbor : desired) {
    if (auto const it = entry.neighbors.find(neighbor.index); it != entry.neighbors.end()) {
      bool const changed = applyNeighbor(*it->second, neighbor, false, changes.now);
      changes.any = changes.any || changed;
      if (changed) {
        changes.report.neighborsChanged.push_back(neighborName(*it->second, entry.port.name));
      }
      continue;
    }
    auto const added = Zet::makePtr<Lldp::RemoteSystem>(neighbor.index, neighbor.msap);
    // Filled first: a new neighbour's collections are copied once, when it arrives.
    applyNeighbor(*added, neighbor, true, changes.now);
    ++changes.inserts;
    changes.any = true;
    status.remoteSystemIs(added);
    status.remoteSystemByMsapIs(added);
    entry.neighbors.emplace(neighbor.index, added);
    changes.report.neighborsAdded.push_back(neighborName(*added, entry.port.name));
  }
}

bool Reconciler::applyNeighbor(Lldp::RemoteSystem& neighbor, DesiredNeighbor const& desired, bool arriving,
                               double now) const {
  using R = Lldp::RemoteSystem;
  bool changed = arriving;
  // `|=`, not `||`: every write is made, whatever changed before it.
  changed |= update(neighbor, &R::portDesc, &R::portDescIs, desired.portDesc);
  changed |= update(neighbor, &R::sysName, &R::sysNameIs, desired.sysName);
  changed |= update(neighbor, &R::sysDesc, &R::sysDescIs, desired.sysDesc);
  changed |= update(neighbor, &R::sysCapSupported, &R::sysCapSupportedIs, desired.sysCapSupported);
  changed |= update(neighbor, &R::sysCapEnabled, &R::sysCapEnabledIs, desired.sysCapEnabled);
  changed |= syncRecords(
      neighbor.managementAddress(), desired.managementAddress,
      [&](auto const& key) { neighbor.managementAddressDel(key); },
      [&](auto const& record) { neighbor.managementAddressIs(record); });
  changed |= syncRecords(
      neighbor.unknownTlv(), desired.unknownTlv, [&](auto const& key) { neighbor.unknownTlvDel(key); },
      [&](auto const& record) { neighbor.unknownTlvIs(record); });
  changed |= syncRecords(
      neighbor.unknownOrgDefTlv(), desired.unknownOrgDefTlv,
      [&](auto const& key) { neighbor.unknownOrgDefTlvDel(key); },
      [&](auto const& record) { neighbor.unknownOrgDefTlvIs(record); });
  changed |= update(neighbor, &R::portVlanIdTlvReceived, &R::portVlanIdTlvReceivedIs, desired.portVlanIdTlvReceived);
  changed |= update(neighbor, &R::portVlanId, &R::portVlanIdIs, desired.portVlanId);
  changed |= syncRecords(
      neighbor.portAndProtocolVlan(), desired.portAndProtocolVlan,
      [&](auto const& key) { neighbor.portAndProtocolVlanDel(key); },
      [&](auto const& record) { neighbor.portAndProtocolVlanIs(record); });
  changed |= syncRecords(
      neighbor.vlanName(), desired.vlanName, [&](auto const& key) { neighbor.vlanNameDel(key); },
      [&](auto const& record) { neighbor.vlanNameIs(record); });
  changed |= syncRecords(
      neighbor.protocolIdentityInfo(), desired.protocolIdentityInfo,
      [&](auto const& key) { neighbor.protocolIdentityInfoDel(key); },
      [&](auto const& record) { neighbor.protocolIdentityInfoIs(record); });
  changed |= update(neighbor, &R::linkAggregationTlvReceived, &R::linkAggregationTlvReceivedIs,
                    desired.linkAggregationTlvReceived);
  changed |= update(neighbor, &R::linkAggregationInfo, &R::linkAggregationInfoIs, desired.linkAggregationInfo);
  changed |= update(neighbor, &R::macPhyConfigStatusTlvReceived, &R::macPhyConfigStatusTlvReceivedIs,
                    desired.macPhyConfigStatusTlvReceived);
  changed |= update(neighbor, &R::macPhyConfigStatusInfo, &R::macPhyConfigStatusInfoIs,
                    desired.macPhyConfigStatusInfo);
  changed |= update(neighbor, &R::powerViaMdiTlvReceived, &R::powerViaMdiTlvReceivedIs,
                    desired.powerViaMdiTlvReceived);
  changed |= update(neighbor, &R::powerViaMdiInfo, &R::powerViaMdiInfoIs, desired.powerViaMdiInfo);
  changed |= update(neighbor, &R::maximumFrameSizeTlvReceived, &R::maximumFrameSizeTlvReceivedIs,
                    desired.maximumFrameSizeTlvReceived);
  changed |= update(neighbor, &R::maximumFrameSizeInfo, &R::maximumFrameSizeInfoIs, desired.maximumFrameSizeInfo);
  // Last: the time filter reads it as the moment the rest changed.
  if (desired.lastChangeTime) {
    changed |= update(neighbor, &R::lastChangeTime, &R::lastChangeTimeIs, stampOf(*desired.lastChangeTime));
  } else if (changed) {
    neighbor.lastChangeTimeIs(now);
  }
  return changed;
}
