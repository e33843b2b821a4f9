#pragma once
// The signals the agent acts on, turned into events of its event loop: a
// handler only writes the signal's number into a pipe, whose read end the
// loop watches, so nothing runs inside the handler and no wake-up is lost.

#include <csignal>

class Signals {
 public:
  // Installs handlers for SIGINT, SIGTERM, SIGHUP and SIGUSR1; one instance at a time.
  Signals();
  ~Signals();
  Signals(Signals const&) = delete;
  Signals& operator=(Signals const&) = delete;

  int readFd() const { return fds_[0]; }
  // The signals that arrived since the last call, oldest first; 0 when none is left.
  int next();

 private:
  int fds_[2];
  struct sigaction previous_[4];
};
