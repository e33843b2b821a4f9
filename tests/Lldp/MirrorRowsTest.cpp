// The mirror's row entities: what a row reads through its source, what it
// reads without one, and the port list of a local management address.

#include "MirrorRows.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "Ondo/IntfId.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace {

using Interface::EthPortId;

std::int32_t number(auto enumeration) { return static_cast<std::int32_t>(enumeration); }

Zet::Ptr<Lldp::RemoteSystem> neighbour() {
  return Zet::makePtr<Lldp::RemoteSystem>(
      4, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::macAddress,
                                  Lldp::ChassisId(Zet::String("\x02\x00\x00\x00\x00\x07", 6)),
                                  Lldp::PortIdSubtype::interfaceName, Lldp::PortId(Zet::String("Ethernet7"))));
}

Lldp::ManagementAddress::Key ipv4(char const* bytes) { return {1, Lldp::ManAddress(Zet::String(bytes, 4))}; }

TEST(RowEntities, PortConfigWithoutSourceReadsDefaultsAndNoNotification) {
  Lldp::Snmp::PortConfig const row(EthPortId(12), nullptr);
  EXPECT_EQ(row.portNum(), 12);
  EXPECT_FALSE(row.notificationEnable());
  EXPECT_EQ(number(row.adminStatus()), 0);
  EXPECT_EQ(row.enabledTlvs(), 0u);
  EXPECT_FALSE(row.portVlanTxEnable());
  EXPECT_EQ(row.dot3EnabledTlvs(), 0u);
}

TEST(RowEntities, PortStatusAndLocalPortWithoutSourceReadZeroAndEmpty) {
  Lldp::Snmp::PortStatus const status(EthPortId(3), nullptr);
  EXPECT_EQ(status.portNum(), 3);
  EXPECT_EQ(status.txFramesTotal(), 0u);
  EXPECT_EQ(status.rxFramesDiscardedTotal(), 0u);
  EXPECT_EQ(status.rxFramesErrors(), 0u);
  EXPECT_EQ(status.rxFramesTotal(), 0u);
  EXPECT_EQ(status.rxTLVsDiscardedTotal(), 0u);
  EXPECT_EQ(status.rxTLVsUnrecognizedTotal(), 0u);
  EXPECT_EQ(status.rxAgeoutsTotal(), 0u);

  Lldp::Snmp::LocalPort const local(EthPortId(4094), nullptr);
  EXPECT_EQ(local.portNum(), 4094);
  EXPECT_EQ(number(local.portIdSubtype()), 0);
  EXPECT_EQ(local.portId().value().size(), 0u);
  EXPECT_EQ(local.portDesc().value().size(), 0u);
  EXPECT_TRUE(local.portVlanId().isNone());
  EXPECT_EQ(local.linkAggStatus().value(), 0u);
  EXPECT_EQ(local.linkAggPortId(), 0);
  EXPECT_EQ(local.maxFrameSize(), 0);
}

TEST(RowEntities, RemoteSystemWithoutSourceReadsZeroFalseAndEmpty) {
  Lldp::Snmp::RemoteSystem const row({EthPortId(9), -3}, nullptr);
  EXPECT_EQ(row.timeMark(), 0.0);
  EXPECT_EQ(row.localPortNum(), 9);
  EXPECT_EQ(row.index(), -3);
  EXPECT_EQ(number(row.chassisIdSubtype()), 0);
  EXPECT_EQ(row.chassisId().value().size(), 0u);
  EXPECT_EQ(number(row.portIdSubtype()), 0);
  EXPECT_EQ(row.portId().value().size(), 0u);
  EXPECT_EQ(row.portDesc().value().size(), 0u);
  EXPECT_EQ(row.sysName().value().size(), 0u);
  EXPECT_EQ(row.sysDesc().value().size(), 0u);
  EXPECT_EQ(row.sysCapSupported().value(), 0u);
  EXPECT_EQ(row.sysCapEnabled().value(), 0u);
  EXPECT_FALSE(row.portVlanIdTlvReceived());
  EXPECT_FALSE(row.macPhyConfigStatusTlvReceived());
  EXPECT_FALSE(row.powerViaMdiTlvReceived());
  EXPECT_FALSE(row.linkAggregationTlvReceived());
  EXPECT_FALSE(row.maximumFrameSizeTlvReceived());
  EXPECT_TRUE(row.portVlanId().isNone());
  EXPECT_FALSE(row.autoNegSupported());
  EXPECT_FALSE(row.autoNegEnabled());
  EXPECT_EQ(row.autoNegAdvertisedCapAsU16(), 0);
  EXPECT_EQ(row.operMauType(), 0u);
  EXPECT_EQ(number(row.powerPortClass()), 0);
  EXPECT_FALSE(row.powerMdiSupported());
  EXPECT_FALSE(row.powerMdiEnabled());
  EXPECT_FALSE(row.powerPairControllable());
  EXPECT_EQ(row.powerPairs(), 0u);
  EXPECT_EQ(row.powerClass(), 0u);
  EXPECT_EQ(row.linkAggStatus().value(), 0u);
  EXPECT_EQ(row.linkAggPortId(), 0);
  EXPECT_EQ(row.maxFrameSize(), 0);
}

// notificationEnable is a constant of a row with a source, not a copy of any setting.
TEST(RowEntities, PortConfigFollowsItsSourceAndNotificationEnableOnlyNeedsOne) {
  auto const source = Zet::makePtr<Lldp::PortConfig>();
  Lldp::Snmp::PortConfig const row(EthPortId(1), source);
  EXPECT_TRUE(row.notificationEnable());
  EXPECT_EQ(row.adminStatus(), Lldp::AdminStatus::txAndRx);

  source->adminStatusIs(Lldp::AdminStatus::disabled);
  source->enabledTlvsIs(0x0f);
  source->portVlanTxEnableIs(true);
  source->dot3EnabledTlvsIs(0x0a);
  source->manAddrTxEnableIs(false);
  EXPECT_TRUE(row.notificationEnable());
  EXPECT_EQ(row.adminStatus(), Lldp::AdminStatus::disabled);
  EXPECT_EQ(row.enabledTlvs(), 0x0fu);
  EXPECT_TRUE(row.portVlanTxEnable());
  EXPECT_EQ(row.dot3EnabledTlvs(), 0x0au);
}

TEST(RowEntities, PortStatusAndLocalPortFollowTheirSources) {
  Ondo::IntfId const eth(Zet::String("Ethernet5"));
  auto const counters = Zet::makePtr<Lldp::PortStatus>(eth);
  auto const announced = Zet::makePtr<Lldp::LocalPort>(eth);
  Lldp::Snmp::PortStatus const status(EthPortId(5), counters);
  Lldp::Snmp::LocalPort const local(EthPortId(5), announced);

  counters->txFramesTotalIs(11);
  counters->rxFramesDiscardedTotalIs(12);
  counters->rxFramesErrorsIs(13);
  counters->rxFramesTotalIs(14);
  counters->rxTLVsDiscardedTotalIs(15);
  counters->rxTLVsUnrecognizedTotalIs(16);
  counters->rxAgeoutsTotalIs(17);
  EXPECT_EQ(status.txFramesTotal(), 11u);
  EXPECT_EQ(status.rxFramesDiscardedTotal(), 12u);
  EXPECT_EQ(status.rxFramesErrors(), 13u);
  EXPECT_EQ(status.rxFramesTotal(), 14u);
  EXPECT_EQ(status.rxTLVsDiscardedTotal(), 15u);
  EXPECT_EQ(status.rxTLVsUnrecognizedTotal(), 16u);
  EXPECT_EQ(status.rxAgeoutsTotal(), 17u);

  announced->portIdSubtypeIs(Lldp::PortIdSubtype::interfaceName);
  announced->portIdIs(Lldp::PortId(Zet::String("Ethernet5")));
  announced->portDescIs(Lldp::BoundedString255(Zet::String("uplink")));
  announced->portVlanIdIs(Bridging::VlanIdOrNone(42));
  announced->linkAggStatusIs(Lldp::LinkAggStatusMap(3));
  announced->linkAggPortIdIs(1001);
  announced->maxFrameSizeIs(9216);
  EXPECT_EQ(local.portIdSubtype(), Lldp::PortIdSubtype::interfaceName);
  EXPECT_EQ(local.portId().value(), Zet::String("Ethernet5"));
  EXPECT_EQ(local.portDesc().value(), Zet::String("uplink"));
  EXPECT_EQ(local.portVlanId().value(), 42);
  EXPECT_EQ(local.linkAggStatus().value(), 3u);
  EXPECT_EQ(local.linkAggPortId(), 1001);
  EXPECT_EQ(local.maxFrameSize(), 9216);
}

TEST(RowEntities, RemoteSystemReadsTheNeighbourAsItIsNow) {
  auto const source = neighbour();
  Lldp::Snmp::RemoteSystem const row({EthPortId(7), 4}, source);
  EXPECT_EQ(row.chassisIdSubtype(), Lldp::ChassisIdSubtype::macAddress);
  EXPECT_EQ(row.chassisId().value(), Zet::String("\x02\x00\x00\x00\x00\x07", 6));
  EXPECT_EQ(row.portIdSubtype(), Lldp::PortIdSubtype::interfaceName);
  EXPECT_EQ(row.portId().value(), Zet::String("Ethernet7"));
  EXPECT_FALSE(row.powerViaMdiTlvReceived());

  source->lastChangeTimeIs(1234.5);
  source->portDescIs(Lldp::BoundedString255(Zet::String("to core")));
  source->sysNameIs(Lldp::BoundedString255(Zet::String("core1")));
  source->sysDescIs(Lldp::BoundedString255(Zet::String("a core switch")));
  source->sysCapSupportedIs(Lldp::SystemCapabilitiesMap(0x14));
  source->sysCapEnabledIs(Lldp::SystemCapabilitiesMap(0x04));
  source->portVlanIdTlvReceivedIs(true);
  source->portVlanIdIs(Bridging::VlanIdOrNone(100));
  // Flags apart from their records, so that a reader of the wrong one shows.
  source->macPhyConfigStatusTlvReceivedIs(false);
  Lldp::MacPhyConfigStatusInfo macPhy;
  macPhy.autoNegSupported = true;
  macPhy.autoNegEnabled = false;
  macPhy.autoNegAdvertisedCap = 0x0001;  // bOther, the first bit of the first octet
  macPhy.operMauType = 30;
  source->macPhyConfigStatusInfoIs(macPhy);
  source->powerViaMdiTlvReceivedIs(true);
  Lldp::PowerViaMdiInfo power;
  power.powerPortClass = Lldp::PowerPortClass::pClassPD;
  power.powerMdiSupported = true;
  power.powerMdiEnabled = false;
  power.powerPairControllable = true;
  power.powerPairs = 2;
  power.powerClass = 5;
  source->powerViaMdiInfoIs(power);
  source->linkAggregationTlvReceivedIs(false);
  source->linkAggregationInfoIs(Lldp::LinkAggregationInfo(Lldp::LinkAggStatusMap(1), 77));
  source->maximumFrameSizeTlvReceivedIs(true);
  source->maximumFrameSizeInfoIs(1522);

  EXPECT_EQ(row.timeMark(), 1234.5);
  EXPECT_EQ(row.portDesc().value(), Zet::String("to core"));
  EXPECT_EQ(row.sysName().value(), Zet::String("core1"));
  EXPECT_EQ(row.sysDesc().value(), Zet::String("a core switch"));
  EXPECT_EQ(row.sysCapSupported().value(), 0x14u);
  EXPECT_EQ(row.sysCapEnabled().value(), 0x04u);
  EXPECT_TRUE(row.portVlanIdTlvReceived());
  EXPECT_EQ(row.portVlanId().value(), 100);
  EXPECT_FALSE(row.macPhyConfigStatusTlvReceived());
  EXPECT_TRUE(row.autoNegSupported());
  EXPECT_FALSE(row.autoNegEnabled());
  EXPECT_EQ(row.autoNegAdvertisedCapAsU16(), 0x8000);
  EXPECT_EQ(row.operMauType(), 30u);
  EXPECT_TRUE(row.powerViaMdiTlvReceived());
  EXPECT_EQ(row.powerPortClass(), Lldp::PowerPortClass::pClassPD);
  EXPECT_TRUE(row.powerMdiSupported());
  EXPECT_FALSE(row.powerMdiEnabled());
  EXPECT_TRUE(row.powerPairControllable());
  EXPECT_EQ(row.powerPairs(), 2u);
  EXPECT_EQ(row.powerClass(), 5u);
  EXPECT_FALSE(row.linkAggregationTlvReceived());
  EXPECT_EQ(row.linkAggStatus().value(), 1u);
  EXPECT_EQ(row.linkAggPortId(), 77);
  EXPECT_TRUE(row.maximumFrameSizeTlvReceived());
  EXPECT_EQ(row.maxFrameSize(), 1522);
}

TEST(RowEntities, RowHoldsItsSourceUntilItGoesAndHasNoNameOfItsOwn) {
  auto const source = neighbour();
  source->sysNameIs(Lldp::BoundedString255(Zet::String("edge")));
  auto row = Zet::makePtr<Lldp::Snmp::RemoteSystem>(Lldp::Snmp::RemoteSystem::Key(EthPortId(2), 1), source);
  EXPECT_EQ(source->references(), 2u);
  EXPECT_EQ(row->sysName().value(), Zet::String("edge"));
  EXPECT_EQ(row->name(), Zet::Name());

  row = nullptr;
  EXPECT_EQ(source->references(), 1u);
}

TEST(PortList, AddingAPresentPortLeavesTheSetAsItIs) {
  Lldp::Snmp::PortList list(Zet::Name("portsTxEnable"));
  list.portIdIs(EthPortId(3));
  list.portIdIs(EthPortId(3));
  list.portIdIs(EthPortId(4000));
  EXPECT_EQ(list.portId().count(), 2u);
  EXPECT_EQ(list.portId(3), EthPortId(3));
  EXPECT_EQ(list.portId(4000), EthPortId(4000));
}

// An absent port reads as port 0, the same as removing port 0 itself.
TEST(PortList, AbsentPortReadsAndRemovesAsPortZero) {
  Lldp::Snmp::PortList list(Zet::Name("portsTxEnable"));
  list.portIdIs(EthPortId(0));
  list.portIdIs(EthPortId(8));

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

TEST(LocalManagementAddressRow, BeforeItsRecordIsSetTheIndexShowsTheKeyAndTheRestTheDefault) {
  Lldp::Snmp::LocalManagementAddress const row(ipv4("\xc0\x00\x02\x01"));
  Lldp::ManagementAddress const fresh;
  EXPECT_EQ(row.manAddrSubtype(), 1);
  EXPECT_EQ(row.manAddr().value(), Zet::String("\xc0\x00\x02\x01", 4));
  EXPECT_EQ(row.manAddrLen(), fresh.manAddrLen());
  EXPECT_NE(row.manAddrLen(), Lldp::ManagementAddress(row.key()).manAddrLen());
  EXPECT_EQ(row.ifSubtype(), Lldp::ManAddrIfSubtype::unknown);
  EXPECT_EQ(row.ifId(), 0);
  EXPECT_EQ(row.rawValue(), fresh);
  EXPECT_FALSE(row.portsTxEnable());
}

TEST(LocalManagementAddressRow, IndexStaysWithTheKeyAfterTheRecordIsWritten) {
  Lldp::Snmp::LocalManagementAddress row(ipv4("\x0a\x00\x00\x01"));
  Lldp::ManagementAddress record(Lldp::ManagementAddress::Key(2, Lldp::ManAddress(Zet::String("0123456789abcdef"))));
  record.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
  record.ifId = 12;
  row.rawValueIs(record);

  EXPECT_EQ(row.manAddrSubtype(), 1);
  EXPECT_EQ(row.manAddr().value(), Zet::String("\x0a\x00\x00\x01", 4));
  EXPECT_EQ(row.manAddrLen(), record.manAddrLen());
  EXPECT_EQ(row.ifSubtype(), Lldp::ManAddrIfSubtype::ifIndex);
  EXPECT_EQ(row.ifId(), 12);
}

TEST(LocalManagementAddressRow, PortsTxEnableWithThePresentNameKeepsTheListAndItsPorts) {
  auto const row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  auto const first = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  ASSERT_TRUE(first);
  EXPECT_EQ(first->parent(), row.get());
  first->portIdIs(EthPortId(5));

  auto const again = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  EXPECT_EQ(again.get(), first.get());
  EXPECT_EQ(again->portId(5), EthPortId(5));
  EXPECT_EQ(row->portsTxEnable().get(), first.get());
}

TEST(LocalManagementAddressRow, PortsTxEnableWithAnotherNameDetachesTheOldListForANewEmptyOne) {
  auto const row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  auto const old = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  old->portIdIs(EthPortId(5));

  auto const fresh = row->portsTxEnableIs(Zet::Name("other"));
  ASSERT_TRUE(fresh);
  EXPECT_NE(fresh.get(), old.get());
  EXPECT_EQ(fresh->name(), Zet::Name("other"));
  EXPECT_EQ(fresh->portId().count(), 0u);
  EXPECT_EQ(fresh->parent(), row.get());
  EXPECT_EQ(old->parent(), nullptr);
  EXPECT_EQ(old->portId(5), EthPortId(5));
  EXPECT_EQ(row->portsTxEnable().get(), fresh.get());
}

TEST(LocalManagementAddressRow, PortsTxEnableDelGivesTheListBackDetachedAndThenNull) {
  auto const row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  EXPECT_FALSE(row->portsTxEnableDel());
  auto const list = row->portsTxEnableIs(Zet::Name("portsTxEnable"));

  auto const removed = row->portsTxEnableDel();
  EXPECT_EQ(removed.get(), list.get());
  EXPECT_EQ(list->parent(), nullptr);
  EXPECT_FALSE(row->portsTxEnable());
  EXPECT_FALSE(row->portsTxEnableDel());
}

// A list that outlives its row must not point at it.
TEST(LocalManagementAddressRow, GoingRowDetachesItsList) {
  auto row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  auto const list = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  row = nullptr;
  EXPECT_EQ(list->parent(), nullptr);
  EXPECT_EQ(list->references(), 1u);
}

}  // namespace
