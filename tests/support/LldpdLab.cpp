#include "LldpdLab.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "AgentProcess.h"

namespace {

void run(std::string const& command) {
  int status = 0;
  std::string const output = runCommand(command + " 2>&1", &status);
  if (status != 0) {
    throw std::runtime_error(command + ": " + output);
  }
}

}  // namespace

std::string LldpdLab::unavailable() {
  if (geteuid() != 0) {
    return "network namespaces need root";
  }
  int status = 0;
  runCommand("command -v lldpd lldpcli ip > /dev/null 2>&1", &status);
  if (status != 0) {
    return "lldpd, lldpcli or ip is not installed";
  }
  std::string const probe = "lldpsnmp-probe-" + std::to_string(getpid());
  runCommand("ip netns add " + probe + " > /dev/null 2>&1", &status);
  if (status != 0) {
    return "network namespaces cannot be made here";
  }
  runCommand("ip netns del " + probe + " > /dev/null 2>&1");
  return "";
}

LldpdLab::LldpdLab()
    : directory_(makeTempDirectory()),
      nearNamespace_("lldpsnmp-near-" + std::to_string(getpid())),
      farNamespace_("lldpsnmp-far-" + std::to_string(getpid())) {
  try {
    // lldpd leaves its privileges before it makes the socket's lock file.
    chmod(directory_.c_str(), 0755);
    writeFile(directory_ + "/empty.conf", "");
    run("ip netns add " + nearNamespace_);
    nearMade_ = true;
    run("ip netns add " + farNamespace_);
    farMade_ = true;
    run("ip -n " + nearNamespace_ + " link add " + nearInterface + " type veth peer name " + farInterface + " netns " +
        farNamespace_);
    for (auto const& [ns, interface] : {std::pair{nearNamespace_, nearInterface}, std::pair{farNamespace_, farInterface}}) {
      run("ip -n " + ns + " link set lo up");
      run("ip -n " + ns + " link set " + interface + " up");
    }
    farPid_ = startLldpd(farNamespace_, farSocket(), farInterface);
    nearPid_ = startLldpd(nearNamespace_, nearSocket(), nearInterface);
  } catch (...) {
    tearDown();
    throw;
  }
}

LldpdLab::~LldpdLab() { tearDown(); }

void LldpdLab::tearDown() {
  stop(nearPid_);
  stop(farPid_);
  for (auto const& [made, ns] : {std::pair{&nearMade_, nearNamespace_}, std::pair{&farMade_, farNamespace_}}) {
    if (*made) {
      killEverythingIn(ns);
      runCommand("ip netns del " + ns + " > /dev/null 2>&1");
      *made = false;
    }
  }
  std::error_code ec;
  std::filesystem::remove_all(directory_, ec);
}

pid_t LldpdLab::startLldpd(std::string const& ns, std::string const& socket, char const* interface) {
  std::string const log = socket + ".log";
  // In the foreground, on the one interface, reading no configuration of the machine's.
  pid_t const pid = spawn({"/usr/bin/env", "ip", "netns", "exec", ns, "lldpd", "-d", "-u", socket, "-I", interface, "-O",
                           directory_ + "/empty.conf"},
                          log, log + ".out");
  bool const ready = waitUntil(
      [&] {
        int status = 0;
        runCommand("lldpcli -u " + socket + " show configuration > /dev/null 2>&1", &status);
        return status == 0;
      },
      10.0);
  if (!ready) {
    stopChild(pid, SIGKILL);
    throw std::runtime_error("lldpd in " + ns + " did not start: " + readFile(log) + readFile(log + ".out"));
  }
  lldpcli(socket, "configure lldp tx-interval 1");
  return pid;
}

void LldpdLab::stop(pid_t& pid) {
  if (pid <= 0) {
    return;
  }
  stopChild(pid, SIGTERM);
  pid = -1;
}

void LldpdLab::killEverythingIn(std::string const& ns) const {
  // What is left of the processes started in the namespace, by their ids.
  std::istringstream pids(runCommand("ip netns pids " + ns + " 2>/dev/null"));
  pid_t pid = 0;
  while (pids >> pid) {
    kill(pid, SIGKILL);
  }
}

int LldpdLab::nearIfIndex() const {
  return std::stoi(runCommand("ip netns exec " + nearNamespace_ + " cat /sys/class/net/" +
                              nearInterface + "/ifindex"));
}

std::string LldpdLab::lldpcli(std::string const& socket, std::string const& arguments) {
  int status = 0;
  std::string const output = runCommand("lldpcli -u " + socket + " " + arguments + " 2>/dev/null", &status);
  if (status != 0) {
    throw std::runtime_error("lldpcli " + arguments + " failed");
  }
  return output;
}

void LldpdLab::inFar(std::string const& command) const { run("ip netns exec " + farNamespace_ + " " + command); }
