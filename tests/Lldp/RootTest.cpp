// The mirror's Root: its row and value collections, what stays the same when
// a row is made again, what an absent key gives, the order of a walk, and the
// process-wide root of the conversions.

#include "Root.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <string>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/RemoteSystem.h"
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

class MirrorRoot : public ::testing::Test {
 protected:
  Zet::Ptr<Root> const root_ = Root::RootIs(Zet::Name("root"));
};

TEST_F(MirrorRoot, RowIsAgainGivesTheSameRowForTheSameSourceAndRaisesForAnother) {
  auto const first = Zet::makePtr<Lldp::PortConfig>();
  auto const second = Zet::makePtr<Lldp::PortConfig>();
  auto const row = root_->portConfigIs(EthPortId(7), first);
  ASSERT_TRUE(row);
  auto const version = root_->portConfig().version();
  EXPECT_EQ(root_->portConfigIs(EthPortId(7), first), row);
  EXPECT_EQ(root_->portConfig().version(), version);

  std::string const newPtr = Zet::valueToStrep(Zet::Ptr<Lldp::PortConfig const>(second)).stdString();
  std::string const oldPtr = Zet::valueToStrep(Zet::Ptr<Lldp::PortConfig const>(first)).stdString();
  EXPECT_THAT([&] { root_->portConfigIs(EthPortId(7), second); },
              testing::ThrowsMessage<Zet::NameInUseException>(testing::AllOf(
                  testing::StartsWith("Reinstantiating the entity with fullName "),
                  testing::EndsWith(" where constructor parameter attribute 'ptr' has a different value of " + newPtr +
                                    " than the current value of " + oldPtr + " not allowed"))));
  EXPECT_EQ(root_->portConfig().count(), 1u);
  EXPECT_EQ(root_->portConfig().version(), version);
  EXPECT_EQ(root_->portConfig(EthPortId(7))->ptr(), first);

  // Two null sources are the same source, and differ from a real one.
  auto const bare = root_->remoteSystemIs({EthPortId(1), 1}, nullptr);
  EXPECT_EQ(root_->remoteSystemIs({EthPortId(1), 1}, nullptr), bare);
  EXPECT_THROW(root_->remoteSystemIs({EthPortId(1), 1}, neighbour(1, "a")), Zet::NameInUseException);
  EXPECT_FALSE(root_->remoteSystem({EthPortId(1), 1})->ptr());

  // A local management address has no source: made once, with the default record.
  auto const local = root_->localManagementAddressIs(address("\xc0\x00\x02\x01"s));
  EXPECT_EQ(local->rawValue(), Lldp::ManagementAddress());
  EXPECT_EQ(root_->localManagementAddressIs(address("\xc0\x00\x02\x01"s)), local);
}

// However a row leaves the Root, it no longer points at it, and still reads its source.
TEST_F(MirrorRoot, RowsLeavingByDelDelAllOrTheRootGoingAreDetached) {
  auto const source = neighbour(1, "edge");
  auto const removed = root_->remoteSystemIs({EthPortId(3), 5}, source);
  EXPECT_EQ(removed->parent(), root_.get());
  EXPECT_EQ(root_->remoteSystemDel({EthPortId(3), 5}), removed);
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_FALSE(root_->remoteSystem({EthPortId(3), 5}));
  EXPECT_EQ(removed->sysName().value(), Zet::String("edge"));
  EXPECT_FALSE(root_->remoteSystemDel({EthPortId(3), 5}));
  EXPECT_FALSE(root_->localPortDel(EthPortId(3)));

  for (std::int32_t index = 1; index <= 40; ++index) {
    root_->remoteSystemIs({EthPortId(static_cast<std::uint16_t>(index % 4)), index}, source);
  }
  auto const held = root_->remoteSystem({EthPortId(2), 2});
  EXPECT_EQ(source->references(), 42u);
  root_->remoteSystemDelAll();
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
  EXPECT_TRUE(root_->remoteSystem().iterator().atEnd());
  // Only this test, the removed row and the held one still hold the neighbour.
  EXPECT_EQ(source->references(), 3u);
  EXPECT_EQ(held->parent(), nullptr);

  auto root = Root::RootIs(Zet::Name("other"));
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

// The default records are not all zero: no VLAN 0, no TLV type below 9.
TEST_F(MirrorRoot, AbsentValueKeysGiveTheDefaultRecords) {
  auto const vlan = root_->remoteVlanNameDel({EthPortId(1), 1, Bridging::VlanId(10)});
  EXPECT_EQ(vlan.key.vlanId.value(), 1);
  EXPECT_EQ(vlan.rawValue.vlanId.value(), 1);
  auto const tlv = root_->remoteUnknownTlv({EthPortId(1), 1, 20});
  EXPECT_EQ(tlv.rawValue.type, 9u);
  EXPECT_EQ(tlv.key.type, 0u);
  EXPECT_TRUE(!root_->remoteManagementAddress({EthPortId(2), 1, address("\x0a\x00\x00\x01"s)}));
}

// root_ is set once per process, so each case runs in a child of its own; a
// second machine handing over the same root is LldpSm's case.
using LldpRootIsDeathTest = MirrorRoot;

TEST_F(LldpRootIsDeathTest, OnlyTheFirstRealRootIsTakenAndASecondCallEndsTheProcess) {
  auto const other = Root::RootIs(Zet::Name("other"));
  // An empty pointer leaves it unset for a later real root.
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
        lldpRootIs(nullptr);
      },
      "Assertion `!root_' failed");
}

}  // namespace
