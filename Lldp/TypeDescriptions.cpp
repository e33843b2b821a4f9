// The descriptions of the mirror's 23 types: for each, its attributes in order,
// as data for the one mechanism of DescribeType.h.
//
// To describe a new attribute: add its line to its type's list, at its place
// (the place gives the id). To describe a new type: give the class a
// `_zetType`, define it here, and register it in typeDescriptionsRegistrar.

#include "DescribeType.h"
#include "LldpSm.h"
#include "MirrorKeys.h"
#include "MirrorRows.h"
#include "PortStatusSm.h"
#include "RemoteRecords.h"
#include "RemoteSystemSm.h"
#include "Root.h"

namespace Lldp::Snmp {

using namespace Describe;
using EthPortId = Interface::EthPortId;
using ManAddrKey = Lldp::ManagementAddress::Key;
using NeighbourPtr = Zet::Ptr<Lldp::RemoteSystem const>;

// --- the mechanism's out-of-line part ------------------------------------

Zet::ZetType Describe::finish(Zet::ZetType type, Zet::ZetType const* self, std::uint32_t firstId,
                              std::vector<char const*> const& ctorParams) {
  std::uint32_t id = firstId;
  for (auto& a : type.attributes) {
    a.owner = self;
    a.id = id++;
  }
  for (char const* name : ctorParams) {
    auto const it = std::find_if(type.attributes.begin(), type.attributes.end(),
                                 [&](ZetAttr const& a) { return a.name.view() == name; });
    type.ctorParams.push_back({name, it != type.attributes.end() ? it->valueType : Zet::String("Zet::Name")});
  }
  return type;
}

// --- the seven keys --------------------------------------------------------

Zet::ZetType const RemoteSystemKey::_zetType = valueType<RemoteSystemKey, EthPortId, std::int32_t>(
    "Lldp::Snmp::RemoteSystem::Key",
    {ctorParam<&RemoteSystemKey::ethPortId>("ethPortId"), ctorParam<&RemoteSystemKey::index>("index")},
    {"ethPortId", "index"});

Zet::ZetType const RemoteManagementAddressKey::_zetType =
    valueType<RemoteManagementAddressKey, EthPortId, std::int32_t, ManAddrKey>(
        "Lldp::Snmp::RemoteManagementAddress::Key",
        {ctorParam<&RemoteManagementAddressKey::ethPortId>("ethPortId"),
         ctorParam<&RemoteManagementAddressKey::index>("index"),
         ctorParam<&RemoteManagementAddressKey::manAddrKey>("manAddrKey")},
        {"ethPortId", "index", "manAddrKey"});

Zet::ZetType const RemoteUnknownTlvKey::_zetType =
    valueType<RemoteUnknownTlvKey, EthPortId, std::int32_t, std::uint32_t>(
        "Lldp::Snmp::RemoteUnknownTlv::Key",
        {ctorParam<&RemoteUnknownTlvKey::ethPortId>("ethPortId"), ctorParam<&RemoteUnknownTlvKey::index>("index"),
         ctorParam<&RemoteUnknownTlvKey::type>("type")},
        {"ethPortId", "index", "type"});

Zet::ZetType const RemoteUnknownOrgDefTlvKey::_zetType =
    valueType<RemoteUnknownOrgDefTlvKey, EthPortId, std::int32_t, Lldp::Oui, std::uint32_t, std::int32_t>(
        "Lldp::Snmp::RemoteUnknownOrgDefTlv::Key",
        {ctorParam<&RemoteUnknownOrgDefTlvKey::ethPortId>("ethPortId"),
         ctorParam<&RemoteUnknownOrgDefTlvKey::index>("index"), ctorParam<&RemoteUnknownOrgDefTlvKey::oui>("oui"),
         ctorParam<&RemoteUnknownOrgDefTlvKey::subtype>("subtype"),
         ctorParam<&RemoteUnknownOrgDefTlvKey::unknownOrgDefTlvIndex>("unknownOrgDefTlvIndex")},
        {"ethPortId", "index", "oui", "subtype", "unknownOrgDefTlvIndex"});

Zet::ZetType const RemotePortAndProtocolVlanKey::_zetType =
    valueType<RemotePortAndProtocolVlanKey, EthPortId, std::int32_t, Bridging::VlanIdOrNone>(
        "Lldp::Snmp::RemotePortAndProtocolVlan::Key",
        {ctorParam<&RemotePortAndProtocolVlanKey::ethPortId>("ethPortId"),
         ctorParam<&RemotePortAndProtocolVlanKey::index>("index"),
         ctorParam<&RemotePortAndProtocolVlanKey::portAndProtocolVlanId>("portAndProtocolVlanId")},
        {"ethPortId", "index", "portAndProtocolVlanId"});

Zet::ZetType const RemoteVlanNameKey::_zetType =
    valueType<RemoteVlanNameKey, EthPortId, std::int32_t, Bridging::VlanId>(
        "Lldp::Snmp::RemoteVlanName::Key",
        {ctorParam<&RemoteVlanNameKey::ethPortId>("ethPortId"), ctorParam<&RemoteVlanNameKey::index>("index"),
         ctorParam<&RemoteVlanNameKey::vlanId>("vlanId")},
        {"ethPortId", "index", "vlanId"});

Zet::ZetType const RemoteProtocolIdentityInfoKey::_zetType =
    valueType<RemoteProtocolIdentityInfoKey, EthPortId, std::int32_t, std::int32_t>(
        "Lldp::Snmp::RemoteProtocolIdentityInfo::Key",
        {ctorParam<&RemoteProtocolIdentityInfoKey::ethPortId>("ethPortId"),
         ctorParam<&RemoteProtocolIdentityInfoKey::index>("index"),
         ctorParam<&RemoteProtocolIdentityInfoKey::protocolIndex>("protocolIndex")},
        {"ethPortId", "index", "protocolIndex"});

// --- the six value records ---------------------------------------------------

namespace {

// What every record has: its constructor parameters, then what it derives from them.
template <class R>
std::vector<ZetAttr> recordAttributes(std::vector<ZetAttr> own) {
  std::vector<ZetAttr> attrs{ctorParam<&R::key>("key"), ctorParam<&R::ptr>("ptr"),
                             ctorParam<&R::rawValue>("rawValue"), derived<&R::timeMark>("timeMark"),
                             derived<&R::localPortNum>("localPortNum"), derived<&R::index>("index")};
  attrs.insert(attrs.end(), own.begin(), own.end());
  return attrs;
}

template <class R>
Zet::ZetType recordType(char const* name, std::vector<ZetAttr> own) {
  return valueType<R, typename R::Key, NeighbourPtr, std::remove_cvref_t<decltype(R::rawValue)>>(
      name, recordAttributes<R>(std::move(own)), {"key", "ptr", "rawValue"});
}

}  // namespace

Zet::ZetType const RemoteManagementAddress::_zetType = recordType<RemoteManagementAddress>(
    "Lldp::Snmp::RemoteManagementAddress",
    {derived<&RemoteManagementAddress::manAddrSubtype>("manAddrSubtype"),
     derived<&RemoteManagementAddress::manAddr>("manAddr"), derived<&RemoteManagementAddress::ifSubtype>("ifSubtype"),
     derived<&RemoteManagementAddress::ifId>("ifId"), derived<&RemoteManagementAddress::oid>("oid")});

Zet::ZetType const RemoteUnknownTlv::_zetType = recordType<RemoteUnknownTlv>(
    "Lldp::Snmp::RemoteUnknownTlv",
    {derived<&RemoteUnknownTlv::type>("type"), derived<&RemoteUnknownTlv::info>("info")});

Zet::ZetType const RemoteUnknownOrgDefTlv::_zetType = recordType<RemoteUnknownOrgDefTlv>(
    "Lldp::Snmp::RemoteUnknownOrgDefTlv",
    {derived<&RemoteUnknownOrgDefTlv::oui>("oui"), derived<&RemoteUnknownOrgDefTlv::subtype>("subtype"),
     derived<&RemoteUnknownOrgDefTlv::unknownOrgDefTlvIndex>("unknownOrgDefTlvIndex"),
     derived<&RemoteUnknownOrgDefTlv::orgDefInfo>("orgDefInfo")});

Zet::ZetType const RemotePortAndProtocolVlan::_zetType = recordType<RemotePortAndProtocolVlan>(
    "Lldp::Snmp::RemotePortAndProtocolVlan",
    {derived<&RemotePortAndProtocolVlan::portAndProtocolVlanId>("portAndProtocolVlanId"),
     derived<&RemotePortAndProtocolVlan::supported>("supported"),
     derived<&RemotePortAndProtocolVlan::enabled>("enabled")});

Zet::ZetType const RemoteVlanName::_zetType = recordType<RemoteVlanName>(
    "Lldp::Snmp::RemoteVlanName",
    {derived<&RemoteVlanName::vlanId>("vlanId"), derived<&RemoteVlanName::vlanName>("vlanName")});

Zet::ZetType const RemoteProtocolIdentityInfo::_zetType = recordType<RemoteProtocolIdentityInfo>(
    "Lldp::Snmp::RemoteProtocolIdentityInfo",
    {derived<&RemoteProtocolIdentityInfo::protocolIndex>("protocolIndex"),
     derived<&RemoteProtocolIdentityInfo::protocolId>("protocolId")});

// --- the row entities --------------------------------------------------------

Zet::ZetType const PortConfig::_zetType = countedType<PortConfig>(
    "Lldp::Snmp::PortConfig",
    {ctorParam<&PortConfig::ethPortId>("ethPortId"), ctorParam<&PortConfig::ptr>("ptr"),
     derived<&PortConfig::portNum>("portNum"), derived<&PortConfig::adminStatus>("adminStatus"),
     derived<&PortConfig::notificationEnable>("notificationEnable"), derived<&PortConfig::enabledTlvs>("enabledTlvs"),
     derived<&PortConfig::portVlanTxEnable>("portVlanTxEnable"),
     derived<&PortConfig::dot3EnabledTlvs>("dot3EnabledTlvs")},
    {"ethPortId", "ptr"});

Zet::ZetType const PortStatus::_zetType = countedType<PortStatus>(
    "Lldp::Snmp::PortStatus",
    {ctorParam<&PortStatus::ethPortId>("ethPortId"), ctorParam<&PortStatus::ptr>("ptr"),
     derived<&PortStatus::portNum>("portNum"), derived<&PortStatus::txFramesTotal>("txFramesTotal"),
     derived<&PortStatus::rxFramesDiscardedTotal>("rxFramesDiscardedTotal"),
     derived<&PortStatus::rxFramesErrors>("rxFramesErrors"), derived<&PortStatus::rxFramesTotal>("rxFramesTotal"),
     derived<&PortStatus::rxTLVsDiscardedTotal>("rxTLVsDiscardedTotal"),
     derived<&PortStatus::rxTLVsUnrecognizedTotal>("rxTLVsUnrecognizedTotal"),
     derived<&PortStatus::rxAgeoutsTotal>("rxAgeoutsTotal")},
    {"ethPortId", "ptr"});

Zet::ZetType const LocalPort::_zetType = countedType<LocalPort>(
    "Lldp::Snmp::LocalPort",
    {ctorParam<&LocalPort::ethPortId>("ethPortId"), ctorParam<&LocalPort::ptr>("ptr"),
     derived<&LocalPort::portNum>("portNum"), derived<&LocalPort::portIdSubtype>("portIdSubtype"),
     derived<&LocalPort::portId>("portId"), derived<&LocalPort::portDesc>("portDesc"),
     derived<&LocalPort::portVlanId>("portVlanId"), derived<&LocalPort::linkAggStatus>("linkAggStatus"),
     derived<&LocalPort::linkAggPortId>("linkAggPortId"), derived<&LocalPort::maxFrameSize>("maxFrameSize")},
    {"ethPortId", "ptr"});

Zet::ZetType const RemoteSystem::_zetType = countedType<RemoteSystem>(
    "Lldp::Snmp::RemoteSystem",
    {ctorParam<&RemoteSystem::key>("key"),
     ctorParam<&RemoteSystem::ptr>("ptr"),
     derived<&RemoteSystem::timeMark>("timeMark"),
     derived<&RemoteSystem::localPortNum>("localPortNum"),
     derived<&RemoteSystem::index>("index"),
     derived<&RemoteSystem::chassisIdSubtype>("chassisIdSubtype"),
     derived<&RemoteSystem::chassisId>("chassisId"),
     derived<&RemoteSystem::portIdSubtype>("portIdSubtype"),
     derived<&RemoteSystem::portId>("portId"),
     derived<&RemoteSystem::portDesc>("portDesc"),
     derived<&RemoteSystem::sysName>("sysName"),
     derived<&RemoteSystem::sysDesc>("sysDesc"),
     derived<&RemoteSystem::sysCapSupported>("sysCapSupported"),
     derived<&RemoteSystem::sysCapEnabled>("sysCapEnabled"),
     derived<&RemoteSystem::portVlanIdTlvReceived>("portVlanIdTlvReceived"),
     derived<&RemoteSystem::portVlanId>("portVlanId"),
     derived<&RemoteSystem::macPhyConfigStatusTlvReceived>("macPhyConfigStatusTlvReceived"),
     derived<&RemoteSystem::autoNegSupported>("autoNegSupported"),
     derived<&RemoteSystem::autoNegEnabled>("autoNegEnabled"),
     derived<&RemoteSystem::autoNegAdvertisedCapAsU16>("autoNegAdvertisedCapAsU16"),
     derived<&RemoteSystem::operMauType>("operMauType"),
     derived<&RemoteSystem::powerViaMdiTlvReceived>("powerViaMdiTlvReceived"),
     derived<&RemoteSystem::powerPortClass>("powerPortClass"),
     derived<&RemoteSystem::powerMdiSupported>("powerMdiSupported"),
     derived<&RemoteSystem::powerMdiEnabled>("powerMdiEnabled"),
     derived<&RemoteSystem::powerPairControllable>("powerPairControllable"),
     derived<&RemoteSystem::powerPairs>("powerPairs"),
     derived<&RemoteSystem::powerClass>("powerClass"),
     derived<&RemoteSystem::linkAggregationTlvReceived>("linkAggregationTlvReceived"),
     derived<&RemoteSystem::linkAggStatus>("linkAggStatus"),
     derived<&RemoteSystem::linkAggPortId>("linkAggPortId"),
     derived<&RemoteSystem::maximumFrameSizeTlvReceived>("maximumFrameSizeTlvReceived"),
     derived<&RemoteSystem::maxFrameSize>("maxFrameSize")},
    {"key", "ptr"});

Zet::ZetType const PortList::_zetType = countedType<PortList>(
    "Lldp::Snmp::PortList",
    {collection<nullary(&PortList::portId), unary(&PortList::portId), &PortList::portIdIs,
                byKey<std::uint16_t>(&PortList::portIdDel)>("portId", "value")},
    {"name"});

Zet::ZetType const LocalManagementAddress::_zetType = countedType<LocalManagementAddress>(
    "Lldp::Snmp::LocalManagementAddress",
    {ctorParam<&LocalManagementAddress::key>("key"),
     stored<&LocalManagementAddress::rawValue, &LocalManagementAddress::rawValueIs>("rawValue"),
     derived<&LocalManagementAddress::manAddrSubtype>("manAddrSubtype"),
     derived<&LocalManagementAddress::manAddr>("manAddr"), derived<&LocalManagementAddress::manAddrLen>("manAddrLen"),
     derived<&LocalManagementAddress::ifSubtype>("ifSubtype"), derived<&LocalManagementAddress::ifId>("ifId"),
     derived<&LocalManagementAddress::oid>("oid"),
     owned<&LocalManagementAddress::portsTxEnable, &LocalManagementAddress::portsTxEnableIs,
           &LocalManagementAddress::portsTxEnableDel>("portsTxEnable", {"name"})},
    {"key"});

// --- the Root ----------------------------------------------------------------

namespace {

// A row collection of the Root: the same four operations under the attribute's name.
#define LLDP_ROOT_COLLECTION(name, Key, keyName, ...)                                                  \
  collection<nullary(&Root::name), unary(&Root::name), &Root::name##Is, byKey<Key>(&Root::name##Del)>( \
      #name, keyName, {__VA_ARGS__})

Zet::ZetType rootType() {
  Zet::ZetType type = countedType<Root>(
      "Lldp::Snmp::Root",
      {LLDP_ROOT_COLLECTION(portConfig, EthPortId, "ethPortId", "ethPortId", "ptr"),
       LLDP_ROOT_COLLECTION(portStatus, EthPortId, "ethPortId", "ethPortId", "ptr"),
       LLDP_ROOT_COLLECTION(localPort, EthPortId, "ethPortId", "ethPortId", "ptr"),
       LLDP_ROOT_COLLECTION(localManagementAddress, ManAddrKey, "key", "key"),
       LLDP_ROOT_COLLECTION(remoteSystem, RemoteSystem::Key, "key", "key", "ptr"),
       LLDP_ROOT_COLLECTION(remoteManagementAddress, RemoteManagementAddress::Key, "key"),
       LLDP_ROOT_COLLECTION(remoteUnknownTlv, RemoteUnknownTlv::Key, "key"),
       LLDP_ROOT_COLLECTION(remoteUnknownOrgDefTlv, RemoteUnknownOrgDefTlv::Key, "key"),
       LLDP_ROOT_COLLECTION(remotePortAndProtocolVlan, RemotePortAndProtocolVlan::Key, "key"),
       LLDP_ROOT_COLLECTION(remoteVlanName, RemoteVlanName::Key, "key"),
       LLDP_ROOT_COLLECTION(remoteProtocolIdentityInfo, RemoteProtocolIdentityInfo::Key, "key"),
       LLDP_ROOT_COLLECTION(portStatusSm, Ondo::IntfId, "intfId", "ethPortId", "portStatus", "root"),
       owned<&Root::lldpSm, &Root::lldpSmIs, &Root::lldpSmDel>("lldpSm",
                                                               {"status", "localSystem", "config", "root"})},
      {"name"});
  type.newEntityForDir = [](Zet::Name const& name, Zet::Dir*) -> Zet::Ptr<Zet::Entity> { return Root::RootIs(name); };
  type.genericIfConstructFromCtorArgs = [](void* destination, void* const* arguments) {
    *static_cast<Zet::Ptr<Root>*>(destination) = Root::RootIs(*static_cast<Zet::Name const*>(arguments[0]));
  };
  return type;
}

#undef LLDP_ROOT_COLLECTION

}  // namespace

Zet::ZetType const Root::_zetType = rootType();

// --- the reactors --------------------------------------------------------------

Zet::ZetType const LldpSm::_zetType = countedType<LldpSm>(
    "Lldp::Snmp::LldpSm",
    {ctorParam<&LldpSm::status>("status"), ctorParam<&LldpSm::localSystem>("localSystem"),
     ctorParam<&LldpSm::config>("config"), ctorParam<&LldpSm::root>("root"),
     stored<&LldpSm::lastNotificationTime, &LldpSm::lastNotificationTimeIs>("lastNotificationTime"),
     collection<nullary(&LldpSm::manAddrPrio), unary(&LldpSm::manAddrPrio), &LldpSm::manAddrPrioIs,
                byKey<ManAddrKey>(&LldpSm::manAddrPrioDel)>("manAddrPrio", "key", {"key", "prio"}),
     collection<nullary(&LldpSm::manAddr), unary(&LldpSm::manAddr), &LldpSm::manAddrIs,
                byKey<Lldp::ManAddrPriority>(&LldpSm::manAddrDel)>("manAddr", "prio", {"prio", "key"}),
     method<&LldpSm::handleLastChangeTime>("handleLastChangeTime"),
     method<&LldpSm::handleManagementAddress>("handleManagementAddress", {"key"}),
     method<&LldpSm::handleManagementAddressPrio>("handleManagementAddressPrio", {"prio"}),
     method<&LldpSm::handleLocalPort>("handleLocalPort", {"intfId", "ethPortId"}),
     method<&LldpSm::handleInitialized>("handleInitialized")},
    {"status", "localSystem", "config", "root"});

Zet::ZetType const PortStatusSm::_zetType = countedType<PortStatusSm>(
    "Lldp::Snmp::PortStatusSm",
    {ctorParam<&PortStatusSm::ethPortId>("ethPortId"), ctorParam<&PortStatusSm::portStatus>("portStatus"),
     derived<&PortStatusSm::intfId>("intfId"), ctorParam<&PortStatusSm::root>("root"),
     method<&PortStatusSm::handleRemoteSystem>("handleRemoteSystem", {"index"}),
     collection<nullary(&PortStatusSm::remoteSystemSm), unary(&PortStatusSm::remoteSystemSm),
                &PortStatusSm::remoteSystemSmIs, byKey<std::int32_t>(&PortStatusSm::remoteSystemSmDel)>(
         "remoteSystemSm", "index", {"index", "ethPortId", "remoteSystem", "root"}),
     method<&PortStatusSm::handleInitialized>("handleInitialized"), method<&PortStatusSm::doClose>("doClose")},
    {"ethPortId", "portStatus", "root"});

Zet::ZetType const RemoteSystemSm::_zetType = countedType<RemoteSystemSm>(
    "Lldp::Snmp::RemoteSystemSm",
    {ctorParam<&RemoteSystemSm::index>("index"), ctorParam<&RemoteSystemSm::ethPortId>("ethPortId"),
     ctorParam<&RemoteSystemSm::remoteSystem>("remoteSystem"), ctorParam<&RemoteSystemSm::root>("root"),
     method<&RemoteSystemSm::handleManagementAddress>("handleManagementAddress", {"key"}),
     method<&RemoteSystemSm::handleUnknownTlv>("handleUnknownTlv", {"type"}),
     method<&RemoteSystemSm::handleUnknownOrgDefTlv>("handleUnknownOrgDefTlv", {"key"}),
     method<&RemoteSystemSm::handlePortAndProtocolVlan>("handlePortAndProtocolVlan", {"portAndProtocolVlanId"}),
     method<&RemoteSystemSm::handleVlanName>("handleVlanName", {"vlanId"}),
     method<&RemoteSystemSm::handleProtocolIdentityInfo>("handleProtocolIdentityInfo", {"index"}),
     method<&RemoteSystemSm::handleInitialized>("handleInitialized"), method<&RemoteSystemSm::doClose>("doClose")},
    {"index", "ethPortId", "remoteSystem", "root"});

// --- registration --------------------------------------------------------------

namespace {

// After every description above, in this unit: static initialisers run in order of definition.
struct TypeDescriptionsRegistrar {
  TypeDescriptionsRegistrar() {
    for (Zet::ZetType const* type :
         {&LldpSm::_zetType, &PortList::_zetType, &RemoteUnknownTlv::_zetType, &RemoteUnknownTlvKey::_zetType,
          &RemoteUnknownOrgDefTlv::_zetType, &RemoteUnknownOrgDefTlvKey::_zetType, &RemoteSystem::_zetType,
          &RemoteSystemKey::_zetType, &Root::_zetType, &PortConfig::_zetType, &PortStatus::_zetType,
          &RemoteSystemSm::_zetType, &LocalManagementAddress::_zetType, &RemoteProtocolIdentityInfo::_zetType,
          &RemoteProtocolIdentityInfoKey::_zetType, &RemoteManagementAddress::_zetType,
          &RemoteManagementAddressKey::_zetType, &LocalPort::_zetType, &RemoteVlanName::_zetType,
          &RemoteVlanNameKey::_zetType, &PortStatusSm::_zetType, &RemotePortAndProtocolVlan::_zetType,
          &RemotePortAndProtocolVlanKey::_zetType}) {
      Zet::typeNodeIs(type);
    }
  }
};
TypeDescriptionsRegistrar const typeDescriptionsRegistrar;

}  // namespace

}  // namespace Lldp::Snmp
