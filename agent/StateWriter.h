#pragma once
// The one way a feed writes a whole LLDP state once the agent serves: through
// the Reconciler and the device's system and interface objects, with a line
// for operators per write (OperatorLog) and one when the notification that the
// change could raise is held back.

#include <string>

#include "DesiredState.h"
#include "DeviceMibs.h"
#include "LldpSm.h"
#include "Reconciler.h"
#include "Zet/Ptr.h"

class StateWriter {
 public:
  // `reconciler` and `device` must outlive this and have taken the first
  // state; `lldpSm` is the plug-in's, whose last notification tells a held-back one.
  StateWriter(Reconciler& reconciler, Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm, DeviceMibs& device)
      : reconciler_(reconciler), lldpSm_(std::move(lldpSm)), device_(device) {}

  // `occasion` names the write in the log ("reload applied"). A write that
  // changed no port or neighbour is recorded only when `recordUnchanged`.
  void write(DesiredState const& state, std::string const& occasion, bool recordUnchanged);
  // A state that could not be had: said on standard error and recorded.
  void refused(std::string const& reason);

 private:
  Reconciler& reconciler_;
  Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm_;
  DeviceMibs& device_;
};
