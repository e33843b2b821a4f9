#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <unordered_set>
#include <vector>

#include "Bridging/VlanId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "Ondo/IntfId.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace {

using Lldp::ManagementAddress;
using namespace std::string_literals;

using testing::ThrowsMessage;

// Reading a T from `text`, to be run later.
template <class T>
auto reading(std::string const& text) {
  return [text] { Zet::strepToValue<T>(Zet::String(text)); };
}

template <class T>
std::string textOf(T const& value) {
  return Lldp::valueToStrep(value).stdString();
}

// Parses the text form back and checks that nothing was lost; the stream
// output is the same text.
template <class T>
void expectRoundTrip(T const& value) {
  std::string const text = textOf(value);
  EXPECT_EQ(Zet::strepToValue<T>(Zet::String(text)), value) << text;
  std::ostringstream os;
  os << value;
  EXPECT_EQ(os.str(), text);
}

ManagementAddress::Key key(std::int32_t subtype, std::string const& bytes) {
  return ManagementAddress::Key(subtype, Lldp::ManAddress(Zet::String(bytes)));
}

TEST(Records, UnknownTlvTypeRunsFrom9To126) {
  EXPECT_EQ(Lldp::UnknownTlv(9).type, 9u);
  EXPECT_EQ(Lldp::UnknownTlv(126).type, 126u);
  for (std::uint32_t const type : {8, 127}) {
    EXPECT_THAT([=] { Lldp::UnknownTlv{type}; },
                ThrowsMessage<Zet::RangeException>("UnknownTlv::type < 9 or > 126 not allowed"));
  }
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
}

TEST(Records, ManagementAddressCountsTheSubtypeInItsLengthAndShowsAsText) {
  ManagementAddress const address(key(1, "\x0a\x00\x00\x01"s));
  EXPECT_EQ(address.key(), key(1, "\x0a\x00\x00\x01"s));
  EXPECT_EQ(address.manAddrLen(), 5u);
  EXPECT_EQ(address.key().stringValue(), "1/10.0.0.1");
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

TEST(Records, TextFormHasTheFieldsInOrder) {
  EXPECT_EQ(textOf(Lldp::VlanName(Bridging::VlanId(10), Lldp::BoundedString32(Zet::String("v'10")))),
            R"(Value('Lldp::VlanName', ** {'vlanId': 10, 'vlanName': 'v\'10'}))");
  EXPECT_EQ(textOf(key(1, "\x0a\x00\x00\x01"s)),
            R"(Value('Lldp::ManagementAddress::Key', ** {'manAddrSubtype': 1, 'manAddr': '\n\x00\x00\x01'}))");
}

TEST(Records, EveryRecordReadsBackFromItsText) {
  std::string const binary("\x00\xff'\\\n", 5);
  ManagementAddress address(key(2, std::string(16, '\x20')));
  address.ifSubtype = Lldp::ManAddrIfSubtype::systemPortNumber;
  address.ifId = -5;
  address.oid = Snmp::ObjectIdentifier{1, 3, 6, 1, 2, 1, 2, 2, 1, 1, 5};
  expectRoundTrip(address);
  expectRoundTrip(key(1, binary));
  expectRoundTrip(Lldp::ManAddrPriority(0xffffffff, -1, 7, Ondo::IntfId("Ethernet1")));
  expectRoundTrip(Lldp::UnknownTlv(126, Lldp::BoundedString511(Zet::String(binary))));
  expectRoundTrip(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(0x0012bb), 0x80000000u, -1));
  expectRoundTrip(Lldp::UnknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(0x0080c2), 9, 2),
                                         Lldp::BoundedString507(Zet::String(binary))));
  expectRoundTrip(Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(4094), true, false));
  expectRoundTrip(Lldp::VlanName(Bridging::VlanId(4094), Lldp::BoundedString32(Zet::String("\xc3\xa9t\xc3\xa9"))));
  expectRoundTrip(Lldp::ProtocolIdentityInfo(-3, Lldp::BoundedString255(Zet::String(binary))));
  Lldp::MacPhyConfigStatusInfo macPhy;
  macPhy.autoNegSupported = true;
  macPhy.autoNegAdvertisedCap = 0x8021;
  macPhy.operMauType = 30;
  expectRoundTrip(macPhy);
  Lldp::PowerViaMdiInfo power;
  power.powerPortClass = Lldp::PowerPortClass::pClassPD;
  power.powerPairControllable = true;
  power.powerPairs = 2;
  power.powerClass = 5;
  expectRoundTrip(power);
  expectRoundTrip(Lldp::LinkAggregationInfo(Lldp::LinkAggStatusMap(3), -1));
  expectRoundTrip(Lldp::RemoteSystemMsap(Lldp::ChassisIdSubtype::macAddress,
                                         Lldp::ChassisId(Zet::String("\x00\x1c\x73\xaa\xbb\xcc", 6)),
                                         static_cast<Lldp::PortIdSubtype>(-9), Lldp::PortId(Zet::String("Et1"))));
}

TEST(Records, ReorderedMissingOrTrailingTextIsRefused) {
  std::string const good = "Value('Lldp::VlanName', ** {'vlanId': 10, 'vlanName': 'a'})";
  EXPECT_NO_THROW(Zet::strepToValue<Lldp::VlanName>(Zet::String(good)));
  for (std::string const& bad : {"Value('Lldp::VlanName', ** {'vlanName': 'a', 'vlanId': 10})"s,
                                 "Value('Lldp::ProtocolIdentityInfo', ** {'vlanId': 10, 'vlanName': 'a'})"s,
                                 "Value('Lldp::VlanName', ** {'vlanId': 10})"s, good + "}"}) {
    EXPECT_THROW(Zet::strepToValue<Lldp::VlanName>(Zet::String(bad)), Zet::ParseException) << bad;
  }
}

TEST(Records, OutOfRangeFieldIsNamed) {
  EXPECT_THAT(reading<Lldp::VlanName>("Value('Lldp::VlanName', ** {'vlanId': 0, 'vlanName': ''})"),
              ThrowsMessage<Zet::RangeException>("vlanId: VlanId::value < 1 or > 4094 not allowed"));
  EXPECT_THAT(reading<Lldp::VlanName>("Value('Lldp::VlanName', ** {'vlanId': 1, 'vlanName': '" + std::string(33, 'n') +
                                      "'})"),
              ThrowsMessage<Zet::RangeException>("vlanName: BoundedString32::value::bytes > 32 not allowed"));
  EXPECT_THAT(reading<Lldp::UnknownTlv>("Value('Lldp::UnknownTlv', ** {'type': 8, 'info': ''})"),
              ThrowsMessage<Zet::RangeException>("type: UnknownTlv::type < 9 or > 126 not allowed"));
  EXPECT_THAT(reading<Lldp::ProtocolIdentityInfo>(
                  "Value('Lldp::ProtocolIdentityInfo', ** {'index': 2147483648, 'protocolId': ''})"),
              ThrowsMessage<Zet::RangeException>("index: value 2147483648 < -2147483648 or > 2147483647 not allowed"));
}

}  // namespace
