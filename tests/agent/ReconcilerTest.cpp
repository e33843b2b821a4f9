// The reconciler as the plug-in sees it: entities in the state database, the
// notifications that their changes deliver, and the counters and change times
// it keeps as an LLDP agent would, on a clock that the tests move.

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "Bridging/VlanId.h"
#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/VlanName.h"
#include "Reconciler.h"
#include "Scenario.h"
#include "Snmp/Conversions.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"
#include "Zet/System.h"

namespace {

using Log = std::vector<std::string>;

constexpr double origin = 1000.0;

template <class T>
std::string text(T const& value) {
  std::ostringstream os;
  os << value;
  return os.str();
}

// Logs a delivery with what the notifier holds at that moment, as a
// level-triggered handler would read it; attached as a reactor attaches.
template <class Notifier>
class Watcher : public Notifier::NotifieeConst {
 public:
  Watcher(Log& log, Zet::Ptr<Notifier const> const& notifier) : log_(log) {
    this->notifierIs(notifier);
    this->isRegisteredNotifieeIs(true);
    this->hasNotificationActiveIs(true);
  }

 protected:
  Notifier const& held() const { return *static_cast<Notifier const*>(this->notifier()); }
  void log(std::string const& entry) { log_.push_back(entry); }

 private:
  Log& log_;
};

struct StatusWatcher : Watcher<Lldp::AllStatus> {
  using Watcher::Watcher;
  void onRemTablesLastChangeTime() override {
    log("remTablesLastChangeTime " + text(held().remTablesLastChangeTime() - origin));
  }
  void onRemTablesInserts() override { log("remTablesInserts " + text(held().remTablesInserts())); }
  void onRemTablesDeletes() override { log("remTablesDeletes " + text(held().remTablesDeletes())); }
  void onPortStatus(Ondo::IntfId const& id) override {
    log("portStatus " + text(id) + (held().portStatusHas(id) ? " present" : " absent"));
  }
};

struct LocalSystemWatcher : Watcher<Lldp::LocalSystem> {
  using Watcher::Watcher;
  void onLocalPort(Ondo::IntfId const& id) override {
    log("localPort " + text(id) + (held().localPortHas(id) ? " present" : " absent"));
  }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    log("address " + text(key.manAddr) +
        (held().managementAddressHas(key) ? " ifId " + text(held().managementAddress(key).ifId) : " absent"));
  }
  // Whether a present priority's address is there too.
  void onManagementAddressPrio(Lldp::ManAddrPriority const& prio) override {
    if (!held().managementAddressPrioHas(prio)) {
      return log("priority " + text(prio.priority) + " absent");
    }
    auto const key = held().managementAddressPrio(prio);
    log("priority " + text(prio.priority) + " names " + text(key.manAddr) +
        (held().managementAddressHas(key) ? "" : " MISSING"));
  }
};

struct PortStatusWatcher : Watcher<Lldp::PortStatus> {
  using Watcher::Watcher;
  void onRxFramesTotal() override { log("rxFramesTotal " + text(held().rxFramesTotal())); }
  // A neighbour that arrives is read whole, as the new neighbour's reactor copies it once.
  void onRemoteSystem(std::int32_t const& index) override {
    auto const neighbor = held().remoteSystem(index);
    log("remoteSystem " + text(index) +
        (neighbor ? " " + text(neighbor->sysName()) + " vlanNames " + text(neighbor->vlanNameCount()) + " at " +
                        text(neighbor->lastChangeTime() - origin)
                  : " absent"));
  }
  void onRemoteSystemByMsap(Lldp::RemoteSystem::Msap const& msap) override {
    log("remoteSystemByMsap " + text(msap.chassisId) + (held().remoteSystemByMsapHas(msap) ? " present" : " absent"));
  }
};

// The attributes that the snapshots below give a neighbour.
struct NeighborWatcher : Watcher<Lldp::RemoteSystem> {
  using Watcher::Watcher;
  void onSysName() override { log("sysName " + text(held().sysName())); }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    log("managementAddress " + text(key.manAddr));
  }
  void onUnknownTlv(std::uint32_t const& type) override { log("unknownTlv " + text(type)); }
  void onVlanName(Bridging::VlanId const& id) override {
    log("vlanName " + text(id) + (held().vlanNameHas(id) ? " " + text(held().vlanName(id).vlanName) : " absent"));
  }
  void onLastChangeTime() override { log("lastChangeTime " + text(held().lastChangeTime() - origin)); }
};

// Logs each call with what the state holds of the port at that moment.
struct PortLog : Reconciler::PortObserver {
  PortLog(Reconciler const& reconciler, Log& log) : reconciler_(reconciler), log_(log) {}
  void onPortLeaving(Reconciler::Port const& port) override { log_.push_back("leaving " + seen(port)); }
  void onPortLeft(Reconciler::Port const& port) override { log_.push_back("left " + seen(port)); }
  void onPortJoined(Reconciler::Port const& port) override { log_.push_back("joined " + seen(port)); }
  std::string seen(Reconciler::Port const& port) const {
    bool const listed = reconciler_.localSystem()->localPort(port.name) == port.localPort;
    bool const counted = reconciler_.status()->portStatus(port.name) == port.portStatus;
    return text(port.name) + " " + text(port.number.value()) + (listed ? " listed" : " unlisted") +
           (counted ? " counted" : " uncounted") + " neighbours " + text(port.portStatus->remoteSystemCount());
  }

  Reconciler const& reconciler_;
  Log& log_;
};

// Nothing that an LLDP agent keeps by itself: the reconciler works out the
// counters and change times.
constexpr char const* labJson = R"({
  "localSystem": {
    "chassisIdSubtype": "macAddress", "chassisId": "02:00:00:00:00:01",
    "managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "priority": 1},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "priority": 2},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.3"}]},
  "ports": [
    {"name": "e1", "config": {"adminStatus": "rxOnly"},
     "localPort": {"portDesc": "uplink", "maxFrameSize": 9000}, "portStatus": {"rxFramesTotal": 12},
     "neighbors": [
       {"index": 1, "msap": {"chassisId": "alpha"}, "sysName": "alpha",
        "vlanName": [{"vlanId": 10, "vlanName": "ten"}, {"vlanId": 20, "vlanName": "twenty"}],
        "managementAddress": [{"manAddrSubtype": 1, "manAddr": "198.51.100.1"}], "unknownTlv": [{"type": 9}]},
       {"index": 2, "msap": {"chassisId": "beta"}, "sysName": "beta"}]},
    {"name": "e2", "neighbors": [{"msap": {"chassisId": "gamma"}, "sysName": "gamma"}]}]})";

class ReconcilerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Snmp::uptimeOriginIs(origin);
    Zet::System::currentTimeSourceIs([this] { return origin + uptime_; });
  }
  void TearDown() override {
    Zet::System::currentTimeSourceIs({});
    Snmp::uptimeOriginIs(0.0);
  }

  // Applies `state` with the clock at `uptime` seconds since the start.
  void applyAt(double uptime, DesiredState const& state) {
    uptime_ = uptime;
    reconciler_.apply(state);
  }
  Lldp::AllStatus const& status() const { return *reconciler_.status(); }
  double changeTime() const { return status().remTablesLastChangeTime() - origin; }
  Zet::Ptr<Lldp::RemoteSystem const> neighbor(char const* port, std::int32_t index) const {
    auto const portStatus = status().portStatus(Ondo::IntfId(Zet::String(port)));
    return portStatus ? portStatus->remoteSystem(index) : nullptr;
  }
  double changeTimeOf(char const* port, std::int32_t index) const {
    auto const found = neighbor(port, index);
    return found ? found->lastChangeTime() - origin : -1.0;
  }

  DesiredState const lab_ = parseScenario(labJson, "lab.json");
  Reconciler reconciler_;
  double uptime_ = 0.0;
};

TEST_F(ReconcilerTest, FirstApplyMountsTheThreeEntitiesAndCountsEveryNeighbourIn) {
  applyAt(2.0, lab_);

  auto const config = reconciler_.config();
  auto const local = reconciler_.localSystem();
  ASSERT_TRUE(config && reconciler_.status() && local);
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/config") == config);
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/status/all") == reconciler_.status());
  EXPECT_TRUE(Statebase::entity("Statebase/l2discovery/lldp/localSystem") == local);
  EXPECT_EQ(local->chassisId().stdString(), std::string("\x02\0\0\0\0\x01", 6));
  EXPECT_EQ(local->managementAddressPrioCount(), 2u);

  auto const ports = reconciler_.ports();
  ASSERT_EQ(ports.size(), 2u);
  EXPECT_EQ(ports[1].name, Ondo::IntfId(Zet::String("e2")));
  EXPECT_EQ(ports[1].number.value(), 2);
  EXPECT_TRUE(status().portStatus(ports[0].name) == ports[0].portStatus);
  EXPECT_TRUE(local->localPort(ports[0].name) == ports[0].localPort);
  EXPECT_EQ(ports[0].portConfig->adminStatus(), Lldp::AdminStatus::rxOnly);
  EXPECT_EQ(ports[0].localPort->maxFrameSize(), 9000);
  EXPECT_EQ(ports[0].portStatus->rxFramesTotal(), 12u);

  EXPECT_EQ(status().remTablesInserts(), 3u);
  EXPECT_EQ(status().remTablesDeletes(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e2", 1), 2.0);
}

TEST_F(ReconcilerTest, WithoutNeighboursTheTablesLastChangedAtTheStart) {
  applyAt(2.0, parseScenario(R"({"ports": [{"name": "e1"}]})", "empty.json"));
  EXPECT_EQ(status().remTablesInserts(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 0.0);
}

TEST_F(ReconcilerTest, OnlyWhatChangedIsWrittenAndOnlyNeighboursMoveTheChangeTime) {
  applyAt(2.0, lab_);
  auto const alpha = neighbor("e1", 1);
  Log log;
  StatusWatcher status(log, reconciler_.status());
  LocalSystemWatcher local(log, reconciler_.localSystem());
  PortStatusWatcher port(log, reconciler_.ports()[0].portStatus);
  NeighborWatcher alphaWatcher(log, alpha);

  // A port's own counters are no part of the remote tables.
  DesiredState next = lab_;
  next.ports[0].portStatus.rxFramesTotal = 50;
  applyAt(5.0, next);
  EXPECT_EQ(log, Log{"rxFramesTotal 50"});
  EXPECT_DOUBLE_EQ(changeTime(), 2.0);

  // A changed neighbour is written in place, and only changed ones take the time of the change.
  log.clear();
  next.ports[0].neighbors[0].sysName = Lldp::BoundedString255(Zet::String("alpha2"));
  next.ports[0].neighbors[0].vlanName = {
      Lldp::VlanName(Bridging::VlanId(20), Lldp::BoundedString32(Zet::String("users")))};
  next.ports[1].neighbors[0].sysDesc = Lldp::BoundedString255(Zet::String("a router"));
  applyAt(7.0, next);
  EXPECT_EQ(log, (Log{"sysName alpha2", "vlanName 10 absent", "vlanName 20 users", "lastChangeTime 7",
                      "remTablesLastChangeTime 7"}));
  EXPECT_TRUE(neighbor("e1", 1) == alpha);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 2), 2.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e2", 1), 7.0);
}

TEST_F(ReconcilerTest, NeighboursThatComeAndGoAreToldBeforeTheCountersAndTheChangeTimeLast) {
  applyAt(2.0, lab_);
  Log log;
  StatusWatcher status(log, reconciler_.status());
  PortStatusWatcher e1(log, reconciler_.ports()[0].portStatus);
  PortStatusWatcher e2(log, reconciler_.ports()[1].portStatus);

  DesiredState next = lab_;
  next.ports[0].neighbors.pop_back();
  DesiredNeighbor epsilon;
  epsilon.index = 3;
  epsilon.msap.chassisId = Lldp::ChassisId(Zet::String("epsilon"));
  epsilon.sysName = Lldp::BoundedString255(Zet::String("epsilon"));
  epsilon.vlanName = {Lldp::VlanName(Bridging::VlanId(30), Lldp::BoundedString32(Zet::String("thirty")))};
  next.ports[0].neighbors.push_back(epsilon);
  applyAt(5.0, next);

  EXPECT_EQ(log, (Log{"remoteSystemByMsap beta absent", "remoteSystem 2 absent",
                      "remoteSystem 3 epsilon vlanNames 1 at 5", "remoteSystemByMsap epsilon present",
                      "remTablesInserts 4", "remTablesDeletes 1", "remTablesLastChangeTime 5"}));
}

// A snapshot does not tell an aged-out neighbour from a withdrawn one: every one that goes is a delete.
TEST_F(ReconcilerTest, NewMsapUnderAnIndexOrAPortThatGoesCountsAsDeletesAndInserts) {
  applyAt(2.0, lab_);
  auto const before = neighbor("e1", 1);
  Log log;
  PortStatusWatcher e1(log, reconciler_.ports()[0].portStatus);

  // alpha is replaced under its index; e2 goes with gamma and e3 comes with delta.
  DesiredState next = lab_;
  next.ports[0].neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("omega"));
  next.ports[1].name = Ondo::IntfId(Zet::String("e3"));
  next.ports[1].neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("delta"));
  applyAt(7.0, next);

  EXPECT_EQ(log, (Log{"remoteSystemByMsap alpha absent", "remoteSystem 1 absent",
                      "remoteSystem 1 alpha vlanNames 2 at 7", "remoteSystemByMsap omega present"}));
  auto const after = neighbor("e1", 1);
  ASSERT_TRUE(after);
  EXPECT_FALSE(after == before);
  EXPECT_EQ(after->msap().chassisId.value(), Zet::String("omega"));
  EXPECT_EQ(status().remTablesInserts(), 3u + 2u);
  EXPECT_EQ(status().remTablesDeletes(), 2u);
  EXPECT_EQ(status().remTablesAgeouts(), 0u);
  EXPECT_DOUBLE_EQ(changeTime(), 7.0);
  EXPECT_DOUBLE_EQ(changeTimeOf("e3", 1), 7.0);
}

TEST_F(ReconcilerTest, AddressesComeBeforeTheirPrioritiesAndLeaveAfterThem) {
  applyAt(2.0, lab_);
  Log log;
  LocalSystemWatcher local(log, reconciler_.localSystem());

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
  applyAt(3.0, next);

  EXPECT_EQ(log, (Log{"priority 1 absent", "priority 2 absent", "address 192.0.2.1 absent", "address 192.0.2.9 ifId 90",
                      "priority 2 names 192.0.2.9", "priority 3 names 192.0.2.2"}));
}

// The observer's calls fall between the state's own: a leaving port is seen
// whole and then gone, a joining one complete. Removals come first, so e3 can
// take e2's number.
TEST_F(ReconcilerTest, PortThatGoesOrTakesANewNumberLeavesWholeAndJoinsComplete) {
  applyAt(2.0, lab_);
  auto const oldE1 = reconciler_.ports()[0].portStatus;
  Log log;
  PortLog observer(reconciler_, log);
  reconciler_.portObserverIs(&observer);
  StatusWatcher status(log, reconciler_.status());
  LocalSystemWatcher local(log, reconciler_.localSystem());

  DesiredState next = lab_;
  next.ports.pop_back();
  next.ports[0].number = Interface::EthPortId(9);
  DesiredPort e3;
  e3.name = Ondo::IntfId(Zet::String("e3"));
  e3.number = Interface::EthPortId(2);
  e3.neighbors.push_back(lab_.ports[1].neighbors[0]);
  next.ports.insert(next.ports.begin(), e3);
  applyAt(5.0, next);

  EXPECT_EQ(log, (Log{"leaving e1 1 listed counted neighbours 2", "portStatus e1 absent", "localPort e1 absent",
                      "left e1 1 unlisted uncounted neighbours 2", "leaving e2 2 listed counted neighbours 1",
                      "portStatus e2 absent", "localPort e2 absent", "left e2 2 unlisted uncounted neighbours 1",
                      "portStatus e3 present", "localPort e3 present", "joined e3 2 listed counted neighbours 1",
                      "portStatus e1 present", "localPort e1 present", "joined e1 9 listed counted neighbours 2",
                      "remTablesInserts 6", "remTablesDeletes 3", "remTablesLastChangeTime 5"}));
  auto const ports = reconciler_.ports();
  ASSERT_EQ(ports.size(), 2u);
  EXPECT_EQ(ports[0].name, e3.name);
  EXPECT_FALSE(ports[1].portStatus == oldE1);
  reconciler_.portObserverIs(nullptr);
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

TEST_F(ReconcilerTest, GivenValuesAreServedAsGivenAndCountingGoesOnFromThem) {
  DesiredState pinned = lab_;
  pinned.status.remTablesLastChangeTime = 1.5;
  pinned.status.remTablesInserts = 40;
  pinned.status.remTablesDeletes = 7;
  pinned.status.remTablesDrops = 1;
  pinned.status.remTablesAgeouts = 2;
  pinned.ports[0].neighbors[0].lastChangeTime = 0.5;
  applyAt(2.0, pinned);
  EXPECT_DOUBLE_EQ(changeTime(), 1.5);
  EXPECT_EQ(status().remTablesInserts(), 40u);
  EXPECT_EQ(status().remTablesDeletes(), 7u);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 0.5);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 2), 2.0);

  // Changes under pinned values leave them pinned.
  DesiredState changed = pinned;
  changed.ports[0].neighbors[0].sysName = Lldp::BoundedString255(Zet::String("alpha2"));
  changed.ports[0].neighbors.pop_back();
  applyAt(4.0, changed);
  EXPECT_DOUBLE_EQ(changeTime(), 1.5);
  EXPECT_EQ(status().remTablesDeletes(), 7u);
  EXPECT_DOUBLE_EQ(changeTimeOf("e1", 1), 0.5);

  // Left out again, they count on from where they stood.
  DesiredState released = changed;
  released.status = DesiredStatus{};
  released.ports[1].neighbors.clear();
  applyAt(6.0, released);
  EXPECT_DOUBLE_EQ(changeTime(), 6.0);
  EXPECT_EQ(status().remTablesInserts(), 40u);
  EXPECT_EQ(status().remTablesDeletes(), 8u);
  EXPECT_EQ(status().remTablesDrops(), 1u);
  EXPECT_EQ(status().remTablesAgeouts(), 2u);
}

}  // namespace
