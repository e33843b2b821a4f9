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
#include <vector>

#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "MirrorRows.h"
#include "Ondo/IntfId.h"
#include "Root.h"
#include "Snmp/Config.h"
#include "Snmp/SnmpUtil.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::Root;
using Key = Lldp::ManagementAddress::Key;
using Ports = std::set<std::uint16_t>;

// The child's failures, on standard error, where the parent shows them.
int exitCodeOfChild() {
  auto const* result = ::testing::UnitTest::GetInstance()->current_test_info()->result();
  for (int i = 0; i < result->total_part_count(); ++i) {
    auto const& part = result->GetTestPartResult(i);
    if (part.failed()) {
      std::cerr << part.file_name() << ":" << part.line_number() << ": " << part.message() << "\n";
    }
  }
  return result->Failed() ? 1 : 0;
}

// Runs `body` in a child process, which passes if no expectation failed.
template <class Body>
void inOwnProcess(Body body) {
  EXPECT_EXIT(
      {
        body();
        std::exit(exitCodeOfChild());
      },
      ::testing::ExitedWithCode(0), "");
}

Key addressKey(std::uint8_t lastByte) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  return {1, Lldp::ManAddress(Zet::String(bytes))};
}

Lldp::ManagementAddress address(std::uint8_t lastByte, std::int32_t ifId) {
  Lldp::ManagementAddress a(addressKey(lastByte));
  a.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
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
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::levelsIs("Snmp", ~0u);
    Zet::Trace::sinkIs([this](Zet::String const&, int, std::string_view text) { lines.emplace_back(text); });
  }

  Zet::Ptr<Lldp::Snmp::LldpSm> build() { return root->lldpSmIs(status, local, config, root); }

  // A port the host has numbered: its row in the Root.
  void portRow(std::uint16_t port) {
    root->localPortIs(EthPortId(port), Zet::makePtr<Lldp::LocalPort>(intf(port)));
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

  std::size_t countStarting(std::string_view prefix) const {
    std::size_t n = 0;
    for (auto const& line : lines) {
      n += line.starts_with(prefix) ? 1 : 0;
    }
    return n;
  }

  double now = 100.0;
  std::vector<std::string> lines;
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

TEST(LldpSm, SameArgumentsGiveTheSameMachineScannedOnce) {
  inOwnProcess([] {
    World world;
    auto const sm = world.build();
    EXPECT_EQ(world.build(), sm);
    EXPECT_EQ(world.root->lldpSm(), sm);
    EXPECT_EQ(world.countStarting("LldpSm::handleInitialized()"), 1u);
    EXPECT_TRUE(sm->hasNotificationActive());

    EXPECT_EQ(world.root->lldpSmDel(), sm);
    EXPECT_FALSE(world.root->lldpSm());
    EXPECT_FALSE(sm->hasNotificationActive());
    EXPECT_FALSE(sm->zetStatus()->hasNotificationActive());
    world.status->remTablesLastChangeTimeIs(1.0);
    EXPECT_EQ(world.countStarting(generated), 0u);
  });
}

TEST(LldpSm, AddressThenPriorityGivesTheListEveryPort) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.portRow(2);
    auto const sm = world.build();

    world.local->managementAddressIs(address(1, 11));
    EXPECT_EQ(world.ports(addressKey(1)), Ports{});
    EXPECT_EQ(world.root->localManagementAddress(addressKey(1))->rawValue(), address(1, 11));

    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    EXPECT_EQ(sm->manAddrPrio(addressKey(1)), priority(10));
    EXPECT_EQ(sm->manAddr(priority(10)), addressKey(1));
  });
}

TEST(LldpSm, FirstScanReplaysAddressesThenPriorities) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.portRow(2);
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressIs(address(2, 12));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));

    world.build();

    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    EXPECT_EQ(world.ports(addressKey(2)), Ports{});
    EXPECT_EQ(world.countStarting("LldpSm::handleManagementAddress( "), 2u);
  });
}

TEST(LldpSm, PriorityGoneTakesTheRowUntilTheAddressIsHeardAgain) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    auto const sm = world.build();

    world.local->managementAddressPrioDel(priority(10));
    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
    EXPECT_EQ(sm->manAddrPrio().count(), 0u);
    EXPECT_EQ(sm->manAddr().count(), 0u);

    world.local->managementAddressIs(address(1, 12));
    EXPECT_EQ(world.ports(addressKey(1)), Ports{});
    EXPECT_EQ(world.root->localManagementAddress(addressKey(1))->rawValue().ifId, 12);
  });
}

TEST(LldpSm, ChangedAddressValueLeavesAnExistingRowAsItWas) {
  inOwnProcess([] {
    World world;
    world.local->managementAddressIs(address(1, 11));
    world.build();

    world.local->managementAddressIs(address(1, 99));

    EXPECT_EQ(world.countStarting("LldpSm::handleManagementAddress( "), 2u);
    EXPECT_EQ(world.root->localManagementAddress(addressKey(1))->rawValue().ifId, 11);
  });
}

TEST(LldpSm, PriorityChangedOldFirstRemakesTheRowWithEveryPort) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.portRow(2);
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    auto const sm = world.build();
    auto const before = world.root->localManagementAddress(addressKey(1));

    world.local->managementAddressPrioDel(priority(10));
    world.local->managementAddressPrioIs(priority(20), addressKey(1));

    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 2}));
    EXPECT_NE(world.root->localManagementAddress(addressKey(1)), before);
    EXPECT_EQ(sm->manAddrPrio(addressKey(1)), priority(20));
  });
}

TEST(LldpSm, PriorityChangedNewFirstLeavesTheAddressWithoutARow) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    auto const sm = world.build();

    world.local->managementAddressPrioIs(priority(20), addressKey(1));
    EXPECT_EQ(world.ports(addressKey(1)), Ports{1});
    world.local->managementAddressPrioDel(priority(10));

    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
    EXPECT_EQ(sm->manAddr(priority(20)), addressKey(1));
    EXPECT_EQ(sm->manAddrPrio(addressKey(1)), Lldp::ManAddrPriority());
    // Ports that join later find no row for it.
    world.local->localPortIs(Zet::makePtr<Lldp::LocalPort>(intf(3)));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
  });
}

TEST(LldpSm, LateOrUnknownPriorityRemovalClearsTheMapsAndRemovesNothingMore) {
  inOwnProcess([] {
    World world;
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressIs(address(2, 12));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    auto const sm = world.build();

    sm->handleManagementAddressPrio(priority(99));
    EXPECT_TRUE(world.ports(addressKey(1)));
    EXPECT_EQ(world.root->localManagementAddress().count(), 2u);

    world.local->managementAddressDel(addressKey(1));
    EXPECT_EQ(world.ports(addressKey(1)), std::nullopt);
    EXPECT_EQ(sm->manAddrPrio().count(), 1u);
    world.local->managementAddressPrioDel(priority(10));

    EXPECT_EQ(sm->manAddrPrio().count(), 0u);
    EXPECT_EQ(sm->manAddr().count(), 0u);
    EXPECT_EQ(world.root->localManagementAddress().count(), 1u);
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

TEST(LldpSm, PortsJoiningAndLeavingChangeTheListsOfAddressesWithPriority) {
  inOwnProcess([] {
    World world;
    world.portRow(1);
    world.local->managementAddressIs(address(1, 11));
    world.local->managementAddressIs(address(2, 12));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));
    auto const sm = world.build();

    world.local->localPortIs(Zet::makePtr<Lldp::LocalPort>(intf(3)));
    sm->handleLocalPort(intf(3), EthPortId(3));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(1)), (Ports{1, 3}));
    EXPECT_EQ(world.ports(addressKey(2)), Ports{});

    world.local->localPortDel(intf(3));
    sm->handleLocalPort(intf(3), EthPortId(3));
    EXPECT_EQ(world.ports(addressKey(1)), Ports{1});

    // In neither collection: traced as a removal for each priority, and nothing changes.
    sm->handleLocalPort(intf(9), EthPortId(9));
    EXPECT_EQ(world.countStarting("Removing port 9 from ManagementAddress with key "), 1u);
    EXPECT_EQ(world.ports(addressKey(1)), Ports{1});
  });
}

TEST(LldpSm, PortJoiningWithoutPrioritiesIsNotRemembered) {
  inOwnProcess([] {
    World world;
    world.local->managementAddressIs(address(1, 11));
    auto const sm = world.build();
    world.local->localPortIs(Zet::makePtr<Lldp::LocalPort>(intf(3)));

    sm->handleLocalPort(intf(3), EthPortId(3));
    world.local->managementAddressPrioIs(priority(10), addressKey(1));

    EXPECT_EQ(world.countStarting("Adding port "), 0u);
    // The list is filled from the Root's port rows, and port 3 has none.
    EXPECT_EQ(world.ports(addressKey(1)), Ports{});
  });
}

TEST(LldpSm, FirstChangeNotifiesAndTheNextWithinFiveSecondsAreSuppressed) {
  inOwnProcess([] {
    World world;
    auto const sm = world.build();

    world.status->remTablesLastChangeTimeIs(1.0);
    EXPECT_EQ(world.countStarting(std::string(generated) + "100, err=0"), 1u);
    EXPECT_EQ(world.countStarting(refused), 1u);
    EXPECT_EQ(sm->lastNotificationTime(), 100.0);

    world.now = 100.4;
    world.status->remTablesLastChangeTimeIs(2.0);
    world.now = 100.8;
    world.status->remTablesLastChangeTimeIs(3.0);
    EXPECT_EQ(world.countStarting(generated), 1u);
    EXPECT_EQ(world.countStarting(suppressed), 2u);

    world.now = 104.999;
    world.status->remTablesLastChangeTimeIs(4.0);
    EXPECT_EQ(world.countStarting(generated), 1u);

    world.now = 105.0;
    world.status->remTablesLastChangeTimeIs(5.0);
    EXPECT_EQ(world.countStarting(generated), 2u);
    EXPECT_EQ(world.countStarting(refused), 2u);
    EXPECT_EQ(sm->lastNotificationTime(), 105.0);
  });
}

TEST(LldpSm, NeitherBuildingNorAnEarlyClockRaisesANotification) {
  inOwnProcess([] {
    World world;
    world.now = 3.0;
    world.status->remTablesInsertsIs(4);
    world.status->remTablesLastChangeTimeIs(2.0);
    auto const sm = world.build();
    EXPECT_EQ(world.countStarting(generated), 0u);

    world.status->remTablesLastChangeTimeIs(2.5);
    EXPECT_EQ(world.countStarting(suppressed), 1u);
    EXPECT_EQ(world.countStarting(generated), 0u);
    EXPECT_EQ(sm->lastNotificationTime(), 0.0);
  });
}

TEST(LldpSm, NewStatusEntityRunsTheHandlerOnceUnderTheSameLimit) {
  inOwnProcess([] {
    World world;
    auto const sm = world.build();
    auto const other = Zet::makePtr<Lldp::AllStatus>();

    sm->statusIs(other);
    sm->statusIs(other);
    EXPECT_EQ(world.countStarting(generated), 1u);
    EXPECT_EQ(sm->status(), other);

    world.now = 101.0;
    world.status->remTablesLastChangeTimeIs(1.0);
    EXPECT_EQ(world.countStarting(suppressed), 0u);
    other->remTablesLastChangeTimeIs(1.0);
    EXPECT_EQ(world.countStarting(suppressed), 1u);

    sm->statusIs(world.status);
    EXPECT_EQ(world.countStarting(suppressed), 2u);
    EXPECT_EQ(world.countStarting(generated), 1u);
  });
}

}  // namespace
