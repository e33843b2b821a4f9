#pragma once
// The lldpRemTablesChange notification: built here, sent by the agent's trap manager.

#include <cstdint>

#include "Zet/String.h"

namespace Snmp {

// Queues lldpRemTablesChange with the four remote-table counters for `context`
// (the reactors always pass ""). Gives 0 on every path that returns; a missing
// registration of the notification in Snmp::Config ends the process.
int lldpRemTablesChangeNotify(std::uint32_t inserts, std::uint32_t deletes, std::uint32_t drops,
                              std::uint32_t ageouts, Zet::String context);

}  // namespace Snmp
