#include "Zet/TextForm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/EnabledTlvs.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"
#include "Zet/String.h"
#include "platform/TextFormCases.h"

namespace {

struct Probe : Zet::PtrInterface {};

TEST(TextForm, ListedTextsReadBackOrAreRefused) {
  expectTextFormCases(
      "platform/data/text-forms.txt",
      {{"long long", rewritten<long long>},
       {"unsigned long long", rewritten<unsigned long long>},
       {"std::int32_t", rewritten<std::int32_t>},
       {"std::uint16_t", rewritten<std::uint16_t>},
       {"std::uint32_t", rewritten<std::uint32_t>},
       {"bool", rewritten<bool>},
       {"Zet::String", rewritten<Zet::String>},
       {"Interface::EthPortId", rewritten<Interface::EthPortId>},
       {"Lldp::SystemCapabilitiesMap", rewritten<Lldp::SystemCapabilitiesMap>},
       {"Lldp::Dot3EnabledTlvs", rewritten<Lldp::Dot3EnabledTlvs>},
       {"Lldp::EnabledTlvs", rewritten<Lldp::EnabledTlvs>},
       {"Lldp::ManagementAddress", rewritten<Lldp::ManagementAddress>},
       {"Lldp::ManagementAddress::Key", rewritten<Lldp::ManagementAddress::Key>},
       {"Lldp::ManAddrPriority", rewritten<Lldp::ManAddrPriority>},
       {"Lldp::UnknownTlv", rewritten<Lldp::UnknownTlv>},
       {"Lldp::UnknownOrgDefTlv::Key", rewritten<Lldp::UnknownOrgDefTlv::Key>},
       {"Lldp::UnknownOrgDefTlv", rewritten<Lldp::UnknownOrgDefTlv>},
       {"Lldp::PortAndProtocolVlan", rewritten<Lldp::PortAndProtocolVlan>},
       {"Lldp::VlanName", rewritten<Lldp::VlanName>},
       {"Lldp::ProtocolIdentityInfo", rewritten<Lldp::ProtocolIdentityInfo>},
       {"Lldp::MacPhyConfigStatusInfo", rewritten<Lldp::MacPhyConfigStatusInfo>},
       {"Lldp::PowerViaMdiInfo", rewritten<Lldp::PowerViaMdiInfo>},
       {"Lldp::LinkAggregationInfo", rewritten<Lldp::LinkAggregationInfo>},
       {"Lldp::RemoteSystemMsap", rewritten<Lldp::RemoteSystemMsap>}});
}

TEST(TextForm, FormatSubstitutesInOrder) {
  EXPECT_EQ(Zet::format("a=%s b=%s c=%d 100%%", Zet::String("x"), std::string("y"), -7), "a=x b=y c=-7 100%");
  EXPECT_EQ(Zet::format("no fields"), "no fields");
}

TEST(TextForm, EveryByteAndEveryDoubleReadBackAsWritten) {
  std::string all;
  for (int b = 0; b < 256; ++b) {
    all.push_back(static_cast<char>(b));
  }
  Zet::String const original(all);
  EXPECT_EQ(Zet::strepToValue<Zet::String>(Zet::valueToStrep(original)), original);
  for (double const d : {0.0, 0.1, -2.5, 1e300, 4.9e-324, 123456789.125}) {
    EXPECT_EQ(Zet::strepToValue<double>(Zet::valueToStrep(d)), d) << d;
  }
}

TEST(TextForm, PointersAreWrittenAsNoneOrATypedReferenceWhichOtherTypesRefuse) {
  EXPECT_EQ(Zet::valueToStrep(Zet::Ptr<Probe const>()), "None");
  auto const probe = Zet::makePtr<Probe>();
  std::string const text = Zet::valueToStrep(Zet::Ptr<Probe const>(probe)).stdString();
  EXPECT_TRUE(text.starts_with("Ref('(anonymous namespace)::Probe', 0x")) << text;
  std::string_view const other = "Ref('Other', 0x1)";
  EXPECT_THAT([&] { Zet::cannotConvert(other.begin(), other.end(), typeid(Probe)); },
              testing::ThrowsMessage<Zet::ParseException>(
                  testing::AllOf(testing::HasSubstr("Probe"), testing::HasSubstr("Ref('Other'"))));
}

}  // namespace
