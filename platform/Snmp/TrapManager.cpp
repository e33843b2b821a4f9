#include "Snmp/TrapManager.h"

#include <sys/time.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include "Zet/Assert.h"
#include "Zet/System.h"

namespace Snmp {
namespace {

Zet::Ptr<Zet::Entity> newTrapManager(Zet::Name const& name) { return Zet::makePtr<TrapManager>(name); }

// Sinks come from the configuration (trap2sink, informsink, trapsink), so
// nothing can be sent before net-snmp has read it.
bool sinksKnown() { return netsnmp_ds_get_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_HAVE_READ_CONFIG) != 0; }

timeval secondsToTimeval(double seconds) {
  double whole = 0.0;
  double const fraction = std::modf(seconds, &whole);
  timeval t{};
  t.tv_sec = static_cast<time_t>(whole);
  // Rounded up, so that the alarm never fires before the time asked for.
  t.tv_usec = static_cast<suseconds_t>(std::ceil(fraction * 1e6));
  if (t.tv_usec >= 1000000) {
    t.tv_sec += 1;
    t.tv_usec -= 1000000;
  }
  return t;
}

}  // namespace

Zet::ZetType const TrapManager::_zetType{.name = "Snmp::TrapManager", .newEntity = &newTrapManager};

void TrapManager::VarsDeleter::operator()(variable_list* vars) const { snmp_free_varbind(vars); }

TrapManager::TrapManager(Zet::Name name) : Zet::Entity(std::move(name)) {
  // Without this, net-snmp runs alarms from SIGALRM, in the middle of whatever
  // the thread is doing; the agent's loop runs them itself.
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_ALARM_DONT_USE_SIG, 1);
}

TrapManager::~TrapManager() { pendingDelAll(); }

void TrapManager::enqueueTrap(variable_list* vars, Zet::String context, double const& sendTime) {
  Entry entry{std::unique_ptr<variable_list, VarsDeleter>(vars), std::move(context), sendTime, 0, false};
  double const wait = sendTime - Zet::System::currentTime();
  if (wait > 0.0 || !sinksKnown()) {
    entry.alarm = newAlarm(std::max(wait, 0.0));
  }
  queue_.push_back(std::move(entry));
  sendDue();
}

std::vector<TrapManager::Pending> TrapManager::pending() const {
  std::vector<Pending> result;
  result.reserve(queue_.size());
  for (auto const& e : queue_) {
    result.push_back({e.vars.get(), e.context, e.sendTime});
  }
  return result;
}

void TrapManager::pendingDelAll() {
  for (auto const& e : queue_) {
    if (e.alarm != 0) {
      snmp_alarm_unregister(e.alarm);
    }
  }
  queue_.clear();
}

void TrapManager::onAlarm(unsigned int alarm, void* manager) {
  auto* const self = static_cast<TrapManager*>(manager);
  auto const it =
      std::find_if(self->queue_.begin(), self->queue_.end(), [alarm](Entry const& e) { return e.alarm == alarm; });
  if (it == self->queue_.end()) {
    return;
  }
  // net-snmp takes a one-shot alarm away itself once it has run.
  it->alarm = 0;
  if (!sinksKnown()) {
    // Only a loop that runs before net-snmp's start gets here: look again shortly.
    it->alarm = self->newAlarm(1.0);
    return;
  }
  it->woken = true;
  self->sendDue();
}

unsigned TrapManager::newAlarm(double seconds) {
  unsigned const alarm = snmp_alarm_register_hr(secondsToTimeval(seconds), 0, &TrapManager::onAlarm, this);
  // net-snmp refuses only a repeating alarm of 0 seconds, which this never is.
  ZET_ASSERT(alarm != 0);
  return alarm;
}

void TrapManager::sendDue() {
  if (!sinksKnown()) {
    return;
  }
  double const now = Zet::System::currentTime();
  // Taken out of the queue before sending, so that the queue is consistent
  // whatever net-snmp calls back while it sends.
  auto const firstWaiting = std::stable_partition(queue_.begin(), queue_.end(), [now](Entry const& e) {
    return e.woken || e.sendTime <= now;
  });
  std::vector<Entry> due;
  std::move(queue_.begin(), firstWaiting, std::back_inserter(due));
  queue_.erase(queue_.begin(), firstWaiting);
  for (auto& e : due) {
    if (e.alarm != 0) {
      snmp_alarm_unregister(e.alarm);
    }
    if (e.context.empty()) {
      send_v2trap(e.vars.get());
    } else {
      send_v3trap(e.vars.get(), e.context.charPtr());
    }
    ++sentCount_;
  }
}

}  // namespace Snmp
