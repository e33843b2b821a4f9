#include "ScalarEngine.h"

#include <iostream>
#include <string>

#include "Snmp/SnmpUtil.h"
#include "Zet/Assert.h"
#include "Zet/Trace.h"

namespace {

Zet::TraceHandle const& _defaultTraceHandle() {
  static Zet::TraceHandle const handle("Snmp", false);
  return handle;
}

constexpr std::size_t oidLength = 9;

// The module's init function is what the assertion names; its unit is the module's.
[[noreturn]] void failRegistration(std::string const& expression, MibModule const& module, int line,
                                   char const* function) {
  Zet::assertionFailed(expression.c_str(), module.name(), line, function);
}

void registerOne(ScalarDesc const& s, Netsnmp_Node_Handler* handler, MibModule& module, Zet::String const& context,
                 char const* function) {
  std::string const name = std::string(s.object) + "_" + context.stdString();
  auto* registration = netsnmp_create_handler_registration(name.c_str(), handler, s.objectId, oidLength, s.modes);
  if (!registration) {
    failRegistration(std::string("reg_") + s.object, module, __LINE__, function);
  }
  registration->priority = 64;

  if (!context.empty()) {
    // The scalars have no state path in other contexts.
    ZET_TRACE(_defaultTraceHandle(), 2) << "init_" << module.name() << " in context \"" << context
                                        << "\": statebasePathWithContext not specified for " << s.object
                                        << "; skipping registration";
    netsnmp_handler_registration_free(registration);
    return;
  }

  auto const entity = SnmpUtil::getEntityRelative(s.path);
  if (!entity) {
    std::cerr << "Can not getEntityRelative( " << s.path << " ) for scalar " << s.object
              << ". Is this path correct?" << std::endl;
    failRegistration(std::string("e_") + s.object, module, __LINE__, function);
  }
  void const* typed = s.cast(entity.get());
  if (!typed) {
    std::cerr << s.path << " does not appear to be of type " << s.typeName << " for scalar " << s.object << "."
              << std::endl;
    failRegistration(std::string("ptr_") + s.object, module, __LINE__, function);
  }
  // Uncounted: the state database keeps the entity for the life of the process.
  registration->my_reg_void = const_cast<void*>(typed);
  module.registrationIs(context, registration);
  netsnmp_register_scalar(registration);
}

}  // namespace

namespace ScalarEngine {

void registerAll(ScalarDesc const* scalars, std::size_t count, MibModule& module, Zet::String const& context,
                 char const* function, Netsnmp_Node_Handler* const* handlers) {
  if (_defaultTraceHandle().enabled(1)) {
    for (std::size_t i = 0; i < count; ++i) {
      char text[200];
      snprint_objid(text, sizeof text, scalars[i].objectId, oidLength);
      ZET_TRACE(_defaultTraceHandle(), 1) << "init_" << module.name() << " initializing oid " << text
                                          << " in context \"" << context << "\"";
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    registerOne(scalars[i], handlers[i], module, context, function);
  }
}

int handle(ScalarDesc const& s, netsnmp_handler_registration* reginfo, netsnmp_agent_request_info* reqinfo,
           netsnmp_request_info* requests) {
  auto const& trace = _defaultTraceHandle();
  int const mode = reqinfo->mode;

  if (mode >= MODE_SET_RESERVE1 && mode <= MODE_SET_UNDO) {
    // Every SET phase answers the same, so the agent fails the request at its first phase.
    ZET_TRACE(trace, 2) << "handle_" << s.object << " - SET is not configured for " << s.object;
    netsnmp_request_set_error(requests, SNMP_ERR_NOTWRITABLE);
    return SNMP_ERR_NOERROR;
  }
  if (mode != MODE_GET) {
    ZET_TRACE(trace, 2) << "handle_" << s.object << " - unknown mode from request: " << mode;
    netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
    return SNMP_ERR_GENERR;
  }

  if (!reginfo->my_reg_void) {
    ZET_TRACE(trace, 2) << "handle_" << s.object << " - entity /<sysname>/" << s.path << " is not of type "
                        << s.typeName;
    netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
    return SNMP_ERR_GENERR;
  }
  ZET_TRACE(trace, 2) << "handle_" << s.object << " - reading " << s.path << "->" << s.attribute << "()";

  unsigned char buffer[1024];
  int const n = s.read(reginfo->my_reg_void, buffer, s.bufferSize);
  // No blank before "bytes": the message has always read so.
  ZET_TRACE(trace, 2) << "handle_" << s.object << " - " << s.conversion << " returned " << n << "bytes for "
                      << s.path << "->" << s.attribute << "()";
  if (n < 0) {
    ZET_TRACE(trace, 2) << "handle_" << s.object << " - " << s.conversion << " failed for: " << s.attribute;
    netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
    return SNMP_ERR_GENERR;
  }
  if (s.maxLength >= 0 && (n < s.minLength || n > s.maxLength)) {
    ZET_TRACE(trace, 2) << "handle_" << s.object << " - entity /<sysname>/" << s.path
                        << " length out of range: " << s.attribute << " (" << n << ")";
    netsnmp_request_set_error(requests, SNMP_ERR_GENERR);
    return SNMP_ERR_GENERR;
  }
  snmp_set_var_typed_value(requests->requestvb, s.asnType, buffer, static_cast<size_t>(n));
  return SNMP_ERR_NOERROR;
}

}  // namespace ScalarEngine
