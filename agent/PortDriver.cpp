#include "PortDriver.h"

#include "PortStatusSm.h"
#include "Statebase/Statebase.h"
#include "Zet/Assert.h"

PortDriver::PortDriver() : root_(Lldp::Snmp::Root::RootIs("root")) { Statebase::entityIs(rootPath, root_); }

PortDriver::~PortDriver() {
  if (followed_) {
    followed_->portObserverIs(nullptr);
  }
  if (Statebase::entity(rootPath) == root_) {
    Statebase::entityDel(rootPath);
  }
}

void PortDriver::follow(Reconciler& reconciler) {
  ZET_ASSERT(!followed_ && reconciler.status());
  lldpSm_ = root_->lldpSmIs(reconciler.status(), reconciler.localSystem(), reconciler.config(), root_);
  for (auto const& port : reconciler.ports()) {
    onPortJoined(port);
  }
  reconciler.portObserverIs(this);
  followed_ = &reconciler;
}

void PortDriver::onPortJoined(Reconciler::Port const& port) {
  root_->portConfigIs(port.number, port.portConfig);
  root_->portStatusIs(port.number, port.portStatus);
  root_->localPortIs(port.number, port.localPort);
  root_->portStatusSmIs(port.number, port.portStatus, root_);
  lldpSm_->handleLocalPort(port.name, port.number);
}

void PortDriver::onPortLeaving(Reconciler::Port const& port) {
  // Closed while the port still lists its neighbours: the close walks that list.
  if (auto const sm = root_->portStatusSm(port.name)) {
    sm->doClose();
    root_->portStatusSmDel(port.name);
  }
  root_->portConfigDel(port.number);
  root_->portStatusDel(port.number);
  root_->localPortDel(port.number);
}

void PortDriver::onPortLeft(Reconciler::Port const& port) { lldpSm_->handleLocalPort(port.name, port.number); }
