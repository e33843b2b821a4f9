#define ZET_UNIT "LldpSnmp"

#include "RemoteSystemSm.h"

#include <cstdint>
#include <type_traits>

#include "RemoteRecords.h"
#include "Ringlog/Ringlog.h"
#include "Root.h"
#include "Zet/Trace.h"

namespace Lldp::Snmp {

namespace {

// What tells the six collections apart. Every walk takes them in the order of
// `allCollections` below, which is the order of the MIB's tables.
//
// To add a collection: a descriptor like these, its handle/doAdd/doRemove
// forwarders at the end of this file, and its place in `allCollections`.
struct ManagementAddressCollection {
  using Record = RemoteManagementAddress;
  static constexpr char const* handlerTimer =
      "void Lldp::Snmp::RemoteSystemSm::handleManagementAddress(const Lldp::ManagementAddress::Key&)";
  static constexpr char const* handlerText = "RemoteSystemSm::handleManagementAddress( ";
  static constexpr char const* addText = "Adding ManagementAddress with key ";
  static constexpr char const* addRinglogText = "Adding ManagementAddress with key ";
  static constexpr int addRinglogLevel = 2;
  static constexpr char const* removeText = "Removing ManagementAddress with key ";
  static constexpr char const* removeRinglogText = "Removing ManagementAddress with key ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.managementAddress(); }
  static void is(Root& root, Record const& value) { root.remoteManagementAddressIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remoteManagementAddressDel(key); }
};

struct UnknownTlvCollection {
  using Record = RemoteUnknownTlv;
  static constexpr char const* handlerTimer = "void Lldp::Snmp::RemoteSystemSm::handleUnknownTlv(U32)";
  static constexpr char const* handlerText = "RemoteSystemSm::handleUnknownTlv( ";
  static constexpr char const* addText = "Adding UnknownTlv with key ";
  static constexpr char const* addRinglogText = "Adding UnknownTlv ";
  static constexpr int addRinglogLevel = 3;
  static constexpr char const* removeText = "Removing UnknownTlv with key ";
  static constexpr char const* removeRinglogText = "Removing UnknownTlv ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.unknownTlv(); }
  static void is(Root& root, Record const& value) { root.remoteUnknownTlvIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remoteUnknownTlvDel(key); }
};

struct UnknownOrgDefTlvCollection {
  using Record = RemoteUnknownOrgDefTlv;
  static constexpr char const* handlerTimer =
      "void Lldp::Snmp::RemoteSystemSm::handleUnknownOrgDefTlv(const Lldp::UnknownOrgDefTlv::Key&)";
  static constexpr char const* handlerText = "RemoteSystemSm::handleUnknownOrgDefTlv( ";
  static constexpr char const* addText = "Adding UnknownOrgDefTlv with key ";
  static constexpr char const* addRinglogText = "Adding UnknownOrgDefTlv ";
  static constexpr int addRinglogLevel = 2;
  static constexpr char const* removeText = "Removing UnknownOrgDefTlv with key ";
  static constexpr char const* removeRinglogText = "Removing UnknownOrgDefTlv ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.unknownOrgDefTlv(); }
  static void is(Root& root, Record const& value) { root.remoteUnknownOrgDefTlvIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remoteUnknownOrgDefTlvDel(key); }
};

struct PortAndProtocolVlanCollection {
  using Record = RemotePortAndProtocolVlan;
  static constexpr char const* handlerTimer =
      "void Lldp::Snmp::RemoteSystemSm::handlePortAndProtocolVlan(Bridging::VlanIdOrNone)";
  static constexpr char const* handlerText = "RemoteSystemSm::handlePortAndProtocolVlan( ";
  static constexpr char const* addText = "Adding PortAndProtocolVlan with key ";
  static constexpr char const* addRinglogText = "Adding PortAndProtocolVlan ";
  static constexpr int addRinglogLevel = 2;
  static constexpr char const* removeText = "Removing PortAndProtocolVlan with key ";
  static constexpr char const* removeRinglogText = "Removing PortAndProtocolVlan ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.portAndProtocolVlan(); }
  static void is(Root& root, Record const& value) { root.remotePortAndProtocolVlanIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remotePortAndProtocolVlanDel(key); }
};

struct VlanNameCollection {
  using Record = RemoteVlanName;
  static constexpr char const* handlerTimer = "void Lldp::Snmp::RemoteSystemSm::handleVlanName(Bridging::VlanId)";
  static constexpr char const* handlerText = "RemoteSystemSm::handleVlanName( ";
  static constexpr char const* addText = "Adding VlanName with key ";
  static constexpr char const* addRinglogText = "Adding VlanName ";
  static constexpr int addRinglogLevel = 2;
  static constexpr char const* removeText = "Removing VlanName with key ";
  static constexpr char const* removeRinglogText = "Removing VlanName ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.vlanName(); }
  static void is(Root& root, Record const& value) { root.remoteVlanNameIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remoteVlanNameDel(key); }
};

struct ProtocolIdentityInfoCollection {
  using Record = RemoteProtocolIdentityInfo;
  static constexpr char const* handlerTimer = "void Lldp::Snmp::RemoteSystemSm::handleProtocolIdentityInfo(S32)";
  static constexpr char const* handlerText = "RemoteSystemSm::handleProtocolIdentityInfo( ";
  static constexpr char const* addText = "Adding ProtocolIdentityInfo with key ";
  static constexpr char const* addRinglogText = "Adding ProtocolIdentityInfo ";
  static constexpr int addRinglogLevel = 2;
  static constexpr char const* removeText = "Removing ProtocolIdentityInfo with key ";
  static constexpr char const* removeRinglogText = "Removing ProtocolIdentityInfo ";
  static auto const& entries(Lldp::RemoteSystem const& neighbour) { return neighbour.protocolIdentityInfo(); }
  static void is(Root& root, Record const& value) { root.remoteProtocolIdentityInfoIs(value); }
  static void del(Root& root, Record::Key const& key) { root.remoteProtocolIdentityInfoDel(key); }
};

// Calls `f(Collection{})` for each collection, in table order.
template <class F>
void allCollections(F&& f) {
  f(ManagementAddressCollection{});
  f(UnknownTlvCollection{});
  f(UnknownOrgDefTlvCollection{});
  f(PortAndProtocolVlanCollection{});
  f(VlanNameCollection{});
  f(ProtocolIdentityInfoCollection{});
}

// The mirror key: this neighbour's port and index in front of the inbound key's fields.
template <class Collection, class InboundKey>
typename Collection::Record::Key mirrorKey(RemoteSystemSm const& sm, InboundKey const& key) {
  if constexpr (std::is_same_v<InboundKey, Lldp::UnknownOrgDefTlv::Key>) {
    return {sm.ethPortId(), sm.index(), key.oui, key.subtype, key.index};
  } else {
    return {sm.ethPortId(), sm.index(), key};
  }
}

template <class Collection, class Entry>
void doAdd(Zet::Ptr<RemoteSystemSm> const& sm, Entry const& entry) {
  auto const key = mirrorKey<Collection>(*sm, Lldp::recordKey(entry));
  ZET_TRACE(_defaultTraceHandle(), 2) << Collection::addText << key;
  ringlogWrite(Collection::addRinglogLevel, Collection::addRinglogText, key);
  // No comparison with what the mirror holds: the record is overwritten in
  // place, so a walk standing on it stays valid.
  Collection::is(*sm->root(), typename Collection::Record(key, sm->remoteSystem(), entry));
}

template <class Collection, class InboundKey>
void doRemove(Zet::Ptr<RemoteSystemSm> const& sm, InboundKey const& inboundKey) {
  auto const key = mirrorKey<Collection>(*sm, inboundKey);
  ZET_TRACE(_defaultTraceHandle(), 2) << Collection::removeText << key;
  ringlogWrite(2, Collection::removeRinglogText, key);
  Collection::del(*sm->root(), key);
}

// `tracedIndex` is what the trace shows as the neighbour's index.
template <class Collection, class InboundKey>
void handle(RemoteSystemSm& sm, InboundKey const& key, std::int32_t tracedIndex) {
  Ringlog::BlockTimer const timer(Collection::handlerTimer);
  ZET_TRACE(_defaultTraceHandle(), 2) << Collection::handlerText << sm.ethPortId() << ", " << tracedIndex << ", "
                                      << key << " )";
  if constexpr (std::is_same_v<Collection, ManagementAddressCollection>) {
    ringlogWrite(2, "RemoteSystemSm::handleManagementAddress() ", sm.ethPortId(), " ", sm.index(), " ", key);
  } else {
    ringlogWrite(2, Collection::handlerText, sm.ethPortId(), ", ", tracedIndex, ", ", key, " )");
  }
  Zet::Ptr<RemoteSystemSm> const self(&sm);
  auto const& entries = Collection::entries(*sm.remoteSystem());
  auto const it = entries.find(key);
  if (it != entries.end() && it->first == key) {
    doAdd<Collection>(self, it->second);
  } else {
    doRemove<Collection>(self, key);
  }
}

}  // namespace

Zet::Ptr<RemoteSystemSm> RemoteSystemSm::RemoteSystemSmIs(std::int32_t index, Interface::EthPortId ethPortId,
                                                          Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem,
                                                          Zet::Ptr<Root> const& root) {
  auto sm = Zet::makePtr<RemoteSystemSm>(Passkey{}, index, ethPortId, remoteSystem, root);
  // The first scan belongs to construction; it runs here, where a counted
  // reference already holds the object that the handlers pass around.
  sm->handleInitialized();
  sm->hasNotificationActiveIs(true);
  return sm;
}

RemoteSystemSm::RemoteSystemSm(Passkey, std::int32_t index, Interface::EthPortId ethPortId,
                               Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem, Zet::Ptr<Root> const& root)
    : index_(index), ethPortId_(ethPortId), remoteSystem_(remoteSystem, this), root_(root) {}

RemoteSystemSm::~RemoteSystemSm() {
  zetDoZombieReactors(true);
  remoteSystem_.ownerClear();
}

void RemoteSystemSm::remoteSystemIs(Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem) {
  remoteSystem_.notifierIs(remoteSystem, this, zetMarkedForDeletion());
}

Zet::Ptr<Lldp::RemoteSystem const> RemoteSystemSm::remoteSystemDel() { return remoteSystem_.notifierDel(); }

void RemoteSystemSm::hasNotificationActiveIs(bool b) { notificationActiveIs(*this, b, remoteSystem_); }

void RemoteSystemSm::zetDoZombieReactors(bool z) { doZombieReactors(*this, z, remoteSystem_); }

void RemoteSystemSm::handleInitialized() {
  Ringlog::BlockTimer const timer("void Lldp::Snmp::RemoteSystemSm::handleInitialized()");
  ZET_TRACE(_defaultTraceHandle(), 1) << "RemoteSystemSm::handleInitialized( " << ethPortId_ << ", " << index_
                                      << " )";
  ringlogWrite(1, "RemoteSystemSm::handleInitialized( ", ethPortId_, ", ", index_, " )");
  Zet::Ptr<RemoteSystemSm> const self(this);
  auto const neighbour = remoteSystem();
  allCollections([&](auto collection) {
    using Collection = decltype(collection);
    for (auto const& [key, entry] : Collection::entries(*neighbour)) {
      doAdd<Collection>(self, entry);
    }
  });
}

void RemoteSystemSm::doClose() {
  ZET_TRACE(_defaultTraceHandle(), 1) << "RemoteSystemSm::doClose( " << ethPortId_ << ", " << index_ << " )";
  ringlogWrite(1, "RemoteSystemSm::doClose( ", ethPortId_, ", ", index_, " )");
  Zet::Ptr<RemoteSystemSm> const self(this);
  auto const neighbour = remoteSystem();
  allCollections([&](auto collection) {
    using Collection = decltype(collection);
    for (auto const& [key, entry] : Collection::entries(*neighbour)) {
      doRemove<Collection>(self, key);
    }
  });
}

void RemoteSystemSm::handleManagementAddress(Lldp::ManagementAddress::Key const& key) {
  handle<ManagementAddressCollection>(*this, key, index_);
}
void RemoteSystemSm::handleUnknownTlv(std::uint32_t type) { handle<UnknownTlvCollection>(*this, type, index_); }
void RemoteSystemSm::handleUnknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key const& key) {
  handle<UnknownOrgDefTlvCollection>(*this, key, index_);
}
void RemoteSystemSm::handlePortAndProtocolVlan(Bridging::VlanIdOrNone portAndProtocolVlanId) {
  handle<PortAndProtocolVlanCollection>(*this, portAndProtocolVlanId, index_);
}
void RemoteSystemSm::handleVlanName(Bridging::VlanId vlanId) { handle<VlanNameCollection>(*this, vlanId, index_); }
// WARNING: the argument hides the neighbour's index, and the trace has always
// shown it in that place too. The mirror key still uses the neighbour's.
void RemoteSystemSm::handleProtocolIdentityInfo(std::int32_t index) {
  handle<ProtocolIdentityInfoCollection>(*this, index, index);
}

void doAddManagementAddress(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ManagementAddress const& entry) {
  doAdd<ManagementAddressCollection>(sm, entry);
}
void doAddUnknownTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownTlv const& entry) {
  doAdd<UnknownTlvCollection>(sm, entry);
}
void doAddUnknownOrgDefTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownOrgDefTlv const& entry) {
  doAdd<UnknownOrgDefTlvCollection>(sm, entry);
}
void doAddPortAndProtocolVlan(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::PortAndProtocolVlan const& entry) {
  doAdd<PortAndProtocolVlanCollection>(sm, entry);
}
void doAddVlanName(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::VlanName const& entry) {
  doAdd<VlanNameCollection>(sm, entry);
}
void doAddProtocolIdentityInfo(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ProtocolIdentityInfo const& entry) {
  doAdd<ProtocolIdentityInfoCollection>(sm, entry);
}
void doRemoveManagementAddress(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ManagementAddress::Key key) {
  doRemove<ManagementAddressCollection>(sm, key);
}
void doRemoveUnknownTlv(Zet::Ptr<RemoteSystemSm> const& sm, std::uint32_t type) {
  doRemove<UnknownTlvCollection>(sm, type);
}
void doRemoveUnknownOrgDefTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownOrgDefTlv::Key key) {
  doRemove<UnknownOrgDefTlvCollection>(sm, key);
}
void doRemovePortAndProtocolVlan(Zet::Ptr<RemoteSystemSm> const& sm, Bridging::VlanIdOrNone portAndProtocolVlanId) {
  doRemove<PortAndProtocolVlanCollection>(sm, portAndProtocolVlanId);
}
void doRemoveVlanName(Zet::Ptr<RemoteSystemSm> const& sm, Bridging::VlanId vlanId) {
  doRemove<VlanNameCollection>(sm, vlanId);
}
void doRemoveProtocolIdentityInfo(Zet::Ptr<RemoteSystemSm> const& sm, std::int32_t index) {
  doRemove<ProtocolIdentityInfoCollection>(sm, index);
}

}  // namespace Lldp::Snmp
