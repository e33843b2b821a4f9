#pragma once
// The real lldp-snmp-agent as a child process on a free loopback port, with
// its own persistent directory; stopped with SIGTERM when the object goes.

#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

class Snmpd;

class AgentProcess {
 public:
  // Starts the agent with `arguments` added to --listen and --persistent-dir,
  // and waits (bounded) until it answers SNMP.
  explicit AgentProcess(std::vector<std::string> const& arguments);
  // The same as an AgentX sub-agent of `master`, which then answers for it.
  AgentProcess(std::vector<std::string> const& arguments, Snmpd const& master);
  ~AgentProcess();
  AgentProcess(AgentProcess const&) = delete;
  AgentProcess& operator=(AgentProcess const&) = delete;

  // Where a manager asks: the agent, or its master.
  std::string peer() const { return "udp:127.0.0.1:" + std::to_string(port_); }
  int port() const { return port_; }
  pid_t pid() const { return pid_; }
  // Sends `signal` and returns at once (SIGHUP: re-read the scenario).
  void sendSignal(int signal) const;
  // Sends `signal`; waits (bounded) for the process to end and gives its wait status.
  int stop(int signal);
  // What the agent wrote to standard error so far.
  std::string standardError() const;

 private:
  void start(std::vector<std::string> words);

  int port_;
  pid_t pid_ = -1;
  std::string directory_;
};

// A private snmpd of its own configuration and persistent store, stopped when
// the object goes. Without `masterSocket` it is an AgentX master on a free
// loopback UDP port (community "public"), its AgentX socket a file of its own,
// and answers once started; with one it is a sub-agent (snmpd -X) of that
// master, pinging it every second, and its objects (host resources, UCD
// objects, ...) answer through the master once it has registered.
class Snmpd {
 public:
  explicit Snmpd(std::string masterSocket = "");
  ~Snmpd();
  Snmpd(Snmpd const&) = delete;
  Snmpd& operator=(Snmpd const&) = delete;

  std::string peer() const { return "udp:127.0.0.1:" + std::to_string(port_); }
  int port() const { return port_; }
  std::string agentxSocket() const { return masterSocket_.empty() ? directory_ + "/agentx" : masterSocket_; }
  void start();
  void stop();
  // Stops it and starts a new one on the same port and socket: a master's sysUpTime starts again.
  void restart() {
    stop();
    start();
  }

 private:
  std::string masterSocket_;
  int port_ = 0;
  pid_t pid_ = -1;
  std::string directory_;
};

// The TCP and UDP sockets that process `pid` listens on (or holds unconnected),
// as "udp 127.0.0.1:1161" or "tcp6 [::]:199", from /proc/net.
std::vector<std::string> listeningSockets(pid_t pid);

// A scenario file in a directory of its own, removed when the object goes.
class ScenarioFile {
 public:
  explicit ScenarioFile(std::string const& text);
  ~ScenarioFile();
  ScenarioFile(ScenarioFile const&) = delete;
  ScenarioFile& operator=(ScenarioFile const&) = delete;

  std::string const& path() const { return path_; }
  std::string const& directory() const { return directory_; }
  // Rewrites the file and has `agent` re-read it (SIGHUP); returns at once.
  void reload(AgentProcess const& agent, std::string const& text) const;

 private:
  std::string directory_;
  std::string path_;
};

// Runs the agent to its end with `arguments` (no --listen added) and gives the
// exit code and what it wrote; for runs that must end at start.
struct AgentRun {
  int exitCode;
  std::string standardError;
  std::string standardOutput;
};
AgentRun runAgentToEnd(std::vector<std::string> const& arguments);

// Starts `words` (a program's path, then its arguments) with standard error to
// `stderrPath` and standard output to `stdoutPath` (nowhere when empty); its pid.
pid_t spawn(std::vector<std::string> words, std::string const& stderrPath, std::string const& stdoutPath = "");
// Sends `signal`, waits up to 10 s for the end, then kills; gives the wait status.
int stopChild(pid_t pid, int signal);

// Whether root may run the agent as "nobody": a build tree under a folder
// closed to other users (a private temporary folder) rules it out.
bool agentRunsAsNobody();
// A UDP port on 127.0.0.1 that was free a moment ago.
int freeUdpPort();
// A new empty directory under the system's temporary directory.
std::string makeTempDirectory();
// Runs a shell command, gives its standard output (and its exit status through `status`).
std::string runCommand(std::string const& command, int* status = nullptr);
// Replaces the file's content.
void writeFile(std::string const& path, std::string const& text);
// The file's content; empty when it cannot be read.
std::string readFile(std::string const& path);
// Polls `done` every 20 ms until it holds or `seconds` have passed; gives its last answer.
bool waitUntil(std::function<bool()> const& done, double seconds = 5.0);
