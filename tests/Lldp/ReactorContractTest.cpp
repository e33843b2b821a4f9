// What every reactor and state machine promises: attached without hearing the
// past, silent as a zombie, rebound and let go by their slot operations, and
// switched off together with the state machine.

#include "Reactor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string_view>

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
using Lldp::Snmp::RemoteSystemSm;
using Lldp::Snmp::Root;

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index) {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String("peer")),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
}

Lldp::VlanName vlanName(std::uint16_t vlan) {
  return Lldp::VlanName(Bridging::VlanId(vlan), Lldp::BoundedString32(Zet::String("v")));
}

// Neighbour 5 on port 7, and how many lines the reactors trace at any level.
class ReactorContract : public ::testing::Test {
 protected:
  ReactorContract() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::sinkIs([this](Zet::String const&, int, std::string_view) { ++lines_; });
  }
  ~ReactorContract() override {
    root_->portStatusSmDelAll();
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
  }

  Zet::Ptr<RemoteSystemSm> build() { return RemoteSystemSm::RemoteSystemSmIs(5, EthPortId(7), n_, root_); }
  // Whether the mirror holds VLAN `vlan` of neighbour `index` on port 7.
  bool mirrored(std::uint16_t vlan, std::int32_t index = 5) const {
    return !!root_->remoteVlanName({EthPortId(7), index, Bridging::VlanId(vlan)});
  }

  Zet::Ptr<Root> const root_ = Root::RootIs("root");
  Zet::Ptr<Lldp::RemoteSystem> const n_ = neighbour(5);
  std::size_t lines_ = 0;
};

// A reactor made while its state machine is a zombie is one too.
TEST_F(ReactorContract, ZombieHearsNothingEvenWhenReboundAndComesBackWhenLifted) {
  auto const sm = build();
  sm->zetDoZombieReactors(true);
  auto const before = lines_;
  n_->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(10));
  EXPECT_EQ(lines_, before);
  EXPECT_TRUE(sm->zetRemoteSystem()->zetMarkedForDeletion());

  sm->remoteSystemDel();
  sm->remoteSystemIs(n_);
  ASSERT_TRUE(sm->zetRemoteSystem());
  EXPECT_TRUE(sm->zetRemoteSystem()->zetMarkedForDeletion());
  n_->vlanNameIs(vlanName(11));
  EXPECT_FALSE(mirrored(11));

  sm->zetDoZombieReactors(false);
  n_->vlanNameIs(vlanName(12));
  EXPECT_TRUE(mirrored(12));
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
  port->remoteSystemIs(n_);
  auto const sm = root_->portStatusSmIs(EthPortId(7), port, root_);
  auto const child = sm->remoteSystemSm(5);

  sm->zetDoZombieReactors(true);
  n_->vlanNameIs(vlanName(10));
  port->remoteSystemIs(neighbour(6));
  EXPECT_TRUE(mirrored(10));
  EXPECT_FALSE(child->zetRemoteSystem()->zetMarkedForDeletion());
  EXPECT_FALSE(root_->remoteSystem({EthPortId(7), 6}));

  sm->zetDoZombieReactors(false);
  sm->hasNotificationActiveIs(false);
  n_->vlanNameIs(vlanName(11));
  EXPECT_FALSE(mirrored(11));
  EXPECT_FALSE(child->zetRemoteSystem()->hasNotificationActive());
  EXPECT_FALSE(sm->zetPortStatus()->hasNotificationActive());

  sm->hasNotificationActiveIs(true);
  n_->vlanNameIs(vlanName(12));
  EXPECT_TRUE(mirrored(12));
}

TEST_F(ReactorContract, RebindingMovesDeliveryToTheNewNotifierWithoutAScan) {
  auto const second = neighbour(5);
  second->vlanNameIs(vlanName(20));
  auto const sm = build();
  auto const reactor = sm->zetRemoteSystem();
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->isRegisteredNotifiee());

  sm->remoteSystemIs(second);
  EXPECT_EQ(sm->zetRemoteSystem(), reactor);
  EXPECT_FALSE(mirrored(20));
  n_->vlanNameIs(vlanName(10));
  second->vlanNameIs(vlanName(21));
  EXPECT_FALSE(mirrored(10));
  EXPECT_TRUE(mirrored(21));

  // A notifier of another type counts as none.
  reactor->notifierIs(Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7")));
  EXPECT_EQ(reactor->notifier(), nullptr);
  EXPECT_FALSE(reactor->isRegisteredNotifiee());
}

// However the reactor goes, it is a zombie without an owner from then on.
TEST_F(ReactorContract, ReactorLetGoIsSilent) {
  struct Case {
    char const* how;
    std::function<void(Zet::Ptr<RemoteSystemSm>&)> letGo;
  };
  Case const cases[] = {
      {"slot Del", [this](Zet::Ptr<RemoteSystemSm>& sm) { EXPECT_EQ(sm->remoteSystemDel(), n_); }},
      {"null notifier", [](Zet::Ptr<RemoteSystemSm>& sm) { sm->remoteSystemIs(nullptr); }},
      {"state machine gone", [](Zet::Ptr<RemoteSystemSm>& sm) { sm = nullptr; }},
  };
  std::uint16_t vlan = 10;
  for (auto const& c : cases) {
    SCOPED_TRACE(c.how);
    auto sm = build();
    Zet::Ptr<RemoteSystemSm::ZetRemoteSystem> const reactor = sm->zetRemoteSystem();
    c.letGo(sm);
    EXPECT_TRUE(!sm || !sm->zetRemoteSystem());
    EXPECT_TRUE(reactor->zetMarkedForDeletion());
    EXPECT_EQ(reactor->owner(), nullptr);
    n_->vlanNameIs(vlanName(++vlan));
    EXPECT_FALSE(mirrored(vlan));
    if (sm) {
      EXPECT_FALSE(sm->remoteSystemDel());
    }
  }
}

}  // namespace
