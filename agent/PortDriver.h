#pragma once
// The host's side of the mirror: the Root at "snmp/lldp/root", the plug-in's
// LldpSm, and for every port of the LLDP state the rows that pair its number
// with its entities and the PortStatusSm that mirrors its neighbours. Only
// here is a port's interface paired with its port number.
//
// A port joins with its three rows, then its PortStatusSm, then
// LldpSm::handleLocalPort once it is in the local system's localPort. It
// leaves with PortStatusSm::doClose() while the port still lists its
// neighbours (the reactor's removal alone would leave their rows behind), the
// reactor's and the rows' removal, then handleLocalPort once it has left
// localPort. The driver follows the Reconciler and is told of each port at
// those moments, inside the apply: only then can a port that leaves and comes
// back under its name in one apply be told apart from one that stayed.
//
// The driver makes and drives the mirror through the plug-in's type
// descriptions, by attribute name: it calls none of the mirror's operations itself.

#include "LldpSm.h"
#include "Reconciler.h"
#include "Root.h"
#include "Zet/Ptr.h"

class PortDriver : private Reconciler::PortObserver {
 public:
  static constexpr char const* rootPath = Lldp::Snmp::Root::path;

  // Makes the Root and mounts it, so that the plug-in's tables find it.
  PortDriver();
  // Stops following; unmounts the Root if it is still the one this mounted.
  // The plug-in keeps the Root it was handed, and its reactors with it.
  ~PortDriver() override;
  PortDriver(PortDriver const&) = delete;
  PortDriver& operator=(PortDriver const&) = delete;

  Zet::Ptr<Lldp::Snmp::Root> const& root() const { return root_; }
  // Null until follow().
  Zet::Ptr<Lldp::Snmp::LldpSm> const& lldpSm() const { return lldpSm_; }

  // Once, after the reconciler's first apply and before the plug-in's modules
  // are initialised: makes the LldpSm on the reconciler's three entities
  // (whose first scan hands the Root to the plug-in, once per process), brings
  // in every port the reconciler holds, and from then on follows the ports
  // that its applies make join and leave. `reconciler` must outlive this.
  void follow(Reconciler& reconciler);

 private:
  void onPortLeaving(Reconciler::Port const& port) override;
  void onPortLeft(Reconciler::Port const& port) override;
  void onPortJoined(Reconciler::Port const& port) override;

  Zet::Ptr<Lldp::Snmp::Root> root_;
  Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm_;
  Reconciler* followed_ = nullptr;
};
