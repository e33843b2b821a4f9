// Ports joining and leaving as the plug-in's mirror sees them: the reconciler
// plays the LLDP agent, the driver follows it and drives the plug-in's
// reactors, and the Root shows the outcome. The order of the driver's calls
// shows in that outcome: a reactor removed before its close leaves neighbour
// rows behind, and a port reported before it left localPort stays in the
// address port lists. The reactors' own work is proven with the plug-in.
//
// The plug-in takes one Root per process, so the suite shares one world and
// every test starts by applying the baseline. Port numbers are not positions:
// e1 is 3 and e2 is 17.

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
    {"name": "e1", "number": 3, "neighbors": [
       {"index": 1, "msap": {"chassisId": "alpha"}},
       {"index": 2, "msap": {"chassisId": "beta"}}]},
    {"name": "e2", "number": 17, "neighbors": [
       {"index": 1, "msap": {"chassisId": "gamma"}}]}]})";

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
  // The port's three rows stand at its number and read its own entities.
  static void expectRowsOf(Reconciler::Port const& port) {
    auto const config = root().portConfig(port.number);
    auto const status = root().portStatus(port.number);
    auto const local = root().localPort(port.number);
    ASSERT_TRUE(config && status && local) << "port " << port.number;
    EXPECT_TRUE(config->ptr() == port.portConfig);
    EXPECT_TRUE(status->ptr() == port.portStatus);
    EXPECT_TRUE(local->ptr() == port.localPort);
  }
  // "port.index" of every neighbour row.
  static std::vector<std::string> neighbourRows() {
    std::vector<std::string> rows;
    for (auto it = root().remoteSystem().iterator(); !it.atEnd(); it.advance()) {
      rows.push_back(std::to_string(it->localPortNum()) + "." + std::to_string(it->index()));
    }
    return rows;
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

TEST_F(PortLifecycle, StartMountsTheRootAndBringsInEveryPortWithItsNeighbours) {
  EXPECT_TRUE(Statebase::entity("snmp/lldp/root") == driver_->root());
  EXPECT_EQ(portsOf(root().portConfig()), (Ports{3, 17}));
  EXPECT_EQ(portsOf(root().portStatus()), (Ports{3, 17}));
  EXPECT_EQ(portsOf(root().localPort()), (Ports{3, 17}));
  for (auto const& port : reconciler_->ports()) {
    expectRowsOf(port);
  }
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"3.1", "3.2", "17.1"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{3, 17}));
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
  expectRowsOf(port);
  auto const sm = root().portStatusSm(e3.name);
  ASSERT_TRUE(sm);
  EXPECT_EQ(sm->ethPortId().value(), 7);
  EXPECT_TRUE(sm->portStatus() == port.portStatus);
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"3.1", "3.2", "7.1", "17.1"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{3, 7, 17}));
  EXPECT_EQ(txPortsOf(withoutPriority), Ports{});
}

TEST_F(PortLifecycle, LeavingPortTakesItsRowsNeighboursAndListPlaceWithIt) {
  DesiredState next = baseline();
  next.ports.erase(next.ports.begin());
  reconciler_->apply(next);

  EXPECT_EQ(portsOf(root().portConfig()), Ports{17});
  EXPECT_EQ(portsOf(root().portStatus()), Ports{17});
  EXPECT_EQ(portsOf(root().localPort()), Ports{17});
  EXPECT_FALSE(root().portStatusSm(Ondo::IntfId(Zet::String("e1"))));
  EXPECT_EQ(root().portStatusSm().count(), 1u);
  EXPECT_EQ(neighbourRows(), std::vector<std::string>{"17.1"});
  EXPECT_EQ(txPortsOf(withPriority), Ports{17});
}

// The case that needs the driver told inside the apply: by its end the port
// is back in localPort under its name.
TEST_F(PortLifecycle, RenumberedPortMovesEverythingToItsNewNumber) {
  DesiredState next = baseline();
  next.ports[0].number = EthPortId(5);
  reconciler_->apply(next);

  EXPECT_EQ(portsOf(root().portConfig()), (Ports{5, 17}));
  EXPECT_EQ(portsOf(root().localPort()), (Ports{5, 17}));
  auto const sm = root().portStatusSm(Ondo::IntfId(Zet::String("e1")));
  ASSERT_TRUE(sm);
  EXPECT_EQ(sm->ethPortId().value(), 5);
  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"5.1", "5.2", "17.1"}));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{5, 17}));
}

TEST_F(PortLifecycle, TwoPortsSwappingNumbersKeepTheirOwnNeighbours) {
  DesiredState next = baseline();
  next.ports[0].number = EthPortId(17);
  next.ports[1].number = EthPortId(3);
  reconciler_->apply(next);

  EXPECT_EQ(neighbourRows(), (std::vector<std::string>{"3.1", "17.1", "17.2"}));
  EXPECT_EQ(root().localPort(EthPortId(3))->ptr()->intfId(), Ondo::IntfId(Zet::String("e2")));
  EXPECT_EQ(txPortsOf(withPriority), (Ports{3, 17}));
}

// Another driver mounts its own Root over the path; going, it takes down only
// a Root that is still its own. The suite's Root is put back either way.
TEST_F(PortLifecycle, DriverUnmountsItsRootOnlyWhileItHoldsThePath) {
  {
    PortDriver const other;
    EXPECT_TRUE(Statebase::entity(PortDriver::rootPath) == other.root());
  }
  EXPECT_FALSE(Statebase::entity(PortDriver::rootPath));
  {
    PortDriver const other;
    Statebase::entityIs(PortDriver::rootPath, driver_->root());
  }
  EXPECT_TRUE(Statebase::entity(PortDriver::rootPath) == driver_->root());
}

}  // namespace
