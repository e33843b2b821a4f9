#pragma once
// What makes the agent a device that management systems can class, beside
// the LLDP MIBs. In both modes the LLDP modules get their rows in sysORTable
// (a sub-agent's go to its master's). In master mode the agent also serves
// SNMPv2-MIB's system group and sysORTable, through net-snmp's own modules,
// and IF-MIB's ifNumber, ifTable and ifXTable with one row per port; as a
// sub-agent those are its master's.

#include <memory>

#include "DesiredState.h"

class DeviceMibs {
 public:
  // In master mode, between SnmpAgent's construction and its start(), so
  // that the sysContact, sysLocation, ... lines of --config reach the system group.
  explicit DeviceMibs(bool master);
  ~DeviceMibs();
  DeviceMibs(DeviceMibs const&) = delete;
  DeviceMibs& operator=(DeviceMibs const&) = delete;

  // Serves the system values and the interfaces of `state` (master mode; a
  // sub-agent ignores it). After SnmpAgent::start(), at each load, so that
  // what the state gives wins over --config.
  void apply(DesiredState const& state);
  // Adds the rows of the three LLDP modules to sysORTable; once they serve.
  void announceLldpModules();

  // ifIndex of a port: its number; port 0, which no ifIndex can be, takes
  // the number above the highest port number.
  static long ifIndexOf(Interface::EthPortId number);

 private:
  struct Interfaces;

  bool master_;
  bool announced_ = false;
  std::unique_ptr<Interfaces> interfaces_;
};
