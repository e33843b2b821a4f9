#pragma once
// The tables as one family: each table is a TableDesc, and one registration
// routine, one walk and one request handler serve them all.
//
// How a request travels. net-snmp's table helper parses the index of the
// requested OID and checks the column against the registered list. The
// iterator helper then walks the table through the row callbacks: the first
// call puts a loop context (a heap iterator of the table's Root collection) on
// the hinted row or the first row, the next calls advance it, and each call
// writes the row's index into the variables net-snmp gives, from which it
// builds the row's OID and compares it with the request. For the rows it keeps
// it asks for a data context, a copy of the iterator fixed on that row. When
// the walk is over the loop context goes; the kept copies go with the request.
// Last, <table>_handler reads the requested column from the kept row through
// the descriptor's reader and puts the bytes into the varbind. Tables whose
// walk takes a hint get their requests one at a time from the serialize
// handler, so that the hint belongs to the walk it starts; time-filtered
// tables drop, while walking, the rows of neighbours that changed before the
// requested lldpRemTimeMark. The Root is reached through the registration
// (my_reg_void, and the iterator info's myvoid), never through a global.
//
// The hint is the request's netsnmp_table_request_info, which net-snmp's
// iterator helper puts into the loop context slot for the first call of a
// sorted table's walk: a GET costs one descent, a GETNEXT on a row two steps.
// When a GETNEXT moves on to the next column the helper starts that column's
// walk without a hint, from the first row.
//
// The unsorted tables get no hint, and net-snmp compares every row the walk
// gives with every request. Where the collection's key order is the order of
// the index in the OID (RequestWindow::yes), a handler of the engine ahead of
// the iterator lets the walk see the request list, for that call only: the
// walk then starts at the smallest key a request can be answered from and ends
// once the rows given have answered every request, so that net-snmp's choice
// is the one a whole walk would give. A collection holding a key whose OID is
// out of that order (a negative integer, an address over 31 bytes) is walked
// whole, as are SET requests.
//
// The exported and net-snmp-facing functions of a table are forwarders to this
// engine, stamped out by TABLE_ENGINE_TABLE next to the table's descriptor.

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <span>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "MibModule.h"
#include "Snmp/Config.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace TableEngine {

// A sorted collection of the Root as the walk sees it: how to step through it,
// how a row's key becomes the index and a hint becomes a key. One per
// collection; a table names the one it walks.
struct Rows;
extern Rows const portConfigRows;
extern Rows const portStatusRows;
extern Rows const localPortRows;
extern Rows const localManagementAddressRows;
extern Rows const remoteSystemRows;
extern Rows const remoteManagementAddressRows;
extern Rows const remoteUnknownTlvRows;
extern Rows const remoteUnknownOrgDefTlvRows;
extern Rows const remotePortAndProtocolVlanRows;
extern Rows const remoteVlanNameRows;
extern Rows const remoteProtocolIdentityInfoRows;

// One index of the table, in index order.
struct IndexDesc {
  char const* name;  // the MIB object, "lldpPortConfigPortNum": hint messages carry it
  u_char type;       // ASN_INTEGER, ASN_OCTET_STR, ASN_TIMETICKS or ASN_PRIV_IMPLIED_OCTET_STR (a 3-byte OUI)
};

inline constexpr int noLength = -1;

// One served column.
struct ColumnDesc {
  unsigned int column;     // sub-identifier under the entry
  char const* object;      // the MIB object, for the SET text
  char const* attribute;   // the row's attribute, for the messages
  char const* conversion;  // the conversion's name, for the messages
  u_char type;
  int bufferSize;          // how many bytes the conversion may write
  // The accepted byte counts of the result; maxLength noLength means no check.
  int minLength;
  int maxLength;
  // Converts the attribute of `row` (of the table's collection) into `buffer`.
  int (*read)(void const* row, unsigned char* buffer, int length);
};

// A further condition a time-filtered row must meet, tested before the time.
struct RowFilter {
  char const* name;                    // for the messages, "portVlanIdTlvReceived"
  bool (*holds)(void const* context);  // on a loop context that has a current row
};

enum class Sorted : bool { no, yes };
enum class TimeFilter : bool { no, yes };
// For unsorted tables whose collection sorts as the index's OID: the walk may
// be limited to the rows that can answer the request list (see above).
enum class RequestWindow : bool { no, yes };

struct TableOid {
  static constexpr std::size_t maxLength = 12;
  constexpr TableOid(std::initializer_list<oid> subIds) : length(subIds.size()) {
    if (subIds.size() > maxLength) {
      throw "a table OID has at most 12 sub-identifiers";  // refused at compile time
    }
    std::copy(subIds.begin(), subIds.end(), ids);
  }
  oid ids[maxLength]{};
  std::size_t length;
};

struct TableDesc {
  char const* name;                     // "lldpPortConfigTable": every message is built from it
  TableOid objectId;
  int modes;                            // HANDLER_CAN_RWRITE or HANDLER_CAN_RONLY
  std::span<IndexDesc const> indexes;   // a time filter's lldpRemTimeMark first
  std::span<ColumnDesc const> columns;  // ascending; they are also the registered column list
  // Walked in OID order, so net-snmp may stop at the first greater row and a
  // hint may start the walk; such a table gets its requests one at a time.
  Sorted sorted;
  TimeFilter timeFilter;
  RowFilter const* rowFilter;           // null: none
  Rows const* rows;
  RequestWindow requestWindow = RequestWindow::no;
};

// The callbacks of one table, as net-snmp is to call them.
struct TableCallbacks {
  Netsnmp_Node_Handler* handler;
  Netsnmp_First_Data_Point* firstDataPoint;
  Netsnmp_Next_Data_Point* nextDataPoint;
  Netsnmp_Make_Data_Context* makeDataContext;
  Netsnmp_Free_Data_Context* freeDataContext;
  Netsnmp_Free_Loop_Context* freeLoopContextAtEnd;
};

// initialize_table_<table>: registers the table in `context` (only the default
// context serves any) and records what module.unregister() takes back.
// `function` is the exported function's text, for the assertions.
void registerTable(TableDesc const& table, TableCallbacks const& callbacks, MibModule& module,
                   Zet::String const& context, char const* function);

// The row callbacks. The Root is iinfo->myvoid; *loopContext holds the hint
// (a netsnmp_table_request_info, or null) on entry to firstDataPoint.
netsnmp_variable_list* firstDataPoint(TableDesc const& table, void** loopContext, void** dataContext,
                                      netsnmp_variable_list* indexes, netsnmp_iterator_info* iinfo);
netsnmp_variable_list* nextDataPoint(TableDesc const& table, void** loopContext, void** dataContext,
                                     netsnmp_variable_list* indexes, netsnmp_iterator_info* iinfo);
void* makeDataContext(TableDesc const& table, void* loopContext);
void freeDataContext(TableDesc const& table, void* dataContext);
void freeLoopContextAtEnd(TableDesc const& table, void* loopContext);

// <table>_handler: answers a GET from the rows the iterator attached, and
// refuses every other mode with notWritable. An exception raised while a
// value is built is not caught here.
int handle(TableDesc const& table, netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);

}  // namespace TableEngine

// The exported functions of a table, for its module's header.
// A column reader over rows of type RowType (the iterator's current row):
// `row` names it, `b` and `n` are the buffer and its length.
#define TABLE_ENGINE_READER(RowType, expression)        \
  [](void const* r, unsigned char* b, int n) {          \
    RowType const& row = *static_cast<RowType const*>(r); \
    return expression;                                  \
  }

#define TABLE_ENGINE_DECLARE_TABLE(table)                                                                   \
  extern "C" void initialize_table_##table(Zet::Ptr<Snmp::Config const> config, Zet::String context);     \
  extern "C" int table##_handler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,     \
                                 netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests);

// The forwarders of one table to the engine: the exported initialize_table_<table>
// and <table>_handler, and the unit's own row callbacks. The descriptor is
// <table>Desc; `module` is the module's MibModule.
#define TABLE_ENGINE_TABLE(table, module)                                                                     \
  namespace {                                                                                               \
  netsnmp_variable_list* table##_get_first_data_point(void** loop, void** data, netsnmp_variable_list* index, \
                                                      netsnmp_iterator_info* iinfo) {                        \
    return TableEngine::firstDataPoint(table##Desc, loop, data, index, iinfo);                             \
  }                                                                                                         \
  netsnmp_variable_list* table##_get_next_data_point(void** loop, void** data, netsnmp_variable_list* index,  \
                                                     netsnmp_iterator_info* iinfo) {                         \
    return TableEngine::nextDataPoint(table##Desc, loop, data, index, iinfo);                              \
  }                                                                                                         \
  void* table##_make_data_context(void* loop, netsnmp_iterator_info*) {                                     \
    return TableEngine::makeDataContext(table##Desc, loop);                                                 \
  }                                                                                                         \
  void table##_free_data_context(void* data, netsnmp_iterator_info*) {                                      \
    TableEngine::freeDataContext(table##Desc, data);                                                        \
  }                                                                                                         \
  void table##_free_loop_context_at_end(void* loop, netsnmp_iterator_info*) {                               \
    TableEngine::freeLoopContextAtEnd(table##Desc, loop);                                                   \
  }                                                                                                         \
  }                                                                                                         \
  int table##_handler(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* reqinfo, \
                      netsnmp_request_info* requests) {                                                      \
    return TableEngine::handle(table##Desc, reqinfo, requests);                                             \
  }                                                                                                         \
  void initialize_table_##table(Zet::Ptr<Snmp::Config const>, Zet::String context) {                        \
    TableEngine::registerTable(table##Desc,                                                                 \
                               {table##_handler, table##_get_first_data_point, table##_get_next_data_point, \
                                table##_make_data_context, table##_free_data_context,                       \
                                table##_free_loop_context_at_end},                                          \
                               module, context, __PRETTY_FUNCTION__);                                       \
  }
