#pragma once
// The state database: entities mounted by path, relative to the root of this
// system ("Statebase/l2discovery/lldp/config", "snmp/lldp/root").
// A mounted entity stays alive until it is unmounted.

#include <string>
#include <string_view>
#include <vector>

#include "Zet/Entity.h"

namespace Statebase {

// Mounts `entity` at `path`, replacing whatever was there.
void entityIs(std::string_view path, Zet::Ptr<Zet::Entity> const& entity);
// The entity at `path`, or null when nothing is mounted there.
Zet::Ptr<Zet::Entity> entity(std::string_view path);
// Unmounts; an empty path is no error.
void entityDel(std::string_view path);
// Every mounted path, sorted.
std::vector<std::string> paths();

}  // namespace Statebase
