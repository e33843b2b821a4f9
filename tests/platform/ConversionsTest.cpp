#include "Snmp/Conversions.h"

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <array>
#include <climits>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>

#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"

namespace {

// A varbind made by net-snmp itself from the converted bytes, so that the test
// reads back what a manager would be sent.
using Varbind = std::unique_ptr<netsnmp_variable_list, decltype(&snmp_free_varbind)>;

Varbind varbind(u_char type, unsigned char const* bytes, int count) {
  static oid const name[] = {1, 3, 6, 1, 4, 1, 99999, 1, 0};
  netsnmp_variable_list* list = nullptr;
  EXPECT_NE(snmp_varlist_add_variable(&list, name, OID_LENGTH(name), type, bytes, count), nullptr);
  return Varbind(list, &snmp_free_varbind);
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

TEST(IntegerConversions, ValuesReadBackAsTheirAsnType) {
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), INT_MIN, ASN_INTEGER), INT_MIN);
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), INT_MAX, ASN_INTEGER), INT_MAX);
  // A counter above the S32 maximum, carried in an S32, reads back whole as a gauge.
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), static_cast<int>(3000000000u), ASN_GAUGE), 3000000000L);
  EXPECT_EQ(readBack(Snmp::S32ToAsnIntegerF(), -1, ASN_GAUGE), 4294967295L);
  EXPECT_EQ(readBack(Snmp::U32ToAsnUnsignedF(), 4294967295u, ASN_COUNTER), 4294967295L);
  EXPECT_EQ(readBack(Snmp::U32ToAsnUnsignedF(), 0u, ASN_TIMETICKS), 0L);
  EXPECT_EQ(readBack(Snmp::BoolToAsnIntegerF(), true, ASN_INTEGER), 1);
  EXPECT_EQ(readBack(Snmp::BoolToAsnIntegerF(), false, ASN_INTEGER), 2);
}

TEST(IntegerConversions, AsnIntegerToS32TakesOnlyS32Values) {
  std::array<unsigned char, 8> buffer{};
  int const count = Snmp::S32ToAsnIntegerF()(-123456, buffer.data(), static_cast<int>(buffer.size()));
  EXPECT_EQ(Snmp::AsnIntegerToS32(varbind(ASN_INTEGER, buffer.data(), count)->val.integer), -123456);
  long const low = INT_MIN;
  long const below = static_cast<long>(INT_MIN) - 1;
  long const above = static_cast<long>(INT_MAX) + 1;
  EXPECT_EQ(Snmp::AsnIntegerToS32(&low), INT_MIN);
  EXPECT_THROW(Snmp::AsnIntegerToS32(&below), Zet::RangeException);
  EXPECT_THROW(Snmp::AsnIntegerToS32(&above), Zet::RangeException);
}

TEST(Conversions, TooShortBufferGivesNegativeAndWritesNothing) {
  std::array<unsigned char, 32> buffer;
  buffer.fill(0xee);
  EXPECT_LT(Snmp::S32ToAsnIntegerF()(7, buffer.data(), 3), 0);
  EXPECT_LT(Snmp::U32ToAsnUnsignedF()(7u, buffer.data(), 0), 0);
  EXPECT_LT(Snmp::BoolToAsnIntegerF()(true, buffer.data(), 1), 0);
  EXPECT_LT(Snmp::NowSecondsToUptimeTimeTicksF()(1.0, buffer.data(), -4), 0);
  EXPECT_LT(Snmp::StringToAsnOctetStringF()(Zet::String("abcde"), buffer.data(), 4), 0);
  Snmp::ObjectIdentifier const fourArcs{1, 3, 6, 1};
  EXPECT_LT(Snmp::SnmpObjectIdentifierToAsnOidF()(fourArcs, buffer.data(), static_cast<int>(4 * sizeof(oid)) - 1), 0);
  for (auto const b : buffer) {
    EXPECT_EQ(b, 0xee);
  }
}

TEST(OctetStringConversion, BytesRoundTripIncludingNulAndNone) {
  for (std::string_view const bytes : {std::string_view("\x00\x1c\x73\xaa\x00", 5), std::string_view()}) {
    std::array<unsigned char, 5> buffer{};
    int const size = static_cast<int>(bytes.size());
    int const count = Snmp::StringToAsnOctetStringF()(Zet::String(bytes), buffer.data(), size);
    ASSERT_EQ(count, size);
    auto const var = varbind(ASN_OCTET_STR, buffer.data(), count);
    EXPECT_EQ(std::string_view(reinterpret_cast<char const*>(var->val.string), var->val_len), bytes);
  }
}

TEST(OidConversion, SubIdentifiersRoundTripUpToTheLargest) {
  Snmp::ObjectIdentifier const value{1, 0, 8802, 1, 1, 2, 0, 0, 4294967295u};
  std::array<unsigned char, 1024> buffer{};
  int const count = Snmp::SnmpObjectIdentifierToAsnOidF()(value, buffer.data(), static_cast<int>(buffer.size()));
  ASSERT_EQ(count, static_cast<int>(9 * sizeof(oid)));
  auto const var = varbind(ASN_OBJECT_ID, buffer.data(), count);
  oid const expected[] = {1, 0, 8802, 1, 1, 2, 0, 0, 4294967295u};
  EXPECT_EQ(snmp_oid_compare(var->val.objid, var->val_len / sizeof(oid), expected, OID_LENGTH(expected)), 0);
  Snmp::ObjectIdentifier const beyond{1, 3, 4294967296u};
  EXPECT_LT(Snmp::SnmpObjectIdentifierToAsnOidF()(beyond, buffer.data(), static_cast<int>(buffer.size())), 0);
}

TEST(TimeConversions, StampFiftySecondsAfterOriginIsFiveThousandTicks) {
  double const saved = Snmp::uptimeOrigin();
  // An origin with a fraction that no binary double holds, as a real clock gives.
  Snmp::uptimeOriginIs(86411.37);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(Snmp::NowSecondsToUptimeSeconds(86411.37 + 50.0)), 5000u);
  EXPECT_EQ(readBack(Snmp::NowSecondsToUptimeTimeTicksF(), 86411.37 + 50.0, ASN_TIMETICKS), 5000);
  EXPECT_EQ(Snmp::SecondsToTimeTicks(Snmp::NowSecondsToUptimeSeconds(0.0)), 0u);  // before the origin
  Snmp::uptimeOriginIs(saved);
}

TEST(TimeConversions, TicksRoundDownWrapAndTakeOddValuesAsZero) {
  struct Case {
    double seconds;
    std::uint32_t ticks;
  } const cases[] = {
      {0.015, 1},  {0.29, 29},  // 0.29 * 100 is 28.999... in binary
      {0.0099, 0}, {42949672.95, 4294967295u}, {42949673.0, 4}, {2.0 * 42949672.96 + 1.0, 100},
      {-0.5, 0},   {std::numeric_limits<double>::quiet_NaN(), 0}, {std::numeric_limits<double>::infinity(), 0},
  };
  for (auto const& c : cases) {
    EXPECT_EQ(Snmp::SecondsToTimeTicks(c.seconds), c.ticks) << c.seconds;
  }
}

}  // namespace
