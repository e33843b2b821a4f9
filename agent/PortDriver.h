#pragma once
// The host's side of the mirror: the Root at "snmp/lldp/root", and for every
// port of the LLDP state the rows that pair its number with its entities.
// Only here is a port's interface paired with its port number.

#include <vector>

#include "Reconciler.h"
#include "Root.h"
#include "Zet/Ptr.h"

class PortDriver {
 public:
  static constexpr char const* rootPath = "snmp/lldp/root";

  // Makes the Root and mounts it, so that the plug-in's tables find it.
  PortDriver();
  // Unmounts the Root if it is still the one this mounted.
  ~PortDriver();
  PortDriver(PortDriver const&) = delete;
  PortDriver& operator=(PortDriver const&) = delete;

  Zet::Ptr<Lldp::Snmp::Root> const& root() const { return root_; }

  // Makes the Root's port rows match `ports`: rows of ports that went are
  // removed, ports that came get their three rows.
  void sync(std::vector<Reconciler::Port> const& ports);

 private:
  void add(Reconciler::Port const& port);
  void remove(Reconciler::Port const& port);

  Zet::Ptr<Lldp::Snmp::Root> root_;
  std::vector<Reconciler::Port> ports_;
};
