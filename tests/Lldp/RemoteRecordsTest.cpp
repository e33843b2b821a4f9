#include "RemoteRecords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "Ondo/IntfId.h"
#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/TextForm.h"

namespace {

using namespace Lldp::Snmp;
using Interface::EthPortId;

// One record of each kind whose key and copy are away from their defaults.
RemoteManagementAddress sample(std::type_identity<RemoteManagementAddress>) {
  Lldp::ManagementAddress::Key const addr(1, Lldp::ManAddress(Zet::String("\x0a\x00\x00\x01", 4)));
  Lldp::ManagementAddress raw(addr);
  raw.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
  raw.ifId = 1001;
  return {{EthPortId(3), 7, addr}, nullptr, raw};
}
RemoteUnknownTlv sample(std::type_identity<RemoteUnknownTlv>) {
  return {{EthPortId(3), 7, 20}, nullptr, Lldp::UnknownTlv(20, Lldp::BoundedString511(Zet::String("it's\x01")))};
}
RemoteUnknownOrgDefTlv sample(std::type_identity<RemoteUnknownOrgDefTlv>) {
  Lldp::UnknownOrgDefTlv::Key const tlv(Lldp::Oui(0x0012bb), 0x80000000u, -2);
  return {{EthPortId(3), 7, tlv.oui, tlv.subtype, tlv.index}, nullptr,
          Lldp::UnknownOrgDefTlv(tlv, Lldp::BoundedString507(Zet::String("info")))};
}
RemotePortAndProtocolVlan sample(std::type_identity<RemotePortAndProtocolVlan>) {
  return {{EthPortId(3), 7, Bridging::VlanIdOrNone(0)}, nullptr,
          Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(0), true, false)};
}
RemoteVlanName sample(std::type_identity<RemoteVlanName>) {
  return {{EthPortId(3), 7, Bridging::VlanId(100)}, nullptr,
          Lldp::VlanName(Bridging::VlanId(100), Lldp::BoundedString32(Zet::String("voice")))};
}
RemoteProtocolIdentityInfo sample(std::type_identity<RemoteProtocolIdentityInfo>) {
  return {{EthPortId(3), 7, 2}, nullptr,
          Lldp::ProtocolIdentityInfo(2, Lldp::BoundedString255(Zet::String("\x88\xcc")))};
}

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, double lastChangeTime) {
  auto remote = Zet::makePtr<Lldp::RemoteSystem>(index, Lldp::RemoteSystem::Msap());
  remote->lastChangeTimeIs(lastChangeTime);
  return remote;
}

template <class Record>
Record parse(std::string const& text) {
  return Zet::strepToValue<Record>(Zet::String(text));
}

// The text of `record` with its null neighbour written as `reference`.
template <class Record>
std::string withReference(Record const& record, std::string const& reference) {
  std::string text = valueToStrep(record).stdString();
  std::string const none = "'ptr': None";
  return text.replace(text.find(none), none.size(), "'ptr': " + reference);
}

template <class Record>
class RemoteRecordFamily : public testing::Test {};

using AllRecords = testing::Types<RemoteManagementAddress, RemoteUnknownTlv, RemoteUnknownOrgDefTlv,
                                  RemotePortAndProtocolVlan, RemoteVlanName, RemoteProtocolIdentityInfo>;
TYPED_TEST_SUITE(RemoteRecordFamily, AllRecords);

TYPED_TEST(RemoteRecordFamily, TextReadsBackWithOrWithoutANeighbour) {
  using Record = TypeParam;
  Record const bare = sample(std::type_identity<Record>());
  std::string const bareText = valueToStrep(bare).stdString();
  EXPECT_EQ(parse<Record>(bareText), bare) << bareText;

  auto const remote = neighbour(7, 12.5);
  Record const linked(bare.key, remote, bare.rawValue);
  std::string const linkedText = valueToStrep(linked).stdString();
  Record const back = parse<Record>(linkedText);
  EXPECT_EQ(back, linked) << linkedText;
  EXPECT_EQ(back.ptr.get(), remote.get());
  EXPECT_THROW(parse<Record>(linkedText + "}"), Zet::ParseException);
}

TEST(RemoteRecords, OnlyTheDefaultIsFalseAndANeighbourIsEqualOnlyToItself) {
  RemoteVlanName const full = sample(std::type_identity<RemoteVlanName>());
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

TEST(RemoteRecords, ReferenceToAnythingButAHeldNeighbourIsRefused) {
  RemoteUnknownTlv const record = sample(std::type_identity<RemoteUnknownTlv>());
  auto const port = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId());
  std::string const toPort = Zet::valueToStrep(Zet::Ptr<Lldp::LocalPort const>(port)).stdString();
  EXPECT_THAT([&] { parse<RemoteUnknownTlv>(withReference(record, toPort)); },
              testing::ThrowsMessage<Zet::ParseException>(testing::HasSubstr("Lldp::RemoteSystem")));
  // Alive but held by nobody: taking a reference would end its life.
  Lldp::RemoteSystem unheld(7, Lldp::RemoteSystem::Msap());
  std::string const references[] = {Zet::format("Ref('Lldp::RemoteSystem', %s)", &unheld).stdString(),
                                    "Ref('Lldp::RemoteSystem', 0x8)", "Ref('Lldp::RemoteSystem', nowhere)"};
  for (auto const& reference : references) {
    SCOPED_TRACE(reference);
    EXPECT_THROW(parse<RemoteUnknownTlv>(withReference(record, reference)), Zet::ParseException);
  }
}

TEST(RemoteRecords, OutOfRangeFieldIsReportedUnderTheFieldPath) {
  std::string text = valueToStrep(sample(std::type_identity<RemoteVlanName>())).stdString();
  text.replace(text.find("'vlanId': 100"), 13, "'vlanId': 0");
  EXPECT_THAT([&] { parse<RemoteVlanName>(text); },
              testing::ThrowsMessage<Zet::RangeException>(
                  testing::StrEq("key: vlanId: VlanId::value < 1 or > 4094 not allowed")));
}

TEST(RemoteRecords, FieldsInAnotherOrderAreRefused) {
  RemoteProtocolIdentityInfo const record = sample(std::type_identity<RemoteProtocolIdentityInfo>());
  std::string const reordered = Zet::format("Value('Lldp::Snmp::RemoteProtocolIdentityInfo', ** {'key': %s, "
                                            "'rawValue': %s, 'ptr': None})",
                                            valueToStrep(record.key), Lldp::valueToStrep(record.rawValue))
                                    .stdString();
  EXPECT_THROW(parse<RemoteProtocolIdentityInfo>(reordered), Zet::ParseException);
}

}  // namespace
