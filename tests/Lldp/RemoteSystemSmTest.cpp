// The per-neighbour state machine: a neighbour's six collections copied into
// the Root's value collections and kept in step, in the order of the tables.

#include "RemoteSystemSm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
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

// The Root, and the reactors' trace lines at all levels.
class RemoteSystemSm : public ::testing::Test {
 protected:
  RemoteSystemSm() {
    Zet::Trace::levelsIs("LldpSnmp", ~0u);
    Zet::Trace::sinkIs([this](Zet::String const& handle, int, std::string_view text) {
      if (handle == Zet::String("LldpSnmp")) {
        lines_.emplace_back(text);
      }
    });
  }
  ~RemoteSystemSm() override {
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::levelsIs("LldpSnmp", 0);
  }

  // The lines that start with `prefix`, in order.
  std::vector<std::string> starting(std::string_view prefix) const {
    std::vector<std::string> out;
    std::ranges::copy_if(lines_, std::back_inserter(out), [&](std::string const& l) { return l.starts_with(prefix); });
    return out;
  }
  // The collection each such line names: the second word of "Adding VlanName with key ...".
  std::vector<std::string> collectionsIn(std::string_view prefix) const {
    std::vector<std::string> out;
    for (auto const& line : starting(prefix)) {
      auto const start = line.find(' ') + 1;
      out.push_back(line.substr(start, line.find(' ', start) - start));
    }
    return out;
  }

  Zet::Ptr<Root> const root_ = Root::RootIs("root");
  std::vector<std::string> lines_;
};

TEST_F(RemoteSystemSm, SixCollectionsComeInByTheFirstScanAndGoOnCloseInTableOrder) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root_);
  EXPECT_EQ(collectionsIn("Adding "), tableOrder);
  EXPECT_EQ(counts(*root_), std::vector<std::size_t>(6, 1));
  // By the scan alone: no handler ran for what was there at attachment.
  EXPECT_EQ(starting("RemoteSystemSm::handle").size(), 1u);
  auto const address = root_->remoteManagementAddress({EthPortId(7), 5, addressKey(1)});
  EXPECT_EQ(address.ptr, n);
  EXPECT_EQ(address.rawValue, n->managementAddress(addressKey(1)));
  auto const org = root_->remoteUnknownOrgDefTlv({EthPortId(7), 5, orgKey.oui, orgKey.subtype, orgKey.index});
  EXPECT_EQ(org.rawValue.orgDefInfo, Lldp::BoundedString507(Zet::String("org")));

  // In the same order, not the reverse; the neighbour keeps its entries.
  sm->doClose();
  EXPECT_EQ(collectionsIn("Removing "), tableOrder);
  EXPECT_EQ(counts(*root_), std::vector<std::size_t>(6, 0));
  EXPECT_EQ(n->vlanNameCount(), 1u);
}

TEST_F(RemoteSystemSm, ValueChangeOverwritesTheSameRecordInPlace) {
  auto const n = fullNeighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root_);
  Lldp::Snmp::RemoteVlanNameKey const key(EthPortId(7), 5, Bridging::VlanId(10));
  auto const* const before = root_->remoteVlanName()[key].get();
  auto const version = root_->remoteVlanName().version();

  n->vlanNameIs(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("renamed"))));
  EXPECT_EQ(root_->remoteVlanName()[key].get(), before);
  EXPECT_EQ(root_->remoteVlanName().version(), version);
  EXPECT_EQ(root_->remoteVlanName(key).rawValue.vlanName, Lldp::BoundedString32(Zet::String("renamed")));
}

// A key absent from both the neighbour and the mirror is only traced.
TEST_F(RemoteSystemSm, EntriesFollowTheNeighbourInAndOut) {
  auto const n = neighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root_);
  n->unknownTlvIs(Lldp::UnknownTlv(20));
  n->unknownTlvIs(Lldp::UnknownTlv(21));
  n->unknownTlvDel(20);
  EXPECT_TRUE(!root_->remoteUnknownTlv({EthPortId(7), 5, 20}));
  EXPECT_EQ(root_->remoteUnknownTlv({EthPortId(7), 5, 21}).key.type, 21u);

  sm->handleVlanName(Bridging::VlanId(99));
  EXPECT_EQ(starting("Removing VlanName with key ").size(), 1u);
  EXPECT_EQ(counts(*root_), (std::vector<std::size_t>{0, 1, 0, 0, 0, 0}));
}

// The handler's argument is named like the neighbour's index: the trace shows each in its place.
TEST_F(RemoteSystemSm, ProtocolIdentityIsFiledUnderTheNeighboursIndex) {
  auto const n = neighbour(5);
  auto const sm = Sm::RemoteSystemSmIs(5, EthPortId(7), n, root_);
  n->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255(Zet::String("stp"))));
  auto const record = root_->remoteProtocolIdentityInfo({EthPortId(7), 5, 3});
  EXPECT_EQ(record.key.index, 5);
  EXPECT_EQ(record.key.protocolIndex, 3);
  EXPECT_EQ(starting("RemoteSystemSm::handleProtocolIdentityInfo( "),
            std::vector<std::string>{"RemoteSystemSm::handleProtocolIdentityInfo( 7, 3, 3 )"});
}

}  // namespace
