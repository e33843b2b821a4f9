#include "SnmpAgent.h"

#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/agent/agent_callbacks.h>

#include "Snmp/HandlerFrame.h"
#include "Zet/System.h"

// Part of the agent library, without a public header.
extern "C" void init_vacm_conf(void);

namespace {
// How often a sub-agent pings its master and, once it has lost it, tries to
// reconnect: sooner than net-snmp's 15 s; agentxPingInterval in --config still wins.
constexpr int defaultAgentxPingSeconds = 5;

// A directive parsed with the configuration files, as if it stood in one;
// net-snmp keeps its own copy of the text.
void rememberConfigLine(std::string const& line) {
  std::vector<char> text(line.begin(), line.end());
  text.push_back('\0');
  netsnmp_config_remember(text.data());
}
// Where net-snmp keeps its persistent state: --persistent-dir, else
// SNMP_PERSISTENT_DIR (net-snmp reads it itself: empty here), else systemd's
// StateDirectory=, else a directory of this program that its user may write,
// never net-snmp's /var/lib/snmp, which belongs to snmpd.
std::string persistentDirectory(std::string const& given) {
  namespace fs = std::filesystem;
  auto const environment = [](char const* name) {
    char const* const value = std::getenv(name);
    return value ? std::string(value) : std::string();
  };
  if (!given.empty()) {
    // net-snmp would make a relative path's folders from the file system's root.
    return fs::absolute(given).lexically_normal().string();
  }
  if (!environment("SNMP_PERSISTENT_DIR").empty()) {
    return "";
  }
  if (std::string const state = environment("STATE_DIRECTORY"); !state.empty()) {
    return state.substr(0, state.find(':'));  // the first, should the unit name several
  }
  if (geteuid() == 0) {
    return "/var/lib/lldp-snmp-agent";
  }
  if (std::string const xdg = environment("XDG_STATE_HOME"); !xdg.empty()) {
    return (fs::path(xdg) / "lldp-snmp-agent").string();
  }
  if (std::string const home = environment("HOME"); !home.empty()) {
    return (fs::path(home) / ".local/state/lldp-snmp-agent").string();
  }
  return (fs::temp_directory_path() / ("lldp-snmp-agent-" + std::to_string(geteuid()))).string();
}

}  // namespace

SnmpAgent::SnmpAgent(AgentOptions const& options) : options_(options) {
  snmp_enable_stderrlog();
  bool const subagent = options_.agentx.has_value();
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, subagent ? 1 : 0);
  if (subagent) {
    if (!options_.agentx->empty()) {
      netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET, options_.agentx->c_str());
    }
    // net-snmp takes the master's sysUpTime from the answer to the session's
    // opening, then tells the application.
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_START, &SnmpAgent::onIndexStart, this);
  } else {
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS, options_.listen.c_str());
    // A master would also open SMUX on TCP port 199 of every address; it listens only where it is told.
    std::string noSmux = "-smux";
    add_to_init_list(noSmux.data());
  }
  if (!options_.config.empty()) {
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG, options_.config.c_str());
  }
  if (std::string const dir = persistentDirectory(options_.persistentDir); !dir.empty()) {
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, dir.c_str());
  }
  // The agent needs no MIB files, and most of net-snmp's default list is not installed.
  setenv("MIBS", "", 0);
  // One log line per request is noise for an agent that is polled all day.
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS, 1);
  init_agent(appName_.c_str());
  if (subagent) {
    // After init_agent, which sets net-snmp's own default.
    netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL, defaultAgentxPingSeconds);
  }
  // What a plug-in's handler lets escape becomes a genErr answer here.
  Snmp::installHandlerFrame();
  // The directives users know from snmpd: communities, users, views, trap sinks.
  init_vacm_conf();
  init_usm_conf(appName_.c_str());
  if (!subagent && !options_.community.empty()) {
    rememberConfigLine("rocommunity " + options_.community);
    rememberConfigLine("rocommunity6 " + options_.community);
  }
}

SnmpAgent::~SnmpAgent() {
  if (options_.agentx) {
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_START, &SnmpAgent::onIndexStart, this,
                             1);
  }
  snmp_shutdown(appName_.c_str());
}

void SnmpAgent::start() {
  init_snmp(appName_.c_str());
  if (options_.agentx) {
    return;  // the sub-agent connects from init_snmp and retries on its own
  }
  errno = 0;
  if (init_master_agent() != 0) {
    // bind()'s errno survives net-snmp's failure path; without one there is no more to say.
    int const reason = errno;
    throw std::runtime_error("cannot listen on " + options_.listen +
                             (reason != 0 ? std::string(": ") + std::strerror(reason) : std::string()));
  }
}

int SnmpAgent::onIndexStart(int, int, void*, void* clientArgument) {
  auto const* const agent = static_cast<SnmpAgent const*>(clientArgument);
  if (agent->masterSessionOpened_) {
    agent->masterSessionOpened_();
  }
  return SNMPERR_SUCCESS;
}

void SnmpAgent::processOnce(bool poll) { agent_check_and_process(poll ? 0 : 1); }

double SnmpAgent::uptimeOrigin() {
  // From net-snmp's start time itself: the uptime's whole ticks would put the
  // origin up to a tick late, and a change just after a reading of sysUpTime
  // would seem to come before it. net-snmp 5.9 keeps the start on the wall
  // clock; the clock that agrees with the uptime is the one it uses.
  auto const* const start = static_cast<timeval const*>(netsnmp_get_agent_starttime());
  auto const since = [start](timeval const& now) {
    return static_cast<double>(now.tv_sec - start->tv_sec) + static_cast<double>(now.tv_usec - start->tv_usec) / 1e6;
  };
  double const ticks = static_cast<double>(netsnmp_get_agent_uptime()) / 100.0;
  timeval wall{};
  gettimeofday(&wall, nullptr);
  timeval monotonic{};
  netsnmp_get_monotonic_clock(&monotonic);
  double running = ticks;
  for (double const candidate : {since(wall), since(monotonic)}) {
    if (std::abs(candidate - ticks) < 0.05) {
      running = candidate;
      break;
    }
  }
  return Zet::System::currentTime() - running;
}
