#pragma once
// The whole of a described object as text, for operators: every attribute
// that has a text form, every collection element by element (in key order),
// and every object it owns, recursively. Only the type descriptions are
// read, so a new attribute or collection shows up without a change here.
//
//   Lldp::Snmp::Root 'root'
//     portConfig (2)
//       [3] Lldp::Snmp::PortConfig
//         ethPortId: 3
//         ...
//     remoteVlanName (1)
//       [<key>] Value('Lldp::Snmp::RemoteVlanName', ** {...})

#include <iosfwd>
#include <string>

#include "Zet/PtrInterface.h"

namespace MirrorDump {

// Writes `object` and everything it holds to `os`.
void write(std::ostream& os, Zet::PtrInterface const& object);
// Writes to `path`, replacing it; false when the file cannot be written.
bool writeToFile(std::string const& path, Zet::PtrInterface const& object);

}  // namespace MirrorDump
