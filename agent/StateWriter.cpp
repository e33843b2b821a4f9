#include "StateWriter.h"

#include <iostream>

#include "OperatorLog.h"
#include "Zet/System.h"

void StateWriter::write(DesiredState const& state, std::string const& occasion, bool recordUnchanged) {
  double const lastNotification = lldpSm_->lastNotificationTime();
  auto const report = reconciler_.apply(state);
  device_.apply(state);
  if (recordUnchanged || !OperatorLog::unchanged(report)) {
    OperatorLog::applied(occasion, report);
  }
  // The notification goes out inside the apply, or not at all.
  if (report.remTablesLastChangeTimeMoved && lldpSm_->lastNotificationTime() == lastNotification) {
    OperatorLog::notificationSuppressed(Zet::System::currentTime() - lastNotification);
  }
}

void StateWriter::refused(std::string const& reason) {
  std::cerr << "lldp-snmp-agent: reload refused, still serving the previous state: " << reason << std::endl;
  OperatorLog::refused(reason);
}
