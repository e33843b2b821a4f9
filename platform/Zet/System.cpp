#include "Zet/System.h"

#include <ctime>

namespace Zet::System {
namespace {
std::function<double()>& source() {
  static std::function<double()> s;
  return s;
}
}  // namespace

double currentTime() {
  if (auto const& s = source()) {
    return s();
  }
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

void currentTimeSourceIs(std::function<double()> s) { source() = std::move(s); }

}  // namespace Zet::System
