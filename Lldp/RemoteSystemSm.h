#pragma once
// The state machine of one neighbour on a port: it copies the neighbour's six
// collections (management addresses, unknown TLVs, organisational TLVs, port
// and protocol VLANs, VLAN names, protocol identities) into the Root's value
// collections, filed under the port and the neighbour's index, and keeps them
// in step. The neighbour's scalar attributes need nothing: its row reads them.

#include "Zet/ZetType.h"
#include <cstdint>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "Reactor.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"

namespace Lldp::Snmp {

class Root;

class RemoteSystemSm : public Zet::PtrInterface {
  struct Passkey {};

 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  class ZetRemoteSystem : public Reactor<RemoteSystemSm, Lldp::RemoteSystem> {
   public:
    using Reactor::Reactor;
    void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
      forward<&RemoteSystemSm::handleManagementAddress>(key);
    }
    void onManagementAddresszetImmediate() override {}
    void onUnknownTlv(std::uint32_t const& type) override { forward<&RemoteSystemSm::handleUnknownTlv>(type); }
    void onUnknownTlvzetImmediate() override {}
    void onUnknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key const& key) override {
      forward<&RemoteSystemSm::handleUnknownOrgDefTlv>(key);
    }
    void onUnknownOrgDefTlvzetImmediate() override {}
    void onPortAndProtocolVlan(Bridging::VlanIdOrNone const& portAndProtocolVlanId) override {
      forward<&RemoteSystemSm::handlePortAndProtocolVlan>(portAndProtocolVlanId);
    }
    void onPortAndProtocolVlanzetImmediate() override {}
    void onVlanName(Bridging::VlanId const& vlanId) override { forward<&RemoteSystemSm::handleVlanName>(vlanId); }
    void onVlanNamezetImmediate() override {}
    void onProtocolIdentityInfo(std::int32_t const& index) override {
      forward<&RemoteSystemSm::handleProtocolIdentityInfo>(index);
    }
    void onProtocolIdentityInfozetImmediate() override {}
  };

  // Builds the state machine, which mirrors what the neighbour holds now, and
  // activates it.
  static Zet::Ptr<RemoteSystemSm> RemoteSystemSmIs(std::int32_t index, Interface::EthPortId ethPortId,
                                                   Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem,
                                                   Zet::Ptr<Root> const& root);
  // For RemoteSystemSmIs only (through Zet::makePtr).
  RemoteSystemSm(Passkey, std::int32_t index, Interface::EthPortId ethPortId,
                 Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem, Zet::Ptr<Root> const& root);
  // Leaves the mirror as it is: doClose() is what takes the rows away.
  ~RemoteSystemSm() override;

  // The key in the PortStatusSm's collection.
  std::int32_t fwkKey() const { return index_; }
  std::int32_t index() const { return index_; }
  Interface::EthPortId ethPortId() const { return ethPortId_; }
  // Null when there is no reactor.
  Zet::Ptr<Lldp::RemoteSystem const> remoteSystem() const { return remoteSystem_.notifier(); }
  void remoteSystemIs(Zet::Ptr<Lldp::RemoteSystem const> const& remoteSystem);
  Zet::Ptr<Lldp::RemoteSystem const> remoteSystemDel();
  Zet::Ptr<Root> const& root() const { return root_; }
  Zet::Ptr<ZetRemoteSystem> const& zetRemoteSystem() const { return remoteSystem_.reactor(); }

  // Level-triggered: the entry present in the neighbour is copied into the
  // mirror, all its fields; an absent one is removed from it.
  void handleManagementAddress(Lldp::ManagementAddress::Key const& key);
  void handleUnknownTlv(std::uint32_t type);
  void handleUnknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key const& key);
  void handlePortAndProtocolVlan(Bridging::VlanIdOrNone portAndProtocolVlanId);
  void handleVlanName(Bridging::VlanId vlanId);
  void handleProtocolIdentityInfo(std::int32_t index);
  // Copies every entry of the six collections; run once, by RemoteSystemSmIs.
  void handleInitialized();
  // Removes from the mirror every entry the neighbour lists now.
  void doClose();

  void hasNotificationActiveIs(bool b) override;
  virtual void zetDoZombieReactors(bool z);

 private:
  std::int32_t const index_;
  Interface::EthPortId const ethPortId_;
  ReactorSlot<ZetRemoteSystem> remoteSystem_;
  Zet::Ptr<Root> root_;
};

// Copy one entry of the neighbour into the mirror, or take the mirror's copy
// of the entry with that key away (absent is no fault).
void doAddManagementAddress(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ManagementAddress const& entry);
void doAddUnknownTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownTlv const& entry);
void doAddUnknownOrgDefTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownOrgDefTlv const& entry);
void doAddPortAndProtocolVlan(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::PortAndProtocolVlan const& entry);
void doAddVlanName(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::VlanName const& entry);
void doAddProtocolIdentityInfo(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ProtocolIdentityInfo const& entry);
void doRemoveManagementAddress(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::ManagementAddress::Key key);
void doRemoveUnknownTlv(Zet::Ptr<RemoteSystemSm> const& sm, std::uint32_t type);
void doRemoveUnknownOrgDefTlv(Zet::Ptr<RemoteSystemSm> const& sm, Lldp::UnknownOrgDefTlv::Key key);
void doRemovePortAndProtocolVlan(Zet::Ptr<RemoteSystemSm> const& sm, Bridging::VlanIdOrNone portAndProtocolVlanId);
void doRemoveVlanName(Zet::Ptr<RemoteSystemSm> const& sm, Bridging::VlanId vlanId);
void doRemoveProtocolIdentityInfo(Zet::Ptr<RemoteSystemSm> const& sm, std::int32_t index);

}  // namespace Lldp::Snmp
