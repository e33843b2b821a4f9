#include "OperatorLog.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include "Ringlog/Ringlog.h"
#include "Zet/Trace.h"

namespace OperatorLog {
namespace {

constexpr int level = 1;

Zet::TraceHandle const& traceHandle() {
  static Zet::TraceHandle const handle("Agent", false);
  return handle;
}

void record(std::string const& line) {
  Ringlog::write(level, line);
  ZET_TRACE(traceHandle(), level) << line;
}

// "label a, b, c", or nothing for an empty list.
void appendList(std::string& text, std::string_view label, std::vector<std::string> const& names) {
  if (names.empty()) {
    return;
  }
  text += text.back() == ':' ? " " : ", ";
  text += label;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += (i == 0 ? " " : ", ") + names[i];
  }
}

}  // namespace

std::string appliedText(std::string const& what, Reconciler::Report const& report) {
  std::string text = what + ":";
  appendList(text, "ports joined", report.portsJoined);
  appendList(text, "ports left", report.portsLeft);
  appendList(text, "neighbours added", report.neighborsAdded);
  appendList(text, "neighbours removed", report.neighborsRemoved);
  appendList(text, "neighbours changed", report.neighborsChanged);
  if (unchanged(report)) {
    text += " no port or neighbour changed";
  }
  return text;
}

bool unchanged(Reconciler::Report const& report) {
  return report.portsJoined.empty() && report.portsLeft.empty() && report.neighborsAdded.empty() &&
         report.neighborsRemoved.empty() && report.neighborsChanged.empty();
}

void applied(std::string const& what, Reconciler::Report const& report) { record(appliedText(what, report)); }

void refused(std::string const& reason) { record("reload refused: " + reason); }

void notificationSuppressed(double sinceLast) {
  char seconds[32];
  std::snprintf(seconds, sizeof seconds, "%.2f", sinceLast);
  record(std::string("lldpRemTablesChange held back: the last one went out ") + seconds +
         " s ago, within the 5 s notification interval");
}

}  // namespace OperatorLog
