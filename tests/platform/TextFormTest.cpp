#include "Zet/TextForm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

#include "Zet/Exception.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"
#include "Zet/String.h"

namespace {

struct Probe : Zet::PtrInterface {};

// Reads one T from the whole of `text` (the record parsers' path).
template <class T>
T readAll(std::string const& text) {
  return Zet::strepToValue<T>(Zet::String(text));
}

using testing::ThrowsMessage;

TEST(TextForm, FormatSubstitutesInOrder) {
  EXPECT_EQ(Zet::format("a=%s b=%s c=%d 100%%", Zet::String("x"), std::string("y"), -7), "a=x b=y c=-7 100%");
  EXPECT_EQ(Zet::format("no fields"), "no fields");
}

TEST(TextForm, StringFormEscapesQuotesBackslashesAndBinaryAndKeepsEveryByte) {
  std::string const raw("it's a\\b\n\t\r\0\x7f\xe9", 14);
  EXPECT_EQ(Zet::valueToStrep(Zet::String(raw)), R"('it\'s a\\b\n\t\r\x00\x7f\xe9')");
  EXPECT_EQ(Zet::valueToStrep(Zet::String()), "''");
  std::string all;
  for (int b = 0; b < 256; ++b) {
    all.push_back(static_cast<char>(b));
  }
  Zet::String const original(all);
  EXPECT_EQ(readAll<Zet::String>(Zet::valueToStrep(original).stdString()), original);
}

TEST(TextForm, ReadRefusesBrokenQuotingAndTrailingText) {
  EXPECT_EQ(readAll<std::int32_t>("42"), 42);
  EXPECT_THROW(readAll<std::int32_t>("42 "), Zet::ParseException);
  for (char const* bad : {"'open", "bare", R"('\q')", R"('\x4')", R"('ends in \')", "'a'b"}) {
    EXPECT_THROW(readAll<Zet::String>(bad), Zet::ParseException) << bad;
  }
}

TEST(TextForm, IntegersReadUpToTheLimitsOfTheirType) {
  EXPECT_EQ(readAll<long long>(Zet::valueToStrep(LLONG_MIN).stdString()), LLONG_MIN);
  EXPECT_EQ(readAll<unsigned long long>(Zet::valueToStrep(ULLONG_MAX).stdString()), ULLONG_MAX);
  EXPECT_EQ(readAll<std::int32_t>("-2147483648"), INT32_MIN);
  EXPECT_EQ(readAll<std::uint16_t>("65535"), 65535);
  EXPECT_THROW(readAll<std::uint16_t>("65536"), Zet::RangeException);
  EXPECT_THROW(readAll<std::int32_t>("2147483648"), Zet::RangeException);
  EXPECT_THROW(readAll<long long>("9223372036854775808"), Zet::RangeException);
  // A sign is no digit: an unsigned field does not read "-1" as a large number.
  EXPECT_THROW(readAll<std::uint32_t>("-1"), Zet::ParseException);
  EXPECT_THROW(readAll<std::int32_t>("x1"), Zet::ParseException);
}

TEST(TextForm, RangeErrorOfAnAttributeIsRethrownUnderItsName) {
  std::string_view const text = "70000";
  Zet::TextPos pos = text.begin();
  EXPECT_THAT([&] { Zet::deserializeAttr<std::uint16_t>(pos, text.end(), "maxFrameSize"); },
              ThrowsMessage<Zet::RangeException>("maxFrameSize: value 70000 > 65535 not allowed"));
  Zet::RangeException const original("VlanId::value < 1 or > 4094 not allowed");
  EXPECT_THAT([&] { Zet::rethrowFromDeserializeAttr(original, "vlanId"); },
              ThrowsMessage<Zet::RangeException>("vlanId: VlanId::value < 1 or > 4094 not allowed"));
}

TEST(TextForm, BoolsAndDoublesRoundTrip) {
  EXPECT_EQ(Zet::valueToStrep(true), "True");
  EXPECT_FALSE(readAll<bool>(Zet::valueToStrep(false).stdString()));
  EXPECT_THROW(readAll<bool>("true"), Zet::ParseException);
  for (double const d : {0.0, 0.1, -2.5, 1e300, 4.9e-324, 123456789.125}) {
    EXPECT_EQ(readAll<double>(Zet::valueToStrep(d).stdString()), d) << d;
  }
}

TEST(TextForm, PointersAreWrittenAsNoneOrATypedReferenceWhichOtherTypesRefuse) {
  EXPECT_EQ(Zet::valueToStrep(Zet::Ptr<Probe const>()), "None");
  auto const probe = Zet::makePtr<Probe>();
  std::string const text = Zet::valueToStrep(Zet::Ptr<Probe const>(probe)).stdString();
  EXPECT_TRUE(text.starts_with("Ref('(anonymous namespace)::Probe', 0x")) << text;
  std::string_view const other = "Ref('Other', 0x1)";
  try {
    Zet::cannotConvert(other.begin(), other.end(), typeid(Probe));
    FAIL() << "cannotConvert returned";
  } catch (Zet::ParseException const& e) {
    EXPECT_THAT(e.what(), ::testing::AllOf(::testing::HasSubstr("Probe"), ::testing::HasSubstr("Ref('Other'")));
  }
}

}  // namespace
