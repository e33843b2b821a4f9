#pragma once
// The plug-in's ways into the host's state.

#include "Snmp/Config.h"
#include "Zet/Entity.h"
#include "Zet/Ptr.h"

namespace SnmpUtil {

// Where the host keeps the agent's configuration entity.
inline constexpr char const* snmpConfigPath = "snmp/config";

// The agent's configuration; made empty at snmpConfigPath on first use if the
// host has mounted none.
Zet::Ptr<Snmp::Config const> getSnmpConfig();

// The entity at `path` relative to this system's root in the state database,
// or null when nothing is mounted there.
Zet::Ptr<Zet::Entity> getEntityRelative(char const* path);

}  // namespace SnmpUtil
