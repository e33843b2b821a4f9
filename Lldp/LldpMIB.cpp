// LLDP-MIB (1.0.8802.1.1.2): registration of the module and its 16 scalars.
//
// To add a scalar: add its name to LLDP_MIB_SCALARS in LldpMIB.h, and its
// descriptor at the same position in lldpScalars below. The handler
// handle_<object> is stamped out from the list.

#include "LldpMIB.h"

#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpLogHandles.h"
#include "MibModule.h"
#include "ScalarEngine.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/Conversions.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpConversions.h"

namespace {

class LldpMIB_HandlerRegistration : public Snmp::HandlerRegistration {
 public:
  void initHandler(Zet::String context) override { init_LldpMIB(context); }
};

// Static initialisation order is the catalogue, the maps, then the host's record.
LldpLogHandles const logHandles;
MibModule lldpMIB("LldpMIB");
LldpMIB_HandlerRegistration registration;
Snmp::AutoRegistree const autoRegistree(&registration);

template <class T>
void const* castTo(Zet::Entity const* entity) {
  return dynamic_cast<T const*>(entity);
}
Lldp::Config const& config(void const* e) { return *static_cast<Lldp::Config const*>(e); }
Lldp::AllStatus const& status(void const* e) { return *static_cast<Lldp::AllStatus const*>(e); }
Lldp::LocalSystem const& local(void const* e) { return *static_cast<Lldp::LocalSystem const*>(e); }

constexpr char const* configPath = "Statebase/l2discovery/lldp/config";
constexpr char const* statusPath = "Statebase/l2discovery/lldp/status/all";
constexpr char const* localPath = "Statebase/l2discovery/lldp/localSystem";
constexpr int noLength = -1;

#define LLDP_READER(expression) [](void const* e, unsigned char* b, int n) { return expression; }

ScalarDesc const lldpScalars[] = {
    {"lldpMessageTxInterval", {1, 0, 8802, 1, 1, 2, 1, 1, 1}, HANDLER_CAN_RWRITE, configPath, "Lldp::Config",
     "messageTxInterval", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::Config>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(config(e).messageTxInterval(), b, n))},
    {"lldpMessageTxHoldMultiplier", {1, 0, 8802, 1, 1, 2, 1, 1, 2}, HANDLER_CAN_RWRITE, configPath, "Lldp::Config",
     "messageTxHoldMultiplier", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::Config>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(config(e).messageTxHoldMultiplier(), b, n))},
    {"lldpReinitDelay", {1, 0, 8802, 1, 1, 2, 1, 1, 3}, HANDLER_CAN_RWRITE, configPath, "Lldp::Config",
     "reinitDelay", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::Config>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(config(e).reinitDelay(), b, n))},
    {"lldpTxDelay", {1, 0, 8802, 1, 1, 2, 1, 1, 4}, HANDLER_CAN_RWRITE, configPath, "Lldp::Config", "txDelay",
     "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::Config>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(config(e).txDelay(), b, n))},
    // A constant of the type: nothing is read from the entity.
    {"lldpNotificationInterval", {1, 0, 8802, 1, 1, 2, 1, 1, 5}, HANDLER_CAN_RWRITE, configPath, "Lldp::Config",
     "notificationInterval", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::Config>,
     LLDP_READER(((void)e, Snmp::S32ToAsnIntegerF()(Lldp::Config::notificationInterval(), b, n)))},
    {"lldpStatsRemTablesLastChangeTime", {1, 0, 8802, 1, 1, 2, 1, 2, 1}, HANDLER_CAN_RONLY, statusPath,
     "Lldp::AllStatus", "remTablesLastChangeTime", "NowSecondsToUptimeTimeTicks", ASN_TIMETICKS, 1024, 0, noLength,
     castTo<Lldp::AllStatus>,
     LLDP_READER(Snmp::NowSecondsToUptimeTimeTicksF()(status(e).remTablesLastChangeTime(), b, n))},
    // The four counters go through the signed conversion and are typed as gauges.
    {"lldpStatsRemTablesInserts", {1, 0, 8802, 1, 1, 2, 1, 2, 2}, HANDLER_CAN_RONLY, statusPath, "Lldp::AllStatus",
     "remTablesInserts", "S32ToAsnInteger", ASN_GAUGE, 1024, 0, noLength, castTo<Lldp::AllStatus>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(static_cast<int>(status(e).remTablesInserts()), b, n))},
    {"lldpStatsRemTablesDeletes", {1, 0, 8802, 1, 1, 2, 1, 2, 3}, HANDLER_CAN_RONLY, statusPath, "Lldp::AllStatus",
     "remTablesDeletes", "S32ToAsnInteger", ASN_GAUGE, 1024, 0, noLength, castTo<Lldp::AllStatus>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(static_cast<int>(status(e).remTablesDeletes()), b, n))},
    {"lldpStatsRemTablesDrops", {1, 0, 8802, 1, 1, 2, 1, 2, 4}, HANDLER_CAN_RONLY, statusPath, "Lldp::AllStatus",
     "remTablesDrops", "S32ToAsnInteger", ASN_GAUGE, 1024, 0, noLength, castTo<Lldp::AllStatus>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(static_cast<int>(status(e).remTablesDrops()), b, n))},
    {"lldpStatsRemTablesAgeouts", {1, 0, 8802, 1, 1, 2, 1, 2, 5}, HANDLER_CAN_RONLY, statusPath, "Lldp::AllStatus",
     "remTablesAgeouts", "S32ToAsnInteger", ASN_GAUGE, 1024, 0, noLength, castTo<Lldp::AllStatus>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(static_cast<int>(status(e).remTablesAgeouts()), b, n))},
    // Sent as stored: no range check or mapping of the subtype.
    {"lldpLocChassisIdSubtype", {1, 0, 8802, 1, 1, 2, 1, 3, 1}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem",
     "chassisIdSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength, castTo<Lldp::LocalSystem>,
     LLDP_READER(Snmp::S32ToAsnIntegerF()(local(e).chassisIdSubtype(), b, n))},
    {"lldpLocChassisId", {1, 0, 8802, 1, 1, 2, 1, 3, 2}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem",
     "chassisId", "StringToAsnOctetString", ASN_OCTET_STR, 255, 1, 255, castTo<Lldp::LocalSystem>,
     LLDP_READER(Snmp::StringToAsnOctetStringF()(local(e).chassisId(), b, n))},
    {"lldpLocSysName", {1, 0, 8802, 1, 1, 2, 1, 3, 3}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem", "sysName",
     "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255, castTo<Lldp::LocalSystem>,
     LLDP_READER(Snmp::StringToAsnOctetStringF()(local(e).sysName(), b, n))},
    {"lldpLocSysDesc", {1, 0, 8802, 1, 1, 2, 1, 3, 4}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem", "sysDesc",
     "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255, castTo<Lldp::LocalSystem>,
     LLDP_READER(Snmp::StringToAsnOctetStringF()(local(e).sysDesc(), b, n))},
    {"lldpLocSysCapSupported", {1, 0, 8802, 1, 1, 2, 1, 3, 5}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem",
     "sysCapSupported", "SystemCapabilitiesMapToAsnBits", ASN_OCTET_STR, 1024, 0, noLength,
     castTo<Lldp::LocalSystem>, LLDP_READER(SystemCapabilitiesMapToAsnBits(local(e).sysCapSupported(), b, n))},
    {"lldpLocSysCapEnabled", {1, 0, 8802, 1, 1, 2, 1, 3, 6}, HANDLER_CAN_RONLY, localPath, "Lldp::LocalSystem",
     "sysCapEnabled", "SystemCapabilitiesMapToAsnBits", ASN_OCTET_STR, 1024, 0, noLength, castTo<Lldp::LocalSystem>,
     LLDP_READER(SystemCapabilitiesMapToAsnBits(local(e).sysCapEnabled(), b, n))},
};
#undef LLDP_READER

enum ScalarIndex {
#define LLDP_MIB_SCALAR_INDEX(object) object##Index,
  LLDP_MIB_SCALARS(LLDP_MIB_SCALAR_INDEX)
#undef LLDP_MIB_SCALAR_INDEX
      scalarCount
};
static_assert(std::size(lldpScalars) == scalarCount, "one descriptor per scalar of LLDP_MIB_SCALARS");

}  // namespace

#define LLDP_MIB_DEFINE_SCALAR_HANDLER(object)                                                       \
  int handle_##object(netsnmp_mib_handler*, netsnmp_handler_registration* reginfo,                   \
                      netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {         \
    return ScalarEngine::handle(lldpScalars[object##Index], reginfo, reqinfo, requests);             \
  }
LLDP_MIB_SCALARS(LLDP_MIB_DEFINE_SCALAR_HANDLER)
#undef LLDP_MIB_DEFINE_SCALAR_HANDLER

namespace {
Netsnmp_Node_Handler* const scalarHandlers[] = {
#define LLDP_MIB_SCALAR_HANDLER_ENTRY(object) handle_##object,
    LLDP_MIB_SCALARS(LLDP_MIB_SCALAR_HANDLER_ENTRY)
#undef LLDP_MIB_SCALAR_HANDLER_ENTRY
};
}  // namespace

void init_LldpMIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpMIB", "Initializing in context \"%s\"\n", context.charPtr()));
  ScalarEngine::registerAll(lldpScalars, scalarCount, lldpMIB, context, __PRETTY_FUNCTION__, scalarHandlers);
  Snmp::registerMibContext(context, "LldpMIB");
}

void unregister_LldpMIB(Zet::String context) { lldpMIB.unregister(context); }
