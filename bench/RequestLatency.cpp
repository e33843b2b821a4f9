// RequestLatency: what one SNMP request costs as a manager sees it, without the start of a process per
// request that hides an agent's own time when snmpget is timed. One v2c session; for each OID, --samples
// requests one after another, then one line: "OID: median M us, p90 P us".
//
//   RequestLatency 127.0.0.1:1161 1.0.8802.1.1.2.1.3.3.0 [more OIDs] [--samples 200] [--getnext]
//
// Any answer that is not a value (an error, noSuchObject, noSuchInstance, endOfMibView) ends the run with
// exit code 1, so that a bench never times a miss by accident.
//
// A time includes waking the agent and then this client. On a virtual machine, a wake-up on another, idle CPU
// can cost more than the agent's work: run both on one CPU (taskset) to see the agent's own time.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace {

constexpr char const* program = "RequestLatency";

struct Options {
  std::string target;
  std::vector<std::string> oids;
  int samples = 200;
  bool getnext = false;
  std::string community = "public";
  double timeout = 5.0;  // seconds
};

struct SessionCloser {
  void operator()(netsnmp_session* session) const { snmp_close(session); }
};
using Session = std::unique_ptr<netsnmp_session, SessionCloser>;

struct PduFreer {
  void operator()(netsnmp_pdu* pdu) const { snmp_free_pdu(pdu); }
};
using Pdu = std::unique_ptr<netsnmp_pdu, PduFreer>;

Session openSession(Options const& options) {
  netsnmp_session settings;
  snmp_sess_init(&settings);
  std::string peer = options.target;
  std::string community = options.community;
  settings.peername = peer.data();
  settings.version = SNMP_VERSION_2c;
  settings.community = reinterpret_cast<u_char*>(community.data());
  settings.community_len = community.size();
  settings.timeout = std::lround(options.timeout * 1e6);
  settings.retries = 0;  // a retry would be timed as one slow request
  // snmp_open copies what it keeps.
  Session session{snmp_open(&settings)};
  if (!session) {
    char* text = nullptr;
    snmp_error(&settings, nullptr, nullptr, &text);
    std::string const reason = text ? text : "unknown error";
    std::free(text);
    throw std::runtime_error("cannot open a session to " + options.target + ": " + reason);
  }
  return session;
}

// Why `response` (to a request that ended with `status`) is not a value; empty when it is one.
std::string missOf(netsnmp_session* session, int status, netsnmp_pdu const* response, double timeout) {
  if (status == STAT_TIMEOUT) {
    std::ostringstream text;
    text << "no answer within " << timeout << " s";
    return text.str();
  }
  if (status != STAT_SUCCESS || !response) {
    char* text = nullptr;
    snmp_error(session, nullptr, nullptr, &text);
    std::string const reason = text ? text : "request failed";
    std::free(text);
    return reason;
  }
  if (response->errstat != SNMP_ERR_NOERROR) {
    return std::string("error ") + snmp_errstring(static_cast<int>(response->errstat));
  }
  if (!response->variables) {
    return "an answer without a varbind";
  }
  switch (response->variables->type) {
    case SNMP_NOSUCHOBJECT:
      return "noSuchObject";
    case SNMP_NOSUCHINSTANCE:
      return "noSuchInstance";
    case SNMP_ENDOFMIBVIEW:
      return "endOfMibView";
    default:
      return {};
  }
}

// Microseconds of each request, in the order sent.
std::vector<double> timeRequests(netsnmp_session* session, Options const& options, std::string const& text) {
  oid name[MAX_OID_LEN];
  size_t nameLength = MAX_OID_LEN;
  if (!read_objid(text.c_str(), name, &nameLength)) {
    throw std::runtime_error(text + ": not a numeric OID");
  }
  std::string const request = (options.getnext ? "GETNEXT " : "GET ") + text;
  std::vector<double> micros;
  micros.reserve(static_cast<std::size_t>(options.samples));
  for (int i = 0; i < options.samples; ++i) {
    // snmp_synch_response frees the request; building it is left out of the time.
    netsnmp_pdu* const pdu = snmp_pdu_create(options.getnext ? SNMP_MSG_GETNEXT : SNMP_MSG_GET);
    snmp_add_null_var(pdu, name, nameLength);
    netsnmp_pdu* answer = nullptr;
    auto const start = std::chrono::steady_clock::now();
    int const status = snmp_synch_response(session, pdu, &answer);
    auto const end = std::chrono::steady_clock::now();
    Pdu const response{answer};
    if (std::string const miss = missOf(session, status, response.get(), options.timeout); !miss.empty()) {
      throw std::runtime_error(request + ": " + miss);
    }
    micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
  }
  return micros;
}

double median(std::vector<double> const& sorted) {
  std::size_t const n = sorted.size();
  return n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
}

// Nearest rank: the smallest sample that at least 90% of the samples do not exceed.
double percentile90(std::vector<double> const& sorted) {
  auto const rank = static_cast<std::size_t>(std::ceil(0.9 * static_cast<double>(sorted.size())));
  return sorted[std::max<std::size_t>(rank, 1) - 1];
}

int run(Options const& options) {
  // Numeric OIDs only: no MIB files to load, and no state of this client worth keeping.
  setenv("MIBS", "", 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
  init_snmp(program);
  Session const session = openSession(options);
  for (std::string const& text : options.oids) {
    std::vector<double> micros = timeRequests(session.get(), options, text);
    std::sort(micros.begin(), micros.end());
    std::printf("%s: median %.1f us, p90 %.1f us\n", text.c_str(), median(micros), percentile90(micros));
    std::fflush(stdout);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app{"RequestLatency: times single SNMPv2c requests over one session and prints, per OID, the "
               "median and the 90th percentile in microseconds. Fails on any answer that is not a value.",
               program};
  app.get_formatter()->column_width(28);
  app.add_option("target", options.target, "Agent address, host:port")->required()->type_name("TARGET");
  app.add_option("oids", options.oids, "Numeric OIDs to ask for, each timed on its own")
      ->required()
      ->type_name("OID");
  app.add_option("--samples", options.samples, "Requests per OID")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("S")
      ->capture_default_str();
  app.add_flag("--getnext", options.getnext, "Send GETNEXT instead of GET");
  app.add_option("--community", options.community, "SNMPv2c community")->type_name("NAME")->capture_default_str();
  app.add_option("--timeout", options.timeout, "Seconds to wait for each answer")
      ->check(CLI::PositiveNumber.description(""))
      ->type_name("SECONDS")
      ->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    return app.exit(e) == 0 ? 0 : 2;
  }
  try {
    return run(options);
  } catch (std::exception const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  }
}
