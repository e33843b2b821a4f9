#pragma once
// A plug-in's static initialisers hand their modules to the host through
// AutoRegistree objects; the host reads them back in the order they were made.
// The record lives in this shared library, so that every binary sees one list.

#include <vector>

#include "Snmp/HandlerRegistration.h"

namespace Snmp {

class AutoRegistree {
 public:
  explicit AutoRegistree(HandlerRegistration* registration);
  ~AutoRegistree();
  AutoRegistree(AutoRegistree const&) = delete;
  AutoRegistree& operator=(AutoRegistree const&) = delete;

  // The modules known now, in the order they were recorded.
  static std::vector<HandlerRegistration*> registrations();

 private:
  HandlerRegistration* registration_;
};

}  // namespace Snmp
