#define ZET_UNIT "LldpSnmp"

#include "Root.h"

#include <string>
#include <utility>

#include "Reactor.h"
#include "Zet/Exception.h"
#include "Zet/TextForm.h"

namespace Lldp::Snmp {

Zet::Ptr<Root> Root::RootIs(Zet::Name name) {
  Zet::Ptr<Root> root(new Root(std::move(name)));
  root->hasNotificationActiveIs(true);
  return root;
}

Zet::Ptr<Root> rootFactory(Zet::Name name) { return Root::RootIs(std::move(name)); }

Root::~Root() {
  // Rows first, so that no row outlives the Root still pointing at it as parent.
  portConfigDelAll();
  portStatusDelAll();
  localPortDelAll();
  localManagementAddressDelAll();
  remoteSystemDelAll();
  portStatusSmDelAll();
  lldpSmDel();
}

template <class Row, class Key, class Inbound>
Zet::Ptr<Row> Root::rowIs(RowMap<Row>& map, Key const& key, Zet::Ptr<Inbound const> const& ptr) {
  if (auto existing = map[key]) {
    if (existing->ptr() == ptr) {
      return existing;
    }
    Zet::throwNameInUseException(
        "Reinstantiating the entity with fullName " + Zet::valueToStrep(existing->fullName()).stdString() +
        " where constructor parameter attribute 'ptr' has a different value of " +
        Zet::valueToStrep(ptr).stdString() + " than the current value of " +
        Zet::valueToStrep(existing->ptr()).stdString() + " not allowed");
  }
  auto row = Zet::makePtr<Row>(key, ptr);
  row->hasNotificationActiveIs(true);
  map.memberIs(row);
  row->parentIs(this);
  return row;
}

#define LLDP_ROOT_ROW_IS(name, Row, Key, Inbound)                                              \
  Zet::Ptr<Row> Root::name##Is(Key const& key, Zet::Ptr<Inbound const> const& ptr) { \
    return rowIs<Row>(name##_, key, ptr);                                     \
  }
LLDP_ROOT_ROWS(LLDP_ROOT_ROW_IS)
#undef LLDP_ROOT_ROW_IS

Zet::Ptr<LocalManagementAddress> Root::localManagementAddressIs(LocalManagementAddress::Key const& key) {
  if (auto existing = localManagementAddress_[key]) {
    return existing;
  }
  // The record starts as the default one; the key is not copied into it.
  auto row = Zet::makePtr<LocalManagementAddress>(key);
  row->hasNotificationActiveIs(true);
  localManagementAddress_.memberIs(row);
  row->parentIs(this);
  return row;
}

Zet::Ptr<PortStatusSm> Root::portStatusSmIs(Interface::EthPortId ethPortId,
                                            Zet::Ptr<Lldp::PortStatus const> const& portStatus,
                                            Zet::Ptr<Root> const& root) {
  Ondo::IntfId const intfId = portStatus->intfId();
  if (auto existing = portStatusSm_[intfId]) {
    if (existing->ethPortId() != ethPortId) {
      throwReinstantiating("_ethPortId", Interface::valueToStrep(ethPortId),
                           Interface::valueToStrep(existing->ethPortId()));
    }
    if (existing->portStatus() != portStatus) {
      throwReinstantiating("_portStatus", Zet::valueToStrep(portStatus), Zet::valueToStrep(existing->portStatus()));
    }
    if (existing->root() != root) {
      throwReinstantiating("_root", Zet::valueToStrep(root), Zet::valueToStrep(existing->root()));
    }
    return existing;
  }
  auto sm = PortStatusSm::PortStatusSmIs(ethPortId, portStatus, root);
  portStatusSm_.newMember(intfId, sm);
  sm->hasNotificationActiveIs(true);
  return sm;
}

void Root::portStatusSmDelAll() {
  // The walk survives the deletion of the member it stands on.
  for (auto it = portStatusSm_.iterator(); !it.atEnd(); it.advance()) {
    portStatusSmDel(it.currNodeMaybeStale().first);
  }
}

Zet::Ptr<LldpSm> Root::lldpSmIs(Zet::Ptr<Lldp::AllStatus const> const& status,
                                Zet::Ptr<Lldp::LocalSystem const> const& localSystem,
                                Zet::Ptr<Lldp::Config const> const& config, Zet::Ptr<Root> const& root) {
  if (lldpSm_ && lldpSm_->status() == status && lldpSm_->localSystem() == localSystem &&
      lldpSm_->config() == config && lldpSm_->root() == root) {
    return lldpSm_;
  }
  // WARNING: unlike portStatusSmIs, other arguments replace the reactor
  // without an exception, and the old one is only released. Keep it so.
  lldpSm_ = LldpSm::LldpSmIs(status, localSystem, config, root);
  lldpSm_->hasNotificationActiveIs(true);
  return lldpSm_;
}

Zet::Ptr<LldpSm> Root::lldpSmDel() {
  auto sm = std::exchange(lldpSm_, nullptr);
  if (sm) {
    sm->hasNotificationActiveIs(false);
  }
  return sm;
}

}  // namespace Lldp::Snmp
