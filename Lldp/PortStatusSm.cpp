#define ZET_UNIT "LldpSnmp"

#include "PortStatusSm.h"

#include "MirrorKeys.h"
#include "Ringlog/Ringlog.h"
#include "Root.h"
#include "Zet/Assert.h"
#include "Zet/TextForm.h"
#include "Zet/Trace.h"

namespace Lldp::Snmp {

Zet::Ptr<PortStatusSm> PortStatusSm::PortStatusSmIs(Interface::EthPortId ethPortId,
                                                    Zet::Ptr<Lldp::PortStatus const> const& portStatus,
                                                    Zet::Ptr<Root> const& root) {
  auto sm = Zet::makePtr<PortStatusSm>(Passkey{}, ethPortId, portStatus, root);
  // The first scan belongs to construction; it runs here, where a counted
  // reference already holds the object that the handlers pass around.
  sm->handleInitialized();
  sm->hasNotificationActiveIs(true);
  return sm;
}

PortStatusSm::PortStatusSm(Passkey, Interface::EthPortId ethPortId, Zet::Ptr<Lldp::PortStatus const> const& portStatus,
                           Zet::Ptr<Root> const& root)
    : ethPortId_(ethPortId), portStatus_(portStatus, this), root_(root), remoteSystemSm_(4) {}

PortStatusSm::~PortStatusSm() {
  zetDoZombieReactors(true);
  portStatus_.ownerClear();
  remoteSystemSmDelAll();
}

Ondo::IntfId PortStatusSm::fwkKey() const {
  auto const port = portStatus();
  return port ? port->intfId() : Ondo::IntfId();
}

void PortStatusSm::portStatusIs(Zet::Ptr<Lldp::PortStatus const> const& portStatus) {
  portStatus_.notifierIs(portStatus, this, zetMarkedForDeletion());
}

Zet::Ptr<Lldp::PortStatus const> PortStatusSm::portStatusDel() { return portStatus_.notifierDel(); }

void PortStatusSm::hasNotificationActiveIs(bool b) {
  if (!notificationActiveIs(*this, b, portStatus_)) {
    return;
  }
  for (auto it = remoteSystemSm_.iterator(); !it.atEnd(); it.advance()) {
    it.currNodeMaybeStale().second->hasNotificationActiveIs(b);
  }
}

void PortStatusSm::zetDoZombieReactors(bool z) { doZombieReactors(*this, z, portStatus_); }

void PortStatusSm::handleInitialized() {
  Ringlog::BlockTimer const timer("void Lldp::Snmp::PortStatusSm::handleInitialized()");
  ZET_TRACE(_defaultTraceHandle(), 1) << "PortStatusSm::handleInitialized( " << intfId() << ", " << ethPortId_
                                      << " )";
  ringlogWrite(1, "PortStatusSm::handleInitialized( ", intfId(), ", ", ethPortId_, " )");
  Zet::Ptr<PortStatusSm> const self(this);
  auto const port = portStatus();
  auto const& neighbours = port->remoteSystem();
  for (auto it = neighbours.begin(); it != neighbours.end(); ++it) {
    doAddRemoteSystem(self, it);
  }
}

void PortStatusSm::handleRemoteSystem(std::int32_t index) {
  Ringlog::BlockTimer const timer("void Lldp::Snmp::PortStatusSm::handleRemoteSystem(S32)");
  ZET_TRACE(_defaultTraceHandle(), 2) << "PortStatusSm::handleRemoteSystem( " << intfId() << ", " << ethPortId_
                                      << ", " << index << " )";
  ringlogWrite(2, "PortStatusSm::handleRemoteSystem( ", intfId(), ", ", ethPortId_, ", ", index, " )");
  Zet::Ptr<PortStatusSm> const self(this);
  auto const port = portStatus();
  auto const& neighbours = port->remoteSystem();
  auto const it = neighbours.find(index);
  if (it != neighbours.end() && it->second->index() == index) {
    doAddRemoteSystem(self, it);
  } else {
    doRemoveRemoteSystem(self, index);
  }
}

void PortStatusSm::doClose() {
  ZET_TRACE(_defaultTraceHandle(), 1) << "PortStatusSm::doClose( " << intfId() << ", " << ethPortId_ << " )";
  ringlogWrite(1, "PortStatusSm::doClose( ", intfId(), ", ", ethPortId_, " )");
  Zet::Ptr<PortStatusSm> const self(this);
  // Over what the port lists, not over remoteSystemSm: the port's collection
  // is left as it is.
  auto const port = portStatus();
  for (auto const& [index, neighbour] : port->remoteSystem()) {
    doRemoveRemoteSystem(self, index);
  }
}

Zet::Ptr<RemoteSystemSm> PortStatusSm::remoteSystemSmIs(std::int32_t index, Interface::EthPortId ethPortId,
                                                        Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem,
                                                        Zet::Ptr<Root> const& root) {
  if (auto existing = remoteSystemSm_[index]) {
    if (existing->ethPortId() != ethPortId) {
      throwReinstantiating("_ethPortId", Interface::valueToStrep(ethPortId),
                           Interface::valueToStrep(existing->ethPortId()));
    }
    if (existing->remoteSystem() != remoteSystem) {
      throwReinstantiating("_remoteSystem", Zet::valueToStrep(remoteSystem), Zet::valueToStrep(existing->remoteSystem()));
    }
    if (existing->root() != root) {
      throwReinstantiating("_root", Zet::valueToStrep(root), Zet::valueToStrep(existing->root()));
    }
    return existing;
  }
  auto sm = RemoteSystemSm::RemoteSystemSmIs(index, ethPortId, remoteSystem, root);
  remoteSystemSm_.newMember(index, sm);
  sm->hasNotificationActiveIs(true);
  return sm;
}

void PortStatusSm::remoteSystemSmDelAll() {
  // The walk survives the deletion of the member it stands on.
  for (auto it = remoteSystemSm_.iterator(); !it.atEnd(); it.advance()) {
    remoteSystemSmDel(it.currNodeMaybeStale().first);
  }
}

void doAddRemoteSystem(Zet::Ptr<PortStatusSm> const& sm, PortStatusSm::RemoteSystemIterator const& it) {
  Zet::Ptr<Lldp::RemoteSystem const> const neighbour = it->second;
  RemoteSystemKey const key(sm->ethPortId(), neighbour->index());
  ZET_TRACE(_defaultTraceHandle(), 2) << "Adding RemoteSystem with key " << key;
  ringlogWrite(2, "Adding RemoteSystem with key ", key);
  // The row first: the new state machine's first scan fills its sub-tables.
  sm->root()->remoteSystemIs(key, neighbour);
  sm->remoteSystemSmIs(neighbour->index(), sm->ethPortId(), neighbour, sm->root());
}

void doRemoveRemoteSystem(Zet::Ptr<PortStatusSm> const& sm, std::int32_t index) {
  RemoteSystemKey const key(sm->ethPortId(), index);
  ZET_TRACE(_defaultTraceHandle(), 2) << "Removing RemoteSystem with key " << key;
  ringlogWrite(2, "Removing RemoteSystem with key ", key);
  // A removal of a neighbour never taken in breaks the delivery contract;
  // there is nothing sane to remove.
  auto const closing = sm->remoteSystemSm(index);
  ZET_ASSERT(closing);
  closing->doClose();
  sm->remoteSystemSmDel(index);
  sm->root()->remoteSystemDel(key);
}

}  // namespace Lldp::Snmp
