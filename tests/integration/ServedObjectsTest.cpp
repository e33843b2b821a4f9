// What the agent serves over real SNMP, one case per golden file of
// tests/integration/expected that names its scenario: each request of the
// file gets its answer, each table walks exactly its rows, and net-snmp's
// tools, with the IEEE MIB modules loaded, read every value as typed there.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "Golden.h"

namespace {

std::string const expectedDir = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/";

std::vector<std::string> goldenFiles() {
  std::vector<std::string> files;
  for (auto const& entry : std::filesystem::directory_iterator(expectedDir)) {
    if (entry.path().extension() == ".json" && !readGolden(entry.path()).scenario.empty()) {
      files.push_back(entry.path().filename().string());
    }
  }
  std::ranges::sort(files);
  return files;
}

class ServedObjects : public testing::TestWithParam<std::string> {};

TEST_P(ServedObjects, RequestsGetTheirAnswersAndTablesWalkExactlyTheirRows) {
  Golden const golden = readGolden(expectedDir + GetParam());
  AgentProcess const agent(onScenario(golden.scenario));
  expectGolden(agent, golden);
}

INSTANTIATE_TEST_SUITE_P(Golden, ServedObjects, testing::ValuesIn(goldenFiles()),
                         [](testing::TestParamInfo<std::string> const& info) {
                           std::string name = info.param.substr(0, info.param.find('.'));
                           std::ranges::replace(name, '-', '_');
                           return name;
                         });

}  // namespace
