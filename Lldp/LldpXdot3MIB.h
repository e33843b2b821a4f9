#pragma once
// LLDP-EXT-DOT3-MIB (1.0.8802.1.1.2.1.5.4623): the module's entry points and
// the exported functions of its tables.

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "TableEngine.h"
#include "Zet/String.h"

// Registers the module's objects in `context` (only the default context "" serves any).
extern "C" void init_LldpXdot3MIB(Zet::String context);
// Takes every object of the module in `context` back out of net-snmp.
extern "C" void unregister_LldpXdot3MIB(Zet::String context);

// The tables in registration order.
#define LLDP_XDOT3_MIB_TABLES(X)    \
  X(lldpXdot3PortConfigTable)       \
  X(lldpXdot3LocLinkAggTable)       \
  X(lldpXdot3LocMaxFrameSizeTable)  \
  X(lldpXdot3RemPortTable)          \
  X(lldpXdot3RemPowerTable)         \
  X(lldpXdot3RemLinkAggTable)       \
  X(lldpXdot3RemMaxFrameSizeTable)

LLDP_XDOT3_MIB_TABLES(TABLE_ENGINE_DECLARE_TABLE)
