#include "PortDriver.h"

#include <algorithm>
#include <iterator>

#include "PortStatusSm.h"
#include "Statebase/Statebase.h"
#include "Zet/Assert.h"

namespace {
bool samePort(Reconciler::Port const& a, Reconciler::Port const& b) {
  return a.name == b.name && a.number == b.number && a.portConfig == b.portConfig &&
         a.portStatus == b.portStatus && a.localPort == b.localPort;
}
}  // namespace

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
  sync(reconciler.ports());
  reconciler.portObserverIs(this);
  followed_ = &reconciler;
}

void PortDriver::sync(std::vector<Reconciler::Port> const& ports) {
  auto const known = [](std::vector<Reconciler::Port> const& list, Reconciler::Port const& port) {
    return std::any_of(list.begin(), list.end(), [&](Reconciler::Port const& p) { return samePort(p, port); });
  };
  // Removals first: a port that changed its number frees the old one before taking the new.
  std::vector<Reconciler::Port> gone;
  std::copy_if(ports_.begin(), ports_.end(), std::back_inserter(gone),
               [&](Reconciler::Port const& port) { return !known(ports, port); });
  for (auto const& port : gone) {
    onPortLeaving(port);
    onPortLeft(port);
  }
  for (auto const& port : ports) {
    if (!known(ports_, port)) {
      onPortJoined(port);
    }
  }
}

void PortDriver::onPortJoined(Reconciler::Port const& port) {
  root_->portConfigIs(port.number, port.portConfig);
  root_->portStatusIs(port.number, port.portStatus);
  root_->localPortIs(port.number, port.localPort);
  root_->portStatusSmIs(port.number, port.portStatus, root_);
  // Without an LldpSm yet, its first scan finds the port through the rows above.
  if (lldpSm_) {
    lldpSm_->handleLocalPort(port.name, port.number);
  }
  ports_.push_back(port);
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

void PortDriver::onPortLeft(Reconciler::Port const& port) {
  if (lldpSm_) {
    lldpSm_->handleLocalPort(port.name, port.number);
  }
  std::erase_if(ports_, [&](Reconciler::Port const& p) { return samePort(p, port); });
}
