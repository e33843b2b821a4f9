#include "SnmpConversions.h"

#include <cstdint>

#include "Root.h"
#include "Zet/Assert.h"

namespace {

// Bit 0 of `byte` to bit 7 and so on: named bit 0 of SNMP BITS is the top bit
// of the first octet. The multiply spreads five copies of the byte, the mask
// picks each bit once in mirrored position, and mod 1023 folds them together.
unsigned char reversedByte(std::uint32_t byte) {
  return static_cast<unsigned char>(((byte & 0xffu) * 0x202020202ull & 0x10884422010ull) % 1023u);
}

}  // namespace

int SystemCapabilitiesMapToAsnBits(Lldp::SystemCapabilitiesMap const& value, unsigned char* buffer, int length) {
  if (length < 2) {
    ZET_ASSERT(false);
  }
  buffer[0] = reversedByte(value.value());
  buffer[1] = reversedByte(value.value() >> 8);
  return 2;
}

int EnabledTlvsToAsnBits(Lldp::PortConfig::EnabledTlvs const& value, unsigned char* buffer, int length) {
  if (length < 1) {
    ZET_ASSERT(false);
  }
  buffer[0] = reversedByte(value.value());
  return 1;
}

int Dot3EnabledTlvsToAsnBits(Lldp::PortConfig::Dot3EnabledTlvs const& value, unsigned char* buffer, int length) {
  if (length < 1) {
    ZET_ASSERT(false);
  }
  buffer[0] = reversedByte(value.value());
  return 1;
}

int LinkAggStatusMapToAsnBits(Lldp::LinkAggStatusMap const& value, unsigned char* buffer, int length) {
  if (length < 1) {
    ZET_ASSERT(false);
  }
  buffer[0] = reversedByte(value.value());
  return 1;
}

int AutoNegAdvertisedCapAsU16ToAsnBits(unsigned short const& value, unsigned char* buffer, int length) {
  // WARNING: deliberately unlike its siblings, a short buffer is declined with
  // 0 rather than asserted on. Keep it so.
  if (length < 2) {
    return 0;
  }
  buffer[0] = static_cast<unsigned char>(value >> 8);
  buffer[1] = static_cast<unsigned char>(value);
  return 2;
}

int OuiToAsnOctetString(Lldp::Oui const& value, unsigned char* buffer, int length) {
  if (length < 3) {
    ZET_ASSERT(false);
  }
  std::uint32_t const oui = value.value();
  buffer[0] = static_cast<unsigned char>(oui >> 16);
  buffer[1] = static_cast<unsigned char>(oui >> 8);
  buffer[2] = static_cast<unsigned char>(oui);
  return 3;
}

Lldp::Oui AsnOctetStringToOui(void* data, unsigned int len) {
  ZET_ASSERT(len == 3);
  auto const* octets = static_cast<unsigned char const*>(data);
  return Lldp::Oui((std::uint32_t{octets[0]} << 16) | (std::uint32_t{octets[1]} << 8) | octets[2]);
}

namespace {
// The one counted reference from the SNMP side; set by LldpSm when the mirror is ready.
Zet::Ptr<Lldp::Snmp::Root const> root_;
}  // namespace

void lldpRootIs(Zet::Ptr<Lldp::Snmp::Root const> root) {
  ZET_ASSERT(!root_);
  if (root && root.get() != root_.get()) {
    root_ = std::move(root);
  }
}

std::pair<std::uint16_t, bool> PortsTxEnableFunctor::operator()(std::uint16_t key,
                                                                Interface::EthPortId const& port) const {
  ZET_ASSERT(root_);
  auto const config = root_->portConfig(port);
  if (!config) {
    return {key, true};
  }
  // Unguarded on purpose: a port row without its configuration is a fault here, not a disabled port.
  return {key, config->ptr()->manAddrTxEnable()};
}

int PortsTxEnableToAsnOctetString(Zet::Ptr<Lldp::Snmp::PortList const> ports, unsigned char* buffer, int length) {
  if (!ports) {
    return 0;
  }
  return PortListConversionV(ports->portId().iterator(), PortsTxEnableFunctor(), buffer, length);
}

// The row reads false through an empty `ptr`.
bool portVlanIdTlvReceived(RemoteSystemIterator const& it) { return it->portVlanIdTlvReceived(); }
bool macPhyConfigStatusTlvReceived(RemoteSystemIterator const& it) { return it->macPhyConfigStatusTlvReceived(); }
bool powerViaMdiTlvReceived(RemoteSystemIterator const& it) { return it->powerViaMdiTlvReceived(); }
bool linkAggregationTlvReceived(RemoteSystemIterator const& it) { return it->linkAggregationTlvReceived(); }
bool maximumFrameSizeTlvReceived(RemoteSystemIterator const& it) { return it->maximumFrameSizeTlvReceived(); }
