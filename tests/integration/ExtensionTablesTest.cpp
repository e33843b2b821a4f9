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

// The remote rows carry the mark 0 of a walk, then port and remote index:
// alpha is 1.1, beta 1.2, gamma 5.3.
std::vector<Table> const tables = {
    {"lldpXdot1ConfigPortVlanTable",
     dot1 + "1.1",
     {
         {dot1 + "1.1.1.1.1", ASN_INTEGER, 1, ""},  // lldpXdot1ConfigPortVlanTxEnable: true
         {dot1 + "1.1.1.1.5", ASN_INTEGER, 2, ""},  // false
         {dot1 + "1.1.1.1.7", ASN_INTEGER, 1, ""},
     }},
    {"lldpXdot1LocTable",
     dot1 + "2.1",
     {
         {dot1 + "2.1.1.1.1", ASN_INTEGER, 100, ""},  // lldpXdot1LocPortVlanId
         {dot1 + "2.1.1.1.5", ASN_INTEGER, 0, ""},    // no port VLAN
         {dot1 + "2.1.1.1.7", ASN_INTEGER, 4094, ""},
     }},
    {"lldpXdot1RemTable",
     dot1 + "3.1",
     {
         // lldpXdot1RemPortVlanId; beta sent no port VLAN ID TLV
         {dot1 + "3.1.1.1.0.1.1", ASN_INTEGER, 100, ""},
         {dot1 + "3.1.1.1.0.5.3", ASN_INTEGER, 0, ""},  // received as 0
     }},
    {"lldpXdot1RemProtoVlanTable",
     dot1 + "3.2",
     {
         {dot1 + "3.2.1.2.0.1.1.0", ASN_INTEGER, 1, ""},  // lldpXdot1RemProtoVlanSupported; VLAN 0 is an index
         {dot1 + "3.2.1.2.0.1.1.200", ASN_INTEGER, 1, ""},
         {dot1 + "3.2.1.3.0.1.1.0", ASN_INTEGER, 2, ""},  // lldpXdot1RemProtoVlanEnabled
         {dot1 + "3.2.1.3.0.1.1.200", ASN_INTEGER, 1, ""},
     }},
    {"lldpXdot1RemVlanNameTable",
     dot1 + "3.3",
     {
         {dot1 + "3.3.1.2.0.1.1.100", ASN_OCTET_STR, 0, "users"},  // lldpXdot1RemVlanName
         {dot1 + "3.3.1.2.0.1.1.4094", ASN_OCTET_STR, 0, "management"},
     }},
    {"lldpXdot1RemProtocolTable",
     dot1 + "3.4",
     {
         // lldpXdot1RemProtocolId, the protocol's octets as received
         {dot1 + "3.4.1.2.0.1.1.1", ASN_OCTET_STR, 0, std::string("\x00\x26\x42\x42\x03\x00\x00\x00", 8)},
         {dot1 + "3.4.1.2.0.5.3.2", ASN_OCTET_STR, 0, "\x88\x8e"},
     }},
    {"lldpXdot3PortConfigTable",
     dot3 + "1.1",
     {
         // lldpXdot3PortConfigTLVsTxEnable: BITS, macPhyConfigStatus(0) the top bit
         {dot3 + "1.1.1.1.1", ASN_OCTET_STR, 0, "\x90"},  // macPhyConfigStatus, maxFrameSize
         {dot3 + "1.1.1.1.5", ASN_OCTET_STR, 0, "\xf0"},  // all four
         {dot3 + "1.1.1.1.7", ASN_OCTET_STR, 0, std::string(1, '\0')},
     }},
    {"lldpXdot3LocLinkAggTable",
     dot3 + "2.3",
     {
         {dot3 + "2.3.1.1.1", ASN_OCTET_STR, 0, "\xc0"},  // lldpXdot3LocLinkAggStatus: aggCapable, aggEnabled
         {dot3 + "2.3.1.1.5", ASN_OCTET_STR, 0, std::string(1, '\0')},  // a port without aggregation is a row
         {dot3 + "2.3.1.1.7", ASN_OCTET_STR, 0, std::string(1, '\0')},
         {dot3 + "2.3.1.2.1", ASN_INTEGER, 17, ""},  // lldpXdot3LocLinkAggPortId
         {dot3 + "2.3.1.2.5", ASN_INTEGER, 0, ""},
         {dot3 + "2.3.1.2.7", ASN_INTEGER, -1, ""},
     }},
    {"lldpXdot3LocMaxFrameSizeTable",
     dot3 + "2.4",
     {
         {dot3 + "2.4.1.1.1", ASN_INTEGER, 9216, ""},  // lldpXdot3LocMaxFrameSize
         {dot3 + "2.4.1.1.5", ASN_INTEGER, 1518, ""},
         {dot3 + "2.4.1.1.7", ASN_INTEGER, 0, ""},
     }},
    {"lldpXdot3RemPortTable",
     dot3 + "3.1",
     {
         {dot3 + "3.1.1.1.0.1.1", ASN_INTEGER, 1, ""},  // lldpXdot3RemPortAutoNegSupported
         {dot3 + "3.1.1.1.0.5.3", ASN_INTEGER, 2, ""},
         {dot3 + "3.1.1.2.0.1.1", ASN_INTEGER, 2, ""},  // lldpXdot3RemPortAutoNegEnabled
         {dot3 + "3.1.1.2.0.5.3", ASN_INTEGER, 2, ""},
         // lldpXdot3RemPortAutoNegAdvertisedCap: b10baseT(1), b100baseTXFD(5), b1000baseTFD(15) in two octets
         {dot3 + "3.1.1.3.0.1.1", ASN_OCTET_STR, 0, "\x44\x01"},
         {dot3 + "3.1.1.3.0.5.3", ASN_OCTET_STR, 0, std::string(2, '\0')},  // nothing advertised: still two
         {dot3 + "3.1.1.4.0.1.1", ASN_INTEGER, 30, ""},  // lldpXdot3RemPortOperMauType
         {dot3 + "3.1.1.4.0.5.3", ASN_INTEGER, 0, ""},
     }},
    {"lldpXdot3RemPowerTable",
     dot3 + "3.2",
     {
         {dot3 + "3.2.1.1.0.1.1", ASN_INTEGER, 2, ""},  // lldpXdot3RemPowerPortClass: pClassPD
         {dot3 + "3.2.1.2.0.1.1", ASN_INTEGER, 1, ""},  // lldpXdot3RemPowerMDISupported
         {dot3 + "3.2.1.3.0.1.1", ASN_INTEGER, 1, ""},  // lldpXdot3RemPowerMDIEnabled
         {dot3 + "3.2.1.4.0.1.1", ASN_INTEGER, 2, ""},  // lldpXdot3RemPowerPairControlable
         {dot3 + "3.2.1.5.0.1.1", ASN_INTEGER, 2, ""},  // lldpXdot3RemPowerPairs
         {dot3 + "3.2.1.6.0.1.1", ASN_INTEGER, 3, ""},  // lldpXdot3RemPowerClass
     }},
    {"lldpXdot3RemLinkAggTable",
     dot3 + "3.3",
     {
         {dot3 + "3.3.1.1.0.1.1", ASN_OCTET_STR, 0, "\x80"},  // lldpXdot3RemLinkAggStatus: aggCapable
         {dot3 + "3.3.1.1.0.5.3", ASN_OCTET_STR, 0, "\x40"},  // aggEnabled
         {dot3 + "3.3.1.2.0.1.1", ASN_INTEGER, 1001, ""},     // lldpXdot3RemLinkAggPortId
         {dot3 + "3.3.1.2.0.5.3", ASN_INTEGER, 0, ""},
     }},
    {"lldpXdot3RemMaxFrameSizeTable",
     dot3 + "3.4",
     {
         {dot3 + "3.4.1.1.0.1.1", ASN_INTEGER, 1518, ""},  // lldpXdot3RemMaxFrameSize
         {dot3 + "3.4.1.1.0.1.2", ASN_INTEGER, 0, ""},     // beta: the flag, not the value, decides
     }},
};

class ExtensionTables : public AgentSuite<ExtensionTables> {
 public:
  static std::vector<std::string> arguments() { return onScenario("extension-tables.json"); }
};

TEST_F(ExtensionTables, EachTableWalksExactlyItsRowsInOidOrder) {
  auto c = client();
  expectWalks(c, tables);
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

TEST_F(ExtensionTables, WalkMatchesTheTypesAndBitNamesOfTheMibModules) {
  int status = 0;
  std::string const output = walkWithMibs(agent_->peer(), "1.0.8802.1.1.2.1.5", &status);
  EXPECT_EQ(status, 0) << output;
  EXPECT_EQ(output.find("Wrong Type"), std::string::npos) << output;
  char const* const lines[] = {
      "LLDP-EXT-DOT3-MIB::lldpXdot3PortConfigTLVsTxEnable.1 = BITS: 90 macPhyConfigStatus(0) maxFrameSize(3)",
      "LLDP-EXT-DOT3-MIB::lldpXdot3PortConfigTLVsTxEnable.5 = BITS: F0 macPhyConfigStatus(0) powerViaMDI(1) "
      "linkAggregation(2) maxFrameSize(3)",
      "LLDP-EXT-DOT3-MIB::lldpXdot3LocLinkAggStatus.1 = BITS: C0 aggCapable(0) aggEnabled(1)",
      "LLDP-EXT-DOT3-MIB::lldpXdot3RemLinkAggStatus.0.5.3 = BITS: 40 aggEnabled(1)",
      "LLDP-EXT-DOT3-MIB::lldpXdot3RemPowerPortClass.0.1.1 = INTEGER: pClassPD(2)",
      "LLDP-EXT-DOT1-MIB::lldpXdot1RemVlanName.0.1.1.100 = STRING: users",
  };
  for (char const* line : lines) {
    EXPECT_NE(output.find(line), std::string::npos) << line << "\n" << output;
  }
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
