// Reading scenario files: what they may say, how they say it, and what is refused.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "DesiredState.h"
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

std::string fileText(std::filesystem::path const& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

TEST(ScenarioRefusals, TextThatIsNoJsonGivesTheParserMessageAndBytePosition) {
  EXPECT_EQ(refusal(R"({"ports": [1,)"),
            "lab.json: $: [json.exception.parse_error.101] parse error at line 1, column 14: syntax error while "
            "parsing value - unexpected end of input; expected '[', '{', or a literal (byte 14)");
}

TEST(ScenarioRefusals, WrongJsonTypeNamesTheTypeExpected) {
  EXPECT_EQ(refusal(R"([])"), "lab.json: $: expected an object");
  EXPECT_EQ(refusal(R"({"ports": {}})"), "lab.json: $.ports: expected an array");
  EXPECT_EQ(refusal(R"({"localSystem": {"sysName": 7}})"),
            R"(lab.json: $.localSystem.sysName: expected a string or {"hex": "..."})");
  EXPECT_EQ(refusal(R"({"config": {"txDelay": "2"}})"), "lab.json: $.config.txDelay: expected an integer");
  EXPECT_EQ(refusal(R"({"config": {"txDelay": 2.5}})"), "lab.json: $.config.txDelay: expected an integer");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "config": {"manAddrTxEnable": 1}}]})"),
            "lab.json: $.ports[0].config.manAddrTxEnable: expected true or false");
  EXPECT_EQ(refusal(R"({"status": {"remTablesLastChangeTime": "now"}})"),
            "lab.json: $.status.remTablesLastChangeTime: expected a number of seconds");
  EXPECT_EQ(refusal(R"({"ports": [{"name": 1}]})"), "lab.json: $.ports[0].name: expected a string");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "portStatus": {"rxFramesTotal": -1}}]})"),
            "lab.json: $.ports[0].portStatus.rxFramesTotal: expected an integer from 0 to 4294967295");
}

TEST(ScenarioRefusals, UnknownAttributeIsNamedAtItsObject) {
  EXPECT_EQ(refusal(R"({"localSystem": {"sysname": "sw1"}})"), "lab.json: $.localSystem: unknown attribute 'sysname'");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisID": "x"}}]}]})"),
            "lab.json: $.ports[0].neighbors[0].msap: unknown attribute 'chassisID'");
  // A priority belongs to a local address only.
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"managementAddress": [{"priority": 1}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].managementAddress[0]: unknown attribute 'priority'");
}

TEST(ScenarioRefusals, ValueOutsideItsTypeGivesTheTypeOwnMessage) {
  EXPECT_EQ(refusal(R"({"ports": [{"name": "a"}, {"name": "b"}, {"name": "c", "neighbors": [
                       {"vlanName": [{"vlanId": 2}, {"vlanId": 0}]}]}]})"),
            "lab.json: $.ports[2].neighbors[0].vlanName[1].vlanId: VlanId::value < 1 or > 4094 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "number": 4095}]})"),
            "lab.json: $.ports[0].number: EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "localPort": {"portVlanId": 4095}}]})"),
            "lab.json: $.ports[0].localPort.portVlanId: VlanIdOrNone::value > 4094 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"vlanName": [{"vlanName": ")" + std::string(33, 'v') +
                    R"("}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].vlanName[0].vlanName: BoundedString32::value::bytes > 32 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"portId": {"hex": ")" + std::string(512, 'a') +
                    R"("}}}]}]})"),
            "lab.json: $.ports[0].neighbors[0].msap.portId: PortId::value::bytes > 255 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "config": {"enabledTlvs": 16}}]})"),
            "lab.json: $.ports[0].config.enabledTlvs: EnabledTlvs::value > 0xf not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "config": {"dot3EnabledTlvs": 255}}]})"),
            "lab.json: $.ports[0].config.dot3EnabledTlvs: Dot3EnabledTlvs::value > 0xf not allowed");
  // The limit counts bytes: 20 two-byte characters are 40 bytes.
  std::string umlauts;
  for (int i = 0; i < 20; ++i) {
    umlauts += "\xc3\xa4";
  }
  EXPECT_EQ(
      refusal(R"({"ports": [{"name": "e1", "neighbors": [{"vlanName": [{"vlanName": ")" + umlauts + R"("}]}]}]})"),
      "lab.json: $.ports[0].neighbors[0].vlanName[0].vlanName: BoundedString32::value::bytes > 32 not allowed");
}

TEST(ScenarioRefusals, TlvTypesIndexesAndSubtypesOutsideTheirRanges) {
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownTlv": [{"type": 8}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].unknownTlv[0].type: UnknownTlv::type < 9 or > 126 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownTlv": [{"type": 127}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].unknownTlv[0].type: UnknownTlv::type < 9 or > 126 not allowed");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownOrgDefTlv": [{"subtype": 256}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].subtype: expected an integer from 0 to 255");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownOrgDefTlv": [{"index": 0}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].index: expected an integer from 1 to 2147483647");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"protocolIdentityInfo": [{"index": 0}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].protocolIdentityInfo[0].index: expected an integer from 1 to "
            "2147483647");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"index": 0}]}]})"),
            "lab.json: $.ports[0].neighbors[0].index: expected an integer from 1 to 2147483647");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"index": -3}]}]})"),
            "lab.json: $.ports[0].neighbors[0].index: expected an integer from 1 to 2147483647");
}

TEST(ScenarioRefusals, UnknownEnumerationAndBitNames) {
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisIdSubtype": "macAdress"}}]}]})"),
            "lab.json: $.ports[0].neighbors[0].msap.chassisIdSubtype: 'macAdress' is no ChassisIdSubtype name or "
            "number");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "config": {"adminStatus": "enabled"}}]})"),
            "lab.json: $.ports[0].config.adminStatus: 'enabled' is no AdminStatus name or number");
  EXPECT_EQ(refusal(R"({"localSystem": {"sysCapEnabled": ["bridge", "switch"]}})"),
            "lab.json: $.localSystem.sysCapEnabled[1]: 'switch' is no LldpSystemCapabilitiesMap bit name");
}

TEST(ScenarioRefusals, DuplicatePortNameOrNumber) {
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1"}, {"name": "e1"}]})"),
            "lab.json: $.ports[1]: duplicate port name 'e1', already at $.ports[0]");
  // The second port's number defaults to 2, which the third claims as well.
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1"}, {"name": "e2"}, {"name": "e3", "number": 2}]})"),
            "lab.json: $.ports[2]: duplicate port number 2, already at $.ports[1]");
}

TEST(ScenarioRefusals, DuplicateKeysInsideACollection) {
  auto const inNeighbor = [](std::string const& attributes) {
    return refusal(R"({"ports": [{"name": "e1", "neighbors": [{)" + attributes + "}]}]}");
  };
  EXPECT_EQ(inNeighbor(R"("vlanName": [{"vlanId": 10, "vlanName": "a"}, {"vlanId": 10, "vlanName": "b"}])"),
            "lab.json: $.ports[0].neighbors[0].vlanName[1]: duplicate vlanId 10, already at "
            "$.ports[0].neighbors[0].vlanName[0]");
  EXPECT_EQ(inNeighbor(R"("unknownTlv": [{"type": 9}, {"type": 9}])"),
            "lab.json: $.ports[0].neighbors[0].unknownTlv[1]: duplicate type 9, already at "
            "$.ports[0].neighbors[0].unknownTlv[0]");
  EXPECT_EQ(inNeighbor(R"("unknownOrgDefTlv": [{"oui": "00-80-c2", "subtype": 1}, {"oui": 32962, "index": 1}])"),
            "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[1]: duplicate key (oui 00-80-c2, subtype 1, index 1), "
            "already at $.ports[0].neighbors[0].unknownOrgDefTlv[0]");
  EXPECT_EQ(inNeighbor(R"("portAndProtocolVlan": [{"portAndProtocolVlanId": 5}, {"portAndProtocolVlanId": 5}])"),
            "lab.json: $.ports[0].neighbors[0].portAndProtocolVlan[1]: duplicate portAndProtocolVlanId 5, already at "
            "$.ports[0].neighbors[0].portAndProtocolVlan[0]");
  EXPECT_EQ(inNeighbor(R"("protocolIdentityInfo": [{"index": 2}, {"index": 2}])"),
            "lab.json: $.ports[0].neighbors[0].protocolIdentityInfo[1]: duplicate index 2, already at "
            "$.ports[0].neighbors[0].protocolIdentityInfo[0]");
  EXPECT_EQ(inNeighbor(R"("managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.1"},
                                                {"manAddrSubtype": 1, "manAddr": {"hex": "c0000201"}}])"),
            "lab.json: $.ports[0].neighbors[0].managementAddress[1]: duplicate address (manAddrSubtype 1, manAddr "
            "192.0.2.1), already at $.ports[0].neighbors[0].managementAddress[0]");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"index": 2}, {"index": 2}]}]})"),
            "lab.json: $.ports[0].neighbors[1]: duplicate neighbor index 2, already at $.ports[0].neighbors[0]");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"msap": {"chassisId": "c"}},
                                                                 {"msap": {"chassisId": "c"}}]}]})"),
            "lab.json: $.ports[0].neighbors[1]: duplicate msap (chassisIdSubtype 0, chassisId 'c', portIdSubtype 0, "
            "portId ''), already at $.ports[0].neighbors[0]");
  EXPECT_EQ(
      refusal(R"({"localSystem": {"managementAddress": [
                         {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "priority": 3},
                         {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "priority": {"priority": 3}}]}})"),
      "lab.json: $.localSystem.managementAddress[1]: duplicate priority (priority 3, addressFamily 0, sequence 0, "
      "intfId ''), already at $.localSystem.managementAddress[0]");
}

TEST(ScenarioRefusals, MessageStaysOnOneLine) {
  std::string const message = refusal("{\"ports\": [{\"name\": \"e1\", \"line\\nbreak\": 1}]}");
  EXPECT_EQ(message, "lab.json: $.ports[0]: unknown attribute 'line?break'");
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
  EXPECT_EQ(bytes(onlyNeighbor(R"({"portDesc": {"hex": ""}})").portDesc.value()), "");
  EXPECT_EQ(refusal(R"({"localSystem": {"sysDesc": {"hex": "abc"}}})"),
            R"(lab.json: $.localSystem.sysDesc.hex: expected pairs of hex digits, such as "001c73aabbcc")");
  EXPECT_EQ(refusal(R"({"localSystem": {"sysDesc": {"hex": "00", "text": "x"}}})"),
            "lab.json: $.localSystem.sysDesc: unknown attribute 'text'");
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
  // A MAC subtype may still carry other bytes, written as hex.
  auto const odd = onlyNeighbor(R"({"msap": {"chassisIdSubtype": 4, "chassisId": {"hex": "0102"}}})");
  EXPECT_EQ(bytes(odd.msap.chassisId.value()), octets({1, 2}));

  auto const state = parseScenario(R"({"localSystem": {"chassisIdSubtype": 4, "chassisId": "00:1c:73:aa:bb:cc"},
                                       "ports": [{"name": "e1", "localPort": {"portIdSubtype": "macAddress",
                                                                              "portId": "00:1c:73:aa:bb:cc"}}]})",
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
      {"manAddrSubtype": 6, "manAddr": {"hex": "001c73aabbcc"}},
      {"manAddrSubtype": 16, "manAddr": "sw1.example"}]})");
  ASSERT_EQ(neighbor.managementAddress.size(), 4u);
  EXPECT_EQ(bytes(neighbor.managementAddress[0].manAddr.value()), octets({192, 0, 2, 1}));
  EXPECT_EQ(bytes(neighbor.managementAddress[1].manAddr.value()),
            octets({0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(bytes(neighbor.managementAddress[2].manAddr.value()), octets({0x00, 0x1c, 0x73, 0xaa, 0xbb, 0xcc}));
  EXPECT_EQ(bytes(neighbor.managementAddress[3].manAddr.value()), "sw1.example");

  EXPECT_EQ(
      refusal(R"({"localSystem": {"managementAddress": [{"manAddrSubtype": 1, "manAddr": "2001:db8::1"}]}})"),
      R"(lab.json: $.localSystem.managementAddress[0].manAddr: expected an IPv4 address such as "192.0.2.1", or {"hex": "..."})");
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
  EXPECT_EQ(byName.msap.chassisIdSubtype, Lldp::ChassisIdSubtype::interfaceName);
  EXPECT_EQ(byName.sysCapSupported.value(), 0x14u);
  EXPECT_EQ(byName.macPhyConfigStatusInfo.autoNegAdvertisedCap, 0x8002u);

  auto const state = parseScenario(R"({"ports": [{"name": "e1", "config": {
      "adminStatus": "rxOnly", "enabledTlvs": ["portDesc", "sysCap"], "dot3EnabledTlvs": ["maxFrameSize"]}}]})",
                                   "lab.json");
  EXPECT_EQ(state.ports[0].config.adminStatus, Lldp::AdminStatus::rxOnly);
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
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownOrgDefTlv": [{"oui": "0080c2"}]}]}]})"),
            R"(lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].oui: expected an OUI such as "00-80-c2")");
  EXPECT_EQ(refusal(R"({"ports": [{"name": "e1", "neighbors": [{"unknownOrgDefTlv": [{"oui": 16777216}]}]}]})"),
            "lab.json: $.ports[0].neighbors[0].unknownOrgDefTlv[0].oui: expected an integer from 0 to 16777215");
}

TEST(ScenarioValues, LocalAddressesCarryTheirPriorities) {
  auto const state = parseScenario(R"({"localSystem": {"managementAddress": [
      {"manAddrSubtype": 1, "manAddr": "192.0.2.1", "ifSubtype": "ifIndex", "ifId": 7, "oid": "1.3.6.1.2.1.2.2.1.1.7",
       "priority": {"priority": 2, "addressFamily": 1, "sequence": 4, "intfId": "Vlan1"}},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.2", "priority": 1},
      {"manAddrSubtype": 1, "manAddr": "192.0.2.3"}]}})",
                                   "lab.json");
  auto const& local = state.localSystem;
  ASSERT_EQ(local.managementAddress.size(), 3u);
  EXPECT_EQ(local.managementAddress[0].ifSubtype, Lldp::ManAddrIfSubtype::ifIndex);
  EXPECT_EQ(local.managementAddress[0].ifId, 7);
  EXPECT_EQ(local.managementAddress[0].oid, (Snmp::ObjectIdentifier{1, 3, 6, 1, 2, 1, 2, 2, 1, 1, 7}));
  ASSERT_EQ(local.managementAddressPrio.size(), 2u);
  EXPECT_EQ(local.managementAddressPrio[0].priority,
            (Lldp::ManAddrPriority(2, 1, 4, Ondo::IntfId(Zet::String("Vlan1")))));
  EXPECT_EQ(local.managementAddressPrio[0].address, local.managementAddress[0].key());
  EXPECT_EQ(local.managementAddressPrio[1].priority, (Lldp::ManAddrPriority(1, 0, 0, Ondo::IntfId())));
  EXPECT_EQ(local.managementAddressPrio[1].address, local.managementAddress[1].key());
  EXPECT_EQ(refusal(R"({"localSystem": {"managementAddress": [{"oid": "1.3.x"}]}})").substr(0, 49),
            "lab.json: $.localSystem.managementAddress[0].oid:");
}

TEST(ScenarioDefaults, AbsentAttributesTakeTheirTypeDefaults) {
  EXPECT_EQ(parseScenario("{}", "lab.json"), DesiredState{});
  auto const state =
      parseScenario(R"({"ports": [{"name": "e1", "neighbors": [{"managementAddress": [{}]}]}]})", "lab.json");
  auto const& port = state.ports.at(0);
  EXPECT_EQ(port.config.adminStatus, Lldp::AdminStatus::txAndRx);
  EXPECT_EQ(port.localPort, DesiredLocalPort{});
  EXPECT_EQ(port.portStatus, DesiredPortStatus{});
  auto const& neighbor = port.neighbors.at(0);
  EXPECT_FALSE(neighbor.portVlanIdTlvReceived || neighbor.linkAggregationTlvReceived ||
               neighbor.macPhyConfigStatusTlvReceived || neighbor.powerViaMdiTlvReceived ||
               neighbor.maximumFrameSizeTlvReceived);
  EXPECT_EQ(neighbor.managementAddress.at(0).ifSubtype, Lldp::ManAddrIfSubtype::unknown);
  EXPECT_EQ(neighbor.managementAddress.at(0).manAddrSubtype, 0);
  EXPECT_FALSE(neighbor.lastChangeTime.has_value());  // left to the reconciler
  auto const tlvs = onlyNeighbor(R"({"unknownOrgDefTlv": [{}], "protocolIdentityInfo": [{}]})");
  EXPECT_EQ(tlvs.unknownOrgDefTlv.at(0).subtype, 1u);
  EXPECT_EQ(tlvs.unknownOrgDefTlv.at(0).index, 1);
  EXPECT_EQ(tlvs.protocolIdentityInfo.at(0).index, 1);
}

TEST(ScenarioDefaults, PortsAndNeighborsAreNumberedByPosition) {
  auto const state = parseScenario(R"({"ports": [
      {"name": "e1", "neighbors": [{"msap": {"chassisId": "a"}}, {"index": 9, "msap": {"chassisId": "b"}},
                                   {"msap": {"chassisId": "c"}}]},
      {"name": "mgmt", "number": 100},
      {"name": "e3"}]})",
                                   "lab.json");
  ASSERT_EQ(state.ports.size(), 3u);
  EXPECT_EQ(state.ports[0].number.value(), 1);
  EXPECT_EQ(state.ports[1].number.value(), 100);
  EXPECT_EQ(state.ports[2].number.value(), 3);
  EXPECT_EQ(state.ports[2].name.stringValue(), Zet::String("e3"));
  auto const& neighbors = state.ports[0].neighbors;
  ASSERT_EQ(neighbors.size(), 3u);
  EXPECT_EQ(neighbors[0].index, 1);
  EXPECT_EQ(neighbors[1].index, 9);
  EXPECT_EQ(neighbors[2].index, 3);
  EXPECT_EQ(refusal(R"({"ports": [{"number": 1}]})"), "lab.json: $.ports[0]: missing attribute 'name'");
  EXPECT_EQ(refusal(R"({"ports": [{"name": ""}]})"), "lab.json: $.ports[0].name: expected a non-empty name");
}

TEST(ScenarioExamples, EveryExampleLoads) {
  std::vector<std::filesystem::path> files;
  for (auto const& entry : std::filesystem::directory_iterator(examplesDir)) {
    if (entry.path().extension() == ".json") {
      files.push_back(entry.path());
    }
  }
  ASSERT_GE(files.size(), 2u);
  for (auto const& file : files) {
    SCOPED_TRACE(file.string());
    DesiredState const state = loadScenarioFile(file.string());
    EXPECT_FALSE(state.ports.empty());
  }
}

TEST(ScenarioExamples, DemoIsTheExampleFile) {
  EXPECT_EQ(demoScenarioText(), fileText(examplesDir / "demo-switch.json"));
  EXPECT_EQ(demoScenario(), loadScenarioFile((examplesDir / "demo-switch.json").string()));
}

TEST(ScenarioExamples, DemoSwitchHasEveryKindOfTlv) {
  DesiredState const demo = demoScenario();
  ASSERT_GE(demo.ports.size(), 24u);
  for (std::size_t i = 0; i < 24; ++i) {
    EXPECT_EQ(demo.ports[i].name.stringValue(), Zet::String("Ethernet" + std::to_string(i + 1)));
  }

  std::size_t neighbors = 0;
  std::size_t portsWithNeighbors = 0;
  std::set<std::uint32_t> ouis;
  std::set<std::int32_t> remoteFamilies;
  bool unknownTlv = false, ppvid = false, vlanName = false, protocolId = false;
  bool macPhy = false, power = false, linkAgg = false, maxFrame = false, portVlan = false;
  for (DesiredPort const& port : demo.ports) {
    neighbors += port.neighbors.size();
    portsWithNeighbors += port.neighbors.empty() ? 0 : 1;
    for (DesiredNeighbor const& n : port.neighbors) {
      for (auto const& address : n.managementAddress) {
        remoteFamilies.insert(address.manAddrSubtype);
      }
      for (auto const& tlv : n.unknownOrgDefTlv) {
        ouis.insert(tlv.oui.value());
      }
      unknownTlv |= !n.unknownTlv.empty();
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
  EXPECT_GE(portsWithNeighbors, 6u);
  EXPECT_TRUE(remoteFamilies.contains(1) && remoteFamilies.contains(2));
  EXPECT_TRUE(ouis.contains(0x0080c2) && ouis.contains(0x00120f));
  EXPECT_TRUE(unknownTlv && ppvid && vlanName && protocolId);
  EXPECT_TRUE(portVlan && macPhy && power && linkAgg && maxFrame);

  auto const& local = demo.localSystem;
  EXPECT_FALSE(local.sysName.empty());
  EXPECT_GE(local.managementAddressPrio.size(), 2u);
  EXPECT_GT(local.managementAddress.size(), local.managementAddressPrio.size());
  EXPECT_GT(demo.status.remTablesInserts, 0u);
}

}  // namespace
