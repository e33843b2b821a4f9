#include "Snmp/HandlerFrame.h"

#include <exception>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/agent/agent_callbacks.h>

namespace {

constexpr char const* frameName = "handlerFrame";

int answerFailure(netsnmp_handler_registration* reginfo, netsnmp_request_info* requests, char const* what) {
  snmp_log(LOG_ERR, "%s: handler failed: %s\n", reginfo->handlerName, what);
  netsnmp_request_set_error_all(requests, SNMP_ERR_GENERR);
  return SNMP_ERR_GENERR;
}

int frameHandler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                 netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  netsnmp_mib_handler* const next = handler->next;
  try {
    // Called directly rather than through netsnmp_call_next_handler, so that
    // no frame of the agent library lies between a throw and this catch.
    return next->access_method(next, reginfo, reqinfo, requests);
  } catch (std::exception const& e) {
    return answerFailure(reginfo, requests, e.what());
  } catch (...) {
    return answerFailure(reginfo, requests, "unknown exception");
  }
}

int onRegistration(int, int, void* serverArgument, void*) {
  auto* const parameters = static_cast<register_parameters*>(serverArgument);
  netsnmp_handler_registration* const reginfo = parameters ? parameters->reginfo : nullptr;
  if (!reginfo || !reginfo->handler || netsnmp_find_handler_by_name(reginfo, frameName)) {
    return SNMPERR_SUCCESS;
  }
  netsnmp_mib_handler* last = reginfo->handler;
  while (last->next) {
    last = last->next;
  }
  // net-snmp's helpers that keep the data themselves (watchers, data sets)
  // end in a handler with nothing to call: no module code to guard there.
  if (!last->access_method) {
    return SNMPERR_SUCCESS;
  }
  netsnmp_mib_handler* const frame = netsnmp_create_handler(frameName, frameHandler);
  if (netsnmp_inject_handler_before(reginfo, frame, last->handler_name) != SNMPERR_SUCCESS) {
    netsnmp_handler_free(frame);
  }
  return SNMPERR_SUCCESS;
}

}  // namespace

namespace Snmp {

void installHandlerFrame() {
  snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_REGISTER_OID, onRegistration, nullptr);
}

}  // namespace Snmp
