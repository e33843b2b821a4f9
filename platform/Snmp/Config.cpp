#include "Snmp/Config.h"

namespace Snmp {

Zet::Ptr<Notification const> NotificationConfig::notification(Zet::String const& name) const {
  auto it = notifications_.find(name);
  return it == notifications_.end() ? nullptr : Zet::Ptr<Notification const>(it->second);
}

Zet::Ptr<Notification> NotificationConfig::notificationIs(Zet::String const& name) {
  auto& n = notifications_[name];
  if (!n) {
    n = Zet::makePtr<Notification>(name);
  }
  return n;
}

double NotificationConfig::delay(NotificationName const& name) const {
  auto it = delay_.find(name);
  return it == delay_.end() ? 0.0 : it->second;
}

void NotificationConfig::delayIs(NotificationName const& name, double seconds) { delay_[name] = seconds; }

Zet::Ptr<NotificationConfig const> Config::notificationConfig(Zet::String const& group) const {
  auto it = groups_.find(group);
  return it == groups_.end() ? nullptr : Zet::Ptr<NotificationConfig const>(it->second);
}

Zet::Ptr<NotificationConfig> Config::notificationConfigIs(Zet::String const& group) {
  auto& g = groups_[group];
  if (!g) {
    g = Zet::makePtr<NotificationConfig>(group);
  }
  return g;
}

NotificationStatus Config::notificationStatus(Zet::String const& group, Zet::String const& notification) const {
  if (!status_.value) {
    return status_;
  }
  auto g = notificationConfig(group);
  if (!g || !g->notification(notification)) {
    return {false, "notification " + std::string(notification.view()) + " of group " + std::string(group.view()) +
                       " is not registered"};
  }
  return status_;
}

void Config::notificationsEnabledIs(bool enabled, Zet::String reason) { status_ = {enabled, std::move(reason)}; }

}  // namespace Snmp
