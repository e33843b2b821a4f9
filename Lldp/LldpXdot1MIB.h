#pragma once
// LLDP-EXT-DOT1-MIB (1.0.8802.1.1.2.1.5.32962): the module's entry points and
// the exported functions of its tables.

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "TableEngine.h"
#include "Zet/String.h"

// Registers the module's objects in `context` (only the default context "" serves any).
extern "C" void init_LldpXdot1MIB(Zet::String context);
// Takes every object of the module in `context` back out of net-snmp.
extern "C" void unregister_LldpXdot1MIB(Zet::String context);

// The tables in registration order.
#define LLDP_XDOT1_MIB_TABLES(X)   \
  X(lldpXdot1ConfigPortVlanTable)  \
  X(lldpXdot1LocTable)             \
  X(lldpXdot1RemTable)             \
  X(lldpXdot1RemProtoVlanTable)    \
  X(lldpXdot1RemVlanNameTable)     \
  X(lldpXdot1RemProtocolTable)

LLDP_XDOT1_MIB_TABLES(TABLE_ENGINE_DECLARE_TABLE)
