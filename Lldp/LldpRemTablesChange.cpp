#define ZET_UNIT "LldpMIB"

#include "LldpRemTablesChange.h"

#include <cstddef>
#include <typeinfo>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "Snmp/Config.h"
#include "Snmp/Conversions.h"
#include "Snmp/SnmpUtil.h"
#include "Snmp/TrapManager.h"
#include "Zet/Assert.h"
#include "Zet/Demangle.h"
#include "Zet/Entity.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace Snmp {
namespace {

Zet::TraceHandle const& _defaultTraceHandle() {
  static Zet::TraceHandle const handle("Snmp", false);
  return handle;
}

oid const snmpTrapOid[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
oid const lldpRemTablesChangeOid[] = {1, 0, 8802, 1, 1, 2, 0, 0, 1};
oid const lldpStatsRemTablesInsertsOid[] = {1, 0, 8802, 1, 1, 2, 1, 2, 2, 0};
oid const lldpStatsRemTablesDeletesOid[] = {1, 0, 8802, 1, 1, 2, 1, 2, 3, 0};
oid const lldpStatsRemTablesDropsOid[] = {1, 0, 8802, 1, 1, 2, 1, 2, 4, 0};
oid const lldpStatsRemTablesAgeoutsOid[] = {1, 0, 8802, 1, 1, 2, 1, 2, 5, 0};

}  // namespace

int lldpRemTablesChangeNotify(std::uint32_t inserts, std::uint32_t deletes, std::uint32_t drops,
                              std::uint32_t ageouts, Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  // The spacing inside the two conditions is part of their message.
  ZET_ASSERT(snmpConfig->notificationConfig( "lldp" ) &&
             "You need to register lldp traps from your DefaultConfigPlugin");
  ZET_ASSERT(snmpConfig->notificationConfig( "lldp" )->notification( "lldpRemTablesChange" ) &&
             "You need to register lldpRemTablesChange traps from your DefaultConfigPlugin");

  auto const status = snmpConfig->notificationStatus("lldp", "lldpRemTablesChange");
  if (!status) {
    ZET_TRACE(_defaultTraceHandle(), 4)
        << "lldpRemTablesChange notification not sent. notificationStatus returned " << status.reason;
    return 0;
  }

  // The clock is read again here: the delay counts from the building, not from the change.
  double const delay = snmpConfig->notificationConfig("lldp")->delay(NotificationName{"lldpRemTablesChange"});
  double sendTime = 0.0;
  if (delay > 0.0) {
    sendTime = Zet::System::currentTime() + delay;
  }

  netsnmp_variable_list* list = nullptr;
  snmp_varlist_add_variable(&list, snmpTrapOid, OID_LENGTH(snmpTrapOid), ASN_OBJECT_ID, lldpRemTablesChangeOid,
                            sizeof lldpRemTablesChangeOid);
  // One buffer for the four counters, each written and copied into the list in turn.
  unsigned char buffer[1024];
  S32ToAsnIntegerF const toAsn;
  struct Counter {
    oid const* name;
    std::size_t length;
    std::uint32_t value;
  };
  Counter const counters[] = {
      {lldpStatsRemTablesInsertsOid, OID_LENGTH(lldpStatsRemTablesInsertsOid), inserts},
      {lldpStatsRemTablesDeletesOid, OID_LENGTH(lldpStatsRemTablesDeletesOid), deletes},
      {lldpStatsRemTablesDropsOid, OID_LENGTH(lldpStatsRemTablesDropsOid), drops},
      {lldpStatsRemTablesAgeoutsOid, OID_LENGTH(lldpStatsRemTablesAgeoutsOid), ageouts},
  };
  for (auto const& counter : counters) {
    // Passed as it stands: the Gauge32 reads the same bytes back as unsigned.
    int const length = toAsn(static_cast<int>(counter.value), buffer, sizeof buffer);
    snmp_varlist_add_variable(&list, counter.name, counter.length, ASN_GAUGE, buffer, static_cast<std::size_t>(length));
  }

  ZET_TRACE(_defaultTraceHandle(), 4) << "Adding lldpRemTablesChange notification to trap queue";
  auto const name = Zet::demangle(typeid(TrapManager));
  auto manager = Zet::Entity::singletonExists(name);
  if (!manager) {
    manager = Zet::Entity::singletonIs(&TrapManager::_zetType, name);
  }
  Zet::ptrCast<TrapManager>(manager)->enqueueTrap(list, context, sendTime);
  return 0;
}

}  // namespace Snmp
