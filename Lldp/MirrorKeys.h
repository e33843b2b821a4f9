#pragma once
// The keys of the mirror's remote tables. A key is what the table's MIB index
// means after lldpRemTimeMark, and its operator< is the only sorting there is:
// the sorted collections walk in it, so it must be the MIB's index order.
//
// Every key starts with the local port and the neighbour's index. Each field
// keeps the order of its own type: S32 fields signed (a negative index sorts
// before 0), U32 fields, the OUI and the VLANs unsigned (VLAN 0, none, first).
// None of them has a hash: they are only ever sorted.

#include <cstdint>
#include <iosfwd>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "Zet/String.h"
#include "Zet/ZetType.h"

namespace Lldp::Snmp {

// lldpRemTable and the extension tables that have one row per neighbour.
struct RemoteSystemKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;

  static Zet::ZetType const _zetType;

  RemoteSystemKey() = default;
  RemoteSystemKey(Interface::EthPortId ethPortId, std::int32_t index);
  // Reads the text of valueToStrep; a value out of range raises under its field's name.
  RemoteSystemKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  // True for the default key.
  bool operator!() const;
  friend bool operator==(RemoteSystemKey const&, RemoteSystemKey const&) = default;
  friend bool operator<(RemoteSystemKey const& a, RemoteSystemKey const& b);
};

// lldpRemManAddrTable.
struct RemoteManagementAddressKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  Lldp::ManagementAddress::Key manAddrKey;

  static Zet::ZetType const _zetType;

  RemoteManagementAddressKey() = default;
  RemoteManagementAddressKey(Interface::EthPortId ethPortId, std::int32_t index,
                             Lldp::ManagementAddress::Key manAddrKey);
  RemoteManagementAddressKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemoteManagementAddressKey const&, RemoteManagementAddressKey const&) = default;
  friend bool operator<(RemoteManagementAddressKey const& a, RemoteManagementAddressKey const& b);
};

// lldpRemUnknownTLVTable. A default key has type 0, which no TLV can have.
struct RemoteUnknownTlvKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  std::uint32_t type = 0;

  static Zet::ZetType const _zetType;

  RemoteUnknownTlvKey() = default;
  RemoteUnknownTlvKey(Interface::EthPortId ethPortId, std::int32_t index, std::uint32_t type);
  RemoteUnknownTlvKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemoteUnknownTlvKey const&, RemoteUnknownTlvKey const&) = default;
  friend bool operator<(RemoteUnknownTlvKey const& a, RemoteUnknownTlvKey const& b);
};

// lldpRemOrgDefInfoTable: oui, subtype and index of the TLV's key. Unlike that
// key, a default one has subtype 0 and index 0.
struct RemoteUnknownOrgDefTlvKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  Lldp::Oui oui;
  std::uint32_t subtype = 0;
  std::int32_t unknownOrgDefTlvIndex = 0;

  static Zet::ZetType const _zetType;

  RemoteUnknownOrgDefTlvKey() = default;
  RemoteUnknownOrgDefTlvKey(Interface::EthPortId ethPortId, std::int32_t index, Lldp::Oui oui, std::uint32_t subtype,
                            std::int32_t unknownOrgDefTlvIndex);
  RemoteUnknownOrgDefTlvKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemoteUnknownOrgDefTlvKey const&, RemoteUnknownOrgDefTlvKey const&) = default;
  friend bool operator<(RemoteUnknownOrgDefTlvKey const& a, RemoteUnknownOrgDefTlvKey const& b);
};

// lldpXdot1RemProtoVlanTable.
struct RemotePortAndProtocolVlanKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  Bridging::VlanIdOrNone portAndProtocolVlanId;

  static Zet::ZetType const _zetType;

  RemotePortAndProtocolVlanKey() = default;
  RemotePortAndProtocolVlanKey(Interface::EthPortId ethPortId, std::int32_t index,
                               Bridging::VlanIdOrNone portAndProtocolVlanId);
  RemotePortAndProtocolVlanKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemotePortAndProtocolVlanKey const&, RemotePortAndProtocolVlanKey const&) = default;
  friend bool operator<(RemotePortAndProtocolVlanKey const& a, RemotePortAndProtocolVlanKey const& b);
};

// lldpXdot1RemVlanNameTable. A default key has VLAN 1: there is no VLAN 0 here.
struct RemoteVlanNameKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  Bridging::VlanId vlanId;

  static Zet::ZetType const _zetType;

  RemoteVlanNameKey() = default;
  RemoteVlanNameKey(Interface::EthPortId ethPortId, std::int32_t index, Bridging::VlanId vlanId);
  RemoteVlanNameKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemoteVlanNameKey const&, RemoteVlanNameKey const&) = default;
  friend bool operator<(RemoteVlanNameKey const& a, RemoteVlanNameKey const& b);
};

// lldpXdot1RemProtocolTable.
struct RemoteProtocolIdentityInfoKey {
  Interface::EthPortId ethPortId;
  std::int32_t index = 0;
  std::int32_t protocolIndex = 0;

  static Zet::ZetType const _zetType;

  RemoteProtocolIdentityInfoKey() = default;
  RemoteProtocolIdentityInfoKey(Interface::EthPortId ethPortId, std::int32_t index, std::int32_t protocolIndex);
  RemoteProtocolIdentityInfoKey(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  bool operator!() const;
  friend bool operator==(RemoteProtocolIdentityInfoKey const&, RemoteProtocolIdentityInfoKey const&) = default;
  friend bool operator<(RemoteProtocolIdentityInfoKey const& a, RemoteProtocolIdentityInfoKey const& b);
};

// "Value('Lldp::Snmp::<Table>::Key', ** {'ethPortId': 1, 'index': 2, ...})",
// the fields in order; the parsing constructors read exactly this back.
Zet::String valueToStrep(RemoteSystemKey const& key);
Zet::String valueToStrep(RemoteManagementAddressKey const& key);
Zet::String valueToStrep(RemoteUnknownTlvKey const& key);
Zet::String valueToStrep(RemoteUnknownOrgDefTlvKey const& key);
Zet::String valueToStrep(RemotePortAndProtocolVlanKey const& key);
Zet::String valueToStrep(RemoteVlanNameKey const& key);
Zet::String valueToStrep(RemoteProtocolIdentityInfoKey const& key);

std::ostream& operator<<(std::ostream& os, RemoteSystemKey const& key);
std::ostream& operator<<(std::ostream& os, RemoteManagementAddressKey const& key);
std::ostream& operator<<(std::ostream& os, RemoteUnknownTlvKey const& key);
std::ostream& operator<<(std::ostream& os, RemoteUnknownOrgDefTlvKey const& key);
std::ostream& operator<<(std::ostream& os, RemotePortAndProtocolVlanKey const& key);
std::ostream& operator<<(std::ostream& os, RemoteVlanNameKey const& key);
std::ostream& operator<<(std::ostream& os, RemoteProtocolIdentityInfoKey const& key);

}  // namespace Lldp::Snmp
