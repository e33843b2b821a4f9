// lldp-snmp-agent: an SNMP agent that loads the LldpSnmp plug-in and serves
// the LLDP state of a scenario file (or of a built-in demo switch).

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
#include "Signals.h"
#include "Snmp/Conversions.h"
#include "SnmpAgent.h"
#include "Zet/Trace.h"

namespace {

constexpr char const* program = "lldp-snmp-agent";

DesiredState readState(AgentOptions const& options) {
  return options.scenario.empty() ? demoScenario() : loadScenarioFile(options.scenario);
}

void writeRinglog(AgentOptions const& options) {
  if (!options.ringlog.empty() && !Ringlog::dumpToFile(options.ringlog)) {
    std::cerr << program << ": cannot write the ring log to " << options.ringlog << std::endl;
  }
}

int run(AgentOptions const& options) {
  // Everything that can be refused is checked before anything is served.
  auto state = readState(options);
  Signals signals;
  SnmpAgent agent(options);
  Snmp::uptimeOriginIs(SnmpAgent::uptimeOrigin());
  Reconciler reconciler;
  reconciler.apply(state);
  // The tables find the mirror at registration, so it comes before the plug-in's modules.
  PortDriver ports;
  ports.sync(reconciler.ports());
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
          if (options.scenario.empty()) {
            break;  // the demo has nothing to re-read
          }
          try {
            reconciler.apply(loadScenarioFile(options.scenario));
            ports.sync(reconciler.ports());
          } catch (ScenarioError const& e) {
            std::cerr << program << ": reload refused, still serving the previous state: " << e.what()
                      << std::endl;
          }
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
