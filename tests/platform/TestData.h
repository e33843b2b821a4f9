#pragma once
// Expected outputs kept as data under tests/<folder>/data, found from this
// header's own place so that every test binary reads them the same way.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

// The whole of tests/`relative`.
inline std::string testDataText(std::string const& relative) {
  std::ifstream in(std::filesystem::path(__FILE__).parent_path().parent_path() / relative);
  EXPECT_TRUE(in) << "cannot read tests/" << relative;
  return {std::istreambuf_iterator<char>(in), {}};
}

// The cases of tests/`relative`: one a line, its fields split at " | ";
// blank lines and lines starting with '#' are passed over.
inline std::vector<std::vector<std::string>> testDataCases(std::string const& relative) {
  std::vector<std::vector<std::string>> cases;
  std::istringstream lines(testDataText(relative));
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') {
      continue;
    }
    auto& fields = cases.emplace_back();
    for (std::size_t start = 0;;) {
      auto const bar = line.find(" | ", start);
      fields.push_back(line.substr(start, bar - start));
      if (bar == std::string::npos) {
        break;
      }
      start = bar + 3;
    }
  }
  EXPECT_FALSE(cases.empty()) << "no cases in tests/" << relative;
  return cases;
}
