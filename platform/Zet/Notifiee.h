#pragma once
// Notifiers and their notifiees (reactors).
//
// A notifiee watches one notifier. It is entered in the notifier's list by
// isRegisteredNotifieeIs(true) and hears the notifier's slots while its
// notification-active flag is set. Delivery is synchronous: a writer's call
// returns after every active notifiee has run its slot.

#include <vector>

#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"

namespace Zet {

class PtrInterface::NotifieeConst : public PtrInterface {
 public:
  NotifieeConst() = default;
  ~NotifieeConst() override;

  PtrInterface const* notifier() const { return notifier_.get(); }
  // Makes `notifier` this notifiee's notifier (null for none) and moves an
  // existing registration from the old notifier to the new one.
  virtual void notifierIs(Ptr<PtrInterface const> const& notifier);

  bool isRegisteredNotifiee() const { return registered_; }
  // Enters the notifiee in its notifier's list, or takes it out.
  void isRegisteredNotifieeIs(bool b);

  // Called when a slot of this notifiee lets an exception out; the default
  // traces it and delivery goes on with the next notifiee.
  virtual void onNotificationException();

 private:
  Ptr<PtrInterface const> notifier_;
  bool registered_ = false;
};

namespace detail {
bool isNotifiee(PtrInterface const& notifier, PtrInterface::NotifieeConst const* n);
void reportNotificationException(PtrInterface::NotifieeConst& n);
}  // namespace detail

// Calls `slot` with `args` on every registered, active notifiee of `notifier`.
// A notifiee that a slot removes or detaches is skipped from then on.
template <class Notifiee, class... Params, class... Args>
void notify(PtrInterface const& notifier, void (Notifiee::*slot)(Params...), Args const&... args) {
  auto const* list = notifier.notifieeList();
  if (!list || list->empty()) {
    return;
  }
  std::vector<PtrInterface::NotifieeConst*> const snapshot(*list);
  for (auto* n : snapshot) {
    if (!detail::isNotifiee(notifier, n) || !n->hasNotificationActive()) {
      continue;
    }
    Ptr<PtrInterface::NotifieeConst> keepAlive;
    if (n->references() > 0) {
      keepAlive = n;
    }
    try {
      (static_cast<Notifiee*>(n)->*slot)(args...);
    } catch (...) {
      detail::reportNotificationException(*n);
    }
  }
}

}  // namespace Zet
