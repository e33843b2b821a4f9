// What a manager with the IEEE MIB modules loaded sees of the agent: net-snmp's
// snmpwalk checks every served type against the modules ("Wrong Type" where
// they differ) and names BITS and enumerations as the modules do. The walks
// and the lines each must show are in tests/integration/expected/mib-walks.json.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <nlohmann/json.hpp>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "Golden.h"

namespace {

TEST(MibTypes, EveryScenarioWalksWithTheTypesAndNamesOfTheModules) {
  std::ifstream in(integrationExpected + "mib-walks.json");
  auto const walks = nlohmann::json::parse(in).at("walks");
  ASSERT_FALSE(walks.empty());
  for (auto const& walk : walks) {
    std::string const scenario = walk.at("scenario").get<std::string>();
    SCOPED_TRACE(scenario);
    AgentProcess agent({"--scenario", integrationData + scenario});
    int status = 0;
    std::string const output = walkWithMibs(agent.peer(), walk.at("object").get<std::string>(), &status);
    EXPECT_EQ(status, 0) << output;
    EXPECT_EQ(output.find("Wrong Type"), std::string::npos) << output;
    for (auto const& line : walk.at("lines")) {
      EXPECT_NE(output.find(line.get<std::string>()), std::string::npos) << line << "\n" << output;
    }
  }
}

}  // namespace
