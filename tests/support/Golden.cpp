#include "Golden.h"

#include <gtest/gtest.h>

#include <cstdint>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "AgentProcess.h"

void expectValue(VarBind const& got, Expected const& want) {
  EXPECT_EQ(got.oid, want.oid);
  EXPECT_EQ(got.type, want.type) << want.oid;
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
