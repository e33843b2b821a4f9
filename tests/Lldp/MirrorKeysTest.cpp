#include "MirrorKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "Zet/Exception.h"
#include "Zet/String.h"
#include "Zet/TextForm.h"

namespace {

using namespace Lldp::Snmp;
using namespace std::string_literals;
using Interface::EthPortId;

// One key of each kind whose further fields are all away from their defaults.
RemoteSystemKey sample(std::type_identity<RemoteSystemKey>) { return {EthPortId(7), 42}; }
RemoteManagementAddressKey sample(std::type_identity<RemoteManagementAddressKey>) {
  return {EthPortId(7), 42, Lldp::ManagementAddress::Key(1, Lldp::ManAddress(Zet::String("\x0a\x00\x00\x01", 4)))};
}
RemoteUnknownTlvKey sample(std::type_identity<RemoteUnknownTlvKey>) { return {EthPortId(7), 42, 126}; }
RemoteUnknownOrgDefTlvKey sample(std::type_identity<RemoteUnknownOrgDefTlvKey>) {
  return {EthPortId(7), 42, Lldp::Oui(0x0080c2), 0xffffffffu, -5};
}
RemotePortAndProtocolVlanKey sample(std::type_identity<RemotePortAndProtocolVlanKey>) {
  return {EthPortId(7), 42, Bridging::VlanIdOrNone(4094)};
}
RemoteVlanNameKey sample(std::type_identity<RemoteVlanNameKey>) { return {EthPortId(7), 42, Bridging::VlanId(100)}; }
RemoteProtocolIdentityInfoKey sample(std::type_identity<RemoteProtocolIdentityInfoKey>) {
  return {EthPortId(7), 42, -3};
}

template <class Key>
Key at(std::uint16_t port, std::int32_t index) {
  Key key = sample(std::type_identity<Key>());
  key.ethPortId = EthPortId(port);
  key.index = index;
  return key;
}

template <class Key>
Key parse(std::string const& text) {
  return Zet::strepToValue<Key>(Zet::String(text));
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

TYPED_TEST(MirrorKeyFamily, PortOutranksIndexAndNegativeIndexSortsFirst) {
  using Key = TypeParam;
  expectAscending(std::vector{at<Key>(1, 5), at<Key>(2, -3), at<Key>(2, -1), at<Key>(2, 0), at<Key>(2, 1)});
  EXPECT_FALSE(at<Key>(2, 1) < at<Key>(2, 1));
}

TYPED_TEST(MirrorKeyFamily, TextReadsBackAsAnEqualKeyAndNothingElseDoes) {
  using Key = TypeParam;
  Key const key = at<Key>(4094, -2147483647 - 1);
  std::string const text = valueToStrep(key).stdString();
  EXPECT_EQ(parse<Key>(text), key) << text;
  EXPECT_EQ(parse<Key>(valueToStrep(Key()).stdString()), Key());

  EXPECT_THROW(parse<Key>(text + " "), Zet::ParseException);
  EXPECT_THROW(parse<Key>(text.substr(0, text.size() - 1)), Zet::ParseException);
  // Another key's text, even one with the same first fields, is no text of this one.
  std::string const other = std::is_same_v<Key, RemoteSystemKey> ? valueToStrep(RemoteUnknownTlvKey()).stdString()
                                                                  : valueToStrep(RemoteSystemKey()).stdString();
  EXPECT_THROW(parse<Key>(other), Zet::ParseException);
}

TYPED_TEST(MirrorKeyFamily, OnlyTheDefaultKeyIsFalse) {
  using Key = TypeParam;
  EXPECT_TRUE(!Key());
  EXPECT_FALSE(!sample(std::type_identity<Key>()));
  EXPECT_FALSE(!at<Key>(0, -1));
  EXPECT_FALSE(!at<Key>(1, 0));
}

// The MIB's index order: U32 fields, the OUI and the VLANs unsigned (VLAN 0,
// none, first), S32 fields signed; the neighbour outranks them all.
TEST(MirrorKeys, FurtherFieldsSortInMibOrder) {
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
}

TEST(MirrorKeys, DefaultsAreTheKeysOwnNotTheInboundRecords) {
  // The inbound TLV key's defaults (subtype 1, index 1) are not this key's.
  EXPECT_FALSE(!RemoteUnknownOrgDefTlvKey(EthPortId(0), 0, Lldp::Oui(0), 1, 1));
  // There is no VLAN 0: the default VLAN key stands at VLAN 1.
  EXPECT_TRUE(!RemoteVlanNameKey(EthPortId(0), 0, Bridging::VlanId(1)));
  EXPECT_TRUE(!RemotePortAndProtocolVlanKey(EthPortId(0), 0, Bridging::VlanIdOrNone(0)));
}

TEST(MirrorKeys, FieldsInAnotherOrderAreRefused) {
  EXPECT_EQ(parse<RemoteSystemKey>("Value('Lldp::Snmp::RemoteSystem::Key', ** {'ethPortId': 3, 'index': -4})"),
            RemoteSystemKey(EthPortId(3), -4));
  EXPECT_THROW(parse<RemoteSystemKey>("Value('Lldp::Snmp::RemoteSystem::Key', ** {'index': -4, 'ethPortId': 3})"),
               Zet::ParseException);
  EXPECT_THROW(parse<RemoteVlanNameKey>(
                   "Value('Lldp::Snmp::RemoteVlanName::Key', ** {'ethPortId': 3, 'vlanId': 5, 'index': 1})"),
               Zet::ParseException);
}

TEST(MirrorKeys, OutOfRangeFieldIsReportedUnderItsName) {
  using testing::StrEq;
  using testing::ThrowsMessage;
  EXPECT_THAT([] { parse<RemoteVlanNameKey>("Value('Lldp::Snmp::RemoteVlanName::Key', ** {'ethPortId': 3, 'index': 1, "
                                            "'vlanId': 0})"); },
              ThrowsMessage<Zet::RangeException>(StrEq("vlanId: VlanId::value < 1 or > 4094 not allowed")));
  EXPECT_THAT([] { parse<RemoteSystemKey>("Value('Lldp::Snmp::RemoteSystem::Key', ** {'ethPortId': 4095, "
                                          "'index': 1})"); },
              ThrowsMessage<Zet::RangeException>(
                  StrEq("ethPortId: EthPortId::value < EthPortId::min or > EthPortId::max not allowed")));
}

}  // namespace
