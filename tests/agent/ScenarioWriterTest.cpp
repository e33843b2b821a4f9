// Writing the state as a scenario file: whatever a scenario can say, written
// and read again, is the same state, in particular bytes that are no UTF-8,
// identifiers and addresses whose subtype gives their text a form, and values
// left to the agent.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "AgentProcess.h"
#include "Scenario.h"
#include "ScenarioWriter.h"

namespace {

std::filesystem::path const sourceDir(LLDP_SNMP_SOURCE_DIR);

// A JSON object of the scenario's top-level attributes only; the data
// folders also hold tables of test cases and the format's schema.
bool looksLikeScenario(std::filesystem::path const& file) {
  std::ifstream in(file);
  auto const json = nlohmann::json::parse(in, nullptr, false);
  if (!json.is_object()) {
    return false;
  }
  static std::set<std::string> const topLevel{"$schema", "description", "config", "status", "localSystem", "ports"};
  return std::all_of(json.items().begin(), json.items().end(),
                     [](auto const& item) { return topLevel.contains(item.key()); });
}

// Every scenario of the project that is meant to load.
std::vector<std::filesystem::path> scenarios() {
  std::vector<std::filesystem::path> files;
  for (auto const& dir : {sourceDir / "examples", sourceDir / "tests/integration/data", sourceDir / "tests/agent/data"}) {
    for (auto const& entry : std::filesystem::directory_iterator(dir)) {
      if (entry.path().extension() == ".json" && looksLikeScenario(entry.path())) {
        files.push_back(entry.path());
      }
    }
  }
  return files;
}

TEST(ScenarioWriter, EveryScenarioReadsBackAsTheSameState) {
  auto const files = scenarios();
  ASSERT_GT(files.size(), 10u);
  for (auto const& file : files) {
    SCOPED_TRACE(file.string());
    DesiredState const state = loadScenarioFile(file.string());
    std::string const text = scenarioText(state);
    DesiredState const again = parseScenario(text, "written");
    EXPECT_TRUE(again == state) << text;
    EXPECT_EQ(scenarioText(again), text);
  }
}

TEST(ScenarioWriter, TheDemoWrittenToAFileLoadsBack) {
  std::string const directory = makeTempDirectory();
  std::string const path = directory + "/demo.json";
  writeScenarioFile(path, demoScenario());
  EXPECT_TRUE(loadScenarioFile(path) == demoScenario());
  std::filesystem::remove_all(directory);
  EXPECT_THROW(writeScenarioFile(directory + "/gone/demo.json", demoScenario()), std::runtime_error);
}

}  // namespace
