// What lldpd knows becoming the LLDP state, without a daemon: every TLV of a
// neighbour in its place, the defaults where lldpd knows nothing, strings cut
// to their limits as bytes whether or not they are UTF-8, port numbers, and
// neighbour indexes as MSAPs come, go and change. The expected states are
// scenario files in tests/agent/data.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <string>
#include <vector>

#include "LldpdMapping.h"
#include "Scenario.h"
#include "ScenarioWriter.h"

namespace {

std::string const dataDir = std::string(LLDP_SNMP_SOURCE_DIR) + "/tests/agent/data/";
// The wall clock at sysUpTime 0.
constexpr double startEpoch = 1'700'000'000.0;

nlohmann::json readJson(std::string const& file) {
  std::ifstream in(dataDir + file);
  return nlohmann::json::parse(in);
}

void expectState(DesiredState const& got, std::string const& file) {
  DesiredState const want = loadScenarioFile(dataDir + file);
  // Shown as scenario text, which names the part that differs.
  EXPECT_EQ(scenarioText(got), scenarioText(want));
  EXPECT_TRUE(got == want);
}

LldpdConfig defaultConfig() { return {}; }

LldpdChassis localChassis() {
  LldpdChassis chassis;
  chassis.idSubtype = 4;
  chassis.id = std::string("\x02\x00\x5e\xaa\x00\x01", 6);
  chassis.name = "near";
  chassis.description = "Debian GNU/Linux";
  chassis.capAvailable = 0x14;
  chassis.capEnabled = 0x10;
  chassis.managementAddresses = {{"192.0.2.1", 2}, {"2001:db8::1", 0}, {"not an address", 3}, {"192.0.2.1", 2}};
  return chassis;
}

LldpdNeighbor everyTlv() {
  LldpdNeighbor n;
  n.chassis.idSubtype = 4;
  n.chassis.id = std::string("\x02\x00\x5e\x00\x01\x00", 6);
  n.chassis.name = "far";
  n.chassis.description = "a switch";
  n.chassis.capAvailable = 0x14;
  n.chassis.capEnabled = 0x04;
  n.chassis.managementAddresses = {{"192.0.2.2", 7}, {"2001:db8::2", 0}};
  LldpdPortInfo& p = n.port;
  p.idSubtype = 5;
  p.id = "Ethernet9";
  p.description = "uplink";
  p.pvid = 10;
  p.vlans = {{10, "v10"}, {20, "v20"}, {10, "again"}, {0, "none"}, {4095, "beyond"}};
  p.ppvids = {{0, 2}, {30, 6}, {40, 4}};
  p.protocolIds = {std::string("\x00\x26\x42\x42\x03", 5), "\x88\x8e"};
  p.mfs = 1522;
  p.aggregationId = 17;
  p.autonegSupported = true;
  p.autonegEnabled = true;
  p.autonegAdvertised = 0x8000 | 0x0400 | 0x0001;  // other, 100BASE-TX FD, 1000BASE-T FD
  p.mauType = 30;
  p.power = {1, true, true, false, 2, 4};
  p.customTlvs = {{"\x33\x44\x55", 44, "EFG"}, {"\x33\x44\x55", 44, "second"}, {std::string("\x00\x12\x0f", 3), 9, ""}};
  n.lastChange = static_cast<std::int64_t>(startEpoch) + 12;
  return n;
}

LldpdInterface interface(std::string const& name, std::int64_t ifIndex, std::vector<LldpdNeighbor> neighbors) {
  LldpdInterface i;
  i.name = name;
  i.ifIndex = ifIndex;
  i.local.idSubtype = 3;
  i.local.id = std::string("\x02\x00\x5e\xaa\x00\x01", 6);
  i.local.description = name;
  i.neighbors = std::move(neighbors);
  return i;
}

TEST(LldpdMapping, EveryTlvOfANeighbourAndThePortsOwnValuesReachTheState) {
  LldpdState state(startEpoch);
  LldpdConfig config = defaultConfig();
  config.txInterval = 1;
  state.configIs(config);
  state.localChassisIs(localChassis());
  LldpdInterface eth0 = interface("eth0", 3, {everyTlv()});
  eth0.local.pvid = 10;
  eth0.local.mfs = 1522;
  eth0.local.aggregationId = 3;
  eth0.local.power.deviceType = 2;
  eth0.counters = {120, 118, 1, 2, 3, 4, 5};
  state.interfacesIs({eth0});
  expectState(state.snapshot(), "lldpd-every-tlv.json");
}

TEST(LldpdMapping, WhatLldpdDoesNotKnowTakesTheDefaults) {
  LldpdState state(startEpoch);
  LldpdConfig config = defaultConfig();
  config.receiveOnly = true;
  config.capabilitiesAdvertised = false;
  config.managementAdvertised = false;
  state.configIs(config);
  LldpdNeighbor bare;
  bare.chassis.idSubtype = 7;
  bare.chassis.id = "far";
  bare.port.idSubtype = 7;
  bare.port.id = "1";
  // Learnt before the agent started.
  bare.lastChange = static_cast<std::int64_t>(startEpoch) - 100;
  LldpdInterface eth0 = interface("eth0", 2, {bare});
  eth0.local = {};
  LldpdInterface eth1 = interface("eth1", 4, {});
  eth1.local = {};
  eth1.mode = LldpdPortMode::txOnly;
  state.interfacesIs({eth0, eth1});
  expectState(state.snapshot(), "lldpd-nothing-known.json");
}

TEST(LldpdMapping, LongStringsAreCutAsBytesAndBeforeACharacterWhenTheyAreUtf8) {
  LldpdState state(startEpoch);
  LldpdNeighbor n;
  n.chassis.idSubtype = 7;
  n.chassis.id = "far";
  n.port.idSubtype = 7;
  n.port.id = "1";
  n.lastChange = static_cast<std::int64_t>(startEpoch);
  // No UTF-8: cut at the limit, whatever it splits.
  n.chassis.name = "\xff\xfe" + std::string(300, 'x');
  std::string twoByteChars;
  for (int i = 0; i < 200; ++i) {
    twoByteChars += "\xc3\xa9";  // é
  }
  // UTF-8: 400 bytes, cut to 254 rather than through the 128th character.
  n.chassis.description = twoByteChars;
  n.port.description = std::string(255, 'p');
  n.port.vlans = {{5, "a" + twoByteChars.substr(0, 40)}, {6, "\xff" + twoByteChars.substr(0, 40)}};
  n.port.customTlvs = {{std::string("\x00\x00\x01", 3), 1, std::string(600, '\x80')}};
  state.interfacesIs({interface("eth0", 2, {n})});
  expectState(state.snapshot(), "lldpd-long-strings.json");
}

TEST(LldpdMapping, PortNumbersAreIfIndexesOrStableNumbersAboveThem) {
  for (auto const& c : readJson("lldpd-port-numbers.json")) {
    SCOPED_TRACE(c["case"].get<std::string>());
    std::vector<std::pair<std::string, std::int64_t>> ifIndexes;
    for (auto const& entry : c["interfaces"]) {
      ifIndexes.emplace_back(entry[0].get<std::string>(), entry[1].get<std::int64_t>());
    }
    auto const previous = c.value("previous", nlohmann::json::object()).get<std::map<std::string, std::uint16_t>>();
    auto const want = c["expected"].get<std::map<std::string, std::uint16_t>>();
    EXPECT_EQ(LldpdMapping::portNumbers(ifIndexes, previous), want);
  }
}

// "chassis/port" names an MSAP with local subtypes.
LldpdNeighbor neighborNamed(std::string const& name) {
  LldpdNeighbor n;
  n.chassis.idSubtype = 7;
  n.chassis.id = name.substr(0, name.find('/'));
  n.port.idSubtype = 7;
  n.port.id = name.substr(name.find('/') + 1);
  n.chassis.name = name;
  return n;
}

TEST(LldpdMapping, NeighboursKeepTheirIndexWhileTheirMsapStaysAndIndexesAreNotReused) {
  LldpdState state(startEpoch);
  for (auto const& step : readJson("lldpd-neighbour-indexes.json")) {
    std::string const what = step["step"].get<std::string>();
    SCOPED_TRACE(what);
    std::string const port = step.value("port", "eth0");
    if (step.contains("read")) {
      std::vector<LldpdNeighbor> neighbors;
      for (auto const& name : step["read"]) {
        neighbors.push_back(neighborNamed(name.get<std::string>()));
      }
      LldpdInterface read = interface(port, 2, neighbors);
      read.counters.inserts = step.value("lldpdInserts", 0u);
      read.counters.deletes = step.value("lldpdDeletes", 0u);
      state.interfacesIs({read});
    } else if (step.contains("add")) {
      EXPECT_EQ(state.neighborIs(port, neighborNamed(step["add"].get<std::string>())), step.value("known", true));
    } else {
      EXPECT_EQ(state.neighborDel(port, neighborNamed(step["delete"].get<std::string>())), step.value("known", true));
    }
    DesiredState const snapshot = state.snapshot();
    ASSERT_EQ(snapshot.ports.size(), 1u);
    nlohmann::json got = nlohmann::json::array();
    for (DesiredNeighbor const& n : snapshot.ports[0].neighbors) {
      got.push_back({n.index, n.sysName.value().stdString()});
    }
    EXPECT_EQ(got, step["expected"]);
    EXPECT_EQ(snapshot.status.remTablesInserts, step["inserts"].get<std::uint32_t>());
    EXPECT_EQ(snapshot.status.remTablesDeletes, step["deletes"].get<std::uint32_t>());
  }
}

TEST(LldpdMapping, AnInterfaceThatLeavesTakesItsNeighboursAndCountersAlong) {
  LldpdState state(startEpoch);
  LldpdInterface eth0 = interface("eth0", 2, {neighborNamed("a/1")});
  eth0.counters.inserts = 1;
  LldpdInterface eth1 = interface("eth1", 3, {neighborNamed("b/1")});
  eth1.counters.inserts = 1;
  state.interfacesIs({eth0, eth1});
  EXPECT_EQ(state.snapshot().status.remTablesInserts, 2u);
  state.interfacesIs({eth1});
  EXPECT_FALSE(state.hasInterface("eth0"));
  expectState(state.snapshot(), "lldpd-one-port-left.json");
}

TEST(LldpdMapping, APortTooLargeToReadKeepsWhatTheChangesBroughtAndANewOneJoinsByName) {
  LldpdState state(startEpoch);
  LldpdInterface eth0 = interface("eth0", 2, {neighborNamed("a/1")});
  eth0.counters.tx = 7;
  state.interfacesIs({eth0});
  ASSERT_TRUE(state.neighborIs("eth0", neighborNamed("b/1")));
  state.interfacesIs({}, {"eth0", "big0"});
  expectState(state.snapshot(), "lldpd-unreadable-ports.json");
}

}  // namespace
