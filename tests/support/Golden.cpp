#include "Golden.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <utility>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "AgentProcess.h"

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

std::string walkWithMibs(std::string const& peer, std::string const& object, int* status) {
  return runCommand("snmpwalk -v2c -c public -M +" + std::string(LLDP_SNMP_MIBS_DIR) +
                        " -m LLDP-MIB:LLDP-EXT-DOT1-MIB:LLDP-EXT-DOT3-MIB " + peer + " " + object + " 2>&1",
                    status);
}

std::vector<Table> readGoldenTables(std::string const& path) {
  static std::map<std::string, int> const types{{"INTEGER", ASN_INTEGER},     {"OCTET STRING", ASN_OCTET_STR},
                                                {"OID", ASN_OBJECT_ID},       {"TimeTicks", ASN_TIMETICKS},
                                                {"Gauge32", ASN_GAUGE},       {"Counter32", ASN_COUNTER}};
  std::ifstream in(path);
  if (!in) {
    throw std::runtime_error("cannot read " + path);
  }
  auto const document = nlohmann::json::parse(in);
  std::vector<Table> tables;
  for (auto const& table : document.at("tables")) {
    Table& read = tables.emplace_back(Table{table.at("name").get<std::string>(), table.at("oid").get<std::string>(), {}});
    for (auto const& row : table.at("rows")) {
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
      read.rows.push_back(std::move(expected));
    }
  }
  return tables;
}
