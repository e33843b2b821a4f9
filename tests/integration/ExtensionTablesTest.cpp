// The neighbour filters of the 802.1 and 802.3 extension tables followed
// through a reload: a neighbour shows in a filtered table once it has sent
// the TLV. What a fixed scenario serves is in
// tests/integration/expected/extension-*.json.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <string>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "Golden.h"
#include "SnmpClient.h"

namespace {

std::string const expected = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/";

TEST(ExtensionTablesReload, NeighbourShowsInTheFilteredTablesOnceItsFlagsAreTrue) {
  ScenarioFile const scenario(readFile(integrationData + "extension-flags-down.json"));
  AgentProcess const agent({"--scenario", scenario.path(), "--trace", "Snmp=2"});
  expectGolden(agent, readGolden(expected + "extension-flags-down.json"));

  scenario.reload(agent, readFile(integrationData + "extension-flags-up.json"));
  SnmpClient client(agent.peer(), "public");
  ASSERT_TRUE(waitUntil([&] {
    auto const r = client.get({"1.0.8802.1.1.2.1.5.4623.1.3.4.1.1.0.1.1"});  // lldpXdot3RemMaxFrameSize
    return !r.varBinds.empty() && r.varBinds[0].type != SNMP_NOSUCHINSTANCE;
  })) << agent.standardError();
  expectGolden(agent, readGolden(expected + "extension-flags-up.json"));
}

}  // namespace
