#include "Snmp/Conversions.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "Snmp/ObjectIdentifier.h"
#include "Zet/Exception.h"

namespace Snmp {
namespace {

double origin_ = 0.0;

// Copies the object's bytes as they stand: net-snmp reads a 4-byte value as
// int for ASN_INTEGER and as unsigned int for the unsigned types.
template <class T>
int writeNative(T const& value, unsigned char* buffer, int length) {
  if (length < 0 || static_cast<std::size_t>(length) < sizeof(T)) {
    return -1;
  }
  std::memcpy(buffer, &value, sizeof(T));
  return static_cast<int>(sizeof(T));
}

}  // namespace

int S32ToAsnIntegerF::operator()(int value, unsigned char* buffer, int length) const {
  return writeNative(value, buffer, length);
}

int U32ToAsnUnsignedF::operator()(unsigned int value, unsigned char* buffer, int length) const {
  return writeNative(value, buffer, length);
}

int BoolToAsnIntegerF::operator()(bool value, unsigned char* buffer, int length) const {
  return S32ToAsnIntegerF()(value ? 1 : 2, buffer, length);
}

int StringToAsnOctetStringF::operator()(Zet::String const& value, unsigned char* buffer, int length) const {
  if (length < 0 || static_cast<std::size_t>(length) < value.size()) {
    return -1;
  }
  if (!value.empty()) {
    std::memcpy(buffer, value.charPtr(), value.size());
  }
  return static_cast<int>(value.size());
}

int SnmpObjectIdentifierToAsnOidF::operator()(ObjectIdentifier const& value, unsigned char* buffer, int length) const {
  std::size_t const bytes = value.size() * sizeof(oid);
  if (length < 0 || static_cast<std::size_t>(length) < bytes) {
    return -1;
  }
  auto const& subIds = value.subIds();
  for (auto const subId : subIds) {
    if (subId > MAX_SUBID) {
      return -1;
    }
  }
  for (std::size_t i = 0; i < subIds.size(); ++i) {
    oid const sub = static_cast<oid>(subIds[i]);
    // The caller's buffer carries no alignment promise for oid.
    std::memcpy(buffer + i * sizeof(oid), &sub, sizeof(oid));
  }
  return static_cast<int>(bytes);
}

int NowSecondsToUptimeTimeTicksF::operator()(double stamp, unsigned char* buffer, int length) const {
  return U32ToAsnUnsignedF()(SecondsToTimeTicks(NowSecondsToUptimeSeconds(stamp)), buffer, length);
}

void uptimeOriginIs(double stamp) { origin_ = stamp; }

double uptimeOrigin() { return origin_; }

double NowSecondsToUptimeSeconds(double stamp) { return stamp - origin_; }

std::uint32_t SecondsToTimeTicks(double seconds) {
  if (!std::isfinite(seconds) || seconds <= 0.0) {
    return 0;
  }
  // The small addend keeps origin + 50.0 at 5000 ticks when the subtraction
  // leaves 49.99999999.
  double const hundredths = std::floor(seconds * 100.0 + 1e-6);
  // Every row of a time-filtered walk comes here: fmod only where it wraps.
  if (hundredths < 4294967296.0) {
    return static_cast<std::uint32_t>(hundredths);
  }
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::fmod(hundredths, 4294967296.0)));
}

int AsnIntegerToS32(void const* value) {
  long n = 0;
  std::memcpy(&n, value, sizeof(n));
  if (n < std::numeric_limits<int>::min() || n > std::numeric_limits<int>::max()) {
    Zet::throwRangeException("integer " + std::to_string(n) + " is outside the range of S32");
  }
  return static_cast<int>(n);
}

}  // namespace Snmp
