#include "PortDriver.h"

#include <algorithm>

#include "Statebase/Statebase.h"

namespace {
bool samePort(Reconciler::Port const& a, Reconciler::Port const& b) {
  return a.number == b.number && a.portConfig == b.portConfig && a.portStatus == b.portStatus &&
         a.localPort == b.localPort;
}
}  // namespace

PortDriver::PortDriver() : root_(Lldp::Snmp::Root::RootIs("root")) { Statebase::entityIs(rootPath, root_); }

PortDriver::~PortDriver() {
  if (Statebase::entity(rootPath) == root_) {
    Statebase::entityDel(rootPath);
  }
}

void PortDriver::sync(std::vector<Reconciler::Port> const& ports) {
  auto const known = [](std::vector<Reconciler::Port> const& list, Reconciler::Port const& port) {
    return std::any_of(list.begin(), list.end(), [&](Reconciler::Port const& p) { return samePort(p, port); });
  };
  // Removals first: a port that changed its number frees the old one before taking the new.
  for (auto const& port : ports_) {
    if (!known(ports, port)) {
      remove(port);
    }
  }
  for (auto const& port : ports) {
    if (!known(ports_, port)) {
      add(port);
    }
  }
  ports_ = ports;
}

void PortDriver::add(Reconciler::Port const& port) {
  root_->portConfigIs(port.number, port.portConfig);
  root_->portStatusIs(port.number, port.portStatus);
  root_->localPortIs(port.number, port.localPort);
}

void PortDriver::remove(Reconciler::Port const& port) {
  root_->portConfigDel(port.number);
  root_->portStatusDel(port.number);
  root_->localPortDel(port.number);
}
