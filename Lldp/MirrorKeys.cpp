#define ZET_UNIT "LldpSnmp"
#include "MirrorKeys.h"

#include <ostream>
#include <tuple>
#include <utility>

#include "Zet/RecordForm.h"

namespace Lldp::Snmp {

namespace {

// The fields in the order they sort by. Tuples compare left to right and the
// first field that differs decides, by that field's own order; the field types
// carry the signedness the MIB's index order needs.
auto sortFields(RemoteSystemKey const& k) { return std::tie(k.ethPortId, k.index); }
auto sortFields(RemoteManagementAddressKey const& k) { return std::tie(k.ethPortId, k.index, k.manAddrKey); }
auto sortFields(RemoteUnknownTlvKey const& k) { return std::tie(k.ethPortId, k.index, k.type); }
auto sortFields(RemoteUnknownOrgDefTlvKey const& k) {
  return std::tie(k.ethPortId, k.index, k.oui, k.subtype, k.unknownOrgDefTlvIndex);
}
auto sortFields(RemotePortAndProtocolVlanKey const& k) {
  return std::tie(k.ethPortId, k.index, k.portAndProtocolVlanId);
}
auto sortFields(RemoteVlanNameKey const& k) { return std::tie(k.ethPortId, k.index, k.vlanId); }
auto sortFields(RemoteProtocolIdentityInfoKey const& k) { return std::tie(k.ethPortId, k.index, k.protocolIndex); }

template <class Key>
bool keyLess(Key const& a, Key const& b) {
  return sortFields(a) < sortFields(b);
}

template <class Key>
bool isDefault(Key const& key) {
  return key == Key();
}

constexpr Zet::RecordForm systemKeyForm{"Lldp::Snmp::RemoteSystem::Key",
                                        Zet::field("ethPortId", &RemoteSystemKey::ethPortId),
                                        Zet::field("index", &RemoteSystemKey::index)};

constexpr Zet::RecordForm managementAddressKeyForm{
    "Lldp::Snmp::RemoteManagementAddress::Key", Zet::field("ethPortId", &RemoteManagementAddressKey::ethPortId),
    Zet::field("index", &RemoteManagementAddressKey::index),
    Zet::field("manAddrKey", &RemoteManagementAddressKey::manAddrKey)};

constexpr Zet::RecordForm unknownTlvKeyForm{"Lldp::Snmp::RemoteUnknownTlv::Key",
                                            Zet::field("ethPortId", &RemoteUnknownTlvKey::ethPortId),
                                            Zet::field("index", &RemoteUnknownTlvKey::index),
                                            Zet::field("type", &RemoteUnknownTlvKey::type)};

constexpr Zet::RecordForm unknownOrgDefTlvKeyForm{
    "Lldp::Snmp::RemoteUnknownOrgDefTlv::Key", Zet::field("ethPortId", &RemoteUnknownOrgDefTlvKey::ethPortId),
    Zet::field("index", &RemoteUnknownOrgDefTlvKey::index), Zet::field("oui", &RemoteUnknownOrgDefTlvKey::oui),
    Zet::field("subtype", &RemoteUnknownOrgDefTlvKey::subtype),
    Zet::field("unknownOrgDefTlvIndex", &RemoteUnknownOrgDefTlvKey::unknownOrgDefTlvIndex)};

constexpr Zet::RecordForm portAndProtocolVlanKeyForm{
    "Lldp::Snmp::RemotePortAndProtocolVlan::Key", Zet::field("ethPortId", &RemotePortAndProtocolVlanKey::ethPortId),
    Zet::field("index", &RemotePortAndProtocolVlanKey::index),
    Zet::field("portAndProtocolVlanId", &RemotePortAndProtocolVlanKey::portAndProtocolVlanId)};

constexpr Zet::RecordForm vlanNameKeyForm{"Lldp::Snmp::RemoteVlanName::Key",
                                          Zet::field("ethPortId", &RemoteVlanNameKey::ethPortId),
                                          Zet::field("index", &RemoteVlanNameKey::index),
                                          Zet::field("vlanId", &RemoteVlanNameKey::vlanId)};

constexpr Zet::RecordForm protocolIdentityInfoKeyForm{
    "Lldp::Snmp::RemoteProtocolIdentityInfo::Key", Zet::field("ethPortId", &RemoteProtocolIdentityInfoKey::ethPortId),
    Zet::field("index", &RemoteProtocolIdentityInfoKey::index),
    Zet::field("protocolIndex", &RemoteProtocolIdentityInfoKey::protocolIndex)};

}  // namespace

RemoteSystemKey::RemoteSystemKey(Interface::EthPortId ethPortId, std::int32_t index)
    : ethPortId(ethPortId), index(index) {}
RemoteSystemKey::RemoteSystemKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  systemKeyForm.read(*this, pos, end);
}
bool RemoteSystemKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteSystemKey const& a, RemoteSystemKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemoteSystemKey const& key) { return systemKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemoteSystemKey const& key) { return os << valueToStrep(key); }

RemoteManagementAddressKey::RemoteManagementAddressKey(Interface::EthPortId ethPortId, std::int32_t index,
                                                       Lldp::ManagementAddress::Key manAddrKey)
    : ethPortId(ethPortId), index(index), manAddrKey(std::move(manAddrKey)) {}
RemoteManagementAddressKey::RemoteManagementAddressKey(Zet::String::IteratorConst& pos,
                                                       Zet::String::IteratorConst const& end) {
  managementAddressKeyForm.read(*this, pos, end);
}
bool RemoteManagementAddressKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteManagementAddressKey const& a, RemoteManagementAddressKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemoteManagementAddressKey const& key) { return managementAddressKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemoteManagementAddressKey const& key) {
  return os << valueToStrep(key);
}

RemoteUnknownTlvKey::RemoteUnknownTlvKey(Interface::EthPortId ethPortId, std::int32_t index, std::uint32_t type)
    : ethPortId(ethPortId), index(index), type(type) {}
RemoteUnknownTlvKey::RemoteUnknownTlvKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  unknownTlvKeyForm.read(*this, pos, end);
}
bool RemoteUnknownTlvKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteUnknownTlvKey const& a, RemoteUnknownTlvKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemoteUnknownTlvKey const& key) { return unknownTlvKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemoteUnknownTlvKey const& key) { return os << valueToStrep(key); }

RemoteUnknownOrgDefTlvKey::RemoteUnknownOrgDefTlvKey(Interface::EthPortId ethPortId, std::int32_t index,
                                                     Lldp::Oui oui, std::uint32_t subtype,
                                                     std::int32_t unknownOrgDefTlvIndex)
    : ethPortId(ethPortId), index(index), oui(oui), subtype(subtype), unknownOrgDefTlvIndex(unknownOrgDefTlvIndex) {}
RemoteUnknownOrgDefTlvKey::RemoteUnknownOrgDefTlvKey(Zet::String::IteratorConst& pos,
                                                     Zet::String::IteratorConst const& end) {
  unknownOrgDefTlvKeyForm.read(*this, pos, end);
}
bool RemoteUnknownOrgDefTlvKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteUnknownOrgDefTlvKey const& a, RemoteUnknownOrgDefTlvKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemoteUnknownOrgDefTlvKey const& key) { return unknownOrgDefTlvKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemoteUnknownOrgDefTlvKey const& key) { return os << valueToStrep(key); }

RemotePortAndProtocolVlanKey::RemotePortAndProtocolVlanKey(Interface::EthPortId ethPortId, std::int32_t index,
                                                           Bridging::VlanIdOrNone portAndProtocolVlanId)
    : ethPortId(ethPortId), index(index), portAndProtocolVlanId(portAndProtocolVlanId) {}
RemotePortAndProtocolVlanKey::RemotePortAndProtocolVlanKey(Zet::String::IteratorConst& pos,
                                                           Zet::String::IteratorConst const& end) {
  portAndProtocolVlanKeyForm.read(*this, pos, end);
}
bool RemotePortAndProtocolVlanKey::operator!() const { return isDefault(*this); }
bool operator<(RemotePortAndProtocolVlanKey const& a, RemotePortAndProtocolVlanKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemotePortAndProtocolVlanKey const& key) { return portAndProtocolVlanKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemotePortAndProtocolVlanKey const& key) {
  return os << valueToStrep(key);
}

RemoteVlanNameKey::RemoteVlanNameKey(Interface::EthPortId ethPortId, std::int32_t index, Bridging::VlanId vlanId)
    : ethPortId(ethPortId), index(index), vlanId(vlanId) {}
RemoteVlanNameKey::RemoteVlanNameKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  vlanNameKeyForm.read(*this, pos, end);
}
bool RemoteVlanNameKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteVlanNameKey const& a, RemoteVlanNameKey const& b) { return keyLess(a, b); }
Zet::String valueToStrep(RemoteVlanNameKey const& key) { return vlanNameKeyForm.toStrep(key); }
std::ostream& operator<<(std::ostream& os, RemoteVlanNameKey const& key) { return os << valueToStrep(key); }

RemoteProtocolIdentityInfoKey::RemoteProtocolIdentityInfoKey(Interface::EthPortId ethPortId, std::int32_t index,
                                                             std::int32_t protocolIndex)
    : ethPortId(ethPortId), index(index), protocolIndex(protocolIndex) {}
RemoteProtocolIdentityInfoKey::RemoteProtocolIdentityInfoKey(Zet::String::IteratorConst& pos,
                                                             Zet::String::IteratorConst const& end) {
  protocolIdentityInfoKeyForm.read(*this, pos, end);
}
bool RemoteProtocolIdentityInfoKey::operator!() const { return isDefault(*this); }
bool operator<(RemoteProtocolIdentityInfoKey const& a, RemoteProtocolIdentityInfoKey const& b) {
  return keyLess(a, b);
}
Zet::String valueToStrep(RemoteProtocolIdentityInfoKey const& key) {
  return protocolIdentityInfoKeyForm.toStrep(key);
}
std::ostream& operator<<(std::ostream& os, RemoteProtocolIdentityInfoKey const& key) {
  return os << valueToStrep(key);
}

}  // namespace Lldp::Snmp
