// The remote tables of the LLDP-MIB as a scenario re-read on SIGHUP changes:
// neighbours come and go with their rows in every remote table. What a fixed
// scenario serves is in tests/integration/expected/remote-tables.json.

#include <gtest/gtest.h>

#include <string>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "Golden.h"
#include "SnmpClient.h"

namespace {

std::string const expected = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/";

TEST(RemoteTablesReload, NeighbourAddedAppearsAndNeighbourRemovedDisappears) {
  ScenarioFile const scenario(readFile(integrationData + "remote-alpha-only.json"));
  AgentProcess const agent({"--scenario", scenario.path()});
  SnmpClient client(agent.peer(), "public");
  expectWalks(client, readGoldenTables(expected + "remote-alpha-only.json"));

  auto const beta = readGoldenTables(expected + "remote-beta-only.json");
  scenario.reload(agent, readFile(integrationData + "remote-beta-only.json"));
  // A walk may see the reload half done; the end state is what counts.
  waitUntil([&] { return walksTheRowsOf(client, beta); });
  expectWalks(client, beta);
}

}  // namespace
