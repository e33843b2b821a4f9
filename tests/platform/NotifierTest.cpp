// Delivery of the LLDP agent's entity notifications to their notifiees.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "LldpAgent/Config.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManagementAddress.h"
#include "Ondo/IntfId.h"
#include "Zet/Ptr.h"

namespace {

using Log = std::vector<std::string>;

// Attaches as a reactor does: notifier, then registration, then delivery on.
template <class Watcher, class Notifier>
void attach(Watcher& watcher, Zet::Ptr<Notifier> const& notifier) {
  watcher.notifierIs(notifier);
  watcher.isRegisteredNotifieeIs(true);
  watcher.hasNotificationActiveIs(true);
}

class ConfigWatcher : public Lldp::Config::NotifieeConst {
 public:
  ConfigWatcher(Log& log, std::string tag) : log_(log), tag_(std::move(tag)) {}
  ~ConfigWatcher() override { log_.push_back(tag_ + " gone"); }

  void onMessageTxInterval() override { log_.push_back(tag_ + " messageTxInterval"); }
  void onTxDelay() override {
    log_.push_back(tag_ + " txDelay");
    if (duringTxDelay) {
      duringTxDelay();
    }
  }

  std::function<void()> duringTxDelay;

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
    log_.push_back(tag_ + " localPort " + id.stringValue().stdString() + " " +
                   (port ? std::to_string(port->maxFrameSize()) : "absent"));
  }
  void onManagementAddress(Lldp::ManagementAddress::Key const& key) override {
    log_.push_back(
        tag_ + " managementAddress " + std::to_string(key.manAddrSubtype) + " " +
        (system().managementAddressHas(key) ? std::to_string(system().managementAddress(key).ifId) : "absent"));
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

Lldp::ManagementAddress address(std::uint8_t lastByte, std::int32_t ifId) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  Lldp::ManagementAddress a(Lldp::ManagementAddress::Key(1, Lldp::ManAddress(Zet::String(bytes))));
  a.ifId = ifId;
  return a;
}

Zet::Ptr<Lldp::LocalPort> port(char const* name, std::uint16_t maxFrameSize) {
  auto p = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId(name));
  p->maxFrameSizeIs(maxFrameSize);
  return p;
}

TEST(ScalarNotification, ChangedValueDeliversItsSlotOnce) {
  Log log;
  auto const config = Zet::makePtr<Lldp::Config>();
  auto const watcher = Zet::makePtr<ConfigWatcher>(log, "a");
  attach(*watcher, config);

  config->messageTxIntervalIs(10);

  EXPECT_EQ(config->messageTxInterval(), 10);
  EXPECT_EQ(log, (Log{"a messageTxInterval"}));
}

TEST(ScalarNotification, EqualValueDeliversNothing) {
  Log log;
  auto const config = Zet::makePtr<Lldp::Config>();
  auto const watcher = Zet::makePtr<ConfigWatcher>(log, "a");
  attach(*watcher, config);

  config->messageTxIntervalIs(config->messageTxInterval());
  config->txDelayIs(7);
  config->txDelayIs(7);

  EXPECT_EQ(log, (Log{"a txDelay"}));
}

TEST(ScalarNotification, ChassisIdentifierIsOneSlotForBothHalves) {
  Log log;
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const watcher = Zet::makePtr<LocalSystemWatcher>(log, "a");
  attach(*watcher, system);

  system->chassisIdentifierIs(4, "switch-1");
  system->chassisIdentifierIs(4, "switch-1");
  system->chassisIdentifierIs(7, "switch-1");

  EXPECT_EQ(system->chassisIdSubtype(), 7);
  EXPECT_EQ(log, (Log{"a chassisIdentifier", "a chassisIdentifier"}));
}

TEST(CollectionNotification, EntryChangeDeliversKeyedThenImmediateThenKeylessToEveryNotifiee) {
  Log log;
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const first = Zet::makePtr<LocalSystemWatcher>(log, "a");
  auto const second = Zet::makePtr<LocalSystemWatcher>(log, "b");
  attach(*first, system);
  attach(*second, system);

  system->managementAddressPrioIs(Lldp::ManAddrPriority(3, 1, 0, Ondo::IntfId("Ethernet1")), address(1, 0).key());

  EXPECT_EQ(log,
            (Log{"a prio 3", "b prio 3", "a prio immediate", "b prio immediate", "a prio keyless", "b prio keyless"}));
}

TEST(CollectionNotification, ReplaceThenRemoveAreSeparateNotifications) {
  Log log;
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const watcher = Zet::makePtr<LocalSystemWatcher>(log, "a");
  attach(*watcher, system);

  system->managementAddressIs(address(1, 5));
  system->managementAddressIs(address(1, 6));
  auto const removed = system->managementAddressDel(address(1, 0).key());

  EXPECT_EQ(removed.ifId, 6);
  EXPECT_EQ(log, (Log{"a managementAddress 1 5", "a managementAddress 1 6", "a managementAddress 1 absent"}));
}

TEST(CollectionNotification, EntityReplacedUnderItsKeyThenRemovedIsTwoNotifications) {
  Log log;
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const watcher = Zet::makePtr<LocalSystemWatcher>(log, "a");
  attach(*watcher, system);

  system->localPortIs(port("Ethernet1", 1518));
  system->localPortIs(port("Ethernet1", 9216));
  auto const removed = system->localPortDel(Ondo::IntfId("Ethernet1"));

  ASSERT_TRUE(removed);
  EXPECT_EQ(removed->maxFrameSize(), 9216);
  EXPECT_EQ(log, (Log{"a localPort Ethernet1 1518", "a localPort Ethernet1 9216", "a localPort Ethernet1 absent"}));
}

TEST(CollectionNotification, StoringWhatIsThereOrRemovingWhatIsNotDeliversNothing) {
  Log log;
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const ethernet1 = port("Ethernet1", 1518);
  system->localPortIs(ethernet1);
  system->managementAddressIs(address(1, 5));
  auto const watcher = Zet::makePtr<LocalSystemWatcher>(log, "a");
  attach(*watcher, system);

  system->localPortIs(ethernet1);
  system->managementAddressIs(address(1, 5));
  EXPECT_FALSE(system->localPortDel(Ondo::IntfId("Ethernet2")));
  system->managementAddressDel(address(2, 0).key());
  system->managementAddressPrioDel(Lldp::ManAddrPriority());

  EXPECT_TRUE(log.empty());
}

TEST(NotifieeDelivery, InactiveOrUnregisteredNotifieeHearsNothing) {
  Log log;
  auto const config = Zet::makePtr<Lldp::Config>();
  auto const inactive = Zet::makePtr<ConfigWatcher>(log, "inactive");
  attach(*inactive, config);
  inactive->hasNotificationActiveIs(false);
  auto const unregistered = Zet::makePtr<ConfigWatcher>(log, "unregistered");
  unregistered->notifierIs(config);
  unregistered->hasNotificationActiveIs(true);

  config->txDelayIs(9);
  inactive->hasNotificationActiveIs(true);
  config->txDelayIs(10);

  EXPECT_EQ(log, (Log{"inactive txDelay"}));
}

TEST(NotifieeDelivery, NotifieeDetachedByAnEarlierSlotIsSkipped) {
  Log log;
  auto const config = Zet::makePtr<Lldp::Config>();
  auto const first = Zet::makePtr<ConfigWatcher>(log, "a");
  auto const second = Zet::makePtr<ConfigWatcher>(log, "b");
  auto const third = Zet::makePtr<ConfigWatcher>(log, "c");
  attach(*first, config);
  attach(*second, config);
  attach(*third, config);
  first->duringTxDelay = [&] { second->notifierIs(nullptr); };

  config->txDelayIs(9);

  EXPECT_EQ(log, (Log{"a txDelay", "c txDelay"}));
  EXPECT_EQ(second->notifier(), nullptr);
}

TEST(NotifieeDelivery, NotifieeDestroyedByAnEarlierSlotIsSkipped) {
  Log log;
  auto const config = Zet::makePtr<Lldp::Config>();
  auto const first = Zet::makePtr<ConfigWatcher>(log, "a");
  auto second = Zet::makePtr<ConfigWatcher>(log, "b");
  auto const third = Zet::makePtr<ConfigWatcher>(log, "c");
  attach(*first, config);
  attach(*second, config);
  attach(*third, config);
  first->duringTxDelay = [&] { second = nullptr; };

  config->txDelayIs(9);

  EXPECT_EQ(log, (Log{"a txDelay", "b gone", "c txDelay"}));
}

TEST(NotifieeDelivery, RepointedNotifieeMovesToTheNewNotifier) {
  Log log;
  auto const before = Zet::makePtr<Lldp::Config>();
  auto const after = Zet::makePtr<Lldp::Config>();
  auto const watcher = Zet::makePtr<ConfigWatcher>(log, "a");
  attach(*watcher, before);

  watcher->notifierIs(after);
  before->txDelayIs(9);
  after->messageTxIntervalIs(9);

  EXPECT_EQ(log, (Log{"a messageTxInterval"}));
  EXPECT_TRUE(watcher->isRegisteredNotifiee());
}

TEST(NotifieeDelivery, NotifierReleasedByASlotLivesUntilDeliveryEnds) {
  class CountedConfig : public Lldp::Config {
   public:
    explicit CountedConfig(Log& log) : log_(log) {}
    ~CountedConfig() override { log_.push_back("config gone"); }

   private:
    Log& log_;
  };
  Log log;
  auto config = Zet::makePtr<CountedConfig>(log);
  auto* const writer = config.get();
  auto const first = Zet::makePtr<ConfigWatcher>(log, "a");
  auto const second = Zet::makePtr<ConfigWatcher>(log, "b");
  attach(*first, config);
  attach(*second, config);
  config = nullptr;
  // The watchers now hold the only references.
  first->duringTxDelay = [&] {
    first->notifierIs(nullptr);
    second->notifierIs(nullptr);
    log.push_back("a detached");
  };

  writer->txDelayIs(9);

  EXPECT_EQ(log, (Log{"a txDelay", "a detached", "config gone"}));
}

}  // namespace
