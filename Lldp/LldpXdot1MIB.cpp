// LLDP-EXT-DOT1-MIB (1.0.8802.1.1.2.1.5.32962): registration of the module and its tables.
//
// Columns and tables are added as in LldpMIB.cpp: a line per column, a
// TableDesc per table, its name in LLDP_XDOT1_MIB_TABLES and one
// TABLE_ENGINE_TABLE line.

#include "LldpXdot1MIB.h"

#include "LldpMIB.h"
#include "MibModule.h"
#include "MirrorRows.h"
#include "Root.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/Conversions.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpConversions.h"
#include "TableEngine.h"

namespace {

class LldpXdot1MIB_HandlerRegistration : public Snmp::HandlerRegistration {
 public:
  void initHandler(Zet::String context) override { init_LldpXdot1MIB(context); }
};

MibModule lldpXdot1MIB("LldpXdot1MIB");
LldpXdot1MIB_HandlerRegistration registration;
Snmp::AutoRegistree const autoRegistree(&registration);

using TableEngine::ColumnDesc;
using TableEngine::IndexDesc;
using TableEngine::noLength;
using TableEngine::RowFilter;
using TableEngine::Sorted;
using TableEngine::TableDesc;
using TableEngine::TimeFilter;

ColumnDesc const lldpXdot1ConfigPortVlanColumns[] = {
    {1, "lldpXdot1ConfigPortVlanTxEnable", "portVlanTxEnable", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortConfig, Snmp::BoolToAsnIntegerF()(row.portVlanTxEnable(), b, n))},
};
constexpr TableDesc lldpXdot1ConfigPortVlanTableDesc{
    "lldpXdot1ConfigPortVlanTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 1, 1}, HANDLER_CAN_RWRITE,
    lldpPortConfigIndexes, lldpXdot1ConfigPortVlanColumns, Sorted::yes, TimeFilter::no, nullptr,
    &TableEngine::portConfigRows};

// A port without a port VLAN is served with 0, the none value.
ColumnDesc const lldpXdot1LocColumns[] = {
    {1, "lldpXdot1LocPortVlanId", "portVlanId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::S32ToAsnIntegerF()(row.portVlanId().value(), b, n))},
};
constexpr TableDesc lldpXdot1LocTableDesc{
    "lldpXdot1LocTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 2, 1}, HANDLER_CAN_RONLY, lldpLocPortIndexes,
    lldpXdot1LocColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::localPortRows};

// lldpRemTable's rows, less the neighbours that sent no port VLAN ID TLV.
RowFilter const portVlanIdFilter{"portVlanIdTlvReceived", [](void const* context) {
                                   return portVlanIdTlvReceived(*static_cast<RemoteSystemIterator const*>(context));
                                 }};
ColumnDesc const lldpXdot1RemColumns[] = {
    {1, "lldpXdot1RemPortVlanId", "portVlanId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(row.portVlanId().value(), b, n))},
};
constexpr TableDesc lldpXdot1RemTableDesc{
    "lldpXdot1RemTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 3, 1}, HANDLER_CAN_RONLY, lldpRemIndexes,
    lldpXdot1RemColumns, Sorted::yes, TimeFilter::yes, &portVlanIdFilter, &TableEngine::remoteSystemRows};

// The value tables need no row filter: a record exists only for what was received.
// Column 1 of each is its further index and is not served.
IndexDesc const lldpXdot1RemProtoVlanIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                                  {"lldpRemLocalPortNum", ASN_INTEGER},
                                                  {"lldpRemIndex", ASN_INTEGER},
                                                  {"lldpXdot1RemProtoVlanId", ASN_INTEGER}};
ColumnDesc const lldpXdot1RemProtoVlanColumns[] = {
    {2, "lldpXdot1RemProtoVlanSupported", "supported", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::Root::ZetRemotePortAndProtocolVlan,
                       Snmp::BoolToAsnIntegerF()(row.value.supported(), b, n))},
    {3, "lldpXdot1RemProtoVlanEnabled", "enabled", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::Root::ZetRemotePortAndProtocolVlan,
                       Snmp::BoolToAsnIntegerF()(row.value.enabled(), b, n))},
};
constexpr TableDesc lldpXdot1RemProtoVlanTableDesc{
    "lldpXdot1RemProtoVlanTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 3, 2}, HANDLER_CAN_RONLY,
    lldpXdot1RemProtoVlanIndexes, lldpXdot1RemProtoVlanColumns, Sorted::yes, TimeFilter::yes, nullptr,
    &TableEngine::remotePortAndProtocolVlanRows};

// The two strings must not be empty, unlike the descriptions of lldpRemTable.
IndexDesc const lldpXdot1RemVlanNameIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                                 {"lldpRemLocalPortNum", ASN_INTEGER},
                                                 {"lldpRemIndex", ASN_INTEGER},
                                                 {"lldpXdot1RemVlanId", ASN_INTEGER}};
ColumnDesc const lldpXdot1RemVlanNameColumns[] = {
    {2, "lldpXdot1RemVlanName", "vlanName", "StringToAsnOctetString", ASN_OCTET_STR, 32, 1, 32,
     TABLE_ENGINE_READER(Lldp::Snmp::Root::ZetRemoteVlanName,
                       Snmp::StringToAsnOctetStringF()(row.value.vlanName().value(), b, n))},
};
constexpr TableDesc lldpXdot1RemVlanNameTableDesc{
    "lldpXdot1RemVlanNameTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 3, 3}, HANDLER_CAN_RONLY,
    lldpXdot1RemVlanNameIndexes, lldpXdot1RemVlanNameColumns, Sorted::yes, TimeFilter::yes, nullptr,
    &TableEngine::remoteVlanNameRows};

IndexDesc const lldpXdot1RemProtocolIndexes[] = {{"lldpRemTimeMark", ASN_TIMETICKS},
                                                 {"lldpRemLocalPortNum", ASN_INTEGER},
                                                 {"lldpRemIndex", ASN_INTEGER},
                                                 {"lldpXdot1RemProtocolIndex", ASN_INTEGER}};
ColumnDesc const lldpXdot1RemProtocolColumns[] = {
    {2, "lldpXdot1RemProtocolId", "protocolId", "StringToAsnOctetString", ASN_OCTET_STR, 255, 1, 255,
     TABLE_ENGINE_READER(Lldp::Snmp::Root::ZetRemoteProtocolIdentityInfo,
                       Snmp::StringToAsnOctetStringF()(row.value.protocolId().value(), b, n))},
};
constexpr TableDesc lldpXdot1RemProtocolTableDesc{
    "lldpXdot1RemProtocolTable", {1, 0, 8802, 1, 1, 2, 1, 5, 32962, 1, 3, 4}, HANDLER_CAN_RONLY,
    lldpXdot1RemProtocolIndexes, lldpXdot1RemProtocolColumns, Sorted::yes, TimeFilter::yes, nullptr,
    &TableEngine::remoteProtocolIdentityInfoRows};


}  // namespace

TABLE_ENGINE_TABLE(lldpXdot1ConfigPortVlanTable, lldpXdot1MIB)
TABLE_ENGINE_TABLE(lldpXdot1LocTable, lldpXdot1MIB)
TABLE_ENGINE_TABLE(lldpXdot1RemTable, lldpXdot1MIB)
TABLE_ENGINE_TABLE(lldpXdot1RemProtoVlanTable, lldpXdot1MIB)
TABLE_ENGINE_TABLE(lldpXdot1RemVlanNameTable, lldpXdot1MIB)
TABLE_ENGINE_TABLE(lldpXdot1RemProtocolTable, lldpXdot1MIB)

void init_LldpXdot1MIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpXdot1MIB", "Initializing in context \"%s\"\n", context.charPtr()));
#define LLDP_XDOT1_MIB_INITIALIZE_TABLE(table) initialize_table_##table(snmpConfig, context);
  LLDP_XDOT1_MIB_TABLES(LLDP_XDOT1_MIB_INITIALIZE_TABLE)
#undef LLDP_XDOT1_MIB_INITIALIZE_TABLE
  Snmp::registerMibContext(context, "LldpXdot1MIB");
}

void unregister_LldpXdot1MIB(Zet::String context) { lldpXdot1MIB.unregister(context); }
