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

#include <nlohmann/json.hpp>

#include "AgentProcess.h"
#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "Scenario.h"

namespace {

// The reason `json` is refused with, or "" when it is accepted.
std::string refusalOf(std::string_view json) {
  try {
    parseScenario(json, "lab.json");
  } catch (ScenarioError const& e) {
    return e.reason();
  }
  return "";
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
std::filesystem::path const schemaPath = examplesDir / "scenario.schema.json";

// Each row of data/scenario-refusals.json is a scenario ("scenario", or its
// "text" where JSON cannot hold it) and the path and reason it is refused with.
TEST(ScenarioRefusals, EachBadScenarioIsRefusedAtItsPathWithItsReason) {
  std::ifstream file(std::filesystem::path(LLDP_SNMP_SOURCE_DIR) / "tests/agent/data/scenario-refusals.json");
  auto const rows = nlohmann::json::parse(file);
  ASSERT_FALSE(rows.empty());
  for (auto const& row : rows) {
    std::string const text = row.contains("text") ? row["text"].get<std::string>() : row["scenario"].dump();
    SCOPED_TRACE(text);
    try {
      parseScenario(text, "lab.json");
      ADD_FAILURE() << "accepted";
    } catch (ScenarioError const& e) {
      EXPECT_EQ(std::string(e.what()),
                "lab.json: " + row["path"].get<std::string>() + ": " + row["reason"].get<std::string>());
    }
  }
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
}

TEST(ScenarioExamples, EveryExampleLoads) {
  std::size_t loaded = 0;
  for (auto const& entry : std::filesystem::directory_iterator(examplesDir)) {
    if (entry.path().extension() == ".json" && entry.path() != schemaPath) {
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

// The schema is for editors; it must take every scenario the project ships and
// refuse a misspelt attribute, as the agent does.
TEST(ScenarioSchema, ShippedScenariosValidateAndMisspeltAttributesDoNot) {
  int status = 0;
  runCommand("python3 -c 'import jsonschema' 2>/dev/null", &status);
  if (status != 0) {
    GTEST_SKIP() << "python3 has no jsonschema module: install python3-jsonschema (scripts/install-deps.sh does)";
  }
  std::vector<std::string> valid;
  for (auto const& directory : {examplesDir, std::filesystem::path(LLDP_SNMP_SOURCE_DIR) / "tests/integration/data"}) {
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
      if (entry.path().extension() == ".json" && entry.path() != schemaPath) {
        valid.push_back(entry.path().string());
      }
    }
  }
  ASSERT_GE(valid.size(), 4u);
  auto const directory = makeTempDirectory();
  std::vector<std::string> misspelt;
  for (std::string const json : {R"({"localSystem": {"sysname": "sw1"}})",
                                 R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chasisId": "c"}}]}]})"}) {
    EXPECT_NE(refusalOf(json).find("unknown attribute"), std::string::npos) << json;
    misspelt.push_back(directory + "/misspelt" + std::to_string(misspelt.size()) + ".json");
    writeFile(misspelt.back(), json);
  }
  // Names the files that do not validate, one a line.
  std::string command =
      "python3 -c 'import json, sys, jsonschema\n"
      "schema = json.load(open(sys.argv[1]))\n"
      "jsonschema.Draft202012Validator.check_schema(schema)\n"
      "validator = jsonschema.Draft202012Validator(schema)\n"
      "for path in sys.argv[2:]:\n"
      "    if not validator.is_valid(json.load(open(path))):\n"
      "        print(path)' " +
      schemaPath.string();
  std::string expected;
  for (auto const& file : valid) {
    command += " " + file;
  }
  for (auto const& file : misspelt) {
    command += " " + file;
    expected += file + "\n";
  }
  auto const failing = runCommand(command, &status);
  std::filesystem::remove_all(directory);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(failing, expected);
}

}  // namespace
