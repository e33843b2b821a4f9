#pragma once
// The state machine of one port that the host has numbered: for each
// neighbour in the port's remoteSystem collection it keeps a row in the
// Root's remoteSystem and a RemoteSystemSm for the neighbour's sub-tables.
// The port's counters need nothing here: the host's PortStatus row reads them.

#include "Zet/ZetType.h"
#include <cstdint>
#include <type_traits>
#include <utility>

#include "Interface/EthPortId.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "Ondo/IntfId.h"
#include "Reactor.h"
#include "RemoteSystemSm.h"
#include "Zet/HashMap.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"

namespace Lldp::Snmp {

class Root;

class PortStatusSm : public Zet::PtrInterface {
  struct Passkey {};

 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  class ZetPortStatus : public Reactor<PortStatusSm, Lldp::PortStatus> {
   public:
    using Reactor::Reactor;
    void onRemoteSystem(std::int32_t const& index) override { forward<&PortStatusSm::handleRemoteSystem>(index); }
    void onRemoteSystemzetImmediate() override {}
  };
  using RemoteSystemSms = Zet::HashMap<std::int32_t, RemoteSystemSm>;
  // Where an inbound neighbour stands in its port's collection.
  using RemoteSystemIterator =
      std::remove_cvref_t<decltype(std::declval<Lldp::PortStatus const&>().remoteSystem())>::const_iterator;

  // Builds the state machine, which mirrors the neighbours the port holds
  // now, and activates it.
  static Zet::Ptr<PortStatusSm> PortStatusSmIs(Interface::EthPortId ethPortId,
                                               Zet::Ptr<Lldp::PortStatus const> const& portStatus,
                                               Zet::Ptr<Root> const& root);
  // For PortStatusSmIs only (through Zet::makePtr).
  PortStatusSm(Passkey, Interface::EthPortId ethPortId, Zet::Ptr<Lldp::PortStatus const> const& portStatus,
               Zet::Ptr<Root> const& root);
  // Lets the neighbours' state machines go but leaves the mirror as it is:
  // the host calls doClose() first.
  ~PortStatusSm() override;

  Interface::EthPortId ethPortId() const { return ethPortId_; }
  // The port's name, the key in Root::portStatusSm; empty without a notifier.
  Ondo::IntfId fwkKey() const;
  Ondo::IntfId intfId() const { return fwkKey(); }
  // Null when there is no reactor.
  Zet::Ptr<Lldp::PortStatus const> portStatus() const { return portStatus_.notifier(); }
  void portStatusIs(Zet::Ptr<Lldp::PortStatus const> const& portStatus);
  Zet::Ptr<Lldp::PortStatus const> portStatusDel();
  Zet::Ptr<Root> const& root() const { return root_; }
  Zet::Ptr<ZetPortStatus> const& zetPortStatus() const { return portStatus_.reactor(); }

  // Level-triggered: a neighbour present at `index` is mirrored, an absent one
  // is taken out of the mirror, sub-tables first.
  void handleRemoteSystem(std::int32_t index);
  // Mirrors every neighbour of the port; run once, by PortStatusSmIs.
  void handleInitialized();
  // Takes every neighbour that the port lists now out of the mirror. The
  // reactor stays attached.
  void doClose();

  RemoteSystemSms const& remoteSystemSm() const { return remoteSystemSm_; }
  Zet::Ptr<RemoteSystemSm> remoteSystemSm(std::int32_t index) const { return remoteSystemSm_[index]; }
  // The state machine at `index`, made if there is none; raises the name-in-use
  // exception when the one there has other parameters.
  Zet::Ptr<RemoteSystemSm> remoteSystemSmIs(std::int32_t index, Interface::EthPortId ethPortId,
                                            Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem,
                                            Zet::Ptr<Root> const& root);
  // Takes it out of the collection, nothing more.
  Zet::Ptr<RemoteSystemSm> remoteSystemSmDel(std::int32_t index) { return remoteSystemSm_.deleteMember(index); }
  void remoteSystemSmDelAll();
  void remoteSystemSmNotify(std::int32_t) {}

  // Reaches the neighbours' state machines too.
  void hasNotificationActiveIs(bool b) override;
  // Does not: a zombie port leaves its neighbours' reactors as they are.
  virtual void zetDoZombieReactors(bool z);

 private:
  Interface::EthPortId const ethPortId_;
  ReactorSlot<ZetPortStatus> portStatus_;
  Zet::Ptr<Root> root_;
  RemoteSystemSms remoteSystemSm_;
};

// Mirrors the neighbour under `it`: its row first, then its state machine,
// whose first scan fills the row's sub-tables.
void doAddRemoteSystem(Zet::Ptr<PortStatusSm> const& sm, PortStatusSm::RemoteSystemIterator const& it);
// Takes the neighbour at `index` out of the mirror: its sub-tables, its state
// machine, then its row. A neighbour without a state machine is fatal.
void doRemoveRemoteSystem(Zet::Ptr<PortStatusSm> const& sm, std::int32_t index);

}  // namespace Lldp::Snmp
