// The LLDP agent's entities: initial values, keys of their collections, lookups and order.

#include <gtest/gtest.h>

#include <cstdint>
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
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "Ondo/IntfId.h"
#include "Zet/Ptr.h"

namespace {

using Log = std::vector<std::string>;

Lldp::ManagementAddress::Key addressKey(std::uint8_t lastByte) {
  std::string const bytes{10, 0, 0, static_cast<char>(lastByte)};
  return Lldp::ManagementAddress::Key(1, Lldp::ManAddress(Zet::String(bytes)));
}

Lldp::ManAddrPriority priority(std::uint32_t value) {
  return Lldp::ManAddrPriority(value, 1, 0, Ondo::IntfId("Ethernet1"));
}

Zet::Ptr<Lldp::RemoteSystem> neighbour(std::int32_t index, char const* portId) {
  return Zet::makePtr<Lldp::RemoteSystem>(
      index, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId("peer"),
                                      Lldp::PortIdSubtype::local, Lldp::PortId(portId)));
}

class StatusWatcher : public Lldp::AllStatus::NotifieeConst {
 public:
  explicit StatusWatcher(Log& log) : log_(log) {}
  void onRemTablesLastChangeTime() override { log_.push_back("remTablesLastChangeTime"); }
  void onPortStatus(Ondo::IntfId const& id) override { log_.push_back("portStatus " + id.stringValue().stdString()); }

 private:
  Log& log_;
};

TEST(Config, StartsAtTheMibDefaults) {
  auto const config = Zet::makePtr<Lldp::Config>();
  EXPECT_EQ(config->messageTxInterval(), 30);
  EXPECT_EQ(config->messageTxHold(), 4);
  EXPECT_EQ(config->reinitDelay(), 2);
  EXPECT_EQ(config->txDelay(), 2);
}

TEST(Config, HoldMultiplierFollowsMessageTxHoldAndNotificationIntervalIsFive) {
  auto const config = Zet::makePtr<Lldp::Config>();
  config->messageTxHoldIs(7);
  EXPECT_EQ(config->messageTxHoldMultiplier(), 7);
  EXPECT_EQ(Lldp::Config::notificationInterval(), 5);
  EXPECT_EQ(config->notificationInterval(), 5);
}

TEST(LocalSystem, AbsentKeysGiveNullOrTheDefaultRecord) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  EXPECT_FALSE(system->localPort(Ondo::IntfId("Ethernet1")));
  EXPECT_FALSE(system->localPortHas(Ondo::IntfId("Ethernet1")));
  Lldp::ManagementAddress const absent = system->managementAddress(addressKey(1));
  EXPECT_EQ(absent.ifSubtype, Lldp::ManAddrIfSubtype::unknown);
  EXPECT_EQ(absent.manAddrSubtype, 0);
  EXPECT_EQ(system->managementAddressPrio(priority(1)), Lldp::ManagementAddress::Key());
  EXPECT_EQ(system->managementAddressCount(), 0u);
}

TEST(LocalSystem, ManagementAddressIsKeyedByItsAddress) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  Lldp::ManagementAddress address(addressKey(1));
  address.ifId = 12;
  system->managementAddressIs(address);
  system->managementAddressIs(Lldp::ManagementAddress(addressKey(2)));

  EXPECT_EQ(system->managementAddressCount(), 2u);
  EXPECT_TRUE(system->managementAddressHas(addressKey(1)));
  EXPECT_EQ(system->managementAddress(addressKey(1)).ifId, 12);
}

TEST(LocalSystem, ManagementAddressPrioIteratesInAscendingPriority) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  system->managementAddressPrioIs(priority(30), addressKey(3));
  system->managementAddressPrioIs(priority(10), addressKey(1));
  system->managementAddressPrioIs(priority(20), addressKey(2));

  std::vector<std::uint32_t> priorities;
  std::vector<Lldp::ManagementAddress::Key> keys;
  for (auto const& [prio, key] : system->managementAddressPrio()) {
    priorities.push_back(prio.priority);
    keys.push_back(key);
  }
  EXPECT_EQ(priorities, (std::vector<std::uint32_t>{10, 20, 30}));
  EXPECT_EQ(keys, (std::vector<Lldp::ManagementAddress::Key>{addressKey(1), addressKey(2), addressKey(3)}));
  EXPECT_EQ(system->managementAddressPrioDel(priority(20)), addressKey(2));
  EXPECT_EQ(system->managementAddressPrioCount(), 2u);
}

TEST(LocalSystem, PortIsPublishedUnderTheSystemWhileItIsThere) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  auto const port = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId("Ethernet1"));
  system->localPortIs(port);
  EXPECT_EQ(system->localPort(Ondo::IntfId("Ethernet1")), port);
  EXPECT_EQ(port->fullName(), Zet::String("localSystem/Ethernet1"));

  EXPECT_EQ(system->localPortDel(Ondo::IntfId("Ethernet1")), port);
  EXPECT_EQ(port->parent(), nullptr);
}

TEST(LocalSystem, PortOutlivingTheSystemForgetsIt) {
  auto system = Zet::makePtr<Lldp::LocalSystem>();
  auto const port = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId("Ethernet1"));
  system->localPortIs(port);
  system = nullptr;
  EXPECT_EQ(port->parent(), nullptr);
  EXPECT_EQ(port->fullName(), Zet::String("Ethernet1"));
}

TEST(RemoteSystem, RecordsAreKeyedByTheirIndexField) {
  auto const remote = neighbour(1, "Ethernet7");
  remote->unknownTlvIs(Lldp::UnknownTlv(20, Lldp::BoundedString511("x")));
  remote->vlanNameIs(Lldp::VlanName(Bridging::VlanId(100), Lldp::BoundedString32("users")));
  remote->portAndProtocolVlanIs(Lldp::PortAndProtocolVlan(Bridging::VlanIdOrNone(5), true, false));
  remote->protocolIdentityInfoIs(Lldp::ProtocolIdentityInfo(3, Lldp::BoundedString255("stp")));
  Lldp::UnknownOrgDefTlv::Key const orgKey(Lldp::Oui(0x0080c2), 9, 2);
  remote->unknownOrgDefTlvIs(Lldp::UnknownOrgDefTlv(orgKey, Lldp::BoundedString507("info")));

  EXPECT_EQ(remote->unknownTlv(20).info, Lldp::BoundedString511("x"));
  EXPECT_EQ(remote->vlanName(Bridging::VlanId(100)).vlanName, Lldp::BoundedString32("users"));
  EXPECT_TRUE(remote->portAndProtocolVlan(Bridging::VlanIdOrNone(5)).supported);
  EXPECT_EQ(remote->protocolIdentityInfo(3).protocolId, Lldp::BoundedString255("stp"));
  EXPECT_EQ(remote->unknownOrgDefTlv(orgKey).orgDefInfo, Lldp::BoundedString507("info"));
  EXPECT_FALSE(remote->unknownOrgDefTlvHas(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(0x0080c2), 9, 1)));
}

TEST(RemoteSystem, AbsentRecordsAreTheDefaults) {
  auto const remote = neighbour(1, "Ethernet7");
  EXPECT_EQ(remote->vlanName(Bridging::VlanId(100)).vlanId, Bridging::VlanId(1));
  EXPECT_EQ(remote->unknownTlv(20).type, 9u);
  EXPECT_EQ(remote->protocolIdentityInfo(3).index, 1);
  EXPECT_EQ(remote->unknownOrgDefTlv(Lldp::UnknownOrgDefTlv::Key()).subtype, 1u);
  EXPECT_EQ(remote->vlanNameDel(Bridging::VlanId(100)), Lldp::VlanName());
}

TEST(PortStatus, NeighboursAreKeyedByIndexAndByIdentity) {
  auto const port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  auto const first = neighbour(3, "a");
  auto const second = neighbour(4, "b");
  port->remoteSystemIs(first);
  port->remoteSystemIs(second);
  port->remoteSystemByMsapIs(first);

  EXPECT_EQ(port->remoteSystem(3), first);
  EXPECT_EQ(port->remoteSystem(4), second);
  EXPECT_EQ(port->remoteSystemByMsap(first->msap()), first);
  EXPECT_FALSE(port->remoteSystem(5));
  EXPECT_EQ(first->fullName(), Zet::String("Ethernet7/3"));
}

TEST(PortStatus, DroppingTheIdentityViewKeepsTheNeighbourPublished) {
  auto const port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  auto const remote = neighbour(3, "a");
  port->remoteSystemIs(remote);
  port->remoteSystemByMsapIs(remote);

  EXPECT_EQ(port->remoteSystemByMsapDel(remote->msap()), remote);
  EXPECT_EQ(remote->parent(), port.get());
}

TEST(AllStatus, NotifieeHearsTheCountersAndThePorts) {
  Log log;
  auto const status = Zet::makePtr<Lldp::AllStatus>();
  auto const watcher = Zet::makePtr<StatusWatcher>(log);
  watcher->notifierIs(status);
  watcher->isRegisteredNotifieeIs(true);
  watcher->hasNotificationActiveIs(true);

  status->remTablesLastChangeTimeIs(12.5);
  status->remTablesInsertsIs(1);
  status->portStatusIs(Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7")));

  EXPECT_EQ(log, (Log{"remTablesLastChangeTime", "portStatus Ethernet7"}));
  EXPECT_EQ(status->portStatus(Ondo::IntfId("Ethernet7"))->fullName(), Zet::String("all/Ethernet7"));
}

TEST(PortConfig, StartsSendingAndReceivingWithNoOptionalTlv) {
  auto const config = Zet::makePtr<Lldp::PortConfig>();
  EXPECT_EQ(config->adminStatus(), Lldp::AdminStatus::txAndRx);
  EXPECT_EQ(config->enabledTlvs(), 0u);
  EXPECT_EQ(config->dot3EnabledTlvs(), 0u);
  EXPECT_FALSE(config->manAddrTxEnable());
  EXPECT_FALSE(config->portVlanTxEnable());
}

}  // namespace
