// The agent as a device that management systems class, over real SNMP: in
// master mode (what device.json serves is in tests/integration/expected)
// nothing listening beyond --listen, and the system group and IF-MIB
// following the scenario; as an AgentX sub-agent only its modules' rows in the
// master's sysORTable; and as the master of a private snmpd (snmpd -X),
// snmpd's objects answered through it.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/wait.h>

#include "AgentProcess.h"
#include "AgentSuite.h"
#include "Golden.h"
#include "SnmpClient.h"

namespace {

std::string const& data = integrationData;
std::string const golden = integrationExpected + "device.json";

char const* const sysUpTime = "1.3.6.1.2.1.1.3.0";
char const* const sysName = "1.3.6.1.2.1.1.5.0";
char const* const sysLocation = "1.3.6.1.2.1.1.6.0";
char const* const sysOrDescrColumn = "1.3.6.1.2.1.1.9.1.3";
char const* const ifNumber = "1.3.6.1.2.1.2.1.0";
char const* const ifNameColumn = "1.3.6.1.2.1.31.1.1.1.1";
char const* const lastChangeTime = "1.0.8802.1.1.2.1.2.1.0";  // lldpStatsRemTablesLastChangeTime
char const* const hrSystemUptime = "1.3.6.1.2.1.25.1.1.0";    // HOST-RESOURCES-MIB, served by snmpd
char const* const memTotalReal = "1.3.6.1.4.1.2021.4.5.0";    // UCD-SNMP-MIB, served by snmpd

// The single value at `oid`, or an empty VarBind (type 0) when there is none.
VarBind getOne(SnmpClient& client, std::string const& oid) {
  auto const response = client.get({oid});
  if (response.timedOut || response.errorStatus != SNMP_ERR_NOERROR || response.varBinds.size() != 1) {
    return {};
  }
  return response.varBinds[0];
}

std::vector<std::string> texts(std::vector<VarBind> const& walked) {
  std::vector<std::string> result;
  for (VarBind const& b : walked) {
    result.push_back(b.bytes);
  }
  return result;
}

// The sysORDescr values of the golden walk that name an LLDP module.
std::vector<std::string> lldpModuleDescriptions() {
  std::vector<std::string> descriptions;
  for (Table const& table : readGoldenTables(golden)) {
    for (Expected const& row : table.rows) {
      if (row.oid.starts_with(std::string(sysOrDescrColumn) + ".") && row.text.starts_with("LLDP")) {
        descriptions.push_back(row.text);
      }
    }
  }
  return descriptions;
}

bool containsAll(std::vector<std::string> const& haystack, std::vector<std::string> const& needles) {
  return std::ranges::all_of(needles, [&](std::string const& n) { return std::ranges::find(haystack, n) != haystack.end(); });
}

TEST(DeviceReload, ListensOnlyWhereToldAndSystemAndInterfacesFollowTheFileOnTheLldpClock) {
  ScenarioFile const scenario(R"({"system": {"sysLocation": "hall A"}, "ports": [{"name": "e1"}]})");
  AgentProcess agent({"--scenario", scenario.path()});
  EXPECT_EQ(listeningSockets(agent.pid()), std::vector<std::string>{"udp 127.0.0.1:" + std::to_string(agent.port())});
  SnmpClient client(agent.peer(), "public");
  long const before = getOne(client, sysUpTime).integer;

  scenario.reload(agent, R"({"system": {"sysLocation": "hall B"}, "localSystem": {"sysName": "edge-7"},
                          "ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "alpha"}}]}, {"name": "e2"}]})");
  ASSERT_TRUE(waitUntil([&] { return getOne(client, sysLocation).bytes == "hall B"; })) << agent.standardError();
  long const after = getOne(client, sysUpTime).integer;
  VarBind const changed = getOne(client, lastChangeTime);
  // sysUpTime and the LLDP TimeTicks share one origin: the change lies between two readings of sysUpTime.
  EXPECT_GE(changed.integer, before);
  EXPECT_LE(changed.integer, after);
  EXPECT_EQ(getOne(client, sysName).bytes, "edge-7");
  EXPECT_EQ(getOne(client, ifNumber).integer, 2);
  EXPECT_EQ(texts(client.walk(ifNameColumn)), (std::vector<std::string>{"e1", "e2"}));
}

TEST(DeviceUnderSnmpd, OnlyTheLldpModulesRowsReachTheMaster) {
  Snmpd master;
  AgentProcess agent({"--scenario", data + "device.json"}, master);
  SnmpClient client(master.peer(), "public");
  auto const descriptions = lldpModuleDescriptions();
  ASSERT_EQ(descriptions.size(), 3u);
  EXPECT_TRUE(waitUntil([&] { return containsAll(texts(client.walk(sysOrDescrColumn)), descriptions); }))
      << agent.standardError();
  // The system group and the interfaces stay the master's.
  EXPECT_NE(getOne(client, sysLocation).bytes, "Lab, rack 4");
  EXPECT_NE(getOne(client, sysName).bytes, "lab-sw2");
  auto const names = texts(client.walk(ifNameColumn));
  EXPECT_EQ(std::ranges::find(names, "Ethernet1"), names.end());
}

TEST(AgentAsMaster, AnswersForSnmpdAsItsSubagentAcrossSnmpdRestarts) {
  auto const directory = makeTempDirectory();
  std::string const socket = directory + "/agentx";
  writeFile(directory + "/agent.conf", "master agentx\nagentXSocket " + socket + "\n");
  AgentProcess agent({"--scenario", data + "device.json", "--config", directory + "/agent.conf"});
  Snmpd snmpd(socket);
  SnmpClient client(agent.peer(), "public");
  // snmpd registers its modules one after another: the host resources and UCD objects, and its sysORTable rows.
  auto const snmpdAnswers = [&] {
    return getOne(client, hrSystemUptime).type == ASN_TIMETICKS && getOne(client, memTotalReal).type == ASN_INTEGER &&
           client.walk(sysOrDescrColumn).size() > 4;
  };
  ASSERT_TRUE(waitUntil(snmpdAnswers, 15.0)) << agent.standardError();
  // snmpd registers the system group and IF-MIB too; the agent's registrations came first and stay.
  auto tables = readGoldenTables(golden);
  std::erase_if(tables, [](Table const& table) { return table.name == "system"; });  // sysORTable has snmpd's rows too
  expectWalks(client, tables);
  EXPECT_EQ(getOne(client, "1.3.6.1.2.1.1.1.0").bytes, "Lab switch 2");  // sysDescr
  auto const modules = texts(client.walk(sysOrDescrColumn));
  EXPECT_TRUE(containsAll(modules, lldpModuleDescriptions()));
  EXPECT_EQ(getOne(client, "1.0.8802.1.1.2.1.3.3.0").bytes, "lab-sw2");  // lldpLocSysName

  snmpd.stop();
  ASSERT_TRUE(waitUntil([&] { return getOne(client, hrSystemUptime).type != ASN_TIMETICKS; }, 10.0));
  snmpd.start();
  EXPECT_TRUE(waitUntil(snmpdAnswers, 15.0)) << agent.standardError();
  EXPECT_EQ(listeningSockets(agent.pid()), std::vector<std::string>{"udp 127.0.0.1:" + std::to_string(agent.port())});
  std::filesystem::remove_all(directory);
}

TEST(Device, WithoutAScenarioServesTheDemoSwitchAndEndsCleanlyOnSigterm) {
  AgentProcess agent({});
  SnmpClient client(agent.peer(), "public");
  auto const walked = client.walk("1.0.8802.1.1.2.1.3");
  ASSERT_GE(walked.size(), 6u);
  EXPECT_EQ(walked[0].oid, "1.0.8802.1.1.2.1.3.1.0");
  EXPECT_FALSE(walked[1].bytes.empty());  // the demo has a chassis ID
  int const status = agent.stop(SIGTERM);
  ASSERT_TRUE(WIFEXITED(status)) << agent.standardError();
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
