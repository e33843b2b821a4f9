// MinimalTableAgent: the yardstick for lldp-snmp-agent's table walks. A plain net-snmp agent, written the
// way one writes a fast sorted table with the iterator helper and nothing else, that serves one table at
// lldpRemTable's OID with lldpRemTable's indexes, column types and values of the lengths
// bench/make-scenario.py gives a neighbour. bench/agent-tables.sh walks both in the same run.
//
//   MinimalTableAgent --listen udp:127.0.0.1:1161 --ports 50 --neighbors 200 --persistent-dir /tmp/m
//   MinimalTableAgent --agentx tcp:127.0.0.1:705 ...      (a sub-agent of the snmpd at that socket)
//   MinimalTableAgent ... --debug minimalTable            (where each pass over the rows starts, and each step)

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

// Part of the agent library, without a public header.
extern "C" void init_vacm_conf(void);

namespace {

constexpr char const* program = "MinimalTableAgent";
constexpr char const* debugToken = "minimalTable";
constexpr oid remTableOid[] = {1, 0, 8802, 1, 1, 2, 1, 4, 1};
constexpr unsigned remIndexCount = 3;  // lldpRemTimeMark, lldpRemLocalPortNum, lldpRemIndex

// LLDP-MIB values every row shares: LldpChassisIdSubtype macAddress(4), LldpPortIdSubtype interfaceName(5),
// and LldpSystemCapabilitiesMap {bridge, router} supported and {bridge} enabled, on two bytes as our agent
// answers them.
constexpr long chassisIdSubtypeMac = 4;
constexpr long portIdSubtypeIfName = 5;
constexpr std::array<u_char, 2> capSupported{0x28, 0x00};
constexpr std::array<u_char, 2> capEnabled{0x20, 0x00};

struct Options {
  std::string listen = "udp:127.0.0.1:1161";
  std::string agentx;  // non-empty: run as a sub-agent of the master at this address
  long ports = 1;
  long neighbors = 0;  // per port
  std::string community = "public";
  std::string persistentDir;
  std::string debug;  // net-snmp debug tokens
};

// One neighbour, as make-scenario.py describes neighbour `index` on `port`; the mark is always 0.
struct RemRow {
  long port;
  long index;
  std::array<u_char, 6> chassisId;  // a MAC
  std::string portId;               // an interface name
  std::string portDesc;
  std::string sysName;
  std::string sysDesc;
};

using RemRows = std::vector<RemRow>;

// In index order, which is OID order: the mark is the same on every row and the numbers are positive.
RemRows makeRows(long ports, long neighbors) {
  RemRows rows;
  rows.reserve(static_cast<std::size_t>(ports * neighbors));
  for (long port = 1; port <= ports; ++port) {
    for (long index = 1; index <= neighbors; ++index) {
      auto const serial = static_cast<unsigned long>((port - 1) * neighbors + index - 1);
      rows.push_back({port,
                       index,
                       {0x02, 0x10, static_cast<u_char>(serial >> 24), static_cast<u_char>(serial >> 16),
                        static_cast<u_char>(serial >> 8), static_cast<u_char>(serial)},
                       "Ethernet" + std::to_string(1 + serial % 48),
                       "uplink to bench-sw port " + std::to_string(port),
                       "nbr-" + std::to_string(port) + "-" + std::to_string(index),
                       "Bench neighbour, release 1." + std::to_string(serial % 10)});
    }
  }
  return rows;
}

RemRows const& rowsOf(netsnmp_iterator_info const* iinfo) { return *static_cast<RemRows const*>(iinfo->myvoid); }

// The row a request's full index names, or null. The iterator helper hands the request's table info as the
// first loop context of a sorted table; a partial index or a missing row costs a walk from the first row.
RemRow const* hintedRow(RemRows const& rows, netsnmp_table_request_info const* hint) {
  if (!hint || hint->number_indexes != remIndexCount) {
    return nullptr;
  }
  netsnmp_variable_list const* const mark = hint->indexes;
  netsnmp_variable_list const* const port = mark->next_variable;
  netsnmp_variable_list const* const index = port->next_variable;
  if (*mark->val.integer != 0) {
    return nullptr;
  }
  auto const key = std::make_pair(*port->val.integer, *index->val.integer);
  auto const at = std::lower_bound(rows.begin(), rows.end(), key, [](RemRow const& row, auto const& k) {
    return std::make_pair(row.port, row.index) < k;
  });
  return at != rows.end() && at->port == key.first && at->index == key.second ? &*at : nullptr;
}

netsnmp_variable_list* writeIndexes(RemRow const& row, netsnmp_variable_list* indexes) {
  netsnmp_variable_list* const mark = indexes;
  snmp_set_var_typed_integer(mark, ASN_TIMETICKS, 0);
  snmp_set_var_typed_integer(mark->next_variable, ASN_INTEGER, row.port);
  snmp_set_var_typed_integer(mark->next_variable->next_variable, ASN_INTEGER, row.index);
  return indexes;
}

// Loop and data contexts are both the current row; null past the last one.
netsnmp_variable_list* firstDataPoint(void** loopContext, void** dataContext, netsnmp_variable_list* indexes,
                                      netsnmp_iterator_info* iinfo) {
  RemRows const& rows = rowsOf(iinfo);
  RemRow const* row = hintedRow(rows, static_cast<netsnmp_table_request_info const*>(*loopContext));
  DEBUGMSGTL((debugToken, "first data point: %s\n", row ? "at the hinted row" : "at the first row"));
  if (!row) {
    row = rows.empty() ? nullptr : rows.data();
  }
  *loopContext = *dataContext = const_cast<RemRow*>(row);
  return row ? writeIndexes(*row, indexes) : nullptr;
}

netsnmp_variable_list* nextDataPoint(void** loopContext, void** dataContext, netsnmp_variable_list* indexes,
                                     netsnmp_iterator_info* iinfo) {
  RemRows const& rows = rowsOf(iinfo);
  auto const* current = static_cast<RemRow const*>(*loopContext);
  RemRow const* const row = current && current + 1 != rows.data() + rows.size() ? current + 1 : nullptr;
  if (row) {
    DEBUGMSGTL((debugToken, "next data point: %ld.%ld\n", row->port, row->index));
  }
  // Null at the end, so that the helper's next pass (a GETNEXT moving to the next column) starts without hint.
  *loopContext = *dataContext = const_cast<RemRow*>(row);
  return row ? writeIndexes(*row, indexes) : nullptr;
}

int setString(netsnmp_variable_list* var, void const* value, std::size_t length) {
  return snmp_set_var_typed_value(var, ASN_OCTET_STR, value, length);
}

int setString(netsnmp_variable_list* var, std::string const& value) {
  return setString(var, value.data(), value.size());
}

// Writes one column of `row` into `var`; SNMP_NOSUCHOBJECT for a column the table does not have.
int writeColumn(netsnmp_variable_list* var, RemRow const& row, unsigned column) {
  switch (column) {
    case 4:  // lldpRemChassisIdSubtype
      return snmp_set_var_typed_integer(var, ASN_INTEGER, chassisIdSubtypeMac);
    case 5:  // lldpRemChassisId
      return setString(var, row.chassisId.data(), row.chassisId.size());
    case 6:  // lldpRemPortIdSubtype
      return snmp_set_var_typed_integer(var, ASN_INTEGER, portIdSubtypeIfName);
    case 7:  // lldpRemPortId
      return setString(var, row.portId);
    case 8:  // lldpRemPortDesc
      return setString(var, row.portDesc);
    case 9:  // lldpRemSysName
      return setString(var, row.sysName);
    case 10:  // lldpRemSysDesc
      return setString(var, row.sysDesc);
    case 11:  // lldpRemSysCapSupported
      return setString(var, capSupported.data(), capSupported.size());
    case 12:  // lldpRemSysCapEnabled
      return setString(var, capEnabled.data(), capEnabled.size());
    default:
      return SNMP_NOSUCHOBJECT;
  }
}

// Below the iterator, which has turned every GETNEXT into a GET of the row it found.
int handleRemTable(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* reqinfo,
                   netsnmp_request_info* requests) {
  if (reqinfo->mode != MODE_GET) {
    return SNMP_ERR_NOERROR;  // read-only: the agent refuses a SET before it comes here
  }
  for (netsnmp_request_info* request = requests; request; request = request->next) {
    if (request->processed) {
      continue;
    }
    auto const* const row = static_cast<RemRow const*>(netsnmp_extract_iterator_context(request));
    netsnmp_table_request_info const* const info = netsnmp_extract_table_info(request);
    if (!row || !info) {
      netsnmp_set_request_error(reqinfo, request, SNMP_NOSUCHINSTANCE);
    } else if (int const error = writeColumn(request->requestvb, *row, info->colnum); error != 0) {
      netsnmp_set_request_error(reqinfo, request, error == SNMP_NOSUCHOBJECT ? SNMP_NOSUCHOBJECT : SNMP_ERR_GENERR);
    }
  }
  return SNMP_ERR_NOERROR;
}

void registerRemTable(RemRows& rows) {
  netsnmp_handler_registration* const registration = netsnmp_create_handler_registration(
      "lldpRemTable", handleRemTable, remTableOid, OID_LENGTH(remTableOid), HANDLER_CAN_RONLY);
  auto* const tableInfo = SNMP_MALLOC_TYPEDEF(netsnmp_table_registration_info);
  netsnmp_table_helper_add_indexes(tableInfo, ASN_TIMETICKS, ASN_INTEGER, ASN_INTEGER, 0);
  tableInfo->min_column = 4;
  tableInfo->max_column = 12;
  auto* const iinfo = SNMP_MALLOC_TYPEDEF(netsnmp_iterator_info);
  iinfo->get_first_data_point = firstDataPoint;
  iinfo->get_next_data_point = nextDataPoint;
  iinfo->myvoid = &rows;
  // Sorted: a GETNEXT stops at the first row past the request, and the first call gets the hint.
  iinfo->flags = NETSNMP_ITERATOR_FLAG_SORTED | NETSNMP_HANDLER_OWNS_IINFO;
  iinfo->table_reginfo = tableInfo;
  if (netsnmp_register_table_iterator(registration, iinfo) != SNMPERR_SUCCESS) {
    throw std::runtime_error("cannot register lldpRemTable");
  }
  // A hint belongs to one request: the serialize handler hands the iterator one request at a time.
  if (netsnmp_inject_handler(registration, netsnmp_get_serialize_handler()) != SNMPERR_SUCCESS) {
    throw std::runtime_error("cannot inject the serialize handler");
  }
}

// The directives users know from snmpd, parsed with the configuration files; net-snmp keeps a copy.
void rememberConfigLine(std::string const& line) {
  std::vector<char> text(line.begin(), line.end());
  text.push_back('\0');
  netsnmp_config_remember(text.data());
}

volatile std::sig_atomic_t stopRequested = 0;

extern "C" void onStopSignal(int) { stopRequested = 1; }

// Wakes the event loop every second, so that a signal landing just before it blocks is not left waiting
// for the next request.
extern "C" void onTick(unsigned int, void*) {}

int serve(Options const& options) {
  RemRows rows = makeRows(options.ports, options.neighbors);
  snmp_enable_stderrlog();
  if (!options.debug.empty()) {
    debug_register_tokens(options.debug.c_str());
    snmp_set_do_debugging(1);
  }
  bool const subagent = !options.agentx.empty();
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, subagent ? 1 : 0);
  if (subagent) {
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options.agentx.c_str());
  } else {
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS, options.listen.c_str());
  }
  if (!options.persistentDir.empty()) {
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, options.persistentDir.c_str());
  }
  setenv("MIBS", "", 0);  // no MIB files needed, and most of net-snmp's default list is not installed
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS, 1);
  init_agent(program);
  init_vacm_conf();
  if (!subagent) {
    rememberConfigLine("rocommunity " + options.community);
    rememberConfigLine("rocommunity6 " + options.community);
  }
  registerRemTable(rows);
  init_snmp(program);
  if (!subagent && init_master_agent() != 0) {
    std::cerr << program << ": cannot listen on " << options.listen << std::endl;
    return 1;
  }

  struct sigaction action {};
  action.sa_handler = onStopSignal;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  snmp_alarm_register(1, SA_REPEAT, onTick, nullptr);
  while (!stopRequested) {
    agent_check_and_process(1);
  }
  snmp_shutdown(program);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"MinimalTableAgent: a plain net-snmp agent serving one sorted table shaped like lldpRemTable, "
               "ports x neighbours rows, until SIGINT or SIGTERM.",
               program};
  app.get_formatter()->column_width(34);
  auto* const listen = app.add_option("--listen", options.listen, "Address to serve SNMP on, in net-snmp syntax")
                           ->type_name("ADDR")
                           ->capture_default_str();
  app.add_option("--agentx", options.agentx, "Run as AgentX sub-agent of the master at ADDR instead")
      ->type_name("ADDR")
      ->excludes(listen);
  app.add_option("--ports", options.ports, "Ports (lldpRemLocalPortNum 1..P)")
      ->check(CLI::Range(1, 4094).description(""))
      ->type_name("P")
      ->capture_default_str();
  app.add_option("--neighbors", options.neighbors, "Neighbours per port (lldpRemIndex 1..N)")
      ->check(CLI::NonNegativeNumber.description(""))
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--community", options.community, "SNMPv1/v2c read-only community, as master agent")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_option("--persistent-dir", options.persistentDir, "Directory for net-snmp's persistent state")
      ->type_name("DIR");
  app.add_option("--debug", options.debug,
                 "net-snmp debug tokens, as snmpd's -D; minimalTable traces where each pass over the rows starts")
      ->type_name("TOKENS");
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    return app.exit(e) == 0 ? 0 : 2;
  }
  try {
    return serve(options);
  } catch (std::exception const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  }
}
