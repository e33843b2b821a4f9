#include "MirrorKeys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
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

template <class F>
std::string rangeMessage(F read) {
  try {
    read();
  } catch (Zet::RangeException const& e) {
    return e.what();
  }
  return "no RangeException";
}

template <class Key>
class MirrorKeyFamily : public testing::Test {};

using AllKeys = testing::Types<RemoteSystemKey, RemoteManagementAddressKey, RemoteUnknownTlvKey,
                               RemoteUnknownOrgDefTlvKey, RemotePortAndProtocolVlanKey, RemoteVlanNameKey,
                               RemoteProtocolIdentityInfoKey>;
TYPED_TEST_SUITE(MirrorKeyFamily, AllKeys);

TYPED_TEST(MirrorKeyFamily, PortOutranksIndexAndNegativeIndexSortsFirst) {
  using Key = TypeParam;
  EXPECT_TRUE(at<Key>(1, 5) < at<Key>(2, -3));
  EXPECT_FALSE(at<Key>(2, -3) < at<Key>(1, 5));
  EXPECT_TRUE(at<Key>(2, -1) < at<Key>(2, 0));
  EXPECT_TRUE(at<Key>(2, -1) < at<Key>(2, 1));
  EXPECT_FALSE(at<Key>(2, 1) < at<Key>(2, -1));
  EXPECT_FALSE(at<Key>(2, 1) < at<Key>(2, 1));
}

TYPED_TEST(MirrorKeyFamily, TextReadsBackAsAnEqualKey) {
  using Key = TypeParam;
  Key const key = at<Key>(4094, -2147483647 - 1);
  std::string const text = valueToStrep(key).stdString();
  EXPECT_EQ(parse<Key>(text), key) << text;
  EXPECT_EQ(parse<Key>(valueToStrep(Key()).stdString()), Key());
  std::ostringstream streamed;
  streamed << key;
  EXPECT_EQ(streamed.str(), text);
}

TYPED_TEST(MirrorKeyFamily, TrailingTextAndForeignTypesAreRefused) {
  using Key = TypeParam;
  std::string const text = valueToStrep(sample(std::type_identity<Key>())).stdString();
  EXPECT_THROW(parse<Key>(text + " "), Zet::ParseException);
  EXPECT_THROW(parse<Key>(text.substr(0, text.size() - 1)), Zet::ParseException);
  // Another key's text, even one with the same first fields, is no text of this one.
  std::string const other = std::is_same_v<Key, RemoteSystemKey>
                                ? valueToStrep(RemoteUnknownTlvKey()).stdString()
                                : valueToStrep(RemoteSystemKey()).stdString();
  EXPECT_THROW(parse<Key>(other), Zet::ParseException);
}

TYPED_TEST(MirrorKeyFamily, OnlyTheDefaultKeyIsFalse) {
  using Key = TypeParam;
  EXPECT_TRUE(!Key());
  EXPECT_FALSE(!sample(std::type_identity<Key>()));
  Key withIndex;
  withIndex.index = -1;
  EXPECT_FALSE(!withIndex);
  Key withPort;
  withPort.ethPortId = EthPortId(1);
  EXPECT_FALSE(!withPort);
}

TEST(MirrorKeys, OrgDefKeysSortByOuiThenSubtypeThenIndex) {
  auto const key = [](std::uint32_t oui, std::uint32_t subtype, std::int32_t index) {
    return RemoteUnknownOrgDefTlvKey(EthPortId(3), 1, Lldp::Oui(oui), subtype, index);
  };
  // In MIB order: the subtype is unsigned, so its top bit sorts last, while
  // the TLV index is signed and -1 comes before 1.
  std::vector<RemoteUnknownOrgDefTlvKey> const ordered{
      key(0x0012bb, 0x80000000u, 0), key(0x0080c2, 1, -1), key(0x0080c2, 1, 1), key(0x0080c2, 2, -9),
      key(0x0080c2, 0x80000000u, -9), key(0xffffff, 0, 0)};
  std::vector<RemoteUnknownOrgDefTlvKey> shuffled(ordered.rbegin(), ordered.rend());
  std::rotate(shuffled.begin(), shuffled.begin() + 2, shuffled.end());
  std::sort(shuffled.begin(), shuffled.end());
  EXPECT_EQ(shuffled, ordered);
}

TEST(MirrorKeys, UnsignedAndVlanFieldsSortAsUnsigned) {
  EXPECT_TRUE(RemoteUnknownTlvKey(EthPortId(1), 1, 9) < RemoteUnknownTlvKey(EthPortId(1), 1, 0xffffffffu));
  auto const protoVlan = [](std::uint16_t vid) {
    return RemotePortAndProtocolVlanKey(EthPortId(1), 1, Bridging::VlanIdOrNone(vid));
  };
  EXPECT_TRUE(protoVlan(0) < protoVlan(1));
  EXPECT_TRUE(protoVlan(0) < protoVlan(4094));
  EXPECT_FALSE(protoVlan(4094) < protoVlan(0));
  // The neighbour still outranks the VLAN.
  EXPECT_TRUE(RemotePortAndProtocolVlanKey(EthPortId(1), 0, Bridging::VlanIdOrNone(4094)) < protoVlan(0));
  EXPECT_TRUE(RemoteVlanNameKey(EthPortId(1), 1, Bridging::VlanId(1)) <
              RemoteVlanNameKey(EthPortId(1), 1, Bridging::VlanId(4094)));
  EXPECT_TRUE(RemoteProtocolIdentityInfoKey(EthPortId(1), 1, -1) < RemoteProtocolIdentityInfoKey(EthPortId(1), 1, 0));
}

TEST(MirrorKeys, ManagementAddressKeysSortBySubtypeThenAddressLength) {
  auto const key = [](std::int32_t subtype, std::string const& bytes) {
    return RemoteManagementAddressKey(EthPortId(1), 1, {subtype, Lldp::ManAddress(Zet::String(bytes))});
  };
  EXPECT_TRUE(key(1, std::string(16, '\xff')) < key(2, "\x01"));
  EXPECT_TRUE(key(1, "\xff\xff\xff\xff") < key(1, std::string(5, '\x00')));
  EXPECT_TRUE(key(1, "\x0a\x00\x00\x01"s) < key(1, "\x0a\x00\x00\x02"s));
  EXPECT_FALSE(key(1, "\x0a\x00\x00\x01"s) < key(1, "\x0a\x00\x00\x01"s));
}

TEST(MirrorKeys, DefaultsAreTheKeysOwnNotTheInboundRecords) {
  // The inbound TLV key's defaults (subtype 1, index 1) are not this key's.
  EXPECT_FALSE(!RemoteUnknownOrgDefTlvKey(EthPortId(0), 0, Lldp::Oui(0), 1, 1));
  EXPECT_TRUE(!RemoteUnknownOrgDefTlvKey(EthPortId(0), 0, Lldp::Oui(0), 0, 0));
  // There is no VLAN 0: the default VLAN key stands at VLAN 1.
  EXPECT_TRUE(!RemoteVlanNameKey(EthPortId(0), 0, Bridging::VlanId(1)));
  EXPECT_FALSE(!RemoteVlanNameKey(EthPortId(0), 0, Bridging::VlanId(2)));
  EXPECT_TRUE(!RemotePortAndProtocolVlanKey(EthPortId(0), 0, Bridging::VlanIdOrNone(0)));
}

TEST(MirrorKeys, TextFollowsTheFormatString) {
  RemoteUnknownOrgDefTlvKey const key(EthPortId(12), -2, Lldp::Oui(0x0080c2), 0x80000000u, -1);
  EXPECT_EQ(valueToStrep(key),
            Zet::format("Value('Lldp::Snmp::RemoteUnknownOrgDefTlv::Key', ** {'ethPortId': %s, 'index': %s, 'oui': "
                        "%s, 'subtype': %s, 'unknownOrgDefTlvIndex': %s})",
                        Interface::valueToStrep(key.ethPortId), "-2", Lldp::valueToStrep(key.oui), "2147483648",
                        "-1"));
  RemoteManagementAddressKey const address = sample(std::type_identity<RemoteManagementAddressKey>());
  EXPECT_EQ(valueToStrep(address),
            Zet::format("Value('Lldp::Snmp::RemoteManagementAddress::Key', ** {'ethPortId': %s, 'index': %s, "
                        "'manAddrKey': %s})",
                        "7", "42", Lldp::valueToStrep(address.manAddrKey)));
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
  EXPECT_EQ(rangeMessage([] {
              parse<RemoteVlanNameKey>(
                  "Value('Lldp::Snmp::RemoteVlanName::Key', ** {'ethPortId': 3, 'index': 1, 'vlanId': 0})");
            }),
            "vlanId: VlanId::value < 1 or > 4094 not allowed");
  EXPECT_EQ(rangeMessage([] {
              parse<RemoteSystemKey>("Value('Lldp::Snmp::RemoteSystem::Key', ** {'ethPortId': 4095, 'index': 1})");
            }),
            "ethPortId: EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
  EXPECT_EQ(
      rangeMessage([] {
        parse<RemotePortAndProtocolVlanKey>("Value('Lldp::Snmp::RemotePortAndProtocolVlan::Key', ** {'ethPortId': 0, "
                                            "'index': 0, 'portAndProtocolVlanId': 4095})");
      }),
      "portAndProtocolVlanId: VlanIdOrNone::value > 4094 not allowed");
  std::string const indexMessage = rangeMessage([] {
    parse<RemoteSystemKey>("Value('Lldp::Snmp::RemoteSystem::Key', ** {'ethPortId': 1, 'index': 2147483648})");
  });
  EXPECT_TRUE(indexMessage.starts_with("index: ")) << indexMessage;
}

}  // namespace
