#include "StateWriter.h"

#include <iostream>
#include <utility>

#include "OperatorLog.h"
#include "Zet/System.h"

struct StateWriter::Write {
  Write(DesiredState s, std::string o, bool r) : state(std::move(s)), occasion(std::move(o)), recordUnchanged(r) {}
  DesiredState state;
  std::string occasion;
  bool recordUnchanged;
  double lastNotification = 0.0;
  std::optional<Reconciler::Pass> pass;  // holds `state` by reference: a Write never moves
};

StateWriter::StateWriter(Reconciler& reconciler, Zet::Ptr<Lldp::Snmp::LldpSm> lldpSm, DeviceMibs& device)
    : reconciler_(reconciler), lldpSm_(std::move(lldpSm)), device_(device) {}

// A pass left unfinished is dropped whole; the state stays as far as it got.
StateWriter::~StateWriter() = default;

void StateWriter::write(DesiredState state, std::string occasion, bool recordUnchanged) {
  auto write = std::make_unique<Write>(std::move(state), std::move(occasion), recordUnchanged);
  if (current_) {
    // Whole states: the newest is all that needs applying.
    if (next_) {
      write->recordUnchanged = write->recordUnchanged || next_->recordUnchanged;
    }
    next_ = std::move(write);
    return;
  }
  start(std::move(write));
}

void StateWriter::start(std::unique_ptr<Write> write) {
  write->lastNotification = lldpSm_->lastNotificationTime();
  write->pass.emplace(reconciler_, write->state);
  current_ = std::move(write);
  advance();
}

void StateWriter::advance() {
  auto const until = std::chrono::steady_clock::now() + slice;
  while (current_) {
    if (current_->pass->step()) {
      if (std::chrono::steady_clock::now() >= until) {
        return;
      }
      continue;
    }
    auto const report = current_->pass->finish();
    complete(*current_, report);
    retiring_ = std::move(current_);
    if (next_) {
      start(std::move(next_));
      return;
    }
  }
  // A large state takes a while to free too: a port at a time.
  while (retiring_) {
    auto& ports = retiring_->state.ports;
    if (ports.empty()) {
      retiring_.reset();
    } else {
      ports.pop_back();
    }
    if (std::chrono::steady_clock::now() >= until) {
      return;
    }
  }
}

void StateWriter::complete(Write& write, Reconciler::Report const& report) {
  device_.apply(write.state);
  if (write.recordUnchanged || !OperatorLog::unchanged(report)) {
    OperatorLog::applied(write.occasion, report);
  }
  // The notification goes out inside the apply, or not at all.
  if (report.remTablesLastChangeTimeMoved && lldpSm_->lastNotificationTime() == write.lastNotification) {
    OperatorLog::notificationSuppressed(Zet::System::currentTime() - write.lastNotification);
  }
}

void StateWriter::refused(std::string const& reason) {
  std::cerr << "lldp-snmp-agent: reload refused, still serving the previous state: " << reason << std::endl;
  OperatorLog::refused(reason);
}
