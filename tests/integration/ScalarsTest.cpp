// The 16 scalars over real SNMP: the agent on a loopback port with a test
// scenario, asked by a manager through net-snmp's client library and tools.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <csignal>
#include <filesystem>
#include <string>

#include <sys/wait.h>

#include "AgentProcess.h"
#include "Golden.h"
#include "AgentSuite.h"
#include "SnmpClient.h"

namespace {

std::string const& data = integrationData;

class Scalars : public AgentSuite<Scalars> {
 public:
  static std::vector<std::string> arguments() { return onScenario("scalars.json"); }
};

TEST_F(Scalars, EveryScalarHasItsValueAndType) {
  Expected const expected[] = {
      {"1.0.8802.1.1.2.1.1.1.0", ASN_INTEGER, 45, ""},            // lldpMessageTxInterval
      {"1.0.8802.1.1.2.1.1.2.0", ASN_INTEGER, 3, ""},             // lldpMessageTxHoldMultiplier
      {"1.0.8802.1.1.2.1.1.3.0", ASN_INTEGER, 4, ""},             // lldpReinitDelay
      {"1.0.8802.1.1.2.1.1.4.0", ASN_INTEGER, 7, ""},             // lldpTxDelay
      {"1.0.8802.1.1.2.1.1.5.0", ASN_INTEGER, 5, ""},             // lldpNotificationInterval
      {"1.0.8802.1.1.2.1.2.1.0", ASN_TIMETICKS, 12345, ""},       // lldpStatsRemTablesLastChangeTime
      {"1.0.8802.1.1.2.1.2.2.0", ASN_GAUGE, 11, ""},              // lldpStatsRemTablesInserts
      {"1.0.8802.1.1.2.1.2.3.0", ASN_GAUGE, 3, ""},               // lldpStatsRemTablesDeletes
      {"1.0.8802.1.1.2.1.2.4.0", ASN_GAUGE, 0, ""},               // lldpStatsRemTablesDrops
      {"1.0.8802.1.1.2.1.2.5.0", ASN_GAUGE, 4294967295, ""},      // lldpStatsRemTablesAgeouts
      {"1.0.8802.1.1.2.1.3.1.0", ASN_INTEGER, 4, ""},             // lldpLocChassisIdSubtype
      {"1.0.8802.1.1.2.1.3.2.0", ASN_OCTET_STR, 0, std::string("\x00\x1c\x73\xaa\xbb\xcc", 6)},  // lldpLocChassisId
      {"1.0.8802.1.1.2.1.3.3.0", ASN_OCTET_STR, 0, ""},           // lldpLocSysName
      {"1.0.8802.1.1.2.1.3.4.0", ASN_OCTET_STR, 0, "Lab switch, rack 4"},  // lldpLocSysDesc
      {"1.0.8802.1.1.2.1.3.5.0", ASN_OCTET_STR, 0, std::string("\x28\x00", 2)},  // lldpLocSysCapSupported
      {"1.0.8802.1.1.2.1.3.6.0", ASN_OCTET_STR, 0, std::string("\x20\x00", 2)},  // lldpLocSysCapEnabled
  };
  auto c = client();
  for (auto const& e : expected) {
    SCOPED_TRACE(e.oid);
    auto const r = c.get({e.oid});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
    ASSERT_EQ(r.varBinds.size(), 1u);
    expectValue(r.varBinds[0], e);
  }
}

TEST_F(Scalars, WalkVisitsTheSixteenInMibOrder) {
  auto const walked = client().walk("1.0.8802.1.1.2.1");
  std::vector<std::string> oids;
  for (auto const& b : walked) {
    // The tables' rows come between the groups; the scenario has no port 0.
    if (b.oid.ends_with(".0")) {
      oids.push_back(b.oid);
    }
  }
  std::vector<std::string> const expected = {
      "1.0.8802.1.1.2.1.1.1.0", "1.0.8802.1.1.2.1.1.2.0", "1.0.8802.1.1.2.1.1.3.0", "1.0.8802.1.1.2.1.1.4.0",
      "1.0.8802.1.1.2.1.1.5.0", "1.0.8802.1.1.2.1.2.1.0", "1.0.8802.1.1.2.1.2.2.0", "1.0.8802.1.1.2.1.2.3.0",
      "1.0.8802.1.1.2.1.2.4.0", "1.0.8802.1.1.2.1.2.5.0", "1.0.8802.1.1.2.1.3.1.0", "1.0.8802.1.1.2.1.3.2.0",
      "1.0.8802.1.1.2.1.3.3.0", "1.0.8802.1.1.2.1.3.4.0", "1.0.8802.1.1.2.1.3.5.0", "1.0.8802.1.1.2.1.3.6.0"};
  EXPECT_EQ(oids, expected);
}

TEST_F(Scalars, SetOfAWritableScalarIsRefusedAsNotWritableAndTraced) {
  auto const r = client("private").setInteger("1.0.8802.1.1.2.1.1.1.0", 60);
  ASSERT_FALSE(r.timedOut);
  EXPECT_EQ(r.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_EQ(r.errorIndex, 1);
  EXPECT_EQ(client().get({"1.0.8802.1.1.2.1.1.1.0"}).varBinds.at(0).integer, 45);
  EXPECT_NE(agent_->standardError().find(
                "handle_lldpMessageTxInterval - SET is not configured for lldpMessageTxInterval"),
            std::string::npos);
}

TEST_F(Scalars, SetOfAReadOnlyScalarIsRefusedAsNotWritable) {
  auto const r = client("private").setInteger("1.0.8802.1.1.2.1.3.1.0", 7);
  ASSERT_FALSE(r.timedOut);
  EXPECT_EQ(r.errorStatus, SNMP_ERR_NOTWRITABLE);
  EXPECT_EQ(client().get({"1.0.8802.1.1.2.1.3.1.0"}).varBinds.at(0).integer, 4);
}

TEST_F(Scalars, SetUnderTheReadOnlyCommunityIsRefusedAsNoAccess) {
  auto const r = client("public").setInteger("1.0.8802.1.1.2.1.1.1.0", 60);
  ASSERT_FALSE(r.timedOut);
  EXPECT_EQ(r.errorStatus, SNMP_ERR_NOACCESS);
}

TEST(ScalarsOfAnEmptyChassisId, ChassisIdIsAGenErrWhileAnEmptySysNameIsServed) {
  AgentProcess agent({"--scenario", data + "empty-chassis-id.json"});
  SnmpClient client(agent.peer(), "public");
  auto const chassis = client.get({"1.0.8802.1.1.2.1.3.2.0"});
  ASSERT_FALSE(chassis.timedOut);
  EXPECT_EQ(chassis.errorStatus, SNMP_ERR_GENERR);
  auto const name = client.get({"1.0.8802.1.1.2.1.3.3.0"});
  EXPECT_EQ(name.errorStatus, SNMP_ERR_NOERROR);
  EXPECT_EQ(name.varBinds.at(0).bytes, "edge");
}

TEST(AgentLifecycle, SigtermStopsTheAgentCleanly) {
  AgentProcess agent({});
  int const status = agent.stop(SIGTERM);
  ASSERT_TRUE(WIFEXITED(status)) << agent.standardError();
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(AgentLifecycle, DemoSwitchServesTheScalars) {
  AgentProcess agent({});
  SnmpClient client(agent.peer(), "public");
  auto const walked = client.walk("1.0.8802.1.1.2.1.3");
  ASSERT_GE(walked.size(), 6u);
  EXPECT_EQ(walked[0].oid, "1.0.8802.1.1.2.1.3.1.0");
  EXPECT_FALSE(walked[1].bytes.empty());  // the demo has a chassis ID
}

}  // namespace
