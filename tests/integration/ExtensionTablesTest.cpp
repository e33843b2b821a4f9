// The tables of the 802.1 and 802.3 extension modules over real SNMP: the
// agent serves tests/integration/data/extension-tables.json, each table is
// walked and compared with its rows, and the neighbour filters are followed
// through a reload.

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
#include "Golden.h"
#include "AgentSuite.h"
#include "SnmpClient.h"

namespace {

std::string const dot1 = "1.0.8802.1.1.2.1.5.32962.1.";
std::string const dot3 = "1.0.8802.1.1.2.1.5.4623.1.";


class ExtensionTables : public AgentSuite<ExtensionTables> {
 public:
  static std::vector<std::string> arguments() { return onScenario("extension-tables.json"); }
};

TEST_F(ExtensionTables, EachTableWalksExactlyItsRowsInOidOrder) {
  auto c = client();
  expectWalks(c, readGoldenTables(integrationExpected + "extension-tables.json"));
}

TEST_F(ExtensionTables, GetFindsAnInstanceOnlyWhereItsRowIsShown) {
  struct Case {
    std::string oid;
    int type;  // ASN_INTEGER with `integer`, or the exception
    long integer;
    char const* why;
  };
  // alpha last changed at 50 s, 5000 ticks.
  Case const cases[] = {
      {dot1 + "1.1.1.1.7", ASN_INTEGER, 1, "lldpXdot1ConfigPortVlanTxEnable of port 7"},
      {dot3 + "2.4.1.1.7", ASN_INTEGER, 0, "lldpXdot3LocMaxFrameSize of port 7"},
      {dot1 + "3.1.1.1.0.1.2", SNMP_NOSUCHINSTANCE, 0, "beta sent no port VLAN ID TLV"},
      {dot3 + "3.1.1.1.0.1.2", SNMP_NOSUCHINSTANCE, 0, "nor the MAC/PHY TLV"},
      {dot3 + "3.2.1.1.0.5.3", SNMP_NOSUCHINSTANCE, 0, "gamma sent no power TLV"},
      {dot3 + "3.4.1.1.0.5.3", SNMP_NOSUCHINSTANCE, 0, "nor the maximum frame size TLV"},
      {dot1 + "3.1.1.1.5002.1.1", ASN_INTEGER, 100, "a mark two ticks past the change still shows it"},
      {dot1 + "3.1.1.1.5003.1.1", SNMP_NOSUCHINSTANCE, 0, "three ticks past hides it"},
      {dot3 + "3.4.1.1.5003.1.1", SNMP_NOSUCHINSTANCE, 0, "in the filtered 802.3 tables too"},
      {dot3 + "3.4.1.1.17.1.1", ASN_INTEGER, 1518, "the mark need only be low enough"},
      {dot1 + "3.2.1.2.0.1.1.0", ASN_INTEGER, 1, "protocol VLAN 0 is a valid index"},
      {dot1 + "3.3.1.2.0.1.1.0", SNMP_NOSUCHINSTANCE, 0, "VLAN name index 0 is not"},
      {dot1 + "3.3.1.2.0.1.1.4095", SNMP_NOSUCHINSTANCE, 0, "nor one above 4094"},
      {dot1 + "2.1.1.1.4095", SNMP_NOSUCHINSTANCE, 0, "a port above 4094"},
  };
  auto c = client();
  for (Case const& k : cases) {
    SCOPED_TRACE(k.why);
    auto const r = c.get({k.oid});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
    ASSERT_EQ(r.varBinds.size(), 1u);
    EXPECT_EQ(r.varBinds[0].oid, k.oid);
    EXPECT_EQ(r.varBinds[0].type, k.type);
    if (k.type == ASN_INTEGER) {
      EXPECT_EQ(r.varBinds[0].integer, k.integer);
    }
  }
}

TEST_F(ExtensionTables, SetIsRefusedAsNotWritableOnTheWritablePortTables) {
  auto c = client("private");
  struct Case {
    std::string oid;
    char const* message;
  };
  Case const cases[] = {
      {dot1 + "1.1.1.1.7",
       "lldpXdot1ConfigPortVlanTable_handler: SET is not configured for column lldpXdot1ConfigPortVlanTxEnable"},
      {dot3 + "1.1.1.1.1",
       "lldpXdot3PortConfigTable_handler: SET is not configured for column lldpXdot3PortConfigTLVsTxEnable"},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.oid);
    auto const r = c.setInteger(k.oid, 2);
    ASSERT_FALSE(r.timedOut);
    EXPECT_EQ(r.errorStatus, SNMP_ERR_NOTWRITABLE);
    EXPECT_NE(agent_->standardError().find(k.message), std::string::npos);
  }
  EXPECT_EQ(client().get({dot1 + "1.1.1.1.7"}).varBinds.at(0).integer, 1);
}

// One neighbour that sent none of the flagged TLVs, then all of them; its
// string TLVs are empty, which the MIB does not allow.
std::string const flagsDown = R"({"ports": [{"name": "e1", "neighbors": [{
  "msap": {"chassisId": "delta"}, "portVlanId": 12, "maximumFrameSizeInfo": 1500,
  "vlanName": [{"vlanId": 12, "vlanName": ""}], "protocolIdentityInfo": [{"index": 1, "protocolId": ""}]}]}]})";
std::string const flagsUp = R"({"ports": [{"name": "e1", "neighbors": [{
  "msap": {"chassisId": "delta"}, "portVlanId": 12, "maximumFrameSizeInfo": 1500,
  "vlanName": [{"vlanId": 12, "vlanName": ""}], "protocolIdentityInfo": [{"index": 1, "protocolId": ""}],
  "portVlanIdTlvReceived": true, "macPhyConfigStatusTlvReceived": true, "powerViaMdiTlvReceived": true,
  "linkAggregationTlvReceived": true, "maximumFrameSizeTlvReceived": true}]}]})";

class ExtensionTablesOfAFile : public testing::Test {
 protected:
  void SetUp() override {
    directory_ = makeTempDirectory();
    scenarioPath_ = directory_ + "/lab.json";
    write(flagsDown);
    agent_ = std::make_unique<AgentProcess>(std::vector<std::string>{"--scenario", scenarioPath_, "--trace", "Snmp=2"});
  }
  void TearDown() override {
    agent_.reset();
    std::error_code ec;
    std::filesystem::remove_all(directory_, ec);
  }
  void write(std::string const& text) const {
    std::ofstream out(scenarioPath_, std::ios::trunc);
    out << text;
  }
  // The instance of delta (port 1, index 1) in each filtered table.
  static std::vector<std::string> deltaInstances() {
    return {dot1 + "3.1.1.1.0.1.1", dot3 + "3.1.1.4.0.1.1", dot3 + "3.2.1.5.0.1.1", dot3 + "3.3.1.2.0.1.1",
            dot3 + "3.4.1.1.0.1.1"};
  }

  std::string directory_;
  std::string scenarioPath_;
  std::unique_ptr<AgentProcess> agent_;
};

TEST_F(ExtensionTablesOfAFile, NeighbourShowsInTheFilteredTablesOnceItsFlagsAreTrue) {
  SnmpClient client(agent_->peer(), "public");
  auto const before = client.get(deltaInstances());
  ASSERT_EQ(before.varBinds.size(), deltaInstances().size());
  for (auto const& b : before.varBinds) {
    EXPECT_EQ(b.type, SNMP_NOSUCHINSTANCE) << b.oid;
  }
  // lldpRemTable has the neighbour all along.
  EXPECT_EQ(client.get({"1.0.8802.1.1.2.1.4.1.1.5.0.1.1"}).varBinds.at(0).bytes, "delta");

  write(flagsUp);
  agent_->sendSignal(SIGHUP);
  ASSERT_TRUE(waitUntil([&] {
    auto const r = client.get({dot3 + "3.4.1.1.0.1.1"});
    return !r.varBinds.empty() && r.varBinds[0].type == ASN_INTEGER;
  })) << agent_->standardError();
  auto const after = client.get(deltaInstances());
  ASSERT_EQ(after.varBinds.size(), deltaInstances().size());
  for (auto const& b : after.varBinds) {
    EXPECT_EQ(b.type, ASN_INTEGER) << b.oid;
  }
  EXPECT_EQ(after.varBinds[0].integer, 12);    // lldpXdot1RemPortVlanId
  EXPECT_EQ(after.varBinds[4].integer, 1500);  // lldpXdot3RemMaxFrameSize
}

TEST_F(ExtensionTablesOfAFile, EmptyVlanNameAndProtocolIdAnswerGenErr) {
  SnmpClient client(agent_->peer(), "public");
  struct Case {
    std::string oid;
    char const* message;
  };
  Case const cases[] = {
      {dot1 + "3.3.1.2.0.1.1.12", "handle_lldpXdot1RemVlanNameTable - entity "},
      {dot1 + "3.4.1.2.0.1.1.1", "handle_lldpXdot1RemProtocolTable - entity "},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.oid);
    auto const r = client.get({k.oid});
    ASSERT_FALSE(r.timedOut);
    EXPECT_EQ(r.errorStatus, SNMP_ERR_GENERR);
    EXPECT_NE(agent_->standardError().find(k.message), std::string::npos) << agent_->standardError();
  }
  std::string const log = agent_->standardError();
  EXPECT_NE(log.find("length out of range: vlanName (0)"), std::string::npos) << log;
  EXPECT_NE(log.find("length out of range: protocolId (0)"), std::string::npos) << log;
}

}  // namespace
