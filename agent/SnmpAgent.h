#pragma once
// net-snmp's agent, as this process runs it: a master agent on --listen, or an
// AgentX sub-agent. Construction starts the library; destruction shuts it down.

#include <string>

#include "AgentOptions.h"

class SnmpAgent {
 public:
  // Sets net-snmp up for `options` and registers its configuration handlers;
  // no port is open yet, so MIB modules can register before the agent serves.
  explicit SnmpAgent(AgentOptions const& options);
  ~SnmpAgent();
  SnmpAgent(SnmpAgent const&) = delete;
  SnmpAgent& operator=(SnmpAgent const&) = delete;

  // Reads the configuration and opens the listening port or the AgentX
  // session; throws std::runtime_error when that fails.
  void start();
  // Waits for and serves what arrives: SNMP packets, timers, registered fds.
  void processOnce();

  // The state database's clock stamp of sysUpTime 0.
  static double uptimeOrigin();

 private:
  AgentOptions options_;
  std::string appName_ = "lldp-snmp-agent";
};
