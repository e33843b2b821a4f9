#pragma once
// The host's record of which MIB module is up in which SNMP context.

#include <utility>
#include <vector>

#include "Zet/String.h"

namespace Snmp {

// Records that `mib` is up in `context`; recording it twice keeps one entry.
void registerMibContext(Zet::String context, Zet::String mib);
// Forgets it; an unknown pair is no error.
void unregisterMibContext(Zet::String context, Zet::String mib);
// (context, mib) pairs in the order they were first recorded.
std::vector<std::pair<Zet::String, Zet::String>> mibContexts();

}  // namespace Snmp
