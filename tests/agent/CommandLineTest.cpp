// The command line of the real program: what each run answers and how it ends.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "AgentProcess.h"

namespace {

// A row's output: one string, or its lines.
std::string textOf(nlohmann::json const& output) {
  if (!output.is_array()) {
    return output.get<std::string>();
  }
  std::string text;
  for (auto const& line : output) {
    text += line.get<std::string>() + "\n";
  }
  return text;
}

std::string replaced(std::string text, std::string const& from, std::string const& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Each row of data/command-lines.json gives the arguments, the exit code and
// all the run writes. "@SOURCE@" stands for the source tree, "@VERSION@" for
// the project's version, "@FILE@" for a file that holds the row's "scenario"
// (or its "text", where JSON cannot hold it).
TEST(CommandLine, EachRunEndsWithItsExitCodeAndOutput) {
  std::ifstream table(std::filesystem::path(LLDP_SNMP_SOURCE_DIR) / "tests/agent/data/command-lines.json");
  auto const rows = nlohmann::json::parse(table);
  ASSERT_FALSE(rows.empty());
  for (auto const& row : rows) {
    SCOPED_TRACE(row["arguments"].dump());
    auto const directory = makeTempDirectory();
    std::string const file = directory + "/lab.json";
    if (row.contains("scenario")) {
      writeFile(file, row["scenario"].dump());
    } else if (row.contains("text")) {
      writeFile(file, row["text"].get<std::string>());
    }
    auto const expand = [&](std::string const& text) {
      return replaced(replaced(replaced(text, "@SOURCE@", LLDP_SNMP_SOURCE_DIR), "@FILE@", file), "@VERSION@",
                      LLDP_SNMP_VERSION);
    };
    std::vector<std::string> arguments;
    for (auto const& argument : row["arguments"]) {
      arguments.push_back(expand(argument.get<std::string>()));
    }
    auto const run = runAgentToEnd(arguments);
    std::filesystem::remove_all(directory);
    EXPECT_EQ(run.exitCode, row["exit"].get<int>());
    EXPECT_EQ(run.standardOutput, expand(textOf(row.value("stdout", nlohmann::json("")))));
    EXPECT_EQ(run.standardError, expand(textOf(row.value("stderr", nlohmann::json("")))));
  }
}

}  // namespace
