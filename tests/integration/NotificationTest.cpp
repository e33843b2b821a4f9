// lldpRemTablesChange end to end: the real agent sends to a real snmptrapd on
// the loopback through a trap2sink of its --config; a neighbour that arrives
// with a re-read of the scenario (SIGHUP) raises the notification.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "AgentProcess.h"

namespace {

// How snmptrapd -On prints the bindings of lldpRemTablesChange.
std::string const trapOidBinding = ".1.3.6.1.6.3.1.1.4.1.0 = OID: .1.0.8802.1.1.2.0.0.1";

// The lines of `text` that hold `part`.
std::vector<std::string> linesWith(std::string const& text, std::string const& part) {
  std::vector<std::string> result;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (line.find(part) != std::string::npos) {
      result.push_back(line);
    }
  }
  return result;
}

// snmptrapd on a free loopback port, reading only its own configuration and
// logging every notification it accepts, OIDs numeric, to a file.
class TrapDaemon {
 public:
  explicit TrapDaemon(std::string const& directory)
      : directory_(directory), port_(freeUdpPort()), logPath_(directory + "/snmptrapd.log") {
    writeFile(directory_ + "/snmptrapd.conf", "disableAuthorization yes\n");
    pid_ = spawn({"/usr/bin/env", "SNMPCONFPATH=" + directory_, "SNMP_PERSISTENT_DIR=" + directory_, "MIBS=",
                  "/usr/sbin/snmptrapd", "-f", "-Lo", "-C", "-c", directory_ + "/snmptrapd.conf", "-On", "-n",
                  "udp:127.0.0.1:" + std::to_string(port_)},
                 logPath_ + ".stderr", logPath_);
    if (!waitUntil([this] { return log().find("NET-SNMP version") != std::string::npos; }, 10.0)) {
      throw std::runtime_error("snmptrapd did not start: " + log());
    }
  }
  ~TrapDaemon() { stopChild(pid_, SIGTERM); }
  TrapDaemon(TrapDaemon const&) = delete;
  TrapDaemon& operator=(TrapDaemon const&) = delete;

  int port() const { return port_; }
  std::string log() const { return readFile(logPath_); }
  std::vector<std::string> lldpRemTablesChanges() const { return linesWith(log(), trapOidBinding); }

 private:
  std::string directory_;
  int port_;
  std::string logPath_;
  pid_t pid_ = -1;
};

std::string scenario(std::string const& status, std::string const& neighbors) {
  return R"({"status": )" + status + R"(, "ports": [{"name": "Ethernet1", "neighbors": [)" + neighbors + "]}]}";
}

std::string const quietStatus = R"({"remTablesLastChangeTime": 1.0, "remTablesInserts": 3,
  "remTablesDeletes": 1, "remTablesDrops": 0, "remTablesAgeouts": 2})";
std::string const changedStatus = R"({"remTablesLastChangeTime": 2.5, "remTablesInserts": 4,
  "remTablesDeletes": 1, "remTablesDrops": 0, "remTablesAgeouts": 4294967295})";
std::string const neighbour = R"({"msap": {"chassisIdSubtype": "macAddress", "chassisId": "02:00:5e:00:01:00",
  "portIdSubtype": "interfaceName", "portId": "Ethernet9"}, "sysName": "lab-sw1", "lastChangeTime": 2.5})";

class Notification : public testing::Test {
 protected:
  void SetUp() override {
    directory_ = makeTempDirectory();
    trapd_ = std::make_unique<TrapDaemon>(directory_);
    scenarioPath_ = directory_ + "/scenario.json";
    configPath_ = directory_ + "/agent.conf";
    writeFile(scenarioPath_, scenario(quietStatus, ""));
    writeFile(configPath_, "trap2sink 127.0.0.1:" + std::to_string(trapd_->port()) + " public\n");
  }
  void TearDown() override {
    agent_.reset();
    trapd_.reset();
    std::error_code ec;
    std::filesystem::remove_all(directory_, ec);
  }

  void startAgent(std::vector<std::string> options) {
    std::vector<std::string> arguments{"--scenario", scenarioPath_, "--config", configPath_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    agent_ = std::make_unique<AgentProcess>(arguments);
  }

  // The LLDP agent learns a neighbour: the file changes and the host re-reads it.
  void neighbourArrives() {
    writeFile(scenarioPath_, scenario(changedStatus, neighbour));
    agent_->sendSignal(SIGHUP);
  }

  std::string directory_;
  std::string scenarioPath_;
  std::string configPath_;
  std::unique_ptr<TrapDaemon> trapd_;
  std::unique_ptr<AgentProcess> agent_;
};

TEST_F(Notification, NeighbourArrivingRaisesOneWithTheFourCounters) {
  startAgent({});
  neighbourArrives();
  ASSERT_TRUE(waitUntil([this] { return !trapd_->lldpRemTablesChanges().empty(); }, 15.0))
      << "snmptrapd got:\n" << trapd_->log() << "agent said:\n" << agent_->standardError();
  // Anything sent twice would be here well within a second.
  std::this_thread::sleep_for(std::chrono::seconds(1));
  auto const received = trapd_->lldpRemTablesChanges();
  ASSERT_EQ(received.size(), 1u) << trapd_->log();

  // sysUpTime.0 (net-snmp's), snmpTrapOID.0, then the four Gauge32 counters in MIB order.
  std::string const& line = received[0];
  std::vector<std::string> const inOrder{
      ".1.3.6.1.2.1.1.3.0 = Timeticks:",
      trapOidBinding,
      ".1.0.8802.1.1.2.1.2.2.0 = Gauge32: 4\t",
      ".1.0.8802.1.1.2.1.2.3.0 = Gauge32: 1\t",
      ".1.0.8802.1.1.2.1.2.4.0 = Gauge32: 0\t",
      ".1.0.8802.1.1.2.1.2.5.0 = Gauge32: 4294967295",
  };
  std::size_t from = 0;
  for (auto const& binding : inOrder) {
    auto const at = line.find(binding, from);
    ASSERT_NE(at, std::string::npos) << binding << " in order in: " << line;
    from = at + binding.size();
  }
  EXPECT_EQ(line.find(" = ", from), std::string::npos) << "more bindings than six: " << line;
}

TEST_F(Notification, DelayedByTheOptionStillArrives) {
  startAgent({"--notification-delay", "0.5", "--trace", "Snmp=4"});
  neighbourArrives();
  ASSERT_TRUE(waitUntil([this] { return !trapd_->lldpRemTablesChanges().empty(); }, 15.0))
      << "snmptrapd got:\n" << trapd_->log() << "agent said:\n" << agent_->standardError();
  EXPECT_NE(agent_->standardError().find("Adding lldpRemTablesChange notification to trap queue"), std::string::npos);
}

TEST_F(Notification, TurnedOffByTheOptionTracesWhyAndSendsNothing) {
  startAgent({"--no-notifications", "--trace", "Snmp=4"});
  neighbourArrives();
  std::string const why =
      "lldpRemTablesChange notification not sent. notificationStatus returned notifications turned off with "
      "--no-notifications";
  ASSERT_TRUE(waitUntil([&] { return agent_->standardError().find(why) != std::string::npos; }, 15.0))
      << agent_->standardError();
  // Had it been sent, it would have left with the trace; give it time to arrive.
  std::this_thread::sleep_for(std::chrono::seconds(1));
  EXPECT_TRUE(trapd_->lldpRemTablesChanges().empty()) << trapd_->log();
}

}  // namespace
