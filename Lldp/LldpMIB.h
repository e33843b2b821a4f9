#pragma once
// LLDP-MIB: the module's entry points, the handlers of its 16 scalars and the
// exported functions of its tables.

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "TableEngine.h"
#include "Zet/String.h"

// Registers the module's objects in `context` (only the default context "" serves any).
extern "C" void init_LldpMIB(Zet::String context);
// Takes every object of the module in `context` back out of net-snmp.
extern "C" void unregister_LldpMIB(Zet::String context);

// The scalars in registration order, which is also the order of their descriptors.
#define LLDP_MIB_SCALARS(X)            \
  X(lldpMessageTxInterval)             \
  X(lldpMessageTxHoldMultiplier)       \
  X(lldpReinitDelay)                   \
  X(lldpTxDelay)                       \
  X(lldpNotificationInterval)          \
  X(lldpStatsRemTablesLastChangeTime)  \
  X(lldpStatsRemTablesInserts)         \
  X(lldpStatsRemTablesDeletes)         \
  X(lldpStatsRemTablesDrops)           \
  X(lldpStatsRemTablesAgeouts)         \
  X(lldpLocChassisIdSubtype)           \
  X(lldpLocChassisId)                  \
  X(lldpLocSysName)                    \
  X(lldpLocSysDesc)                    \
  X(lldpLocSysCapSupported)            \
  X(lldpLocSysCapEnabled)

// The indexes of lldpPortConfigTable, lldpLocPortTable and lldpRemTable, which
// the tables of the extension modules take over as theirs.
inline constexpr TableEngine::IndexDesc lldpPortConfigIndexes[] = {{"lldpPortConfigPortNum", ASN_INTEGER}};
inline constexpr TableEngine::IndexDesc lldpLocPortIndexes[] = {{"lldpLocPortNum", ASN_INTEGER}};
// The mark leads every remote index, as a condition on the rows rather than a
// part of their key.
inline constexpr TableEngine::IndexDesc lldpRemIndexes[] = {
    {"lldpRemTimeMark", ASN_TIMETICKS}, {"lldpRemLocalPortNum", ASN_INTEGER}, {"lldpRemIndex", ASN_INTEGER}};

#define LLDP_MIB_DECLARE_SCALAR_HANDLER(object)                                                        \
  extern "C" int handle_##object(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo, \
                                 netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);
LLDP_MIB_SCALARS(LLDP_MIB_DECLARE_SCALAR_HANDLER)
#undef LLDP_MIB_DECLARE_SCALAR_HANDLER

// The tables in registration order.
#define LLDP_MIB_TABLES(X)  \
  X(lldpPortConfigTable)    \
  X(lldpConfigManAddrTable) \
  X(lldpStatsTxPortTable)   \
  X(lldpStatsRxPortTable)   \
  X(lldpLocPortTable)       \
  X(lldpLocManAddrTable)    \
  X(lldpRemTable)           \
  X(lldpRemManAddrTable)    \
  X(lldpRemUnknownTLVTable) \
  X(lldpRemOrgDefInfoTable)

LLDP_MIB_TABLES(TABLE_ENGINE_DECLARE_TABLE)
