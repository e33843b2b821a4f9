// The LLDP agent's entities: keys of their collections, lookups, order and where they are published.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Bridging/VlanId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/BoundedString.h"
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

TEST(LocalSystem, ManagementAddressPrioIteratesInAscendingPriorityAndAbsentKeysAreDefaults) {
  auto const system = Zet::makePtr<Lldp::LocalSystem>();
  for (std::uint8_t n : {3, 1, 2}) {
    system->managementAddressPrioIs(priority(n * 10), addressKey(n));
  }
  std::vector<std::uint32_t> priorities;
  for (auto const& [prio, key] : system->managementAddressPrio()) {
    EXPECT_EQ(key, addressKey(static_cast<std::uint8_t>(prio.priority / 10)));
    priorities.push_back(prio.priority);
  }
  EXPECT_EQ(priorities, (std::vector<std::uint32_t>{10, 20, 30}));
  EXPECT_EQ(system->managementAddressPrioDel(priority(20)), addressKey(2));
  EXPECT_EQ(system->managementAddressPrioCount(), 2u);
  // Absent keys read as the default record and the default key.
  EXPECT_EQ(system->managementAddressPrio(priority(20)), Lldp::ManagementAddress::Key());
  EXPECT_EQ(system->managementAddress(addressKey(3)), Lldp::ManagementAddress());
}

TEST(LocalSystem, PortIsPublishedUnderTheSystemWhileBothAreThere) {
  auto system = Zet::makePtr<Lldp::LocalSystem>();
  auto const ethernet1 = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId("Ethernet1"));
  auto const ethernet2 = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId("Ethernet2"));
  system->localPortIs(ethernet1);
  system->localPortIs(ethernet2);
  EXPECT_EQ(system->localPort(Ondo::IntfId("Ethernet1")), ethernet1);
  EXPECT_EQ(ethernet1->fullName(), Zet::String("localSystem/Ethernet1"));
  EXPECT_EQ(system->localPortDel(Ondo::IntfId("Ethernet1")), ethernet1);
  EXPECT_FALSE(system->localPortHas(Ondo::IntfId("Ethernet1")));
  EXPECT_EQ(ethernet1->parent(), nullptr);
  // A port that outlives its system forgets it.
  system = nullptr;
  EXPECT_EQ(ethernet2->parent(), nullptr);
  EXPECT_EQ(ethernet2->fullName(), Zet::String("Ethernet2"));
}

TEST(RemoteSystem, RecordsAreKeyedByTheirIndexFieldAndAbsentOnesAreTheDefaults) {
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

  EXPECT_EQ(remote->vlanNameDel(Bridging::VlanId(101)).vlanId, Bridging::VlanId(1));
  EXPECT_EQ(remote->unknownTlv(21).type, 9u);
  EXPECT_FALSE(remote->unknownOrgDefTlvHas(Lldp::UnknownOrgDefTlv::Key(Lldp::Oui(0x0080c2), 9, 1)));
}

TEST(PortStatus, NeighboursAreKeyedByIndexAndByIdentity) {
  auto const port = Zet::makePtr<Lldp::PortStatus>(Ondo::IntfId("Ethernet7"));
  auto const first = neighbour(3, "a");
  auto const second = neighbour(4, "b");
  port->remoteSystemIs(first);
  port->remoteSystemIs(second);
  port->remoteSystemByMsapIs(first);
  EXPECT_EQ(port->remoteSystem(4), second);
  EXPECT_FALSE(port->remoteSystem(5));
  EXPECT_EQ(port->remoteSystemByMsap(first->msap()), first);
  EXPECT_EQ(first->fullName(), Zet::String("Ethernet7/3"));
  // The identity view is no owner: dropping it keeps the neighbour published.
  EXPECT_EQ(port->remoteSystemByMsapDel(first->msap()), first);
  EXPECT_EQ(first->parent(), port.get());
  EXPECT_EQ(port->remoteSystem(3), first);
}

TEST(AllStatus, NotifieeHearsTheChangeTimeAndThePorts) {
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

}  // namespace
