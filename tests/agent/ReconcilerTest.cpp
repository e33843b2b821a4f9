// The reconciler as the plug-in sees it: entities in the state database and
// the notifications that their changes deliver.

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "DesiredState.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "Reconciler.h"
#include "Scenario.h"
#include "Snmp/Conversions.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"
#include "Zet/System.h"

namespace {

using Log = std::vector<std::string>;

constexpr double origin = 1000.0;

// Attaches as a reactor does: notifier, registration, delivery on.
template <class Watcher, class Notifier>
void attach(Watcher& watcher, Zet::Ptr<Notifier> const& notifier) {
  watcher.notifierIs(notifier);
  watcher.isRegisteredNotifieeIs(true);
  watcher.hasNotificationActiveIs(true);
}

template <class T>
std::string text(T const& value) {
  std::ostringstream os;
  os << value;
  return os.str();
}

// Each watcher logs a delivery with what the notifier holds at that moment, as a
// level-triggered handler would read it.
class StatusWatcher : public Lldp::AllStatus::NotifieeConst {
 public:
  explicit StatusWatcher(Log& log) : log_(log) {}
  void onRemTablesLastChangeTime() override {
    log_.push_back("remTablesLastChangeTime " + text(status().remTablesLastChangeTime() - origin));
  }
  void onRemTablesInserts() override { log_.push_back("remTablesInserts " + text(status().remTablesInserts())); }
  void onRemTablesDeletes() override { log_.push_back("remTablesDeletes " + text(status().remTablesDeletes())); }
  void onRemTablesAgeouts() override { log_.push_back("remTablesAgeouts " + text(status().remTablesAgeouts())); }
  void onPortStatus(Ondo::IntfId const& id) override {
    log_.push_back("portStatus " + text(id) + (status().portStatusHas(id) ? " present" : " absent"));
  }

 private:
  Lldp::AllStatus const& status() const { return *static_cast<Lldp::AllStatus const*>(notifier()); }
  Log& log_;
};

class LocalSystemWatcher : public Lldp::LocalSystem::NotifieeConst {
 public:
  explicit LocalSystemWatcher(Log& log) : log_(log) {}
  void onChassisIdentifier() override { log_.push_back("chassisIdentifier"); }
  void onSysName() override { log_.push_back("sysName " + text(local().sysName())); }
  void onLocalPort(Ondo::IntfId const& id) override {
    log_.push_back("localPort " + text(id) + (local().localPortHas(id) ? " present" : " absent"));
  }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    log_.push_back(
        "address " + text(key.manAddr) +
        (local().managementAddressHas(key) ? " ifId " + text(local().managementAddress(key).ifId) : " absent"));
  }
  // Logs the priority's own number and, when it is present, whether its address is there.
  void onManagementAddressPrio(Lldp::ManAddrPriority const& prio) override {
    std::string entry = "priority " + text(prio.priority);
    if (local().managementAddressPrioHas(prio)) {
      auto const key = local().managementAddressPrio(prio);
      entry += " names " + text(key.manAddr) + (local().managementAddressHas(key) ? "" : " MISSING");
    } else {
      entry += " absent";
    }
    log_.push_back(entry);
  }

 private:
  Lldp::LocalSystem const& local() const { return *static_cast<Lldp::LocalSystem const*>(notifier()); }
  Log& log_;
};

class PortStatusWatcher : public Lldp::PortStatus::NotifieeConst {
 public:
  explicit PortStatusWatcher(Log& log) : log_(log) {}
  void onRxFramesTotal() override { log_.push_back("rxFramesTotal " + text(port().rxFramesTotal())); }
  // A neighbour that arrives is read whole, as the new neighbour's reactor copies it once.
  void onRemoteSystem(std::int32_t const& index) override {
    auto const neighbor = port().remoteSystem(index);
    if (!neighbor) {
      log_.push_back("remoteSystem " + text(index) + " absent");
      return;
    }
    log_.push_back("remoteSystem " + text(index) + " " + text(neighbor->sysName()) + " vlanNames " +
                   text(neighbor->vlanNameCount()) + " at " + text(neighbor->lastChangeTime() - origin));
  }
  void onRemoteSystemByMsap(Lldp::RemoteSystem::Msap const& msap) override {
    log_.push_back("remoteSystemByMsap " + text(msap.chassisId) +
                   (port().remoteSystemByMsapHas(msap) ? " present" : " absent"));
  }

 private:
  Lldp::PortStatus const& port() const { return *static_cast<Lldp::PortStatus const*>(notifier()); }
  Log& log_;
};

class NeighborWatcher : public Lldp::RemoteSystem::NotifieeConst {
 public:
  explicit NeighborWatcher(Log& log) : log_(log) {}
  void onPortDesc() override { log_.push_back("portDesc"); }
  void onSysName() override { log_.push_back("sysName " + text(neighbor().sysName())); }
  void onSysDesc() override { log_.push_back("sysDesc"); }
  void onSysCapSupported() override { log_.push_back("sysCapSupported"); }
  void onSysCapEnabled() override { log_.push_back("sysCapEnabled"); }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    log_.push_back("managementAddress " + text(key.manAddr));
  }
  void onUnknownTlv(std::uint32_t const& type) override { log_.push_back("unknownTlv " + text(type)); }
  void onUnknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key const& key) override {
    log_.push_back("unknownOrgDefTlv " + text(key));
  }
  void onPortVlanIdTlvReceived() override { log_.push_back("portVlanIdTlvReceived"); }
  void onPortVlanId() override { log_.push_back("portVlanId"); }
  void onPortAndProtocolVlan(Bridging::VlanIdOrNone const& id) override {
    log_.push_back("portAndProtocolVlan " + text(id));
  }
  void onVlanName(Bridging::VlanId const& id) override {
    log_.push_back("vlanName " + text(id) +
                   (neighbor().vlanNameHas(id) ? " " + text(neighbor().vlanName(id).vlanName) : " absent"));
  }
  void onProtocolIdentityInfo(std::int32_t const& index) override {
    log_.push_back("protocolIdentityInfo " + text(index));
  }
  void onLinkAggregationInfo() override { log_.push_back("linkAggregationInfo"); }
  void onMacPhyConfigStatusInfo() override { log_.push_back("macPhyConfigStatusInfo"); }
  void onPowerViaMdiInfo() override { log_.push_back("powerViaMdiInfo"); }
  void onMaximumFrameSizeInfo() override { log_.push_back("maximumFrameSizeInfo"); }
  void onLastChangeTime() override { log_.push_back("lastChangeTime " + text(neighbor().lastChangeTime() - origin)); }

 private:
  Lldp::RemoteSystem const& neighbor() const { return *static_cast<Lldp::RemoteSystem const*>(notifier()); }
  Log& log_;
};

constexpr char const* labJson = R"({
  "config": {"messageTxInterval": 10, "messageTxHold": 3, "reinitDelay": 4, "txDelay": 5},
  "status": {"remTablesLastChangeTime": 6.5, "remTablesInserts": 3, "remTablesDeletes": 1,
             "remTablesDrops": 2, "remTablesAgeouts": 4},
  "localSystem": {
    "chassisIdSubtype": "macAddress", "chassisId": "02:00:00:00:00:01", "sysName": "sw1", "sysDesc": "lab switch",
    "sysCapSupported": ["bridge", "router"], "sysCapEnabled": ["bridge"],
    "managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "ifSubtype": "ifIndex", "ifId": 10, "priority": 1},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "ifId": 20, "priority": 2},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.3", "ifId": 30}]},
  "ports": [
    {"name": "e1",
     "config": {"adminStatus": "rxOnly", "enabledTlvs": 5, "manAddrTxEnable": true, "dot3EnabledTlvs": 3},
     "localPort": {"portIdSubtype": "interfaceName", "portId": "e1", "portDesc": "uplink", "portVlanId": 7,
                   "linkAggStatus": 3, "linkAggPortId": 99, "maxFrameSize": 9000},
     "portStatus": {"txFramesTotal": 11, "rxFramesTotal": 12, "rxAgeoutsTotal": 13},
     "neighbors": [
       {"index": 1, "msap": {"chassisIdSubtype": "local", "chassisId": "alpha", "portIdSubtype": "local",
                             "portId": "p1"},
        "sysName": "alpha", "vlanName": [{"vlanId": 10, "vlanName": "ten"}, {"vlanId": 20, "vlanName": "twenty"}],
        "managementAddress": [{"manAddrSubtype": 1, "manAddr": "198.51.100.1"}],
        "unknownTlv": [{"type": 9, "info": "x"}], "portVlanIdTlvReceived": true, "portVlanId": 10,
        "lastChangeTime": 2.5},
       {"index": 2, "msap": {"chassisIdSubtype": "local", "chassisId": "beta"}, "sysName": "beta",
        "lastChangeTime": 3}]},
    {"name": "e2", "neighbors": [{"msap": {"chassisId": "gamma"}, "sysName": "gamma", "lastChangeTime": 4}]}]})";

class ReconcilerTest : public ::testing::Test {
 protected:
  void SetUp() override { Snmp::uptimeOriginIs(origin); }
  void TearDown() override { Snmp::uptimeOriginIs(0.0); }

  DesiredState const lab_ = parseScenario(labJson, "lab.json");
};

Zet::Ptr<Lldp::RemoteSystem const> neighborOf(Reconciler const& reconciler, char const* port, std::int32_t index) {
  auto const status = reconciler.status()->portStatus(Ondo::IntfId(Zet::String(port)));
  return status ? status->remoteSystem(index) : nullptr;
}

TEST_F(ReconcilerTest, FirstApplyMountsTheThreeEntitiesWithTheFileValues) {
  Reconciler reconciler;
  reconciler.apply(lab_);

  auto const config = reconciler.config();
  auto const status = reconciler.status();
  auto const local = reconciler.localSystem();
  ASSERT_TRUE(config && status && local);
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/config") == config);
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/status/all") == status);
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/localSystem") == local);

  EXPECT_EQ(config->messageTxInterval(), 10);
  EXPECT_EQ(config->messageTxHoldMultiplier(), 3);
  EXPECT_EQ(config->reinitDelay(), 4);
  EXPECT_EQ(config->txDelay(), 5);
  EXPECT_DOUBLE_EQ(status->remTablesLastChangeTime(), origin + 6.5);
  EXPECT_EQ(status->remTablesInserts(), 3u);
  EXPECT_EQ(status->remTablesDeletes(), 1u);
  EXPECT_EQ(status->remTablesDrops(), 2u);
  EXPECT_EQ(status->remTablesAgeouts(), 4u);

  EXPECT_EQ(local->chassisIdSubtype(), 4);
  EXPECT_EQ(local->chassisId().stdString(), std::string("\x02\0\0\0\0\x01", 6));
  EXPECT_EQ(local->sysName(), Zet::String("sw1"));
  EXPECT_EQ(local->sysCapSupported().value(), 0x14u);
  EXPECT_EQ(local->managementAddressCount(), 3u);
  ASSERT_EQ(local->managementAddressPrioCount(), 2u);
  auto const first = local->managementAddressPrio().begin();
  EXPECT_EQ(first->first.priority, 1u);
  EXPECT_EQ(local->managementAddress(first->second).ifId, 10);

  auto const ports = reconciler.ports();
  ASSERT_EQ(ports.size(), 2u);
  EXPECT_EQ(ports[0].name, Ondo::IntfId(Zet::String("e1")));
  EXPECT_EQ(ports[0].number.value(), 1);
  EXPECT_EQ(ports[1].number.value(), 2);
  EXPECT_TRUE(status->portStatus(ports[0].name) == ports[0].portStatus);
  EXPECT_TRUE(local->localPort(ports[1].name) == ports[1].localPort);
  EXPECT_EQ(ports[0].portConfig->adminStatus(), Lldp::AdminStatus::rxOnly);
  EXPECT_EQ(ports[0].portConfig->enabledTlvs(), 5u);
  EXPECT_TRUE(ports[0].portConfig->manAddrTxEnable());
  EXPECT_EQ(ports[0].portConfig->dot3EnabledTlvs(), 3u);
  EXPECT_EQ(ports[1].portConfig->adminStatus(), Lldp::AdminStatus::txAndRx);
  EXPECT_EQ(ports[0].localPort->portDesc().value(), Zet::String("uplink"));
  EXPECT_EQ(ports[0].localPort->portVlanId().value(), 7);
  EXPECT_EQ(ports[0].localPort->linkAggPortId(), 99);
  EXPECT_EQ(ports[0].localPort->maxFrameSize(), 9000);
  EXPECT_EQ(ports[0].portStatus->txFramesTotal(), 11u);
  EXPECT_EQ(ports[0].portStatus->rxAgeoutsTotal(), 13u);

  auto const alpha = neighborOf(reconciler, "e1", 1);
  ASSERT_TRUE(alpha);
  EXPECT_EQ(alpha->msap().chassisId.value(), Zet::String("alpha"));
  EXPECT_EQ(alpha->sysName().value(), Zet::String("alpha"));
  EXPECT_EQ(alpha->vlanName(Bridging::VlanId(20)).vlanName.value(), Zet::String("twenty"));
  EXPECT_EQ(alpha->managementAddressCount(), 1u);
  EXPECT_TRUE(alpha->unknownTlvHas(9));
  EXPECT_TRUE(alpha->portVlanIdTlvReceived());
  EXPECT_DOUBLE_EQ(alpha->lastChangeTime(), origin + 2.5);
  EXPECT_TRUE(ports[0].portStatus->remoteSystemByMsapHas(alpha->msap()));
  EXPECT_EQ(ports[0].portStatus->remoteSystemCount(), 2u);
  EXPECT_TRUE(neighborOf(reconciler, "e2", 1));
}

TEST_F(ReconcilerTest, UnchangedSnapshotDeliversNothing) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  StatusWatcher status(log);
  LocalSystemWatcher local(log);
  PortStatusWatcher port(log);
  NeighborWatcher neighbor(log);
  attach(status, reconciler.status());
  attach(local, reconciler.localSystem());
  attach(port, reconciler.ports()[0].portStatus);
  attach(neighbor, neighborOf(reconciler, "e1", 1));

  reconciler.apply(parseScenario(labJson, "again.json"));
  EXPECT_EQ(log, Log{});
}

TEST_F(ReconcilerTest, RemovedNeighbourIsTheOnlyChange) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  StatusWatcher status(log);
  PortStatusWatcher e1(log);
  PortStatusWatcher e2(log);
  attach(status, reconciler.status());
  attach(e1, reconciler.ports()[0].portStatus);
  attach(e2, reconciler.ports()[1].portStatus);

  DesiredState next = lab_;
  next.ports[0].neighbors.erase(next.ports[0].neighbors.begin() + 1);
  reconciler.apply(next);
  EXPECT_EQ(log, (Log{"remoteSystemByMsap beta absent", "remoteSystem 2 absent"}));
  EXPECT_FALSE(neighborOf(reconciler, "e1", 2));
  EXPECT_TRUE(neighborOf(reconciler, "e1", 1));
}

TEST_F(ReconcilerTest, AddedNeighbourArrivesComplete) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  PortStatusWatcher e2(log);
  attach(e2, reconciler.ports()[1].portStatus);

  DesiredState next = lab_;
  DesiredNeighbor delta;
  delta.index = 5;
  delta.msap.chassisId = Lldp::ChassisId(Zet::String("delta"));
  delta.sysName = Lldp::BoundedString255(Zet::String("delta"));
  delta.vlanName = {Lldp::VlanName(Bridging::VlanId(30), Lldp::BoundedString32(Zet::String("thirty")))};
  delta.lastChangeTime = 8.0;
  next.ports[1].neighbors.push_back(delta);
  reconciler.apply(next);
  EXPECT_EQ(log, (Log{"remoteSystem 5 delta vlanNames 1 at 8", "remoteSystemByMsap delta present"}));
}

TEST_F(ReconcilerTest, ChangedNeighbourAttributesAreWrittenAlone) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  auto const before = neighborOf(reconciler, "e1", 1);
  Log portLog;
  Log log;
  PortStatusWatcher port(portLog);
  NeighborWatcher neighbor(log);
  attach(port, reconciler.ports()[0].portStatus);
  attach(neighbor, before);

  DesiredState next = lab_;
  DesiredNeighbor& alpha = next.ports[0].neighbors[0];
  alpha.sysName = Lldp::BoundedString255(Zet::String("alpha2"));
  alpha.vlanName = {Lldp::VlanName(Bridging::VlanId(20), Lldp::BoundedString32(Zet::String("users")))};
  alpha.lastChangeTime = 9.0;
  reconciler.apply(next);

  EXPECT_EQ(log, (Log{"sysName alpha2", "vlanName 10 absent", "vlanName 20 users", "lastChangeTime 9"}));
  EXPECT_EQ(portLog, Log{});
  EXPECT_TRUE(neighborOf(reconciler, "e1", 1) == before);
}

TEST_F(ReconcilerTest, NewMsapUnderAnIndexIsARemovalThenAnInsertion) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  auto const before = neighborOf(reconciler, "e1", 1);
  Log log;
  PortStatusWatcher port(log);
  attach(port, reconciler.ports()[0].portStatus);

  DesiredState next = lab_;
  next.ports[0].neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("omega"));
  reconciler.apply(next);

  EXPECT_EQ(log, (Log{"remoteSystemByMsap alpha absent", "remoteSystem 1 absent",
                      "remoteSystem 1 alpha vlanNames 2 at 2.5", "remoteSystemByMsap omega present"}));
  auto const after = neighborOf(reconciler, "e1", 1);
  ASSERT_TRUE(after);
  EXPECT_FALSE(after == before);
  EXPECT_EQ(after->msap().chassisId.value(), Zet::String("omega"));
}

TEST_F(ReconcilerTest, AddressesComeBeforeTheirPrioritiesAndLeaveAfterThem) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  LocalSystemWatcher local(log);
  attach(local, reconciler.localSystem());

  // 192.0.2.1 goes with its priority, 192.0.2.2 moves from priority 2 to 3, 192.0.2.9 arrives with priority 2.
  DesiredState next = lab_;
  auto& addresses = next.localSystem.managementAddress;
  addresses.erase(addresses.begin());
  Lldp::ManagementAddress added;
  added.manAddrSubtype = 1;
  added.manAddr = Lldp::ManAddress(Zet::String(std::string("\xc0\x00\x02\x09", 4)));
  added.ifId = 90;
  addresses.push_back(added);
  next.localSystem.managementAddressPrio = {{Lldp::ManAddrPriority(3, 0, 0, Ondo::IntfId()), addresses[0].key()},
                                            {Lldp::ManAddrPriority(2, 0, 0, Ondo::IntfId()), added.key()}};
  reconciler.apply(next);

  EXPECT_EQ(log, (Log{"priority 1 absent", "priority 2 absent", "address 192.0.2.1 absent", "address 192.0.2.9 ifId 90",
                      "priority 2 names 192.0.2.9", "priority 3 names 192.0.2.2"}));
}

TEST_F(ReconcilerTest, PortThatGoesOrTakesANewNumberLeavesAndJoins) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  auto const oldE1 = reconciler.ports()[0].portStatus;
  Log log;
  StatusWatcher status(log);
  LocalSystemWatcher local(log);
  attach(status, reconciler.status());
  attach(local, reconciler.localSystem());

  DesiredState next = lab_;
  next.ports.erase(next.ports.begin() + 1);
  next.ports[0].number = Interface::EthPortId(5);
  DesiredPort e3;
  e3.name = Ondo::IntfId(Zet::String("e3"));
  e3.number = Interface::EthPortId(3);
  next.ports.insert(next.ports.begin(), e3);
  reconciler.apply(next);

  EXPECT_EQ(log,
            (Log{"portStatus e1 absent", "localPort e1 absent", "portStatus e2 absent", "localPort e2 absent",
                 "portStatus e3 present", "localPort e3 present", "portStatus e1 present", "localPort e1 present"}));
  auto const ports = reconciler.ports();
  ASSERT_EQ(ports.size(), 2u);
  EXPECT_EQ(ports[0].name, e3.name);
  EXPECT_EQ(ports[1].number.value(), 5);
  EXPECT_FALSE(ports[1].portStatus == oldE1);
  // The port came back whole, neighbours included.
  EXPECT_EQ(ports[1].portStatus->remoteSystemCount(), 2u);
}

TEST_F(ReconcilerTest, CountersAndChangeTimeFollowTheSnapshotChangeTimeLast) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  StatusWatcher status(log);
  PortStatusWatcher port(log);
  attach(status, reconciler.status());
  attach(port, reconciler.ports()[0].portStatus);

  DesiredState next = lab_;
  next.status.remTablesInserts = 4;
  next.status.remTablesLastChangeTime = 20.0;
  next.ports[0].portStatus.rxFramesTotal = 40;
  next.ports[0].neighbors.pop_back();
  reconciler.apply(next);

  EXPECT_EQ(log, (Log{"rxFramesTotal 40", "remoteSystemByMsap beta absent", "remoteSystem 2 absent",
                      "remTablesInserts 4", "remTablesLastChangeTime 20"}));
}

TEST_F(ReconcilerTest, DestructionUnmountsOnlyWhatItMounted) {
  {
    Reconciler reconciler;
    reconciler.apply(lab_);
  }
  EXPECT_FALSE(Statebase::entity(Reconciler::configPath));
  EXPECT_FALSE(Statebase::entity(Reconciler::localSystemPath));

  auto const other = Zet::makePtr<Lldp::AllStatus>();
  {
    Reconciler reconciler;
    reconciler.apply(lab_);
    Statebase::entityIs(Reconciler::statusPath, other);
  }
  EXPECT_TRUE(Statebase::entity(Reconciler::statusPath) == other);
  Statebase::entityDel(Reconciler::statusPath);
}

// The same ports and neighbours with nothing an LLDP agent keeps by itself: no
// counters, no change times.
constexpr char const* plainJson = R"({
  "ports": [
    {"name": "e1", "neighbors": [
       {"index": 1, "msap": {"chassisId": "alpha"}, "sysName": "alpha", "vlanName": [{"vlanId": 10, "vlanName": "ten"}]},
       {"index": 2, "msap": {"chassisId": "beta"}, "sysName": "beta"}]},
    {"name": "e2", "neighbors": [{"msap": {"chassisId": "gamma"}, "sysName": "gamma"}]}]})";

// The reconciler as an LLDP agent: counters and change times on a clock that
// the test moves. Times are given as uptime seconds.
class ReconcilerAgentTimes : public ::testing::Test {
 protected:
  void SetUp() override {
    Snmp::uptimeOriginIs(origin);
    Zet::System::currentTimeSourceIs([this] { return origin + uptime_; });
  }
  void TearDown() override {
    Zet::System::currentTimeSourceIs({});
    Snmp::uptimeOriginIs(0.0);
  }

  void applyAt(double uptime, DesiredState const& state) {
    uptime_ = uptime;
    reconciler_.apply(state);
  }
  double changeTime() const { return reconciler_.status()->remTablesLastChangeTime() - origin; }
  std::uint32_t inserts() const { return reconciler_.status()->remTablesInserts(); }
  std::uint32_t deletes() const { return reconciler_.status()->remTablesDeletes(); }
  double changeTimeOf(char const* port, std::int32_t index) const {
    auto const neighbor = neighborOf(reconciler_, port, index);
    return neighbor ? neighbor->lastChangeTime() - origin : -1.0;
  }

  DesiredState const plain_ = parseScenario(plainJson, "plain.json");
  Reconciler reconciler_;

 private:
  double uptime_ = 0.0;
};

TEST_F(ReconcilerAgentTimes, FirstApplyInsertsEveryNeighbourNow) {
  applyAt(2.0, plain_);
  EXPECT_EQ(inserts(), 3u);
  EXPECT_EQ(deletes(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e2", 1), 2.0);
}

TEST_F(ReconcilerAgentTimes, WithoutNeighboursTheTablesLastChangedAtTheStart) {
  applyAt(2.0, parseScenario(R"({"ports": [{"name": "e1"}]})", "empty.json"));
  EXPECT_EQ(inserts(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 0.0);
}

TEST_F(ReconcilerAgentTimes, NeighboursThatComeAndGoAreCounted) {
  applyAt(2.0, plain_);
  // beta goes, alpha is replaced under its index, e2 goes with gamma, e3 comes with delta.
  DesiredState next = plain_;
  next.ports[0].neighbors.pop_back();
  next.ports[0].neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("omega"));
  next.ports[1].name = Ondo::IntfId(Zet::String("e3"));
  next.ports[1].neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("delta"));
  applyAt(7.0, next);

  EXPECT_EQ(inserts(), 3u + 2u);
  EXPECT_EQ(deletes(), 3u);
  EXPECT_EQ(reconciler_.status()->remTablesAgeouts(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 7.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 7.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e3", 1), 7.0);
}

TEST_F(ReconcilerAgentTimes, ChangedNeighbourTakesTheTimeOfTheChange) {
  applyAt(2.0, plain_);
  DesiredState next = plain_;
  next.ports[0].neighbors[0].vlanName[0].vlanName = Lldp::BoundedString32(Zet::String("users"));
  next.ports[1].neighbors[0].sysDesc = Lldp::BoundedString255(Zet::String("a router"));
  applyAt(7.0, next);

  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 7.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 2), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e2", 1), 7.0);
  EXPECT_DOUBLE_EQ(changeTime(), 7.0);
  EXPECT_EQ(inserts(), 3u);
  EXPECT_EQ(deletes(), 0u);
}

TEST_F(ReconcilerAgentTimes, UnchangedSnapshotBumpsNothing) {
  applyAt(2.0, plain_);
  Log log;
  StatusWatcher status(log);
  NeighborWatcher neighbor(log);
  attach(status, reconciler_.status());
  attach(neighbor, neighborOf(reconciler_, "e1", 1));

  // A port's own counters are no part of the remote tables.
  DesiredState next = plain_;
  next.ports[0].portStatus.rxFramesTotal = 50;
  applyAt(9.0, next);
  EXPECT_EQ(log, Log{});
  EXPECT_DOUBLE_EQ(changeTime(), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 2.0);
}

TEST_F(ReconcilerAgentTimes, ChangeTimeIsWrittenAfterEverythingElse) {
  applyAt(2.0, plain_);
  Log log;
  StatusWatcher status(log);
  PortStatusWatcher port(log);
  attach(status, reconciler_.status());
  attach(port, reconciler_.ports()[0].portStatus);

  DesiredState next = plain_;
  next.ports[0].neighbors.pop_back();
  DesiredNeighbor epsilon;
  epsilon.index = 3;
  epsilon.msap.chassisId = Lldp::ChassisId(Zet::String("epsilon"));
  epsilon.sysName = Lldp::BoundedString255(Zet::String("epsilon"));
  next.ports[0].neighbors.push_back(epsilon);
  applyAt(5.0, next);

  EXPECT_EQ(log, (Log{"remoteSystemByMsap beta absent", "remoteSystem 2 absent",
                      "remoteSystem 3 epsilon vlanNames 0 at 5", "remoteSystemByMsap epsilon present",
                      "remTablesInserts 4", "remTablesDeletes 1", "remTablesLastChangeTime 5"}));
}

TEST_F(ReconcilerAgentTimes, GivenValuesAreServedAsGivenAndCountingGoesOnFromThem) {
  DesiredState pinned = plain_;
  pinned.status.remTablesLastChangeTime = 1.5;
  pinned.status.remTablesInserts = 40;
  pinned.status.remTablesDeletes = 7;
  pinned.status.remTablesDrops = 1;
  pinned.status.remTablesAgeouts = 2;
  pinned.ports[0].neighbors[0].lastChangeTime = 0.5;
  applyAt(2.0, pinned);
  EXPECT_DOUBLE_EQ(changeTime(), 1.5);
  EXPECT_EQ(inserts(), 40u);
  EXPECT_EQ(deletes(), 7u);
  EXPECT_EQ(reconciler_.status()->remTablesDrops(), 1u);
  EXPECT_EQ(reconciler_.status()->remTablesAgeouts(), 2u);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 0.5);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 2), 2.0);

  // Changes under pinned values leave them pinned.
  DesiredState changed = pinned;
  changed.ports[0].neighbors[0].sysName = Lldp::BoundedString255(Zet::String("alpha2"));
  changed.ports[0].neighbors.pop_back();
  applyAt(4.0, changed);
  EXPECT_DOUBLE_EQ(changeTime(), 1.5);
  EXPECT_EQ(deletes(), 7u);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 0.5);

  // Left out again, they count on from where they stood.
  DesiredState released = changed;
  released.status = DesiredStatus{};
  released.ports[1].neighbors.clear();
  applyAt(6.0, released);
  EXPECT_DOUBLE_EQ(changeTime(), 6.0);
  EXPECT_EQ(inserts(), 40u);
  EXPECT_EQ(deletes(), 8u);
  EXPECT_EQ(reconciler_.status()->remTablesDrops(), 1u);
  EXPECT_EQ(reconciler_.status()->remTablesAgeouts(), 2u);
}

// Logs each call with what the state holds of the port at that moment.
class PortLog : public Reconciler::PortObserver {
 public:
  PortLog(Reconciler const& reconciler, Log& log) : reconciler_(reconciler), log_(log) {}
  void onPortLeaving(Reconciler::Port const& port) override { log_.push_back("leaving " + seen(port)); }
  void onPortLeft(Reconciler::Port const& port) override { log_.push_back("left " + seen(port)); }
  void onPortJoined(Reconciler::Port const& port) override { log_.push_back("joined " + seen(port)); }

 private:
  std::string seen(Reconciler::Port const& port) const {
    bool const listed = reconciler_.localSystem()->localPort(port.name) == port.localPort;
    bool const counted = reconciler_.status()->portStatus(port.name) == port.portStatus;
    return text(port.name) + " " + text(port.number.value()) + (listed ? " listed" : " unlisted") +
           (counted ? " counted" : " uncounted") + " neighbours " + text(port.portStatus->remoteSystemCount());
  }

  Reconciler const& reconciler_;
  Log& log_;
};

TEST_F(ReconcilerTest, PortObserverSeesALeavingPortWholeThenGoneAndAJoiningOneComplete) {
  Reconciler reconciler;
  reconciler.apply(lab_);
  Log log;
  PortLog ports(reconciler, log);
  reconciler.portObserverIs(&ports);

  // e2 goes, e1 is renumbered, e3 is new with a neighbour.
  DesiredState next = lab_;
  next.ports.pop_back();
  next.ports[0].number = Interface::EthPortId(9);
  DesiredPort e3;
  e3.name = Ondo::IntfId(Zet::String("e3"));
  e3.number = Interface::EthPortId(2);
  e3.neighbors.push_back(lab_.ports[1].neighbors[0]);
  next.ports.push_back(e3);
  reconciler.apply(next);

  EXPECT_EQ(log, (Log{"leaving e1 1 listed counted neighbours 2", "left e1 1 unlisted uncounted neighbours 2",
                      "leaving e2 2 listed counted neighbours 1", "left e2 2 unlisted uncounted neighbours 1",
                      "joined e1 9 listed counted neighbours 2", "joined e3 2 listed counted neighbours 1"}));

  reconciler.portObserverIs(nullptr);
  log.clear();
  reconciler.apply(lab_);
  EXPECT_EQ(log, Log{});
}

}  // namespace
