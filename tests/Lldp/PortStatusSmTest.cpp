// The per-port state machine: neighbours of a port appear in and leave the
// mirror with their rows, value records and state machines, in order.

#include "PortStatusSm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
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

// Trace lines of the reactors (all levels) and of the framework's faults;
// `probe` sees each line as it is written.
class TraceLines {
 public:
  TraceLines() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::levelsIs("Zet", 1u);
    Zet::Trace::sinkIs([this](Zet::String const&, int, std::string_view text) {
      lines_.emplace_back(text);
      if (probe) {
        probe(lines_.back());
      }
    });
  }
  ~TraceLines() {
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
    Zet::Trace::levelsIs("Zet", 0);
  }
  std::size_t countStarting(std::string_view prefix) const {
    std::size_t n = 0;
    for (auto const& line : lines_) {
      n += line.starts_with(prefix) ? 1 : 0;
    }
    return n;
  }

  std::function<void(std::string const&)> probe;

 private:
  std::vector<std::string> lines_;
};

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* chassis = "peer") {
  auto const n = Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String(chassis)),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
  n->unknownTlvIs(Lldp::UnknownTlv(20));
  n->vlanNameIs(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("ten"))));
  return n;
}

std::string messageOf(std::function<void()> const& f) {
  try {
    f();
  } catch (Zet::NameInUseException const& e) {
    return e.what();
  }
  return "no exception";
}

class PortStatusSm : public ::testing::Test {
 protected:
  void TearDown() override {
    // The Root owns its reactors and they hold it: let them go.
    root->portStatusSmDelAll();
  }

  std::size_t records() const { return root->remoteUnknownTlv().count() + root->remoteVlanName().count(); }

  Zet::Ptr<Root> const root = Root::RootIs("root");
  Zet::Ptr<Lldp::PortStatus> const port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  TraceLines trace;
};

TEST_F(PortStatusSm, NeighbourTakesTheRoadInAndOutInOrder) {
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);
  RemoteSystemKey const key(EthPortId(7), 5);
  std::vector<std::string> seen;
  trace.probe = [&](std::string const& line) {
    if (line.starts_with("Adding ") || line.starts_with("Removing ")) {
      seen.push_back(line.substr(0, line.find(' ', line.find(' ') + 1)) + (root->remoteSystem(key) ? " row" : "") +
                     (sm->remoteSystemSm(5) ? " sm" : ""));
    }
  };
  auto const n = neighbour(5);

  port->remoteSystemIs(n);

  auto const row = root->remoteSystem(key);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->ptr(), n);
  EXPECT_EQ(records(), 2u);
  ASSERT_TRUE(sm->remoteSystemSm(5));
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), n);
  // The row is there before the sub-tables are filled, by the new state machine's first scan.
  EXPECT_EQ(seen, (std::vector<std::string>{"Adding RemoteSystem", "Adding UnknownTlv row", "Adding VlanName row"}));

  seen.clear();
  port->remoteSystemDel(5);

  // Sub-tables first, through the state machine that is still there, the row last.
  EXPECT_EQ(seen, (std::vector<std::string>{"Removing RemoteSystem row sm", "Removing UnknownTlv row sm",
                                            "Removing VlanName row sm"}));
  EXPECT_FALSE(root->remoteSystem(key));
  EXPECT_FALSE(sm->remoteSystemSm(5));
  EXPECT_EQ(records(), 0u);
  // Whoever still holds the row reads the neighbour through it.
  EXPECT_EQ(row->ptr(), n);
}

TEST_F(PortStatusSm, FirstScanMirrorsTheNeighboursAlreadyThere) {
  auto const empty = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet8"));
  auto const quiet = root->portStatusSmIs(EthPortId(8), empty, root);
  EXPECT_EQ(quiet->remoteSystemSm().count(), 0u);
  EXPECT_EQ(root->remoteSystem().count(), 0u);

  port->remoteSystemIs(neighbour(1));
  port->remoteSystemIs(neighbour(2));
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  EXPECT_EQ(root->remoteSystem().count(), 2u);
  EXPECT_EQ(sm->remoteSystemSm().count(), 2u);
  EXPECT_EQ(records(), 4u);
  // Brought in by the scan alone: nothing was delivered for them.
  EXPECT_EQ(trace.countStarting("PortStatusSm::handleRemoteSystem( "), 0u);
}

TEST_F(PortStatusSm, RepeatedNotificationOfAPresentNeighbourChangesNothing) {
  port->remoteSystemIs(neighbour(5));
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);
  auto const row = root->remoteSystem({EthPortId(7), 5});
  auto const machine = sm->remoteSystemSm(5);

  sm->handleRemoteSystem(5);
  sm->handleRemoteSystem(5);

  EXPECT_EQ(trace.countStarting("Adding RemoteSystem with key "), 3u);
  EXPECT_EQ(trace.countStarting("RemoteSystemSm::handleInitialized( "), 1u);
  EXPECT_EQ(root->remoteSystem({EthPortId(7), 5}), row);
  EXPECT_EQ(sm->remoteSystemSm(5), machine);
  EXPECT_EQ(records(), 2u);
}

TEST_F(PortStatusSm, RemovalOfANeighbourNeverTakenInIsFatal) {
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);
  EXPECT_DEATH(sm->handleRemoteSystem(42), "Assertion `closing' failed");
}

TEST_F(PortStatusSm, ReplacedNeighbourWithoutItsRemovalRaisesAndChangesNothing) {
  auto const first = neighbour(5, "first");
  port->remoteSystemIs(first);
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  port->remoteSystemIs(neighbour(5, "second"));

  // The exception leaves the reactor into the framework, which reports it.
  EXPECT_EQ(trace.countStarting("notifiee let an exception out: Reinstantiating the entity with fullName "), 1u);
  EXPECT_EQ(root->remoteSystem({EthPortId(7), 5})->ptr(), first);
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), first);
  EXPECT_EQ(
      messageOf([&] { sm->remoteSystemSmIs(5, EthPortId(8), first, root); }),
      "Reinstantiating the pointer interface where constructor parameter attribute _ethPortId has a different value "
      "of 8 than the current value of 7 not allowed");
  EXPECT_TRUE(messageOf([&] { sm->remoteSystemSmIs(5, EthPortId(7), neighbour(5), root); })
                  .starts_with("Reinstantiating the pointer interface where constructor parameter attribute "
                               "_remoteSystem has a different value of Ref('Lldp::RemoteSystem', "));
  EXPECT_EQ(sm->remoteSystemSmIs(5, EthPortId(7), first, root), sm->remoteSystemSm(5));
}

TEST_F(PortStatusSm, CloseEmptiesTheMirrorAndLeavesTheMachineListening) {
  port->remoteSystemIs(neighbour(1));
  port->remoteSystemIs(neighbour(2));
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  sm->doClose();

  EXPECT_EQ(root->remoteSystem().count(), 0u);
  EXPECT_EQ(records(), 0u);
  EXPECT_EQ(sm->remoteSystemSm().count(), 0u);
  EXPECT_EQ(port->remoteSystemCount(), 2u);

  port->remoteSystemIs(neighbour(3));
  EXPECT_TRUE(root->remoteSystem({EthPortId(7), 3}));
  EXPECT_EQ(root->remoteSystem().count(), 1u);
}

TEST_F(PortStatusSm, RemovalWithoutCloseLeavesTheRowsBehind) {
  port->remoteSystemIs(neighbour(1));
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  auto const removed = root->portStatusSmDel(Ondo::IntfId("Ethernet7"));

  EXPECT_EQ(removed, sm);
  EXPECT_FALSE(root->portStatusSm(Ondo::IntfId("Ethernet7")));
  EXPECT_TRUE(removed->hasNotificationActive());
  EXPECT_EQ(root->remoteSystem().count(), 1u);
  EXPECT_EQ(records(), 2u);
}

TEST_F(PortStatusSm, RootGivesTheSameMachineForTheSameParametersAndRefusesOthers) {
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  EXPECT_EQ(root->portStatusSmIs(EthPortId(7), port, root), sm);
  EXPECT_EQ(root->portStatusSm(Ondo::IntfId("Ethernet7")), sm);
  EXPECT_EQ(messageOf([&] { root->portStatusSmIs(EthPortId(9), port, root); }),
            "Reinstantiating the pointer interface where constructor parameter attribute _ethPortId has a different "
            "value of 9 than the current value of 7 not allowed");
  auto const samePortName = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  EXPECT_TRUE(messageOf([&] { root->portStatusSmIs(EthPortId(7), samePortName, root); })
                  .starts_with("Reinstantiating the pointer interface where constructor parameter attribute "
                               "_portStatus has a different value of Ref('Lldp::PortStatus', "));
  auto const otherRoot = Root::RootIs("other");
  EXPECT_TRUE(messageOf([&] { root->portStatusSmIs(EthPortId(7), port, otherRoot); })
                  .starts_with("Reinstantiating the pointer interface where constructor parameter attribute _root "
                               "has a different value of Ref('Lldp::Snmp::Root', "));
  EXPECT_EQ(root->portStatusSm().count(), 1u);
}

TEST_F(PortStatusSm, WithoutItsNotifierTheMachineLosesItsNameAndHearsNothing) {
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);

  EXPECT_EQ(sm->portStatusDel(), port);

  EXPECT_EQ(sm->fwkKey(), Ondo::IntfId());
  EXPECT_FALSE(sm->portStatus());
  port->remoteSystemIs(neighbour(1));
  EXPECT_EQ(root->remoteSystem().count(), 0u);
}

}  // namespace
