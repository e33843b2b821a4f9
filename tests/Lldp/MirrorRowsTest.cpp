// The mirror's row entities: what a row reads through its source, what it
// reads without one, and the port list of a local management address.

#include "MirrorRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace {

using Interface::EthPortId;
using testing::Each;

std::int64_t number(auto enumeration) { return static_cast<std::int64_t>(enumeration); }

Lldp::ManagementAddress::Key ipv4(char const* bytes) { return {1, Lldp::ManAddress(Zet::String(bytes, 4))}; }

TEST(RowEntities, WithoutSourceEveryAttributeReadsZeroFalseOrEmpty) {
  Lldp::Snmp::PortConfig const config(EthPortId(12), nullptr);
  EXPECT_EQ(config.portNum(), 12);
  EXPECT_FALSE(config.notificationEnable());
  EXPECT_FALSE(config.portVlanTxEnable());
  std::int64_t const configNumbers[] = {number(config.adminStatus()), config.enabledTlvs(), config.dot3EnabledTlvs()};
  EXPECT_THAT(configNumbers, Each(0));

  Lldp::Snmp::PortStatus const status(EthPortId(3), nullptr);
  EXPECT_EQ(status.portNum(), 3);
  std::uint32_t const counters[] = {status.txFramesTotal(),        status.rxFramesDiscardedTotal(),
                                    status.rxFramesErrors(),       status.rxFramesTotal(),
                                    status.rxTLVsDiscardedTotal(), status.rxTLVsUnrecognizedTotal(),
                                    status.rxAgeoutsTotal()};
  EXPECT_THAT(counters, Each(0u));

  Lldp::Snmp::LocalPort const local(EthPortId(4094), nullptr);
  EXPECT_EQ(local.portNum(), 4094);
  EXPECT_TRUE(local.portVlanId().isNone());
  EXPECT_EQ(local.portId().value().size() + local.portDesc().value().size(), 0u);
  std::int64_t const localNumbers[] = {number(local.portIdSubtype()), local.linkAggStatus().value(),
                                       local.linkAggPortId(), local.maxFrameSize()};
  EXPECT_THAT(localNumbers, Each(0));

  Lldp::Snmp::RemoteSystem const remote({EthPortId(9), -3}, nullptr);
  EXPECT_EQ(remote.localPortNum(), 9);
  EXPECT_EQ(remote.index(), -3);
  EXPECT_EQ(remote.timeMark(), 0.0);
  EXPECT_TRUE(remote.portVlanId().isNone());
  Zet::String const texts[] = {remote.chassisId().value(), remote.portId().value(), remote.portDesc().value(),
                               remote.sysName().value(), remote.sysDesc().value()};
  EXPECT_THAT(texts, Each(Zet::String()));
  bool const flags[] = {remote.portVlanIdTlvReceived(),      remote.macPhyConfigStatusTlvReceived(),
                        remote.powerViaMdiTlvReceived(),     remote.linkAggregationTlvReceived(),
                        remote.maximumFrameSizeTlvReceived(), remote.autoNegSupported(),
                        remote.autoNegEnabled(),             remote.powerMdiSupported(),
                        remote.powerMdiEnabled(),            remote.powerPairControllable()};
  EXPECT_THAT(flags, Each(false));
  std::int64_t const remoteNumbers[] = {
      number(remote.chassisIdSubtype()), number(remote.portIdSubtype()), remote.sysCapSupported().value(),
      remote.sysCapEnabled().value(),    remote.autoNegAdvertisedCapAsU16(), remote.operMauType(),
      number(remote.powerPortClass()),   remote.powerPairs(),               remote.powerClass(),
      remote.linkAggStatus().value(),    remote.linkAggPortId(),            remote.maxFrameSize()};
  EXPECT_THAT(remoteNumbers, Each(0));
}

// notificationEnable is a constant of a row with a source, not a copy of any setting.
TEST(RowEntities, PortConfigFollowsItsSourceAndNotificationEnableOnlyNeedsOne) {
  auto const source = Zet::makePtr<Lldp::PortConfig>();
  Lldp::Snmp::PortConfig const row(EthPortId(1), source);
  EXPECT_TRUE(row.notificationEnable());
  EXPECT_EQ(row.adminStatus(), Lldp::AdminStatus::txAndRx);

  source->adminStatusIs(Lldp::AdminStatus::disabled);
  source->manAddrTxEnableIs(false);
  EXPECT_TRUE(row.notificationEnable());
  EXPECT_EQ(row.adminStatus(), Lldp::AdminStatus::disabled);
}

// Where a column is more than a plain copy: the MSAP, the time, the
// capability bit order, and flags kept apart from their records.
TEST(RowEntities, RemoteSystemReadsTheNeighbourAsItIsNow) {
  auto const source = Zet::makePtr<Lldp::RemoteSystem>(
      4, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::macAddress,
                                  Lldp::ChassisId(Zet::String("\x02\x00\x00\x00\x00\x07", 6)),
                                  Lldp::PortIdSubtype::interfaceName, Lldp::PortId(Zet::String("Ethernet7"))));
  Lldp::Snmp::RemoteSystem const row({EthPortId(7), 4}, source);
  EXPECT_EQ(row.chassisIdSubtype(), Lldp::ChassisIdSubtype::macAddress);
  EXPECT_EQ(row.chassisId().value(), Zet::String("\x02\x00\x00\x00\x00\x07", 6));
  EXPECT_EQ(row.portId().value(), Zet::String("Ethernet7"));

  source->lastChangeTimeIs(1234.5);
  source->macPhyConfigStatusTlvReceivedIs(false);
  Lldp::MacPhyConfigStatusInfo macPhy;
  macPhy.autoNegSupported = true;
  macPhy.autoNegAdvertisedCap = 0x0001;  // bOther, the first bit of the first octet
  source->macPhyConfigStatusInfoIs(macPhy);
  source->powerViaMdiTlvReceivedIs(true);
  Lldp::PowerViaMdiInfo power;
  power.powerMdiEnabled = true;
  source->powerViaMdiInfoIs(power);
  source->maximumFrameSizeInfoIs(1522);

  EXPECT_EQ(row.timeMark(), 1234.5);
  EXPECT_FALSE(row.macPhyConfigStatusTlvReceived());
  EXPECT_TRUE(row.autoNegSupported());
  EXPECT_FALSE(row.autoNegEnabled());
  EXPECT_EQ(row.autoNegAdvertisedCapAsU16(), 0x8000);
  EXPECT_TRUE(row.powerViaMdiTlvReceived());
  EXPECT_FALSE(row.powerMdiSupported());
  EXPECT_TRUE(row.powerMdiEnabled());
  EXPECT_FALSE(row.maximumFrameSizeTlvReceived());
  EXPECT_EQ(row.maxFrameSize(), 1522);
}

// An absent port reads as port 0, the same as removing port 0 itself.
TEST(PortList, PresentPortIsKeptOnceAndAnAbsentOneReadsAndRemovesAsPortZero) {
  Lldp::Snmp::PortList list(Zet::Name("portsTxEnable"));
  list.portIdIs(EthPortId(0));
  list.portIdIs(EthPortId(8));
  list.portIdIs(EthPortId(8));
  EXPECT_EQ(list.portId().count(), 2u);
  EXPECT_EQ(list.portId(8), EthPortId(8));

  EXPECT_EQ(list.portId(9), EthPortId(0));
  EXPECT_EQ(list.portIdDel(9), EthPortId(0));
  EXPECT_EQ(list.portId().count(), 2u);
  EXPECT_EQ(list.portIdDel(8), EthPortId(8));
  EXPECT_EQ(list.portIdDel(0), EthPortId(0));
  EXPECT_EQ(list.portId().count(), 0u);
  EXPECT_EQ(list.portIdDel(8), EthPortId(0));
}

TEST(PortList, DelAllEmptiesASetThatGrewPastItsBuckets) {
  Lldp::Snmp::PortList list(Zet::Name("portsTxEnable"));
  for (std::uint16_t port = 1; port <= 200; port += 3) {
    list.portIdIs(EthPortId(port));
  }
  ASSERT_EQ(list.portId().count(), 67u);
  list.portIdDelAll();
  EXPECT_EQ(list.portId().count(), 0u);
  EXPECT_TRUE(list.portId().iterator().atEnd());
}

TEST(LocalManagementAddressRow, IndexComesFromTheKeyAndTheRestFromTheStoredRecord) {
  Lldp::Snmp::LocalManagementAddress row(ipv4("\x0a\x00\x00\x01"));
  EXPECT_EQ(row.rawValue(), Lldp::ManagementAddress());
  EXPECT_NE(row.manAddrLen(), Lldp::ManagementAddress(row.key()).manAddrLen());

  Lldp::ManagementAddress record(Lldp::ManagementAddress::Key(2, Lldp::ManAddress(Zet::String("0123456789abcdef"))));
  record.ifId = 12;
  row.rawValueIs(record);
  EXPECT_EQ(row.manAddrSubtype(), 1);
  EXPECT_EQ(row.manAddr().value(), Zet::String("\x0a\x00\x00\x01", 4));
  EXPECT_EQ(row.manAddrLen(), record.manAddrLen());
  EXPECT_EQ(row.ifId(), 12);
}

TEST(LocalManagementAddressRow, PortsTxEnableKeepsTheListOfThePresentNameAndDetachesOneOfAnother) {
  auto const row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  auto const first = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  ASSERT_TRUE(first);
  EXPECT_EQ(first->parent(), row.get());
  first->portIdIs(EthPortId(5));
  EXPECT_EQ(row->portsTxEnableIs(Zet::Name("portsTxEnable")), first);
  EXPECT_EQ(first->portId(5), EthPortId(5));

  auto const fresh = row->portsTxEnableIs(Zet::Name("other"));
  ASSERT_TRUE(fresh);
  EXPECT_NE(fresh, first);
  EXPECT_EQ(fresh->portId().count(), 0u);
  EXPECT_EQ(fresh->parent(), row.get());
  EXPECT_EQ(first->parent(), nullptr);
  EXPECT_EQ(first->portId(5), EthPortId(5));
  EXPECT_EQ(row->portsTxEnable(), fresh);
}

// A list that outlives its row, or is taken from it, must not point at it.
TEST(LocalManagementAddressRow, ListTakenOrOutlivingItsRowIsDetached) {
  auto row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  EXPECT_FALSE(row->portsTxEnableDel());
  auto const taken = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  EXPECT_EQ(row->portsTxEnableDel(), taken);
  EXPECT_EQ(taken->parent(), nullptr);
  EXPECT_FALSE(row->portsTxEnable());

  auto const kept = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  row = nullptr;
  EXPECT_EQ(kept->parent(), nullptr);
  EXPECT_EQ(kept->references(), 1u);
}

}  // namespace
