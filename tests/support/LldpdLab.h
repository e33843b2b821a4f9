#pragma once
// Two network namespaces of the test's own, "near" and "far", joined by a veth
// pair, with one lldpd in each on a control socket of its own. Nothing of the
// machine's own network or lldpd is touched. Everything started is ended, and
// the namespaces deleted, when the lab goes.

#include <string>

#include <sys/types.h>

class LldpdLab {
 public:
  // Why no lab can be had here (not root, no network namespaces, no lldpd); empty when one can.
  static std::string unavailable();

  // Makes the namespaces and the veth pair, and starts both lldpd with a
  // transmit interval of 1 s. Raises std::runtime_error when it cannot.
  LldpdLab();
  ~LldpdLab();
  LldpdLab(LldpdLab const&) = delete;
  LldpdLab& operator=(LldpdLab const&) = delete;

  std::string nearSocket() const { return directory_ + "/near.socket"; }
  std::string farSocket() const { return directory_ + "/far.socket"; }
  static constexpr char const* nearInterface = "lnear0";
  static constexpr char const* farInterface = "lfar0";
  // The near interface's ifIndex in its namespace.
  int nearIfIndex() const;

  // lldpcli on the given control socket; its standard output, and throws when it fails.
  static std::string lldpcli(std::string const& socket, std::string const& arguments);
  // A command in the far namespace, e.g. "ip addr add ..."; throws when it fails.
  void inFar(std::string const& command) const;

  // Stops an lldpd with SIGTERM, which has it send a shutdown LLDPDU, and waits (bounded) for its end.
  void stopFar() { stop(farPid_); }
  void stopNear() { stop(nearPid_); }
  void startNear() { nearPid_ = startLldpd(nearNamespace_, nearSocket(), nearInterface); }

 private:
  pid_t startLldpd(std::string const& ns, std::string const& socket, char const* interface);
  void stop(pid_t& pid);
  void killEverythingIn(std::string const& ns) const;
  void tearDown();

  std::string directory_;
  std::string nearNamespace_;
  std::string farNamespace_;
  bool nearMade_ = false;
  bool farMade_ = false;
  pid_t nearPid_ = -1;
  pid_t farPid_ = -1;
};
