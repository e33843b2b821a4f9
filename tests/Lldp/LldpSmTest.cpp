// The top-level state machine: local management addresses with their
// priorities and transmit port lists, the ports the host reports, the hand-over
// of the mirror, and the 5-second limit on lldpRemTablesChange.
//
// Building an LldpSm hands the Root to the conversions, which a process allows
// once: every test that builds one runs in a child process of its own.

#include "LldpSm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "MirrorRows.h"
#include "MirrorWorld.h"
#include "Ondo/IntfId.h"
#include "Root.h"
#include "Snmp/Config.h"
#include "Snmp/SnmpUtil.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/System.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::Root;
using Key = Lldp::ManagementAddress::Key;
using Ports = std::set<std::uint16_t>;

// Runs `body` in a child process, which passes if no expectation failed
// there; the child's failures go to standard error, where the parent shows them.
template <class Body>
void inOwnProcess(Body body) {
  EXPECT_EXIT(
      {
        body();
        auto const* result = ::testing::UnitTest::GetInstance()->current_test_info()->result();
        for (int i = 0; i < result->total_part_count(); ++i) {
          std::cerr << result->GetTestPartResult(i);
        }
        std::exit(result->Failed() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

Lldp::ManagementAddress address(std::uint8_t lastByte, std::int32_t ifId) {
  Lldp::ManagementAddress a(addressKey(lastByte));
  a.ifId = ifId;
  return a;
}

Lldp::ManAddrPriority priority(std::uint32_t value) { return {value, 1, 0, Ondo::IntfId("Management1")}; }

Ondo::IntfId intf(std::uint16_t port) { return Ondo::IntfId("Ethernet" + std::to_string(port)); }

// The inbound entities, the mirror, a settable clock, the reactors' trace, and
// an SNMP configuration under which lldpRemTablesChange is registered but
// refused, so that a notification is built no further than its check.
struct World {
  World() {
    Zet::System::currentTimeSourceIs([this] { return now; });
    auto const snmpConfig = Zet::makePtr<Snmp::Config>();
    snmpConfig->notificationConfigIs("lldp")->notificationIs("lldpRemTablesChange");
    snmpConfig->notificationsEnabledIs(false, "off in this test");
    Statebase::entityIs(SnmpUtil::snmpConfigPath, snmpConfig);
  }

  Zet::Ptr<Lldp::Snmp::LldpSm> build() { return root->lldpSmIs(status, local, config, root); }

  // Ports 1 and 2 with rows in the Root, as the host numbers them, and
  // addresses 1 and 2, the first with priority 10.
  void usual() {
    for (std::uint16_t port : {1, 2}) {
      root->localPortIs(EthPortId(port), Zet::makePtr<Lldp::LocalPort>(intf(port)));
    }
    local->managementAddressIs(address(1, 11));
    local->managementAddressIs(address(2, 12));
    local->managementAddressPrioIs(priority(10), addressKey(1));
  }

  // The ports of the address's list; nothing when the address has no row.
  std::optional<Ports> ports(Key const& key) const {
    auto const row = root->localManagementAddress(key);
    if (!row) {
      return std::nullopt;
    }
    Ports out;
    auto const& list = row->portsTxEnable()->portId();
    for (auto it = list.iterator(); !it.atEnd(); it.advance()) {
      out.insert(it.currNodeMaybeStale().first);
    }
    return out;
  }

  std::size_t countStarting(std::string_view prefix) const { return trace.countStarting(prefix); }

  double now = 100.0;
  TraceCapture const trace{{"LldpSnmp", ~0u}, {"Snmp", ~0u}};
  Zet::Ptr<Lldp::AllStatus> const status = Zet::makePtr<Lldp::AllStatus>();
  Zet::Ptr<Lldp::LocalSystem> const local = Zet::makePtr<Lldp::LocalSystem>();
  Zet::Ptr<Lldp::Config> const config = Zet::makePtr<Lldp::Config>();
  Zet::Ptr<Root> const root = Root::RootIs("root");
};

constexpr std::string_view generated = "Generated lldpRemTablesChange notification at time ";
constexpr std::string_view suppressed = "Suppressing lldpRemTablesChange notification at time ";
constexpr std::string_view refused = "lldpRemTablesChange notification not sent. notificationStatus returned ";

TEST(LldpSm, BuildingHandsTheRootOverSoASecondMachineEndsTheProcess) {
  EXPECT_DEATH(
      {
        World world;
        world.build();
        // An empty local system makes no rows, and the hand-over happens all the same.
        if (world.root->localManagementAddress().count() != 0) {
          std::exit(3);
        }
        world.root->lldpSmIs(Zet::makePtr<Lldp::AllStatus>(), world.local, world.config, world.root);
      },
      "Assertion `!root_' failed");
}

TEST(LldpSm, OneMachineReplaysAddressesThenPrioritiesAndFollowsLaterOnes) {
  inOwnProcess([] {
    World world;
    world.usual();
    auto const sm = world.build();
    EXPECT_EQ(world.build(), sm);
    EXPECT_EQ(world.countStarting("LldpSm::handleInitialized()"), 1u);
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    EXPECT_EQ(world.ports(addressKey(2)), Ports{});

    world.local->managementAddressIs(address(3, 13));
    EXPECT_EQ(world.ports(addressKey(3)), Ports{});
    EXPECT_EQ(world.root->localManagementAddress(addressKey(3))->rawValue(), address(3, 13));
    world.local->managementAddressPrioIs(priority(30), addressKey(3));
    EXPECT_EQ(world.ports(addressKey(3)), (Ports{1, 2}));
    EXPECT_EQ(sm->manAddrPrio(addressKey(3)), priority(30));
    EXPECT_EQ(sm->manAddr(priority(30)), addressKey(3));
  });
}

// A row keeps the value it was made with, and goes with its priority or its
// address, whichever goes first, until the address is heard again.
TEST(LldpSm, AddressRowLivesWhileBothTheAddressAndItsPriorityDo) {
  inOwnProcess([] {
    World world;
    world.usual();
    auto const sm = world.build();
    world.local->managementAddressIs(address(1, 99));
    EXPECT_EQ(world.root->localManagementAddress(addressKey(1))->rawValue().ifId, 11);
    sm->handleManagementAddressPrio(priority(99));
    EXPECT_EQ(world.root->localManagementAddress().count(), 2u);

    world.local->managementAddressPrioDel(priority(10));
    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
    EXPECT_EQ(sm->manAddrPrio().count(), 0u);
    EXPECT_EQ(sm->manAddr().count(), 0u);
    world.local->managementAddressIs(address(1, 12));
    EXPECT_EQ(world.ports(addressKey(1)), Ports{});
    EXPECT_EQ(world.root->localManagementAddress(addressKey(1))->rawValue().ifId, 12);

    // The address goes first: its priority's late removal only clears the maps.
    world.local->managementAddressPrioIs(priority(20), addressKey(1));
    world.local->managementAddressDel(addressKey(1));
    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
    world.local->managementAddressPrioDel(priority(20));
    EXPECT_EQ(sm->manAddrPrio().count(), 0u);
    EXPECT_EQ(sm->manAddr().count(), 0u);
    EXPECT_EQ(world.root->localManagementAddress().count(), 1u);
  });
}

// Old priority gone first: the row is made again with every port. New one
// first: the old one's removal takes the row, and later ports find none.
TEST(LldpSm, PriorityChangedInEitherOrder) {
  inOwnProcess([] {
    World world;
    world.usual();
    world.local->managementAddressPrioIs(priority(30), addressKey(2));
    auto const sm = world.build();
    auto const before = world.root->localManagementAddress(addressKey(1));

    world.local->managementAddressPrioDel(priority(10));
    world.local->managementAddressPrioIs(priority(20), addressKey(1));
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    EXPECT_NE(world.root->localManagementAddress(addressKey(1)), before);
    EXPECT_EQ(sm->manAddrPrio(addressKey(1)), priority(20));

    world.local->managementAddressPrioIs(priority(40), addressKey(2));
    EXPECT_EQ(world.ports(addressKey(2)), (Ports{1, 2}));
    world.local->managementAddressPrioDel(priority(30));
    EXPECT_EQ(world.ports(addressKey(2)), std::nullopt);
    EXPECT_EQ(sm->manAddr(priority(40)), addressKey(2));
    EXPECT_EQ(sm->manAddrPrio(addressKey(2)), Lldp::ManAddrPriority());
    world.local->localPortIs(Zet::makePtr<Lldp::LocalPort>(intf(3)));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(2)), std::nullopt);
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2, 3}));
  });
}

TEST(LldpSm, PriorityNamingAnAbsentAddressEndsTheProcess) {
  EXPECT_DEATH(
      {
        World world;
        world.build();
        world.local->managementAddressPrioIs(priority(10), addressKey(1));
      },
      "Assertion `localSystem\\(\\)->managementAddressHas\\( manAddrKey \\)' failed");
}

TEST(LldpSm, PortsJoiningAndLeavingChangeOnlyTheListsOfAddressesWithPriority) {
  inOwnProcess([] {
    World world;
    world.usual();
    auto const sm = world.build();
    world.local->localPortIs(Zet::makePtr<Lldp::LocalPort>(intf(3)));
    sm->handleLocalPort(intf(3), EthPortId(3));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2, 3}));
    EXPECT_EQ(world.ports(addressKey(2)), Ports{});
    // A list made later is filled from the Root's port rows: port 3 has none.
    world.local->managementAddressPrioIs(priority(20), addressKey(2));
    EXPECT_EQ(world.ports(addressKey(2)), (Ports{1, 2}));

    world.local->localPortDel(intf(3));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    // In neither collection: traced as a removal for each priority, and nothing changes.
    sm->handleLocalPort(intf(9), EthPortId(9));
    EXPECT_EQ(world.countStarting("Removing port 9 from ManagementAddress with key "), 2u);
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
  });
}

// The notification is refused by its check, and that still starts the quiet period.
TEST(LldpSm, FirstChangeAfterBuildingNotifiesAndTheNextWithinFiveSecondsAreSuppressed) {
  inOwnProcess([] {
    World world;
    world.status->remTablesLastChangeTimeIs(0.5);
    auto const sm = world.build();
    EXPECT_EQ(world.countStarting(generated), 0u);

    world.status->remTablesLastChangeTimeIs(1.0);
    EXPECT_EQ(world.countStarting(std::string(generated) + "100, err=0"), 1u);
    EXPECT_EQ(world.countStarting(refused), 1u);
    EXPECT_EQ(sm->lastNotificationTime(), 100.0);

    for (double const now : {100.4, 100.8, 104.999}) {
      world.now = now;
      world.status->remTablesLastChangeTimeIs(now);
    }
    EXPECT_EQ(world.countStarting(generated), 1u);
    EXPECT_EQ(world.countStarting(suppressed), 3u);

    world.now = 105.0;
    world.status->remTablesLastChangeTimeIs(5.0);
    EXPECT_EQ(world.countStarting(generated), 2u);
    EXPECT_EQ(sm->lastNotificationTime(), 105.0);

    // A new status entity runs the handler at once, under the same limit, and is the one heard.
    auto const other = Zet::makePtr<Lldp::AllStatus>();
    sm->statusIs(other);
    sm->statusIs(other);
    EXPECT_EQ(world.countStarting(suppressed), 4u);
    world.status->remTablesLastChangeTimeIs(6.0);
    other->remTablesLastChangeTimeIs(6.0);
    EXPECT_EQ(world.countStarting(suppressed), 5u);
  });
}

}  // namespace
