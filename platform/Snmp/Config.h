#pragma once
// The agent's SNMP configuration as the plug-in sees it: which notifications
// are registered, whether they may go out, and how long each is held back.

#include <map>

#include "Zet/Entity.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace Snmp {

struct NotificationName {
  Zet::String name;
  friend auto operator<=>(NotificationName const&, NotificationName const&) = default;
};

// One registered notification of a group.
class Notification : public Zet::PtrInterface {
 public:
  explicit Notification(Zet::String name) : name_(std::move(name)) {}
  Zet::String const& name() const { return name_; }

 private:
  Zet::String name_;
};

// A group of notifications ("lldp") with a send delay per notification.
class NotificationConfig : public Zet::PtrInterface {
 public:
  explicit NotificationConfig(Zet::String name) : name_(std::move(name)) {}
  Zet::String const& name() const { return name_; }

  // Null when `name` is not registered in this group.
  Zet::Ptr<Notification const> notification(Zet::String const& name) const;
  Zet::Ptr<Notification> notificationIs(Zet::String const& name);

  // Seconds to hold the notification back; an absent entry counts as 0.
  double delay(NotificationName const& name) const;
  void delayIs(NotificationName const& name, double seconds);

 private:
  Zet::String name_;
  std::map<Zet::String, Zet::Ptr<Notification>> notifications_;
  std::map<NotificationName, double> delay_;
};

// Whether a notification may go out, and if not, why.
struct NotificationStatus {
  bool value = true;
  Zet::String reason;
  explicit operator bool() const { return value; }
};

class Config : public Zet::Entity {
 public:
  Config() : Zet::Entity("config") {}

  // Null when the group is not registered.
  Zet::Ptr<NotificationConfig const> notificationConfig(Zet::String const& group) const;
  Zet::Ptr<NotificationConfig> notificationConfigIs(Zet::String const& group);

  // True unless notifications are turned off, in which case the reason says why.
  NotificationStatus notificationStatus(Zet::String const& group, Zet::String const& notification) const;
  void notificationsEnabledIs(bool enabled, Zet::String reason = {});

 private:
  std::map<Zet::String, Zet::Ptr<NotificationConfig>> groups_;
  NotificationStatus status_;
};

}  // namespace Snmp
