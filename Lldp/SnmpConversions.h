#pragma once
// The plug-in's own conversions of LLDP values to SNMP bytes, and back for
// the OUI of a request index. They follow the agent's convention (see
// Snmp/Conversions.h): write into the caller's buffer, return the byte count.
// A buffer too short for the value is a programming error and asserts; only
// AutoNegAdvertisedCapAsU16ToAsnBits returns 0 instead.

#include "LldpAgent/BitMaps.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortConfig.h"
#include "Zet/Ptr.h"

// BITS: named bit n of the map becomes bit n of the SNMP BITS encoding, which
// counts from the top bit of the first octet.
int SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap const& value, unsigned char* buffer, int length);
int EnabledTlvsToAsnBits(Lldp::PortConfig::EnabledTlvs const& value, unsigned char* buffer, int length);
int Dot3EnabledTlvsToAsnBits(Lldp::PortConfig::Dot3EnabledTlvs const& value, unsigned char* buffer, int length);
int LinkAggStatusMapToAsnBits(Lldp::LinkAggStatusMap const& value, unsigned char* buffer, int length);

// The 802.3 auto-negotiation capability field is already in wire order: it is
// written most significant byte first. A buffer under 2 bytes gets nothing
// and the result is 0.
int AutoNegAdvertisedCapAsU16ToAsnBits(unsigned short const& value, unsigned char* buffer, int length);

// The three octets of the OUI in written order; bits 24-31 of the value are dropped.
int OuiToAsnOctetString(Lldp::Oui const& value, unsigned char* buffer, int length);

// The OUI of a 3-octet string, as in a request index; any other length asserts.
Lldp::Oui AsnOctetStringToOui(void* data, unsigned int len);

namespace Lldp::Snmp {
class Root;
}

// Hands the mirror to the conversions that read it; once per process, and
// the mirror then lives to process exit. An empty pointer leaves it unset.
void lldpRootIs(Zet::Ptr<Lldp::Snmp::Root const> root);
