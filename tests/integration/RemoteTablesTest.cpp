// The remote tables of the LLDP-MIB over real SNMP: the agent serves
// tests/integration/data/remote-tables.json, whose two neighbours carry
// pinned change times, so that the time filter's marks are exact:
// alpha on port 1 (index 1) at 5000 ticks, beta on port 2 (index 3) at 9000.

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

std::string const remTable = "1.0.8802.1.1.2.1.4.1";
std::string const remManAddrTable = "1.0.8802.1.1.2.1.4.2";
std::string const remUnknownTlvTable = "1.0.8802.1.1.2.1.4.3";
std::string const remOrgDefInfoTable = "1.0.8802.1.1.2.1.4.4";

// Mark 0, then the neighbour's port and index.
std::string const alpha = ".0.1.1";
std::string const beta = ".0.2.3";
// Address indexes: subtype, length, bytes.
std::string const ipv4 = ".1.4.192.0.2.1";                              // 192.0.2.1
// OUI indexes: three sub-identifiers and no length.
std::string const dot1Oui = ".0.128.194";  // 00-80-c2
std::string const dot3Oui = ".0.18.15";    // 00-12-0f

std::string column(std::string const& table, int number) { return table + ".1." + std::to_string(number); }


class RemoteTables : public AgentSuite<RemoteTables> {
 public:
  static std::vector<std::string> arguments() { return onScenario("remote-tables.json"); }
};

TEST_F(RemoteTables, EachTableWalksExactlyItsRowsInOidOrder) {
  auto c = client();
  expectWalks(c, readGoldenTables(integrationExpected + "remote-tables.json"));
}

TEST_F(RemoteTables, GetNextWithAMarkSkipsNeighboursThatChangedBeforeIt) {
  auto c = client();
  struct Case {
    std::string from;
    Expected next;
  };
  Case const cases[] = {
      // alpha (5000) is dropped; beta answers under the requested mark, not its own time.
      {column(remTable, 5) + ".6000", {column(remTable, 5) + ".6000.2.3", ASN_OCTET_STR, 0, "beta"}},
      {column(remTable, 5) + ".5002", {column(remTable, 5) + ".5002.1.1", ASN_OCTET_STR, 0,
                                       std::string("\x02\x00\x5e\x00\x01\x00", 6)}},
      {column(remManAddrTable, 3) + ".6000",
       {column(remManAddrTable, 3) + ".6000.2.3" + ipv4, ASN_INTEGER, 2, ""}},
      {column(remOrgDefInfoTable, 4) + ".9002",
       {column(remOrgDefInfoTable, 4) + ".9002.2.3" + dot3Oui + ".9.2", ASN_OCTET_STR, 0, ""}},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.from);
    auto const r = c.getNext(k.from);
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
    ASSERT_EQ(r.varBinds.size(), 1u);
    expectValue(r.varBinds[0], k.next);
  }
}

TEST_F(RemoteTables, GetAnswersMarksUpToTwoTicksPastTheLastChange) {
  struct Case {
    std::string oid;
    bool answers;
    char const* why;
  };
  Case const cases[] = {
      {column(remTable, 5) + ".9002.2.3", true, "two ticks after beta's change"},
      {column(remTable, 5) + ".9003.2.3", false, "three ticks after beta's change"},
      {column(remTable, 5) + ".1.2.3", true, "a mark need only be low enough"},
      {column(remTable, 9) + ".5002.1.1", true, "two ticks after alpha's change"},
      {column(remTable, 9) + ".5003.1.1", false, "three ticks after alpha's change"},
      {column(remManAddrTable, 3) + ".0.1.1" + ipv4, true, "the address index: subtype, length, bytes"},
      {column(remManAddrTable, 4) + ".6000.2.3" + ipv4, true, "beta's copy of the shared address"},
      {column(remManAddrTable, 4) + ".6000.1.1" + ipv4, false, "alpha's copy, filtered out"},
      {column(remUnknownTlvTable, 2) + ".5002.1.1.9", true, "an unknown TLV shares its neighbour's time"},
      {column(remUnknownTlvTable, 2) + ".5003.1.1.9", false, "and is dropped with it"},
      {column(remOrgDefInfoTable, 4) + ".9002.2.3" + dot1Oui + ".7.1", true, "the OUI as three sub-identifiers"},
      {column(remOrgDefInfoTable, 4) + ".9003.2.3" + dot1Oui + ".7.1", false, "an organisational TLV filtered out"},
  };
  auto c = client();
  for (Case const& k : cases) {
    SCOPED_TRACE(k.why);
    auto const r = c.get({k.oid});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
    ASSERT_EQ(r.varBinds.size(), 1u);
    EXPECT_EQ(r.varBinds[0].oid, k.oid);
    if (k.answers) {
      EXPECT_TRUE(r.varBinds[0].type == ASN_OCTET_STR || r.varBinds[0].type == ASN_INTEGER) << r.varBinds[0].type;
    } else {
      EXPECT_EQ(r.varBinds[0].type, SNMP_NOSUCHINSTANCE);
    }
  }
}

// At 0xFFFFFFFE ticks the two ticks of grace wrap to 0: only mark 0 sees the
// neighbour, in the hinted table and in the address table alike.
TEST(RemoteTablesAtTheWrap, ANeighbourStampedAt0xFFFFFFFETicksAnswersOnlyMarkZero) {
  AgentProcess agent({"--scenario", integrationData + "wrapped-time-mark.json"});
  SnmpClient c(agent.peer(), "public");
  std::string const address = ".1.1.1.4.192.0.2.7";
  struct Case {
    std::string oid;
    int type;  // the answer's type: the column's, or noSuchInstance when filtered out
  };
  Case const cases[] = {
      {column(remTable, 9) + ".0.1.1", ASN_OCTET_STR},
      {column(remTable, 9) + ".1.1.1", SNMP_NOSUCHINSTANCE},
      {column(remTable, 9) + ".4294967294.1.1", SNMP_NOSUCHINSTANCE},
      {column(remManAddrTable, 4) + ".0" + address, ASN_INTEGER},
      {column(remManAddrTable, 4) + ".1" + address, SNMP_NOSUCHINSTANCE},
  };
  for (Case const& k : cases) {
    SCOPED_TRACE(k.oid);
    auto const r = c.get({k.oid});
    ASSERT_FALSE(r.timedOut);
    ASSERT_EQ(r.varBinds.size(), 1u);
    EXPECT_EQ(r.varBinds[0].type, k.type);
  }
}

TEST_F(RemoteTables, GetOfOneInstanceReadsItsRowAndRefusesIndexColumns) {
  auto const r = client().get({
      "1.0.8802.1.1.2.1.4.2.1.3.0.1.1.1.4.192.0.2.1",
      "1.0.8802.1.1.2.1.4.4.1.4.0.2.3.0.128.194.7.1",
      // Index columns are not served: net-snmp answers before the handler.
      "1.0.8802.1.1.2.1.4.4.1.3.0.2.3.0.128.194.7.1",
      "1.0.8802.1.1.2.1.4.1.1.3.0.1.1",
      // Indexes that name no row: port 65537 narrows to 1 inside the walk, port 5000 is no port.
      "1.0.8802.1.1.2.1.4.1.1.9.0.65537.1",
      "1.0.8802.1.1.2.1.4.1.1.9.0.5000.1",
      "1.0.8802.1.1.2.1.4.3.1.2.0.1.1.127",
      "1.0.8802.1.1.2.1.4.3.1.2.0.1.1.128",
  });
  ASSERT_FALSE(r.timedOut);
  ASSERT_EQ(r.errorStatus, SNMP_ERR_NOERROR);
  ASSERT_EQ(r.varBinds.size(), 8u);
  expectValue(r.varBinds[0], {"1.0.8802.1.1.2.1.4.2.1.3.0.1.1.1.4.192.0.2.1", ASN_INTEGER, 2, ""});
  expectValue(r.varBinds[1], {"1.0.8802.1.1.2.1.4.4.1.4.0.2.3.0.128.194.7.1", ASN_OCTET_STR, 0, "dot1 extra"});
  EXPECT_EQ(r.varBinds[2].type, SNMP_NOSUCHOBJECT);
  EXPECT_EQ(r.varBinds[3].type, SNMP_NOSUCHOBJECT);
  for (std::size_t i = 4; i < r.varBinds.size(); ++i) {
    EXPECT_EQ(r.varBinds[i].type, SNMP_NOSUCHINSTANCE) << r.varBinds[i].oid;
  }
}

// A scenario re-read on SIGHUP: neighbours come and go with their rows in
// every remote table.
std::string const alphaOnly = R"({"ports": [
  {"name": "e1", "neighbors": [{"msap": {"chassisId": "alpha", "portId": "p1"}, "sysName": "alpha",
    "managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.1", "ifSubtype": "ifIndex", "ifId": 1,
                           "oid": "0.0"}],
    "unknownTlv": [{"type": 9, "info": "a"}]}]},
  {"name": "e2"}]})";
std::string const betaOnly = R"({"ports": [
  {"name": "e1"},
  {"name": "e2", "neighbors": [{"msap": {"chassisId": "beta", "portId": "p2"}, "sysName": "beta",
    "managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.2", "ifSubtype": "ifIndex", "ifId": 2,
                           "oid": "0.0"}],
    "unknownOrgDefTlv": [{"oui": "00-80-c2", "subtype": 7, "index": 1, "orgDefInfo": "b"}]}]}]})";

class RemoteTablesReload : public testing::Test {
 protected:
  void SetUp() override {
    directory_ = makeTempDirectory();
    scenarioPath_ = directory_ + "/lab.json";
    writeFile(scenarioPath_, alphaOnly);
    agent_ = std::make_unique<AgentProcess>(std::vector<std::string>{"--scenario", scenarioPath_});
  }
  void TearDown() override {
    agent_.reset();
    std::error_code ec;
    std::filesystem::remove_all(directory_, ec);
  }

  // The instance OIDs of the four tables, in walk order.
  std::vector<std::string> remoteOids() const {
    SnmpClient client(agent_->peer(), "public");
    std::vector<std::string> oids;
    for (std::string const& table : {remTable, remManAddrTable, remUnknownTlvTable, remOrgDefInfoTable}) {
      for (VarBind const& b : client.walk(table)) {
        oids.push_back(b.oid);
      }
    }
    return oids;
  }

  std::string directory_;
  std::string scenarioPath_;
  std::unique_ptr<AgentProcess> agent_;
};

TEST_F(RemoteTablesReload, NeighbourAddedAppearsAndNeighbourRemovedDisappears) {
  std::vector<std::string> const before = remoteOids();
  ASSERT_EQ(before.size(), 9u + 3u + 1u);
  EXPECT_EQ(before.front(), column(remTable, 4) + alpha);
  EXPECT_EQ(before.back(), column(remUnknownTlvTable, 2) + alpha + ".9");

  // Ports e1 and e2 are 1 and 2; beta is the first neighbour of its port.
  std::string const betaRow = ".0.2.1";
  std::vector<std::string> expected;
  for (int number = 4; number <= 12; ++number) {
    expected.push_back(column(remTable, number) + betaRow);
  }
  for (int number = 3; number <= 5; ++number) {
    expected.push_back(column(remManAddrTable, number) + betaRow + ".1.4.192.0.2.2");
  }
  expected.push_back(column(remOrgDefInfoTable, 4) + betaRow + dot1Oui + ".7.1");

  writeFile(scenarioPath_, betaOnly);
  agent_->sendSignal(SIGHUP);
  // A walk may see the reload half done; the end state is what counts.
  waitUntil([&] { return remoteOids() == expected; });
  EXPECT_EQ(remoteOids(), expected);
}

}  // namespace
