// Without --persistent-dir an ordinary user's agent keeps net-snmp's
// persistent state under its own home (XDG state directory), never in
// snmpd's /var/lib/snmp. Run as "nobody" where the tests run as root.

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "AgentProcess.h"

namespace {

TEST(PersistentState, AnOrdinaryUsersAgentKeepsItUnderItsXdgStateHome) {
  if (geteuid() == 0 && !agentRunsAsNobody()) {
    GTEST_SKIP() << "the agent cannot run as nobody here: its build tree is closed to other users";
  }
  auto const home = makeTempDirectory();
  std::filesystem::permissions(home, std::filesystem::perms::all);
  std::string const port = std::to_string(freeUdpPort());
  std::string const asUser = geteuid() == 0 ? "setpriv --reuid=nobody --regid=nogroup --clear-groups " : "";
  // Serves until its first answer (at most 10 s), then stops; net-snmp writes its state at the stop.
  std::string const script =
      asUser + "env -u XDG_STATE_HOME -u SNMP_PERSISTENT_DIR -u STATE_DIRECTORY HOME=" + home + " " +
      LLDP_SNMP_AGENT_PATH + " --listen udp:127.0.0.1:" + port + " >/dev/null 2>" + home + "/stderr & agent=$!; " +
      "for i in $(seq 50); do snmpget -v2c -c public -t 0.2 -r 0 127.0.0.1:" + port +
      " 1.3.6.1.2.1.1.3.0 >/dev/null 2>&1 && break; sleep 0.2; done; kill $agent; wait $agent";
  int status = 0;
  runCommand("bash -c '" + script + "'", &status);
  EXPECT_EQ(status, 0) << runCommand("cat " + home + "/stderr");
  EXPECT_TRUE(std::filesystem::exists(home + "/.local/state/lldp-snmp-agent/lldp-snmp-agent.conf"))
      << runCommand("cat " + home + "/stderr");
  EXPECT_EQ(runCommand("grep -i -e error -e 'cannot' -e 'denied' " + home + "/stderr"), "");
  std::filesystem::remove_all(home);
}

}  // namespace
