#pragma once
// The plug-in's own conversions of LLDP values to SNMP bytes, and back for
// the OUI of a request index. They follow the agent's convention (see
// Snmp/Conversions.h): write into the caller's buffer, return the byte count.
// A buffer too short for the value is a programming error and asserts; only
// AutoNegAdvertisedCapAsU16ToAsnBits returns 0 instead.

#include <cstdint>
#include <utility>

#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortConfig.h"
#include "MirrorRows.h"
#include "Zet/Assert.h"
#include "Zet/Ptr.h"
#include "Zet/RbTreeMap.h"

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

// A PortList column's octets, as the LLDP-MIB's LldpPortList: the top bit of
// octet 0 is port 1, its lowest bit port 8, the top bit of octet 1 port 9.
// `iterator` walks the list's members; `functor(key, port)` gives the port
// number and whether it counts. Only the octets up to the highest port that
// counts are written, and the result is their number, 0 when none counts. A
// buffer too short for the highest port asserts.
template <class I, class F>
int PortListConversionV(I iterator, F functor, unsigned char* buffer, int len) {
  int size = 0;
  // Bounded by the list, which nothing changes during one conversion.
  for (; !iterator.atEnd(); iterator.advance()) {
    auto const& member = iterator.currNodeMaybeStale();
    std::pair<std::uint16_t, bool> const port = functor(member.first, member.second);
    // Port 0 wraps to 65535 and is skipped with any port above 4095.
    auto const bit = static_cast<std::uint16_t>(port.first - 1);
    if (bit > 4094 || !port.second) {
      continue;
    }
    int const byte = bit / 8;
    if (byte + 1 > size) {
      int const newSize = byte + 1;
      ZET_ASSERT(newSize <= len);
      for (int i = size; i <= byte; ++i) {
        buffer[i] = 0;
      }
      size = newSize;
    }
    buffer[byte] |= static_cast<unsigned char>(0x80u >> (bit % 8));
  }
  return size;
}

namespace Lldp::Snmp {
class Root;
}

// Whether a local management address may be sent on a port: a port unknown
// to the mirror counts as enabled, a known one by its configuration's
// manAddrTxEnable. Needs the mirror handed over by lldpRootIs.
struct PortsTxEnableFunctor {
  std::pair<std::uint16_t, bool> operator()(std::uint16_t key, Interface::EthPortId const& port) const;
};

// lldpConfigManAddrPortsTxEnable: the ports of `ports` on which the address is sent.
int PortsTxEnableToAsnOctetString(Zet::Ptr<Lldp::Snmp::PortList const> ports, unsigned char* buffer, int length);

// The row filters of the extensions' per-neighbour tables: the TLV flag of
// the current row's neighbour, false when the row has none. The iterator must
// stand on a row.
using RemoteSystemIterator =
    Zet::RbTreeMap<Lldp::Snmp::RemoteSystem, Lldp::Snmp::RemoteSystem::Key, Lldp::Snmp::RemoteSystem>::IteratorConst;
bool portVlanIdTlvReceived(RemoteSystemIterator const& it);
bool macPhyConfigStatusTlvReceived(RemoteSystemIterator const& it);
bool powerViaMdiTlvReceived(RemoteSystemIterator const& it);
bool linkAggregationTlvReceived(RemoteSystemIterator const& it);
bool maximumFrameSizeTlvReceived(RemoteSystemIterator const& it);

// Hands the mirror to the conversions that read it; once per process, and
// the mirror then lives to process exit. An empty pointer leaves it unset.
void lldpRootIs(Zet::Ptr<Lldp::Snmp::Root const> root);
