#include "Scenario.h"

#include <arpa/inet.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <ios>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/BitMaps.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/LinkAggregationInfo.h"
#include "LldpAgent/MacPhyConfigStatusInfo.h"
#include "LldpAgent/ManAddrPriority.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/Oui.h"
#include "LldpAgent/PortAndProtocolVlan.h"
#include "LldpAgent/PowerViaMdiInfo.h"
#include "LldpAgent/ProtocolIdentityInfo.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "LldpAgent/UnknownOrgDefTlv.h"
#include "LldpAgent/UnknownTlv.h"
#include "LldpAgent/VlanName.h"
#include "Ondo/IntfId.h"
#include "Snmp/ObjectIdentifier.h"
#include "Zet/RecordForm.h"
#include "Zet/TextForm.h"
#include "Zet/Exception.h"
#include "Zet/String.h"

namespace {

using Json = nlohmann::json;

// Control characters would break the one-line message; names and values in it come from the file.
std::string oneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) {
      c = '?';
    }
  }
  return text;
}

template <class T>
std::string textOf(T const& value) {
  std::ostringstream os;
  os << value;
  return os.str();
}

// Bytes for a message: quoted when they are printable text, else as hex digits.
std::string octetText(Zet::String const& bytes) {
  bool printable = true;
  for (char const c : bytes.view()) {
    printable = printable && c >= 0x20 && c < 0x7f;
  }
  if (printable) {
    return "'" + bytes.stdString() + "'";
  }
  static constexpr char digits[] = "0123456789abcdef";
  std::string hex;
  for (char const c : bytes.view()) {
    hex.push_back(digits[static_cast<unsigned char>(c) >> 4]);
    hex.push_back(digits[static_cast<unsigned char>(c) & 0xf]);
  }
  return hex;
}

// A value of the file and where it stands in it, for messages.
class Node {
 public:
  Node(Json const& value, std::string path, std::string const& source)
      : value_(&value), path_(std::move(path)), source_(&source) {}

  Json const& json() const { return *value_; }
  std::string const& path() const { return path_; }
  [[noreturn]] void fail(std::string const& reason) const { throw ScenarioError(*source_, path_, reason); }

  Node member(std::string const& name, Json const& value) const { return Node(value, path_ + "." + name, *source_); }
  Node element(std::size_t i) const { return Node((*value_)[i], path_ + "[" + std::to_string(i) + "]", *source_); }

 private:
  Json const* value_;
  std::string path_;
  std::string const* source_;
};

// An object whose attributes are taken one by one; finish() refuses what nobody took,
// so that a misspelt name is not silently left at its default.
class Object {
 public:
  explicit Object(Node node) : node_(std::move(node)) {
    if (!node_.json().is_object()) {
      node_.fail("expected an object");
    }
  }

  std::optional<Node> take(std::string const& name) {
    auto const it = node_.json().find(name);
    if (it == node_.json().end()) {
      return std::nullopt;
    }
    taken_.insert(name);
    return node_.member(name, *it);
  }

  Node require(std::string const& name) {
    auto node = take(name);
    if (!node) {
      node_.fail("missing attribute '" + name + "'");
    }
    return *node;
  }

  void finish() const {
    for (auto it = node_.json().begin(); it != node_.json().end(); ++it) {
      if (!taken_.contains(it.key())) {
        node_.fail("unknown attribute '" + it.key() + "'");
      }
    }
  }

 private:
  Node node_;
  std::set<std::string> taken_;
};

// Sets `target` from attribute `name` when the object has it; otherwise the default stays.
template <class T, class Read>
void readInto(Object& object, std::string const& name, T& target, Read const& read) {
  if (auto const node = object.take(name)) {
    target = read(*node);
  }
}

// A value of the file as a message shows it: text quoted, anything else as
// JSON, both cut short.
std::string givenText(Json const& value) {
  constexpr std::size_t shown = 40;
  std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  if (text.size() > shown) {
    std::size_t cut = shown;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xc0) == 0x80) {
      --cut;  // not inside a UTF-8 sequence
    }
    text = text.substr(0, cut) + "...";
  }
  return value.is_string() ? "'" + text + "'" : text;
}

// Every refusal of a value reads "<given> is not <allowed>", followed by the
// message of the type that refused it, if a type did.
[[noreturn]] void refuseGiven(Node const& node, std::string const& given, std::string const& allowed,
                              std::string const& typeMessage) {
  node.fail(given + " is not " + allowed + (typeMessage.empty() ? "" : " (" + typeMessage + ")"));
}

[[noreturn]] void refuse(Node const& node, std::string const& allowed, std::string const& typeMessage = {}) {
  refuseGiven(node, givenText(node.json()), allowed, typeMessage);
}

// What a type with limits of its own holds, for the message that refuses a number.
template <class T>
struct Allowed;

template <>
struct Allowed<Interface::EthPortId> {
  static std::string text() {
    return "a port number from " + std::to_string(Interface::EthPortId::min) + " to " +
           std::to_string(Interface::EthPortId::max);
  }
};

template <>
struct Allowed<Bridging::VlanId> {
  static std::string text() {
    return "a VLAN ID from " + std::to_string(Bridging::VlanId::min) + " to " + std::to_string(Bridging::VlanId::max);
  }
};

template <>
struct Allowed<Bridging::VlanIdOrNone> {
  static std::string text() {
    return "a VLAN ID from " + std::to_string(Bridging::VlanId::min) + " to " +
           std::to_string(Bridging::VlanIdOrNone::max) + ", or " + std::to_string(Bridging::VlanIdOrNone::none) +
           " for none";
  }
};

template <>
struct Allowed<Lldp::UnknownTlv> {
  static std::string text() {
    return "a TLV type from " + std::to_string(Lldp::UnknownTlv::minType) + " to " +
           std::to_string(Lldp::UnknownTlv::maxType);
  }
};

std::vector<Node> readArray(Node const& node) {
  if (!node.json().is_array()) {
    node.fail("expected an array");
  }
  std::vector<Node> elements;
  for (std::size_t i = 0; i < node.json().size(); ++i) {
    elements.push_back(node.element(i));
  }
  return elements;
}

std::string readString(Node const& node) {
  if (!node.json().is_string()) {
    node.fail("expected a string");
  }
  return node.json().get<std::string>();
}

bool readBool(Node const& node) {
  if (!node.json().is_boolean()) {
    node.fail("expected true or false");
  }
  return node.json().get<bool>();
}

// Seconds since the agent's start.
double readSeconds(Node const& node) {
  if (!node.json().is_number()) {
    node.fail("expected a number of seconds");
  }
  return node.json().get<double>();
}

// The integer, or nothing when it is above INT64_MAX, which no attribute allows.
std::optional<std::int64_t> readWholeNumber(Node const& node) {
  auto const& json = node.json();
  if (!json.is_number_integer()) {
    node.fail("expected an integer");
  }
  constexpr auto int64Max = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (json.is_number_unsigned() && json.get<std::uint64_t>() > int64Max) {
    return std::nullopt;
  }
  return json.get<std::int64_t>();
}

std::int64_t readInteger(Node const& node, std::int64_t min, std::int64_t max) {
  auto const value = readWholeNumber(node);
  if (!value || *value < min || *value > max) {
    refuse(node, "an integer from " + std::to_string(min) + " to " + std::to_string(max));
  }
  return *value;
}

template <class Int>
Int readInt(Node const& node) {
  return static_cast<Int>(readInteger(node, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

// Index attributes count from 1.
std::int32_t readIndex(Node const& node) {
  return static_cast<std::int32_t>(readInteger(node, 1, std::numeric_limits<std::int32_t>::max()));
}

// Pairs of hex digits, nothing between them.
std::optional<std::string> bytesFromHex(std::string_view text) {
  if (text.size() % 2 != 0) {
    return std::nullopt;
  }
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    int const high = Zet::hexValue(text[i]);
    int const low = Zet::hexValue(text[i + 1]);
    if (high < 0 || low < 0) {
      return std::nullopt;
    }
    bytes.push_back(static_cast<char>(high * 16 + low));
  }
  return bytes;
}

// "00:1c:73:aa:bb:cc" or "00-1c-73-aa-bb-cc".
std::optional<std::string> bytesFromMac(std::string_view text) {
  constexpr std::size_t macBytes = 6;
  if (text.size() != macBytes * 3 - 1) {
    return std::nullopt;
  }
  std::string hex;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i % 3 == 2) {
      if (text[i] != ':' && text[i] != '-') {
        return std::nullopt;
      }
    } else {
      hex.push_back(text[i]);
    }
  }
  return bytesFromHex(hex);
}

// An octet string: a JSON string is its UTF-8 bytes, {"hex": "..."} any bytes at all.
Zet::String readOctets(Node const& node) {
  if (node.json().is_string()) {
    return Zet::String(node.json().get<std::string>());
  }
  if (!node.json().is_object()) {
    node.fail("expected a string or {\"hex\": \"...\"}");
  }
  Object object(node);
  Node const hexNode = object.require("hex");
  object.finish();
  auto const bytes = bytesFromHex(readString(hexNode));
  if (!bytes) {
    refuse(hexNode, "pairs of hex digits such as \"001c73aabbcc\"");
  }
  return Zet::String(*bytes);
}

// A chassis or port identifier; with a MAC address subtype a string is the address's text.
Zet::String readIdentifier(Node const& node, bool isMacAddress) {
  if (isMacAddress && node.json().is_string()) {
    auto const bytes = bytesFromMac(node.json().get<std::string>());
    if (!bytes) {
      refuse(node, "a MAC address such as \"00:1c:73:aa:bb:cc\"; other bytes need {\"hex\": \"...\"}");
    }
    return Zet::String(*bytes);
  }
  return readOctets(node);
}

// IANA address family numbers whose addresses are written as text.
constexpr std::int32_t ipV4Family = 1;
constexpr std::int32_t ipV6Family = 2;

Lldp::ManAddress readManAddr(Node const& node, std::int32_t family) {
  if ((family == ipV4Family || family == ipV6Family) && node.json().is_string()) {
    bool const v4 = family == ipV4Family;
    std::array<unsigned char, 16> address{};
    if (inet_pton(v4 ? AF_INET : AF_INET6, node.json().get<std::string>().c_str(), address.data()) != 1) {
      refuse(node, v4 ? "an IPv4 address such as \"192.0.2.1\"; other bytes need {\"hex\": \"...\"}"
                      : "an IPv6 address such as \"2001:db8::1\"; other bytes need {\"hex\": \"...\"}");
    }
    return Lldp::ManAddress(Zet::String(reinterpret_cast<char const*>(address.data()), v4 ? 4 : 16));
  }
  return Lldp::ManAddress(readOctets(node));
}

// "00-80-c2" (or with colons), or the number.
Lldp::Oui readOui(Node const& node) {
  constexpr std::uint32_t ouiMax = 0xffffff;
  if (node.json().is_number()) {
    return Lldp::Oui(static_cast<std::uint32_t>(readInteger(node, 0, ouiMax)));
  }
  std::string const text = node.json().is_string() ? node.json().get<std::string>() : std::string();
  std::string hex;
  bool wellFormed = text.size() == 8;
  for (std::size_t i = 0; wellFormed && i < text.size(); ++i) {
    if (i % 3 == 2) {
      wellFormed = text[i] == '-' || text[i] == ':';
    } else {
      hex.push_back(text[i]);
    }
  }
  auto const bytes = wellFormed ? bytesFromHex(hex) : std::nullopt;
  if (!bytes) {
    refuse(node, "an OUI such as \"00-80-c2\" or a number up to " + std::to_string(ouiMax));
  }
  std::uint32_t value = 0;
  for (char const byte : *bytes) {
    value = value << 8 | static_cast<unsigned char>(byte);
  }
  return Lldp::Oui(value);
}

// A MIB name, or the number.
template <Lldp::NamedEnum E>
E readEnum(Node const& node) {
  if (node.json().is_number()) {
    return static_cast<E>(readInt<std::int32_t>(node));
  }
  if (!node.json().is_string()) {
    node.fail("expected a name or a number");
  }
  try {
    return Lldp::enumFromText<E>(node.json().get<std::string>());
  } catch (Zet::ParseException const& e) {
    std::string names;
    for (Lldp::EnumName const& entry : Lldp::EnumNames<E>::table) {
      names += (names.empty() ? "" : ", ") + std::string(entry.name);
    }
    refuse(node, "a number or one of the names " + names, e.what());
  }
}

// The named bits of a BITS object or textual convention, bit n being named bit n.
struct BitNames {
  std::string_view typeName;
  std::vector<std::string_view> names;
};

BitNames const systemCapabilityBits{
    "LldpSystemCapabilitiesMap",
    {"other", "repeater", "bridge", "wlanAccessPoint", "router", "telephone", "docsisCableDevice", "stationOnly"}};
BitNames const enabledTlvBits{"lldpPortConfigTLVsTxEnable", {"portDesc", "sysName", "sysDesc", "sysCap"}};
BitNames const dot3EnabledTlvBits{"lldpXdot3PortConfigTLVsTxEnable",
                                  {"macPhyConfigStatus", "powerViaMDI", "linkAggregation", "maxFrameSize"}};
BitNames const linkAggStatusBits{"LldpLinkAggStatusMap", {"aggCapable", "aggEnabled"}};
// ifMauAutoNegCapAdvertisedBits of the MAU-MIB.
BitNames const autoNegCapBits{"ifMauAutoNegCapAdvertisedBits",
                              {"bOther", "b10baseT", "b10baseTFD", "b100baseT4", "b100baseTX", "b100baseTXFD",
                               "b100baseT2", "b100baseT2FD", "bFdxPause", "bFdxAPause", "bFdxSPause", "bFdxBPause",
                               "b1000baseX", "b1000baseXFD", "b1000baseT", "b1000baseTFD"}};

// A bit set: the number, or a list of bit names.
std::uint32_t readBits(Node const& node, BitNames const& bits) {
  if (node.json().is_number()) {
    return readInt<std::uint32_t>(node);
  }
  if (!node.json().is_array()) {
    node.fail("expected a number or a list of bit names");
  }
  std::uint32_t value = 0;
  for (Node const& element : readArray(node)) {
    std::string const name = readString(element);
    std::size_t bit = 0;
    while (bit < bits.names.size() && bits.names[bit] != name) {
      ++bit;
    }
    if (bit == bits.names.size()) {
      std::string names;
      for (std::string_view const known : bits.names) {
        names += (names.empty() ? "" : ", ") + std::string(known);
      }
      refuse(element, "one of the " + std::string(bits.typeName) + " bit names " + names);
    }
    value |= 1u << bit;
  }
  return value;
}

// `bytes` as a string type with a length limit; `what` names the value in the message.
template <class Bounded>
Bounded boundedOf(Node const& node, Zet::String const& bytes, std::string_view what) {
  try {
    return Bounded(bytes);
  } catch (Zet::RangeException const& e) {
    node.fail(std::to_string(bytes.size()) + " bytes is longer than the " + std::to_string(Bounded::maxBytes) +
              " bytes " + std::string(what) + " may have (" + e.what() + ")");
  }
}

// A reader of an octet string with a length limit.
template <class Bounded>
auto bounded(std::string_view what) {
  return [what](Node const& node) { return boundedOf<Bounded>(node, readOctets(node), what); };
}

// `given` as a type with limits of its own; `Raw` is what the type is built from.
template <class Value, class Raw>
Value rangedOf(Node const& node, std::optional<std::int64_t> given, std::string const& givenText) {
  if (!given || *given < std::numeric_limits<Raw>::min() || *given > std::numeric_limits<Raw>::max()) {
    refuseGiven(node, givenText, Allowed<Value>::text(), "");  // beyond what the type can be asked about
  }
  try {
    return Value(static_cast<Raw>(*given));
  } catch (Zet::RangeException const& e) {
    refuseGiven(node, givenText, Allowed<Value>::text(), e.what());
  }
}

template <class Value, class Raw = std::uint16_t>
Value readRanged(Node const& node) {
  return rangedOf<Value, Raw>(node, readWholeNumber(node), givenText(node.json()));
}

std::string addressText(Lldp::ManagementAddress::Key const& key) {
  return "address (manAddrSubtype " + std::to_string(key.manAddrSubtype) + ", manAddr " +
         (key.manAddr.size() == 0 ? std::string("''") : textOf(key.manAddr)) + ")";
}

std::string priorityText(Lldp::ManAddrPriority const& priority) {
  return "priority (priority " + std::to_string(priority.priority) + ", addressFamily " +
         std::to_string(priority.addressFamily) + ", sequence " + std::to_string(priority.sequence) + ", intfId " +
         octetText(priority.intfId.stringValue()) + ")";
}

std::string msapText(Lldp::RemoteSystemMsap const& msap) {
  return "msap (chassisIdSubtype " + std::to_string(static_cast<std::int32_t>(msap.chassisIdSubtype)) + ", chassisId " +
         octetText(msap.chassisId.value()) + ", portIdSubtype " +
         std::to_string(static_cast<std::int32_t>(msap.portIdSubtype)) + ", portId " + octetText(msap.portId.value()) +
         ")";
}

// Refuses a key seen before in the same collection.
template <class Key>
class UniqueKeys {
 public:
  void add(Key const& key, Node const& at, std::string const& keyText) {
    auto const [it, inserted] = seen_.try_emplace(key, at.path());
    if (!inserted) {
      at.fail("duplicate " + keyText + ", already at " + it->second);
    }
  }

 private:
  std::unordered_map<Key, std::string> seen_;
};

// A record read as its form lists its fields, each with the reader given in
// the same order: the names are the form's, declared once with the record.
template <class R, class... V, class... Read>
R readRecord(Node const& node, Zet::RecordForm<R, V...> const& form, Read const&... read) {
  static_assert(sizeof...(V) == sizeof...(Read), "one reader per field");
  R record;
  Object object(node);
  std::apply(
      [&](auto const&... field) { (readInto(object, std::string(field.name), record.*(field.member), read), ...); },
      form.fields());
  object.finish();
  return record;
}

DesiredConfig readConfig(Node const& node) {
  DesiredConfig config;
  Object object(node);
  readInto(object, "messageTxInterval", config.messageTxInterval, readInt<std::int32_t>);
  readInto(object, "messageTxHold", config.messageTxHold, readInt<std::int32_t>);
  readInto(object, "reinitDelay", config.reinitDelay, readInt<std::int32_t>);
  readInto(object, "txDelay", config.txDelay, readInt<std::int32_t>);
  object.finish();
  return config;
}

DesiredStatus readStatus(Node const& node) {
  DesiredStatus status;
  Object object(node);
  readInto(object, "remTablesLastChangeTime", status.remTablesLastChangeTime, readSeconds);
  readInto(object, "remTablesInserts", status.remTablesInserts, readInt<std::uint32_t>);
  readInto(object, "remTablesDeletes", status.remTablesDeletes, readInt<std::uint32_t>);
  readInto(object, "remTablesDrops", status.remTablesDrops, readInt<std::uint32_t>);
  readInto(object, "remTablesAgeouts", status.remTablesAgeouts, readInt<std::uint32_t>);
  object.finish();
  return status;
}

Lldp::SystemCapabilitiesMap readCapabilities(Node const& node) {
  return Lldp::SystemCapabilitiesMap(readBits(node, systemCapabilityBits));
}

// A number gives the first field alone.
Lldp::ManAddrPriority readPriority(Node const& node) {
  Lldp::ManAddrPriority priority;
  if (node.json().is_number()) {
    priority.priority = readInt<std::uint32_t>(node);
    return priority;
  }
  return readRecord(node, Lldp::manAddrPriorityForm, readInt<std::uint32_t>, readInt<std::int32_t>,
                    readInt<std::uint32_t>, [](Node const& n) { return Ondo::IntfId(readString(n)); });
}

// An address and, for the local system only, its priority.
struct AddressEntry {
  Lldp::ManagementAddress address;
  std::optional<Lldp::ManAddrPriority> priority;
};

AddressEntry readManagementAddress(Node const& node, bool local) {
  AddressEntry entry;
  Lldp::ManagementAddress& address = entry.address;
  Object object(node);
  // The subtype first: it decides how the address is written.
  readInto(object, "manAddrSubtype", address.manAddrSubtype, readInt<std::int32_t>);
  readInto(object, "manAddr", address.manAddr, [&](Node const& n) { return readManAddr(n, address.manAddrSubtype); });
  readInto(object, "ifSubtype", address.ifSubtype, readEnum<Lldp::ManAddrIfSubtype>);
  readInto(object, "ifId", address.ifId, readInt<std::int32_t>);
  readInto(object, "oid", address.oid, [](Node const& n) {
    std::string const text = readString(n);
    try {
      return Snmp::ObjectIdentifier::fromDotted(text);
    } catch (Zet::ParseException const& e) {
      refuse(n, "a dotted object identifier such as \"1.3.6.1.2.1.2.2.1.1.7\"", e.what());
    }
  });
  if (local) {
    readInto(object, "priority", entry.priority, readPriority);
  }
  object.finish();
  return entry;
}

std::vector<Lldp::ManagementAddress> readRemoteAddresses(Node const& node) {
  std::vector<Lldp::ManagementAddress> addresses;
  UniqueKeys<Lldp::ManagementAddress::Key> keys;
  for (Node const& element : readArray(node)) {
    addresses.push_back(readManagementAddress(element, false).address);
    keys.add(addresses.back().key(), element, addressText(addresses.back().key()));
  }
  return addresses;
}

DesiredLocalSystem readLocalSystem(Node const& node) {
  DesiredLocalSystem local;
  Object object(node);
  readInto(object, "chassisIdSubtype", local.chassisIdSubtype,
           [](Node const& n) { return static_cast<std::int32_t>(readEnum<Lldp::ChassisIdSubtype>(n)); });
  bool const macChassis = local.chassisIdSubtype == static_cast<std::int32_t>(Lldp::ChassisIdSubtype::macAddress);
  readInto(object, "chassisId", local.chassisId, [&](Node const& n) { return readIdentifier(n, macChassis); });
  readInto(object, "sysName", local.sysName, readOctets);
  readInto(object, "sysDesc", local.sysDesc, readOctets);
  readInto(object, "sysCapSupported", local.sysCapSupported, readCapabilities);
  readInto(object, "sysCapEnabled", local.sysCapEnabled, readCapabilities);
  if (auto const addresses = object.take("managementAddress")) {
    UniqueKeys<Lldp::ManagementAddress::Key> keys;
    UniqueKeys<Lldp::ManAddrPriority> priorities;
    for (Node const& element : readArray(*addresses)) {
      AddressEntry const entry = readManagementAddress(element, true);
      auto const key = entry.address.key();
      keys.add(key, element, addressText(key));
      local.managementAddress.push_back(entry.address);
      if (entry.priority) {
        priorities.add(*entry.priority, element, priorityText(*entry.priority));
        local.managementAddressPrio.push_back({*entry.priority, key});
      }
    }
  }
  object.finish();
  return local;
}

DesiredPortConfig readPortConfig(Node const& node) {
  DesiredPortConfig config;
  Object object(node);
  readInto(object, "adminStatus", config.adminStatus, readEnum<Lldp::AdminStatus>);
  // The LLDP agent holds these as plain 32-bit words: a number goes in as it
  // is, bits the MIB does not know included, and a GET of the column then
  // fails as the word is served; a list names only the known bits.
  readInto(object, "enabledTlvs", config.enabledTlvs, [](Node const& n) { return readBits(n, enabledTlvBits); });
  readInto(object, "manAddrTxEnable", config.manAddrTxEnable, readBool);
  readInto(object, "portVlanTxEnable", config.portVlanTxEnable, readBool);
  readInto(object, "dot3EnabledTlvs", config.dot3EnabledTlvs,
           [](Node const& n) { return readBits(n, dot3EnabledTlvBits); });
  object.finish();
  return config;
}

Lldp::LinkAggStatusMap readLinkAggStatus(Node const& node) {
  return Lldp::LinkAggStatusMap(readBits(node, linkAggStatusBits));
}

DesiredLocalPort readLocalPort(Node const& node) {
  DesiredLocalPort port;
  Object object(node);
  readInto(object, "portIdSubtype", port.portIdSubtype, readEnum<Lldp::PortIdSubtype>);
  bool const macPort = port.portIdSubtype == Lldp::PortIdSubtype::macAddress;
  readInto(object, "portId", port.portId,
           [&](Node const& n) { return boundedOf<Lldp::PortId>(n, readIdentifier(n, macPort), "a port ID"); });
  readInto(object, "portDesc", port.portDesc, bounded<Lldp::BoundedString255>("a port description"));
  readInto(object, "portVlanId", port.portVlanId, readRanged<Bridging::VlanIdOrNone>);
  readInto(object, "linkAggStatus", port.linkAggStatus, readLinkAggStatus);
  readInto(object, "linkAggPortId", port.linkAggPortId, readInt<std::int32_t>);
  readInto(object, "maxFrameSize", port.maxFrameSize, readInt<std::uint16_t>);
  object.finish();
  return port;
}

DesiredPortStatus readPortStatus(Node const& node) {
  DesiredPortStatus status;
  Object object(node);
  readInto(object, "txFramesTotal", status.txFramesTotal, readInt<std::uint32_t>);
  readInto(object, "rxFramesDiscardedTotal", status.rxFramesDiscardedTotal, readInt<std::uint32_t>);
  readInto(object, "rxFramesErrors", status.rxFramesErrors, readInt<std::uint32_t>);
  readInto(object, "rxFramesTotal", status.rxFramesTotal, readInt<std::uint32_t>);
  readInto(object, "rxTLVsDiscardedTotal", status.rxTLVsDiscardedTotal, readInt<std::uint32_t>);
  readInto(object, "rxTLVsUnrecognizedTotal", status.rxTLVsUnrecognizedTotal, readInt<std::uint32_t>);
  readInto(object, "rxAgeoutsTotal", status.rxAgeoutsTotal, readInt<std::uint32_t>);
  object.finish();
  return status;
}

Lldp::RemoteSystemMsap readMsap(Node const& node) {
  Lldp::RemoteSystemMsap msap;
  Object object(node);
  readInto(object, "chassisIdSubtype", msap.chassisIdSubtype, readEnum<Lldp::ChassisIdSubtype>);
  bool const macChassis = msap.chassisIdSubtype == Lldp::ChassisIdSubtype::macAddress;
  readInto(object, "chassisId", msap.chassisId, [&](Node const& n) {
    return boundedOf<Lldp::ChassisId>(n, readIdentifier(n, macChassis), "a chassis ID");
  });
  readInto(object, "portIdSubtype", msap.portIdSubtype, readEnum<Lldp::PortIdSubtype>);
  bool const macPort = msap.portIdSubtype == Lldp::PortIdSubtype::macAddress;
  readInto(object, "portId", msap.portId,
           [&](Node const& n) { return boundedOf<Lldp::PortId>(n, readIdentifier(n, macPort), "a port ID"); });
  object.finish();
  return msap;
}

// Reads every element of a collection and refuses a repeated key; `describe` names a key in the message.
template <class Record, class Read, class KeyOf, class Describe>
std::vector<Record> readCollection(Node const& node, Read const& read, KeyOf const& keyOf, Describe const& describe) {
  std::vector<Record> records;
  UniqueKeys<std::decay_t<decltype(keyOf(std::declval<Record const&>()))>> keys;
  for (Node const& element : readArray(node)) {
    records.push_back(read(element));
    keys.add(keyOf(records.back()), element, describe(records.back()));
  }
  return records;
}

Lldp::UnknownTlv readUnknownTlv(Node const& node) {
  return readRecord(
      node, Lldp::unknownTlvForm, [](Node const& n) { return readRanged<Lldp::UnknownTlv, std::uint32_t>(n).type; },
      bounded<Lldp::BoundedString511>("the information of a TLV"));
}

Lldp::UnknownOrgDefTlv readUnknownOrgDefTlv(Node const& node) {
  // The subtype is one octet of the TLV.
  constexpr std::int64_t subtypeMax = 255;
  return readRecord(
      node, Lldp::unknownOrgDefTlvForm, readOui,
      [](Node const& n) { return static_cast<std::uint32_t>(readInteger(n, 0, subtypeMax)); }, readIndex,
      bounded<Lldp::BoundedString507>("the information of an organisationally specific TLV"));
}

Lldp::PortAndProtocolVlan readPortAndProtocolVlan(Node const& node) {
  return readRecord(node, Lldp::portAndProtocolVlanForm, readRanged<Bridging::VlanIdOrNone>, readBool, readBool);
}

Lldp::VlanName readVlanName(Node const& node) {
  return readRecord(node, Lldp::vlanNameForm, readRanged<Bridging::VlanId>,
                    bounded<Lldp::BoundedString32>("a VLAN name"));
}

Lldp::ProtocolIdentityInfo readProtocolIdentity(Node const& node) {
  return readRecord(node, Lldp::protocolIdentityInfoForm, readIndex,
                    bounded<Lldp::BoundedString255>("a protocol identity"));
}

Lldp::LinkAggregationInfo readLinkAggregationInfo(Node const& node) {
  return readRecord(node, Lldp::linkAggregationInfoForm, readLinkAggStatus, readInt<std::int32_t>);
}

Lldp::MacPhyConfigStatusInfo readMacPhyConfigStatusInfo(Node const& node) {
  return readRecord(node, Lldp::macPhyConfigStatusInfoForm, readBool, readBool,
                    [](Node const& n) { return readBits(n, autoNegCapBits); }, readInt<std::uint32_t>);
}

Lldp::PowerViaMdiInfo readPowerViaMdiInfo(Node const& node) {
  return readRecord(node, Lldp::powerViaMdiInfoForm, readEnum<Lldp::PowerPortClass>, readBool, readBool, readBool,
                    readInt<std::uint32_t>, readInt<std::uint32_t>);
}

// A DisplayString of SNMPv2-TC: printable text, at most 255 bytes.
std::string readDisplayString(Node const& node) {
  constexpr std::size_t maxBytes = 255;
  std::string const text = readString(node);
  bool const printable = std::ranges::none_of(
      text, [](char const c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
  if (text.size() > maxBytes || !printable) {
    refuse(node, "a text of at most 255 bytes without control characters");
  }
  return text;
}

// An enumeration of a MIB module that the LLDP agent's types do not know.
struct NamedNumbers {
  std::string_view typeName;
  std::vector<std::pair<std::string_view, std::int32_t>> names;
};

// The IANAifType values a port is likely to be; any other goes as a number.
NamedNumbers const ifTypeNames{"IANAifType",
                               {{"other", 1},
                                {"ethernetCsmacd", 6},
                                {"softwareLoopback", 24},
                                {"propVirtual", 53},
                                {"ieee80211", 71},
                                {"tunnel", 131},
                                {"l2vlan", 135},
                                {"ieee8023adLag", 161},
                                {"bridge", 209}}};
NamedNumbers const ifAdminStatusNames{"ifAdminStatus", {{"up", 1}, {"down", 2}, {"testing", 3}}};
NamedNumbers const ifOperStatusNames{"ifOperStatus",
                                     {{"up", 1},
                                      {"down", 2},
                                      {"testing", 3},
                                      {"unknown", 4},
                                      {"dormant", 5},
                                      {"notPresent", 6},
                                      {"lowerLayerDown", 7}}};

std::int32_t readNamedNumber(Node const& node, NamedNumbers const& named) {
  if (node.json().is_number()) {
    return readInt<std::int32_t>(node);
  }
  std::string const name = readString(node);
  std::string names;
  for (auto const& [known, value] : named.names) {
    if (known == name) {
      return value;
    }
    names += (names.empty() ? "" : ", ") + std::string(known);
  }
  refuse(node, "a number or one of the " + std::string(named.typeName) + " names " + names);
}

DesiredSystem readSystem(Node const& node) {
  DesiredSystem system;
  Object object(node);
  readInto(object, "sysDescr", system.sysDescr, readDisplayString);
  readInto(object, "sysObjectID", system.sysObjectID, [](Node const& n) {
    std::string const text = readString(n);
    try {
      auto oid = Snmp::ObjectIdentifier::fromDotted(text);
      if (oid.size() >= 2) {
        return oid;
      }
    } catch (Zet::ParseException const&) {
    }
    refuse(n, "a dotted object identifier such as \"1.3.6.1.4.1.8072.3.2.10\"");
  });
  readInto(object, "sysContact", system.sysContact, readDisplayString);
  readInto(object, "sysName", system.sysName, readDisplayString);
  readInto(object, "sysLocation", system.sysLocation, readDisplayString);
  readInto(object, "sysServices", system.sysServices,
           [](Node const& n) { return static_cast<std::int32_t>(readInteger(n, 0, 127)); });
  object.finish();
  return system;
}

DesiredInterface readInterface(Node const& node) {
  DesiredInterface interface;
  Object object(node);
  readInto(object, "ifDescr", interface.ifDescr, readDisplayString);
  readInto(object, "ifType", interface.ifType, [](Node const& n) { return readNamedNumber(n, ifTypeNames); });
  readInto(object, "ifMtu", interface.ifMtu, readInt<std::int32_t>);
  readInto(object, "speed", interface.speed, [](Node const& n) {
    return static_cast<std::uint64_t>(readInteger(n, 0, std::numeric_limits<std::int64_t>::max()));
  });
  readInto(object, "physAddress", interface.physAddress, [](Node const& n) { return readIdentifier(n, true); });
  readInto(object, "ifAlias", interface.ifAlias, readDisplayString);
  readInto(object, "adminStatus", interface.adminStatus,
           [](Node const& n) { return readNamedNumber(n, ifAdminStatusNames); });
  readInto(object, "operStatus", interface.operStatus,
           [](Node const& n) { return readNamedNumber(n, ifOperStatusNames); });
  object.finish();
  return interface;
}

DesiredNeighbor readNeighbor(Node const& node, std::size_t position) {
  DesiredNeighbor neighbor;
  neighbor.index = static_cast<std::int32_t>(position + 1);
  Object object(node);
  readInto(object, "index", neighbor.index, readIndex);
  readInto(object, "msap", neighbor.msap, readMsap);
  readInto(object, "portDesc", neighbor.portDesc, bounded<Lldp::BoundedString255>("a port description"));
  readInto(object, "sysName", neighbor.sysName, bounded<Lldp::BoundedString255>("a system name"));
  readInto(object, "sysDesc", neighbor.sysDesc, bounded<Lldp::BoundedString255>("a system description"));
  readInto(object, "sysCapSupported", neighbor.sysCapSupported, readCapabilities);
  readInto(object, "sysCapEnabled", neighbor.sysCapEnabled, readCapabilities);
  readInto(object, "managementAddress", neighbor.managementAddress, readRemoteAddresses);
  readInto(object, "unknownTlv", neighbor.unknownTlv, [](Node const& n) {
    return readCollection<Lldp::UnknownTlv>(
        n, readUnknownTlv, [](Lldp::UnknownTlv const& t) { return t.type; },
        [](Lldp::UnknownTlv const& t) { return "type " + std::to_string(t.type); });
  });
  readInto(object, "unknownOrgDefTlv", neighbor.unknownOrgDefTlv, [](Node const& n) {
    return readCollection<Lldp::UnknownOrgDefTlv>(
        n, readUnknownOrgDefTlv, [](Lldp::UnknownOrgDefTlv const& t) { return t.key(); },
        [](Lldp::UnknownOrgDefTlv const& t) {
          return "key (oui " + textOf(t.oui) + ", subtype " + std::to_string(t.subtype) + ", index " +
                 std::to_string(t.index) + ")";
        });
  });
  readInto(object, "portVlanIdTlvReceived", neighbor.portVlanIdTlvReceived, readBool);
  readInto(object, "portVlanId", neighbor.portVlanId, readRanged<Bridging::VlanIdOrNone>);
  readInto(object, "portAndProtocolVlan", neighbor.portAndProtocolVlan, [](Node const& n) {
    return readCollection<Lldp::PortAndProtocolVlan>(
        n, readPortAndProtocolVlan, [](Lldp::PortAndProtocolVlan const& v) { return v.portAndProtocolVlanId; },
        [](Lldp::PortAndProtocolVlan const& v) {
          return "portAndProtocolVlanId " + std::to_string(v.portAndProtocolVlanId.value());
        });
  });
  readInto(object, "vlanName", neighbor.vlanName, [](Node const& n) {
    return readCollection<Lldp::VlanName>(
        n, readVlanName, [](Lldp::VlanName const& v) { return v.vlanId; },
        [](Lldp::VlanName const& v) { return "vlanId " + std::to_string(v.vlanId.value()); });
  });
  readInto(object, "protocolIdentityInfo", neighbor.protocolIdentityInfo, [](Node const& n) {
    return readCollection<Lldp::ProtocolIdentityInfo>(
        n, readProtocolIdentity, [](Lldp::ProtocolIdentityInfo const& p) { return p.index; },
        [](Lldp::ProtocolIdentityInfo const& p) { return "index " + std::to_string(p.index); });
  });
  readInto(object, "linkAggregationTlvReceived", neighbor.linkAggregationTlvReceived, readBool);
  readInto(object, "linkAggregationInfo", neighbor.linkAggregationInfo, readLinkAggregationInfo);
  readInto(object, "macPhyConfigStatusTlvReceived", neighbor.macPhyConfigStatusTlvReceived, readBool);
  readInto(object, "macPhyConfigStatusInfo", neighbor.macPhyConfigStatusInfo, readMacPhyConfigStatusInfo);
  readInto(object, "powerViaMdiTlvReceived", neighbor.powerViaMdiTlvReceived, readBool);
  readInto(object, "powerViaMdiInfo", neighbor.powerViaMdiInfo, readPowerViaMdiInfo);
  readInto(object, "maximumFrameSizeTlvReceived", neighbor.maximumFrameSizeTlvReceived, readBool);
  readInto(object, "maximumFrameSizeInfo", neighbor.maximumFrameSizeInfo, readInt<std::uint16_t>);
  readInto(object, "lastChangeTime", neighbor.lastChangeTime, readSeconds);
  object.finish();
  return neighbor;
}

DesiredPort readPort(Node const& node, std::size_t position) {
  DesiredPort port;
  Object object(node);
  Node const nameNode = object.require("name");
  std::string const name = readString(nameNode);
  if (name.empty()) {
    nameNode.fail("expected a non-empty name");
  }
  port.name = Ondo::IntfId(Zet::String(name));
  // Numbered in file order unless told otherwise: Ethernet1 is port 1 in the usual layout.
  if (auto const number = object.take("number")) {
    port.number = readRanged<Interface::EthPortId>(*number);
  } else {
    auto const byPosition = static_cast<std::int64_t>(position + 1);
    port.number = rangedOf<Interface::EthPortId, std::uint16_t>(
        node, byPosition, "its position, " + std::to_string(byPosition) + ",");
  }
  readInto(object, "config", port.config, readPortConfig);
  readInto(object, "localPort", port.localPort, readLocalPort);
  readInto(object, "portStatus", port.portStatus, readPortStatus);
  readInto(object, "interface", port.interface, readInterface);
  if (auto const neighbors = object.take("neighbors")) {
    UniqueKeys<std::int32_t> indexes;
    UniqueKeys<Lldp::RemoteSystemMsap> msaps;
    auto const elements = readArray(*neighbors);
    for (std::size_t i = 0; i < elements.size(); ++i) {
      port.neighbors.push_back(readNeighbor(elements[i], i));
      DesiredNeighbor const& neighbor = port.neighbors.back();
      indexes.add(neighbor.index, elements[i], "neighbor index " + std::to_string(neighbor.index));
      msaps.add(neighbor.msap, elements[i], msapText(neighbor.msap));
    }
  }
  object.finish();
  return port;
}

std::vector<DesiredPort> readPorts(Node const& node) {
  std::vector<DesiredPort> ports;
  UniqueKeys<Ondo::IntfId> names;
  UniqueKeys<Interface::EthPortId> numbers;
  auto const elements = readArray(node);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    ports.push_back(readPort(elements[i], i));
    DesiredPort const& port = ports.back();
    names.add(port.name, elements[i], "port name '" + port.name.stringValue().stdString() + "'");
    numbers.add(port.number, elements[i], "port number " + std::to_string(port.number.value()));
  }
  return ports;
}

DesiredState readState(Node const& node) {
  DesiredState state;
  Object object(node);
  // Free text for the reader of the file; nothing is served from it.
  if (auto const description = object.take("description")) {
    readString(*description);
  }
  // Where an editor finds examples/scenario.schema.json; nothing is served from it either.
  if (auto const schema = object.take("$schema")) {
    readString(*schema);
  }
  readInto(object, "config", state.config, readConfig);
  readInto(object, "status", state.status, readStatus);
  readInto(object, "localSystem", state.localSystem, readLocalSystem);
  readInto(object, "ports", state.ports, readPorts);
  readInto(object, "system", state.system, readSystem);
  object.finish();
  return state;
}

// Builds the document as nlohmann's own parser does, and stops at what that
// parser lets through or throws without a place: an attribute given twice in
// one object (nlohmann keeps the last), a number beyond a double.
class StrictReader {
 public:
  explicit StrictReader(Json& document) : builder_(document) {}

  // Where and why the text was refused, once a call answered false.
  std::string const& path() const { return path_; }
  std::string const& reason() const { return reason_; }

  bool null() {
    valueStarts();
    return builder_.null();
  }
  bool boolean(bool b) {
    valueStarts();
    return builder_.boolean(b);
  }
  bool number_integer(Json::number_integer_t n) {
    valueStarts();
    return builder_.number_integer(n);
  }
  bool number_unsigned(Json::number_unsigned_t n) {
    valueStarts();
    return builder_.number_unsigned(n);
  }
  bool number_float(Json::number_float_t n, Json::string_t const& text) {
    valueStarts();
    return builder_.number_float(n, text);
  }
  bool string(Json::string_t& text) {
    valueStarts();
    return builder_.string(text);
  }
  bool binary(Json::binary_t& bytes) {
    valueStarts();
    return builder_.binary(bytes);
  }
  bool start_object(std::size_t size) {
    valueStarts();
    open_.emplace_back();
    return builder_.start_object(size);
  }
  bool key(Json::string_t& name) {
    if (!open_.back().keys.insert(name).second) {
      return refuse(pathHere(), "duplicate attribute '" + name + "'");
    }
    open_.back().key = name;
    return builder_.key(name);
  }
  bool end_object() {
    open_.pop_back();
    return builder_.end_object();
  }
  bool start_array(std::size_t size) {
    valueStarts();
    open_.emplace_back().array = true;
    return builder_.start_array(size);
  }
  bool end_array() {
    open_.pop_back();
    return builder_.end_array();
  }
  template <class Exception>
  bool parse_error(std::size_t position, std::string const& /*token*/, Exception const& e) {
    return refuse("$", std::string(e.what()) + " (byte " + std::to_string(position) + ")");
  }

 private:
  // An object or array being read.
  struct Open {
    bool array = false;
    std::size_t elements = 0;
    std::string key;  // of the member being read
    std::set<std::string> keys;
  };

  // Counts the elements of an array, for the path.
  void valueStarts() {
    if (!open_.empty() && open_.back().array) {
      ++open_.back().elements;
    }
  }

  // The path of the innermost open object or array.
  std::string pathHere() const {
    std::string path = "$";
    for (std::size_t i = 0; i + 1 < open_.size(); ++i) {
      path += open_[i].array ? "[" + std::to_string(open_[i].elements - 1) + "]" : "." + open_[i].key;
    }
    return path;
  }

  bool refuse(std::string path, std::string reason) {
    path_ = std::move(path);
    reason_ = std::move(reason);
    return false;
  }

  nlohmann::detail::json_sax_dom_parser<Json> builder_;
  std::vector<Open> open_;
  std::string path_;
  std::string reason_;
};

}  // namespace

ScenarioError::ScenarioError(std::string source, std::string path, std::string reason)
    : std::runtime_error(oneLine(source + ": " + path + ": " + reason)),
      source_(std::move(source)),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

DesiredState parseScenario(std::string_view json, std::string const& sourceName) {
  Json document;
  StrictReader reader(document);
  if (!Json::sax_parse(json, &reader)) {
    throw ScenarioError(sourceName, reader.path(), reader.reason());
  }
  return readState(Node(document, "$", sourceName));
}

DesiredState loadScenarioFile(std::string const& path) {
  auto const unreadable = [&] {
    return ScenarioError(path, "$", std::string("cannot read the file: ") + std::strerror(errno));
  };
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw unreadable();
  }
  std::string text;
  try {
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  } catch (std::ios_base::failure const&) {
    // A read error (a directory, say) escapes the stream buffer as an exception.
    throw unreadable();
  }
  if (file.bad()) {
    throw unreadable();
  }
  return parseScenario(text, path);
}

DesiredState demoScenario() { return parseScenario(demoScenarioText(), "demo-switch.json"); }
