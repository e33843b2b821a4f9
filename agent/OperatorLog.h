#pragma once
// The host's own record of what it did to the LLDP state, for operators: one
// line per applied or refused load and per notification held back by the
// 5-second rule, in the ring log and at level 1 of the trace handle "Agent".

#include <string>

#include "Reconciler.h"

namespace OperatorLog {

// "reload applied: ports joined e5; neighbours added lab-sw9 on e5, removed chassis 00:1c:73:aa:bb:cc on e1".
// `what` names the occasion ("scenario loaded", "reload applied").
std::string appliedText(std::string const& what, Reconciler::Report const& report);

// No port or neighbour came, went or changed.
bool unchanged(Reconciler::Report const& report);

void applied(std::string const& what, Reconciler::Report const& report);
void refused(std::string const& reason);
// `sinceLast`: seconds since the last notification went out.
void notificationSuppressed(double sinceLast);

}  // namespace OperatorLog
