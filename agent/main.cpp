// lldp-snmp-agent: an SNMP agent that loads the LldpSnmp plug-in and serves
// the LLDP state of a scenario file (or of a built-in demo switch), or lldpd's.

#include <malloc.h>

#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <string>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "AgentOptions.h"
#include "DesiredState.h"
#include "DeviceMibs.h"
#include "OperatorLog.h"
#include "Plugin.h"
#include "MirrorDump.h"
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
#include "StateWriter.h"
#include "Statebase/Statebase.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace {

constexpr char const* program = "lldp-snmp-agent";

// --check: the scenario is read as at start, and nothing is served.
int checkScenario(std::string const& path) {
  DesiredState const state = loadScenarioFile(path);
  std::size_t neighbours = 0;
  for (DesiredPort const& port : state.ports) {
    neighbours += port.neighbors.size();
  }
  auto const counted = [](std::size_t n, char const* one, char const* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
  };
  std::cout << path << ": " << counted(state.ports.size(), "port", "ports") << ", "
            << counted(neighbours, "neighbour", "neighbours") << ", OK" << std::endl;
  return 0;
}

std::string servedWhere(AgentOptions const& options) {
  if (!options.agentx) {
    return "on " + options.listen;
  }
  return "through the AgentX master at " + (options.agentx->empty() ? std::string("net-snmp's default socket")
                                                                     : *options.agentx);
}

// Reading a scenario builds its whole JSON document and frees it again;
// malloc would keep those pages, several times the state they described.
void returnFreedHeap() { malloc_trim(0); }

void writeDumps(AgentOptions const& options, PortDriver const& ports) {

  if (!options.ringlog.empty() && !Ringlog::dumpToFile(options.ringlog)) {
    std::cerr << program << ": cannot write the ring log to " << options.ringlog << std::endl;
  }
  if (!options.mirrorDump.empty() && !MirrorDump::writeToFile(options.mirrorDump, *ports.root())) {
    std::cerr << program << ": cannot write the mirror to " << options.mirrorDump << std::endl;
  }
}

int run(AgentOptions const& options) {
  // Everything that can be refused is checked before anything is served.
  auto const feed = makeStateFeed(options);
  feed->open();
  if (!options.writeScenario.empty()) {
    // No agent runs: the state's times count from now.
    Snmp::uptimeOriginIs(Zet::System::currentTime());
    writeScenarioFile(options.writeScenario, feed->initialState());
    return 0;
  }
  Signals signals;
  SnmpAgent agent(options);
  DeviceMibs device(!options.agentx);
  // TimeTicks count from sysUpTime 0 of whoever answers the manager: a master
  // that restarts starts them again.
  agent.masterSessionOpenedIs([] { Snmp::uptimeOriginIs(SnmpAgent::uptimeOrigin()); });
  // A sub-agent opens its session here and so learns the master's uptime
  // before the state is stamped; it registers nothing until the modules come
  // up below, with the whole state in place.
  agent.start();
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
  {
    DesiredState const first = feed->initialState();
    OperatorLog::applied("state loaded", reconciler.apply(first));
    device.apply(first);
  }
  // The tables find the mirror at registration, and the LldpSm hands it over at
  // its first scan: both come before the plug-in's modules.
  PortDriver ports;
  ports.follow(reconciler);
  StateWriter writer(reconciler, ports.lldpSm(), device);
  feed->follow(writer);
  Plugin plugin(options.plugin.empty() ? Plugin::defaultPath() : options.plugin);
  plugin.initModules("");
  returnFreedHeap();
  device.announceLldpModules();
  std::cout << program << ": serving the LLDP-MIB " << servedWhere(options) << std::endl;

  bool stop = false;
  while (!stop) {
    // A write under way goes on between requests.
    agent.processOnce(writer.pending());
    writer.advance();
    while (int const signal = signals.next()) {
      switch (signal) {
        case SIGINT:
        case SIGTERM:
          stop = true;
          break;
        case SIGHUP:
          feed->reload();
          break;
        case SIGUSR1:
          writeDumps(options, ports);
          break;
        default:
          break;
      }
    }
  }
  plugin.unregisterModules();
  writeDumps(options, ports);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  auto const parsed = parseAgentOptions(argc, argv);
  if (!parsed.options) {
    return parsed.exitCode;
  }
  // The options have checked the text already.
  Zet::Trace::configure(parsed.options->trace);
  try {
    return parsed.options->check ? checkScenario(*parsed.options->check) : run(*parsed.options);
  } catch (ScenarioError const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  } catch (std::exception const& e) {
    std::cerr << program << ": " << e.what() << std::endl;
    return 1;
  }
}
