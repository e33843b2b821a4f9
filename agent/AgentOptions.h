#pragma once
// The command line of lldp-snmp-agent.

#include <optional>
#include <string>

struct AgentOptions {
  std::string listen = "udp:127.0.0.1:1161";
  std::string community = "public";
  std::string config;                  // a net-snmp configuration file, read as snmpd reads its own
  std::optional<std::string> agentx;   // set: run as AgentX sub-agent; empty text: net-snmp's default socket
  std::string scenario;                // empty: the built-in demo switch
  std::optional<std::string> check;    // set: only read and check this scenario file (--check)
  std::optional<std::string> feed;     // set: follow lldpd at this control socket; empty text: liblldpctl's default
  std::string writeScenario;           // set: write the state as a scenario file there and end
  std::string plugin;                  // empty: found beside the agent
  std::string trace;                   // "Snmp=2,LldpSnmp=8"
  std::string ringlog;                 // where the ring log is written at exit and on SIGUSR1
  std::string mirrorDump;              // where the mirror is written at exit and on SIGUSR1
  std::string persistentDir;           // net-snmp's persistent state; empty: net-snmp's default
  bool notifications = true;           // false: no notification goes out (--no-notifications)
  double notificationDelay = 0.0;      // seconds lldpRemTablesChange is held back before it is sent
};

// Parses the command line. Returns the options, or the exit code when the
// process should end now (after --help, or 2 after a usage error, which has
// been reported on standard error).
struct ParsedOptions {
  std::optional<AgentOptions> options;
  int exitCode = 0;
};
ParsedOptions parseAgentOptions(int argc, char const* const* argv);
