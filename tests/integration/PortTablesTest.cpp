// The port-keyed and local management address tables of the LLDP-MIB over
// real SNMP: the agent serves tests/integration/data/port-tables.json, and
// each table is walked and compared with its rows.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "AgentProcess.h"
#include "Golden.h"
#include "AgentSuite.h"
#include "SnmpClient.h"

namespace {

std::string const& data = integrationData;

class PortTables : public AgentSuite<PortTables> {
 public:
  static std::vector<std::string> arguments() { return onScenario("port-tables.json"); }
};

TEST_F(PortTables, EachTableWalksExactlyItsRowsInOidOrder) {
  auto c = client();
  expectWalks(c, readGoldenTables(integrationExpected + "port-tables.json"));
}

TEST_F(PortTables, GetOfOneAddressInstanceFindsItsRow) {
  auto const r = client().get({"1.0.8802.1.1.2.1.3.8.1.3.1.4.192.0.2.1"});
  ASSERT_FALSE(r.timedOut);
  ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
  ASSERT_EQ(r.varBinds.size(), 1u);
  expectValue(r.varBinds[0], {"1.0.8802.1.1.2.1.3.8.1.3.1.4.192.0.2.1", ASN_INTEGER, 5, ""});
}

TEST_F(PortTables, IndexesThatNameNoPortFindNoInstance) {
  // 65537 narrows to port 1 inside the walk, yet its OID is not port 1's.
  auto const r = client().get({"1.0.8802.1.1.2.1.1.6.1.2.65537", "1.0.8802.1.1.2.1.1.6.1.2.4095",
                               "1.0.8802.1.1.2.1.2.7.1.4.0", "1.0.8802.1.1.2.1.3.8.1.3.1.4.192.0.2.2"});
  ASSERT_FALSE(r.timedOut);
  ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
  ASSERT_EQ(r.varBinds.size(), 4u);
  for (auto const& b : r.varBinds) {
    EXPECT_EQ(b.type, SNMP_NOSUCHINSTANCE) << b.oid;
  }
}

// The trace tells which rows a walk visited: a request that names a row
// starts there (one descent) and never passes the rows below it.
TEST_F(PortTables, RequestsThatNameARowStartTheirWalkThere) {
  struct Case {
    bool next;
    char const* oid;
    char const* answer;
    char const* firstCall;  // what the walk's first call traces
  };
  Case const cases[] = {
      {false, "1.0.8802.1.1.2.1.2.7.1.4.9", "1.0.8802.1.1.2.1.2.7.1.4.9", "hintMatched=1"},
      {true, "1.0.8802.1.1.2.1.2.7.1.4.5", "1.0.8802.1.1.2.1.2.7.1.4.9", "hintMatched=1"},
      {false, "1.0.8802.1.1.2.1.2.7.1.4.4095", nullptr,
       "Bad hint for lldpStatsRxPortTable: Interface::EthPortId ctor threw exception: "},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.oid);
    std::size_t const before = agent_->standardError().size();
    auto const r = k.next ? client().getNext(k.oid) : client().get({k.oid});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.varBinds.size(), 1u);
    if (k.answer) {
      EXPECT_EQ(r.varBinds[0].oid, k.answer);
      EXPECT_EQ(r.varBinds[0].type, ASN_COUNTER);
    } else {
      EXPECT_EQ(r.varBinds[0].type, SNMP_NOSUCHINSTANCE);
    }
    std::string const trace = agent_->standardError().substr(before);
    EXPECT_NE(trace.find(k.firstCall), std::string::npos) << trace;
    bool const visitedPort1 =
        trace.find("lldpStatsRxPortTableIterationHelper - iterator has another value: portNum=1\n") !=
        std::string::npos;
    // Only the refused hint falls back to a walk from the first row.
    EXPECT_EQ(visitedPort1, k.answer == nullptr) << trace;
  }
}

TEST_F(PortTables, SetIsRefusedAsNotWritableOnWritableAndReadOnlyTables) {
  auto c = client("private");
  struct Case {
    char const* oid;
    char const* why;
  };
  Case const cases[] = {
      {"1.0.8802.1.1.2.1.1.6.1.2.1", "lldpPortConfigAdminStatus of a port: writable in the MIB"},
      {"1.0.8802.1.1.2.1.1.6.1.2.7", "a port without a row in the writable table"},
      {"1.0.8802.1.1.2.1.3.7.1.2.1", "lldpLocPortIdSubtype: read-only"},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.why);
    auto const r = c.setInteger(k.oid, 1);
    ASSERT_FALSE(r.timedOut);
    EXPECT_EQ(r.errorStatus, SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(r.errorIndex, 1);
  }
  EXPECT_EQ(client().get({"1.0.8802.1.1.2.1.1.6.1.2.1"}).varBinds.at(0).integer, 3);
  EXPECT_NE(agent_->standardError().find(
                "lldpPortConfigTable_handler: SET is not configured for column lldpPortConfigAdminStatus"),
            std::string::npos);
}

TEST(PortTablesOfAnEmptyPortId, PortIdIsAGenErrWhileTheEmptyDescriptionIsServed) {
  AgentProcess agent({"--scenario", data + "empty-port-id.json"});
  SnmpClient client(agent.peer(), "public");
  auto const id = client.get({"1.0.8802.1.1.2.1.3.7.1.3.2"});
  ASSERT_FALSE(id.timedOut);
  EXPECT_EQ(id.errorStatus, SNMP_ERR_GENERR);
  auto const description = client.get({"1.0.8802.1.1.2.1.3.7.1.4.2"});
  EXPECT_EQ(description.errorStatus, SNMP_ERR_NOERROR);
  EXPECT_EQ(description.varBinds.at(0).type, ASN_OCTET_STR);
  EXPECT_EQ(description.varBinds.at(0).bytes, "");
  EXPECT_EQ(client.get({"1.0.8802.1.1.2.1.3.7.1.3.1"}).varBinds.at(0).bytes, "1");
}

// A bit set the MIB cannot carry raises out of the handler; the agent's frame
// answers genErr for that request alone and the agent goes on serving.
TEST(PortTablesOfAWideBitSet, BitsAboveTheFourKnownOnesAnswerGenErrAndTheAgentKeepsServing) {
  AgentProcess agent({"--scenario", data + "wide-enabled-tlvs.json"});
  SnmpClient client(agent.peer(), "public");
  for (char const* oid : {"1.0.8802.1.1.2.1.1.6.1.4.2", "1.0.8802.1.1.2.1.5.4623.1.1.1.1.1.2"}) {
    auto const failed = client.get({oid});
    ASSERT_FALSE(failed.timedOut) << oid;
    EXPECT_EQ(failed.errorStatus, SNMP_ERR_GENERR) << oid;
  }
  auto const served = client.get({"1.0.8802.1.1.2.1.1.6.1.4.1", "1.0.8802.1.1.2.1.5.4623.1.1.1.1.1.1"});
  ASSERT_FALSE(served.timedOut);
  ASSERT_EQ(served.errorStatus, SNMP_ERR_NOERROR);
  EXPECT_EQ(served.varBinds.at(0).bytes, "\xa0");  // portDesc and sysDesc
  EXPECT_EQ(served.varBinds.at(1).bytes, "\x10");  // maxFrameSize
  std::string const log = agent.standardError();
  EXPECT_NE(log.find("EnabledTlvs::value > 0xf not allowed"), std::string::npos) << log;
  EXPECT_NE(log.find("Dot3EnabledTlvs::value > 0xf not allowed"), std::string::npos) << log;
}

}  // namespace
