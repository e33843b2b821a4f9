// The reactors that keep the mirror: what every reactor promises (attached
// without hearing the past, silent as a zombie, rebound and let go by its slot
// operations), the per-port machine that brings neighbours in and out with
// their rows, and the per-neighbour machine that copies their six collections.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "MirrorWorld.h"
#include "Ondo/IntfId.h"
#include "PortStatusSm.h"
#include "RemoteSystemSm.h"
#include "Root.h"
#include "Zet/Exception.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::RemoteSystemKey;
using Lldp::Snmp::RemoteSystemSm;
using Lldp::Snmp::Root;

Lldp::UnknownOrgDefTlv::Key const orgKey(Lldp::Oui(0x0080c2), 9, 1);

Lldp::VlanName vlanName(std::uint16_t vlan, char const* name = "v") {
  return Lldp::VlanName(Bridging::VlanId(vlan), Lldp::BoundedString32(Zet::String(name)));
}

// A neighbour with one entry in each of its six collections.
Zet::Ptr<Lldp::RemoteSystem> fullNeighbour(std::int32_t index, char const* chassis = "peer") {
  auto const n = neighbour(index, chassis);
  n->managementAddressIs(Lldp::ManagementAddress(addressKey(1)));
  n->unknownTlvIs(Lldp::UnknownTlv(20, Lldp::BoundedString511(Zet::String("tlv"))));
  n->unknownOrgDefTlvIs(Lldp::UnknownOrgDefTlv(orgKey, Lldp::BoundedString507(Zet::String("org"))));
  n->portAndProtocolVlanIs(Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(10), true, false));
  n->vlanNameIs(vlanName(10, "ten"));
  n->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255(Zet::String("stp"))));
  return n;
}

std::vector<std::string> const tableOrder{"ManagementAddress",   "UnknownTlv", "UnknownOrgDefTlv",
                                          "PortAndProtocolVlan", "VlanName",   "ProtocolIdentityInfo"};

// The collection each line names: the second word of "Adding VlanName with key ...".
std::vector<std::string> collectionsIn(std::vector<std::string> const& lines) {
  std::vector<std::string> out;
  for (auto const& line : lines) {
    auto const start = line.find(' ') + 1;
    out.push_back(line.substr(start, line.find(' ', start) - start));
  }
  return out;
}

// The Root, port 7, and the reactors' trace (all levels) with the framework's faults.
class Reactors : public ::testing::Test {
 protected:
  // The Root owns its reactors and they hold it: let them go.
  ~Reactors() override { root_->portStatusSmDelAll(); }

  Zet::Ptr<Lldp::Snmp::PortStatusSm> buildPort() { return root_->portStatusSmIs(EthPortId(7), port_, root_); }
  Zet::Ptr<RemoteSystemSm> buildNeighbour(Zet::Ptr<Lldp::RemoteSystem> const& n) {
    return RemoteSystemSm::RemoteSystemSmIs(n->index(), EthPortId(7), n, root_);
  }
  // How many entries the six value collections hold, in table order.
  std::vector<std::size_t> counts() const {
    return {root_->remoteManagementAddress().count(),   root_->remoteUnknownTlv().count(),
            root_->remoteUnknownOrgDefTlv().count(),    root_->remotePortAndProtocolVlan().count(),
            root_->remoteVlanName().count(),            root_->remoteProtocolIdentityInfo().count()};
  }
  // Whether the mirror holds VLAN `vlan` of neighbour 5 on port 7.
  bool mirrored(std::uint16_t vlan) const { return !!root_->remoteVlanName({EthPortId(7), 5, Bridging::VlanId(vlan)}); }

  Zet::Ptr<Root> const root_ = Root::RootIs("root");
  Zet::Ptr<Lldp::PortStatus> const port_ = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  Zet::Ptr<Lldp::RemoteSystem> const n_ = neighbour(5);
  TraceCapture const trace_{{"LldpSnmp", ~0u}, {"Zet", 1u}};
};

using ReactorContract = Reactors;
using PortStatusSm = Reactors;
using RemoteSystemSmTest = Reactors;

// A reactor made while its state machine is a zombie is one too.
TEST_F(ReactorContract, ZombieHearsNothingEvenWhenReboundAndComesBackWhenLifted) {
  auto const sm = buildNeighbour(n_);
  sm->zetDoZombieReactors(true);
  auto const before = trace_.countStarting("");
  n_->vlanNameIs(vlanName(10));
  EXPECT_FALSE(mirrored(10));
  EXPECT_EQ(trace_.countStarting(""), before);
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

  // Lifting leaves delivery alone for a reactor without a notifier, and making one leaves it on.
  auto const bare = Zet::makePtr<RemoteSystemSm::ZetRemoteSystem>(nullptr, nullptr);
  bare->zetDoZombieReactors(true);
  bare->zetDoZombieReactors(false);
  EXPECT_FALSE(bare->hasNotificationActive());
  bare->hasNotificationActiveIs(true);
  bare->zetDoZombieReactors(true);
  EXPECT_TRUE(bare->hasNotificationActive());
  EXPECT_TRUE(bare->zetMarkedForDeletion());
}

TEST_F(ReactorContract, PortSwitchedOffSilencesItsNeighboursButAZombiePortDoesNot) {
  port_->remoteSystemIs(n_);
  auto const sm = buildPort();
  auto const child = sm->remoteSystemSm(5);

  sm->zetDoZombieReactors(true);
  n_->vlanNameIs(vlanName(10));
  port_->remoteSystemIs(neighbour(6));
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
  auto const sm = buildNeighbour(n_);
  auto const reactor = sm->zetRemoteSystem();
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
    auto sm = buildNeighbour(n_);
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

TEST_F(PortStatusSm, NeighbourTakesTheRoadInAndOutInOrder) {
  auto const sm = buildPort();
  RemoteSystemKey const key(EthPortId(7), 5);
  // What the mirror holds as each addition or removal is traced.
  std::vector<std::string> seen;
  Zet::Trace::sinkIs([&](Zet::String const&, int, std::string_view line) {
    if (line.starts_with("Adding ") || line.starts_with("Removing ")) {
      seen.push_back(std::string(line.substr(0, line.find(' ', line.find(' ') + 1))) +
                     (root_->remoteSystem(key) ? " row" : "") + (sm->remoteSystemSm(5) ? " sm" : ""));
    }
  });
  auto const n = fullNeighbour(5);

  port_->remoteSystemIs(n);
  auto const row = root_->remoteSystem(key);
  ASSERT_TRUE(row);
  EXPECT_EQ(row->ptr(), n);
  ASSERT_TRUE(sm->remoteSystemSm(5));
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), n);
  // The row is there before the sub-tables are filled, by the new state machine's first scan.
  std::vector<std::string> expected{"Adding RemoteSystem"};
  for (auto const& table : tableOrder) {
    expected.push_back("Adding " + table + " row");
  }
  EXPECT_EQ(seen, expected);

  seen.clear();
  port_->remoteSystemDel(5);
  // Sub-tables first, through the state machine that is still there, the row last.
  expected = {"Removing RemoteSystem row sm"};
  for (auto const& table : tableOrder) {
    expected.push_back("Removing " + table + " row sm");
  }
  EXPECT_EQ(seen, expected);
  EXPECT_FALSE(root_->remoteSystem(key));
  EXPECT_FALSE(sm->remoteSystemSm(5));
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 0));
  // Whoever still holds the row reads the neighbour through it.
  EXPECT_EQ(row->ptr(), n);
}

TEST_F(PortStatusSm, FirstScanMirrorsTheNeighboursAlreadyThereAndRepeatsChangeNothing) {
  port_->remoteSystemIs(fullNeighbour(1));
  port_->remoteSystemIs(fullNeighbour(2));
  auto const sm = buildPort();
  EXPECT_EQ(root_->remoteSystem().count(), 2u);
  EXPECT_EQ(sm->remoteSystemSm().count(), 2u);
  // Brought in by the scans alone: nothing was delivered for them.
  EXPECT_EQ(trace_.countStarting("PortStatusSm::handleRemoteSystem( "), 0u);
  EXPECT_EQ(trace_.countStarting("RemoteSystemSm::handle"), 2u);

  auto const row = root_->remoteSystem({EthPortId(7), 2});
  auto const machine = sm->remoteSystemSm(2);
  sm->handleRemoteSystem(2);
  sm->handleRemoteSystem(2);
  EXPECT_EQ(root_->remoteSystem({EthPortId(7), 2}), row);
  EXPECT_EQ(sm->remoteSystemSm(2), machine);
  EXPECT_EQ(trace_.countStarting("RemoteSystemSm::handleInitialized( "), 2u);
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 2));

  // Closing empties the mirror and leaves the machine listening.
  sm->doClose();
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 0));
  EXPECT_EQ(sm->remoteSystemSm().count(), 0u);
  EXPECT_EQ(port_->remoteSystemCount(), 2u);
  port_->remoteSystemIs(neighbour(3));
  EXPECT_EQ(root_->remoteSystem().count(), 1u);
}

TEST_F(PortStatusSm, RemovalOfANeighbourNeverTakenInIsFatal) {
  auto const sm = buildPort();
  EXPECT_DEATH(sm->handleRemoteSystem(42), "Assertion `closing' failed");
}

TEST_F(PortStatusSm, ReplacedNeighbourWithoutItsRemovalRaisesAndChangesNothing) {
  auto const first = neighbour(5, "first");
  port_->remoteSystemIs(first);
  auto const sm = buildPort();

  port_->remoteSystemIs(neighbour(5, "second"));
  // The exception leaves the reactor into the framework, which reports it.
  EXPECT_EQ(trace_.countStarting("notifiee let an exception out: Reinstantiating the entity with fullName "), 1u);
  EXPECT_EQ(root_->remoteSystem({EthPortId(7), 5})->ptr(), first);
  EXPECT_EQ(sm->remoteSystemSm(5)->remoteSystem(), first);
}

// Removal without doClose() leaves the rows behind: the host closes first.
TEST_F(PortStatusSm, RootGivesTheSameMachineForTheSameParametersRefusesOthersAndRemovalLeavesTheRows) {
  port_->remoteSystemIs(fullNeighbour(1));
  auto const sm = buildPort();
  EXPECT_EQ(buildPort(), sm);
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
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 1));
}

TEST_F(PortStatusSm, WithoutItsNotifierTheMachineLosesItsNameAndHearsNothing) {
  auto const sm = buildPort();
  EXPECT_EQ(sm->portStatusDel(), port_);
  EXPECT_EQ(sm->fwkKey(), Ondo::IntfId());
  port_->remoteSystemIs(neighbour(1));
  EXPECT_EQ(root_->remoteSystem().count(), 0u);
}

TEST_F(RemoteSystemSmTest, SixCollectionsComeInByTheFirstScanAndGoOnCloseInTableOrder) {
  auto const n = fullNeighbour(5);
  auto const sm = buildNeighbour(n);
  EXPECT_EQ(collectionsIn(trace_.starting("Adding ")), tableOrder);
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 1));
  auto const address = root_->remoteManagementAddress({EthPortId(7), 5, addressKey(1)});
  EXPECT_EQ(address.ptr, n);
  EXPECT_EQ(address.rawValue, n->managementAddress(addressKey(1)));
  auto const org = root_->remoteUnknownOrgDefTlv({EthPortId(7), 5, orgKey.oui, orgKey.subtype, orgKey.index});
  EXPECT_EQ(org.rawValue.orgDefInfo, Lldp::BoundedString507(Zet::String("org")));

  // In the same order, not the reverse; the neighbour keeps its entries.
  sm->doClose();
  EXPECT_EQ(collectionsIn(trace_.starting("Removing ")), tableOrder);
  EXPECT_EQ(counts(), std::vector<std::size_t>(6, 0));
  EXPECT_EQ(n->vlanNameCount(), 1u);
}

// A changed value overwrites its record in place; a key absent from both the
// neighbour and the mirror is only traced.
TEST_F(RemoteSystemSmTest, EntriesFollowTheNeighbourInPlaceAndOut) {
  auto const sm = buildNeighbour(n_);
  n_->vlanNameIs(vlanName(10, "ten"));
  Lldp::Snmp::RemoteVlanNameKey const key(EthPortId(7), 5, Bridging::VlanId(10));
  auto const* const before = root_->remoteVlanName()[key].get();
  auto const version = root_->remoteVlanName().version();
  n_->vlanNameIs(vlanName(10, "renamed"));
  EXPECT_EQ(root_->remoteVlanName()[key].get(), before);
  EXPECT_EQ(root_->remoteVlanName().version(), version);
  EXPECT_EQ(root_->remoteVlanName(key).rawValue.vlanName, Lldp::BoundedString32(Zet::String("renamed")));

  n_->unknownTlvIs(Lldp::UnknownTlv(20));
  n_->unknownTlvIs(Lldp::UnknownTlv(21));
  n_->unknownTlvDel(20);
  n_->vlanNameDel(Bridging::VlanId(10));
  EXPECT_TRUE(!root_->remoteUnknownTlv({EthPortId(7), 5, 20}));
  EXPECT_EQ(root_->remoteUnknownTlv({EthPortId(7), 5, 21}).key.type, 21u);
  sm->handleVlanName(Bridging::VlanId(99));
  EXPECT_EQ(trace_.countStarting("Removing VlanName with key "), 2u);
  EXPECT_EQ(counts(), (std::vector<std::size_t>{0, 1, 0, 0, 0, 0}));
}

// The handler's argument is named like the neighbour's index: the trace shows each in its place.
TEST_F(RemoteSystemSmTest, ProtocolIdentityIsFiledUnderTheNeighboursIndex) {
  auto const sm = buildNeighbour(n_);
  n_->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255(Zet::String("stp"))));
  auto const record = root_->remoteProtocolIdentityInfo({EthPortId(7), 5, 3});
  EXPECT_EQ(record.key.index, 5);
  EXPECT_EQ(record.key.protocolIndex, 3);
  EXPECT_EQ(trace_.starting("RemoteSystemSm::handleProtocolIdentityInfo( "),
            std::vector<std::string>{"RemoteSystemSm::handleProtocolIdentityInfo( 7, 3, 3 )"});
}

}  // namespace
