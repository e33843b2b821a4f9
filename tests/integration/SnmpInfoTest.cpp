// A management system's discovery against the agent: SNMP::Info (Perl) with
// automatic device classing, run by tests/snmp-info/discover.pl, must class
// the device, list its interfaces and map every LLDP neighbour to the right
// interface with its IPv4 and IPv6 management addresses
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
  // SNMP::Info loads the MIB modules of every class it may pick; beside ours, LLDP_SNMP_INFO_MIBDIRS
  // (colon-separated) may name directories that hold the others.
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
  if (status == 3) {
    GTEST_SKIP() << "SNMP::Info cannot load the MIB modules it needs, which Debian 12 does not ship ("
                 << errors.substr(0, errors.find('\n'))
                 << "); set LLDP_SNMP_INFO_MIBDIRS to directories that hold them (such as netdisco-mibs)";
  }
  ASSERT_EQ(status, 0) << errors;
  // Sorted, the class comes first: a class of its own, not the generic one.
  auto const firstLine = output.substr(0, output.find('\n') + 1);
  EXPECT_TRUE(firstLine.starts_with("class SNMP::Info::Layer")) << firstLine;
  EXPECT_EQ(output.substr(firstLine.size()),
            readText(std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/integration/expected/snmp-info.txt"));
}

}  // namespace
