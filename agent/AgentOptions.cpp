#include "AgentOptions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "Zet/Trace.h"

namespace {

struct TraceLevel {
  int level;
  std::string_view shows;
};

struct TraceHandleInfo {
  std::string_view name;
  std::string_view part;
  std::vector<TraceLevel> levels;
};

// The handles --trace may set: what the check accepts and what --help shows.
std::vector<TraceHandleInfo> const traceHandles{
    {"Snmp",
     "the MIB units",
     {{0, "faults: bad index hints, unknown columns, tables that could not be set up"},
      {1, "the OIDs registered"},
      {2, "the flow of each request"},
      {4, "why a row was left out; lldpRemTablesChange queued or not sent"},
      {8, "the row finally taken; tables initialised"}}},
    {"LldpSnmp",
     "the reactors that keep the mirror of the LLDP state current",
     {{1, "ports and neighbours arriving and going"},
      {2, "rows added and removed, and the changes that caused them"},
      {4, "lldpRemTablesChange raised"},
      {6, "lldpRemTablesChange suppressed within lldpNotificationInterval"},
      {8, "scans of the LLDP state"}}},
    {"Zet", "the framework", {{0, "a change handler that let an exception out"}}},
    {"Agent", "the host", {{1, "one line per load of the state, applied or refused, and per notification held back"}}},
    {"Feed",
     "the live lldpd feed",
     {{1, "connecting, losing and regaining lldpd, and each whole read of its state"},
      {2, "each neighbour change lldpd announces, and each periodic read"}}},
};

std::string traceHandleNames() {
  std::string names;
  for (TraceHandleInfo const& handle : traceHandles) {
    names += (names.empty() ? "" : ", ") + std::string(handle.name);
  }
  return names;
}

std::string traceHelp() {
  std::string help = "Trace handles (--trace NAME=N shows levels 0 to N of NAME):\n";
  constexpr std::size_t nameWidth = 10;
  for (TraceHandleInfo const& handle : traceHandles) {
    help += "  " + std::string(handle.name) + std::string(nameWidth - handle.name.size(), ' ') +
            std::string(handle.part) + "\n";
    for (TraceLevel const& level : handle.levels) {
      help += std::string(nameWidth + 2, ' ') + std::to_string(level.level) + "  " + std::string(level.shows) + "\n";
    }
  }
  return help;
}

// Empty when `text` sets only known handles, else why not.
std::string traceProblem(std::string const& text) {
  try {
    for (Zet::Trace::Setting const& setting : Zet::Trace::parseSettings(text)) {
      auto const named = [&](TraceHandleInfo const& handle) { return setting.handleName.view() == handle.name; };
      if (std::ranges::none_of(traceHandles, named)) {
        return "unknown trace handle '" + setting.handleName.stdString() + "'\nthe known ones are " +
               traceHandleNames();
      }
    }
  } catch (std::invalid_argument const& e) {
    return e.what();
  }
  return "";
}

// CLI11's own check of a non-negative number shows its upper bound, a 300-digit double.
std::string secondsProblem(std::string const& text) {
  double seconds = 0;
  auto const [end, ec] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (text.empty() || ec != std::errc() || end != text.data() + text.size() || !std::isfinite(seconds) ||
      seconds < 0) {
    return (text.empty() ? "''" : text) + " is not a number of seconds from 0 up";
  }
  return "";
}

}  // namespace

ParsedOptions parseAgentOptions(int argc, char const* const* argv) {
  AgentOptions o;
  CLI::App app{
      "lldp-snmp-agent: serves the LLDP-MIB, LLDP-EXT-DOT1-MIB and LLDP-EXT-DOT3-MIB over SNMP from an LLDP "
      "state: a scenario file, a built-in demo switch, or the live state of lldpd.",
      "lldp-snmp-agent"};
  app.get_formatter()->column_width(34);
  app.set_version_flag("--version", std::string("lldp-snmp-agent ") + LLDP_SNMP_AGENT_VERSION,
                       "Print the version and exit");
  app.footer(traceHelp());
  app.add_option("--listen", o.listen, "Address to serve SNMP on, in net-snmp transport syntax")
      ->type_name("ADDR")
      ->capture_default_str();
  app.add_option("--community", o.community,
                 "SNMPv1/v2c read-only community (empty: none; more with rocommunity in --config)")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_option("--config", o.config,
                 "net-snmp configuration file (rocommunity, rwcommunity, createUser/rouser, trap2sink, "
                 "informsink, agentaddress, ...)")
      ->check(CLI::ExistingFile.description(""))
      ->type_name("FILE");
  std::string agentx;
  auto* agentxOption = app.add_option("--agentx", agentx,
                                      "Attach to a running snmpd as AgentX sub-agent, at ADDRESS or at net-snmp's "
                                      "default socket")
                           ->expected(0, 1)
                           ->type_name("[ADDRESS]");
  // Not checked here: a scenario that cannot be read is refused like any bad scenario.
  auto* scenarioOption =
      app.add_option("--scenario", o.scenario, "LLDP state to serve, as JSON (default: a built-in demo switch)")
          ->type_name("FILE");
  std::string feed;
  app.add_option("--feed", feed, "Serve the live LLDP state of lldpd, at its default control socket or at SOCKET")
      ->type_name("lldpd[:SOCKET]")
      ->excludes(scenarioOption)
      ->check(CLI::Validator(
          [](std::string const& value) {
            return value == "lldpd" || value.starts_with("lldpd:") ? std::string()
                                                                   : std::string("expected lldpd or lldpd:SOCKET");
          },
          "", "feed"));
  app.add_option("--write-scenario", o.writeScenario,
                 "Write the LLDP state being served as a scenario file to FILE, then end")
      ->type_name("FILE");
  std::string check;
  auto* checkOption = app.add_option("--check", check,
                                     "Only read and check the scenario FILE: print what it holds, or why it is "
                                     "refused (exit 1); serve nothing")
                          ->type_name("FILE");
  app.add_option("--plugin", o.plugin, "The LldpSnmp plug-in to load (default: the one built or installed beside "
                                       "this program)")
      ->check(CLI::ExistingFile.description(""))
      ->type_name("FILE");
  app.add_option("--trace", o.trace,
                 "Trace levels per handle to standard error, e.g. Snmp=2,LldpSnmp=8 (handles below)")
      ->check(CLI::Validator([](std::string& text) { return traceProblem(text); }, "", ""))
      ->type_name("LEVELS");
  app.add_option("--ringlog", o.ringlog, "Write the in-memory ring log to FILE at exit and on SIGUSR1")
      ->type_name("FILE");
  app.add_option("--mirror-dump", o.mirrorDump, "Write the whole mirror to FILE at exit and on SIGUSR1")
      ->type_name("FILE");
  app.add_option("--persistent-dir", o.persistentDir, "Directory for net-snmp's persistent state")
      ->type_name("DIR");
  bool noNotifications = false;
  app.add_flag("--no-notifications", noNotifications, "Send no notifications (lldpRemTablesChange)");
  app.add_option("--notification-delay", o.notificationDelay,
                 "Hold each lldpRemTablesChange notification back this long before it is sent")
      ->check(CLI::Validator([](std::string& text) { return secondsProblem(text); }, "", ""))
      ->type_name("SECONDS")
      ->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    // CLI11 numbers its errors; a usage error is 2 whatever its kind, as for other tools.
    return {std::nullopt, app.exit(e) == 0 ? 0 : 2};
  }
  o.notifications = !noNotifications;
  if (!feed.empty()) {
    o.feed = feed.substr(feed.find(':') == std::string::npos ? feed.size() : feed.find(':') + 1);
  }
  if (agentxOption->count() > 0) {
    o.agentx = agentx;
  }
  if (checkOption->count() > 0) {
    o.check = check;
  }
  return {o, 0};
}
