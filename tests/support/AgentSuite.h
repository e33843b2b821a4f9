#pragma once
// The scenarios and configuration of tests/integration/data, and the
// arguments that start the agent on one of them.

#include <string>
#include <vector>

inline std::string const integrationData = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/data/";
// Expected walks, read by readGoldenTables.
inline std::string const integrationExpected = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/";

// The scenario with a write community, so that SETs reach the handlers, and the "Snmp" trace on.
inline std::vector<std::string> onScenario(std::string const& scenario) {
  return {"--scenario", integrationData + scenario, "--config", integrationData + "writable.conf", "--trace", "Snmp=2"};
}
