// The mirror's keys and value records: their text forms (listed in
// data/text-forms.txt), the MIB's index order, defaults, and what a record
// reads from its key and its neighbour rather than from its copy.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "Ondo/IntfId.h"
#include "RemoteRecords.h"
#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "platform/TextFormCases.h"

namespace {

using namespace Lldp::Snmp;
using namespace std::string_literals;
using Interface::EthPortId;

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, double lastChangeTime) {
  auto remote = Zet::makePtr<Lldp::RemoteSystem>(index, Lldp::RemoteSystem::Msap());
  remote->lastChangeTimeIs(lastChangeTime);
  return remote;
}

// As rewritten(), and the record read back with a held neighbour is that neighbour's.
template <class Record>
std::string rewrittenWithNeighbour(std::string const& text) {
  std::string const written = rewritten<Record>(text);
  Record const bare = Zet::strepToValue<Record>(Zet::String(text));
  Record const linked(bare.key, neighbour(7, 12.5), bare.rawValue);
  Record const back = Zet::strepToValue<Record>(valueToStrep(linked));
  EXPECT_EQ(back, linked);
  EXPECT_EQ(back.ptr.get(), linked.ptr.get());
  return written;
}

TEST(MirrorValues, ListedTextsReadBackOrAreRefused) {
  expectTextFormCases(
      "Lldp/data/text-forms.txt",
      {{"Lldp::Snmp::RemoteSystem::Key", rewritten<RemoteSystemKey>},
       {"Lldp::Snmp::RemoteManagementAddress::Key", rewritten<RemoteManagementAddressKey>},
       {"Lldp::Snmp::RemoteUnknownTlv::Key", rewritten<RemoteUnknownTlvKey>},
       {"Lldp::Snmp::RemoteUnknownOrgDefTlv::Key", rewritten<RemoteUnknownOrgDefTlvKey>},
       {"Lldp::Snmp::RemotePortAndProtocolVlan::Key", rewritten<RemotePortAndProtocolVlanKey>},
       {"Lldp::Snmp::RemoteVlanName::Key", rewritten<RemoteVlanNameKey>},
       {"Lldp::Snmp::RemoteProtocolIdentityInfo::Key", rewritten<RemoteProtocolIdentityInfoKey>},
       {"Lldp::Snmp::RemoteManagementAddress", rewrittenWithNeighbour<RemoteManagementAddress>},
       {"Lldp::Snmp::RemoteUnknownTlv", rewrittenWithNeighbour<RemoteUnknownTlv>},
       {"Lldp::Snmp::RemoteUnknownOrgDefTlv", rewrittenWithNeighbour<RemoteUnknownOrgDefTlv>},
       {"Lldp::Snmp::RemotePortAndProtocolVlan", rewrittenWithNeighbour<RemotePortAndProtocolVlan>},
       {"Lldp::Snmp::RemoteVlanName", rewrittenWithNeighbour<RemoteVlanName>},
       {"Lldp::Snmp::RemoteProtocolIdentityInfo", rewrittenWithNeighbour<RemoteProtocolIdentityInfo>}});
}

TEST(MirrorValues, ReferenceToAnythingButAHeldNeighbourIsRefused) {
  RemoteUnknownTlv const record({EthPortId(3), 7, 20}, nullptr, Lldp::UnknownTlv(20));
  auto const withReference = [&](std::string const& reference) {
    std::string text = valueToStrep(record).stdString();
    return text.replace(text.find("None"), 4, reference);
  };
  auto const port = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId());
  std::string const toPort = Zet::valueToStrep(Zet::Ptr<Lldp::LocalPort const>(port)).stdString();
  EXPECT_THAT([&] { Zet::strepToValue<RemoteUnknownTlv>(Zet::String(withReference(toPort))); },
              testing::ThrowsMessage<Zet::ParseException>(testing::HasSubstr("Lldp::RemoteSystem")));
  // Alive but held by nobody: taking a reference would end its life.
  Lldp::RemoteSystem unheld(7, Lldp::RemoteSystem::Msap());
  EXPECT_THROW(Zet::strepToValue<RemoteUnknownTlv>(
                   Zet::String(withReference(Zet::format("Ref('Lldp::RemoteSystem', %s)", &unheld).stdString()))),
               Zet::ParseException);
}

template <class Key>
Key at(std::uint16_t port, std::int32_t index) {
  Key key;
  key.ethPortId = EthPortId(port);
  key.index = index;
  return key;
}

// Each key both ways against the next: strictly ascending.
template <class Key>
void expectAscending(std::vector<Key> const& keys) {
  for (std::size_t i = 1; i < keys.size(); ++i) {
    EXPECT_TRUE(keys[i - 1] < keys[i]) << "before " << keys[i];
    EXPECT_FALSE(keys[i] < keys[i - 1]) << "before " << keys[i];
  }
}

template <class Key>
class MirrorKeyFamily : public testing::Test {};

using AllKeys = testing::Types<RemoteSystemKey, RemoteManagementAddressKey, RemoteUnknownTlvKey,
                               RemoteUnknownOrgDefTlvKey, RemotePortAndProtocolVlanKey, RemoteVlanNameKey,
                               RemoteProtocolIdentityInfoKey>;
TYPED_TEST_SUITE(MirrorKeyFamily, AllKeys);

TYPED_TEST(MirrorKeyFamily, PortOutranksIndexNegativeIndexSortsFirstAndOnlyTheDefaultIsFalse) {
  using Key = TypeParam;
  expectAscending(std::vector{at<Key>(1, 5), at<Key>(2, -3), at<Key>(2, -1), at<Key>(2, 0), at<Key>(2, 1)});
  EXPECT_FALSE(at<Key>(2, 1) < at<Key>(2, 1));
  EXPECT_TRUE(!Key());
  EXPECT_FALSE(!at<Key>(0, -1));
  EXPECT_FALSE(!at<Key>(1, 0));
}

// The MIB's index order: U32 fields, the OUI and the VLANs unsigned (VLAN 0,
// none, first), S32 fields signed; the neighbour outranks them all.
TEST(MirrorKeys, FurtherFieldsSortInMibOrderAndHaveDefaultsOfTheirOwn) {
  auto const orgDef = [](std::uint32_t oui, std::uint32_t subtype, std::int32_t index) {
    return RemoteUnknownOrgDefTlvKey(EthPortId(3), 1, Lldp::Oui(oui), subtype, index);
  };
  expectAscending(std::vector{orgDef(0x0012bb, 0x80000000u, 0), orgDef(0x0080c2, 1, -1), orgDef(0x0080c2, 1, 1),
                              orgDef(0x0080c2, 2, -9), orgDef(0x0080c2, 0x80000000u, -9), orgDef(0xffffff, 0, 0)});
  expectAscending(std::vector<RemoteUnknownTlvKey>{{EthPortId(1), 1, 9}, {EthPortId(1), 1, 0xffffffffu}});
  expectAscending(std::vector<RemoteProtocolIdentityInfoKey>{{EthPortId(1), 1, -1}, {EthPortId(1), 1, 0}});
  auto const protoVlan = [](std::int32_t index, std::uint16_t vid) {
    return RemotePortAndProtocolVlanKey(EthPortId(1), index, Bridging::VlanIdOrNone(vid));
  };
  expectAscending(std::vector{protoVlan(0, 4094), protoVlan(1, 0), protoVlan(1, 1), protoVlan(1, 4094)});
  // An address sorts by subtype, then by length, then by its bytes.
  auto const address = [](std::int32_t subtype, std::string const& bytes) {
    return RemoteManagementAddressKey(EthPortId(1), 1, {subtype, Lldp::ManAddress(Zet::String(bytes))});
  };
  expectAscending(std::vector{address(1, "\x0a\x00\x00\x01"s), address(1, "\x0a\x00\x00\x02"s),
                              address(1, "\xff\xff\xff\xff"s), address(1, std::string(5, '\x00')),
                              address(1, std::string(16, '\xff')), address(2, "\x01"s)});

  // The inbound TLV key's defaults (subtype 1, index 1) are not this key's.
  EXPECT_FALSE(!RemoteUnknownOrgDefTlvKey(EthPortId(0), 0, Lldp::Oui(0), 1, 1));
  // There is no VLAN 0: the default VLAN key stands at VLAN 1.
  EXPECT_TRUE(!RemoteVlanNameKey(EthPortId(0), 0, Bridging::VlanId(1)));
  EXPECT_TRUE(!RemotePortAndProtocolVlanKey(EthPortId(0), 0, Bridging::VlanIdOrNone(0)));
}

TEST(RemoteRecords, OnlyTheDefaultIsFalseAndANeighbourIsEqualOnlyToItself) {
  RemoteVlanName const full({EthPortId(3), 7, Bridging::VlanId(100)}, nullptr,
                            Lldp::VlanName(Bridging::VlanId(100), Lldp::BoundedString32(Zet::String("voice"))));
  EXPECT_TRUE(!RemoteVlanName());
  EXPECT_FALSE(!RemoteVlanName({}, nullptr, full.rawValue));
  EXPECT_FALSE(!RemoteVlanName({}, neighbour(1, 0.0), {}));
  auto const first = neighbour(7, 1.0);
  EXPECT_EQ(RemoteVlanName(full.key, first, full.rawValue), RemoteVlanName(full.key, first, full.rawValue));
  EXPECT_FALSE(RemoteVlanName(full.key, first, full.rawValue) ==
               RemoteVlanName(full.key, neighbour(7, 1.0), full.rawValue));
}

// Where a value stands both in the key and in the copy, the key is read; the
// time mark is the neighbour's, and moves with it.
TEST(RemoteRecords, DerivedAttributesReadTheKeyAndTheNeighbourOverTheCopy) {
  Lldp::ManagementAddress const raw(Lldp::ManagementAddress::Key(2, Lldp::ManAddress(Zet::String("other"))));
  RemoteManagementAddress const address({EthPortId(1), 1, {1, Lldp::ManAddress(Zet::String("\x0a\x00\x00\x01", 4))}},
                                        nullptr, raw);
  EXPECT_EQ(address.manAddrSubtype(), 1);
  EXPECT_EQ(address.manAddr(), Lldp::ManAddress(Zet::String("\x0a\x00\x00\x01", 4)));
  EXPECT_EQ(RemoteUnknownTlv({EthPortId(1), 1, 20}, nullptr, Lldp::UnknownTlv(30)).type(), 20u);
  RemoteVlanName const vlan({EthPortId(1), 1, Bridging::VlanId(10)}, nullptr,
                            Lldp::VlanName(Bridging::VlanId(20), Lldp::BoundedString32(Zet::String("v"))));
  EXPECT_EQ(vlan.vlanId(), Bridging::VlanId(10));
  EXPECT_EQ(vlan.timeMark(), 0.0);

  auto const remote = neighbour(7, 12.5);
  RemoteVlanName const linked(vlan.key, remote, vlan.rawValue);
  EXPECT_EQ(linked.timeMark(), 12.5);
  remote->lastChangeTimeIs(40.25);
  EXPECT_EQ(linked.timeMark(), 40.25);
}

}  // namespace
