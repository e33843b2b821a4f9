#pragma once
// The plug-in's one state machine that belongs to no port: it raises
// lldpRemTablesChange when the remote tables change (at most once in 5
// seconds), mirrors the local management addresses with their transmit port
// lists, and, when its first scan is done, hands the mirror to the SNMP side.
// Ports and their state machines come from the host, not from here.

#include "Zet/ZetType.h"
#include <utility>

#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "Ondo/IntfId.h"
#include "Reactor.h"
#include "Zet/HashMap.h"
#include "Zet/Ptr.h"
#include "Zet/PtrInterface.h"
#include "Zet/RbTreeMap.h"

namespace Lldp::Snmp {

class Root;

class LldpSm : public Zet::PtrInterface {
  struct Passkey {};

 public:
  static Zet::ZetType const _zetType;
  Zet::ZetType const* fwkType() const override { return &_zetType; }
  class ZetStatus;
  class ZetLocalSystem;

  // A node of manAddr: a priority and the address it names.
  class ZetManAddr : public Zet::PtrInterface, public Zet::RbTreeNode {
   public:
    ZetManAddr(Lldp::ManAddrPriority prio, Lldp::ManagementAddress::Key key)
        : prio_(std::move(prio)), key_(std::move(key)) {}
    Lldp::ManAddrPriority const& fwkKey() const { return prio_; }
    Lldp::ManagementAddress::Key const& key() const { return key_; }
    void keyIs(Lldp::ManagementAddress::Key const& key) { key_ = key; }

   private:
    Lldp::ManAddrPriority const prio_;
    Lldp::ManagementAddress::Key key_;
  };
  struct ZetManAddrPrio;
  using ManAddrPrios = Zet::HashMap2018<ZetManAddrPrio, Lldp::ManagementAddress::Key, Lldp::ManAddrPriority>;
  using ManAddrs = Zet::RbTreeMap<ZetManAddr, Lldp::ManAddrPriority, ZetManAddr>;

  // Builds the state machine and activates it. Its first scan ends with
  // lldpRootIs(root), which a process allows once.
  static Zet::Ptr<LldpSm> LldpSmIs(Zet::Ptr<Lldp::AllStatus const> const& status,
                                   Zet::Ptr<Lldp::LocalSystem const> const& localSystem,
                                   Zet::Ptr<Lldp::Config const> const& config, Zet::Ptr<Root> const& root);
  // For LldpSmIs only (through Zet::makePtr).
  LldpSm(Passkey, Zet::Ptr<Lldp::AllStatus const> const& status, Zet::Ptr<Lldp::LocalSystem const> const& localSystem,
         Zet::Ptr<Lldp::Config const> const& config, Zet::Ptr<Root> const& root);
  // Removes no mirror row.
  ~LldpSm() override;

  // Null when there is no reactor.
  Zet::Ptr<Lldp::AllStatus const> status() const { return status_.notifier(); }
  // A new entity runs handleLastChangeTime() at once, under the rate limit.
  void statusIs(Zet::Ptr<Lldp::AllStatus const> const& status);
  Zet::Ptr<Lldp::AllStatus const> statusDel();
  Zet::Ptr<Lldp::LocalSystem const> localSystem() const { return localSystem_.notifier(); }
  void localSystemIs(Zet::Ptr<Lldp::LocalSystem const> const& localSystem);
  Zet::Ptr<Lldp::LocalSystem const> localSystemDel();
  // Held and never read: the notification interval is a constant of its type.
  Zet::Ptr<Lldp::Config const> const& config() const { return config_; }
  Zet::Ptr<Root> const& root() const { return root_; }
  Zet::Ptr<ZetStatus> const& zetStatus() const { return status_.reactor(); }
  Zet::Ptr<ZetLocalSystem> const& zetLocalSystem() const { return localSystem_.reactor(); }

  // Seconds on the clock of Zet::System::currentTime(); 0 until the first.
  double lastNotificationTime() const { return lastNotificationTime_; }
  void lastNotificationTimeIs(double const& time) { lastNotificationTime_ = time; }

  // Raises lldpRemTablesChange unless one went out less than 5 seconds ago;
  // a suppressed change is not remembered.
  void handleLastChangeTime();
  // Mirrors the address if the local system has it, else removes its row.
  void handleManagementAddress(Lldp::ManagementAddress::Key const& key);
  // A present priority fills the address's port list; a gone one removes
  // the address's row.
  void handleManagementAddressPrio(Lldp::ManAddrPriority const& prio);
  // A port joined or left the local system's localPort: each address with a
  // priority gains or loses it.
  void handleLocalPort(Ondo::IntfId intfId, Interface::EthPortId ethPortId);
  // Mirrors every address and priority, then hands the root over; run once, by LldpSmIs.
  void handleInitialized();

  // Which address has which priority, as this state machine last heard it:
  // a priority that has gone can still be traced to its address.
  ManAddrPrios const& manAddrPrio() const { return manAddrPrio_; }
  // The default priority for an address without one.
  Lldp::ManAddrPriority manAddrPrio(Lldp::ManagementAddress::Key const& key) const { return manAddrPrio_[key]; }
  void manAddrPrioIs(Lldp::ManagementAddress::Key const& key, Lldp::ManAddrPriority const& prio);
  Lldp::ManAddrPriority manAddrPrioDel(Lldp::ManagementAddress::Key const& key);
  void manAddrPrioDelAll();
  ManAddrs const& manAddr() const { return manAddr_; }
  // The default key for a priority not held.
  Lldp::ManagementAddress::Key manAddr(Lldp::ManAddrPriority const& prio) const;
  void manAddrIs(Lldp::ManAddrPriority const& prio, Lldp::ManagementAddress::Key const& key);
  Lldp::ManagementAddress::Key manAddrDel(Lldp::ManAddrPriority const& prio);
  Lldp::ManagementAddress::Key manAddrDel(ManAddrs::Iterator const& it);
  void manAddrDelAll();

  void hasNotificationActiveIs(bool b) override;
  virtual void zetDoZombieReactors(bool z);

  // After the handlers they forward to.
  class ZetStatus : public Reactor<LldpSm, Lldp::AllStatus, &LldpSm::handleLastChangeTime> {
   public:
    using Reactor::Reactor;
    void onRemTablesLastChangeTime() override { forward<&LldpSm::handleLastChangeTime>(); }
  };
  class ZetLocalSystem : public Reactor<LldpSm, Lldp::LocalSystem> {
   public:
    using Reactor::Reactor;
    void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
      forward<&LldpSm::handleManagementAddress>(key);
    }
    void onManagementAddresszetImmediate() override {}
    void onManagementAddressPrio(Lldp::ManAddrPriority const& prio) override {
      forward<&LldpSm::handleManagementAddressPrio>(prio);
    }
    void onManagementAddressPriozetImmediate() override {}
  };

 private:
  ReactorSlot<ZetStatus> status_;
  ReactorSlot<ZetLocalSystem> localSystem_;
  Zet::Ptr<Lldp::Config const> config_;
  Zet::Ptr<Root> root_;
  double lastNotificationTime_ = 0.0;
  ManAddrPrios manAddrPrio_;
  ManAddrs manAddr_;
};

// The local management address `key` gets its row, with the address's record
// and an empty port list if new; then every port of the Root's localPort rows
// goes into the list, if the address has a priority.
void doAddLocalManagementAddress(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key);
void doRemoveLocalManagementAddress(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key);
// Adds the port to the address's list, or removes it, if the address has a row
// and a priority. Adding a port above 4094 raises a Zet::RangeException.
void doAddLocalManagementAddressPort(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key,
                                     Interface::EthPortId ethPortId);
void doRemoveLocalManagementAddressPort(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key,
                                        Interface::EthPortId ethPortId);

}  // namespace Lldp::Snmp
