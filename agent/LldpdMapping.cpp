#include "LldpdMapping.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <unordered_set>

namespace {

// lldpd's values (lldp-const.h).
constexpr std::uint32_t ppvidSupported = 1u << 1;
constexpr std::uint32_t ppvidEnabled = 1u << 2;
constexpr int autonegBits = 16;

// IANA address family numbers.
constexpr std::int32_t ipV4Family = 1;
constexpr std::int32_t ipV6Family = 2;

constexpr std::int64_t vlanMax = 4094;

std::int32_t clampedS32(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

std::uint16_t clampedU16(std::int64_t value) {
  return static_cast<std::uint16_t>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<std::uint16_t>::max()));
}

template <class Bounded>
Bounded boundedAs(std::string_view bytes) {
  return Bounded(LldpdMapping::bounded(bytes, Bounded::maxBytes));
}

// lldpd holds the TLV's two octets, named bit 0 the most significant; the state numbers bit n as 1 << n.
std::uint32_t advertisedCapabilities(std::uint32_t wire) {
  std::uint32_t bits = 0;
  for (int bit = 0; bit < autonegBits; ++bit) {
    if ((wire & (0x8000u >> bit)) != 0) {
      bits |= 1u << bit;
    }
  }
  return bits;
}

Lldp::ManagementAddress managementAddress(std::int32_t family, Zet::String bytes, std::int64_t ifIndex) {
  Lldp::ManagementAddress address;
  address.manAddrSubtype = family;
  address.manAddr = Lldp::ManAddress(std::move(bytes));
  // lldpd keeps the interface number but not its subtype; it sends ifIndex for a number it knows.
  if (ifIndex > 0) {
    address.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
    address.ifId = clampedS32(ifIndex);
  }
  return address;
}

std::vector<Lldp::UnknownOrgDefTlv> orgDefTlvs(std::vector<LldpdCustomTlv> const& tlvs) {
  std::vector<Lldp::UnknownOrgDefTlv> result;
  // Several TLVs of one OUI and subtype are told apart by their order of arrival.
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::int32_t> seen;
  for (LldpdCustomTlv const& tlv : tlvs) {
    std::uint32_t oui = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      oui = oui << 8 | (i < tlv.oui.size() ? static_cast<unsigned char>(tlv.oui[i]) : 0u);
    }
    std::int32_t const index = ++seen[{oui, tlv.subtype}];
    result.emplace_back(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(oui), tlv.subtype, index),
                        boundedAs<Lldp::BoundedString507>(tlv.info));
  }
  return result;
}

}  // namespace

namespace LldpdMapping {

bool isUtf8(std::string_view bytes) {
  std::size_t i = 0;
  while (i < bytes.size()) {
    auto const lead = static_cast<unsigned char>(bytes[i]);
    std::size_t length = 0;
    std::uint32_t code = 0;
    if (lead < 0x80) {
      ++i;
      continue;
    }
    if ((lead & 0xe0) == 0xc0) {
      length = 2;
      code = lead & 0x1f;
    } else if ((lead & 0xf0) == 0xe0) {
      length = 3;
      code = lead & 0x0f;
    } else if ((lead & 0xf8) == 0xf0) {
      length = 4;
      code = lead & 0x07;
    } else {
      return false;
    }
    if (i + length > bytes.size()) {
      return false;
    }
    for (std::size_t k = 1; k < length; ++k) {
      auto const next = static_cast<unsigned char>(bytes[i + k]);
      if ((next & 0xc0) != 0x80) {
        return false;
      }
      code = code << 6 | (next & 0x3f);
    }
    // Overlong forms, surrogates and code points beyond Unicode are no UTF-8.
    static constexpr std::array<std::uint32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    if (code < smallest[length] || code > 0x10ffff || (code >= 0xd800 && code <= 0xdfff)) {
      return false;
    }
    i += length;
  }
  return true;
}

Zet::String bounded(std::string_view bytes, std::size_t limit) {
  if (bytes.size() <= limit) {
    return Zet::String(bytes);
  }
  std::size_t cut = limit;
  if (isUtf8(bytes)) {
    while (cut > 0 && (static_cast<unsigned char>(bytes[cut]) & 0xc0) == 0x80) {
      --cut;
    }
  }
  return Zet::String(bytes.substr(0, cut));
}

Lldp::RemoteSystemMsap msapOf(LldpdNeighbor const& neighbor) {
  return Lldp::RemoteSystemMsap(static_cast<Lldp::ChassisIdSubtype>(neighbor.chassis.idSubtype),
                                boundedAs<Lldp::ChassisId>(neighbor.chassis.id),
                                static_cast<Lldp::PortIdSubtype>(neighbor.port.idSubtype),
                                boundedAs<Lldp::PortId>(neighbor.port.id));
}

std::vector<Lldp::ManagementAddress> managementAddresses(std::vector<LldpdManagementAddress> const& addresses) {
  std::vector<Lldp::ManagementAddress> result;
  std::unordered_set<Lldp::ManagementAddress::Key> keys;
  for (LldpdManagementAddress const& address : addresses) {
    std::array<unsigned char, 16> bytes{};
    std::int32_t family = 0;
    std::size_t size = 0;
    if (inet_pton(AF_INET, address.address.c_str(), bytes.data()) == 1) {
      family = ipV4Family;
      size = 4;
    } else if (inet_pton(AF_INET6, address.address.c_str(), bytes.data()) == 1) {
      family = ipV6Family;
      size = 16;
    } else {
      continue;
    }
    auto mapped = managementAddress(family, Zet::String(reinterpret_cast<char const*>(bytes.data()), size),
                                    address.ifIndex);
    if (keys.insert(mapped.key()).second) {
      result.push_back(std::move(mapped));
    }
  }
  return result;
}

DesiredNeighbor neighbor(LldpdNeighbor const& from, std::int32_t index, double startEpoch) {
  LldpdPortInfo const& port = from.port;
  DesiredNeighbor n;
  n.index = index;
  n.msap = msapOf(from);
  n.portDesc = boundedAs<Lldp::BoundedString255>(port.description);
  n.sysName = boundedAs<Lldp::BoundedString255>(from.chassis.name);
  n.sysDesc = boundedAs<Lldp::BoundedString255>(from.chassis.description);
  n.sysCapSupported = Lldp::SystemCapabilitiesMap(from.chassis.capAvailable);
  n.sysCapEnabled = Lldp::SystemCapabilitiesMap(from.chassis.capEnabled);
  n.managementAddress = managementAddresses(from.chassis.managementAddresses);
  n.unknownOrgDefTlv = orgDefTlvs(port.customTlvs);

  n.portVlanIdTlvReceived = port.pvid >= 1 && port.pvid <= vlanMax;
  if (n.portVlanIdTlvReceived) {
    n.portVlanId = Bridging::VlanIdOrNone(static_cast<std::uint16_t>(port.pvid));
  }
  std::set<std::int64_t> ppvids;
  for (LldpdPpvid const& ppvid : port.ppvids) {
    if (ppvid.id >= 0 && ppvid.id <= vlanMax && ppvids.insert(ppvid.id).second) {
      n.portAndProtocolVlan.emplace_back(Bridging::VlanIdOrNone(static_cast<std::uint16_t>(ppvid.id)),
                                         (ppvid.status & ppvidSupported) != 0, (ppvid.status & ppvidEnabled) != 0);
    }
  }
  std::set<std::int64_t> vlans;
  for (LldpdVlan const& vlan : port.vlans) {
    if (vlan.id >= 1 && vlan.id <= vlanMax && vlans.insert(vlan.id).second) {
      n.vlanName.emplace_back(Bridging::VlanId(static_cast<std::uint16_t>(vlan.id)),
                              boundedAs<Lldp::BoundedString32>(vlan.name));
    }
  }
  std::int32_t protocolIndex = 0;
  for (std::string const& protocolId : port.protocolIds) {
    n.protocolIdentityInfo.emplace_back(++protocolIndex, boundedAs<Lldp::BoundedString255>(protocolId));
  }

  // lldpd keeps only the aggregated port's ID, which is 0 in a TLV that says "not aggregated".
  n.linkAggregationTlvReceived = port.aggregationId != 0;
  if (n.linkAggregationTlvReceived) {
    n.linkAggregationInfo = Lldp::LinkAggregationInfo(Lldp::LinkAggStatusMap(0x3), clampedS32(port.aggregationId));
  }
  n.macPhyConfigStatusTlvReceived =
      port.autonegSupported || port.autonegEnabled || port.autonegAdvertised != 0 || port.mauType != 0;
  if (n.macPhyConfigStatusTlvReceived) {
    n.macPhyConfigStatusInfo.autoNegSupported = port.autonegSupported;
    n.macPhyConfigStatusInfo.autoNegEnabled = port.autonegEnabled;
    n.macPhyConfigStatusInfo.autoNegAdvertisedCap = advertisedCapabilities(port.autonegAdvertised);
    n.macPhyConfigStatusInfo.operMauType = port.mauType;
  }
  n.powerViaMdiTlvReceived = port.power.deviceType != 0;
  if (n.powerViaMdiTlvReceived) {
    n.powerViaMdiInfo.powerPortClass = static_cast<Lldp::PowerPortClass>(clampedS32(port.power.deviceType));
    n.powerViaMdiInfo.powerMdiSupported = port.power.supported;
    n.powerViaMdiInfo.powerMdiEnabled = port.power.enabled;
    n.powerViaMdiInfo.powerPairControllable = port.power.pairControl;
    n.powerViaMdiInfo.powerPairs = static_cast<std::uint32_t>(std::max<std::int64_t>(port.power.pairs, 0));
    n.powerViaMdiInfo.powerClass = static_cast<std::uint32_t>(std::max<std::int64_t>(port.power.powerClass, 0));
  }
  n.maximumFrameSizeTlvReceived = port.mfs != 0;
  n.maximumFrameSizeInfo = clampedU16(port.mfs);
  n.lastChangeTime = std::max(0.0, static_cast<double>(from.lastChange) - startEpoch);
  return n;
}

DesiredLocalSystem localSystem(LldpdChassis const& chassis, LldpdConfig const& config) {
  DesiredLocalSystem local;
  local.chassisIdSubtype = chassis.idSubtype;
  local.chassisId = Zet::String(chassis.id);
  local.sysName = Zet::String(chassis.name);
  local.sysDesc = Zet::String(chassis.description);
  local.sysCapSupported = Lldp::SystemCapabilitiesMap(chassis.capAvailable);
  local.sysCapEnabled = Lldp::SystemCapabilitiesMap(chassis.capEnabled);
  local.managementAddress = managementAddresses(chassis.managementAddresses);
  // lldpd sends every address on every port, in its own order: a priority per address says so.
  if (config.managementAdvertised) {
    std::uint32_t sequence = 0;
    for (Lldp::ManagementAddress const& address : local.managementAddress) {
      local.managementAddressPrio.push_back(
          {Lldp::ManAddrPriority(0, address.manAddrSubtype, ++sequence, Ondo::IntfId()), address.key()});
    }
  }
  return local;
}

DesiredPortConfig portConfig(LldpdInterface const& interface, LldpdConfig const& config) {
  constexpr std::uint32_t portDescBit = 1u << 0;
  constexpr std::uint32_t sysNameBit = 1u << 1;
  constexpr std::uint32_t sysDescBit = 1u << 2;
  constexpr std::uint32_t sysCapBit = 1u << 3;
  constexpr std::uint32_t macPhyBit = 1u << 0;
  constexpr std::uint32_t powerBit = 1u << 1;
  constexpr std::uint32_t linkAggBit = 1u << 2;
  constexpr std::uint32_t maxFrameSizeBit = 1u << 3;

  DesiredPortConfig result;
  switch (interface.mode) {
    case LldpdPortMode::txOnly:
      result.adminStatus = Lldp::AdminStatus::txOnly;
      break;
    case LldpdPortMode::rxOnly:
      result.adminStatus = Lldp::AdminStatus::rxOnly;
      break;
    case LldpdPortMode::disabled:
      result.adminStatus = Lldp::AdminStatus::disabled;
      break;
    case LldpdPortMode::rxAndTx:
    case LldpdPortMode::unknown:
      result.adminStatus = config.receiveOnly ? Lldp::AdminStatus::rxOnly : Lldp::AdminStatus::txAndRx;
      break;
  }
  // What lldpd puts in every LLDPDU it sends, and what it sends only when it has a value.
  result.enabledTlvs = portDescBit | sysNameBit | sysDescBit | (config.capabilitiesAdvertised ? sysCapBit : 0);
  result.manAddrTxEnable = config.managementAdvertised;
  result.portVlanTxEnable = interface.local.pvid >= 1 && interface.local.pvid <= vlanMax;
  result.dot3EnabledTlvs = macPhyBit | linkAggBit | (interface.local.power.deviceType != 0 ? powerBit : 0) |
                           (interface.local.mfs != 0 ? maxFrameSizeBit : 0);
  return result;
}

DesiredLocalPort localPort(LldpdPortInfo const& port) {
  DesiredLocalPort local;
  local.portIdSubtype = static_cast<Lldp::PortIdSubtype>(port.idSubtype);
  local.portId = boundedAs<Lldp::PortId>(port.id);
  local.portDesc = boundedAs<Lldp::BoundedString255>(port.description);
  if (port.pvid >= 1 && port.pvid <= vlanMax) {
    local.portVlanId = Bridging::VlanIdOrNone(static_cast<std::uint16_t>(port.pvid));
  }
  // lldpd sends its ports as able to aggregate, and as aggregated when they are.
  local.linkAggStatus = Lldp::LinkAggStatusMap(port.aggregationId != 0 ? 0x3 : 0x1);
  local.linkAggPortId = clampedS32(port.aggregationId);
  local.maxFrameSize = clampedU16(port.mfs);
  return local;
}

DesiredPortStatus portStatus(LldpdCounters const& counters) {
  DesiredPortStatus status;
  status.txFramesTotal = counters.tx;
  status.rxFramesTotal = counters.rx;
  status.rxFramesDiscardedTotal = counters.rxDiscarded;
  status.rxTLVsUnrecognizedTotal = counters.rxUnrecognized;
  status.rxAgeoutsTotal = counters.ageouts;
  return status;
}

DesiredConfig config(LldpdConfig const& from) {
  DesiredConfig result;
  result.messageTxInterval = clampedS32(from.txInterval);
  result.messageTxHold = clampedS32(from.txHold);
  return result;
}

std::map<std::string, std::uint16_t> portNumbers(std::vector<std::pair<std::string, std::int64_t>> const& ifIndexes,
                                                 std::map<std::string, std::uint16_t> const& previous) {
  constexpr std::int64_t numberMax = 4094;
  std::map<std::string, std::uint16_t> numbers;
  std::set<std::uint16_t> taken;
  std::vector<std::pair<std::int64_t, std::string>> others;
  for (auto const& [name, ifIndex] : ifIndexes) {
    if (ifIndex >= 1 && ifIndex <= numberMax) {
      numbers[name] = static_cast<std::uint16_t>(ifIndex);
      taken.insert(static_cast<std::uint16_t>(ifIndex));
    } else {
      others.emplace_back(ifIndex, name);
    }
  }
  std::sort(others.begin(), others.end());
  std::vector<std::string> unnumbered;
  for (auto const& [ifIndex, name] : others) {
    auto const it = previous.find(name);
    if (it != previous.end() && it->second >= 1 && !taken.contains(it->second)) {
      numbers[name] = it->second;
      taken.insert(it->second);
    } else {
      unnumbered.push_back(name);
    }
  }
  for (std::string const& name : unnumbered) {
    std::int64_t next = taken.empty() ? 1 : *taken.rbegin() + 1;
    if (next > numberMax) {
      // Above every number there is no room left: the lowest free one.
      next = 1;
      while (next <= numberMax && taken.contains(static_cast<std::uint16_t>(next))) {
        ++next;
      }
      if (next > numberMax) {
        continue;
      }
    }
    numbers[name] = static_cast<std::uint16_t>(next);
    taken.insert(static_cast<std::uint16_t>(next));
  }
  return numbers;
}

}  // namespace LldpdMapping

LldpdState::Port& LldpdState::portIs(LldpdInterface const& interface) {
  auto [it, added] = ports_.try_emplace(interface.name);
  Port& port = it->second;
  bool const renumbered = added || port.interface.ifIndex != interface.ifIndex;
  port.interface = interface;
  port.interface.neighbors.clear();
  if (renumbered) {
    renumber();
  }
  return port;
}

void LldpdState::renumber() {
  std::vector<std::pair<std::string, std::int64_t>> ifIndexes;
  for (auto const& [name, port] : ports_) {
    ifIndexes.emplace_back(name, port.interface.ifIndex);
  }
  numbers_ = LldpdMapping::portNumbers(ifIndexes, numbers_);
}

void LldpdState::interfacesIs(std::vector<LldpdInterface> const& interfaces,
                              std::vector<std::string> const& unreadable) {
  std::unordered_set<std::string> names(unreadable.begin(), unreadable.end());
  for (LldpdInterface const& interface : interfaces) {
    names.insert(interface.name);
  }
  std::erase_if(ports_, [&](auto const& entry) { return !names.contains(entry.first); });
  for (std::string const& name : unreadable) {
    ports_.try_emplace(name).first->second.interface.name = name;
  }
  renumber();
  for (LldpdInterface const& interface : interfaces) {
    interfaceIs(interface);
  }
}

void LldpdState::interfaceIs(LldpdInterface const& interface) {
  Port& port = portIs(interface);
  std::unordered_set<Lldp::RemoteSystemMsap> present;
  for (LldpdNeighbor const& neighbor : interface.neighbors) {
    present.insert(LldpdMapping::msapOf(neighbor));
  }
  std::erase_if(port.indexes, [&](auto const& entry) {
    if (present.contains(entry.first)) {
      return false;
    }
    port.neighbors.erase(entry.second);
    return true;
  });
  for (LldpdNeighbor const& neighbor : interface.neighbors) {
    upsert(port, neighbor);
  }
}

bool LldpdState::upsert(Port& port, LldpdNeighbor const& neighbor) {
  auto const [entry, added] = port.indexes.try_emplace(LldpdMapping::msapOf(neighbor), port.nextIndex);
  if (added) {
    ++port.nextIndex;
  }
  port.neighbors.insert_or_assign(entry->second, LldpdMapping::neighbor(neighbor, entry->second, startEpoch_));
  return added;
}

void LldpdState::startEpochIs(double startEpoch) {
  for (auto& [name, port] : ports_) {
    for (auto& [index, neighbor] : port.neighbors) {
      if (neighbor.lastChangeTime) {
        *neighbor.lastChangeTime += startEpoch_ - startEpoch;
      }
    }
  }
  startEpoch_ = startEpoch;
}

bool LldpdState::neighborIs(std::string const& interfaceName, LldpdNeighbor const& neighbor) {
  auto const it = ports_.find(interfaceName);
  if (it == ports_.end()) {
    return false;
  }
  if (upsert(it->second, neighbor)) {
    // As lldpd counts it, until the next read brings lldpd's own count.
    ++it->second.interface.counters.inserts;
  }
  return true;
}

bool LldpdState::neighborDel(std::string const& interfaceName, LldpdNeighbor const& neighbor) {
  auto const it = ports_.find(interfaceName);
  if (it == ports_.end()) {
    return false;
  }
  Port& port = it->second;
  if (auto const entry = port.indexes.find(LldpdMapping::msapOf(neighbor)); entry != port.indexes.end()) {
    port.neighbors.erase(entry->second);
    port.indexes.erase(entry);
    ++port.interface.counters.deletes;
  }
  return true;
}

DesiredState LldpdState::snapshot() const {
  DesiredState state;
  state.config = LldpdMapping::config(config_);
  state.localSystem = LldpdMapping::localSystem(localChassis_, config_);
  std::uint32_t inserts = 0;
  std::uint32_t deletes = 0;
  std::uint32_t ageouts = 0;
  std::map<std::uint16_t, Port const*> byNumber;
  for (auto const& [name, port] : ports_) {
    inserts += port.interface.counters.inserts;
    deletes += port.interface.counters.deletes;
    ageouts += port.interface.counters.ageouts;
    if (auto const number = numbers_.find(name); number != numbers_.end()) {
      byNumber.emplace(number->second, &port);
    }
  }
  state.status.remTablesInserts = inserts;
  state.status.remTablesDeletes = deletes;
  state.status.remTablesAgeouts = ageouts;
  for (auto const& [number, port] : byNumber) {
    DesiredPort desired;
    desired.name = Ondo::IntfId(Zet::String(port->interface.name));
    desired.number = Interface::EthPortId(number);
    desired.config = LldpdMapping::portConfig(port->interface, config_);
    desired.localPort = LldpdMapping::localPort(port->interface.local);
    desired.portStatus = LldpdMapping::portStatus(port->interface.counters);
    desired.neighbors.reserve(port->neighbors.size());
    for (auto const& [index, neighbor] : port->neighbors) {
      desired.neighbors.push_back(neighbor);
    }
    state.ports.push_back(std::move(desired));
  }
  return state;
}
