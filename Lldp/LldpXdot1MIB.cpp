// LLDP-EXT-DOT1-MIB (1.0.8802.1.1.2.1.5.32962): registration of the module.

#include "LldpXdot1MIB.h"

#include "MibModule.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/MibContext.h"
#include "Snmp/SnmpUtil.h"

namespace {

class LldpXdot1MIB_HandlerRegistration : public Snmp::HandlerRegistration {
 public:
  void initHandler(Zet::String context) override { init_LldpXdot1MIB(context); }
};

MibModule lldpXdot1MIB("LldpXdot1MIB");
LldpXdot1MIB_HandlerRegistration registration;
Snmp::AutoRegistree const autoRegistree(&registration);

}  // namespace

void init_LldpXdot1MIB(Zet::String context) {
  auto const snmpConfig = SnmpUtil::getSnmpConfig();
  DEBUGMSGTL(("LldpXdot1MIB", "Initializing in context \"%s\"\n", context.charPtr()));
  Snmp::registerMibContext(context, "LldpXdot1MIB");
}

void unregister_LldpXdot1MIB(Zet::String context) { lldpXdot1MIB.unregister(context); }
