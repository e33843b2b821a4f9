#include "AgentProcess.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "SnmpClient.h"

namespace {

std::vector<char*> argv(std::vector<std::string>& words) {
  std::vector<char*> result;
  for (auto& w : words) {
    result.push_back(w.data());
  }
  result.push_back(nullptr);
  return result;
}

}  // namespace

pid_t spawn(std::vector<std::string> words, std::string const& stderrPath, std::string const& stdoutPath) {
  pid_t const pid = fork();
  if (pid == 0) {
    int const fd = open(stderrPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(fd, 2);
    int const null = open("/dev/null", O_RDWR);
    dup2(null, 0);
    dup2(stdoutPath.empty() ? null : open(stdoutPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
    auto args = argv(words);
    execv(args[0], args.data());
    _exit(127);
  }
  return pid;
}

namespace {

// Waits up to `seconds` for `pid`; gives its wait status or -1.
int waitFor(pid_t pid, double seconds) {
  auto const deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (std::chrono::steady_clock::now() < deadline) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid) {
      return status;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return -1;
}

}  // namespace

int stopChild(pid_t pid, int signal) {
  kill(pid, signal);
  int status = waitFor(pid, 10.0);
  if (status == -1) {
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
  }
  return status;
}

bool agentRunsAsNobody() {
  return geteuid() == 0 &&
         runCommand("setpriv --reuid=65534 --regid=65534 --clear-groups test -x " + std::string(LLDP_SNMP_AGENT_PATH) +
                    " && echo yes") == "yes\n";
}

int freeUdpPort() {
  int const fd = socket(AF_INET, SOCK_DGRAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t length = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
}

std::string makeTempDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "lldp-snmp-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) {
    throw std::runtime_error("cannot make a temporary directory");
  }
  return pattern;
}

std::string runCommand(std::string const& command, int* status) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) {
    throw std::runtime_error("cannot run " + command);
  }
  std::array<char, 4096> buffer{};
  size_t n = 0;
  while ((n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
    output.append(buffer.data(), n);
  }
  int const s = pclose(pipe);
  if (status) {
    *status = WIFEXITED(s) ? WEXITSTATUS(s) : -1;
  }
  return output;
}

void writeFile(std::string const& path, std::string const& text) {
  std::ofstream out(path, std::ios::trunc);
  out << text;
}

std::string readFile(std::string const& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

ScenarioFile::ScenarioFile(std::string const& text) : directory_(makeTempDirectory()), path_(directory_ + "/lab.json") {
  writeFile(path_, text);
}

ScenarioFile::~ScenarioFile() {
  std::error_code ec;
  std::filesystem::remove_all(directory_, ec);
}

void ScenarioFile::reload(AgentProcess const& agent, std::string const& text) const {
  writeFile(path_, text);
  agent.sendSignal(SIGHUP);
}

bool waitUntil(std::function<bool()> const& done, double seconds) {
  auto const rounds = static_cast<int>(seconds * 50);
  for (int round = 0; round < rounds; ++round) {
    if (done()) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return done();
}

AgentProcess::AgentProcess(std::vector<std::string> const& arguments)
    : port_(freeUdpPort()), directory_(makeTempDirectory()) {
  std::vector<std::string> words{LLDP_SNMP_AGENT_PATH, "--listen", "udp:127.0.0.1:" + std::to_string(port_),
                                 "--persistent-dir", directory_};
  words.insert(words.end(), arguments.begin(), arguments.end());
  start(std::move(words));
}

AgentProcess::AgentProcess(std::vector<std::string> const& arguments, Snmpd const& master)
    : port_(master.port()), directory_(makeTempDirectory()) {
  std::vector<std::string> words{LLDP_SNMP_AGENT_PATH, "--agentx", master.agentxSocket(), "--persistent-dir",
                                 directory_};
  words.insert(words.end(), arguments.begin(), arguments.end());
  start(std::move(words));
}

void AgentProcess::start(std::vector<std::string> words) {
  pid_ = spawn(std::move(words), directory_ + "/stderr");

  // Ready when it answers; bounded at about 10 s.
  SnmpClient client(peer(), "public", 50000, 0);
  for (int attempt = 0; attempt < 200; ++attempt) {
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      throw std::runtime_error("agent ended at start: " + standardError());
    }
    // A master answers noSuchObject until the sub-agent has registered.
    auto const r = client.get({"1.0.8802.1.1.2.1.1.5.0"});
    if (!r.timedOut && !r.varBinds.empty() && r.varBinds[0].type != SNMP_NOSUCHOBJECT) {
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  throw std::runtime_error("agent did not answer: " + standardError());
}

AgentProcess::~AgentProcess() {
  if (pid_ > 0) {
    stop(SIGKILL);
  }
  std::error_code ec;
  std::filesystem::remove_all(directory_, ec);
}

void AgentProcess::sendSignal(int signal) const {
  if (pid_ > 0) {
    kill(pid_, signal);
  }
}

int AgentProcess::stop(int signal) {
  if (pid_ <= 0) {
    return -1;
  }
  int const status = stopChild(pid_, signal);
  pid_ = -1;
  return status;
}

std::string AgentProcess::standardError() const { return readFile(directory_ + "/stderr"); }

AgentRun runAgentToEnd(std::vector<std::string> const& arguments) {
  auto const directory = makeTempDirectory();
  std::vector<std::string> words{LLDP_SNMP_AGENT_PATH, "--listen", "udp:127.0.0.1:" + std::to_string(freeUdpPort()),
                                 "--persistent-dir", directory};
  words.insert(words.end(), arguments.begin(), arguments.end());
  pid_t const pid = spawn(words, directory + "/stderr", directory + "/stdout");
  int status = waitFor(pid, 20.0);
  if (status == -1) {
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
  }
  AgentRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(directory + "/stderr"),
               readFile(directory + "/stdout")};
  std::error_code ec;
  std::filesystem::remove_all(directory, ec);
  return run;
}

Snmpd::Snmpd(std::string masterSocket)
    : masterSocket_(std::move(masterSocket)),
      port_(masterSocket_.empty() ? freeUdpPort() : 0),
      directory_(makeTempDirectory()) {
  std::filesystem::create_directory(directory_ + "/persistent");
  writeFile(directory_ + "/snmpd.conf", masterSocket_.empty()
                                            ? "master agentx\nagentXSocket " + agentxSocket() +
                                                  "\nrocommunity public 127.0.0.1\n"
                                            : "agentXSocket " + masterSocket_ + "\nagentxPingInterval 1\n");
  start();
}

Snmpd::~Snmpd() {
  stop();
  std::error_code ec;
  std::filesystem::remove_all(directory_, ec);
}

void Snmpd::start() {
  // Its own persistent store, no MIB files to parse.
  std::vector<std::string> words{"/usr/bin/env", "SNMP_PERSISTENT_DIR=" + directory_ + "/persistent", "MIBS=",
                                 "/usr/sbin/snmpd", "-f", "-C", "-c", directory_ + "/snmpd.conf", "-Le"};
  words.push_back(masterSocket_.empty() ? peer() : "-X");
  pid_ = spawn(words, directory_ + "/stderr");
  if (!masterSocket_.empty()) {
    return;
  }
  SnmpClient client(peer(), "public", 50000, 0);
  for (int attempt = 0; attempt < 200; ++attempt) {
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_) {
      pid_ = -1;
      throw std::runtime_error("snmpd ended at start: " + readFile(directory_ + "/stderr"));
    }
    if (!client.get({"1.3.6.1.2.1.1.3.0"}).timedOut) {
      return;
    }
  }
  throw std::runtime_error("snmpd did not answer: " + readFile(directory_ + "/stderr"));
}

void Snmpd::stop() {
  if (pid_ > 0) {
    stopChild(pid_, SIGTERM);
  }
  pid_ = -1;
}

std::vector<std::string> listeningSockets(pid_t pid) {
  // The inodes of the process's sockets.
  std::set<std::string> inodes;
  std::error_code ec;
  for (auto const& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/fd", ec)) {
    std::string const target = std::filesystem::read_symlink(entry.path(), ec).string();
    if (target.starts_with("socket:[")) {
      inodes.insert(target.substr(8, target.size() - 9));
    }
  }
  // Listening TCP is state 0A; a UDP socket that serves is unconnected, 07.
  std::vector<std::string> sockets;
  for (std::string const protocol : {"tcp", "tcp6", "udp", "udp6"}) {
    std::ifstream table("/proc/net/" + protocol);
    std::string line;
    std::getline(table, line);  // the heading
    while (std::getline(table, line)) {
      std::istringstream fields(line);
      std::string slot, local, remote, state, queues, timer, retransmits, uid, timeout, inode;
      fields >> slot >> local >> remote >> state >> queues >> timer >> retransmits >> uid >> timeout >> inode;
      bool const serving = protocol.starts_with("tcp") ? state == "0A" : state == "07";
      if (!serving || !inodes.contains(inode)) {
        continue;
      }
      // The address is in hex, in the host's byte order for IPv4; the port in hex.
      auto const colon = local.find(':');
      std::string const hexAddress = local.substr(0, colon);
      int const port = std::stoi(local.substr(colon + 1), nullptr, 16);
      std::string address;
      if (hexAddress.size() == 8) {
        in_addr a{static_cast<in_addr_t>(std::stoul(hexAddress, nullptr, 16))};
        address = inet_ntoa(a);
      } else {
        in6_addr a{};
        for (int word = 0; word < 4; ++word) {
          auto const value = static_cast<std::uint32_t>(std::stoul(hexAddress.substr(word * 8, 8), nullptr, 16));
          std::memcpy(&a.s6_addr[word * 4], &value, 4);
        }
        std::array<char, INET6_ADDRSTRLEN> text{};
        inet_ntop(AF_INET6, &a, text.data(), text.size());
        address = "[" + std::string(text.data()) + "]";
      }
      sockets.push_back(protocol + " " + address + ":" + std::to_string(port));
    }
  }
  return sockets;
}
