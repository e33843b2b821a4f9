#pragma once
// Scenario files: the LLDP state to serve, written as JSON (the format is told
// in README.md, "Scenario files"), read into a DesiredState.

#include <stdexcept>
#include <string>
#include <string_view>

#include "DesiredState.h"

// A scenario that cannot be served. what() is one line:
// "<source>: <JSON path>: <reason>", as in
// "lab.json: $.ports[2].neighbors[0].vlanName[1].vlanId: 0 is not a VLAN ID from 1 to 4094
// (VlanId::value < 1 or > 4094 not allowed)".
class ScenarioError : public std::runtime_error {
 public:
  ScenarioError(std::string source, std::string path, std::string reason);

  std::string const& source() const { return source_; }
  // "$" for the whole document, "$.ports[2].name" for a part of it.
  std::string const& path() const { return path_; }
  std::string const& reason() const { return reason_; }

 private:
  std::string source_;
  std::string path_;
  std::string reason_;
};

// Reads the scenario in the file at `path`; messages name the file as `path`.
// Raises ScenarioError when the file cannot be read or is no valid scenario.
DesiredState loadScenarioFile(std::string const& path);

// Reads a scenario from its text; messages name it as `sourceName`.
// Raises ScenarioError when the text is no valid scenario.
DesiredState parseScenario(std::string_view json, std::string const& sourceName);

// The built-in demo switch: examples/demo-switch.json as it was at build time.
DesiredState demoScenario();
// The demo's JSON text.
std::string_view demoScenarioText();
