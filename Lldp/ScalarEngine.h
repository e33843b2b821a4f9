#pragma once
// The scalar objects as one family: each scalar is a ScalarDesc, and one
// registration routine and one request handler serve them all.
//
// How a request travels: net-snmp's scalar helper hands a GET or SET of
// <oid>.0 to the scalar's exported handle_<object>, which forwards here with
// its descriptor. The registration's my_reg_void holds the entity, already of
// the descriptor's type; the descriptor's reader converts the attribute into a
// stack buffer, and the bytes go into the varbind.

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "MibModule.h"
#include "Zet/Entity.h"
#include "Zet/String.h"

struct ScalarDesc {
  char const* object;      // the MIB object, "lldpMessageTxInterval"
  oid objectId[9];         // without the trailing .0 that net-snmp adds
  int modes;               // HANDLER_CAN_RWRITE or HANDLER_CAN_RONLY
  char const* path;        // the entity it reads, relative to the state database
  char const* typeName;    // the entity's type, for the messages
  char const* attribute;   // the attribute, for the messages
  char const* conversion;  // the conversion's name, for the messages
  u_char asnType;
  int bufferSize;
  // Octet strings only: the accepted byte counts; maxLength < 0 means no check.
  int minLength;
  int maxLength;
  // The entity as this scalar's type, null if it is of another.
  void const* (*cast)(Zet::Entity const* entity);
  // Converts the attribute of `entity` (of the cast type) into `buffer`.
  int (*read)(void const* entity, unsigned char* buffer, int length);
};

namespace ScalarEngine {

// Traces the OIDs of `scalars` at level 1, then registers each in `context`;
// `function` is the module's init function, for the messages and assertions.
void registerAll(ScalarDesc const* scalars, std::size_t count, MibModule& module, Zet::String const& context,
                 char const* function, Netsnmp_Node_Handler* const* handlers);

int handle(ScalarDesc const& scalar, netsnmp_handler_registration* reginfo, netsnmp_agent_request_info* reqinfo,
           netsnmp_request_info* requests);

}  // namespace ScalarEngine
