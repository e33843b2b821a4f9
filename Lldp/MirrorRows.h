#pragma once
// The mirror's row entities: a key and a pointer back to the inbound entity,
// whose attributes the table columns read at the moment a manager asks. A null
// pointer reads as 0, false or the empty string, never as an error.
//
// To add a derived attribute: add a const member that reads through `ptr()`
// with `read()`, which gives the attribute type's default for a null pointer.

#include <cstdint>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/Entity.h"
#include "Zet/HashMap.h"
#include "Zet/RbTreeMap.h"
#include "Zet/ZetType.h"

namespace Lldp::Snmp {

// A row filed under `Key` in one of the Root's sorted collections, reading `Inbound`.
template <class Key, class Inbound>
class Row : public Zet::Entity, public Zet::RbTreeNode {
 public:
  Key const& fwkKey() const { return key_; }
  Zet::Ptr<Inbound const> const& ptr() const { return ptr_; }
  // A row is known by its key, not by a name.
  Zet::Name name() const override { return {}; }

 protected:
  Row(Key key, Zet::Ptr<Inbound const> ptr) : key_(std::move(key)), ptr_(std::move(ptr)) {}

  template <class F>
  auto read(F&& f) const -> decltype(f(std::declval<Inbound const&>())) {
    using Result = decltype(f(std::declval<Inbound const&>()));
    return ptr_ ? f(*ptr_) : Result{};
  }

 private:
  Key const key_;
  Zet::Ptr<Inbound const> const ptr_;
};

// One per port: lldpPortConfigTable and the two extensions' port configuration tables.
class PortConfig : public Row<Interface::EthPortId, Lldp::PortConfig> {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  PortConfig(Interface::EthPortId ethPortId, Zet::Ptr<Lldp::PortConfig const> ptr) : Row(ethPortId, std::move(ptr)) {}
  Interface::EthPortId ethPortId() const { return fwkKey(); }

  std::uint16_t portNum() const { return ethPortId().value(); }
  Lldp::AdminStatus adminStatus() const;
  // A constant of the row: true whenever there is a source, whatever its configuration.
  bool notificationEnable() const { return static_cast<bool>(ptr()); }
  std::uint32_t enabledTlvs() const;
  bool portVlanTxEnable() const;
  std::uint32_t dot3EnabledTlvs() const;
};

// One per port: lldpStatsTxPortTable and lldpStatsRxPortTable.
class PortStatus : public Row<Interface::EthPortId, Lldp::PortStatus> {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  PortStatus(Interface::EthPortId ethPortId, Zet::Ptr<Lldp::PortStatus const> ptr) : Row(ethPortId, std::move(ptr)) {}
  Interface::EthPortId ethPortId() const { return fwkKey(); }

  std::uint16_t portNum() const { return ethPortId().value(); }
  std::uint32_t txFramesTotal() const;
  std::uint32_t rxFramesDiscardedTotal() const;
  std::uint32_t rxFramesErrors() const;
  std::uint32_t rxFramesTotal() const;
  std::uint32_t rxTLVsDiscardedTotal() const;
  std::uint32_t rxTLVsUnrecognizedTotal() const;
  std::uint32_t rxAgeoutsTotal() const;
};

// One per port: lldpLocPortTable and the extensions' local port tables.
class LocalPort : public Row<Interface::EthPortId, Lldp::LocalPort> {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  LocalPort(Interface::EthPortId ethPortId, Zet::Ptr<Lldp::LocalPort const> ptr) : Row(ethPortId, std::move(ptr)) {}
  Interface::EthPortId ethPortId() const { return fwkKey(); }

  std::uint16_t portNum() const { return ethPortId().value(); }
  Lldp::PortIdSubtype portIdSubtype() const;
  Lldp::PortId portId() const;
  Lldp::BoundedString255 portDesc() const;
  Bridging::VlanIdOrNone portVlanId() const;
  Lldp::LinkAggStatusMap linkAggStatus() const;
  std::int32_t linkAggPortId() const;
  std::uint16_t maxFrameSize() const;
};

// One per neighbour: lldpRemTable and the extensions' per-neighbour tables.
class RemoteSystem : public Row<RemoteSystemKey, Lldp::RemoteSystem> {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  using Key = RemoteSystemKey;
  RemoteSystem(Key const& key, Zet::Ptr<Lldp::RemoteSystem const> ptr) : Row(key, std::move(ptr)) {}
  Key const& key() const { return fwkKey(); }

  // The neighbour's lastChangeTime: what the time filter compares.
  double timeMark() const;
  std::uint16_t localPortNum() const { return key().ethPortId.value(); }
  std::int32_t index() const { return key().index; }
  Lldp::ChassisIdSubtype chassisIdSubtype() const;
  Lldp::ChassisId chassisId() const;
  Lldp::PortIdSubtype portIdSubtype() const;
  Lldp::PortId portId() const;
  Lldp::BoundedString255 portDesc() const;
  Lldp::BoundedString255 sysName() const;
  Lldp::BoundedString255 sysDesc() const;
  Lldp::SystemCapabilitiesMap sysCapSupported() const;
  Lldp::SystemCapabilitiesMap sysCapEnabled() const;
  bool portVlanIdTlvReceived() const;
  Bridging::VlanIdOrNone portVlanId() const;
  bool macPhyConfigStatusTlvReceived() const;
  bool autoNegSupported() const;
  bool autoNegEnabled() const;
  std::uint16_t autoNegAdvertisedCapAsU16() const;
  std::uint32_t operMauType() const;
  bool powerViaMdiTlvReceived() const;
  Lldp::PowerPortClass powerPortClass() const;
  bool powerMdiSupported() const;
  bool powerMdiEnabled() const;
  bool powerPairControllable() const;
  std::uint32_t powerPairs() const;
  std::uint32_t powerClass() const;
  bool linkAggregationTlvReceived() const;
  Lldp::LinkAggStatusMap linkAggStatus() const;
  std::int32_t linkAggPortId() const;
  bool maximumFrameSizeTlvReceived() const;
  std::uint16_t maxFrameSize() const;
};

// The ports that may send a local management address.
class PortList : public Zet::Entity {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  struct ZetPortId;
  using PortIds = Zet::HashMap2018<ZetPortId, std::uint16_t, Interface::EthPortId>;

  explicit PortList(Zet::Name name) : Zet::Entity(std::move(name)) {}
  ~PortList() override { portIdDelAll(); }

  PortIds const& portId() const { return portId_; }
  // Port 0 when absent, the same as port 0 itself.
  Interface::EthPortId portId(std::uint16_t value) const;
  void portIdIs(Interface::EthPortId port);
  Interface::EthPortId portIdDel(std::uint16_t value);
  void portIdDelAll();
  void portIdNotify(std::uint16_t) {}

 private:
  PortIds portId_;
};

// One per local management address: lldpLocManAddrTable and lldpConfigManAddrTable.
// Unlike the other rows it holds a copy of the address record, not a pointer.
class LocalManagementAddress : public Zet::Entity, public Zet::RbTreeNode {
 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  using Key = Lldp::ManagementAddress::Key;
  explicit LocalManagementAddress(Key key) : key_(std::move(key)) {}
  ~LocalManagementAddress() override { portsTxEnableDel(); }

  Key const& fwkKey() const { return key_; }
  Key const& key() const { return key_; }
  Zet::Name name() const override { return {}; }

  Lldp::ManagementAddress const& rawValue() const { return rawValue_; }
  void rawValueIs(Lldp::ManagementAddress const& value) { rawValue_ = value; }

  Zet::Ptr<PortList> const& portsTxEnable() const { return portsTxEnable_; }
  Zet::Ptr<PortList> portsTxEnableIs(Zet::Name const& name);
  Zet::Ptr<PortList> portsTxEnableDel();

  // The index columns come from the key, the rest from the stored record.
  std::int32_t manAddrSubtype() const { return key_.manAddrSubtype; }
  Lldp::ManAddress manAddr() const { return key_.manAddr; }
  std::uint32_t manAddrLen() const { return rawValue_.manAddrLen(); }
  Lldp::ManAddrIfSubtype ifSubtype() const { return rawValue_.ifSubtype; }
  std::int32_t ifId() const { return rawValue_.ifId; }
  ::Snmp::ObjectIdentifier oid() const { return rawValue_.oid; }

 private:
  Key const key_;
  Lldp::ManagementAddress rawValue_;
  Zet::Ptr<PortList> portsTxEnable_;
};

}  // namespace Lldp::Snmp
