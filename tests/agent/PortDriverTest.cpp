// The port driver as the plug-in's tables see it: a Root in the state
// database, and per port of the state three rows keyed by its number, each
// reading that port's entity.

#include "PortDriver.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "Reconciler.h"
#include "Root.h"
#include "Scenario.h"
#include "Snmp/Conversions.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"

namespace {

using Interface::EthPortId;

constexpr char const* threePortsJson = R"({
  "ports": [
    {"name": "e1", "number": 3, "config": {"adminStatus": "rxOnly"}},
    {"name": "e2", "number": 17},
    {"name": "e3", "number": 250, "localPort": {"portDesc": "to core"}}]})";

// e2 gone, e3 renumbered, e1 as it was.
constexpr char const* afterChangeJson = R"({
  "ports": [
    {"name": "e1", "number": 3, "config": {"adminStatus": "rxOnly"}},
    {"name": "e3", "number": 40, "localPort": {"portDesc": "to core"}}]})";

template <class Map>
std::vector<std::uint16_t> portsOf(Map const& map) {
  std::vector<std::uint16_t> numbers;
  for (auto it = map.iterator(); !it.atEnd(); it.advance()) {
    numbers.push_back(it->ethPortId().value());
  }
  return numbers;
}

class PortDriverTest : public ::testing::Test {
 protected:
  void SetUp() override { Snmp::uptimeOriginIs(1000.0); }
  void TearDown() override { Snmp::uptimeOriginIs(0.0); }

  // Each row of the port is the Root's member and reads the port's own entity.
  static void expectRowsOf(Lldp::Snmp::Root const& root, Reconciler::Port const& port) {
    auto const config = root.portConfig(port.number);
    auto const status = root.portStatus(port.number);
    auto const local = root.localPort(port.number);
    ASSERT_TRUE(config && status && local) << "port " << port.number;
    EXPECT_TRUE(config->ptr() == port.portConfig);
    EXPECT_TRUE(status->ptr() == port.portStatus);
    EXPECT_TRUE(local->ptr() == port.localPort);
    EXPECT_EQ(config->parent(), &root);
  }

  Reconciler reconciler_;
};

TEST_F(PortDriverTest, MountsItsRootUntilItGoes) {
  {
    PortDriver const driver;
    ASSERT_TRUE(driver.root());
    EXPECT_TRUE(Statebase::entity(PortDriver::rootPath) == driver.root());
    EXPECT_TRUE(Statebase::entity("snmp/lldp/root") == driver.root());
  }
  EXPECT_FALSE(Statebase::entity("snmp/lldp/root"));
}

// Whoever mounted a Root later owns the path now.
TEST_F(PortDriverTest, LeavesARootMountedByAnotherInPlace) {
  auto const other = Lldp::Snmp::Root::RootIs(Zet::Name("root"));
  {
    PortDriver const driver;
    Statebase::entityIs(PortDriver::rootPath, other);
  }
  EXPECT_TRUE(Statebase::entity(PortDriver::rootPath) == other);
  Statebase::entityDel(PortDriver::rootPath);
}

TEST_F(PortDriverTest, SyncMakesThreeRowsPerPortKeyedByItsNumber) {
  reconciler_.apply(parseScenario(threePortsJson, "three.json"));
  PortDriver driver;
  driver.sync(reconciler_.ports());

  auto const& root = *driver.root();
  std::vector<std::uint16_t> const numbers{3, 17, 250};
  EXPECT_EQ(portsOf(root.portConfig()), numbers);
  EXPECT_EQ(portsOf(root.portStatus()), numbers);
  EXPECT_EQ(portsOf(root.localPort()), numbers);
  for (auto const& port : reconciler_.ports()) {
    expectRowsOf(root, port);
  }
  EXPECT_EQ(root.portConfig(EthPortId(3))->adminStatus(), Lldp::AdminStatus::rxOnly);
  EXPECT_EQ(root.localPort(EthPortId(250))->portDesc().value(), Zet::String("to core"));
}

TEST_F(PortDriverTest, SecondSyncRemovesAndMovesExactlyTheRowsOfChangedPorts) {
  reconciler_.apply(parseScenario(threePortsJson, "three.json"));
  PortDriver driver;
  driver.sync(reconciler_.ports());
  auto const& root = *driver.root();
  auto const kept = root.portConfig(EthPortId(3));
  auto const keptStatus = root.portStatus(EthPortId(3));
  auto const gone = root.localPort(EthPortId(17));
  auto const moved = root.portStatus(EthPortId(250));

  reconciler_.apply(parseScenario(afterChangeJson, "after.json"));
  driver.sync(reconciler_.ports());

  std::vector<std::uint16_t> const numbers{3, 40};
  EXPECT_EQ(portsOf(root.portConfig()), numbers);
  EXPECT_EQ(portsOf(root.portStatus()), numbers);
  EXPECT_EQ(portsOf(root.localPort()), numbers);
  for (auto const& port : reconciler_.ports()) {
    expectRowsOf(root, port);
  }
  EXPECT_EQ(root.portConfig(EthPortId(3)).get(), kept.get());
  EXPECT_EQ(root.portStatus(EthPortId(3)).get(), keptStatus.get());
  EXPECT_EQ(gone->parent(), nullptr);
  EXPECT_EQ(moved->parent(), nullptr);
  EXPECT_EQ(root.localPort(EthPortId(40))->portDesc().value(), Zet::String("to core"));

  // The same snapshot again touches no row.
  auto const settled = root.portConfig().version();
  driver.sync(reconciler_.ports());
  EXPECT_EQ(root.portConfig().version(), settled);
}

}  // namespace
