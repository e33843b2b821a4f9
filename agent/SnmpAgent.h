#pragma once
// net-snmp's agent, as this process runs it: a master agent on --listen, or an
// AgentX sub-agent. Construction starts the library; destruction shuts it down.

#include <functional>
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
  // session; throws std::runtime_error when that fails. A sub-agent whose
  // master is not there yet starts all the same and keeps trying.
  void start();
  // Called each time an AgentX session with the master opens, the first time
  // and after every reconnection; net-snmp has then taken over the master's
  // sysUpTime. Set before start().
  void masterSessionOpenedIs(std::function<void()> handler) { masterSessionOpened_ = std::move(handler); }
  // Waits for and serves what arrives: SNMP packets, timers, registered fds.
  // With `poll`, serves only what is there already and returns at once.
  void processOnce(bool poll = false);

  // The state database's clock stamp of sysUpTime 0: this agent's start, or
  // as a sub-agent the master's, once a session has told it.
  static double uptimeOrigin();

 private:
  static int onIndexStart(int major, int minor, void* serverArgument, void* clientArgument);

  AgentOptions options_;
  std::string appName_ = "lldp-snmp-agent";
  std::function<void()> masterSessionOpened_;
};
