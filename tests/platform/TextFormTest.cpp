#include "Zet/TextForm.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <limits>
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

std::string rangeMessage(auto read) {
  try {
    read();
  } catch (Zet::RangeException const& e) {
    return e.what();
  }
  return "no RangeException";
}

TEST(TextForm, FormatSubstitutesInOrder) {
  EXPECT_EQ(Zet::format("a=%s b=%s c=%d 100%%", Zet::String("x"), std::string("y"), -7), "a=x b=y c=-7 100%");
  EXPECT_EQ(Zet::format("no fields"), "no fields");
}

TEST(TextForm, StringFormEscapesQuotesBackslashesAndBinary) {
  std::string const raw("it's a\\b\n\t\r\0\x7f\xe9", 14);
  EXPECT_EQ(Zet::valueToStrep(Zet::String(raw)), R"('it\'s a\\b\n\t\r\x00\x7f\xe9')");
  EXPECT_EQ(Zet::valueToStrep(Zet::String()), "''");
}

TEST(TextForm, EveryByteSurvivesTheStringForm) {
  std::string all;
  for (int b = 0; b < 256; ++b) {
    all.push_back(static_cast<char>(b));
  }
  Zet::String const original(all);
  EXPECT_EQ(readAll<Zet::String>(Zet::valueToStrep(original).stdString()), original);
}

TEST(TextForm, StringReadRefusesBrokenQuoting) {
  EXPECT_THROW(readAll<Zet::String>("'open"), Zet::ParseException);
  EXPECT_THROW(readAll<Zet::String>("bare"), Zet::ParseException);
  EXPECT_THROW(readAll<Zet::String>(R"('\q')"), Zet::ParseException);
  EXPECT_THROW(readAll<Zet::String>(R"('\x4')"), Zet::ParseException);
  EXPECT_THROW(readAll<Zet::String>(R"('ends in \')"), Zet::ParseException);
}

TEST(TextForm, IntegersRoundTripAtTheirLimits) {
  EXPECT_EQ(readAll<long long>(Zet::valueToStrep(LLONG_MIN).stdString()), LLONG_MIN);
  EXPECT_EQ(readAll<unsigned long long>(Zet::valueToStrep(ULLONG_MAX).stdString()), ULLONG_MAX);
  EXPECT_EQ(readAll<std::int32_t>("-2147483648"), INT32_MIN);
  EXPECT_EQ(readAll<std::uint16_t>("65535"), 65535);
}

TEST(TextForm, IntegerOutsideTheTargetTypeIsARangeError) {
  EXPECT_THROW(readAll<std::uint16_t>("65536"), Zet::RangeException);
  EXPECT_THROW(readAll<std::int32_t>("2147483648"), Zet::RangeException);
  EXPECT_THROW(readAll<long long>("9223372036854775808"), Zet::RangeException);
  // A sign is no digit: an unsigned field does not read "-1" as a large number.
  EXPECT_THROW(readAll<std::uint32_t>("-1"), Zet::ParseException);
  EXPECT_THROW(readAll<std::int32_t>("x1"), Zet::ParseException);
}

TEST(TextForm, DeserializeAttrNamesTheAttributeOfARangeError) {
  std::string_view const text = "70000";
  Zet::TextPos pos = text.begin();
  EXPECT_EQ(rangeMessage([&] { Zet::deserializeAttr<std::uint16_t>(pos, text.end(), "maxFrameSize"); }),
            "maxFrameSize: value 70000 > 65535 not allowed");
}

TEST(TextForm, RethrowKeepsTheOriginalTextAfterTheName) {
  EXPECT_EQ(rangeMessage([] {
              Zet::rethrowFromDeserializeAttr(Zet::RangeException("VlanId::value < 1 or > 4094 not allowed"), "vlanId");
            }),
            "vlanId: VlanId::value < 1 or > 4094 not allowed");
}

TEST(TextForm, BoolsAndDoublesRoundTrip) {
  EXPECT_EQ(Zet::valueToStrep(true), "True");
  EXPECT_FALSE(readAll<bool>(Zet::valueToStrep(false).stdString()));
  EXPECT_THROW(readAll<bool>("true"), Zet::ParseException);
  for (double const d : {0.0, 0.1, -2.5, 1e300, 4.9e-324, 123456789.125}) {
    EXPECT_EQ(readAll<double>(Zet::valueToStrep(d).stdString()), d) << d;
  }
}

TEST(TextForm, StrepOfPicksTheFormBySignedness) {
  enum class Subtype : std::int32_t { negative = -3 };
  EXPECT_EQ(Zet::strepOf(std::int32_t{-1}), "-1");
  EXPECT_EQ(Zet::strepOf(std::uint32_t{0xffffffff}), "4294967295");
  EXPECT_EQ(Zet::strepOf(Subtype::negative), "-3");
  EXPECT_EQ(Zet::strepOf(true), "True");
  EXPECT_EQ(Zet::valueToStrep("literal"), "'literal'");
}

TEST(TextForm, NeedStringMovesOnlyOnAMatch) {
  std::string_view const text = "Value('X', ** {";
  Zet::TextPos pos = text.begin();
  Zet::TextPos const end = text.end();
  EXPECT_THROW(Zet::needString(pos, end, "Value('Y'"), Zet::ParseException);
  EXPECT_EQ(pos, text.begin());
  Zet::needString(pos, end, "Value('X', ");
  EXPECT_EQ(std::string(pos, end), "** {");
  EXPECT_THROW(Zet::needString(pos, end, "** {}"), Zet::ParseException);
}

TEST(TextForm, StrepToValueRefusesTrailingText) {
  EXPECT_EQ(readAll<std::int32_t>("42"), 42);
  EXPECT_THROW(readAll<std::int32_t>("42 "), Zet::ParseException);
  EXPECT_THROW(readAll<Zet::String>("'a'b"), Zet::ParseException);
}

TEST(TextForm, CannotConvertNamesTheWantedType) {
  std::string_view const text = "Ref('Other', 0x1)";
  try {
    Zet::cannotConvert(text.begin(), text.end(), typeid(Probe));
    FAIL() << "cannotConvert returned";
  } catch (Zet::ParseException const& e) {
    EXPECT_NE(std::string(e.what()).find("Probe"), std::string::npos) << e.what();
    EXPECT_NE(std::string(e.what()).find("Ref('Other'"), std::string::npos) << e.what();
  }
}

TEST(TextForm, PointersAreWrittenAsNoneOrATypedReference) {
  EXPECT_EQ(Zet::valueToStrep(Zet::Ptr<Probe const>()), "None");
  auto const probe = Zet::makePtr<Probe>();
  std::string const text = Zet::valueToStrep(Zet::Ptr<Probe const>(probe)).stdString();
  EXPECT_TRUE(text.starts_with("Ref('(anonymous namespace)::Probe', 0x")) << text;
}

}  // namespace
