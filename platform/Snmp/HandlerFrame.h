#pragma once
// The agent's frame around the MIB handlers: an exception that leaves a
// handler is answered as a genErr of its requests, logged, and goes no
// further, so net-snmp never unwinds and the agent keeps serving.

namespace Snmp {

// From now on, every handler registration that net-snmp records gets the
// frame just above its last handler, the module's own. Called before the
// modules register; a registration never gets a second frame.
void installHandlerFrame();

}  // namespace Snmp
