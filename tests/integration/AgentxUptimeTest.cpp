// As an AgentX sub-agent the agent's TimeTicks count from the master's
// sysUpTime, which a manager compares them with; a master that restarts
// starts them again. Seen over real SNMP through a private snmpd.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "AgentProcess.h"
#include "SnmpClient.h"

namespace {

char const* const sysUpTimeOid = "1.3.6.1.2.1.1.3.0";
char const* const lastChangeTimeOid = "1.0.8802.1.1.2.1.2.1.0";  // lldpStatsRemTablesLastChangeTime
char const* const remSysNameColumn = "1.0.8802.1.1.2.1.4.1.1.9";  // lldpRemSysName

std::string scenarioNaming(std::string const& sysName) {
  return R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "alpha"}, "sysName": ")" + sysName +
         R"("}]}]})";
}

class AgentxUptime : public testing::Test {
 protected:

  // A TimeTicks scalar through the master; -1 when it cannot be read.
  static long ticks(Snmpd const& master, char const* oid) {
    SnmpClient client(master.peer(), "public");
    auto const response = client.get({oid});
    if (response.timedOut || response.errorStatus != SNMP_ERR_NOERROR || response.varBinds.size() != 1 ||
        response.varBinds[0].type != ASN_TIMETICKS) {
      return -1;
    }
    return response.varBinds[0].integer;
  }

  // The neighbour's lldpRemSysName as a request under lldpRemTimeMark `mark`
  // sees it (port 1, index 1); empty when the row is filtered out or absent.
  static std::string sysNameAtMark(Snmpd const& master, long mark) {
    SnmpClient client(master.peer(), "public");
    auto const response = client.get({std::string(remSysNameColumn) + "." + std::to_string(mark) + ".1.1"});
    if (response.timedOut || response.varBinds.size() != 1 || response.varBinds[0].type != ASN_OCTET_STR) {
      return "";
    }
    return response.varBinds[0].bytes;
  }

  // Renames the neighbour by a reload; checks that the change is stamped on
  // the master's clock, between its sysUpTime before and after.
  void expectChangeOnMastersClock(Snmpd const& master, AgentProcess& agent, std::string const& sysName) {
    long const before = ticks(master, sysUpTimeOid);
    ASSERT_GE(before, 0);
    scenario_.reload(agent, scenarioNaming(sysName));
    ASSERT_TRUE(waitUntil([&] { return sysNameAtMark(master, 0) == sysName; }, 10.0)) << agent.standardError();
    long const after = ticks(master, sysUpTimeOid);
    long const changed = ticks(master, lastChangeTimeOid);
    // The sub-agent learns the master's clock to the tick it was sent in.
    EXPECT_GE(changed + 1, before);
    EXPECT_LE(changed, after);
    // The time filter reads the same clock: the row is there up to two ticks past its change.
    EXPECT_EQ(sysNameAtMark(master, changed + 2), sysName);
    EXPECT_EQ(sysNameAtMark(master, changed + 3), "");
  }

  ScenarioFile const scenario_{scenarioNaming("first")};
};

TEST_F(AgentxUptime, ChangeTimesFollowTheMastersUptimeAlsoAfterItRestarts) {
  Snmpd master;
  // Up well before the agent, so that its clock and the agent's differ by seconds.
  ASSERT_TRUE(waitUntil([&] { return ticks(master, sysUpTimeOid) >= 200; }, 10.0));
  AgentProcess agent({"--scenario", scenario_.path(), "--no-notifications"}, master);
  expectChangeOnMastersClock(master, agent, "second");

  master.restart();
  // The agent finds the new master by itself (it pings every few seconds).
  ASSERT_TRUE(waitUntil([&] { return sysNameAtMark(master, 0) == "second"; }, 20.0)) << agent.standardError();
  // What changed before the master restarted happened before its sysUpTime 0.
  EXPECT_EQ(ticks(master, lastChangeTimeOid), 0);
  expectChangeOnMastersClock(master, agent, "third");
}

}  // namespace
