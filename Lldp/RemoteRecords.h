#pragma once
// The mirror's value records: a copy of one element of a neighbour's
// collection, filed under its key, with a pointer to the neighbour.
//
// The columns of a remote table read the copy, so a record serves the values
// it was made with even after the neighbour changed or went; the reactors
// replace it. Only the time filter reads through `ptr`. Where a value stands
// both in the key and in the copy (TLV type, address, VLAN) the key is read.
// None of them has a hash: they are only ever sorted, by key.

#include <cstdint>
#include <iosfwd>
#include <utility>

#include "Bridging/VlanId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "MirrorKeys.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/ZetType.h"

namespace Lldp::Snmp {

// What every value record holds and derives. A default record has the
// default key, no neighbour and the inbound record's default.
template <class KeyType, class Raw>
struct RemoteRecord {
  using Key = KeyType;

  Key key;
  // The neighbour this came from; holding it keeps the neighbour alive.
  Zet::Ptr<Lldp::RemoteSystem const> ptr;
  Raw rawValue;

  RemoteRecord() = default;
  RemoteRecord(Key key, Zet::Ptr<Lldp::RemoteSystem const> ptr, Raw rawValue)
      : key(std::move(key)), ptr(std::move(ptr)), rawValue(std::move(rawValue)) {}

  Key const& fwkKey() const { return key; }

  // The neighbour's lastChangeTime, 0.0 without one: it moves with the
  // neighbour, not with the record.
  double timeMark() const { return ptr ? ptr->lastChangeTime() : 0.0; }
  std::uint16_t localPortNum() const { return key.ethPortId.value(); }
  std::int32_t index() const { return key.index; }

  // True for the default record.
  bool operator!() const { return *this == RemoteRecord(); }
  // `ptr` is equal only as the very same neighbour.
  friend bool operator==(RemoteRecord const&, RemoteRecord const&) = default;
};

// A row of lldpRemManAddrTable.
struct RemoteManagementAddress : RemoteRecord<RemoteManagementAddressKey, Lldp::ManagementAddress> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemoteManagementAddress() = default;
  // Reads the text of valueToStrep; a value out of range raises under its field's name.
  RemoteManagementAddress(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::int32_t manAddrSubtype() const { return key.manAddrKey.manAddrSubtype; }
  Lldp::ManAddress const& manAddr() const { return key.manAddrKey.manAddr; }
  Lldp::ManAddrIfSubtype ifSubtype() const { return rawValue.ifSubtype; }
  std::int32_t ifId() const { return rawValue.ifId; }
  ::Snmp::ObjectIdentifier const& oid() const { return rawValue.oid; }
};

// A row of lldpRemUnknownTLVTable.
struct RemoteUnknownTlv : RemoteRecord<RemoteUnknownTlvKey, Lldp::UnknownTlv> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemoteUnknownTlv() = default;
  RemoteUnknownTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::uint32_t type() const { return key.type; }
  Lldp::BoundedString511 const& info() const { return rawValue.info; }
};

// A row of lldpRemOrgDefInfoTable.
struct RemoteUnknownOrgDefTlv : RemoteRecord<RemoteUnknownOrgDefTlvKey, Lldp::UnknownOrgDefTlv> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemoteUnknownOrgDefTlv() = default;
  RemoteUnknownOrgDefTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Lldp::Oui oui() const { return key.oui; }
  std::uint32_t subtype() const { return key.subtype; }
  std::int32_t unknownOrgDefTlvIndex() const { return key.unknownOrgDefTlvIndex; }
  Lldp::BoundedString507 const& orgDefInfo() const { return rawValue.orgDefInfo; }
};

// A row of lldpXdot1RemProtoVlanTable.
struct RemotePortAndProtocolVlan : RemoteRecord<RemotePortAndProtocolVlanKey, Lldp::PortAndProtocolVlan> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemotePortAndProtocolVlan() = default;
  RemotePortAndProtocolVlan(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Bridging::VlanIdOrNone portAndProtocolVlanId() const { return key.portAndProtocolVlanId; }
  bool supported() const { return rawValue.supported; }
  bool enabled() const { return rawValue.enabled; }
};

// A row of lldpXdot1RemVlanNameTable.
struct RemoteVlanName : RemoteRecord<RemoteVlanNameKey, Lldp::VlanName> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemoteVlanName() = default;
  RemoteVlanName(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  Bridging::VlanId vlanId() const { return key.vlanId; }
  Lldp::BoundedString32 const& vlanName() const { return rawValue.vlanName; }
};

// A row of lldpXdot1RemProtocolTable.
struct RemoteProtocolIdentityInfo : RemoteRecord<RemoteProtocolIdentityInfoKey, Lldp::ProtocolIdentityInfo> {
  using RemoteRecord::RemoteRecord;
  static Zet::ZetType const _zetType;

  RemoteProtocolIdentityInfo() = default;
  RemoteProtocolIdentityInfo(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end);

  std::int32_t protocolIndex() const { return key.protocolIndex; }
  Lldp::BoundedString255 const& protocolId() const { return rawValue.protocolId; }
};

// "Value('Lldp::Snmp::<Record>', ** {'key': <key>, 'ptr': <reference>, 'rawValue': <record>})",
// the neighbour written as Zet::valueToStrep writes a reference (None when null).
Zet::String valueToStrep(RemoteManagementAddress const& record);
Zet::String valueToStrep(RemoteUnknownTlv const& record);
Zet::String valueToStrep(RemoteUnknownOrgDefTlv const& record);
Zet::String valueToStrep(RemotePortAndProtocolVlan const& record);
Zet::String valueToStrep(RemoteVlanName const& record);
Zet::String valueToStrep(RemoteProtocolIdentityInfo const& record);

std::ostream& operator<<(std::ostream& os, RemoteManagementAddress const& record);
std::ostream& operator<<(std::ostream& os, RemoteUnknownTlv const& record);
std::ostream& operator<<(std::ostream& os, RemoteUnknownOrgDefTlv const& record);
std::ostream& operator<<(std::ostream& os, RemotePortAndProtocolVlan const& record);
std::ostream& operator<<(std::ostream& os, RemoteVlanName const& record);
std::ostream& operator<<(std::ostream& os, RemoteProtocolIdentityInfo const& record);

}  // namespace Lldp::Snmp
