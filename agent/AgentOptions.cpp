#include "AgentOptions.h"

#include <CLI/CLI.hpp>

ParsedOptions parseAgentOptions(int argc, char const* const* argv) {
  AgentOptions o;
  CLI::App app{
      "lldp-snmp-agent: serves the LLDP-MIB, LLDP-EXT-DOT1-MIB and LLDP-EXT-DOT3-MIB over SNMP from an LLDP "
      "state (a scenario file, or a built-in demo switch).",
      "lldp-snmp-agent"};
  app.get_formatter()->column_width(34);
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
  app.add_option("--plugin", o.plugin, "The LldpSnmp plug-in to load (default: the one built or installed beside "
                                       "this program)")
      ->check(CLI::ExistingFile.description(""))
      ->type_name("FILE");
  app.add_option("--trace", o.trace, "Trace levels per handle to standard error, e.g. Snmp=2,LldpSnmp=8")
      ->type_name("LEVELS");
  app.add_option("--ringlog", o.ringlog, "Write the in-memory ring log to FILE at exit and on SIGUSR1")
      ->type_name("FILE");
  app.add_option("--persistent-dir", o.persistentDir, "Directory for net-snmp's persistent state")
      ->type_name("DIR");
  bool noNotifications = false;
  app.add_flag("--no-notifications", noNotifications, "Send no notifications (lldpRemTablesChange)");
  app.add_option("--notification-delay", o.notificationDelay,
                 "Hold each lldpRemTablesChange notification back this long before it is sent")
      ->check(CLI::NonNegativeNumber.description(""))
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
  return {o, 0};
}
