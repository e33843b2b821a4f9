#pragma once
// The agent's general conversions from model values to the bytes that
// net-snmp's snmp_set_var_typed_value() takes, and back for request indexes.
//
// Every ...F::operator()(value, buffer, length) writes at most `length` bytes
// into the caller's buffer and returns how many it wrote, or a negative count
// when the value does not fit. None holds state or allocates.

#include <cstdint>

#include "Zet/String.h"

namespace Snmp {

class ObjectIdentifier;

// A signed integer in the native form net-snmp reads for ASN_INTEGER. Written
// with ASN_GAUGE or ASN_COUNTER the same bytes read back as unsigned, so a
// counter above INT32_MAX passed through here still arrives as its Gauge32.
struct S32ToAsnIntegerF {
  int operator()(int value, unsigned char* buffer, int length) const;
};

// An unsigned integer for ASN_COUNTER, ASN_GAUGE and ASN_TIMETICKS.
struct U32ToAsnUnsignedF {
  int operator()(unsigned int value, unsigned char* buffer, int length) const;
};

// The SNMPv2-TC TruthValue for ASN_INTEGER: true(1), false(2).
struct BoolToAsnIntegerF {
  int operator()(bool value, unsigned char* buffer, int length) const;
};

// The string's bytes as they are, for ASN_OCTET_STR.
struct StringToAsnOctetStringF {
  int operator()(Zet::String const& value, unsigned char* buffer, int length) const;
};

// The sub-identifiers as an array of net-snmp `oid`, for ASN_OBJECT_ID. A
// sub-identifier above 2^32-1 has no SNMP encoding and counts as not fitting.
struct SnmpObjectIdentifierToAsnOidF {
  int operator()(ObjectIdentifier const& value, unsigned char* buffer, int length) const;
};

// A stamp on the state database's clock as sysUpTime-based TimeTicks, for
// ASN_TIMETICKS: SecondsToTimeTicks(NowSecondsToUptimeSeconds(stamp)).
struct NowSecondsToUptimeTimeTicksF {
  int operator()(double stamp, unsigned char* buffer, int length) const;
};

// The stamp on the state database's clock (Zet::System::currentTime()) at which
// sysUpTime is 0. The host sets it once at start; until then it is 0.0.
void uptimeOriginIs(double stamp);
double uptimeOrigin();

// Seconds since the uptime origin; negative for stamps before it.
double NowSecondsToUptimeSeconds(double stamp);

// Hundredths of a second, rounded down. Negative or non-finite seconds give 0;
// counts past 2^32-1 wrap, as TimeTicks do.
std::uint32_t SecondsToTimeTicks(double seconds);

// The integer a varbind's value points to (a C `long`), as a signed 32-bit
// value. Raises Zet::RangeException when it lies outside that range.
int AsnIntegerToS32(void const* value);

}  // namespace Snmp
