#include "Signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace {
constexpr int handled[] = {SIGINT, SIGTERM, SIGHUP, SIGUSR1};
int writeFd = -1;

extern "C" void onSignal(int signal) {
  int const saved = errno;
  unsigned char const byte = static_cast<unsigned char>(signal);
  [[maybe_unused]] auto const ignored = write(writeFd, &byte, 1);
  errno = saved;
}
}  // namespace

Signals::Signals() {
  if (pipe2(fds_, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::runtime_error("cannot create the signal pipe");
  }
  writeFd = fds_[1];
  struct sigaction action {};
  action.sa_handler = onSignal;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < std::size(handled); ++i) {
    sigaction(handled[i], &action, &previous_[i]);
  }
}

Signals::~Signals() {
  for (std::size_t i = 0; i < std::size(handled); ++i) {
    sigaction(handled[i], &previous_[i], nullptr);
  }
  writeFd = -1;
  close(fds_[0]);
  close(fds_[1]);
}

int Signals::next() {
  unsigned char byte = 0;
  return read(fds_[0], &byte, 1) == 1 ? byte : 0;
}
