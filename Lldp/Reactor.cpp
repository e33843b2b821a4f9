#define ZET_UNIT "LldpSnmp"

#include "Reactor.h"

#include <string>

#include "LldpLogHandles.h"
#include "Zet/Exception.h"

namespace Lldp::Snmp {

namespace {
// The reactors' unit declares the log catalogue's LLDP messages too.
LldpLogHandles const logHandles;
}  // namespace

Zet::TraceHandle const& _defaultTraceHandle() {
  static Zet::TraceHandle const handle("LldpSnmp", false);
  return handle;
}

void throwReinstantiating(std::string_view attribute, Zet::String const& newValue, Zet::String const& oldValue) {
  Zet::throwNameInUseException("Reinstantiating the pointer interface where constructor parameter attribute " +
                               std::string(attribute) + " has a different value of " + newValue.stdString() +
                               " than the current value of " + oldValue.stdString() + " not allowed");
}

}  // namespace Lldp::Snmp
