#pragma once
// The mirror: one Root holding, sorted the way the MIB walks them, a row for
// every port, local management address and neighbour, and a value record for
// every neighbour's management address, unknown TLV, organisational TLV, port
// and protocol VLAN, VLAN name and protocol identity. The reactors write it;
// the table handlers only read it, so it notifies nobody.
//
// To add a collection: a map type and a field below, and one line of
// LLDP_ROOT_ROWS or LLDP_ROOT_VALUES for its operations.

#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/PortStatus.h"
#include "LldpSm.h"
#include "MirrorRows.h"
#include "Ondo/IntfId.h"
#include "PortStatusSm.h"
#include "RemoteRecords.h"
#include "Zet/Entity.h"
#include "Zet/HashMap.h"
#include "Zet/RbTreeMap.h"
#include "Zet/ZetType.h"

#include <type_traits>
#include <utility>

namespace Lldp::Snmp {

// One value record in a sorted collection: a copy of the record and the links.
template <class Record>
class ValueHolder : public Zet::PtrInterface, public Zet::RbTreeNode {
 public:
  explicit ValueHolder(Record value) : value(std::move(value)) {}
  typename Record::Key const& fwkKey() const { return value.key; }
  Record value;
};

class Root : public Zet::Entity {
 public:
  // Where the host mounts it for the tables to find.
  static constexpr char const* path = "snmp/lldp/root";
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  using ZetRemoteManagementAddress = ValueHolder<RemoteManagementAddress>;
  using ZetRemoteUnknownTlv = ValueHolder<RemoteUnknownTlv>;
  using ZetRemoteUnknownOrgDefTlv = ValueHolder<RemoteUnknownOrgDefTlv>;
  using ZetRemotePortAndProtocolVlan = ValueHolder<RemotePortAndProtocolVlan>;
  using ZetRemoteVlanName = ValueHolder<RemoteVlanName>;
  using ZetRemoteProtocolIdentityInfo = ValueHolder<RemoteProtocolIdentityInfo>;

  template <class Row>
  using RowMap = Zet::RbTreeMap<Row, std::decay_t<decltype(std::declval<Row>().fwkKey())>, Row>;
  template <class Holder>
  using ValueMap = Zet::RbTreeMap<Holder, typename decltype(Holder::value)::Key, Holder>;

  static Zet::Ptr<Root> RootIs(Zet::Name name);
  ~Root() override;

  Zet::Name name() const override { return name_; }
  void nameIsFromBackup(Zet::Name const& name) override { name_ = name; }
  // The mirror is rebuilt from the inbound state, never restored.
  bool hasBackupSupport() const override { return false; }

  // Rows of a port or a neighbour: xIs(key, ptr) gives the row, the same one
  // again for the same ptr, and raises the name-in-use exception for another.
#define LLDP_ROOT_ROWS(X)                                                    \
  X(portConfig, PortConfig, Interface::EthPortId, Lldp::PortConfig)          \
  X(portStatus, PortStatus, Interface::EthPortId, Lldp::PortStatus)          \
  X(localPort, LocalPort, Interface::EthPortId, Lldp::LocalPort)             \
  X(remoteSystem, RemoteSystem, RemoteSystem::Key, Lldp::RemoteSystem)
#define LLDP_ROOT_ROW_OPERATIONS(name, Row, Key, Inbound)                          \
  Zet::Ptr<Row> name##Is(Key const& key, Zet::Ptr<Inbound const> const& ptr);    \
  Zet::Ptr<Row> name(Key const& key) const { return name##_[key]; }               \
  Zet::Ptr<Row> name##Del(Key const& key) { return rowDel(name##_, key); }        \
  Zet::Ptr<Row> name##Del(RowMap<Row>::Iterator& it) { return rowDel(name##_, it); } \
  void name##DelAll() {                                                           \
    delAll(name##_, [&](RowMap<Row>::Iterator& it) { name##Del(it); });           \
  }                                                                               \
  void name##Notify(Key const&) {}                                                \
  RowMap<Row> const& name() const { return name##_; }
  LLDP_ROOT_ROWS(LLDP_ROOT_ROW_OPERATIONS)
#undef LLDP_ROOT_ROW_OPERATIONS

  // Local management addresses: a row per key; its record is written after.
  Zet::Ptr<LocalManagementAddress> localManagementAddressIs(LocalManagementAddress::Key const& key);
  Zet::Ptr<LocalManagementAddress> localManagementAddress(LocalManagementAddress::Key const& key) const {
    return localManagementAddress_[key];
  }
  Zet::Ptr<LocalManagementAddress> localManagementAddressDel(LocalManagementAddress::Key const& key) {
    return rowDel(localManagementAddress_, key);
  }
  Zet::Ptr<LocalManagementAddress> localManagementAddressDel(RowMap<LocalManagementAddress>::Iterator& it) {
    return rowDel(localManagementAddress_, it);
  }
  void localManagementAddressDelAll() {
    delAll(localManagementAddress_,
           [&](RowMap<LocalManagementAddress>::Iterator& it) { localManagementAddressDel(it); });
  }
  void localManagementAddressNotify(LocalManagementAddress::Key const&) {}
  RowMap<LocalManagementAddress> const& localManagementAddress() const { return localManagementAddress_; }

  // Value records: xIs adds or overwrites in place; a lookup or removal of an
  // absent key gives the default record.
#define LLDP_ROOT_VALUES(X)                                             \
  X(remoteManagementAddress, RemoteManagementAddress)                   \
  X(remoteUnknownTlv, RemoteUnknownTlv)                                 \
  X(remoteUnknownOrgDefTlv, RemoteUnknownOrgDefTlv)                     \
  X(remotePortAndProtocolVlan, RemotePortAndProtocolVlan)               \
  X(remoteVlanName, RemoteVlanName)                                     \
  X(remoteProtocolIdentityInfo, RemoteProtocolIdentityInfo)
#define LLDP_ROOT_VALUE_OPERATIONS(name, Record)                                                   \
  void name##Is(Record const& value) { valueIs(name##_, value); }                                 \
  Record name(Record::Key const& key) const { return valueAt(name##_, key); }                     \
  Record name##Del(Record::Key const& key) { return valueDel(name##_, key); }                     \
  Record name##Del(ValueMap<ValueHolder<Record>>::Iterator& it) { return valueDel(name##_, it); } \
  void name##DelAll() {                                                                           \
    delAll(name##_, [&](ValueMap<ValueHolder<Record>>::Iterator& it) { name##Del(it); });         \
  }                                                                                               \
  void name##Notify(Record::Key const&) {}                                                        \
  ValueMap<ValueHolder<Record>> const& name() const { return name##_; }
  LLDP_ROOT_VALUES(LLDP_ROOT_VALUE_OPERATIONS)
#undef LLDP_ROOT_VALUE_OPERATIONS

  // The reactors the Root owns. The host makes one PortStatusSm per port it
  // numbers, keyed by the port's name, and calls doClose() on it before
  // portStatusSmDel: removing a reactor leaves its neighbours' rows behind.
  using PortStatusSms = Zet::HashMap<Ondo::IntfId, PortStatusSm>;
  // The reactor of `portStatus`'s port, made if there is none; raises the
  // name-in-use exception when the one there has other parameters.
  Zet::Ptr<PortStatusSm> portStatusSmIs(Interface::EthPortId ethPortId,
                                        Zet::Ptr<Lldp::PortStatus const> const& portStatus,
                                        Zet::Ptr<Root> const& root);
  Zet::Ptr<PortStatusSm> portStatusSm(Ondo::IntfId const& intfId) const { return portStatusSm_[intfId]; }
  // Takes the reactor out, nothing more: no doClose(), no deactivation.
  Zet::Ptr<PortStatusSm> portStatusSmDel(Ondo::IntfId const& intfId) { return portStatusSm_.deleteMember(intfId); }
  void portStatusSmDelAll();
  void portStatusSmNotify(Ondo::IntfId const&) {}
  PortStatusSms const& portStatusSm() const { return portStatusSm_; }

  // The same four arguments give the reactor there back; other arguments
  // replace it without a word, and the old one is only released, not switched off.
  Zet::Ptr<LldpSm> lldpSmIs(Zet::Ptr<Lldp::AllStatus const> const& status,
                            Zet::Ptr<Lldp::LocalSystem const> const& localSystem,
                            Zet::Ptr<Lldp::Config const> const& config, Zet::Ptr<Root> const& root);
  // Takes the reactor out and deactivates it; null when there was none.
  Zet::Ptr<LldpSm> lldpSmDel();
  Zet::Ptr<LldpSm> const& lldpSm() const { return lldpSm_; }

 private:
  explicit Root(Zet::Name name) : name_(std::move(name)) {}

  template <class Row, class Key, class Inbound>
  Zet::Ptr<Row> rowIs(RowMap<Row>& map, Key const& key, Zet::Ptr<Inbound const> const& ptr);
  template <class Map, class K>
  static auto rowDel(Map& map, K const& keyOrIterator) -> decltype(map.memberDel(keyOrIterator)) {
    auto row = map.memberDel(keyOrIterator);
    if (row) {
      row->parentIs(nullptr);
    }
    return row;
  }
  // Walks from the smallest key, deleting at the iterator; the iterator
  // finds its way on through the changed tree.
  template <class Map, class Del>
  static void delAll(Map& map, Del del) {
    auto it = map.iteratorMutable();
    while (!it.atEnd()) {
      del(it);
      it.advance();
    }
  }
  template <class Map>
  static void delAll(Map& map) {
    delAll(map, [&](auto& it) { map.memberDel(it); });
  }
  template <class Record>
  static void valueIs(ValueMap<ValueHolder<Record>>& map, Record const& value) {
    if (auto holder = map[value.key]) {
      // Overwritten in place, key and all: the collection's version stays.
      holder->value = value;
      return;
    }
    auto holder = Zet::makePtr<ValueHolder<Record>>(value);
    holder->hasNotificationActiveIs(true);
    map.memberIs(holder);
  }
  template <class Record>
  static Record valueAt(ValueMap<ValueHolder<Record>> const& map, typename Record::Key const& key) {
    auto const holder = map[key];
    return holder ? holder->value : Record();
  }
  template <class Record, class K>
  static Record valueDel(ValueMap<ValueHolder<Record>>& map, K const& keyOrIterator) {
    auto const holder = map.memberDel(keyOrIterator);
    return holder ? holder->value : Record();
  }

  Zet::Name name_;
  // In the MIB's order of the tables they serve; destroyed in reverse.
  RowMap<PortConfig> portConfig_;
  RowMap<PortStatus> portStatus_;
  RowMap<LocalPort> localPort_;
  RowMap<LocalManagementAddress> localManagementAddress_;
  RowMap<RemoteSystem> remoteSystem_;
  ValueMap<ZetRemoteManagementAddress> remoteManagementAddress_;
  ValueMap<ZetRemoteUnknownTlv> remoteUnknownTlv_;
  ValueMap<ZetRemoteUnknownOrgDefTlv> remoteUnknownOrgDefTlv_;
  ValueMap<ZetRemotePortAndProtocolVlan> remotePortAndProtocolVlan_;
  ValueMap<ZetRemoteVlanName> remoteVlanName_;
  ValueMap<ZetRemoteProtocolIdentityInfo> remoteProtocolIdentityInfo_;
  // The reactors' map last: it is the first member to go.
  Zet::Ptr<LldpSm> lldpSm_;
  PortStatusSms portStatusSm_{4};
};

// What the reflective construction calls; the same as Root::RootIs.
Zet::Ptr<Root> rootFactory(Zet::Name name);

}  // namespace Lldp::Snmp
