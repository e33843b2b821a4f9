#pragma once
// Writes a DesiredState as a scenario file (README.md, "Scenario files") that
// reads back as the same DesiredState. Every value is written, defaults too,
// so that the file shows the whole state.

#include <string>

#include "DesiredState.h"

// The scenario's JSON text.
std::string scenarioText(DesiredState const& state);
// Writes the text to `path`; raises std::runtime_error when it cannot.
void writeScenarioFile(std::string const& path, DesiredState const& state);
