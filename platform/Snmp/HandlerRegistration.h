#pragma once
// The host's handle on one MIB module of a plug-in.

#include "Zet/String.h"

namespace Snmp {

class HandlerRegistration {
 public:
  virtual ~HandlerRegistration() = default;
  // Brings the module up in `context` ("" is the default context).
  virtual void initHandler(Zet::String context) = 0;
};

}  // namespace Snmp
