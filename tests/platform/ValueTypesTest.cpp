#include <gtest/gtest.h>

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
#include "LldpAgent/Oui.h"
#include "Ondo/IntfId.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace {

// The text of the RangeException that `make` raises, or a note that it raised none.
template <class F>
std::string rangeMessage(F make) {
  try {
    make();
  } catch (Zet::RangeException const& e) {
    return e.what();
  }
  return "no RangeException";
}

template <class T>
T roundTrip(T const& value) {
  return Zet::strepToValue<T>(Zet::strepOf(value));
}

TEST(ValueTypes, EthPortIdAllowsZeroToMax) {
  EXPECT_EQ(Interface::EthPortId().value(), 0);
  EXPECT_EQ(Interface::EthPortId(0).value(), 0);
  EXPECT_EQ(Interface::EthPortId(4094).value(), 4094);
  EXPECT_EQ(rangeMessage([] { Interface::EthPortId(4095); }),
            "EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
}

TEST(ValueTypes, VlanIdAllowsOneTo4094AndDefaultsToOne) {
  EXPECT_EQ(Bridging::VlanId().value(), 1);
  EXPECT_EQ(Bridging::VlanId(1).value(), 1);
  EXPECT_EQ(Bridging::VlanId(4094).value(), 4094);
  EXPECT_EQ(rangeMessage([] { Bridging::VlanId(0); }), "VlanId::value < 1 or > 4094 not allowed");
  EXPECT_EQ(rangeMessage([] { Bridging::VlanId(4095); }), "VlanId::value < 1 or > 4094 not allowed");
}

TEST(ValueTypes, VlanIdOrNoneAllowsNone) {
  EXPECT_TRUE(Bridging::VlanIdOrNone().isNone());
  EXPECT_EQ(Bridging::VlanIdOrNone(0).value(), 0);
  EXPECT_EQ(Bridging::VlanIdOrNone(4094).value(), 4094);
  EXPECT_EQ(rangeMessage([] { Bridging::VlanIdOrNone(4095); }), "VlanIdOrNone::value > 4094 not allowed");
}

TEST(ValueTypes, RefusedAssignmentKeepsTheOldValue) {
  Bridging::VlanId vlan(10);
  EXPECT_THROW(vlan.valueIs(0), Zet::RangeException);
  EXPECT_EQ(vlan.value(), 10);
  Interface::EthPortId port(7);
  EXPECT_THROW(port.valueIs(5000), Zet::RangeException);
  EXPECT_EQ(port.value(), 7);
}

TEST(ValueTypes, NumbersOrderByValue) {
  EXPECT_LT(Interface::EthPortId(2), Interface::EthPortId(10));
  EXPECT_LT(Bridging::VlanIdOrNone(0), Bridging::VlanIdOrNone(1));
  EXPECT_LT(Lldp::Oui(0x00ffff), Lldp::Oui(0x800000));
  EXPECT_EQ(Bridging::VlanId(5), Bridging::VlanId(5));
}

// Exactly maxBytes bytes are kept; one more is refused with the type's message.
// The filler is 'é', two bytes in UTF-8, so the refused text has fewer characters than bytes.
template <class S>
void expectByteLimit(std::string const& message) {
  std::string atLimit;
  for (std::size_t i = 0; i + 2 <= S::maxBytes; i += 2) {
    atLimit += "\xc3\xa9";
  }
  if (atLimit.size() < S::maxBytes) {
    atLimit += "x";
  }
  ASSERT_EQ(atLimit.size(), S::maxBytes);
  EXPECT_EQ(S(Zet::String(atLimit)).value(), Zet::String(atLimit));
  EXPECT_EQ(rangeMessage([&] { S(Zet::String(atLimit + "y")); }), message);
  S kept(Zet::String("kept"));
  EXPECT_THROW(kept.valueIs(Zet::String(atLimit + "\xc3\xa9")), Zet::RangeException);
  EXPECT_EQ(kept.value(), Zet::String("kept"));
  EXPECT_TRUE(S().value().empty());
}

TEST(ValueTypes, BoundedStringsCountBytes) {
  expectByteLimit<Lldp::ChassisId>("ChassisId::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::PortId>("PortId::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::BoundedString32>("BoundedString32::value::bytes > 32 not allowed");
  expectByteLimit<Lldp::BoundedString255>("BoundedString255::value::bytes > 255 not allowed");
  expectByteLimit<Lldp::BoundedString507>("BoundedString507::value::bytes > 507 not allowed");
  expectByteLimit<Lldp::BoundedString511>("BoundedString511::value::bytes > 511 not allowed");
}

TEST(ValueTypes, ThirtyThreeBytesInSeventeenCharactersAreTooLong) {
  std::string text;
  for (int i = 0; i < 16; ++i) {
    text += "\xc3\xa9";
  }
  text += "a";
  EXPECT_EQ(rangeMessage([&] { Lldp::BoundedString32(Zet::String(text)); }),
            "BoundedString32::value::bytes > 32 not allowed");
}

TEST(ValueTypes, EnabledTlvsAllowFourBits) {
  EXPECT_EQ(Lldp::EnabledTlvs(0xf).value(), 0xfu);
  EXPECT_EQ(Lldp::Dot3EnabledTlvs(0xf).value(), 0xfu);
  EXPECT_EQ(Lldp::EnabledTlvs().value(), 0u);
  EXPECT_EQ(rangeMessage([] { Lldp::EnabledTlvs(0x10); }), "EnabledTlvs::value > 0xf not allowed");
  EXPECT_EQ(rangeMessage([] { Lldp::Dot3EnabledTlvs(0x10); }), "Dot3EnabledTlvs::value > 0xf not allowed");
}

TEST(ValueTypes, TextFormsReadBackAsTheSameValue) {
  EXPECT_EQ(roundTrip(Interface::EthPortId(4094)), Interface::EthPortId(4094));
  EXPECT_EQ(roundTrip(Bridging::VlanId(100)), Bridging::VlanId(100));
  EXPECT_EQ(roundTrip(Bridging::VlanIdOrNone()), Bridging::VlanIdOrNone());
  EXPECT_EQ(roundTrip(Lldp::ChassisId(Zet::String(std::string("\x00\x1c\x73'\\", 5)))),
            Lldp::ChassisId(Zet::String(std::string("\x00\x1c\x73'\\", 5))));
  EXPECT_EQ(roundTrip(Lldp::Oui(0x0080c2)), Lldp::Oui(0x0080c2));
  EXPECT_EQ(roundTrip(Lldp::SystemCapabilitiesMap(0xffffffff)), Lldp::SystemCapabilitiesMap(0xffffffff));
  EXPECT_EQ(roundTrip(Lldp::LinkAggStatusMap(3)), Lldp::LinkAggStatusMap(3));
  EXPECT_EQ(roundTrip(Lldp::Dot3EnabledTlvs(5)), Lldp::Dot3EnabledTlvs(5));
  EXPECT_EQ(roundTrip(Ondo::IntfId("Ethernet1/2")), Ondo::IntfId("Ethernet1/2"));
  EXPECT_EQ(roundTrip(Snmp::ObjectIdentifier{1, 3, 6, 1, 4, 1, 30065}), (Snmp::ObjectIdentifier{1, 3, 6, 1, 4, 1, 30065}));
}

TEST(ValueTypes, ReadingAValueChecksItsRange) {
  EXPECT_EQ(rangeMessage([] { Zet::strepToValue<Bridging::VlanId>("0"); }), "VlanId::value < 1 or > 4094 not allowed");
  EXPECT_EQ(rangeMessage([] { Zet::strepToValue<Lldp::BoundedString32>(Zet::valueToStrep(Zet::String(std::string(33, 'a')))); }),
            "BoundedString32::value::bytes > 32 not allowed");
  EXPECT_THROW(Zet::strepToValue<Lldp::EnabledTlvs>("16"), Zet::RangeException);
}

TEST(ValueTypes, OuiIsWrittenAsItsThreeBytes) {
  std::ostringstream os;
  os << Lldp::Oui(0x0080c2);
  EXPECT_EQ(os.str(), "00-80-c2");
}

TEST(ValueTypes, IntfIdIsItsName) {
  Ondo::IntfId id;
  EXPECT_TRUE(id.stringValue().empty());
  id.handleInitialized("Ethernet3");
  EXPECT_EQ(id, Ondo::IntfId("Ethernet3"));
  EXPECT_EQ(id.hash(), Ondo::IntfId("Ethernet3").hash());
  EXPECT_LT(Ondo::IntfId("Ethernet1"), Ondo::IntfId("Ethernet2"));
  EXPECT_FALSE(Ondo::IntfId("Ethernet2") < Ondo::IntfId("Ethernet1"));
  id.handleInitialized("");
  EXPECT_EQ(id, Ondo::IntfId());
  std::unordered_set<Ondo::IntfId> const ids{Ondo::IntfId("a"), Ondo::IntfId("b"), Ondo::IntfId("a")};
  EXPECT_EQ(ids.size(), 2u);
}

TEST(ObjectIdentifier, DottedTextReadsBothWays) {
  auto const oid = Snmp::ObjectIdentifier::fromDotted("1.3.6.1.2.1.2.2.1.1.18446744073709551615");
  EXPECT_EQ(oid.size(), 11u);
  EXPECT_EQ(oid.stringValue(), "1.3.6.1.2.1.2.2.1.1.18446744073709551615");
  EXPECT_EQ(Snmp::ObjectIdentifier::fromDotted(".1.3"), (Snmp::ObjectIdentifier{1, 3}));
  EXPECT_TRUE(Snmp::ObjectIdentifier::fromDotted("").empty());
  EXPECT_EQ(Snmp::ObjectIdentifier().stringValue(), "");
}

TEST(ObjectIdentifier, MalformedTextIsRefused) {
  for (char const* bad : {"1..3", "1.3.", "a.b", "1.-3", "1.3 ", ".", "1.18446744073709551616"}) {
    EXPECT_THROW(Snmp::ObjectIdentifier::fromDotted(bad), Zet::ParseException) << bad;
  }
}

TEST(ObjectIdentifier, OrdersAsSnmpDoes) {
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3}), (Snmp::ObjectIdentifier{1, 3, 0}));
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3, 9}), (Snmp::ObjectIdentifier{1, 3, 10}));
  EXPECT_LT((Snmp::ObjectIdentifier{1, 3, 6, 9}), (Snmp::ObjectIdentifier{1, 4}));
}

// The textual conventions of the MIB files: name and number of each enumerator,
// in the order of the SYNTAX INTEGER { ... } that follows `anchor`.
std::vector<std::pair<std::string, std::int32_t>> mibEnumerators(std::string const& file, std::string const& anchor) {
  auto const path = std::filesystem::path(__FILE__).parent_path() / "../../../shared/mibs" / file;
  std::ifstream in(path);
  std::string const text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  auto const at = text.find(anchor);
  auto const open = text.find("INTEGER", at);
  auto const close = text.find('}', open);
  std::vector<std::pair<std::string, std::int32_t>> found;
  if (at == std::string::npos || open == std::string::npos || close == std::string::npos) {
    return found;
  }
  std::string const body = text.substr(open, close - open);
  std::regex const item(R"(([A-Za-z][A-Za-z0-9]*)\s*\(\s*(\d+)\s*\))");
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

TEST(Enumerations, TextGivesANameOrAnyS32) {
  EXPECT_EQ(Lldp::enumFromText<Lldp::AdminStatus>("txAndRx"), Lldp::AdminStatus::txAndRx);
  EXPECT_EQ(static_cast<std::int32_t>(Lldp::enumFromText<Lldp::AdminStatus>("0")), 0);
  EXPECT_EQ(static_cast<std::int32_t>(Lldp::enumFromText<Lldp::PortIdSubtype>("-2147483648")), INT32_MIN);
  EXPECT_TRUE(Lldp::enumName(Lldp::PortIdSubtype{}).empty());
  for (char const* bad : {"TxAndRx", "", "3x", "2147483648", "macAddress "}) {
    EXPECT_THROW(Lldp::enumFromText<Lldp::AdminStatus>(bad), Zet::ParseException) << bad;
  }
}

TEST(Enumerations, StreamShowsNameAndNumber) {
  std::ostringstream os;
  os << Lldp::ChassisIdSubtype::macAddress << ' ' << Lldp::ChassisIdSubtype{};
  EXPECT_EQ(os.str(), "macAddress(4) 0");
}

}  // namespace
