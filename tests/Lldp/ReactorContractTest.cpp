// What every reactor and state machine promises: attached without hearing the
// past, silent as a zombie, rebound and let go by their slot operations, and
// switched off together with the state machine.

#include "Reactor.h"

#include <gtest/gtest.h>

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
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "Ondo/IntfId.h"
#include "PortStatusSm.h"
#include "RemoteSystemSm.h"
#include "Root.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/Trace.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::PortStatusSm;
using Lldp::Snmp::RemoteSystemSm;
using Lldp::Snmp::Root;

// How many lines the reactors trace, at any level.
class TraceCount {
 public:
  TraceCount() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::sinkIs([this](Zet::String const&, int, std::string_view text) {
      ++count_;
      handlerLines_ += text.starts_with("RemoteSystemSm::handleVlanName( ") ? 1 : 0;
    });
  }
  ~TraceCount() {
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
  }
  std::size_t count() const { return count_; }
  // Lines of the VLAN name handler: what a delivered onVlanName() leaves.
  std::size_t handlerLines() const { return handlerLines_; }

 private:
  std::size_t count_ = 0;
  std::size_t handlerLines_ = 0;
};

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index) {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String("peer")),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
}

Lldp::VlanName vlanName(std::uint16_t vlan) {
  return Lldp::VlanName(Bridging::VlanId(vlan), Lldp::BoundedString32(Zet::String("v")));
}

class ReactorContract : public ::testing::Test {
 protected:
  void TearDown() override { root->portStatusSmDelAll(); }

  // Whether the mirror holds VLAN `vlan` of neighbour `index` on port 7.
  bool mirrored(std::int32_t index, std::uint16_t vlan) const {
    return !!root->remoteVlanName({EthPortId(7), index, Bridging::VlanId(vlan)});
  }

  Zet::Ptr<Root> const root = Root::RootIs("root");
  TraceCount trace;
};

TEST_F(ReactorContract, EntriesPresentAtAttachmentArriveByTheFirstScanAlone) {
  auto const n = neighbour(5);
  n->vlanNameIs(vlanName(10));
  n->vlanNameIs(vlanName(11));

  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);

  EXPECT_TRUE(mirrored(5, 10));
  EXPECT_TRUE(mirrored(5, 11));
  EXPECT_EQ(trace.handlerLines(), 0u);
  ASSERT_TRUE(sm->zetRemoteSystem());
  EXPECT_TRUE(sm->zetRemoteSystem()->hasNotificationActive());
  EXPECT_TRUE(sm->zetRemoteSystem()->isRegisteredNotifiee());
}

TEST_F(ReactorContract, ZombieHearsNothingAndComesBackWhenLifted) {
  auto const n = neighbour(5);
  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  sm->zetDoZombieReactors(true);
  auto const before = trace.count();

  n->vlanNameIs(vlanName(10));

  EXPECT_FALSE(mirrored(5, 10));
  EXPECT_EQ(trace.count(), before);
  EXPECT_TRUE(sm->zetRemoteSystem()->zetMarkedForDeletion());

  sm->zetDoZombieReactors(false);
  n->vlanNameIs(vlanName(11));

  EXPECT_TRUE(mirrored(5, 11));
  EXPECT_FALSE(sm->zetRemoteSystem()->zetMarkedForDeletion());
}

TEST_F(ReactorContract, LiftingZombieLeavesDeliveryAloneForAReactorWithoutNotifier) {
  auto const reactor = Zet::makePtr<RemoteSystemSm::ZetRemoteSystem>(nullptr, nullptr);
  reactor->zetDoZombieReactors(true);
  reactor->zetDoZombieReactors(false);
  EXPECT_FALSE(reactor->hasNotificationActive());

  reactor->hasNotificationActiveIs(true);
  reactor->zetDoZombieReactors(true);
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->zetMarkedForDeletion());
}

TEST_F(ReactorContract, PortSwitchedOffSilencesItsNeighboursButAZombiePortDoesNot) {
  auto const port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  auto const n = neighbour(5);
  port->remoteSystemIs(n);
  auto const sm = root->portStatusSmIs(EthPortId(7), port, root);
  auto const child = sm->remoteSystemSm(5);

  sm->zetDoZombieReactors(true);
  n->vlanNameIs(vlanName(10));
  port->remoteSystemIs(neighbour(6));

  EXPECT_TRUE(mirrored(5, 10));
  EXPECT_FALSE(child->zetRemoteSystem()->zetMarkedForDeletion());
  EXPECT_FALSE(root->remoteSystem({EthPortId(7), 6}));

  sm->zetDoZombieReactors(false);
  sm->hasNotificationActiveIs(false);
  n->vlanNameIs(vlanName(11));

  EXPECT_FALSE(mirrored(5, 11));
  EXPECT_FALSE(child->hasNotificationActive());
  EXPECT_FALSE(child->zetRemoteSystem()->hasNotificationActive());
  EXPECT_FALSE(sm->zetPortStatus()->hasNotificationActive());

  sm->hasNotificationActiveIs(true);
  n->vlanNameIs(vlanName(12));
  EXPECT_TRUE(mirrored(5, 12));
}

TEST_F(ReactorContract, RebindingMovesDeliveryToTheNewNotifierWithoutAScan) {
  auto const first = neighbour(5);
  auto const second = neighbour(5);
  second->vlanNameIs(vlanName(20));
  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), first, root);
  auto const reactor = sm->zetRemoteSystem();

  sm->remoteSystemIs(second);

  EXPECT_EQ(sm->zetRemoteSystem(), reactor);
  EXPECT_EQ(sm->remoteSystem(), second);
  EXPECT_FALSE(mirrored(5, 20));
  first->vlanNameIs(vlanName(10));
  second->vlanNameIs(vlanName(21));
  EXPECT_FALSE(mirrored(5, 10));
  EXPECT_TRUE(mirrored(5, 21));
}

TEST_F(ReactorContract, SlotDelGivesTheNotifierBackAndLetsTheReactorGo) {
  auto const n = neighbour(5);
  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  auto const reactor = sm->zetRemoteSystem();

  EXPECT_EQ(sm->remoteSystemDel(), n);

  EXPECT_FALSE(sm->zetRemoteSystem());
  EXPECT_FALSE(sm->remoteSystem());
  EXPECT_TRUE(reactor->zetMarkedForDeletion());
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_EQ(reactor->owner(), nullptr);
  n->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(5, 10));
  EXPECT_FALSE(sm->remoteSystemDel());
}

TEST_F(ReactorContract, ZombieStateMachineRebindsAsAZombie) {
  auto const n = neighbour(5);
  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  sm->remoteSystemDel();
  sm->zetDoZombieReactors(true);

  sm->remoteSystemIs(n);

  ASSERT_TRUE(sm->zetRemoteSystem());
  EXPECT_TRUE(sm->zetRemoteSystem()->zetMarkedForDeletion());
  n->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(5, 10));

  sm->zetDoZombieReactors(false);
  n->vlanNameIs(vlanName(11));
  EXPECT_TRUE(mirrored(5, 11));
}

TEST_F(ReactorContract, NullNotifierEmptiesTheSlotAndANotifierOfAnotherTypeCountsAsNone) {
  auto const n = neighbour(5);
  auto const sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  auto const reactor = sm->zetRemoteSystem();

  reactor->notifierIs(Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7")));
  EXPECT_EQ(reactor->notifier(), nullptr);
  EXPECT_FALSE(reactor->isRegisteredNotifiee());

  reactor->notifierIs(n);
  EXPECT_EQ(sm->remoteSystem(), n);
  sm->remoteSystemIs(nullptr);
  EXPECT_FALSE(sm->zetRemoteSystem());
  EXPECT_TRUE(reactor->zetMarkedForDeletion());
  n->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(5, 10));
}

TEST_F(ReactorContract, StateMachineGoneLeavesItsReactorSilent) {
  auto const n = neighbour(5);
  auto sm = RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  Zet::Ptr<RemoteSystemSm::ZetRemoteSystem> const reactor = sm->zetRemoteSystem();

  sm = nullptr;

  EXPECT_EQ(reactor->owner(), nullptr);
  EXPECT_TRUE(reactor->zetMarkedForDeletion());
  n->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(5, 10));
}

}  // namespace
