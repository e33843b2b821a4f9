// A management system's discovery against the agent: SNMP::Info (Perl) with
// automatic device classing, run by tests/snmp-info/discover.pl, must class
// the device as its sysServices say, list its interfaces and map every LLDP
// neighbour to the right interface with its IPv4 and IPv6 management addresses
// (tests/integration/expected/snmp-info.txt).

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "AgentProcess.h"
#include "AgentSuite.h"

namespace {

std::string readText(std::string const& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(SnmpInfo, DiscoveryClassesTheDeviceAndMapsEveryNeighbourToItsInterface) {
  int status = 0;
  runCommand("perl -MSNMP::Info -e 1 2>/dev/null", &status);
  if (status != 0) {
    GTEST_SKIP() << "SNMP::Info is not installed: install libsnmp-info-perl (scripts/install-deps.sh does)";
  }
  AgentProcess agent({"--scenario", integrationData + "snmp-info.json"});
  // Our modules suffice (discover.pl says why); LLDP_SNMP_INFO_MIBDIRS (colon-separated) may name
  // directories with the rest of what the picked class loads, to ask through that class itself.
  std::string mibdirs = LLDP_SNMP_MIBS_DIR;
  if (char const* const more = std::getenv("LLDP_SNMP_INFO_MIBDIRS")) {
    std::string extra = more;
    std::replace(extra.begin(), extra.end(), ':', ' ');
    mibdirs += " " + extra;
  }
  auto const directory = makeTempDirectory();
  std::string const output = runCommand("perl " + std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/snmp-info/discover.pl " +
                                            std::to_string(agent.port()) + " " + mibdirs + " 2>" + directory + "/stderr",
                                        &status);
  std::string const errors = readText(directory + "/stderr");
  std::filesystem::remove_all(directory);
  ASSERT_EQ(status, 0) << errors;
  EXPECT_EQ(output, readText(std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/snmp-info.txt")) << errors;
}

}  // namespace
