// LLDP-MIB (1.0.8802.1.1.2): registration of the module, its 16 scalars and its tables.
//
// To add a scalar: add its name to LLDP_MIB_SCALARS in LldpMIB.h, and its
// descriptor at the same position in lldpScalars below. The handler
// handle_<object> is stamped out from the list.
//
// To add a column: one line in its table's column list, in column order: the
// sub-identifier, the MIB object (the SET text names it), the row's attribute
// and the conversion (the failure messages name them), the ASN type, the
// buffer size, the accepted byte counts (noLength: no check) and the reader.
// The column list registered with net-snmp follows from the lines.
//
// To add a table: its name in LLDP_MIB_TABLES in LldpMIB.h, at its place in
// the registration order; its index list and columns; its TableDesc
// <table>Desc, naming the Root collection it walks (TableEngine's
// <collection>Rows); and one TABLE_ENGINE_TABLE line, which stamps out the
// exported initialize_table_<table> and <table>_handler and the row callbacks.

#include "LldpMIB.h"

#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpLogHandles.h"
#include "MibModule.h"
#include "MirrorRows.h"
#include "RemoteRecords.h"
#include "Root.h"
#include "ScalarEngine.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/Conversions.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpConversions.h"
#include "TableEngine.h"

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

constexpr char const* configPath = Lldp::Config::path;
constexpr char const* statusPath = Lldp::AllStatus::path;
constexpr char const* localPath = Lldp::LocalSystem::path;
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

namespace {

using TableEngine::ColumnDesc;
using TableEngine::IndexDesc;
static_assert(noLength == TableEngine::noLength, "one meaning of no length check for scalars and columns");
using TableEngine::RequestWindow;
using TableEngine::Sorted;
using TableEngine::TableDesc;
using TableEngine::TimeFilter;

// lldpPortConfigTable: writable in the MIB, and every SET is refused all the same.
ColumnDesc const lldpPortConfigColumns[] = {
    {2, "lldpPortConfigAdminStatus", "adminStatus", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortConfig, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.adminStatus()), b, n))},
    // True whenever the port has a configuration: no per-port setting exists.
    {3, "lldpPortConfigNotificationEnable", "notificationEnable", "BoolToAsnInteger", ASN_INTEGER, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::PortConfig, Snmp::BoolToAsnIntegerF()(row.notificationEnable(), b, n))},
    // A raw value above 0xf raises the range exception here, out of the handler.
    {4, "lldpPortConfigTLVsTxEnable", "enabledTlvs", "EnabledTlvsToAsnBits", ASN_OCTET_STR, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortConfig, EnabledTlvsToAsnBits(Lldp::PortConfig::EnabledTlvs(row.enabledTlvs()), b, n))},
};
constexpr TableDesc lldpPortConfigTableDesc{
    "lldpPortConfigTable", {1, 0, 8802, 1, 1, 2, 1, 1, 6}, HANDLER_CAN_RWRITE, lldpPortConfigIndexes,
    lldpPortConfigColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::portConfigRows};

// The two address tables index the address by its length and bytes, and the
// walk takes no hint; the collection sorts as that index, so a request window
// limits the walk. lldpConfigManAddrTable declares lldpLocManAddrTable's indexes.
IndexDesc const lldpLocManAddrIndexes[] = {{"lldpLocManAddrSubtype", ASN_INTEGER}, {"lldpLocManAddr", ASN_OCTET_STR}};

ColumnDesc const lldpConfigManAddrColumns[] = {
    {1, "lldpConfigManAddrPortsTxEnable", "portsTxEnable", "PortsTxEnableToAsnOctetString", ASN_OCTET_STR, 512, 0,
     512, TABLE_ENGINE_READER(Lldp::Snmp::LocalManagementAddress, PortsTxEnableToAsnOctetString(row.portsTxEnable(), b, n))},
};
constexpr TableDesc lldpConfigManAddrTableDesc{
    "lldpConfigManAddrTable", {1, 0, 8802, 1, 1, 2, 1, 1, 7}, HANDLER_CAN_RWRITE, lldpLocManAddrIndexes,
    lldpConfigManAddrColumns, Sorted::no, TimeFilter::no, nullptr, &TableEngine::localManagementAddressRows,
    RequestWindow::yes};

IndexDesc const lldpStatsTxPortIndexes[] = {{"lldpStatsTxPortNum", ASN_INTEGER}};
ColumnDesc const lldpStatsTxPortColumns[] = {
    {2, "lldpStatsTxPortFramesTotal", "txFramesTotal", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.txFramesTotal(), b, n))},
};
constexpr TableDesc lldpStatsTxPortTableDesc{
    "lldpStatsTxPortTable", {1, 0, 8802, 1, 1, 2, 1, 2, 6}, HANDLER_CAN_RONLY, lldpStatsTxPortIndexes,
    lldpStatsTxPortColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::portStatusRows};

IndexDesc const lldpStatsRxPortIndexes[] = {{"lldpStatsRxPortNum", ASN_INTEGER}};
ColumnDesc const lldpStatsRxPortColumns[] = {
    {2, "lldpStatsRxPortFramesDiscardedTotal", "rxFramesDiscardedTotal", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxFramesDiscardedTotal(), b, n))},
    {3, "lldpStatsRxPortFramesErrors", "rxFramesErrors", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxFramesErrors(), b, n))},
    {4, "lldpStatsRxPortFramesTotal", "rxFramesTotal", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxFramesTotal(), b, n))},
    {5, "lldpStatsRxPortTLVsDiscardedTotal", "rxTLVsDiscardedTotal", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxTLVsDiscardedTotal(), b, n))},
    {6, "lldpStatsRxPortTLVsUnrecognizedTotal", "rxTLVsUnrecognizedTotal", "U32ToAsnUnsigned", ASN_COUNTER, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxTLVsUnrecognizedTotal(), b, n))},
    // The MIB makes the ageouts a Gauge32 among counters.
    {7, "lldpStatsRxPortAgeoutsTotal", "rxAgeoutsTotal", "U32ToAsnUnsigned", ASN_GAUGE, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortStatus, Snmp::U32ToAsnUnsignedF()(row.rxAgeoutsTotal(), b, n))},
};
constexpr TableDesc lldpStatsRxPortTableDesc{
    "lldpStatsRxPortTable", {1, 0, 8802, 1, 1, 2, 1, 2, 7}, HANDLER_CAN_RONLY, lldpStatsRxPortIndexes,
    lldpStatsRxPortColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::portStatusRows};

ColumnDesc const lldpLocPortColumns[] = {
    {2, "lldpLocPortIdSubtype", "portIdSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.portIdSubtype()), b, n))},
    // A port ID must not be empty (SIZE 1..255); a description may be.
    {3, "lldpLocPortId", "portId", "StringToAsnOctetString", ASN_OCTET_STR, 255, 1, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::StringToAsnOctetStringF()(row.portId().value(), b, n))},
    {4, "lldpLocPortDesc", "portDesc", "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::StringToAsnOctetStringF()(row.portDesc().value(), b, n))},
};
constexpr TableDesc lldpLocPortTableDesc{
    "lldpLocPortTable", {1, 0, 8802, 1, 1, 2, 1, 3, 7}, HANDLER_CAN_RONLY, lldpLocPortIndexes, lldpLocPortColumns,
    Sorted::yes, TimeFilter::no, nullptr, &TableEngine::localPortRows};

ColumnDesc const lldpLocManAddrColumns[] = {
    {3, "lldpLocManAddrLen", "manAddrLen", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalManagementAddress, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.manAddrLen()), b, n))},
    {4, "lldpLocManAddrIfSubtype", "ifSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalManagementAddress, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.ifSubtype()), b, n))},
    {5, "lldpLocManAddrIfId", "ifId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalManagementAddress, Snmp::S32ToAsnIntegerF()(row.ifId(), b, n))},
    {6, "lldpLocManAddrOID", "oid", "SnmpObjectIdentifierToAsnOid", ASN_OBJECT_ID, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalManagementAddress, Snmp::SnmpObjectIdentifierToAsnOidF()(row.oid(), b, n))},
};
constexpr TableDesc lldpLocManAddrTableDesc{
    "lldpLocManAddrTable", {1, 0, 8802, 1, 1, 2, 1, 3, 8}, HANDLER_CAN_RONLY, lldpLocManAddrIndexes,
    lldpLocManAddrColumns, Sorted::no, TimeFilter::no, nullptr, &TableEngine::localManagementAddressRows,
    RequestWindow::yes};

// A reader of a column of the Root's value records of type Lldp::Snmp::Record.
#define LLDP_RECORD_READER(Record, expression)                                                     \
  [](void const* r, unsigned char* b, int n) {                                                     \
    using Holder = Lldp::Snmp::ValueHolder<Lldp::Snmp::Record>;                                    \
    Lldp::Snmp::Record const& row = static_cast<Holder const*>(r)->value;                          \
    return expression;                                                                             \
  }

// Read through the neighbour at the time of the request: a row without one
// answers zeros and empty strings, and its identifiers fail their bound.
ColumnDesc const lldpRemColumns[] = {
    {4, "lldpRemChassisIdSubtype", "chassisIdSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.chassisIdSubtype()), b, n))},
    {5, "lldpRemChassisId", "chassisId", "StringToAsnOctetString", ASN_OCTET_STR, 255, 1, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::StringToAsnOctetStringF()(row.chassisId().value(), b, n))},
    {6, "lldpRemPortIdSubtype", "portIdSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.portIdSubtype()), b, n))},
    {7, "lldpRemPortId", "portId", "StringToAsnOctetString", ASN_OCTET_STR, 255, 1, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::StringToAsnOctetStringF()(row.portId().value(), b, n))},
    {8, "lldpRemPortDesc", "portDesc", "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::StringToAsnOctetStringF()(row.portDesc().value(), b, n))},
    {9, "lldpRemSysName", "sysName", "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::StringToAsnOctetStringF()(row.sysName().value(), b, n))},
    {10, "lldpRemSysDesc", "sysDesc", "StringToAsnOctetString", ASN_OCTET_STR, 255, 0, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::StringToAsnOctetStringF()(row.sysDesc().value(), b, n))},
    {11, "lldpRemSysCapSupported", "sysCapSupported", "SystemCapabilitiesMapToAsnBits", ASN_OCTET_STR, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, SystemCapabilitiesMapToAsnBits(row.sysCapSupported(), b, n))},
    {12, "lldpRemSysCapEnabled", "sysCapEnabled", "SystemCapabilitiesMapToAsnBits", ASN_OCTET_STR, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, SystemCapabilitiesMapToAsnBits(row.sysCapEnabled(), b, n))},
};
constexpr TableDesc lldpRemTableDesc{
    "lldpRemTable", {1, 0, 8802, 1, 1, 2, 1, 4, 1}, HANDLER_CAN_RONLY, lldpRemIndexes, lldpRemColumns, Sorted::yes,
    TimeFilter::yes, nullptr, &TableEngine::remoteSystemRows};

// Like the local address tables, unsorted and without a hint, and walked
// within a request window. The columns read the record's copy.
IndexDesc const lldpRemManAddrIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                           {"lldpRemLocalPortNum", ASN_INTEGER},
                                           {"lldpRemIndex", ASN_INTEGER},
                                           {"lldpRemManAddrSubtype", ASN_INTEGER},
                                           {"lldpRemManAddr", ASN_OCTET_STR}};
ColumnDesc const lldpRemManAddrColumns[] = {
    {3, "lldpRemManAddrIfSubtype", "ifSubtype", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     LLDP_RECORD_READER(RemoteManagementAddress, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.ifSubtype()), b, n))},
    {4, "lldpRemManAddrIfId", "ifId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     LLDP_RECORD_READER(RemoteManagementAddress, Snmp::S32ToAsnIntegerF()(row.ifId(), b, n))},
    {5, "lldpRemManAddrOID", "oid", "SnmpObjectIdentifierToAsnOid", ASN_OBJECT_ID, 1024, 0, noLength,
     LLDP_RECORD_READER(RemoteManagementAddress, Snmp::SnmpObjectIdentifierToAsnOidF()(row.oid(), b, n))},
};
constexpr TableDesc lldpRemManAddrTableDesc{
    "lldpRemManAddrTable", {1, 0, 8802, 1, 1, 2, 1, 4, 2}, HANDLER_CAN_RONLY, lldpRemManAddrIndexes,
    lldpRemManAddrColumns, Sorted::no, TimeFilter::yes, nullptr, &TableEngine::remoteManagementAddressRows,
    RequestWindow::yes};

IndexDesc const lldpRemUnknownTLVIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                              {"lldpRemLocalPortNum", ASN_INTEGER},
                                              {"lldpRemIndex", ASN_INTEGER},
                                              {"lldpRemUnknownTLVType", ASN_INTEGER}};
ColumnDesc const lldpRemUnknownTLVColumns[] = {
    {2, "lldpRemUnknownTLVInfo", "info", "StringToAsnOctetString", ASN_OCTET_STR, 511, 0, 511,
     LLDP_RECORD_READER(RemoteUnknownTlv, Snmp::StringToAsnOctetStringF()(row.info().value(), b, n))},
};
constexpr TableDesc lldpRemUnknownTLVTableDesc{
    "lldpRemUnknownTLVTable", {1, 0, 8802, 1, 1, 2, 1, 4, 3}, HANDLER_CAN_RONLY, lldpRemUnknownTLVIndexes,
    lldpRemUnknownTLVColumns, Sorted::yes, TimeFilter::yes, nullptr, &TableEngine::remoteUnknownTlvRows};

// The OUI is an implied string of a fixed three octets: three sub-identifiers, no length.
IndexDesc const lldpRemOrgDefInfoIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                              {"lldpRemLocalPortNum", ASN_INTEGER},
                                              {"lldpRemIndex", ASN_INTEGER},
                                              {"lldpRemOrgDefInfoOUI", ASN_PRIV_IMPLIED_OCTET_STR},
                                              {"lldpRemOrgDefInfoSubtype", ASN_INTEGER},
                                              {"lldpRemOrgDefInfoIndex", ASN_INTEGER}};
ColumnDesc const lldpRemOrgDefInfoColumns[] = {
    {4, "lldpRemOrgDefInfo", "orgDefInfo", "StringToAsnOctetString", ASN_OCTET_STR, 507, 0, 507,
     LLDP_RECORD_READER(RemoteUnknownOrgDefTlv, Snmp::StringToAsnOctetStringF()(row.orgDefInfo().value(), b, n))},
};
constexpr TableDesc lldpRemOrgDefInfoTableDesc{
    "lldpRemOrgDefInfoTable", {1, 0, 8802, 1, 1, 2, 1, 4, 4}, HANDLER_CAN_RONLY, lldpRemOrgDefInfoIndexes,
    lldpRemOrgDefInfoColumns, Sorted::yes, TimeFilter::yes, nullptr, &TableEngine::remoteUnknownOrgDefTlvRows};

#undef LLDP_RECORD_READER

}  // namespace

TABLE_ENGINE_TABLE(lldpPortConfigTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpConfigManAddrTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpStatsTxPortTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpStatsRxPortTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpLocPortTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpLocManAddrTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpRemTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpRemManAddrTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpRemUnknownTLVTable, lldpMIB)
TABLE_ENGINE_TABLE(lldpRemOrgDefInfoTable, lldpMIB)

void init_LldpMIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpMIB", "Initializing in context \"%s\"\n", context.charPtr()));
  ScalarEngine::registerAll(lldpScalars, scalarCount, lldpMIB, context, __PRETTY_FUNCTION__, scalarHandlers);
#define LLDP_MIB_INITIALIZE_TABLE(table) initialize_table_##table(snmpConfig, context);
  LLDP_MIB_TABLES(LLDP_MIB_INITIALIZE_TABLE)
#undef LLDP_MIB_INITIALIZE_TABLE
  Snmp::registerMibContext(context, "LldpMIB");
}

void unregister_LldpMIB(Zet::String context) { lldpMIB.unregister(context); }
