// The mirror's row entities: every attribute a row reads, through its source
// or without one (listed in data/mirror-rows.txt), and the port list of a
// local management address.

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "Interface/EthPortId.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "MirrorRows.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"
#include "Zet/ZetType.h"
#include "platform/TestData.h"

namespace {

using Interface::EthPortId;

Lldp::ManagementAddress::Key ipv4(char const* bytes) { return {1, Lldp::ManAddress(Zet::String(bytes, 4))}; }

// What `row` reads, attribute by attribute, through its type's description;
// its source is left out, being an address.
template <class Row>
std::string readings(char const* what, Row const& row) {
  std::ostringstream out;
  out << what << '\n';
  for (auto const& a : Row::_zetType.attributes) {
    if (a.strRep && a.name != Zet::String("ptr")) {
      out << "  " << a.name << " = " << a.strRep(&row) << '\n';
    }
  }
  return out.str();
}

// Without a source a row reads zero, false or empty, never through a null
// source; with one, it reads the source as it is now: the MSAP, the time, the
// capability bit order, flags kept apart from their records, and a
// notificationEnable that only needs a source.
TEST(RowEntities, EveryAttributeReadsAsListed) {
  std::string all = readings("PortConfig without source", Lldp::Snmp::PortConfig(EthPortId(12), nullptr)) +
                    readings("PortStatus without source", Lldp::Snmp::PortStatus(EthPortId(3), nullptr)) +
                    readings("LocalPort without source", Lldp::Snmp::LocalPort(EthPortId(4094), nullptr)) +
                    readings("RemoteSystem without source", Lldp::Snmp::RemoteSystem({EthPortId(9), -3}, nullptr));

  auto const config = Zet::makePtr<Lldp::PortConfig>();
  Lldp::Snmp::PortConfig const configRow(EthPortId(1), config);
  config->adminStatusIs(Lldp::AdminStatus::disabled);
  config->manAddrTxEnableIs(false);
  all += readings("PortConfig with a source", configRow);

  auto const source = Zet::makePtr<Lldp::RemoteSystem>(
      4, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::macAddress,
                                  Lldp::ChassisId(Zet::String("\x02\x00\x00\x00\x00\x07", 6)),
                                  Lldp::PortIdSubtype::interfaceName, Lldp::PortId(Zet::String("Ethernet7"))));
  Lldp::Snmp::RemoteSystem const remoteRow({EthPortId(7), 4}, source);
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
  all += readings("RemoteSystem with a source", remoteRow);
  EXPECT_EQ(all, testDataText("Lldp/data/mirror-rows.txt"));
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
  EXPECT_EQ(list.portIdDel(8), EthPortId(0));
  for (std::uint16_t port = 1; port <= 200; port += 3) {
    list.portIdIs(EthPortId(port));
  }
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

// A list of another name replaces the present one, which is detached; so is a
// list taken from its row or outliving it.
TEST(LocalManagementAddressRow, PortsTxEnableKeepsTheListOfThePresentNameAndDetachesAnyOther) {
  auto row = Zet::makePtr<Lldp::Snmp::LocalManagementAddress>(ipv4("\x0a\x00\x00\x01"));
  EXPECT_FALSE(row->portsTxEnableDel());
  auto const first = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  ASSERT_TRUE(first);
  EXPECT_EQ(first->parent(), row.get());
  first->portIdIs(EthPortId(5));
  EXPECT_EQ(row->portsTxEnableIs(Zet::Name("portsTxEnable")), first);

  auto const fresh = row->portsTxEnableIs(Zet::Name("other"));
  EXPECT_NE(fresh, first);
  EXPECT_EQ(fresh->portId().count(), 0u);
  EXPECT_EQ(fresh->parent(), row.get());
  EXPECT_EQ(first->parent(), nullptr);
  EXPECT_EQ(first->portId(5), EthPortId(5));
  EXPECT_EQ(row->portsTxEnable(), fresh);

  EXPECT_EQ(row->portsTxEnableDel(), fresh);
  EXPECT_EQ(fresh->parent(), nullptr);
  EXPECT_FALSE(row->portsTxEnable());
  auto const kept = row->portsTxEnableIs(Zet::Name("portsTxEnable"));
  row = nullptr;
  EXPECT_EQ(kept->parent(), nullptr);
  EXPECT_EQ(kept->references(), 1u);
}

}  // namespace
