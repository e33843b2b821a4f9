// The per-neighbour state machine: a neighbour's six collections copied into
// the Root's value collections and kept in step, in the order of the tables.

#include "RemoteSystemSm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "Root.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/Trace.h"

namespace {

using Interface::EthPortId;
using Sm = Lldp::Snmp::RemoteSystemSm;
using Lldp::Snmp::Root;

// The reactors' trace lines, all levels, for as long as it lives.
class TraceLines {
 public:
  TraceLines() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::sinkIs([this](Zet::String const& handle, int, std::string_view text) {
      if (handle == Zet::String("LldpSnmp")) {
        lines_.emplace_back(text);
      }
    });
  }
  ~TraceLines() {
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
  }
  // The lines that start with `prefix`, in order.
  std::vector<std::string> starting(std::string_view prefix) const {
    std::vector<std::string> out;
    for (auto const& line : lines_) {
      if (line.starts_with(prefix)) {
        out.push_back(line);
      }
    }
    return out;
  }
  void clear() { lines_.clear(); }

 private:
  std::vector<std::string> lines_;
};

// The second word of "Adding VlanName with key ...".
std::vector<std::string> collectionsNamed(std::vector<std::string> const& lines) {
  std::vector<std::string> out;
  for (auto const& line : lines) {
    auto const start = line.find(' ') + 1;
    out.push_back(line.substr(start, line.find(' ', start) - start));
  }
  return out;
}

Lldp::ManagementAddress::Key addressKey(std::uint8_t lastByte) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  return {1, Lldp::ManAddress(Zet::String(bytes))};
}

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index) {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String("peer")),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
}

Lldp::UnknownOrgDefTlv::Key const orgKey(Lldp::Oui(0x0080c2), 9, 1);

// One entry in each of the six collections.
Zet::Ptr<Lldp::RemoteSystem> fullNeighbour(std::int32_t index) {
  auto const n = neighbour(index);
  n->managementAddressIs(Lldp::ManagementAddress(addressKey(1)));
  n->unknownTlvIs(Lldp::UnknownTlv(20, Lldp::BoundedString511(Zet::String("tlv"))));
  n->unknownOrgDefTlvIs(Lldp::UnknownOrgDefTlv(orgKey, Lldp::BoundedString507(Zet::String("org"))));
  n->portAndProtocolVlanIs(Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(10), true, false));
  n->vlanNameIs(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("ten"))));
  n->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255(Zet::String("stp"))));
  return n;
}

std::vector<std::size_t> counts(Root const& root) {
  return {root.remoteManagementAddress().count(),   root.remoteUnknownTlv().count(),
          root.remoteUnknownOrgDefTlv().count(),    root.remotePortAndProtocolVlan().count(),
          root.remoteVlanName().count(),            root.remoteProtocolIdentityInfo().count()};
}

std::vector<std::string> const tableOrder{"ManagementAddress",   "UnknownTlv", "UnknownOrgDefTlv",
                                          "PortAndProtocolVlan", "VlanName",   "ProtocolIdentityInfo"};

class RemoteSystemSm : public ::testing::Test {
 protected:
  Zet::Ptr<Root> const root = Root::RootIs("root");
  TraceLines trace;
};

TEST_F(RemoteSystemSm, FirstScanCopiesTheSixCollectionsInTableOrder) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);

  EXPECT_EQ(collectionsNamed(trace.starting("Adding ")), tableOrder);
  EXPECT_EQ(counts(*root), std::vector<std::size_t>(6, 1));
  auto const address = root->remoteManagementAddress({EthPortId(7), 5, addressKey(1)});
  EXPECT_EQ(address.ptr, n);
  EXPECT_EQ(address.rawValue, n->managementAddress(addressKey(1)));
  auto const org = root->remoteUnknownOrgDefTlv({EthPortId(7), 5, orgKey.oui, orgKey.subtype, orgKey.index});
  EXPECT_EQ(org.rawValue.orgDefInfo, Lldp::BoundedString507(Zet::String("org")));
  EXPECT_TRUE(sm->hasNotificationActive());
}

TEST_F(RemoteSystemSm, CloseRemovesInTheSameOrderNotTheReverse) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  trace.clear();

  sm->doClose();

  EXPECT_EQ(collectionsNamed(trace.starting("Removing ")), tableOrder);
  EXPECT_EQ(counts(*root), std::vector<std::size_t>(6, 0));
  // The neighbour keeps its entries: closing only touches the mirror.
  EXPECT_EQ(n->vlanNameCount(), 1u);
}

TEST_F(RemoteSystemSm, ValueChangeOverwritesTheSameRecordInPlace) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  Lldp::Snmp::RemoteVlanNameKey const key(EthPortId(7), 5, Bridging::VlanId(10));
  auto const* const before = root->remoteVlanName()[key].get();
  auto const version = root->remoteVlanName().version();

  n->vlanNameIs(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("renamed"))));

  EXPECT_EQ(root->remoteVlanName()[key].get(), before);
  EXPECT_EQ(root->remoteVlanName().version(), version);
  EXPECT_EQ(root->remoteVlanName(key).rawValue.vlanName, Lldp::BoundedString32(Zet::String("renamed")));
}

TEST_F(RemoteSystemSm, EntriesFollowTheNeighbourInAndOut) {
  auto const n = neighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  EXPECT_EQ(counts(*root), std::vector<std::size_t>(6, 0));

  n->unknownTlvIs(Lldp::UnknownTlv(20));
  n->unknownTlvIs(Lldp::UnknownTlv(21));
  n->portAndProtocolVlanIs(Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(0), true, true));
  EXPECT_EQ(root->remoteUnknownTlv().count(), 2u);
  EXPECT_EQ(root->remotePortAndProtocolVlan({EthPortId(7), 5, Bridging::VlanIdOrNone(0)}).rawValue.enabled, true);

  n->unknownTlvDel(20);
  EXPECT_TRUE(!root->remoteUnknownTlv({EthPortId(7), 5, 20}));
  EXPECT_EQ(root->remoteUnknownTlv({EthPortId(7), 5, 21}).key.type, 21u);
}

TEST_F(RemoteSystemSm, KeyAbsentFromNeighbourAndMirrorOnlyTraces) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);
  trace.clear();

  sm->handleVlanName(Bridging::VlanId(99));

  EXPECT_EQ(trace.starting("Removing VlanName with key ").size(), 1u);
  EXPECT_EQ(counts(*root), std::vector<std::size_t>(6, 1));
}

TEST_F(RemoteSystemSm, ProtocolIdentityIsFiledUnderTheNeighboursIndex) {
  auto const n = neighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root);

  n->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255(Zet::String("stp"))));

  auto const record = root->remoteProtocolIdentityInfo({EthPortId(7), 5, 3});
  EXPECT_EQ(record.key.index, 5);
  EXPECT_EQ(record.key.protocolIndex, 3);
  // The handler's argument is named like the neighbour's index and the trace shows it in its place.
  EXPECT_EQ(trace.starting("RemoteSystemSm::handleProtocolIdentityInfo( "),
            std::vector<std::string>{"RemoteSystemSm::handleProtocolIdentityInfo( 7, 3, 3 )"});
}

}  // namespace
