#include "SnmpConversions.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "LldpAgent/BitMaps.h"
#include "LldpAgent/EnabledTlvs.h"
#include "LldpAgent/Oui.h"

namespace {

using Octets = std::array<unsigned char, 4>;

// Bytes past what a conversion writes must keep this filler.
Octets filled() {
  Octets o;
  o.fill(0xee);
  return o;
}

TEST(AsnBits, NamedBitsCountFromTopBitOfFirstOctet) {
  auto out = filled();
  EXPECT_EQ(SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap(1u << 2), out.data(), 2), 2);
  EXPECT_EQ(out, (Octets{0x20, 0x00, 0xee, 0xee}));
  EXPECT_EQ(SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap(1u << 8), out.data(), 2), 2);
  EXPECT_EQ(out, (Octets{0x00, 0x80, 0xee, 0xee}));
  // bridge(2) and router(4), bit 15 at the far end of octet 1; a longer buffer still gets 2
  EXPECT_EQ(SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap(0x8014), out.data(), 4), 2);
  EXPECT_EQ(out, (Octets{0x28, 0x01, 0xee, 0xee}));

  out = filled();
  EXPECT_EQ(EnabledTlvsToAsnBits(Lldp::EnabledTlvs(0x5), out.data(), 1), 1);
  EXPECT_EQ(out, (Octets{0xa0, 0xee, 0xee, 0xee}));
  EXPECT_EQ(Dot3EnabledTlvsToAsnBits(Lldp::Dot3EnabledTlvs(0xa), out.data(), 1), 1);
  EXPECT_EQ(out[0], 0x50);
  // Only the low byte of the map holds MIB bits.
  EXPECT_EQ(LinkAggStatusMapToAsnBits(Lldp::LinkAggStatusMap(0x180), out.data(), 1), 1);
  EXPECT_EQ(out, (Octets{0x01, 0xee, 0xee, 0xee}));
}

TEST(AsnBits, EveryByteIsMirrored) {
  for (unsigned b = 0; b < 256; ++b) {
    unsigned mirrored = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
      mirrored |= ((b >> bit) & 1u) ? 0x80u >> bit : 0u;
    }
    std::array<unsigned char, 1> out{};
    ASSERT_EQ(LinkAggStatusMapToAsnBits(Lldp::LinkAggStatusMap(b), out.data(), 1), 1);
    EXPECT_EQ(out[0], mirrored) << "byte " << b;
  }
}

TEST(AsnBits, AutoNegCapabilityKeepsWireOrderAndDeclinesAShortBuffer) {
  unsigned short const cap = 0x1234;
  auto out = filled();
  EXPECT_EQ(AutoNegAdvertisedCapAsU16ToAsnBits(cap, out.data(), 1), 0);
  EXPECT_EQ(out, filled());
  EXPECT_EQ(AutoNegAdvertisedCapAsU16ToAsnBits(cap, out.data(), 2), 2);
  EXPECT_EQ(out, (Octets{0x12, 0x34, 0xee, 0xee}));
}

TEST(AsnBits, ShortBufferAssertsFalse) {
  std::array<unsigned char, 2> out{};
  EXPECT_DEATH(SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap(1), out.data(), 1),
               "SnmpConversions:[0-9]+: .*SystemCapabilitiesMapToAsnBits.*Assertion `false' failed");
  EXPECT_DEATH(EnabledTlvsToAsnBits(Lldp::EnabledTlvs(1), out.data(), 0),
               "SnmpConversions:[0-9]+: .*EnabledTlvsToAsnBits.*Assertion `false' failed");
  EXPECT_DEATH(Dot3EnabledTlvsToAsnBits(Lldp::Dot3EnabledTlvs(1), out.data(), 0),
               "SnmpConversions:[0-9]+: .*Dot3EnabledTlvsToAsnBits.*Assertion `false' failed");
  EXPECT_DEATH(LinkAggStatusMapToAsnBits(Lldp::LinkAggStatusMap(1), out.data(), 0),
               "SnmpConversions:[0-9]+: .*LinkAggStatusMapToAsnBits.*Assertion `false' failed");
  EXPECT_DEATH(OuiToAsnOctetString(Lldp::Oui(0x0080c2), out.data(), 2),
               "SnmpConversions:[0-9]+: .*OuiToAsnOctetString.*Assertion `false' failed");
}

TEST(OuiOctets, WrittenInOuiOrderWithoutTheTopByteAndReadBack) {
  auto out = filled();
  EXPECT_EQ(OuiToAsnOctetString(Lldp::Oui(0x0080c2), out.data(), 3), 3);
  EXPECT_EQ(out, (Octets{0x00, 0x80, 0xc2, 0xee}));
  EXPECT_EQ(AsnOctetStringToOui(out.data(), 3).value(), 0x0080c2u);

  EXPECT_EQ(OuiToAsnOctetString(Lldp::Oui(0xab00120f), out.data(), 3), 3);
  EXPECT_EQ(out, (Octets{0x00, 0x12, 0x0f, 0xee}));
  Octets in{0xff, 0xfe, 0xfd, 0x00};
  EXPECT_EQ(AsnOctetStringToOui(in.data(), 3).value(), 0xfffefdu);
}

TEST(OuiOctets, OtherLengthThanThreeAsserts) {
  Octets in{0x00, 0x80, 0xc2, 0x01};
  EXPECT_DEATH(AsnOctetStringToOui(in.data(), 4),
               "SnmpConversions:[0-9]+: .*AsnOctetStringToOui.*Assertion `len == 3' failed");
  EXPECT_DEATH(AsnOctetStringToOui(in.data(), 2), "Assertion `len == 3' failed");
}

}  // namespace
