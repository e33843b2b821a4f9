#pragma once
// What the mirror's tests build on: inbound neighbours and addresses, and the
// trace lines written while a test runs.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/RemoteSystem.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/Trace.h"

// Neighbour `index` with locally assigned MSAP subtypes, chassis `chassis`, port "p1".
inline Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* chassis = "peer") {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String(chassis)),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
}

// The IPv4 management address 10.0.0.`lastByte`.
inline Lldp::ManagementAddress::Key addressKey(std::uint8_t lastByte) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  return {1, Lldp::ManAddress(Zet::String(bytes))};
}

// The lines traced while it lives, under the handles and levels it turns on;
// the sink and the levels are off again when it goes.
class TraceCapture {
 public:
  TraceCapture(std::initializer_list<std::pair<char const*, unsigned>> levels) : handles_(levels) {
    for (auto const& [handle, mask] : handles_) {
      Zet::Trace::levelsIs(handle, mask);
    }
    Zet::Trace::sinkIs([this](Zet::String const&, int level, std::string_view text) {
      lines_.emplace_back(level, text);
    });
  }
  ~TraceCapture() {
    Zet::Trace::sinkIs(nullptr);
    for (auto const& [handle, mask] : handles_) {
      Zet::Trace::levelsIs(handle, 0);
    }
  }
  TraceCapture(TraceCapture const&) = delete;
  TraceCapture& operator=(TraceCapture const&) = delete;

  // The lines at `level` (every level: -1) that start with `prefix`, in order.
  std::vector<std::string> starting(std::string_view prefix, int level = -1) const {
    std::vector<std::string> out;
    for (auto const& [at, text] : lines_) {
      if ((level < 0 || at == level) && text.starts_with(prefix)) {
        out.push_back(text);
      }
    }
    return out;
  }
  std::size_t countStarting(std::string_view prefix) const { return starting(prefix).size(); }
  // Every line, each ended by a newline.
  std::string text() const {
    std::string all;
    for (auto const& line : lines_) {
      all += line.second + "\n";
    }
    return all;
  }

 private:
  std::vector<std::pair<char const*, unsigned>> handles_;
  std::vector<std::pair<int, std::string>> lines_;
};
