#include "ScenarioWriter.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <tuple>

#include <nlohmann/json.hpp>

#include "LldpAgent/BoundedString.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "LldpdMapping.h"
#include "Zet/RecordForm.h"

namespace {

using Json = nlohmann::ordered_json;

// IANA address family numbers whose addresses a scenario writes as text.
constexpr std::int32_t ipV4Family = 1;
constexpr std::int32_t ipV6Family = 2;

Json hexOf(std::string_view bytes) {
  std::string hex;
  for (char const byte : bytes) {
    std::array<char, 3> pair{};
    std::snprintf(pair.data(), pair.size(), "%02x", static_cast<unsigned char>(byte));
    hex += pair.data();
  }
  return Json{{"hex", hex}};
}

// Text as text; bytes that are no UTF-8 as hex, which JSON cannot hold as a string.
Json octets(Zet::String const& value) {
  std::string_view const bytes = value.view();
  return LldpdMapping::isUtf8(bytes) ? Json(std::string(bytes)) : hexOf(bytes);
}

// With a MAC address subtype a string must be the address.
Json identifier(Zet::String const& value, bool isMacAddress) {
  std::string_view const bytes = value.view();
  if (!isMacAddress) {
    return octets(value);
  }
  if (bytes.size() != 6) {
    return hexOf(bytes);
  }
  std::string text;
  for (char const byte : bytes) {
    std::array<char, 4> part{};
    std::snprintf(part.data(), part.size(), text.empty() ? "%02x" : ":%02x", static_cast<unsigned char>(byte));
    text += part.data();
  }
  return text;
}

Json manAddr(std::int32_t family, Zet::String const& value) {
  std::string_view const bytes = value.view();
  bool const v4 = family == ipV4Family && bytes.size() == 4;
  bool const v6 = family == ipV6Family && bytes.size() == 16;
  if (v4 || v6) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(v4 ? AF_INET : AF_INET6, bytes.data(), text.data(), text.size());
    return std::string(text.data());
  }
  if (family == ipV4Family || family == ipV6Family) {
    return hexOf(bytes);
  }
  return octets(value);
}

std::string ouiText(Lldp::Oui oui) {
  std::array<char, 9> text{};
  std::snprintf(text.data(), text.size(), "%02x-%02x-%02x", (oui.value() >> 16) & 0xffu, (oui.value() >> 8) & 0xffu,
                oui.value() & 0xffu);
  return text.data();
}

// A field of a value record as the scenario file writes it.
Json jsonOf(bool value) { return value; }
template <std::integral Int>
Json jsonOf(Int value) {
  return value;
}
Json jsonOf(Bridging::VlanId value) { return value.value(); }
Json jsonOf(Bridging::VlanIdOrNone value) { return value.value(); }
template <Lldp::BoundedStringName name, std::size_t limit>
Json jsonOf(Lldp::BoundedString<name, limit> const& value) {
  return octets(value.value());
}
Json jsonOf(Lldp::Oui value) { return ouiText(value); }
Json jsonOf(Lldp::PowerPortClass value) { return static_cast<std::int32_t>(value); }
Json jsonOf(Lldp::LinkAggStatusMap value) { return value.value(); }
Json jsonOf(Ondo::IntfId const& value) { return value.stringValue().stdString(); }

// A value record written as its form lists its fields, under the form's names.
template <class R, class... V>
Json recordJson(R const& record, Zet::RecordForm<R, V...> const& form) {
  Json json = Json::object();
  std::apply([&](auto const&... field) { ((json[std::string(field.name)] = jsonOf(record.*(field.member))), ...); },
             form.fields());
  return json;
}

// Writes each record of a collection by its form.
template <class Records, class R, class... V>
Json recordsJson(Records const& records, Zet::RecordForm<R, V...> const& form) {
  Json json = Json::array();
  for (R const& record : records) {
    json.push_back(recordJson(record, form));
  }
  return json;
}

Json managementAddress(Lldp::ManagementAddress const& address) {
  Json json{{"manAddrSubtype", address.manAddrSubtype},
            {"manAddr", manAddr(address.manAddrSubtype, address.manAddr.value())},
            {"ifSubtype", static_cast<std::int32_t>(address.ifSubtype)},
            {"ifId", address.ifId}};
  if (!address.oid.subIds().empty()) {
    std::string dotted;
    for (std::uint64_t const subId : address.oid.subIds()) {
      dotted += (dotted.empty() ? "" : ".") + std::to_string(subId);
    }
    json["oid"] = dotted;
  }
  return json;
}

Json localSystem(DesiredLocalSystem const& local) {
  constexpr std::int32_t macChassis = static_cast<std::int32_t>(Lldp::ChassisIdSubtype::macAddress);
  Json addresses = Json::array();
  for (Lldp::ManagementAddress const& address : local.managementAddress) {
    Json entry = managementAddress(address);
    for (DesiredManAddrPriority const& prio : local.managementAddressPrio) {
      if (prio.address == address.key()) {
        entry["priority"] = recordJson(prio.priority, Lldp::manAddrPriorityForm);
      }
    }
    addresses.push_back(entry);
  }
  return Json{{"chassisIdSubtype", local.chassisIdSubtype},
              {"chassisId", identifier(local.chassisId, local.chassisIdSubtype == macChassis)},
              {"sysName", octets(local.sysName)},
              {"sysDesc", octets(local.sysDesc)},
              {"sysCapSupported", local.sysCapSupported.value()},
              {"sysCapEnabled", local.sysCapEnabled.value()},
              {"managementAddress", addresses}};
}

template <class Records, class Write>
Json arrayOf(Records const& records, Write const& write) {
  Json json = Json::array();
  for (auto const& record : records) {
    json.push_back(write(record));
  }
  return json;
}

Json neighbor(DesiredNeighbor const& n) {
  Json json{
      {"index", n.index},
      {"msap",
       {{"chassisIdSubtype", static_cast<std::int32_t>(n.msap.chassisIdSubtype)},
        {"chassisId", identifier(n.msap.chassisId.value(), n.msap.chassisIdSubtype == Lldp::ChassisIdSubtype::macAddress)},
        {"portIdSubtype", static_cast<std::int32_t>(n.msap.portIdSubtype)},
        {"portId", identifier(n.msap.portId.value(), n.msap.portIdSubtype == Lldp::PortIdSubtype::macAddress)}}},
      {"portDesc", octets(n.portDesc.value())},
      {"sysName", octets(n.sysName.value())},
      {"sysDesc", octets(n.sysDesc.value())},
      {"sysCapSupported", n.sysCapSupported.value()},
      {"sysCapEnabled", n.sysCapEnabled.value()},
      {"managementAddress", arrayOf(n.managementAddress, managementAddress)},
      {"unknownTlv", recordsJson(n.unknownTlv, Lldp::unknownTlvForm)},
      {"unknownOrgDefTlv", recordsJson(n.unknownOrgDefTlv, Lldp::unknownOrgDefTlvForm)},
      {"portVlanIdTlvReceived", n.portVlanIdTlvReceived},
      {"portVlanId", n.portVlanId.value()},
      {"portAndProtocolVlan", recordsJson(n.portAndProtocolVlan, Lldp::portAndProtocolVlanForm)},
      {"vlanName", recordsJson(n.vlanName, Lldp::vlanNameForm)},
      {"protocolIdentityInfo", recordsJson(n.protocolIdentityInfo, Lldp::protocolIdentityInfoForm)},
      {"linkAggregationTlvReceived", n.linkAggregationTlvReceived},
      {"linkAggregationInfo", recordJson(n.linkAggregationInfo, Lldp::linkAggregationInfoForm)},
      {"macPhyConfigStatusTlvReceived", n.macPhyConfigStatusTlvReceived},
      {"macPhyConfigStatusInfo", recordJson(n.macPhyConfigStatusInfo, Lldp::macPhyConfigStatusInfoForm)},
      {"powerViaMdiTlvReceived", n.powerViaMdiTlvReceived},
      {"powerViaMdiInfo", recordJson(n.powerViaMdiInfo, Lldp::powerViaMdiInfoForm)},
      {"maximumFrameSizeTlvReceived", n.maximumFrameSizeTlvReceived},
      {"maximumFrameSizeInfo", n.maximumFrameSizeInfo},
  };
  if (n.lastChangeTime) {
    json["lastChangeTime"] = *n.lastChangeTime;
  }
  return json;
}

Json port(DesiredPort const& p) {
  return Json{
      {"name", p.name.stringValue().stdString()},
      {"number", p.number.value()},
      {"config",
       {{"adminStatus", static_cast<std::int32_t>(p.config.adminStatus)},
        {"enabledTlvs", p.config.enabledTlvs},
        {"manAddrTxEnable", p.config.manAddrTxEnable},
        {"portVlanTxEnable", p.config.portVlanTxEnable},
        {"dot3EnabledTlvs", p.config.dot3EnabledTlvs}}},
      {"localPort",
       {{"portIdSubtype", static_cast<std::int32_t>(p.localPort.portIdSubtype)},
        {"portId", identifier(p.localPort.portId.value(), p.localPort.portIdSubtype == Lldp::PortIdSubtype::macAddress)},
        {"portDesc", octets(p.localPort.portDesc.value())},
        {"portVlanId", p.localPort.portVlanId.value()},
        {"linkAggStatus", p.localPort.linkAggStatus.value()},
        {"linkAggPortId", p.localPort.linkAggPortId},
        {"maxFrameSize", p.localPort.maxFrameSize}}},
      {"portStatus",
       {{"txFramesTotal", p.portStatus.txFramesTotal},
        {"rxFramesDiscardedTotal", p.portStatus.rxFramesDiscardedTotal},
        {"rxFramesErrors", p.portStatus.rxFramesErrors},
        {"rxFramesTotal", p.portStatus.rxFramesTotal},
        {"rxTLVsDiscardedTotal", p.portStatus.rxTLVsDiscardedTotal},
        {"rxTLVsUnrecognizedTotal", p.portStatus.rxTLVsUnrecognizedTotal},
        {"rxAgeoutsTotal", p.portStatus.rxAgeoutsTotal}}},
      {"neighbors", arrayOf(p.neighbors, neighbor)},
  };
}

}  // namespace

std::string scenarioText(DesiredState const& state) {
  Json status = Json::object();
  auto const put = [&](char const* name, auto const& value) {
    if (value) {
      status[name] = *value;
    }
  };
  put("remTablesLastChangeTime", state.status.remTablesLastChangeTime);
  put("remTablesInserts", state.status.remTablesInserts);
  put("remTablesDeletes", state.status.remTablesDeletes);
  put("remTablesDrops", state.status.remTablesDrops);
  put("remTablesAgeouts", state.status.remTablesAgeouts);
  Json const json{{"description", "Written by lldp-snmp-agent --write-scenario"},
                  {"config",
                   {{"messageTxInterval", state.config.messageTxInterval},
                    {"messageTxHold", state.config.messageTxHold},
                    {"reinitDelay", state.config.reinitDelay},
                    {"txDelay", state.config.txDelay}}},
                  {"status", status},
                  {"localSystem", localSystem(state.localSystem)},
                  {"ports", arrayOf(state.ports, port)}};
  return json.dump(2) + "\n";
}

void writeScenarioFile(std::string const& path, DesiredState const& state) {
  std::string const text = scenarioText(state);
  std::ofstream out(path, std::ios::trunc);
  out << text;
  out.close();
  if (!out) {
    throw std::runtime_error("cannot write the scenario to " + path);
  }
}
