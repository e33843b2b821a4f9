// The installed tree, used as a user would: `cmake --install` into a
// temporary prefix, then the installed agent serves an installed example,
// net-snmp's tools find the installed MIB modules by name, the man page
// renders and tells every option, and the systemd units verify.

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include "AgentProcess.h"

namespace {

class InstalledTree : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    prefix_ = makeTempDirectory();
    int status = 0;
    installLog_ = runCommand(std::string(LLDP_SNMP_CMAKE_COMMAND) + " --install " + LLDP_SNMP_BUILD_DIR +
                                 " --prefix " + prefix_ + " 2>&1",
                             &status);
    installed_ = status == 0;
  }
  static void TearDownTestSuite() {
    std::error_code ec;
    std::filesystem::remove_all(prefix_, ec);
  }
  void SetUp() override { ASSERT_TRUE(installed_) << installLog_; }

  static std::string agent() { return prefix_ + "/bin/lldp-snmp-agent"; }

  static inline std::string prefix_;
  static inline std::string installLog_;
  static inline bool installed_ = false;
};

TEST_F(InstalledTree, TheInstalledAgentFindsItsPluginAndServesAnInstalledExample) {
  EXPECT_EQ(runCommand(agent() + " --version"), std::string("lldp-snmp-agent ") + LLDP_SNMP_VERSION + "\n");
  std::string const port = std::to_string(freeUdpPort());
  // Polled for up to 10 s, then stopped.
  std::string const script =
      agent() + " --listen udp:127.0.0.1:" + port + " --persistent-dir " + prefix_ + "/state --scenario " + prefix_ +
      "/share/doc/lldp-snmp-agent/examples/host-one-port.json >/dev/null 2>&1 & agent=$!; "
      "for i in $(seq 50); do "
      "  snmpget -v2c -c public -t 0.2 -r 0 -Oqv 127.0.0.1:" + port +
      " 1.0.8802.1.1.2.1.3.3.0 1.3.6.1.2.1.1.5.0 2>/dev/null && break; sleep 0.2; done; "
      "kill $agent; wait $agent";
  int status = 0;
  std::string const answer = runCommand("bash -c '" + script + "'", &status);
  EXPECT_EQ(answer, "\"build-host\"\n\"build-host\"\n");  // lldpLocSysName and sysName
  EXPECT_EQ(status, 0) << "the agent did not end cleanly on SIGTERM";
}

TEST_F(InstalledTree, NetSnmpsToolsFindTheLldpModulesAndTheirImports) {
  // The prefix's share/snmp stands in for /usr/share/snmp, which net-snmp reads by itself.
  std::string const config = prefix_ + "/client";
  std::filesystem::create_directory(config);
  writeFile(config + "/snmp.conf", "mibdirs +" + prefix_ + "/share/snmp/mibs\n" +
                                       runCommand("cat " + prefix_ + "/share/snmp/snmp.conf"));
  int status = 0;
  std::string const output = runCommand("SNMPCONFPATH=" + config +
                                            " snmptranslate -On -m LLDP-MIB:LLDP-EXT-DOT1-MIB:LLDP-EXT-DOT3-MIB "
                                            "LLDP-MIB::lldpRemSysName LLDP-EXT-DOT3-MIB::lldpXdot3RemMaxFrameSize 2>&1",
                                        &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(output, ".1.0.8802.1.1.2.1.4.1.1.9\n\n.1.0.8802.1.1.2.1.5.4623.1.3.4.1.1\n");  // a blank line between
}

TEST_F(InstalledTree, TheManPageRendersWithEveryOptionSignalAndExitStatus) {
  int status = 0;
  std::string const page =
      runCommand("MANWIDTH=250 LC_ALL=C man -l " + prefix_ + "/share/man/man8/lldp-snmp-agent.8 2>&1", &status);
  ASSERT_EQ(status, 0) << page;
  std::string const help = runCommand(agent() + " --help");
  std::set<std::string> options;
  std::regex const option("--[a-z][a-z-]*");
  for (auto it = std::sregex_iterator(help.begin(), help.end(), option); it != std::sregex_iterator(); ++it) {
    options.insert(it->str());
  }
  EXPECT_GE(options.size(), 10u);
  for (std::string const& name : options) {
    EXPECT_NE(page.find(name), std::string::npos) << name << " is not in the man page";
  }
  for (char const* const section : {"SIGNALS", "SIGHUP", "SIGTERM", "SIGUSR1", "EXIT STATUS", "FILES"}) {
    EXPECT_NE(page.find(section), std::string::npos) << section;
  }
}

TEST_F(InstalledTree, TheSystemdUnitsVerify) {
  int status = 0;
  runCommand("systemd-analyze --version >/dev/null 2>&1", &status);
  if (status != 0) {
    GTEST_SKIP() << "systemd-analyze cannot run here, so the units are not verified";
  }
  std::string const units = prefix_ + "/lib/systemd/system/";
  // --man=no: the man page is in the prefix, not where man looks.
  std::string const output =
      runCommand("systemd-analyze verify --man=no " + units + "lldp-snmp-agent.service " + units +
                     "lldp-snmp-agent-snmpd.service " + units + "lldp-snmp-agent-agentx.service 2>&1",
                 &status);
  EXPECT_EQ(status, 0) << output;
  EXPECT_EQ(output, "");
}

}  // namespace
