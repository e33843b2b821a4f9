// Ports joining and leaving as the plug-in's mirror sees them: the reconciler
// plays the LLDP agent, the driver follows it and drives the plug-in's
// reactors, and the Root shows the outcome. The order of the driver's calls
// shows in that outcome: a reactor removed before its close leaves neighbour
// rows behind, and a port reported before it left localPort stays in the
// address port lists.
//
// The plug-in takes one Root per process, so the suite shares one world and
// every test starts by applying the baseline.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "PortDriver.h"
#include "PortStatusSm.h"
#include "Reconciler.h"
#include "Root.h"
#include "Scenario.h"
#include "Snmp/Config.h"
#include "Snmp/Conversions.h"
#include "Snmp/SnmpUtil.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"

namespace {

using Interface::EthPortId;
using Ports = std::set<std::uint16_t>;

// 192.0.2.1 has a priority and so is sent on every port; 192.0.2.2 has none.
constexpr char const* baselineJson = R"({
  "localSystem": {"managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "priority": 1},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.2"}]},
  "ports": [
    {"name": "e1", "number": 1, "neighbors": [
       {"index": 1, "msap": {"chassisId": "alpha"}, "vlanName": [{"vlanId": 10}, {"vlanId": 20}]},
       {"index": 2, "msap": {"chassisId": "beta"}}]},
    {"name": "e2", "number": 2, "neighbors": [
       {"index": 1, "msap": {"chassisId": "gamma"}, "vlanName": [{"vlanId": 30}]}]}]})";

Lldp::ManagementAddress::Key ipv4(char const* bytes) {
  Lldp::ManagementAddress address;
  address.manAddrSubtype = 1;
  address.manAddr = Lldp::ManAddress(Zet::String(std::string(bytes, 4)));
  return address.key();
}
Lldp::ManagementAddress::Key const withPriority = ipv4("\xc0\x00\x02\x01");
Lldp::ManagementAddress::Key const withoutPriority = ipv4("\xc0\x00\x02\x02");

class PortLifecycle : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    Snmp::uptimeOriginIs(1000.0);
    // The LldpSm raises lldpRemTablesChange on changes; registered, and kept from going out.
    auto const config = Zet::makePtr<Snmp::Config>();
    config->notificationConfigIs("lldp")->notificationIs("lldpRemTablesChange");
    config->notificationsEnabledIs(false, "no manager in this test");
    Statebase::entityIs(SnmpUtil::snmpConfigPath, config);

    reconciler_ = std::make_unique<Reconciler>();
    reconciler_->apply(baseline());
    driver_ = std::make_unique<PortDriver>();
    driver_->follow(*reconciler_);
  }
  static void TearDownTestSuite() {
    driver_.reset();
    reconciler_.reset();
    Statebase::entityDel(SnmpUtil::snmpConfigPath);
    Snmp::uptimeOriginIs(0.0);
  }
  void SetUp() override { reconciler_->apply(baseline()); }

  static DesiredState baseline() { return parseScenario(baselineJson, "baseline.json"); }
  static Lldp::Snmp::Root const& root() { return *driver_->root(); }

  // The port numbers of a row collection.
  template <class Map>
  static Ports portsOf(Map const& rows) {
    Ports ports;
    for (auto it = rows.iterator(); !it.atEnd(); it.advance()) {
      ports.insert(it->ethPortId().value());
    }
    return ports;
  }
  // "port.index" of every neighbour row.
  static std::vector<std::string> neighbourRows() {
    std::vector<std::string> rows;
    for (auto it = root().remoteSystem().iterator(); !it.atEnd(); it.advance()) {
      rows.push_back(std::to_string(it->localPortNum()) + "." + std::to_string(it->index()));
    }
    return rows;
  }
  // "port.index.vlan" of every neighbour's VLAN name record.
  static std::vector<std::string> vlanNameRecords() {
    std::vector<std::string> records;
    for (auto it = root().remoteVlanName().iterator(); !it.atEnd(); it.advance()) {
      auto const& key = it->value.key;
      records.push_back(std::to_string(key.ethPortId.value()) + "." + std::to_string(key.index) + "." +
                        std::to_string(key.vlanId.value()));
    }
    return records;
  }
  // The transmit port list of a local address; none without a row.
  static std::optional<Ports> txPortsOf(Lldp::ManagementAddress::Key const& key) {
    auto const row = root().localManagementAddress(key);
    if (!row || !row->portsTxEnable()) {
      return std::nullopt;
    }
    Ports ports;
    for (auto it = row->portsTxEnable()->portId().iterator(); !it.atEnd(); it.advance()) {
      ports.insert(it.currNodeMaybeStale().first);
    }
    return ports;
  }

  static inline std::unique_ptr<Reconciler> reconciler_;
  static inline std::unique_ptr<PortDriver> driver_;
};

TEST_F(PortLifecycle, StartBringsInEveryPortWithItsNeighbours) {
  EXPECT_EQ(portsOf(root().portConfig()), (Ports{1, 2}));
  EXPECT_EQ(portsOf(root().portStatus()), (Ports{1, 2}));
  EXPECT_EQ(portsOf(root().localPort()), (Ports{1, 2}));
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"1.1", "1.2", "2.1"}));
  EXPECT_EQ(vlanNameRecords(), (std::vector<std::string>{"1.1.10", "1.1.20", "2.1.30"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{1, 2}));
  EXPECT_EQ(txPortsOf(withoutPriority), Ports{});
  EXPECT_TRUE(driver_->lldpSm() && root().lldpSm() == driver_->lldpSm());
}

TEST_F(PortLifecycle, JoiningPortGetsRowsAReactorAndItsPlaceInTheAddressLists) {
  DesiredState next = baseline();
  DesiredPort e3;
  e3.name = Ondo::IntfId(Zet::String("e3"));
  e3.number = EthPortId(7);
  e3.neighbors.push_back(next.ports[1].neighbors[0]);
  e3.neighbors[0].msap.chassisId = Lldp::ChassisId(Zet::String("delta"));
  next.ports.push_back(e3);
  reconciler_->apply(next);

  auto const port = reconciler_->ports().back();
  ASSERT_TRUE(root().portConfig(EthPortId(7)) && root().portStatus(EthPortId(7)) && root().localPort(EthPortId(7)));
  EXPECT_TRUE(root().portConfig(EthPortId(7))->ptr() == port.portConfig);
  EXPECT_TRUE(root().portStatus(EthPortId(7))->ptr() == port.portStatus);
  EXPECT_TRUE(root().localPort(EthPortId(7))->ptr() == port.localPort);
  auto const sm = root().portStatusSm(e3.name);
  ASSERT_TRUE(sm);
  EXPECT_EQ(sm->ethPortId().value(), 7);
  EXPECT_TRUE(sm->portStatus() == port.portStatus);
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"1.1", "1.2", "2.1", "7.1"}));
  EXPECT_EQ(vlanNameRecords(), (std::vector<std::string>{"1.1.10", "1.1.20", "2.1.30", "7.1.30"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{1, 2, 7}));
  EXPECT_EQ(txPortsOf(withoutPriority), Ports{});
}

TEST_F(PortLifecycle, LeavingPortTakesItsRowsNeighboursAndListPlaceWithIt) {
  DesiredState next = baseline();
  next.ports.erase(next.ports.begin());
  reconciler_->apply(next);

  EXPECT_EQ(portsOf(root().portConfig()), Ports{2});
  EXPECT_EQ(portsOf(root().portStatus()), Ports{2});
  EXPECT_EQ(portsOf(root().localPort()), Ports{2});
  EXPECT_FALSE(root().portStatusSm(Ondo::IntfId(Zet::String("e1"))));
  EXPECT_EQ(root().portStatusSm().count(), 1u);
  EXPECT_EQ(neighbourRows(), std::vector<std::string>{"2.1"});
  EXPECT_EQ(vlanNameRecords(), std::vector<std::string>{"2.1.30"});
  EXPECT_EQ(txPortsOf(withPriority), Ports{2});

  // And it comes back whole.
  reconciler_->apply(baseline());
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"1.1", "1.2", "2.1"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{1, 2}));
}

// The case that needs the driver told inside the apply: by its end the port
// is back in localPort under its name.
TEST_F(PortLifecycle, RenumberedPortMovesEverythingToItsNewNumber) {
  DesiredState next = baseline();
  next.ports[0].number = EthPortId(5);
  reconciler_->apply(next);

  EXPECT_EQ(portsOf(root().portConfig()), (Ports{2, 5}));
  EXPECT_EQ(portsOf(root().localPort()), (Ports{2, 5}));
  auto const sm = root().portStatusSm(Ondo::IntfId(Zet::String("e1")));
  ASSERT_TRUE(sm);
  EXPECT_EQ(sm->ethPortId().value(), 5);
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"2.1", "5.1", "5.2"}));
  EXPECT_EQ(vlanNameRecords(), (std::vector<std::string>{"2.1.30", "5.1.10", "5.1.20"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{2, 5}));
}

TEST_F(PortLifecycle, TwoPortsSwappingNumbersKeepTheirOwnNeighbours) {
  DesiredState next = baseline();
  next.ports[0].number = EthPortId(2);
  next.ports[1].number = EthPortId(1);
  reconciler_->apply(next);

  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"1.1", "2.1", "2.2"}));
  EXPECT_EQ(vlanNameRecords(), (std::vector<std::string>{"1.1.30", "2.1.10", "2.1.20"}));
  EXPECT_EQ(root().localPort(EthPortId(1))->ptr()->intfId(), Ondo::IntfId(Zet::String("e2")));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{1, 2}));
}

TEST_F(PortLifecycle, NeighboursOfAKeptPortFollowThroughItsReactor) {
  DesiredState next = baseline();
  next.ports[0].neighbors.pop_back();
  next.ports[1].neighbors[0].vlanName.clear();
  DesiredNeighbor epsilon;
  epsilon.index = 4;
  epsilon.msap.chassisId = Lldp::ChassisId(Zet::String("epsilon"));
  next.ports[1].neighbors.push_back(epsilon);
  reconciler_->apply(next);

  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"1.1", "2.1", "2.4"}));
  EXPECT_EQ(vlanNameRecords(), (std::vector<std::string>{"1.1.10", "1.1.20"}));
  EXPECT_EQ(portsOf(root().portConfig()), (Ports{1, 2}));
}

TEST_F(PortLifecycle, AddressArrivingWithAPriorityIsSentOnEveryPort) {
  DesiredState next = baseline();
  Lldp::ManagementAddress added;
  added.manAddrSubtype = 1;
  added.manAddr = Lldp::ManAddress(Zet::String(std::string("\xc0\x00\x02\x03", 4)));
  next.localSystem.managementAddress.push_back(added);
  next.localSystem.managementAddressPrio.push_back({Lldp::ManAddrPriority(2, 0, 0, Ondo::IntfId()), added.key()});
  reconciler_->apply(next);
  EXPECT_EQ(txPortsOf(added.key()), (Ports{1, 2}));

  reconciler_->apply(baseline());
  EXPECT_EQ(txPortsOf(added.key()), std::nullopt);
}

}  // namespace
