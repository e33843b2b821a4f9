// The LLDP agent's entities: keys of their collections, lookups, where they
// are published, and the delivery of their notifications to notifiees.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Bridging/VlanId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "Ondo/IntfId.h"
#include "Zet/Ptr.h"

namespace {

using Log = std::vector<std::string>;

Lldp::ManagementAddress address(std::uint8_t lastByte, std::int32_t ifId = 0) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  Lldp::ManagementAddress a(Lldp::ManagementAddress::Key(1, Lldp::ManAddress(Zet::String(bytes))));
  a.ifId = ifId;
  return a;
}

Lldp::ManAddrPriority priority(std::uint32_t value) {
  return Lldp::ManAddrPriority(value, 1, 0, Ondo::IntfId("Ethernet1"));
}

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* portId) {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId("peer"),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(portId)));
}

Zet::Ptr<Lldp::LocalPort> port(char const* name, std::uint16_t maxFrameSize) {
  auto p = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId(name));
  p->maxFrameSizeIs(maxFrameSize);
  return p;
}

// The defaults of absent records are not all zero: no VLAN 0, no TLV type below 9.
TEST(RecordCollections, SortedMapIteratesInKeyOrderAndAbsentKeysReadAsDefaults) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  for (std::uint8_t n : {3, 1, 2}) {
    system->managementAddressPrioIs(priority(n * 10), address(n).key());
  }
  std::vector<std::uint32_t> priorities;
  for (auto const& [prio, key] : system->managementAddressPrio()) {
    EXPECT_EQ(key, address(static_cast<std::uint8_t>(prio.priority / 10)).key());
    priorities.push_back(prio.priority);
  }
  EXPECT_EQ(priorities, (std::vector<std::uint32_t>{10, 20, 30}));
  EXPECT_EQ(system->managementAddressPrioDel(priority(20)), address(2).key());
  EXPECT_EQ(system->managementAddressPrioCount(), 2u);
  EXPECT_EQ(system->managementAddressPrio(priority(20)), Lldp::ManagementAddress::Key());
  EXPECT_EQ(system->managementAddress(address(3).key()), Lldp::ManagementAddress());

  auto const remote = neighbour(1, "Ethernet7");
  Lldp::UnknownOrgDefTlv::Key const orgKey(Lldp::Oui(0x0080c2), 9, 2);
  remote->unknownOrgDefTlvIs(Lldp::UnknownOrgDefTlv(orgKey, Lldp::BoundedString507("info")));
  EXPECT_EQ(remote->unknownOrgDefTlv(orgKey).orgDefInfo, Lldp::BoundedString507("info"));
  EXPECT_FALSE(remote->unknownOrgDefTlvHas(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(0x0080c2), 9, 1)));
  EXPECT_EQ(remote->vlanNameDel(Bridging::VlanId(101)).vlanId, Bridging::VlanId(1));
  EXPECT_EQ(remote->unknownTlv(21).type, 9u);
}

// Every entity collection is stamped from one pattern: an owning one publishes its
// members under the owner, a second view of the same members owns nothing.
TEST(EntityCollections, MembersArePublishedUnderTheirOwnerWhileBothAreThere) {
  auto port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  auto const first = neighbour(3, "a");
  auto const second = neighbour(4, "b");
  port->remoteSystemIs(first);
  port->remoteSystemIs(second);
  port->remoteSystemByMsapIs(first);
  EXPECT_EQ(port->remoteSystem(4), second);
  EXPECT_FALSE(port->remoteSystem(5));
  EXPECT_EQ(port->remoteSystemByMsap(first->msap()), first);
  EXPECT_EQ(first->fullName(), Zet::String("Ethernet7/3"));
  EXPECT_EQ(port->remoteSystemByMsapDel(first->msap()), first);
  EXPECT_EQ(first->parent(), port.get());
  EXPECT_EQ(port->remoteSystemDel(3), first);
  EXPECT_FALSE(port->remoteSystemHas(3));
  EXPECT_EQ(first->parent(), nullptr);
  // A member that outlives its owner forgets it.
  port = nullptr;
  EXPECT_EQ(second->parent(), nullptr);
  EXPECT_EQ(second->fullName(), Zet::String("4"));
}

class ConfigWatcher : public Lldp::Config::NotifieeConst {
 public:
  ConfigWatcher(Log& log, std::string tag) : log_(log), tag_(std::move(tag)) {}
  ~ConfigWatcher() override { log_.push_back(tag_ + " gone"); }

  void onMessageTxInterval() override { log_.push_back(tag_ + " messageTxInterval"); }
  void onTxDelay() override {
    log_.push_back(tag_ + " txDelay");
    duringTxDelay();
  }

  std::function<void()> duringTxDelay = [] {};

 private:
  Log& log_;
  std::string const tag_;
};

// Records each slot with what the notifier holds at that moment, as a level-triggered handler reads it.
class LocalSystemWatcher : public Lldp::LocalSystem::NotifieeConst {
 public:
  LocalSystemWatcher(Log& log, std::string tag) : log_(log), tag_(std::move(tag)) {}

  void onChassisIdentifier() override { log_.push_back(tag_ + " chassisIdentifier"); }
  void onLocalPort(Ondo::IntfId const& id) override {
    auto const port = system().localPort(id);
    log_.push_back(tag_ + " " + id.stringValue().stdString() + " " +
                   (port ? std::to_string(port->maxFrameSize()) : "absent"));
  }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    auto const& s = system();
    log_.push_back(tag_ + " address " +
                   (s.managementAddressHas(key) ? std::to_string(s.managementAddress(key).ifId) : "absent"));
  }
  void onManagementAddressPrio(Lldp::ManAddrPriority const& prio) override {
    log_.push_back(tag_ + " prio " + std::to_string(prio.priority));
  }
  void onManagementAddressPriozetImmediate() override { log_.push_back(tag_ + " prio immediate"); }
  void onManagementAddressPrio() override { log_.push_back(tag_ + " prio keyless"); }

 private:
  Lldp::LocalSystem const& system() const { return *static_cast<Lldp::LocalSystem const*>(notifier()); }

  Log& log_;
  std::string const tag_;
};

class StatusWatcher : public Lldp::AllStatus::NotifieeConst {
 public:
  StatusWatcher(Log& log, std::string const&) : log_(log) {}
  void onRemTablesLastChangeTime() override { log_.push_back("remTablesLastChangeTime"); }
  void onPortStatus(Ondo::IntfId const& id) override { log_.push_back("portStatus " + id.stringValue().stdString()); }

 private:
  Log& log_;
};

// The watchers log in the order they hear.
class Notifier : public ::testing::Test {
 protected:
  // Attaches as a reactor does: notifier, then registration, then delivery on.
  template <class Watcher, class N>
  Zet::Ptr<Watcher> watcher(Zet::Ptr<N> const& notifier, std::string tag) {
    auto w = Zet::makePtr<Watcher>(log_, std::move(tag));
    w->notifierIs(notifier);
    w->isRegisteredNotifieeIs(true);
    w->hasNotificationActiveIs(true);
    return w;
  }

  Log log_;
  Zet::Ptr<Lldp::Config> const config_ = Zet::makePtr<Lldp::Config>();
  Zet::Ptr<Lldp::LocalSystem> const system_ = Zet::makePtr<Lldp::LocalSystem>();
};

TEST_F(Notifier, ChangedScalarDeliversItsSlotOnceAndAnEqualValueNothing) {
  auto const a = watcher<ConfigWatcher>(config_, "a");
  auto const b = watcher<LocalSystemWatcher>(system_, "b");
  auto const status = Zet::makePtr<Lldp::AllStatus>();
  auto const c = watcher<StatusWatcher>(status, "c");
  config_->messageTxIntervalIs(10);
  config_->messageTxIntervalIs(10);
  config_->txDelayIs(config_->txDelay());
  // Subtype and identifier are one slot for both halves.
  system_->chassisIdentifierIs(4, "switch-1");
  system_->chassisIdentifierIs(4, "switch-1");
  system_->chassisIdentifierIs(7, "switch-1");
  // A counter has no slot; a port published under the status is heard.
  status->remTablesLastChangeTimeIs(12.5);
  status->remTablesInsertsIs(1);
  status->portStatusIs(Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7")));
  EXPECT_EQ(log_, (Log{"a messageTxInterval", "b chassisIdentifier", "b chassisIdentifier", "remTablesLastChangeTime",
                       "portStatus Ethernet7"}));
  EXPECT_EQ(status->portStatus(Ondo::IntfId("Ethernet7"))->fullName(), Zet::String("all/Ethernet7"));
}

TEST_F(Notifier, EntryChangeDeliversKeyedThenImmediateThenKeylessToEveryNotifiee) {
  auto const a = watcher<LocalSystemWatcher>(system_, "a");
  auto const b = watcher<LocalSystemWatcher>(system_, "b");
  system_->managementAddressPrioIs(Lldp::ManAddrPriority(3, 1, 0, Ondo::IntfId("Ethernet1")), address(1).key());
  EXPECT_EQ(log_,
            (Log{"a prio 3", "b prio 3", "a prio immediate", "b prio immediate", "a prio keyless", "b prio keyless"}));
}

// Each slot reads the collection as it is at that moment, for value records and entities alike;
// storing what is there or removing what is not changes nothing and says nothing.
TEST_F(Notifier, ReplaceThenRemoveAreSeparateNotificationsAndNoChangeIsNone) {
  auto const a = watcher<LocalSystemWatcher>(system_, "a");
  auto const ethernet1 = port("Ethernet1", 9216);
  system_->managementAddressIs(address(1, 5));
  system_->managementAddressIs(address(1, 6));
  system_->managementAddressIs(address(1, 6));
  system_->managementAddressDel(address(2).key());
  EXPECT_EQ(system_->managementAddressDel(address(1).key()).ifId, 6);
  system_->localPortIs(port("Ethernet1", 1518));
  system_->localPortIs(ethernet1);
  system_->localPortIs(ethernet1);
  EXPECT_FALSE(system_->localPortDel(Ondo::IntfId("Ethernet2")));
  EXPECT_EQ(system_->localPortDel(Ondo::IntfId("Ethernet1")), ethernet1);
  system_->managementAddressPrioDel(Lldp::ManAddrPriority());
  EXPECT_EQ(log_, (Log{"a address 5", "a address 6", "a address absent", "a Ethernet1 1518", "a Ethernet1 9216",
                       "a Ethernet1 absent"}));
}

TEST_F(Notifier, InactiveOrUnregisteredNotifieeHearsNothing) {
  auto const inactive = watcher<ConfigWatcher>(config_, "inactive");
  inactive->hasNotificationActiveIs(false);
  auto const unregistered = watcher<ConfigWatcher>(config_, "unregistered");
  unregistered->isRegisteredNotifieeIs(false);
  config_->txDelayIs(9);
  inactive->hasNotificationActiveIs(true);
  config_->txDelayIs(10);
  EXPECT_EQ(log_, (Log{"inactive txDelay"}));
}

// A notifiee repointed by an earlier slot hears only its new notifier, and a destroyed one nothing.
TEST_F(Notifier, NotifieeRepointedOrDestroyedByAnEarlierSlotIsSkipped) {
  auto const other = Zet::makePtr<Lldp::Config>();
  auto const a = watcher<ConfigWatcher>(config_, "a");
  auto const b = watcher<ConfigWatcher>(config_, "b");
  auto c = watcher<ConfigWatcher>(config_, "c");
  auto const d = watcher<ConfigWatcher>(config_, "d");
  a->duringTxDelay = [&] {
    b->notifierIs(other);
    c = nullptr;
  };
  config_->txDelayIs(9);
  a->duringTxDelay = [] {};
  config_->txDelayIs(10);
  other->messageTxIntervalIs(9);
  EXPECT_EQ(log_, (Log{"a txDelay", "c gone", "d txDelay", "a txDelay", "d txDelay", "b messageTxInterval"}));
  EXPECT_TRUE(b->isRegisteredNotifiee());
}

TEST_F(Notifier, NotifierReleasedByASlotLivesUntilDeliveryEnds) {
  struct CountedConfig : Lldp::Config {
    explicit CountedConfig(Log& log) : log_(log) {}
    ~CountedConfig() override { log_.push_back("config gone"); }
    Log& log_;
  };
  auto config = Zet::makePtr<CountedConfig>(log_);
  auto* const writer = config.get();
  auto const a = watcher<ConfigWatcher>(config, "a");
  auto const b = watcher<ConfigWatcher>(config, "b");
  config = nullptr;  // the watchers now hold the only references
  a->duringTxDelay = [&] {
    a->notifierIs(nullptr);
    b->notifierIs(nullptr);
    log_.push_back("a detached");
  };
  writer->txDelayIs(9);
  EXPECT_EQ(log_, (Log{"a txDelay", "a detached", "config gone"}));
}

}  // namespace
