// lldp-snmp-agent: an SNMP agent that loads the LldpSnmp plug-in and serves
// the LLDP state of a scenario file (or of a built-in demo switch), or lldpd's.

#include <iostream>
#include <stdexcept>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "AgentOptions.h"
#include "DesiredState.h"
#include "Plugin.h"
#include "PortDriver.h"
#include "Reconciler.h"
#include "Ringlog/Ringlog.h"
#include "Scenario.h"
#include "ScenarioWriter.h"
#include "Signals.h"
#include "Snmp/Config.h"
#include "Snmp/Conversions.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpAgent.h"
#include "StateFeed.h"
#include "Statebase/Statebase.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace {

constexpr char const* program = "lldp-snmp-agent";

void writeRinglog(AgentOptions const& options) {
  if (!options.ringlog.empty() && !Ringlog::dumpToFile(options.ringlog)) {
    std::cerr << program << ": cannot write the ring log to " << options.ringlog << std::endl;
  }
}

int run(AgentOptions const& options) {
  // Everything that can be refused is checked before anything is served.
  auto const feed = makeStateFeed(options);
  if (!options.writeScenario.empty()) {
    // No agent runs: the state's times count from now.
    Snmp::uptimeOriginIs(Zet::System::currentTime());
    writeScenarioFile(options.writeScenario, feed->initialState());
    return 0;
  }
  Signals signals;
  SnmpAgent agent(options);
  Snmp::uptimeOriginIs(SnmpAgent::uptimeOrigin());
  // The plug-in's notification must be registered before any change can raise it.
  auto const snmpConfig = Zet::makePtr<Snmp::Config>();
  auto const lldpNotifications = snmpConfig->notificationConfigIs("lldp");
  lldpNotifications->notificationIs("lldpRemTablesChange");
  lldpNotifications->delayIs({"lldpRemTablesChange"}, options.notificationDelay);
  if (!options.notifications) {
    snmpConfig->notificationsEnabledIs(false, "notifications turned off with --no-notifications");
  }
  Statebase::entityIs(SnmpUtil::snmpConfigPath, snmpConfig);
  Reconciler reconciler;
  reconciler.apply(feed->initialState());
  feed->follow(reconciler);
  // The tables find the mirror at registration, and the LldpSm hands it over at
  // its first scan: both come before the plug-in's modules.
  PortDriver ports;
  ports.follow(reconciler);
  Plugin plugin(options.plugin.empty() ? Plugin::defaultPath() : options.plugin);
  plugin.initModules("");
  agent.start();

  bool stop = false;
  while (!stop) {
    agent.processOnce();
    while (int const signal = signals.next()) {
      switch (signal) {
        case SIGINT:
        case SIGTERM:
          stop = true;
          break;
        case SIGHUP:
          // The driver follows the ports inside the apply.
          feed->reload();
          break;
        case SIGUSR1:
          writeRinglog(options);
          break;
        default:
          break;
      }
    }
  }
  plugin.unregisterModules();
  writeRinglog(options);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  auto const parsed = parseAgentOptions(argc, argv);
  if (!parsed.options) {
    return parsed.exitCode;
  }
  try {
    Zet::Trace::configure(parsed.options->trace);
  } catch (std::invalid_argument const& e) {
    std::cerr << program << ": --trace: " << e.what() << std::endl;
    return 2;
  }
  try {
    return run(*parsed.options);
  } catch (ScenarioError const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  } catch (std::exception const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  }
}
