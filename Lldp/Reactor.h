#pragma once
// The machinery that LldpSm, PortStatusSm and RemoteSystemSm share.
//
// A state machine watches each inbound entity through one small reactor, a
// notifiee of that entity. The reactor forwards the slots it cares about to a
// handler of its owner, which reads the entity's present state and writes the
// mirror. Here, once for all of them:
// - Reactor: attaching, rebinding, zombie handling and the forwarder;
// - ReactorSlot: the state machine's field that holds one reactor, with the
//   rules of its ...Is and ...Del operations;
// - notificationActiveIs / doZombieReactors: how a state machine passes these
//   flags to its reactors;
// - the trace handle and ring log of the reactors, and the name-in-use text of
//   a state machine re-created with other parameters.
//
// A zombie reactor delivers nothing. A reactor's owner is a plain pointer: the
// state machine owns the reactor, and clears the pointer when it lets go.

#include <sstream>
#include <string_view>
#include <utility>

#include "Ringlog/Ringlog.h"
#include "Zet/Notifiee.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"
#include "Zet/String.h"
#include "Zet/Trace.h"

namespace Lldp::Snmp {

// The reactors' trace handle, "LldpSnmp".
Zet::TraceHandle const& _defaultTraceHandle();

// Writes the parts, joined as they stream, to the default ring log; formats
// nothing when the level is off.
template <class... Parts>
void ringlogWrite(int level, Parts const&... parts) {
  if (!Ringlog::enabled(level)) {
    return;
  }
  std::ostringstream text;
  (text << ... << parts);
  Ringlog::write(level, text.str());
}

// Raises the name-in-use exception for a state machine looked up by its key
// whose constructor parameter `attribute` differs from the one asked for.
[[noreturn]] void throwReinstantiating(std::string_view attribute, Zet::String const& newValue,
                                       Zet::String const& oldValue);

// The reactor of an `Owner` on a `Notifier`. Subclasses override the slots
// they react to with forward<&Owner::handleX>(key). `onRebind`, when given, is
// the owner's handler that a rebinding to a new notifier runs at once: the
// reaction to a scalar attribute, which no handleInitialized() brings in.
template <class OwnerT, class NotifierT, auto onRebind = nullptr>
class Reactor : public NotifierT::NotifieeConst {
 public:
  using Owner = OwnerT;
  using Notifier = NotifierT;

  // Attached without running a handler: what the notifier holds now is the
  // owner's handleInitialized()'s business.
  Reactor(Zet::Ptr<Notifier const> const& notifier, Owner* owner) : owner_(owner) {
    Zet::PtrInterface::NotifieeConst::notifierIs(notifier);
    this->isRegisteredNotifieeIs(true);
  }

  Owner* owner() const { return owner_; }
  void ownerIs(Owner* owner) { owner_ = owner; }
  Zet::Ptr<Notifier const> typedNotifier() const { return static_cast<Notifier const*>(this->notifier()); }

  void hasNotificationActiveIs(bool b) override {
    if (b == this->hasNotificationActive()) {
      return;
    }
    Zet::PtrInterface::NotifieeConst::hasNotificationActiveIs(b);
  }

  // A notifier of another type counts as none.
  void notifierIs(Zet::Ptr<Zet::PtrInterface const> const& notifier) override {
    Zet::Ptr<Notifier const> const typed(dynamic_cast<Notifier const*>(notifier.get()));
    if (typed.get() == this->notifier()) {
      return;
    }
    Zet::PtrInterface::NotifieeConst::notifierIs(typed);
    if constexpr (onRebind != nullptr) {
      if (typed && !this->zetMarkedForDeletion()) {
        (owner_->*onRebind)();
      }
    }
    this->isRegisteredNotifieeIs(true);
  }

  // A zombie hears nothing; coming back, it hears again only if it has a notifier.
  virtual void zetDoZombieReactors(bool z) {
    if (z == this->zetMarkedForDeletion()) {
      return;
    }
    if (this->notifier()) {
      hasNotificationActiveIs(!z);
    }
    this->zetMarkedForDeletionIs(z);
  }

 protected:
  template <auto handler, class... Args>
  void forward(Args const&... args) {
    if (this->zetMarkedForDeletion()) {
      return;
    }
    (owner_->*handler)(args...);
  }

 private:
  Owner* owner_;
};

// The field of a state machine that holds its reactor for one notifier; empty
// while there is no notifier.
template <class R>
class ReactorSlot {
 public:
  using Owner = typename R::Owner;
  using Notifier = typename R::Notifier;

  // As the state machine is built: attached and active, or empty for null.
  ReactorSlot(Zet::Ptr<Notifier const> const& notifier, Owner* owner) {
    if (notifier) {
      reactor_ = Zet::makePtr<R>(notifier, owner);
      reactor_->hasNotificationActiveIs(true);
    }
  }
  ReactorSlot(ReactorSlot const&) = delete;
  ReactorSlot& operator=(ReactorSlot const&) = delete;

  Zet::Ptr<R> const& reactor() const { return reactor_; }
  // Null with no reactor or a reactor without notifier.
  Zet::Ptr<Notifier const> notifier() const { return reactor_ ? reactor_->typedNotifier() : nullptr; }

  // Watches `notifier` from now on, keeping the owner's zombie state; null
  // lets the reactor go.
  void notifierIs(Zet::Ptr<Notifier const> const& notifier, Owner* owner, bool ownerIsZombie) {
    if (!reactor_) {
      if (!notifier) {
        return;
      }
      auto reactor = Zet::makePtr<R>(nullptr, owner);
      reactor->hasNotificationActiveIs(true);
      reactor_ = reactor;
      reactor->notifierIs(notifier);
      reactor->zetDoZombieReactors(ownerIsZombie);
      return;
    }
    if (reactor_->notifier() == notifier.get()) {
      return;
    }
    if (notifier) {
      auto const reactor = reactor_;
      reactor->notifierIs(notifier);
      reactor->zetDoZombieReactors(ownerIsZombie);
      return;
    }
    auto const old = std::exchange(reactor_, nullptr);
    old->zetDoZombieReactors(true);
    old->ownerIs(nullptr);
  }

  // Lets the reactor go and gives its notifier back; null with no reactor.
  Zet::Ptr<Notifier const> notifierDel() {
    auto const old = std::exchange(reactor_, nullptr);
    if (!old) {
      return nullptr;
    }
    old->zetDoZombieReactors(true);
    old->ownerIs(nullptr);
    old->hasNotificationActiveIs(false);
    return old->typedNotifier();
  }

  void hasNotificationActiveIs(bool b) {
    if (reactor_) {
      reactor_->hasNotificationActiveIs(b);
    }
  }
  void zetDoZombieReactors(bool z) {
    if (reactor_) {
      reactor_->zetDoZombieReactors(z);
    }
  }
  // For the owner's destructor: the reactor may outlive it in a delivery under way.
  void ownerClear() {
    if (reactor_) {
      reactor_->ownerIs(nullptr);
    }
  }

 private:
  Zet::Ptr<R> reactor_;
};

// hasNotificationActiveIs of a state machine: its own flag, then each reactor
// in the order given. False when the flag was already `b`.
template <class... Reactors>
bool notificationActiveIs(Zet::PtrInterface& stateMachine, bool b, ReactorSlot<Reactors>&... slots) {
  if (b == stateMachine.hasNotificationActive()) {
    return false;
  }
  stateMachine.Zet::PtrInterface::hasNotificationActiveIs(b);
  (slots.hasNotificationActiveIs(b), ...);
  return true;
}

// zetDoZombieReactors of a state machine: each reactor in the order given,
// then its own flag. Children are not the business of this call.
template <class... Reactors>
void doZombieReactors(Zet::PtrInterface& stateMachine, bool z, ReactorSlot<Reactors>&... slots) {
  if (z == stateMachine.zetMarkedForDeletion()) {
    return;
  }
  (slots.zetDoZombieReactors(z), ...);
  stateMachine.zetMarkedForDeletionIs(z);
}

}  // namespace Lldp::Snmp
