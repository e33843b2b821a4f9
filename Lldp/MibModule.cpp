#include "MibModule.h"

#include <cstdlib>

#include "Snmp/MibContext.h"
#include "Zet/Trace.h"

namespace {
Zet::TraceHandle const& _defaultTraceHandle() {
  static Zet::TraceHandle const handle("Snmp", false);
  return handle;
}
}  // namespace

void MibModule::unregister(Zet::String const& context) {
  ZET_TRACE(_defaultTraceHandle(), 2) << "Unregistering " << name_ << " in context \"" << context << "\"";

  // Copies: unregistering must not walk the list it is emptying.
  auto const registrations = contextRegistrations_[context];
  for (auto* registration : registrations) {
    netsnmp_unregister_handler(registration);
  }
  contextRegistrations_.erase(context);

  auto const columnInfos = contextColumnInfos_[context];
  for (auto* head : columnInfos) {
    // The column-number arrays the records point to are static.
    while (head) {
      auto* next = head->next;
      std::free(head);
      head = next;
    }
  }
  contextColumnInfos_.erase(context);

  Snmp::unregisterMibContext(context, name_);
}

std::size_t MibModule::registrationCount(Zet::String const& context) const {
  auto it = contextRegistrations_.find(context);
  return it == contextRegistrations_.end() ? 0 : it->second.size();
}
