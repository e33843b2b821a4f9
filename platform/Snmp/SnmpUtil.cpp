#include "Snmp/SnmpUtil.h"

#include "Statebase/Statebase.h"

namespace SnmpUtil {

Zet::Ptr<Snmp::Config const> getSnmpConfig() {
  if (auto config = Zet::ptrCast<Snmp::Config const>(Statebase::entity(snmpConfigPath))) {
    return config;
  }
  auto config = Zet::makePtr<Snmp::Config>();
  Statebase::entityIs(snmpConfigPath, config);
  return config;
}

Zet::Ptr<Zet::Entity> getEntityRelative(char const* path) { return Statebase::entity(path ? path : ""); }

}  // namespace SnmpUtil
