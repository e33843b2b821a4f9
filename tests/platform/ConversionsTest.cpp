#include "Snmp/Conversions.h"

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <array>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"

namespace {

// A varbind made by net-snmp itself from the converted bytes, so that the test
// reads back what a manager would be sent.
struct VarbindFree {
  void operator()(netsnmp_variable_list* v) const { snmp_free_varbind(v); }
};
using Varbind = std::unique_ptr<netsnmp_variable_list, VarbindFree>;

Varbind varbind(u_char type, unsigned char const* bytes, int count) {
  static oid const name[] = {1, 3, 6, 1, 4, 1, 99999, 1, 0};
  netsnmp_variable_list* list = nullptr;
  EXPECT_NE(snmp_varlist_add_variable(&list, name, OID_LENGTH(name), type, bytes, count), nullptr);
  return Varbind(list);
}

template <class F, class V>
long readBack(F convert, V value, u_char type) {
  std::array<unsigned char, 64> buffer{};
  int const count = convert(value, buffer.data(), static_cast<int>(buffer.size()));
  EXPECT_GT(count, 0);
  auto const var = varbind(type, buffer.data(), count);
  EXPECT_EQ(var->type, type);
  return *var->val.integer;
}

TEST(IntegerConversions, S32ReadsBackAsInteger) {
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), -5, ASN_INTEGER), -5);
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), INT_MIN, ASN_INTEGER), INT_MIN);
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), INT_MAX, ASN_INTEGER), INT_MAX);
}

TEST(IntegerConversions, S32OfCounterAboveS32MaxReadsBackAsGauge) {
  std::uint32_t const counter = 3000000000u;
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), static_cast<int>(counter), ASN_GAUGE), 3000000000L);
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), -1, ASN_GAUGE), 4294967295L);
}

TEST(IntegerConversions, U32ReadsBackAsCounterGaugeAndTimeTicks) {
  EXPECT_EQ(readBack(Snmp::U32ToAsnUnsignedF(), 4294967295u, ASN_COUNTER), 4294967295L);
  EXPECT_EQ(readBack(Snmp::U32ToAsnUnsignedF(), 2147483648u, ASN_GAUGE), 2147483648L);
  EXPECT_EQ(readBack(Snmp::U32ToAsnUnsignedF(), 0u, ASN_TIMETICKS), 0L);
}

TEST(IntegerConversions, BoolIsTruthValue) {
  EXPECT_EQ(readBack(Snmp::BoolToAsnIntegerF(), true, ASN_INTEGER), 1);
  EXPECT_EQ(readBack(Snmp::BoolToAsnIntegerF(), false, ASN_INTEGER), 2);
}

TEST(IntegerConversions, TooShortBufferGivesNegativeAndWritesNothing) {
  std::array<unsigned char, 8> buffer;
  buffer.fill(0xee);
  EXPECT_LT(Snmp::S32ToAsnIntegerF()(7, buffer.data(), 3), 0);
  EXPECT_LT(Snmp::U32ToAsnUnsignedF()(7u, buffer.data(), 0), 0);
  EXPECT_LT(Snmp::BoolToAsnIntegerF()(true, buffer.data(), 1), 0);
  EXPECT_LT(Snmp::NowSecondsToUptimeTimeTicksF()(1.0, buffer.data(), -4), 0);
  for (auto const b : buffer) {
    EXPECT_EQ(b, 0xee);
  }
}

TEST(IntegerConversions, AsnIntegerToS32ReadsVarbindInteger) {
  std::array<unsigned char, 8> buffer{};
  int const count = Snmp::S32ToAsnIntegerF()(-123456, buffer.data(), static_cast<int>(buffer.size()));
  auto const var = varbind(ASN_INTEGER, buffer.data(), count);
  EXPECT_EQ(Snmp::AsnIntegerToS32(var->val.integer), -123456);

  long const low = INT_MIN;
  long const high = INT_MAX;
  EXPECT_EQ(Snmp::AsnIntegerToS32(&low), INT_MIN);
  EXPECT_EQ(Snmp::AsnIntegerToS32(&high), INT_MAX);
}

TEST(IntegerConversions, AsnIntegerToS32RaisesOutsideS32) {
  std::array<unsigned char, 8> buffer{};
  int const count = Snmp::U32ToAsnUnsignedF()(2147483648u, buffer.data(), static_cast<int>(buffer.size()));
  auto const var = varbind(ASN_GAUGE, buffer.data(), count);
  EXPECT_THROW(Snmp::AsnIntegerToS32(var->val.integer), Zet::RangeException);

  long const below = static_cast<long>(INT_MIN) - 1;
  EXPECT_THROW(Snmp::AsnIntegerToS32(&below), Zet::RangeException);
}

TEST(OctetStringConversion, BytesRoundTripIncludingNul) {
  Zet::String const value(std::string_view("\x00\x1c\x73\xaa\x00", 5));
  std::array<unsigned char, 5> buffer{};
  int const count = Snmp::StringToAsnOctetStringF()(value, buffer.data(), static_cast<int>(buffer.size()));
  ASSERT_EQ(count, 5);
  auto const var = varbind(ASN_OCTET_STR, buffer.data(), count);
  ASSERT_EQ(var->val_len, 5u);
  EXPECT_EQ(std::memcmp(var->val.string, value.charPtr(), 5), 0);
}

TEST(OctetStringConversion, EmptyStringGivesZeroBytes) {
  std::array<unsigned char, 1> buffer{};
  EXPECT_EQ(Snmp::StringToAsnOctetStringF()(Zet::String(), buffer.data(), 0), 0);
  auto const var = varbind(ASN_OCTET_STR, buffer.data(), 0);
  EXPECT_EQ(var->val_len, 0u);
}

TEST(OctetStringConversion, LongerThanBufferGivesNegativeAndWritesNothing) {
  std::array<unsigned char, 4> buffer;
  buffer.fill(0xee);
  EXPECT_LT(Snmp::StringToAsnOctetStringF()(Zet::String("abcde"), buffer.data(), 4), 0);
  EXPECT_EQ(buffer[0], 0xee);
}

TEST(OidConversion, SubIdentifiersRoundTripAsObjectId) {
  Snmp::ObjectIdentifier const lldpRemTablesChange{1, 0, 8802, 1, 1, 2, 0, 0, 1};
  std::array<unsigned char, 1024> buffer{};
  int const count =
      Snmp::SnmpObjectIdentifierToAsnOidF()(lldpRemTablesChange, buffer.data(), static_cast<int>(buffer.size()));
  ASSERT_EQ(count, static_cast<int>(9 * sizeof(oid)));
  auto const var = varbind(ASN_OBJECT_ID, buffer.data(), count);
  ASSERT_EQ(var->val_len, 9 * sizeof(oid));
  oid const expected[] = {1, 0, 8802, 1, 1, 2, 0, 0, 1};
  EXPECT_EQ(snmp_oid_compare(var->val.objid, var->val_len / sizeof(oid), expected, OID_LENGTH(expected)), 0);
}

TEST(OidConversion, LargestSubIdentifierFitsAndOneMoreDoesNot) {
  std::array<unsigned char, 64> buffer{};
  Snmp::ObjectIdentifier const largest{1, 3, 4294967295u};
  int const count = Snmp::SnmpObjectIdentifierToAsnOidF()(largest, buffer.data(), static_cast<int>(buffer.size()));
  ASSERT_GT(count, 0);
  auto const var = varbind(ASN_OBJECT_ID, buffer.data(), count);
  EXPECT_EQ(var->val.objid[2], 4294967295u);
  Snmp::ObjectIdentifier const beyond{1, 3, 4294967296u};
  EXPECT_LT(Snmp::SnmpObjectIdentifierToAsnOidF()(beyond, buffer.data(), static_cast<int>(buffer.size())), 0);
}

TEST(OidConversion, TooShortBufferGivesNegativeAndWritesNothing) {
  std::array<unsigned char, 32> buffer;
  buffer.fill(0xee);
  Snmp::ObjectIdentifier const value{1, 3, 6, 1};
  EXPECT_LT(Snmp::SnmpObjectIdentifierToAsnOidF()(value, buffer.data(), static_cast<int>(4 * sizeof(oid)) - 1), 0);
  for (auto const b : buffer) {
    EXPECT_EQ(b, 0xee);
  }
}

class TimeConversions : public ::testing::Test {
 protected:
  void SetUp() override { saved_ = Snmp::uptimeOrigin(); }
  void TearDown() override { Snmp::uptimeOriginIs(saved_); }

 private:
  double saved_ = 0.0;
};

TEST_F(TimeConversions, StampFiftySecondsAfterOriginIsFiveThousandTicks) {
  // An origin with a fraction that no binary double holds, as a real clock gives.
  Snmp::uptimeOriginIs(86411.37);
  EXPECT_EQ(Snmp::uptimeOrigin(), 86411.37);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(Snmp::NowSecondsToUptimeSeconds(86411.37 + 50.0)), 5000u);
  EXPECT_EQ(readBack(Snmp::NowSecondsToUptimeTimeTicksF(), 86411.37 + 50.0, ASN_TIMETICKS), 5000);
}

TEST_F(TimeConversions, TicksRoundDownToWholeHundredths) {
  EXPECT_EQ(Snmp::SecondsToTimeTicks(0.015), 1u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(0.29), 29u);  // 0.29 * 100 is 28.999... in binary
  EXPECT_EQ(Snmp::SecondsToTimeTicks(0.0099), 0u);
}

TEST_F(TimeConversions, StampsBeforeOriginAndOddValuesGiveZero) {
  Snmp::uptimeOriginIs(1000.0);
  EXPECT_EQ(Snmp::NowSecondsToUptimeSeconds(0.0), -1000.0);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(Snmp::NowSecondsToUptimeSeconds(0.0)), 0u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(-0.5), 0u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(std::numeric_limits<double>::quiet_NaN()), 0u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(std::numeric_limits<double>::infinity()), 0u);
}

TEST_F(TimeConversions, TicksWrapModuloTwoToThe32) {
  EXPECT_EQ(Snmp::SecondsToTimeTicks(42949672.95), 4294967295u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(42949673.0), 4u);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(2.0 * 42949672.96 + 1.0), 100u);
}

}  // namespace
