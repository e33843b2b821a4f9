// Re-reading the scenario on SIGHUP, seen over real SNMP: the agent counts
// the neighbours that come and go as an LLDP agent would, serves the values
// a file pins exactly, and keeps serving the old state when the new file is
// refused.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "AgentProcess.h"
#include "SnmpClient.h"

namespace {

char const* const lastChangeTimeOid = "1.0.8802.1.1.2.1.2.1.0";  // lldpStatsRemTablesLastChangeTime
char const* const insertsOid = "1.0.8802.1.1.2.1.2.2.0";         // lldpStatsRemTablesInserts
char const* const deletesOid = "1.0.8802.1.1.2.1.2.3.0";         // lldpStatsRemTablesDeletes
char const* const dropsOid = "1.0.8802.1.1.2.1.2.4.0";           // lldpStatsRemTablesDrops

// One port; the change time pinned far beyond any run of this test, so that a
// change time the agent works out at a reload is told apart from it.
std::string const firstScenario = R"({
  "status": {"remTablesLastChangeTime": 100000, "remTablesDeletes": 2},
  "ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "alpha"}, "sysName": "alpha"}]}]})";
// beta arrives; the change time is left to the agent, the drops are pinned.
std::string const secondScenario = R"({
  "status": {"remTablesDeletes": 2, "remTablesDrops": 6},
  "ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "alpha"}, "sysName": "alpha"},
                                         {"msap": {"chassisId": "beta"}, "sysName": "beta"}]}]})";

class Reload : public testing::Test {
 protected:
  void SetUp() override {
    agent_ = std::make_unique<AgentProcess>(std::vector<std::string>{"--scenario", scenario_.path(), "--trace", "Agent=1"});
  }

  // The value of a Gauge32 or TimeTicks scalar; -1 when it cannot be read.
  long scalar(char const* oid) const { return value(oid).integer; }

  // One object's value; type 0 when it cannot be read.
  VarBind value(std::string const& oid) const {
    SnmpClient client(agent_->peer(), "public");
    auto const response = client.get({oid});
    if (response.timedOut || response.errorStatus != SNMP_ERR_NOERROR || response.varBinds.size() != 1) {
      VarBind none;
      none.oid = oid;
      none.integer = -1;
      return none;
    }
    return response.varBinds[0];
  }

  bool saidOnStandardError(std::string const& line) const {
    return waitUntil([&] { return agent_->standardError().find(line) != std::string::npos; });
  }

  void reloadWith(std::string const& text) { scenario_.reload(*agent_, text); }

  ScenarioFile const scenario_{firstScenario};
  std::unique_ptr<AgentProcess> agent_;
};

TEST_F(Reload, ArrivingNeighbourIsCountedAndMovesTheChangeTime) {
  EXPECT_EQ(scalar(insertsOid), 1);
  EXPECT_EQ(scalar(deletesOid), 2);
  EXPECT_EQ(scalar(lastChangeTimeOid), 10000000);

  reloadWith(secondScenario);
  ASSERT_TRUE(waitUntil([&] { return scalar(insertsOid) == 2; })) << agent_->standardError();
  EXPECT_EQ(scalar(deletesOid), 2);
  EXPECT_EQ(scalar(dropsOid), 6);
  long const changed = scalar(lastChangeTimeOid);
  EXPECT_GE(changed, 0);
  EXPECT_LT(changed, 10000000);
}

TEST_F(Reload, PinnedValuesAreServedExactly) {
  reloadWith(R"({"status": {"remTablesLastChangeTime": 42.5, "remTablesInserts": 100, "remTablesDeletes": 7},
                 "ports": [{"name": "e1"}]})");
  ASSERT_TRUE(waitUntil([&] { return scalar(insertsOid) == 100; })) << agent_->standardError();
  EXPECT_EQ(scalar(lastChangeTimeOid), 4250);
  EXPECT_EQ(scalar(deletesOid), 7);
}

TEST_F(Reload, RefusedFileKeepsTheOldStateAndSaysWhyOnOneLine) {
  reloadWith(secondScenario);
  ASSERT_TRUE(waitUntil([&] { return scalar(insertsOid) == 2; })) << agent_->standardError();
  long const changeTime = scalar(lastChangeTimeOid);

  reloadWith(R"({"ports": [{"name": "e1", "neighbors": [{"vlanName": [{"vlanId": 4095}]}]}]})");
  std::string const refusal = "lldp-snmp-agent: reload refused, still serving the previous state: " + scenario_.path() +
                              ": $.ports[0].neighbors[0].vlanName[0].vlanId: 4095 is not a VLAN ID from 1 to 4094 "
                              "(VlanId::value < 1 or > 4094 not allowed)\n";
  ASSERT_TRUE(waitUntil([&] { return agent_->standardError().find(refusal) != std::string::npos; }))
      << agent_->standardError();
  EXPECT_EQ(scalar(insertsOid), 2);
  EXPECT_EQ(scalar(deletesOid), 2);
  EXPECT_EQ(scalar(dropsOid), 6);
  EXPECT_EQ(scalar(lastChangeTimeOid), changeTime);

  // Not JSON at all: refused the same way, at the top of the document.
  reloadWith("{\"ports\": [");
  ASSERT_TRUE(waitUntil([&] {
    return agent_->standardError().find("reload refused, still serving the previous state: " + scenario_.path() +
                                        ": $: [json.exception.parse_error") != std::string::npos;
  })) << agent_->standardError();
  EXPECT_EQ(scalar(insertsOid), 2);
}

TEST_F(Reload, EachLoadIsRecordedForOperatorsByName) {
  EXPECT_TRUE(saidOnStandardError("Agent[1] state loaded: ports joined e1, neighbours added alpha on e1\n"))
      << agent_->standardError();
  reloadWith(secondScenario);
  EXPECT_TRUE(saidOnStandardError("Agent[1] reload applied: neighbours added beta on e1\n"))
      << agent_->standardError();
  // Within 5 s of the notification beta raised: this change raises none.
  reloadWith(R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": {"hex": "00ff"}}}]},
                           {"name": "e2"}]})");
  EXPECT_TRUE(saidOnStandardError("Agent[1] reload applied: ports joined e2, neighbours added chassis 00:ff on e1, "
                                  "neighbours removed alpha on e1, beta on e1\n"))
      << agent_->standardError();
  EXPECT_TRUE(saidOnStandardError("within the 5 s notification interval\n")) << agent_->standardError();
  reloadWith("{\"ports\": 1}");
  EXPECT_TRUE(saidOnStandardError("Agent[1] reload refused: " + scenario_.path() + ": $.ports: expected an array\n"))
      << agent_->standardError();
}

// A local address keeps the value it came with in the mirror; a reload that
// changes it under the same key must still be served as the file says.
TEST_F(Reload, ChangedLocalAddressIsServedWithItsNewValuesAndPorts) {
  auto const scenario = [](int ifId) {
    return R"({"localSystem": {"managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.7", "ifSubtype": 2,
               "ifId": )" + std::to_string(ifId) + R"(, "oid": "1.3.6.1.2.1.2.2.1.1.)" + std::to_string(ifId) +
           R"(", "priority": 1}]},
               "ports": [{"name": "e1", "config": {"manAddrTxEnable": true}}]})";
  };
  std::string const address = ".1.4.192.0.2.7";
  std::string const ifId = "1.0.8802.1.1.2.1.3.8.1.5" + address;             // lldpLocManAddrIfId
  std::string const oid = "1.0.8802.1.1.2.1.3.8.1.6" + address;              // lldpLocManAddrOID
  std::string const portsTxEnable = "1.0.8802.1.1.2.1.1.7.1.1" + address;    // lldpConfigManAddrPortsTxEnable
  reloadWith(scenario(3));
  ASSERT_TRUE(waitUntil([&] { return value(ifId).integer == 3; })) << agent_->standardError();
  reloadWith(scenario(9));
  ASSERT_TRUE(waitUntil([&] { return value(ifId).integer == 9; })) << agent_->standardError();
  EXPECT_EQ(value(oid).objectId, "1.3.6.1.2.1.2.2.1.1.9");
  EXPECT_EQ(value(portsTxEnable).bytes, std::string("\x80", 1));
}

// A file large enough that the agent takes it in over many turns of its event
// loop, and a second SIGHUP while it reads: the change arrives whole, counted
// once, and the agent is the same agent afterwards.
TEST_F(Reload, LargeChangeArrivesWholeAndCountedOnceThoughSignalledTwice) {
  constexpr int ports = 200;
  constexpr int perPort = 10;
  // Every other port's neighbours are replaced by others (new chassis IDs).
  auto const scenario = [&](char const* generation) {
    std::string text = R"({"ports": [)";
    for (int port = 1; port <= ports; ++port) {
      text += std::string(port > 1 ? "," : "") + R"({"name": "e)" + std::to_string(port) + R"(", "neighbors": [)";
      for (int n = 1; n <= perPort; ++n) {
        std::string const id = (port % 2 ? generation : "a") + std::to_string(port) + "-" + std::to_string(n);
        text += std::string(n > 1 ? "," : "") + R"({"index": )" + std::to_string(n) + R"(, "msap": {"chassisId": ")" +
                id + R"("}, "sysName": ")" + id + R"("})";
      }
      text += "]}";
    }
    return text + "]}";
  };
  reloadWith(scenario("a"));
  ASSERT_TRUE(waitUntil([&] { return scalar(insertsOid) == 1 + ports * perPort; }, 30.0)) << agent_->standardError();
  long const deletesBefore = scalar(deletesOid);

  reloadWith(scenario("b"));
  agent_->sendSignal(SIGHUP);
  constexpr long replaced = (ports / 2) * perPort;
  ASSERT_TRUE(waitUntil([&] { return scalar(insertsOid) == 1 + ports * perPort + replaced; }, 30.0))
      << agent_->standardError();
  // The last port's neighbours are the new ones; the first even port kept its own.
  std::string const sysName = "1.0.8802.1.1.2.1.4.1.1.9.0.";  // lldpRemSysName, mark 0
  EXPECT_EQ(value(sysName + std::to_string(ports - 1) + "." + std::to_string(perPort)).bytes,
            "b" + std::to_string(ports - 1) + "-" + std::to_string(perPort));
  EXPECT_EQ(value(sysName + "2.1").bytes, "a2-1");
  EXPECT_EQ(scalar(deletesOid), deletesBefore + replaced);
  EXPECT_TRUE(saidOnStandardError("reload applied: neighbours added b1-1 on e1")) << agent_->standardError();
}

}  // namespace
