// Reading scenario files: what they may say, how they say it, and what is refused.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "Scenario.h"

namespace {

// The one-line message that `json` is refused with, or "" when it is accepted.
std::string refusal(std::string_view json) {
  try {
    parseScenario(json, "lab.json");
  } catch (ScenarioError const& e) {
    return e.what();
  }
  return "";
}

struct Refusal {
  std::string json;
  std::string message;
};

void expectRefusals(std::vector<Refusal> const& cases) {
  for (auto const& [json, message] : cases) {
    SCOPED_TRACE(json);
    EXPECT_EQ(refusal(json), message);
  }
}

// `attributes` as the one neighbour of one port.
std::string inNeighbor(std::string const& attributes) {
  return R"({"ports": [{"name": "e1", "neighbors": [{)" + attributes + "}]}]}";
}

DesiredNeighbor onlyNeighbor(std::string_view neighborJson) {
  auto const state = parseScenario(
      R"({"ports": [{"name": "Ethernet1", "neighbors": [)" + std::string(neighborJson) + "]}]}", "lab.json");
  return state.ports.at(0).neighbors.at(0);
}

std::string bytes(Zet::String const& s) { return s.stdString(); }

// Bytes by value, free of the pitfalls of escapes in literals.
std::string octets(std::initializer_list<int> values) {
  std::string result;
  for (int const v : values) {
    result.push_back(static_cast<char>(v));
  }
  return result;
}

std::filesystem::path const examplesDir = std::filesystem::path(LLDP_SNMP_SOURCE_DIR) / "examples";

TEST(ScenarioRefusals, NoJsonOrTheWrongTypeNamesWhatWasExpected) {
  expectRefusals({
      {R"({"ports": [1,)",
       "lab.json: $: [json.exception.parse_error.101] parse error at line 1, column 14: syntax error while parsing "
       "value - unexpected end of input; expected '[', '{', or a literal (byte 14)"},
      {"[]", "lab.json: $: expected an object"},
      {R"({"localSystem": {"sysName": 7}})", R"(lab.json: $.localSystem.sysName: expected a string or {"hex": "..."})"},
      {R"({"config": {"txDelay": 2.5}})", "lab.json: $.config.txDelay: expected an integer"},
      {R"({"ports": [{"name": "e1", "config": {"manAddrTxEnable": 1}}]})",
       "lab.json: $.ports[0].config.manAddrTxEnable: expected true or false"},
      {R"({"status": {"remTablesLastChangeTime": "now"}})",
       "lab.json: $.status.remTablesLastChangeTime: expected a number of seconds"},
      {R"({"ports": [{"name": "e1", "portStatus": {"rxFramesTotal": -1}}]})",
       "lab.json: $.ports[0].portStatus.rxFramesTotal: expected an integer from 0 to 4294967295"},
      {R"({"localSystem": {"sysname": "sw1"}})", "lab.json: $.localSystem: unknown attribute 'sysname'"},
      // What the file says stays on the message's one line.
      {"{\"ports\": [{\"name\": \"e1\", \"line\\nbreak\": 1}]}",
       "lab.json: $.ports[0]: unknown attribute 'line?break'"},
      // A priority belongs to a local address only.
      {inNeighbor(R"("managementAddress": [{"priority": 1}])"),
       "lab.json: $.ports[0].neighbors[0].managementAddress[0]: unknown attribute 'priority'"},
  });
}

TEST(ScenarioRefusals, ValueOutsideItsLimitGivesTheLimitAtItsPath) {
  // The limit counts bytes: 20 two-byte characters are 40 bytes.
  std::string umlauts;
  for (int i = 0; i < 20; ++i) {
    umlauts += "\xc3\xa4";
  }
  expectRefusals({
      {R"({"ports": [{"name": "a"}, {"name": "b"}, {"name": "c", "neighbors": [
           {"vlanName": [{"vlanId": 2}, {"vlanId": 0}]}]}]})",
       "lab.json: $.ports[2].neighbors[0].vlanName[1].vlanId: VlanId::value < 1 or > 4094 not allowed"},
      {R"({"ports": [{"name": "e1", "number": 4095}]})",
       "lab.json: $.ports[0].number: EthPortId::value < EthPortId::min or > EthPortId::max not allowed"},
      {inNeighbor(R"("vlanName": [{"vlanName": ")" + umlauts + R"("}])"),
       "lab.json: $.ports[0].neighbors[0].vlanName[0].vlanName: BoundedString32::value::bytes > 32 not allowed"},
      {inNeighbor(R"("unknownOrgDefTlv": [{"subtype": 256}])"),
       "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].subtype: expected an integer from 0 to 255"},
      {R"({"ports": [{"name": "e1", "neighbors": [{"index": 0}]}]})",
       "lab.json: $.ports[0].neighbors[0].index: expected an integer from 1 to 2147483647"},
      {inNeighbor(R"("msap": {"chassisIdSubtype": "macAdress"})"),
       "lab.json: $.ports[0].neighbors[0].msap.chassisIdSubtype: 'macAdress' is no ChassisIdSubtype name or number"},
      {R"({"localSystem": {"sysCapEnabled": ["bridge", "switch"]}})",
       "lab.json: $.localSystem.sysCapEnabled[1]: 'switch' is no LldpSystemCapabilitiesMap bit name"},
  });
}

TEST(ScenarioRefusals, DuplicateKeyNamesWhereItFirstStood) {
  expectRefusals({
      {R"({"ports": [{"name": "e1"}, {"name": "e1"}]})",
       "lab.json: $.ports[1]: duplicate port name 'e1', already at $.ports[0]"},
      // The second port's number defaults to 2, which the third claims as well.
      {R"({"ports": [{"name": "e1"}, {"name": "e2"}, {"name": "e3", "number": 2}]})",
       "lab.json: $.ports[2]: duplicate port number 2, already at $.ports[1]"},
      {R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "c"}}, {"msap": {"chassisId": "c"}}]}]})",
       "lab.json: $.ports[0].neighbors[1]: duplicate msap (chassisIdSubtype 0, chassisId 'c', portIdSubtype 0, "
       "portId ''), already at $.ports[0].neighbors[0]"},
      // Keys compare by value, however they are written.
      {inNeighbor(R"("unknownOrgDefTlv": [{"oui": "00-80-c2", "subtype": 1}, {"oui": 32962, "index": 1}])"),
       "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[1]: duplicate key (oui 00-80-c2, subtype 1, index 1), "
       "already at $.ports[0].neighbors[0].unknownOrgDefTlv[0]"},
      {R"({"localSystem": {"managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.1", "priority": 3},
           {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "priority": {"priority": 3}}]}})",
       "lab.json: $.localSystem.managementAddress[1]: duplicate priority (priority 3, addressFamily 0, sequence 0, "
       "intfId ''), already at $.localSystem.managementAddress[0]"},
  });
}

TEST(ScenarioRefusals, UnreadableFileIsNamedAsGiven) {
  try {
    loadScenarioFile("/nonexistent/lab.json");
    FAIL() << "a missing file was read";
  } catch (ScenarioError const& e) {
    EXPECT_EQ(std::string(e.what()), "/nonexistent/lab.json: $: cannot read the file: No such file or directory");
    EXPECT_EQ(e.source(), "/nonexistent/lab.json");
    EXPECT_EQ(e.path(), "$");
  }
  EXPECT_THROW(loadScenarioFile("/"), ScenarioError);
}

TEST(ScenarioOctetStrings, PlainStringIsItsUtf8BytesAndHexIsRawBytes) {
  auto const neighbor = onlyNeighbor(R"({"sysName": "k\u00f6ln", "sysDesc": {"hex": "00FF7f"}})");
  EXPECT_EQ(bytes(neighbor.sysName.value()), octets({'k', 0xc3, 0xb6, 'l', 'n'}));
  EXPECT_EQ(bytes(neighbor.sysDesc.value()), octets({0x00, 0xff, 0x7f}));
  EXPECT_EQ(refusal(R"({"localSystem": {"sysDesc": {"hex": "abc"}}})"),
            R"(lab.json: $.localSystem.sysDesc.hex: expected pairs of hex digits, such as "001c73aabbcc")");
  EXPECT_EQ(refusal(R"({"localSystem": {"sysDesc": {}}})"), "lab.json: $.localSystem.sysDesc: missing attribute 'hex'");
}

TEST(ScenarioOctetStrings, MacTextOnlyWhereTheSubtypeIsMacAddress) {
  auto const mac = octets({0x00, 0x1c, 0x73, 0xaa, 0xbb, 0xcc});
  auto const neighbor = onlyNeighbor(R"({"msap": {"chassisIdSubtype": "macAddress", "chassisId": "00:1c:73:aa:bb:cc",
                                                 "portIdSubtype": 3, "portId": "00-1C-73-AA-BB-CC"}})");
  EXPECT_EQ(bytes(neighbor.msap.chassisId.value()), mac);
  EXPECT_EQ(bytes(neighbor.msap.portId.value()), mac);
  // Under another subtype the same text is just text.
  auto const named = onlyNeighbor(R"({"msap": {"chassisIdSubtype": "local", "chassisId": "00:1c:73:aa:bb:cc"}})");
  EXPECT_EQ(bytes(named.msap.chassisId.value()), "00:1c:73:aa:bb:cc");

  auto const state = parseScenario(R"({"localSystem": {"chassisIdSubtype": 4, "chassisId": "00:1c:73:aa:bb:cc"},
      "ports": [{"name": "e1", "localPort": {"portIdSubtype": "macAddress", "portId": "00:1c:73:aa:bb:cc"}}]})",
                                   "lab.json");
  EXPECT_EQ(bytes(state.localSystem.chassisId), mac);
  EXPECT_EQ(bytes(state.ports[0].localPort.portId.value()), mac);
  EXPECT_EQ(
      refusal(R"({"localSystem": {"chassisIdSubtype": "macAddress", "chassisId": "00:1c:73:aa:bb"}})"),
      R"(lab.json: $.localSystem.chassisId: expected a MAC address such as "00:1c:73:aa:bb:cc", or {"hex": "..."})");
}

TEST(ScenarioOctetStrings, ManagementAddressAsIpTextOrHex) {
  auto const neighbor = onlyNeighbor(R"({"managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1"},
      {"manAddrSubtype": 2, "manAddr": "2001:db8::1"},
      {"manAddrSubtype": 16, "manAddr": "sw1.example"}]})");
  ASSERT_EQ(neighbor.managementAddress.size(), 3u);
  EXPECT_EQ(bytes(neighbor.managementAddress[0].manAddr.value()), octets({192, 0, 2, 1}));
  EXPECT_EQ(bytes(neighbor.managementAddress[1].manAddr.value()),
            octets({0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(bytes(neighbor.managementAddress[2].manAddr.value()), "sw1.example");
  EXPECT_EQ(
      refusal(R"({"localSystem": {"managementAddress": [{"manAddrSubtype": 2, "manAddr": "192.0.2.1"}]}})"),
      R"(lab.json: $.localSystem.managementAddress[0].manAddr: expected an IPv6 address such as "2001:db8::1", or {"hex": "..."})");
}

TEST(ScenarioValues, EnumerationsAndBitSetsByNameOrNumber) {
  auto const byName = onlyNeighbor(R"({"msap": {"chassisIdSubtype": "interfaceName", "portIdSubtype": "local"},
                                       "sysCapSupported": ["bridge", "router"],
                                       "powerViaMdiInfo": {"powerPortClass": "pClassPD"},
                                       "macPhyConfigStatusInfo": {"autoNegAdvertisedCap": ["b10baseT", "b1000baseTFD"]},
                                       "linkAggregationInfo": {"linkAggStatus": ["aggEnabled"]}})");
  auto const byNumber = onlyNeighbor(R"({"msap": {"chassisIdSubtype": 6, "portIdSubtype": 7},
                                         "sysCapSupported": 20,
                                         "powerViaMdiInfo": {"powerPortClass": 2},
                                         "macPhyConfigStatusInfo": {"autoNegAdvertisedCap": 32770},
                                         "linkAggregationInfo": {"linkAggStatus": 2}})");
  EXPECT_EQ(byName, byNumber);
  EXPECT_EQ(byName.sysCapSupported.value(), 0x14u);
  EXPECT_EQ(byName.macPhyConfigStatusInfo.autoNegAdvertisedCap, 0x8002u);

  auto const state = parseScenario(R"({"ports": [{"name": "e1", "config": {
      "enabledTlvs": ["portDesc", "sysCap"], "dot3EnabledTlvs": ["maxFrameSize"]}}]})",
                                   "lab.json");
  EXPECT_EQ(state.ports[0].config.enabledTlvs, 0x9u);
  EXPECT_EQ(state.ports[0].config.dot3EnabledTlvs, 0x8u);
}

TEST(ScenarioValues, OuiAsTextOrNumberAndTimesInSeconds) {
  auto const neighbor = onlyNeighbor(R"({"unknownOrgDefTlv": [{"oui": "00-12-0f", "subtype": 5},
                                                             {"oui": "00:80:C2", "subtype": 9}, {"oui": 4794}],
                                        "lastChangeTime": 12.25})");
  ASSERT_EQ(neighbor.unknownOrgDefTlv.size(), 3u);
  EXPECT_EQ(neighbor.unknownOrgDefTlv[0].oui.value(), 0x00120fu);
  EXPECT_EQ(neighbor.unknownOrgDefTlv[1].oui.value(), 0x0080c2u);
  EXPECT_EQ(neighbor.unknownOrgDefTlv[2].oui.value(), 0x0012bau);
  EXPECT_EQ(neighbor.lastChangeTime, 12.25);
  EXPECT_EQ(refusal(inNeighbor(R"("unknownOrgDefTlv": [{"oui": "0080c2"}])")),
            R"(lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].oui: expected an OUI such as "00-80-c2")");
}

TEST(ScenarioValues, LocalAddressesCarryTheirPriorities) {
  auto const local = parseScenario(R"({"localSystem": {"managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "oid": "1.3.6.1.2.1.2.2.1.1.7",
       "priority": {"priority": 2, "addressFamily": 1, "sequence": 4, "intfId": "Vlan1"}},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "priority": 1},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.3"}]}})",
                                   "lab.json")
                         .localSystem;
  ASSERT_EQ(local.managementAddress.size(), 3u);
  EXPECT_EQ(local.managementAddress[0].oid, (Snmp::ObjectIdentifier{1, 3, 6, 1, 2, 1, 2, 2, 1, 1, 7}));
  ASSERT_EQ(local.managementAddressPrio.size(), 2u);
  EXPECT_EQ(local.managementAddressPrio[0].priority,
            (Lldp::ManAddrPriority(2, 1, 4, Ondo::IntfId(Zet::String("Vlan1")))));
  EXPECT_EQ(local.managementAddressPrio[0].address, local.managementAddress[0].key());
  EXPECT_EQ(local.managementAddressPrio[1].priority, (Lldp::ManAddrPriority(1, 0, 0, Ondo::IntfId())));
  EXPECT_EQ(local.managementAddressPrio[1].address, local.managementAddress[1].key());
}

TEST(ScenarioDefaults, AbsentAttributesTakeTheirTypeDefaults) {
  EXPECT_EQ(parseScenario("{}", "lab.json"), DesiredState{});
  DesiredPort port;
  port.name = Ondo::IntfId(Zet::String("e1"));
  port.number = Interface::EthPortId(1);
  port.neighbors.emplace_back();
  EXPECT_EQ(parseScenario(R"({"ports": [{"name": "e1", "neighbors": [{}]}]})", "lab.json").ports.at(0), port);
}

TEST(ScenarioDefaults, PortsAndNeighborsAreNumberedByPosition) {
  auto const state = parseScenario(R"({"ports": [
      {"name": "e1", "neighbors": [{"msap": {"chassisId": "a"}}, {"index": 9, "msap": {"chassisId": "b"}},
                                   {"msap": {"chassisId": "c"}}]},
      {"name": "mgmt", "number": 100},
      {"name": "e3"}]})",
                                   "lab.json");
  ASSERT_EQ(state.ports.size(), 3u);
  EXPECT_EQ(state.ports[1].number.value(), 100);
  EXPECT_EQ(state.ports[2].number.value(), 3);
  auto const& neighbors = state.ports[0].neighbors;
  ASSERT_EQ(neighbors.size(), 3u);
  EXPECT_EQ(neighbors[1].index, 9);
  EXPECT_EQ(neighbors[2].index, 3);
  EXPECT_EQ(refusal(R"({"ports": [{"number": 1}]})"), "lab.json: $.ports[0]: missing attribute 'name'");
  EXPECT_EQ(refusal(R"({"ports": [{"name": ""}]})"), "lab.json: $.ports[0].name: expected a non-empty name");
}

TEST(ScenarioExamples, EveryExampleLoads) {
  std::size_t loaded = 0;
  for (auto const& entry : std::filesystem::directory_iterator(examplesDir)) {
    if (entry.path().extension() == ".json") {
      SCOPED_TRACE(entry.path().string());
      EXPECT_FALSE(loadScenarioFile(entry.path().string()).ports.empty());
      ++loaded;
    }
  }
  EXPECT_GE(loaded, 2u);
}

TEST(ScenarioExamples, DemoIsTheExampleFile) {
  auto const path = examplesDir / "demo-switch.json";
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(demoScenarioText(), std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
  EXPECT_EQ(demoScenario(), loadScenarioFile(path.string()));
}

TEST(ScenarioExamples, DemoSwitchHasEveryKindOfTlv) {
  DesiredState const demo = demoScenario();
  ASSERT_GE(demo.ports.size(), 24u);
  EXPECT_EQ(demo.ports[0].name.stringValue(), Zet::String("Ethernet1"));
  EXPECT_EQ(demo.ports[23].name.stringValue(), Zet::String("Ethernet24"));
  std::size_t neighbors = 0;
  bool unknownTlv = false, orgDef = false, ppvid = false, vlanName = false, protocolId = false;
  bool macPhy = false, power = false, linkAgg = false, maxFrame = false, portVlan = false;
  for (DesiredPort const& port : demo.ports) {
    neighbors += port.neighbors.size();
    for (DesiredNeighbor const& n : port.neighbors) {
      unknownTlv |= !n.unknownTlv.empty();
      orgDef |= !n.unknownOrgDefTlv.empty();
      ppvid |= !n.portAndProtocolVlan.empty();
      vlanName |= !n.vlanName.empty();
      protocolId |= !n.protocolIdentityInfo.empty();
      portVlan |= n.portVlanIdTlvReceived;
      macPhy |= n.macPhyConfigStatusTlvReceived;
      power |= n.powerViaMdiTlvReceived;
      linkAgg |= n.linkAggregationTlvReceived;
      maxFrame |= n.maximumFrameSizeTlvReceived;
    }
  }
  EXPECT_GE(neighbors, 6u);
  EXPECT_LE(neighbors, 10u);
  EXPECT_TRUE(unknownTlv && orgDef && ppvid && vlanName && protocolId);
  EXPECT_TRUE(portVlan && macPhy && power && linkAgg && maxFrame);
  EXPECT_GE(demo.localSystem.managementAddressPrio.size(), 2u);
}

}  // namespace
