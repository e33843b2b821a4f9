#include "Golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "AgentProcess.h"

namespace {

using Json = nlohmann::json;

Expected expectedOf(Json const& row) {
  static std::map<std::string, int> const types{
      {"INTEGER", ASN_INTEGER},   {"OCTET STRING", ASN_OCTET_STR},     {"OID", ASN_OBJECT_ID},
      {"TimeTicks", ASN_TIMETICKS}, {"Gauge32", ASN_GAUGE},            {"Counter32", ASN_COUNTER},
      {"noSuchObject", SNMP_NOSUCHOBJECT}, {"noSuchInstance", SNMP_NOSUCHINSTANCE}};
  Expected expected{row.at(0).get<std::string>(), types.at(row.at(1).get<std::string>()), 0, ""};
  auto const& value = row.at(2);
  if (value.is_null()) {
    expected.anyValue = true;
  } else if (value.is_number()) {
    expected.integer = value.get<long>();
  } else if (value.is_object()) {
    std::string const hex = value.at("hex").get<std::string>();
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
      expected.text.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
  } else {
    expected.text = value.get<std::string>();
  }
  return expected;
}

std::vector<Expected> rowsOf(Json const& rows) {
  std::vector<Expected> expected;
  for (auto const& row : rows) {
    expected.push_back(expectedOf(row));
  }
  return expected;
}

Probe probeOf(Json const& json) {
  static std::map<std::string, long> const errors{
      {"noError", SNMP_ERR_NOERROR}, {"genErr", SNMP_ERR_GENERR}, {"noAccess", SNMP_ERR_NOACCESS},
      {"notWritable", SNMP_ERR_NOTWRITABLE}};
  Probe probe;
  probe.why = json.at("why").get<std::string>();
  for (char const* kind : {"get", "getNext"}) {
    if (json.contains(kind)) {
      probe.kind = kind;
      probe.oids = json.at(kind).get<std::vector<std::string>>();
    }
  }
  if (json.contains("set")) {
    probe.kind = "set";
    probe.oids = {json.at("set").get<std::string>()};
    probe.value = json.at("value").get<long>();
  }
  probe.community = json.value("community", probe.kind == "set" ? "private" : "public");
  probe.errorStatus = errors.at(json.value("error", "noError"));
  probe.errorIndex = json.value("errorIndex", -1L);
  probe.answers = rowsOf(json.value("answers", Json::array()));
  probe.logged = json.value("logged", std::vector<std::string>{});
  probe.notLogged = json.value("notLogged", std::vector<std::string>{});
  return probe;
}

Json readJson(std::string const& path) {
  std::ifstream in(path);
  if (!in) {
    throw std::runtime_error("cannot read " + path);
  }
  return Json::parse(in);
}

std::vector<Table> tablesOf(Json const& document) {
  std::vector<Table> tables;
  for (auto const& table : document.at("tables")) {
    tables.push_back({table.at("name").get<std::string>(), table.at("oid").get<std::string>(), rowsOf(table.at("rows"))});
  }
  return tables;
}

}  // namespace

Golden readGolden(std::string const& path) {
  Json const document = readJson(path);
  Golden golden;
  golden.scenario = document.value("scenario", "");
  for (auto const& probe : document.value("probes", Json::array())) {
    golden.probes.push_back(probeOf(probe));
  }
  if (document.contains("tables")) {
    golden.tables = tablesOf(document);
  }
  if (document.contains("mibWalk")) {
    golden.mibWalk = document["mibWalk"].at("object").get<std::string>();
    golden.mibWalkLines = document["mibWalk"].at("lines").get<std::vector<std::string>>();
  }
  return golden;
}

std::vector<Table> readGoldenTables(std::string const& path) { return tablesOf(readJson(path)); }

void expectValue(VarBind const& got, Expected const& want) {
  EXPECT_EQ(got.oid, want.oid);
  EXPECT_EQ(got.type, want.type) << want.oid;
  if (want.anyValue) {
    return;
  }
  if (want.type == ASN_OCTET_STR) {
    EXPECT_EQ(got.bytes, want.text) << want.oid;
  } else if (want.type == ASN_OBJECT_ID) {
    EXPECT_EQ(got.objectId, want.text) << want.oid;
  } else {
    // 32 bits either way: a Gauge32 above 2^31 and a negative INTEGER both compare as sent.
    EXPECT_EQ(static_cast<std::uint32_t>(got.integer), static_cast<std::uint32_t>(want.integer)) << want.oid;
  }
}

void expectWalks(SnmpClient& client, std::vector<Table> const& tables) {
  for (Table const& table : tables) {
    SCOPED_TRACE(table.name);
    auto const walked = client.walk(table.oid);
    ASSERT_EQ(walked.size(), table.rows.size());
    for (std::size_t i = 0; i < walked.size(); ++i) {
      expectValue(walked[i], table.rows[i]);
    }
  }
}

bool walksTheRowsOf(SnmpClient& client, std::vector<Table> const& tables) {
  for (Table const& table : tables) {
    auto const walked = client.walk(table.oid);
    if (!std::ranges::equal(walked, table.rows, [](VarBind const& b, Expected const& e) { return b.oid == e.oid; })) {
      return false;
    }
  }
  return true;
}

void expectGolden(AgentProcess const& agent, Golden const& golden) {
  for (Probe const& probe : golden.probes) {
    SCOPED_TRACE(probe.why);
    SnmpClient client(agent.peer(), probe.community);
    std::size_t const traced = agent.standardError().size();
    Response const r = probe.kind == "set"       ? client.setInteger(probe.oids.at(0), probe.value)
                       : probe.kind == "getNext" ? client.getNext(probe.oids)
                                                 : client.get(probe.oids);
    ASSERT_FALSE(r.timedOut);
    EXPECT_EQ(r.errorStatus, probe.errorStatus);
    if (probe.errorIndex >= 0) {
      EXPECT_EQ(r.errorIndex, probe.errorIndex);
    }
    if (!probe.answers.empty()) {
      ASSERT_EQ(r.varBinds.size(), probe.answers.size());
      for (std::size_t i = 0; i < r.varBinds.size(); ++i) {
        expectValue(r.varBinds[i], probe.answers[i]);
      }
    }
    std::string const trace = agent.standardError().substr(traced);
    for (std::string const& line : probe.logged) {
      EXPECT_NE(trace.find(line), std::string::npos) << line << "\nnot in:\n" << trace;
    }
    for (std::string const& line : probe.notLogged) {
      EXPECT_EQ(trace.find(line), std::string::npos) << line << "\nin:\n" << trace;
    }
  }
  SnmpClient client(agent.peer(), "public");
  expectWalks(client, golden.tables);
  if (golden.mibWalk.empty()) {
    return;
  }
  int status = 0;
  std::string const output = runCommand("snmpwalk -v2c -c public -M +" + std::string(LLDP_SNMP_MIBS_DIR) +
                                             " -m LLDP-MIB:LLDP-EXT-DOT1-MIB:LLDP-EXT-DOT3-MIB " + agent.peer() + " " +
                                             golden.mibWalk + " 2>&1",
                                         &status);
  EXPECT_EQ(status, 0) << output;
  EXPECT_EQ(output.find("Wrong Type"), std::string::npos) << output;
  for (std::string const& line : golden.mibWalkLines) {
    EXPECT_NE(output.find(line), std::string::npos) << line << "\nnot in:\n" << output;
  }
}
