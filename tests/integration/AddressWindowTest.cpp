// The three address tables answer every request as a walk of all their rows
// does, although a request window now limits the walk: each request of
// data/address-window-queries.txt (GET, GETNEXT and GETBULK, of one varbind
// or three, at instances of data/address-window.json and at crafted OIDs
// around them, under time marks that keep or drop each neighbour) must get
// the answer that data/address-window-answers.txt gives for it, varbind for
// varbind, with its error status. The answers were recorded from the agent
// as it was before the window, when every request walked every row.
// data/address-window-out-of-order.json adds addresses whose index does not
// sort as their key (too long for an index, negative subtypes), under which
// the tables are walked whole; its answers are recorded the same way.
//
// To record anew (only when what a walk of every row answers has changed):
//   LLDPSNMP_RECORD_ANSWERS=/path/to/LldpSnmp.so ctest -R AddressWindow
// runs the agent with that plug-in and rewrites the answers files.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "SnmpClient.h"

namespace {

struct Case {
  char const* scenario;
  char const* answers;
};

std::vector<std::string> linesOf(std::string const& path) {
  std::ifstream in(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> wordsOf(std::string const& line) {
  std::istringstream in(line);
  std::vector<std::string> words;
  for (std::string word; in >> word;) {
    words.push_back(word);
  }
  return words;
}

std::string hexOf(std::string const& bytes) {
  std::string text;
  char digits[3];
  for (unsigned char const c : bytes) {
    std::snprintf(digits, sizeof digits, "%02x", c);
    text += digits;
  }
  return text;
}

// One line per varbind, after the error status if there is one.
std::string render(Response const& response) {
  if (response.timedOut) {
    return "  timeout\n";
  }
  std::string text;
  if (response.errorStatus != 0) {
    text += "  error " + std::to_string(response.errorStatus) + " " + std::to_string(response.errorIndex) + "\n";
  }
  for (VarBind const& b : response.varBinds) {
    std::string value;
    switch (b.type) {
      case ASN_INTEGER:
      case ASN_GAUGE:
      case ASN_COUNTER:
      case ASN_TIMETICKS:
        value = std::to_string(b.integer);
        break;
      case ASN_OCTET_STR:
        value = "x" + hexOf(b.bytes);
        break;
      case ASN_OBJECT_ID:
        value = b.objectId;
        break;
      default:
        break;
    }
    text += "  " + b.oid + " " + std::to_string(b.type) + " " + value + "\n";
  }
  return text;
}

// "GET oid...", "GETNEXT oid..." or "GETBULK nonRepeaters maxRepetitions oid...".
Response send(SnmpClient& client, std::string const& query) {
  std::vector<std::string> words = wordsOf(query);
  std::string const kind = words.front();
  words.erase(words.begin());
  if (kind == "GET") {
    return client.get(words);
  }
  if (kind == "GETNEXT") {
    return client.getNext(words);
  }
  long const nonRepeaters = std::stol(words.at(0));
  long const maxRepetitions = std::stol(words.at(1));
  words.erase(words.begin(), words.begin() + 2);
  return client.getBulk(words, nonRepeaters, maxRepetitions);
}

// The answers file: each query's line, then its rendered answer.
std::vector<std::pair<std::string, std::string>> readAnswers(std::string const& path) {
  std::vector<std::pair<std::string, std::string>> answers;
  for (std::string const& line : linesOf(path)) {
    if (line.rfind("  ", 0) == 0 && !answers.empty()) {
      answers.back().second += line + "\n";
    } else if (!line.empty()) {
      answers.emplace_back(line, "");
    }
  }
  return answers;
}

class AddressWindow : public testing::TestWithParam<Case> {};

TEST_P(AddressWindow, AnswersEveryRequestAsAWalkOfEveryRow) {
  std::vector<std::string> arguments = {"--scenario", integrationData + GetParam().scenario, "--no-notifications"};
  char const* const recordWith = std::getenv("LLDPSNMP_RECORD_ANSWERS");
  if (recordWith) {
    arguments.insert(arguments.end(), {"--plugin", recordWith});
  }
  AgentProcess agent(arguments);
  SnmpClient client(agent.peer(), "public");
  std::vector<std::string> queries;
  for (std::string const& line : linesOf(integrationData + "address-window-queries.txt")) {
    if (!line.empty()) {
      queries.push_back(line);
    }
  }
  ASSERT_GT(queries.size(), 1000u);
  std::string const answersPath = integrationData + GetParam().answers;

  if (recordWith) {
    std::ofstream out(answersPath);
    for (std::string const& query : queries) {
      out << query << "\n" << render(send(client, query));
    }
    GTEST_SKIP() << "recorded " << answersPath << " with " << recordWith;
  }

  auto const answers = readAnswers(answersPath);
  ASSERT_EQ(answers.size(), queries.size()) << answersPath << " does not answer " << integrationData
                                            << "address-window-queries.txt";
  int mismatches = 0;
  for (std::size_t i = 0; i < queries.size(); ++i) {
    ASSERT_EQ(answers[i].first, queries[i]) << "line " << i << " of the answers";
    std::string const got = render(send(client, queries[i]));
    if (got != answers[i].second && ++mismatches <= 20) {
      ADD_FAILURE() << queries[i] << "\nexpected:\n" << answers[i].second << "got:\n" << got;
    }
  }
  EXPECT_EQ(mismatches, 0) << "of " << queries.size() << " requests";
}

INSTANTIATE_TEST_SUITE_P(Scenarios, AddressWindow,
                         testing::Values(Case{"address-window.json", "address-window-answers.txt"},
                                         Case{"address-window-out-of-order.json", "address-window-out-of-order-answers.txt"}),
                         [](testing::TestParamInfo<Case> const& info) {
                           return info.index == 0 ? std::string("InKeyOrder") : std::string("OutOfOrder");
                         });

}  // namespace
