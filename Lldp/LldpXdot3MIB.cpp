// LLDP-EXT-DOT3-MIB (1.0.8802.1.1.2.1.5.4623): registration of the module and its tables.
//
// Columns and tables are added as in LldpMIB.cpp: a line per column, a
// TableDesc per table, its name in LLDP_XDOT3_MIB_TABLES and one
// TABLE_ENGINE_TABLE line.

#include "LldpXdot3MIB.h"

#include "LldpAgent/PortConfig.h"
#include "LldpMIB.h"
#include "MibModule.h"
#include "MirrorRows.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/Conversions.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpConversions.h"
#include "TableEngine.h"

namespace {

class LldpXdot3MIB_HandlerRegistration : public Snmp::HandlerRegistration {
 public:
  void initHandler(Zet::String context) override { init_LldpXdot3MIB(context); }
};

MibModule lldpXdot3MIB("LldpXdot3MIB");
LldpXdot3MIB_HandlerRegistration registration;
Snmp::AutoRegistree const autoRegistree(&registration);

using TableEngine::ColumnDesc;
using TableEngine::noLength;
using TableEngine::RowFilter;
using TableEngine::Sorted;
using TableEngine::TableDesc;
using TableEngine::TimeFilter;

// A raw value above 0xf raises the range exception here, out of the handler.
ColumnDesc const lldpXdot3PortConfigColumns[] = {
    {1, "lldpXdot3PortConfigTLVsTxEnable", "dot3EnabledTlvs", "Dot3EnabledTlvsToAsnBits", ASN_OCTET_STR, 1024, 0,
     noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::PortConfig, Dot3EnabledTlvsToAsnBits(
                                       Lldp::PortConfig::Dot3EnabledTlvs(row.dot3EnabledTlvs()), b, n))},
};
constexpr TableDesc lldpXdot3PortConfigTableDesc{
    "lldpXdot3PortConfigTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 1, 1}, HANDLER_CAN_RWRITE, lldpPortConfigIndexes,
    lldpXdot3PortConfigColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::portConfigRows};

// Every local port is a row, aggregated or not.
ColumnDesc const lldpXdot3LocLinkAggColumns[] = {
    {1, "lldpXdot3LocLinkAggStatus", "linkAggStatus", "LinkAggStatusMapToAsnBits", ASN_OCTET_STR, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, LinkAggStatusMapToAsnBits(row.linkAggStatus(), b, n))},
    {2, "lldpXdot3LocLinkAggPortId", "linkAggPortId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::S32ToAsnIntegerF()(row.linkAggPortId(), b, n))},
};
constexpr TableDesc lldpXdot3LocLinkAggTableDesc{
    "lldpXdot3LocLinkAggTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 2, 3}, HANDLER_CAN_RONLY, lldpLocPortIndexes,
    lldpXdot3LocLinkAggColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::localPortRows};

ColumnDesc const lldpXdot3LocMaxFrameSizeColumns[] = {
    {1, "lldpXdot3LocMaxFrameSize", "maxFrameSize", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::LocalPort, Snmp::S32ToAsnIntegerF()(row.maxFrameSize(), b, n))},
};
constexpr TableDesc lldpXdot3LocMaxFrameSizeTableDesc{
    "lldpXdot3LocMaxFrameSizeTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 2, 4}, HANDLER_CAN_RONLY, lldpLocPortIndexes,
    lldpXdot3LocMaxFrameSizeColumns, Sorted::yes, TimeFilter::no, nullptr, &TableEngine::localPortRows};

// The four remote tables are views of lldpRemTable's rows, each showing the
// neighbours that sent its TLV; the filter reads the flag live.
#define LLDP_XDOT3_ROW_FILTER(filter)                                        \
  RowFilter const filter##Filter {                                         \
    #filter, [](void const* context) {                                     \
      return filter(*static_cast<RemoteSystemIterator const*>(context));   \
    }                                                                      \
  }
LLDP_XDOT3_ROW_FILTER(macPhyConfigStatusTlvReceived);
LLDP_XDOT3_ROW_FILTER(powerViaMdiTlvReceived);
LLDP_XDOT3_ROW_FILTER(linkAggregationTlvReceived);
LLDP_XDOT3_ROW_FILTER(maximumFrameSizeTlvReceived);
#undef LLDP_XDOT3_ROW_FILTER

ColumnDesc const lldpXdot3RemPortColumns[] = {
    {1, "lldpXdot3RemPortAutoNegSupported", "autoNegSupported", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::BoolToAsnIntegerF()(row.autoNegSupported(), b, n))},
    {2, "lldpXdot3RemPortAutoNegEnabled", "autoNegEnabled", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::BoolToAsnIntegerF()(row.autoNegEnabled(), b, n))},
    // The one column of fixed length: two octets, already in wire order.
    {3, "lldpXdot3RemPortAutoNegAdvertisedCap", "autoNegAdvertisedCapAsU16", "AutoNegAdvertisedCapAsU16ToAsnBits",
     ASN_OCTET_STR, 2, 2, 2,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, AutoNegAdvertisedCapAsU16ToAsnBits(row.autoNegAdvertisedCapAsU16(), b, n))},
    {4, "lldpXdot3RemPortOperMauType", "operMauType", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.operMauType()), b, n))},
};
constexpr TableDesc lldpXdot3RemPortTableDesc{
    "lldpXdot3RemPortTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 3, 1}, HANDLER_CAN_RONLY, lldpRemIndexes,
    lldpXdot3RemPortColumns, Sorted::yes, TimeFilter::yes, &macPhyConfigStatusTlvReceivedFilter,
    &TableEngine::remoteSystemRows};

// The MIB's "Controlable" and the attribute's "Controllable" each keep their own spelling.
ColumnDesc const lldpXdot3RemPowerColumns[] = {
    {1, "lldpXdot3RemPowerPortClass", "powerPortClass", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.powerPortClass()), b, n))},
    {2, "lldpXdot3RemPowerMDISupported", "powerMdiSupported", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::BoolToAsnIntegerF()(row.powerMdiSupported(), b, n))},
    {3, "lldpXdot3RemPowerMDIEnabled", "powerMdiEnabled", "BoolToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::BoolToAsnIntegerF()(row.powerMdiEnabled(), b, n))},
    {4, "lldpXdot3RemPowerPairControlable", "powerPairControllable", "BoolToAsnInteger", ASN_INTEGER, 1024, 0,
     noLength, TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::BoolToAsnIntegerF()(row.powerPairControllable(), b, n))},
    {5, "lldpXdot3RemPowerPairs", "powerPairs", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.powerPairs()), b, n))},
    {6, "lldpXdot3RemPowerClass", "powerClass", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(static_cast<int>(row.powerClass()), b, n))},
};
constexpr TableDesc lldpXdot3RemPowerTableDesc{
    "lldpXdot3RemPowerTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 3, 2}, HANDLER_CAN_RONLY, lldpRemIndexes,
    lldpXdot3RemPowerColumns, Sorted::yes, TimeFilter::yes, &powerViaMdiTlvReceivedFilter,
    &TableEngine::remoteSystemRows};

ColumnDesc const lldpXdot3RemLinkAggColumns[] = {
    {1, "lldpXdot3RemLinkAggStatus", "linkAggStatus", "LinkAggStatusMapToAsnBits", ASN_OCTET_STR, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, LinkAggStatusMapToAsnBits(row.linkAggStatus(), b, n))},
    {2, "lldpXdot3RemLinkAggPortId", "linkAggPortId", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(row.linkAggPortId(), b, n))},
};
constexpr TableDesc lldpXdot3RemLinkAggTableDesc{
    "lldpXdot3RemLinkAggTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 3, 3}, HANDLER_CAN_RONLY, lldpRemIndexes,
    lldpXdot3RemLinkAggColumns, Sorted::yes, TimeFilter::yes, &linkAggregationTlvReceivedFilter,
    &TableEngine::remoteSystemRows};

ColumnDesc const lldpXdot3RemMaxFrameSizeColumns[] = {
    {1, "lldpXdot3RemMaxFrameSize", "maxFrameSize", "S32ToAsnInteger", ASN_INTEGER, 1024, 0, noLength,
     TABLE_ENGINE_READER(Lldp::Snmp::RemoteSystem, Snmp::S32ToAsnIntegerF()(row.maxFrameSize(), b, n))},
};
constexpr TableDesc lldpXdot3RemMaxFrameSizeTableDesc{
    "lldpXdot3RemMaxFrameSizeTable", {1, 0, 8802, 1, 1, 2, 1, 5, 4623, 1, 3, 4}, HANDLER_CAN_RONLY,
    lldpRemIndexes, lldpXdot3RemMaxFrameSizeColumns, Sorted::yes, TimeFilter::yes,
    &maximumFrameSizeTlvReceivedFilter, &TableEngine::remoteSystemRows};


}  // namespace

TABLE_ENGINE_TABLE(lldpXdot3PortConfigTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3LocLinkAggTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3LocMaxFrameSizeTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3RemPortTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3RemPowerTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3RemLinkAggTable, lldpXdot3MIB)
TABLE_ENGINE_TABLE(lldpXdot3RemMaxFrameSizeTable, lldpXdot3MIB)

void init_LldpXdot3MIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpXdot3MIB", "Initializing in context \"%s\"\n", context.charPtr()));
#define LLDP_XDOT3_MIB_INITIALIZE_TABLE(table) initialize_table_##table(snmpConfig, context);
  LLDP_XDOT3_MIB_TABLES(LLDP_XDOT3_MIB_INITIALIZE_TABLE)
#undef LLDP_XDOT3_MIB_INITIALIZE_TABLE
  Snmp::registerMibContext(context, "LldpXdot3MIB");
}

void unregister_LldpXdot3MIB(Zet::String context) { lldpXdot3MIB.unregister(context); }
