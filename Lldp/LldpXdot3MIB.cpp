// LLDP-EXT-DOT3-MIB (1.0.8802.1.1.2.1.5.4623): registration of the module.

#include "LldpXdot3MIB.h"

#include "MibModule.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"

namespace {

class LldpXdot3MIB_HandlerRegistration : public Snmp::HandlerRegistration {
 public:
  void initHandler(Zet::String context) override { init_LldpXdot3MIB(context); }
};

MibModule lldpXdot3MIB("LldpXdot3MIB");
LldpXdot3MIB_HandlerRegistration registration;
Snmp::AutoRegistree const autoRegistree(&registration);

}  // namespace

void init_LldpXdot3MIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpXdot3MIB", "Initializing in context \"%s\"\n", context.charPtr()));
  Snmp::registerMibContext(context, "LldpXdot3MIB");
}

void unregister_LldpXdot3MIB(Zet::String context) { lldpXdot3MIB.unregister(context); }
