#include "Zet/Notifiee.h"

#include <algorithm>
#include <exception>

#include "Zet/Trace.h"

namespace Zet {

struct PtrInterface::NotifieeList {
  std::vector<NotifieeConst*> members;
};

PtrInterface::PtrInterface() = default;
PtrInterface::~PtrInterface() = default;

std::vector<PtrInterface::NotifieeConst*> const* PtrInterface::notifieeList() const {
  return notifiees_ ? &notifiees_->members : nullptr;
}

PtrInterface::NotifieeConst::~NotifieeConst() { isRegisteredNotifieeIs(false); }

void PtrInterface::NotifieeConst::notifierIs(Ptr<PtrInterface const> const& notifier) {
  if (notifier.get() == notifier_.get()) {
    return;
  }
  bool const wasRegistered = registered_;
  isRegisteredNotifieeIs(false);
  notifier_ = notifier;
  if (wasRegistered) {
    isRegisteredNotifieeIs(true);
  }
}

void PtrInterface::NotifieeConst::isRegisteredNotifieeIs(bool b) {
  if (!notifier_) {
    registered_ = false;
    return;
  }
  if (b == registered_) {
    return;
  }
  auto& list = notifier_->notifiees_;
  if (b) {
    if (!list) {
      list = std::make_unique<NotifieeList>();
    }
    list->members.push_back(this);
  } else if (list) {
    auto& m = list->members;
    m.erase(std::remove(m.begin(), m.end(), this), m.end());
  }
  registered_ = b;
}

void PtrInterface::NotifieeConst::onNotificationException() {
  static TraceHandle const trace("Zet", false);
  try {
    throw;
  } catch (std::exception const& e) {
    ZET_TRACE(trace, 0) << "notifiee let an exception out: " << e.what();
  } catch (...) {
    ZET_TRACE(trace, 0) << "notifiee let an unknown exception out";
  }
}

namespace detail {

bool isNotifiee(PtrInterface const& notifier, PtrInterface::NotifieeConst const* n) {
  auto const* list = notifier.notifieeList();
  return list && std::find(list->begin(), list->end(), n) != list->end();
}

void reportNotificationException(PtrInterface::NotifieeConst& n) { n.onNotificationException(); }

}  // namespace detail
}  // namespace Zet
