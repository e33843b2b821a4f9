#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/EnabledTlvs.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "Ondo/IntfId.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"

namespace {

using testing::ThrowsMessage;

using Lldp::ManagementAddress;
using namespace std::string_literals;

ManagementAddress::Key key(std::int32_t subtype, std::string const& bytes) {
  return ManagementAddress::Key(subtype, Lldp::ManAddress(Zet::String(bytes)));
}

// Each good value is kept; each bad one is refused with `message`, by the constructor and by
// valueIs, which then keeps the old value.
template <class T>
void expectLimits(std::vector<std::uint32_t> const& good, std::vector<std::uint32_t> const& bad,
                  std::string const& message) {
  for (auto const v : good) {
    EXPECT_EQ(T(v).value(), v);
  }
  T kept(good.front());
  for (auto const v : bad) {
    EXPECT_THAT([&] { (void)T(v); }, ThrowsMessage<Zet::RangeException>(message)) << v;
    EXPECT_THROW(kept.valueIs(v), Zet::RangeException);
    EXPECT_EQ(kept.value(), good.front());
  }
}

TEST(ValueTypes, NumbersAllowExactlyTheirRange) {
  expectLimits<Interface::EthPortId>({0, 4094}, {4095},
                                     "EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
  expectLimits<Bridging::VlanId>({1, 4094}, {0, 4095}, "VlanId::value < 1 or > 4094 not allowed");
  expectLimits<Bridging::VlanIdOrNone>({0, 4094}, {4095}, "VlanIdOrNone::value > 4094 not allowed");
  expectLimits<Lldp::EnabledTlvs>({0xf, 0}, {0x10}, "EnabledTlvs::value > 0xf not allowed");
  expectLimits<Lldp::Dot3EnabledTlvs>({0xf, 0}, {0x10}, "Dot3EnabledTlvs::value > 0xf not allowed");
}

// Exactly maxBytes bytes are kept; one more is refused with the type's message. The filler is
// 'é', two bytes in UTF-8, so the refused text has fewer characters than the limit has bytes.
template <class S>
void expectByteLimit(std::string const& message) {
  std::string atLimit;
  for (std::size_t i = 0; i + 2 <= S::maxBytes; i += 2) {
    atLimit += "\xc3\xa9";
  }
  atLimit.resize(S::maxBytes, 'x');
  EXPECT_EQ(S(Zet::String(atLimit)).value(), Zet::String(atLimit));
  EXPECT_THAT([&] { S(Zet::String(atLimit + "y")); }, ThrowsMessage<Zet::RangeException>(message));
  S kept(Zet::String("kept"));
  EXPECT_THROW(kept.valueIs(Zet::String(atLimit + "y")), Zet::RangeException);
  EXPECT_EQ(kept.value(), Zet::String("kept"));
}

TEST(ValueTypes, BoundedStringsCountBytes) {
  expectByteLimit<Lldp::ChassisId>("ChassisId::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::PortId>("PortId::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::BoundedString32>("BoundedString32::value::bytes > 32 not allowed");
  expectByteLimit<Lldp::BoundedString255>("BoundedString255::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::BoundedString507>("BoundedString507::value::bytes > 507 not allowed");
  expectByteLimit<Lldp::BoundedString511>("BoundedString511::value::bytes > 511 not allowed");
}

TEST(Records, ManagementAddressKeyOrdersAsItsIndexOidAndHashesByValue) {
  // Subtype first, then the length-prefixed address: shorter first, then bytes as unsigned.
  std::vector<ManagementAddress::Key> const ascending{
      key(1, "\xff"), key(1, "\x00\x00"s), key(1, "\x0a\x00\x00\x7f"s), key(1, "\x0a\x00\x00\x80"s),
      key(1, "\x0a\x00\x00\xff"s), key(2, "\x01"),
  };
  for (std::size_t i = 0; i + 1 < ascending.size(); ++i) {
    EXPECT_TRUE(ascending[i] < ascending[i + 1]) << i;
    EXPECT_FALSE(ascending[i + 1] < ascending[i]) << i;
  }
  EXPECT_FALSE(key(1, "a") < key(1, "a"));
  std::unordered_set<ManagementAddress::Key> const keys{key(1, "\x0a\x00\x00\x01"s), key(1, "\x0a\x00\x00\x01"s),
                                                        key(2, "\x0a\x00\x00\x01"s)};
  EXPECT_EQ(keys.size(), 2u);
  // The length counts the subtype's octet too.
  EXPECT_EQ(ManagementAddress(key(1, "\x0a\x00\x00\x01"s)).manAddrLen(), 5u);
  EXPECT_EQ(key(1, "\x0a\x00\x00\x01"s).stringValue(), "1/10.0.0.1");
}

TEST(Records, AdvertisedCapabilitiesPutNamedBitZeroOnTop) {
  Lldp::MacPhyConfigStatusInfo info;
  info.autoNegAdvertisedCap = 1u << 0;  // bOther
  EXPECT_EQ(info.autoNegAdvertisedCapAsU16(), 0x8000);
  info.autoNegAdvertisedCap = (1u << 5) | (1u << 15);  // b100baseTXFD, b1000baseTFD
  EXPECT_EQ(info.autoNegAdvertisedCapAsU16(), 0x0401);
  info.autoNegAdvertisedCap = 0xffff0000u;
  EXPECT_EQ(info.autoNegAdvertisedCapAsU16(), 0);
}

TEST(Records, ManAddrPriorityOrdersFieldByField) {
  Lldp::ManAddrPriority const low(1, 2, 3, Ondo::IntfId("Ethernet9"));
  EXPECT_LT(low, Lldp::ManAddrPriority(2, 0, 0, Ondo::IntfId()));
  EXPECT_LT(low, Lldp::ManAddrPriority(1, 2, 3, Ondo::IntfId("Vlan1")));
  EXPECT_FALSE(low < low);
}

TEST(ObjectIdentifier, DottedTextReadsBothWaysAndOrdersAsSnmpDoes) {
  auto const oid = Snmp::ObjectIdentifier::fromDotted("1.3.6.1.2.1.2.2.1.1.18446744073709551615");
  EXPECT_EQ(oid.stringValue(), "1.3.6.1.2.1.2.2.1.1.18446744073709551615");
  EXPECT_EQ(Snmp::ObjectIdentifier::fromDotted(".1.3"), (Snmp::ObjectIdentifier{1, 3}));
  EXPECT_TRUE(Snmp::ObjectIdentifier::fromDotted("").empty());
  for (char const* bad : {"1..3", "1.3.", "a.b", "1.-3", "1.3 ", ".", "1.18446744073709551616"}) {
    EXPECT_THROW(Snmp::ObjectIdentifier::fromDotted(bad), Zet::ParseException) << bad;
  }
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3}), (Snmp::ObjectIdentifier{1, 3, 0}));
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3, 9}), (Snmp::ObjectIdentifier{1, 3, 10}));
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3, 6, 9}), (Snmp::ObjectIdentifier{1, 4}));
}

// The textual conventions of the MIB files: name and number of each enumerator,
// in the order of the SYNTAX INTEGER { ... } that follows `anchor`.
std::vector<std::pair<std::string, std::int32_t>> mibEnumerators(std::string const& file, std::string const& anchor) {
  std::ifstream in(std::filesystem::path(__FILE__).parent_path() / "../../mibs" / file);
  std::string const text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto const open = std::min(text.find("INTEGER", std::min(text.find(anchor), text.size())), text.size());
  std::string const body = text.substr(open, text.find('}', open) - open);
  std::regex const item(R"(([A-Za-z][A-Za-z0-9]*)\s*\(\s*(\d+)\s*\))");
  std::vector<std::pair<std::string, std::int32_t>> found;
  for (auto it = std::sregex_iterator(body.begin(), body.end(), item); it != std::sregex_iterator(); ++it) {
    found.emplace_back((*it)[1].str(), std::stoi((*it)[2].str()));
  }
  return found;
}

template <class E>
void expectMibNumbering(std::string const& file, std::string const& anchor) {
  auto const expected = mibEnumerators(file, anchor);
  ASSERT_FALSE(expected.empty()) << anchor << " not found in " << file;
  EXPECT_EQ(Lldp::EnumNames<E>::table.size(), expected.size()) << anchor;
  for (auto const& [name, number] : expected) {
    EXPECT_EQ(static_cast<std::int32_t>(Lldp::enumFromText<E>(name)), number) << name;
    EXPECT_EQ(Lldp::enumName(static_cast<E>(number)), name) << number;
  }
}

TEST(Enumerations, NumberedAsTheMibTextualConventions) {
  expectMibNumbering<Lldp::PortIdSubtype>("LLDP-MIB.txt", "LldpPortIdSubtype ::= TEXTUAL-CONVENTION");
  expectMibNumbering<Lldp::ChassisIdSubtype>("LLDP-MIB.txt", "LldpChassisIdSubtype ::= TEXTUAL-CONVENTION");
  expectMibNumbering<Lldp::ManAddrIfSubtype>("LLDP-MIB.txt", "LldpManAddrIfSubtype ::= TEXTUAL-CONVENTION");
  expectMibNumbering<Lldp::AdminStatus>("LLDP-MIB.txt", "lldpPortConfigAdminStatus  OBJECT-TYPE");
  expectMibNumbering<Lldp::PowerPortClass>("LLDP-EXT-DOT3-MIB.txt", "LldpPowerPortClass ::= TEXTUAL-CONVENTION");
}

TEST(Enumerations, TextGivesANameOrAnyS32AndTheStreamBoth) {
  EXPECT_EQ(Lldp::enumFromText<Lldp::AdminStatus>("txAndRx"), Lldp::AdminStatus::txAndRx);
  EXPECT_EQ(static_cast<std::int32_t>(Lldp::enumFromText<Lldp::PortIdSubtype>("-2147483648")), INT32_MIN);
  for (char const* bad : {"TxAndRx", "", "3x", "2147483648", "macAddress "}) {
    EXPECT_THROW(Lldp::enumFromText<Lldp::AdminStatus>(bad), Zet::ParseException) << bad;
  }
  std::ostringstream os;
  os << Lldp::ChassisIdSubtype::macAddress << ' ' << Lldp::ChassisIdSubtype{} << ' ' << Lldp::Oui(0x0080c2);
  EXPECT_EQ(os.str(), "macAddress(4) 0 00-80-c2");
}

}  // namespace
