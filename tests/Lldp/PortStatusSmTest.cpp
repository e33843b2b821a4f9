// The per-port state machine: neighbours of a port appear in and leave the
// mirror with their rows, value records and state machines, in order.

#include "PortStatusSm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "Ondo/IntfId.h"
#include "Root.h"
#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/Trace.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::RemoteSystemKey;
using Lldp::Snmp::Root;

// A neighbour with one unknown TLV and one VLAN name: two value records.
Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* chassis = "peer") {
  auto const n = Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String(chassis)),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
  n->unknownTlvIs(Lldp::UnknownTlv(20));
  n->vlanNameIs(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("ten"))));
  return n;
}

// Port 7's state machine over the Root, with the reactors' trace (all levels)
// and the framework's faults.
class PortStatusSm : public ::testing::Test {
 protected:
  PortStatusSm() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::levelsIs("Zet", 1u);
    Zet::Trace::sinkIs([this](Zet::String const&, int, std::string_view text) { lines_.emplace_back(text); });
  }
  ~PortStatusSm() override {
    // The Root owns its reactors and they hold it: let them go.
    root_->portStatusSmDelAll();
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
    Zet::Trace::levelsIs("Zet", 0);
  }

  Zet::Ptr<Lldp::Snmp::PortStatusSm> build() { return root_->portStatusSmIs(EthPortId(7), port_, root_); }
  std::size_t records() const { return root_->remoteUnknownTlv().count() + root_->remoteVlanName().count(); }
  std::size_t countStarting(std::string_view prefix) const {
    return std::ranges::count_if(lines_, [&](std::string const& line) { return line.starts_with(prefix); });
  }

  Zet::Ptr<Root> const root_ = Root::RootIs("root");
  Zet::Ptr<Lldp::PortStatus> const port_ = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  std::vector<std::string> lines_;
};

TEST_F(PortStatusSm, NeighbourTakesTheRoadInAndOutInOrder) {
  auto const sm = build();
  RemoteSystemKey const key(EthPortId(7), 5);
  // What the mirror holds as each addition or removal is traced.
  std::vector<std::string> seen;
  Zet::Trace::sinkIs([&](Zet::String const&, int, std::string_view line) {
    if (line.starts_with("Adding ") || line.starts_with("Removing ")) {
      seen.push_back(std::string(line.substr(0, line.find(' ', line.find(' ') + 1))) +
                     (root_->remoteSystem(key) ? " row" : "") + (sm->remoteSystemSm(5) ? " sm" : ""));
    }
  });
  auto const n = neighbour(5);

  port_->remoteSystemIs(n);
  auto const row = root_->remoteSystem(key);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->ptr(), n);
  EXPECT_EQ(records(), 2u);
  ASSERT_TRUE(sm->remoteSystemSm(5));
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), n);
  // The row is there before the sub-tables are filled, by the new state machine's first scan.
  EXPECT_EQ(seen, (std::vector<std::string>{"Adding RemoteSystem", "Adding UnknownTlv row", "Adding VlanName row"}));

  seen.clear();
  port_->remoteSystemDel(5);
  // Sub-tables first, through the state machine that is still there, the row last.
  EXPECT_EQ(seen, (std::vector<std::string>{"Removing RemoteSystem row sm", "Removing UnknownTlv row sm",
                                            "Removing VlanName row sm"}));
  EXPECT_FALSE(root_->remoteSystem(key));
  EXPECT_FALSE(sm->remoteSystemSm(5));
  EXPECT_EQ(records(), 0u);
  // Whoever still holds the row reads the neighbour through it.
  EXPECT_EQ(row->ptr(), n);
}

TEST_F(PortStatusSm, FirstScanMirrorsTheNeighboursAlreadyThereAndRepeatsChangeNothing) {
  port_->remoteSystemIs(neighbour(1));
  port_->remoteSystemIs(neighbour(2));
  auto const sm = build();
  EXPECT_EQ(root_->remoteSystem().count(), 2u);
  EXPECT_EQ(sm->remoteSystemSm().count(), 2u);
  EXPECT_EQ(records(), 4u);
  // Brought in by the scan alone: nothing was delivered for them.
  EXPECT_EQ(countStarting("PortStatusSm::handleRemoteSystem( "), 0u);

  auto const row = root_->remoteSystem({EthPortId(7), 2});
  auto const machine = sm->remoteSystemSm(2);
  sm->handleRemoteSystem(2);
  sm->handleRemoteSystem(2);
  EXPECT_EQ(root_->remoteSystem({EthPortId(7), 2}), row);
  EXPECT_EQ(sm->remoteSystemSm(2), machine);
  EXPECT_EQ(countStarting("RemoteSystemSm::handleInitialized( "), 2u);
  EXPECT_EQ(records(), 4u);
}

TEST_F(PortStatusSm, RemovalOfANeighbourNeverTakenInIsFatal) {
  auto const sm = build();
  EXPECT_DEATH(sm->handleRemoteSystem(42), "Assertion `closing' failed");
}

TEST_F(PortStatusSm, ReplacedNeighbourWithoutItsRemovalRaisesAndChangesNothing) {
  auto const first = neighbour(5, "first");
  port_->remoteSystemIs(first);
  auto const sm = build();

  port_->remoteSystemIs(neighbour(5, "second"));
  // The exception leaves the reactor into the framework, which reports it.
  EXPECT_EQ(countStarting("notifiee let an exception out: Reinstantiating the entity with fullName "), 1u);
  EXPECT_EQ(root_->remoteSystem({EthPortId(7), 5})->ptr(), first);
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), first);
}

TEST_F(PortStatusSm, CloseEmptiesTheMirrorAndLeavesTheMachineListening) {
  port_->remoteSystemIs(neighbour(1));
  port_->remoteSystemIs(neighbour(2));
  auto const sm = build();

  sm->doClose();
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
  EXPECT_EQ(records(), 0u);
  EXPECT_EQ(sm->remoteSystemSm().count(), 0u);
  EXPECT_EQ(port_->remoteSystemCount(), 2u);

  port_->remoteSystemIs(neighbour(3));
  EXPECT_TRUE(root_->remoteSystem({EthPortId(7), 3}));
  EXPECT_EQ(root_->remoteSystem().count(), 1u);
}

// Removal without doClose() leaves the rows behind: the host closes first.
TEST_F(PortStatusSm, RootGivesTheSameMachineForTheSameParametersRefusesOthersAndRemovalLeavesTheRows) {
  port_->remoteSystemIs(neighbour(1));
  auto const sm = build();
  EXPECT_EQ(build(), sm);
  EXPECT_EQ(root_->portStatusSm(Ondo::IntfId("Ethernet7")), sm);
  EXPECT_THAT([&] { root_->portStatusSmIs(EthPortId(9), port_, root_); },
              testing::ThrowsMessage<Zet::NameInUseException>(testing::StrEq(
                  "Reinstantiating the pointer interface where constructor parameter attribute _ethPortId has a "
                  "different value of 9 than the current value of 7 not allowed")));
  auto const samePortName = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  EXPECT_THROW(root_->portStatusSmIs(EthPortId(7), samePortName, root_), Zet::NameInUseException);

  EXPECT_EQ(root_->portStatusSmDel(Ondo::IntfId("Ethernet7")), sm);
  EXPECT_FALSE(root_->portStatusSm(Ondo::IntfId("Ethernet7")));
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_EQ(root_->remoteSystem().count(), 1u);
  EXPECT_EQ(records(), 2u);
}

TEST_F(PortStatusSm, WithoutItsNotifierTheMachineLosesItsNameAndHearsNothing) {
  auto const sm = build();
  EXPECT_EQ(sm->portStatusDel(), port_);
  EXPECT_EQ(sm->fwkKey(), Ondo::IntfId());
  port_->remoteSystemIs(neighbour(1));
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
}

}  // namespace
