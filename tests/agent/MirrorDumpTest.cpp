// The mirror dump of a whole scenario, as the host makes it from the type
// descriptions alone, against data/mirror-dump-four-ports.txt. Addresses of
// referenced objects change from run to run and are compared as "0x@".

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>

#include <unistd.h>

#include "MirrorDump.h"
#include "PortDriver.h"
#include "Reconciler.h"
#include "Scenario.h"
#include "Snmp/Config.h"
#include "Snmp/Conversions.h"
#include "Snmp/SnmpUtil.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"

namespace {

std::filesystem::path const sourceDir(LLDP_SNMP_SOURCE_DIR);

std::string fileText(std::filesystem::path const& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The one comparison of a dump with its expected file.
void expectDump(std::string const& dump, std::filesystem::path const& expected) {
  std::string const stable = std::regex_replace(dump, std::regex("0x[0-9a-f]+"), "0x@");
  EXPECT_EQ(stable, fileText(expected)) << "expected file: " << expected;
}

TEST(MirrorDump, ScenarioDumpsAsExpected) {
  Snmp::uptimeOriginIs(1000.0);
  auto const config = Zet::makePtr<Snmp::Config>();
  config->notificationConfigIs("lldp")->notificationIs("lldpRemTablesChange");
  config->notificationsEnabledIs(false, "no manager in this test");
  Statebase::entityIs(SnmpUtil::snmpConfigPath, config);
  Reconciler reconciler;
  reconciler.apply(parseScenario(fileText(sourceDir / "examples/switch-four-ports.json"), "switch-four-ports.json"));
  PortDriver driver;
  driver.follow(reconciler);

  std::ostringstream dump;
  MirrorDump::write(dump, *driver.root());
  expectDump(dump.str(), sourceDir / "tests/agent/data/mirror-dump-four-ports.txt");

  auto const file = std::filesystem::temp_directory_path() / ("mirror-dump-" + std::to_string(::getpid()));
  ASSERT_TRUE(MirrorDump::writeToFile(file.string(), *driver.root()));
  EXPECT_EQ(fileText(file), dump.str());
  std::filesystem::remove(file);
  EXPECT_FALSE(MirrorDump::writeToFile("/nonexistent-dir/dump", *driver.root()));
  Statebase::entityDel(SnmpUtil::snmpConfigPath);
}

}  // namespace
