// The mirror's Root: its row and value collections, what stays the same when
// a row is made again, what an absent key gives, the order of a walk, and the
// process-wide root of the conversions.

#include "Root.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "MirrorRows.h"
#include "RemoteRecords.h"
#include "SnmpConversions.h"
#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/TextForm.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::RemoteSystemKey;
using Lldp::Snmp::Root;
using namespace std::string_literals;

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* sysName) {
  auto const entity = Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String(sysName)),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
  entity->sysNameIs(Lldp::BoundedString255(Zet::String(sysName)));
  return entity;
}

Lldp::ManagementAddress::Key address(std::string const& bytes) { return {1, Lldp::ManAddress(Zet::String(bytes))}; }

Lldp::Snmp::RemoteManagementAddress remoteAddress(std::string const& bytes, std::int32_t ifId) {
  Lldp::ManagementAddress raw(address(bytes));
  raw.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
  raw.ifId = ifId;
  return {{EthPortId(2), 1, address(bytes)}, nullptr, raw};
}

template <class Map>
auto keysOf(Map const& map) {
  std::vector<std::decay_t<decltype(map.iterator()->fwkKey())>> keys;
  for (auto it = map.iterator(); !it.atEnd(); it.advance()) {
    keys.push_back(it->fwkKey());
  }
  return keys;
}

class MirrorRoot : public ::testing::Test {
 protected:
  Zet::Ptr<Root> const root_ = Root::RootIs(Zet::Name("root"));
};

TEST_F(MirrorRoot, StartsWithElevenEmptyCollectionsAtVersionOne) {
  EXPECT_EQ(root_->name(), Zet::Name("root"));
  EXPECT_FALSE(root_->hasBackupSupport());
  auto const empty = [](auto const& map) { return map.count() == 0 && map.version() == 1 && map.iterator().atEnd(); };
  EXPECT_TRUE(empty(root_->portConfig()));
  EXPECT_TRUE(empty(root_->portStatus()));
  EXPECT_TRUE(empty(root_->localPort()));
  EXPECT_TRUE(empty(root_->localManagementAddress()));
  EXPECT_TRUE(empty(root_->remoteSystem()));
  EXPECT_TRUE(empty(root_->remoteManagementAddress()));
  EXPECT_TRUE(empty(root_->remoteUnknownTlv()));
  EXPECT_TRUE(empty(root_->remoteUnknownOrgDefTlv()));
  EXPECT_TRUE(empty(root_->remotePortAndProtocolVlan()));
  EXPECT_TRUE(empty(root_->remoteVlanName()));
  EXPECT_TRUE(empty(root_->remoteProtocolIdentityInfo()));
}

TEST_F(MirrorRoot, RowIsTwiceWithTheSameSourceGivesTheSameRowAndChangesNothing) {
  auto const config = Zet::makePtr<Lldp::PortConfig>();
  auto const row = root_->portConfigIs(EthPortId(7), config);
  ASSERT_TRUE(row);
  auto const count = root_->portConfig().count();
  auto const version = root_->portConfig().version();

  EXPECT_EQ(root_->portConfigIs(EthPortId(7), config).get(), row.get());
  EXPECT_EQ(root_->portConfig().count(), count);
  EXPECT_EQ(root_->portConfig().version(), version);

  // Two null sources are the same source.
  auto const bare = root_->portStatusIs(EthPortId(7), nullptr);
  EXPECT_EQ(root_->portStatusIs(EthPortId(7), nullptr).get(), bare.get());
  EXPECT_EQ(root_->portStatus().count(), 1u);
}

TEST_F(MirrorRoot, RowIsWithAnotherSourceRaisesNameInUseAndLeavesTheCollection) {
  auto const first = Zet::makePtr<Lldp::PortConfig>();
  auto const second = Zet::makePtr<Lldp::PortConfig>();
  auto const row = root_->portConfigIs(EthPortId(7), first);
  auto const version = root_->portConfig().version();

  try {
    root_->portConfigIs(EthPortId(7), second);
    FAIL() << "a second source for port 7 was taken";
  } catch (Zet::NameInUseException const& e) {
    std::string const text = e.what();
    std::string const newPtr = Zet::valueToStrep(Zet::Ptr<Lldp::PortConfig const>(second)).stdString();
    std::string const oldPtr = Zet::valueToStrep(Zet::Ptr<Lldp::PortConfig const>(first)).stdString();
    EXPECT_EQ(text.rfind("Reinstantiating the entity with fullName ", 0), 0u) << text;
    EXPECT_NE(text.find(" where constructor parameter attribute 'ptr' has a different value of " + newPtr +
                        " than the current value of " + oldPtr + " not allowed"),
              std::string::npos)
        << text;
  }
  EXPECT_EQ(root_->portConfig().count(), 1u);
  EXPECT_EQ(root_->portConfig().version(), version);
  EXPECT_EQ(root_->portConfig(EthPortId(7)).get(), row.get());
  EXPECT_EQ(row->ptr().get(), first.get());

  // A null source differs from a real one just the same.
  root_->remoteSystemIs({EthPortId(1), 1}, nullptr);
  EXPECT_THROW(root_->remoteSystemIs({EthPortId(1), 1}, neighbour(1, "a")), Zet::NameInUseException);
  EXPECT_FALSE(root_->remoteSystem({EthPortId(1), 1})->ptr());
}

TEST_F(MirrorRoot, MemberIsTheRootsChildUntilRemovedAndThenStillReadsItsSource) {
  auto const row = root_->remoteSystemIs({EthPortId(3), 5}, neighbour(5, "edge"));
  EXPECT_EQ(row->parent(), root_.get());
  EXPECT_TRUE(row->hasNotificationActive());

  auto const removed = root_->remoteSystemDel({EthPortId(3), 5});
  EXPECT_EQ(removed.get(), row.get());
  EXPECT_EQ(row->parent(), nullptr);
  EXPECT_FALSE(root_->remoteSystem({EthPortId(3), 5}));
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
  EXPECT_EQ(row->sysName().value(), Zet::String("edge"));
  EXPECT_EQ(row->index(), 5);

  EXPECT_FALSE(root_->remoteSystemDel({EthPortId(3), 5}));
  EXPECT_FALSE(root_->localPortDel(EthPortId(3)));
  EXPECT_FALSE(root_->localPort(EthPortId(3)));
}

TEST_F(MirrorRoot, DelAllOnAnEmptyCollectionDoesNothing) {
  root_->portStatusDelAll();
  root_->remoteSystemDelAll();
  root_->remoteVlanNameDelAll();
  EXPECT_EQ(root_->portStatus().version(), 1u);
  EXPECT_EQ(root_->remoteSystem().version(), 1u);
  EXPECT_EQ(root_->remoteVlanName().version(), 1u);
}

TEST_F(MirrorRoot, DelAllEmptiesAndReleasesTheRowsHeldNowhereElse) {
  auto const source = neighbour(1, "n");
  for (std::int32_t index = 1; index <= 40; ++index) {
    root_->remoteSystemIs({EthPortId(static_cast<std::uint16_t>(index % 4)), index}, source);
  }
  auto const held = root_->remoteSystem({EthPortId(2), 2});
  ASSERT_TRUE(held);
  EXPECT_EQ(source->references(), 41u);

  root_->remoteSystemDelAll();
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
  EXPECT_TRUE(root_->remoteSystem().iterator().atEnd());
  // Only the held row still holds the neighbour.
  EXPECT_EQ(source->references(), 2u);
  EXPECT_EQ(held->parent(), nullptr);

  for (std::uint16_t vlan = 1; vlan <= 30; ++vlan) {
    root_->remoteVlanNameIs({{EthPortId(2), 2, Bridging::VlanId(vlan)}, source, {}});
  }
  EXPECT_EQ(source->references(), 32u);
  root_->remoteVlanNameDelAll();
  EXPECT_EQ(root_->remoteVlanName().count(), 0u);
  EXPECT_EQ(source->references(), 2u);
}

TEST_F(MirrorRoot, RowsWalkInIndexOrderWhateverTheOrderOfInsertion) {
  std::vector<RemoteSystemKey> keys;
  for (std::uint16_t port : {1, 2, 48, 300, 4094}) {
    for (std::int32_t index : {-5, 1, 2, 10, 65536}) {
      keys.emplace_back(EthPortId(port), index);
    }
  }
  auto shuffled = keys;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(8021));
  for (auto const& key : shuffled) {
    root_->remoteSystemIs(key, nullptr);
  }
  EXPECT_EQ(keysOf(root_->remoteSystem()), keys);

  // A shorter address comes first, as its index carries the length first.
  for (std::string const& bytes : {"\x0a\x00\x00\x02"s, "\xff"s, "\x0a\x00\x00\x01"s, "\x01\x02\x03\x04\x05"s}) {
    root_->remoteManagementAddressIs(remoteAddress(bytes, 1));
  }
  std::vector<std::string> walked;
  for (auto const& key : keysOf(root_->remoteManagementAddress())) {
    walked.push_back(key.manAddrKey.manAddr.value().stdString());
  }
  EXPECT_EQ(walked, (std::vector<std::string>{"\xff"s, "\x0a\x00\x00\x01"s, "\x0a\x00\x00\x02"s,
                                              "\x01\x02\x03\x04\x05"s}));
}

TEST_F(MirrorRoot, LocalManagementAddressIsMadeOnceWithTheDefaultRecord) {
  auto const key = address("\xc0\x00\x02\x01"s);
  auto const row = root_->localManagementAddressIs(key);
  auto const version = root_->localManagementAddress().version();
  EXPECT_EQ(row->parent(), root_.get());
  EXPECT_EQ(row->rawValue(), Lldp::ManagementAddress());
  EXPECT_FALSE(row->portsTxEnable());

  EXPECT_EQ(root_->localManagementAddressIs(key).get(), row.get());
  EXPECT_EQ(root_->localManagementAddress().version(), version);
  EXPECT_EQ(root_->localManagementAddressDel(key).get(), row.get());
  EXPECT_EQ(row->parent(), nullptr);
}

TEST_F(MirrorRoot, ValueIsOverwritesInPlaceWithoutMovingTheVersion) {
  root_->remoteManagementAddressIs(remoteAddress("\x0a\x00\x00\x01"s, 10));
  auto const version = root_->remoteManagementAddress().version();
  EXPECT_NE(version, 1u);

  root_->remoteManagementAddressIs(remoteAddress("\x0a\x00\x00\x01"s, 20));
  EXPECT_EQ(root_->remoteManagementAddress().count(), 1u);
  EXPECT_EQ(root_->remoteManagementAddress().version(), version);
  EXPECT_EQ(root_->remoteManagementAddress(remoteAddress("\x0a\x00\x00\x01"s, 0).key).ifId(), 20);

  auto const removed = root_->remoteManagementAddressDel(remoteAddress("\x0a\x00\x00\x01"s, 0).key);
  EXPECT_EQ(removed.ifId(), 20);
  EXPECT_EQ(root_->remoteManagementAddress().count(), 0u);
}

// The default records are not all zero: no VLAN 0, no TLV type below 9.
TEST_F(MirrorRoot, AbsentValueKeysGiveTheDefaultRecords) {
  Lldp::Snmp::RemoteVlanNameKey const vlanKey(EthPortId(1), 1, Bridging::VlanId(10));
  auto const vlan = root_->remoteVlanNameDel(vlanKey);
  EXPECT_EQ(vlan.key.vlanId.value(), 1);
  EXPECT_EQ(vlan.rawValue.vlanId.value(), 1);

  auto const tlv = root_->remoteUnknownTlv({EthPortId(1), 1, 20});
  EXPECT_EQ(tlv.rawValue.type, 9u);
  EXPECT_EQ(tlv.key.type, 0u);

  auto const man = root_->remoteManagementAddress(remoteAddress("\x0a\x00\x00\x01"s, 0).key);
  EXPECT_EQ(man.ifSubtype(), Lldp::ManAddrIfSubtype::unknown);
  EXPECT_TRUE(!man);
}

// Rows held elsewhere must not point at a Root that is gone.
TEST(MirrorRootLifetime, GoingRootDetachesTheRowsStillHeld) {
  auto root = Root::RootIs(Zet::Name("root"));
  auto const port = root->portConfigIs(EthPortId(1), nullptr);
  auto const remote = root->remoteSystemIs({EthPortId(1), 1}, neighbour(1, "a"));
  auto const local = root->localManagementAddressIs(address("\x0a\x00\x00\x01"s));
  root->remoteVlanNameIs({{EthPortId(1), 1, Bridging::VlanId(10)}, nullptr, {}});
  root = nullptr;

  EXPECT_EQ(port->parent(), nullptr);
  EXPECT_EQ(remote->parent(), nullptr);
  EXPECT_EQ(local->parent(), nullptr);
  EXPECT_EQ(remote->references(), 1u);
}

// root_ is set once per process, so each case runs in a child of its own.
using LldpRootIsDeathTest = MirrorRoot;

TEST_F(LldpRootIsDeathTest, EmptyPointerLeavesItUnsetForALaterRealRoot) {
  EXPECT_EXIT(
      {
        lldpRootIs(nullptr);
        lldpRootIs(root_);
        std::cerr << "stored" << std::endl;
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "stored");
}

TEST_F(LldpRootIsDeathTest, SecondCallEndsTheProcess) {
  auto const other = Root::RootIs(Zet::Name("other"));
  EXPECT_DEATH(
      {
        lldpRootIs(nullptr);
        lldpRootIs(root_);
        std::cerr << "stored" << std::endl;
        lldpRootIs(other);
      },
      "stored.*Assertion `!root_' failed");
  EXPECT_DEATH(
      {
        lldpRootIs(root_);
        lldpRootIs(root_);
      },
      "Assertion `!root_' failed");
  EXPECT_DEATH(
      {
        lldpRootIs(root_);
        lldpRootIs(nullptr);
      },
      "Assertion `!root_' failed");
}

}  // namespace
