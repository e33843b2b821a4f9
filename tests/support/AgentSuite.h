#pragma once
// One real agent for a whole test suite, started on a scenario and
// configuration of tests/integration/data with the "Snmp" trace on:
//
//   class PortTables : public AgentSuite<PortTables> {
//    public:
//     static std::vector<std::string> arguments() { return onScenario("port-tables.json"); }
//   };

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "AgentProcess.h"
#include "SnmpClient.h"

inline std::string const integrationData = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/data/";
// Expected walks, read by readGoldenTables.
inline std::string const integrationExpected = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/";

template <class Suite>
class AgentSuite : public testing::Test {
 protected:
  static void SetUpTestSuite() { agent_ = std::make_unique<AgentProcess>(Suite::arguments()); }
  static void TearDownTestSuite() { agent_.reset(); }

  // The scenario with a write community, so that SETs reach the handlers.
  static std::vector<std::string> onScenario(std::string const& scenario) {
    return {"--scenario", integrationData + scenario, "--config", integrationData + "writable.conf", "--trace",
            "Snmp=2"};
  }
  static SnmpClient client(char const* community = "public") { return SnmpClient(agent_->peer(), community); }

  static inline std::unique_ptr<AgentProcess> agent_;
};
