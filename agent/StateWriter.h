#pragma once
// The one way a feed writes a whole LLDP state once the agent serves: through
// the Reconciler and the device's system and interface objects, with a line
// for operators per write (OperatorLog) and one when the notification that the
// change could raise is held back.
//
// A large write goes on a port at a time in slices of the event loop
// (advance()), so that the agent answers while it is applied; a state that
// comes meanwhile waits, and a newer one replaces it: each is whole.

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "DesiredState.h"
#include "DeviceMibs.h"
#include "LldpSm.h"
#include "Reconciler.h"
#include "Zet/Ptr.h"

class StateWriter {
 public:
  // How long a write may hold the event loop at a time.
  static constexpr std::chrono::milliseconds slice{10};

  // `reconciler` and `device` must outlive this and have taken the first
  // state; `lldpSm` is the plug-in's, whose last notification tells a held-back one.
  StateWriter(Reconciler& reconciler, Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm, DeviceMibs& device);
  ~StateWriter();
  StateWriter(StateWriter const&) = delete;
  StateWriter& operator=(StateWriter const&) = delete;

  // Applies `state`, in this call when it takes no more than a slice.
  // `occasion` names the write in the log ("reload applied"). A write that
  // changed no port or neighbour is recorded only when `recordUnchanged`.
  void write(DesiredState state, std::string occasion, bool recordUnchanged);
  // A state that could not be had: said on standard error and recorded.
  void refused(std::string const& reason);

  // A write is under way: call advance() soon.
  bool pending() const { return current_ || retiring_; }
  // Goes on with the write under way for about a slice.
  void advance();

 private:
  struct Write;

  void start(std::unique_ptr<Write> write);
  void complete(Write& write, Reconciler::Report const& report);

  Reconciler& reconciler_;
  Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm_;
  DeviceMibs& device_;
  std::unique_ptr<Write> current_;
  std::unique_ptr<Write> next_;
  std::unique_ptr<Write> retiring_;  // applied, being freed
};
