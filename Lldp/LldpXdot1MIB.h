#pragma once
// LLDP-EXT-DOT1-MIB (1.0.8802.1.1.2.1.5.32962): the module's entry points.

#include "Zet/String.h"

// Registers the module's objects in `context` (only the default context "" serves any).
extern "C" void init_LldpXdot1MIB(Zet::String context);
// Takes every object of the module in `context` back out of net-snmp.
extern "C" void unregister_LldpXdot1MIB(Zet::String context);
