#define ZET_UNIT "LldpSnmp"

#include "MirrorRows.h"

namespace Lldp::Snmp {

Lldp::AdminStatus PortConfig::adminStatus() const {
  return read([](Lldp::PortConfig const& p) { return p.adminStatus(); });
}
std::uint32_t PortConfig::enabledTlvs() const {
  return read([](Lldp::PortConfig const& p) { return p.enabledTlvs(); });
}
bool PortConfig::portVlanTxEnable() const {
  return read([](Lldp::PortConfig const& p) { return p.portVlanTxEnable(); });
}
std::uint32_t PortConfig::dot3EnabledTlvs() const {
  return read([](Lldp::PortConfig const& p) { return p.dot3EnabledTlvs(); });
}

std::uint32_t PortStatus::txFramesTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.txFramesTotal(); });
}
std::uint32_t PortStatus::rxFramesDiscardedTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.rxFramesDiscardedTotal(); });
}
std::uint32_t PortStatus::rxFramesErrors() const {
  return read([](Lldp::PortStatus const& p) { return p.rxFramesErrors(); });
}
std::uint32_t PortStatus::rxFramesTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.rxFramesTotal(); });
}
std::uint32_t PortStatus::rxTLVsDiscardedTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.rxTLVsDiscardedTotal(); });
}
std::uint32_t PortStatus::rxTLVsUnrecognizedTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.rxTLVsUnrecognizedTotal(); });
}
std::uint32_t PortStatus::rxAgeoutsTotal() const {
  return read([](Lldp::PortStatus const& p) { return p.rxAgeoutsTotal(); });
}

Lldp::PortIdSubtype LocalPort::portIdSubtype() const {
  return read([](Lldp::LocalPort const& p) { return p.portIdSubtype(); });
}
Lldp::PortId LocalPort::portId() const {
  return read([](Lldp::LocalPort const& p) { return p.portId(); });
}
Lldp::BoundedString255 LocalPort::portDesc() const {
  return read([](Lldp::LocalPort const& p) { return p.portDesc(); });
}
Bridging::VlanIdOrNone LocalPort::portVlanId() const {
  return read([](Lldp::LocalPort const& p) { return p.portVlanId(); });
}
Lldp::LinkAggStatusMap LocalPort::linkAggStatus() const {
  return read([](Lldp::LocalPort const& p) { return p.linkAggStatus(); });
}
std::int32_t LocalPort::linkAggPortId() const {
  return read([](Lldp::LocalPort const& p) { return p.linkAggPortId(); });
}
std::uint16_t LocalPort::maxFrameSize() const {
  return read([](Lldp::LocalPort const& p) { return p.maxFrameSize(); });
}

double RemoteSystem::timeMark() const {
  return read([](Lldp::RemoteSystem const& r) { return r.lastChangeTime(); });
}
Lldp::ChassisIdSubtype RemoteSystem::chassisIdSubtype() const {
  return read([](Lldp::RemoteSystem const& r) { return r.msap().chassisIdSubtype; });
}
// A null source gives the value built from an empty string, through the range check.
Lldp::ChassisId RemoteSystem::chassisId() const {
  return ptr() ? Lldp::ChassisId(ptr()->msap().chassisId.value()) : Lldp::ChassisId(Zet::String());
}
Lldp::PortIdSubtype RemoteSystem::portIdSubtype() const {
  return read([](Lldp::RemoteSystem const& r) { return r.msap().portIdSubtype; });
}
Lldp::PortId RemoteSystem::portId() const {
  return ptr() ? Lldp::PortId(ptr()->msap().portId.value()) : Lldp::PortId(Zet::String());
}
Lldp::BoundedString255 RemoteSystem::portDesc() const {
  return read([](Lldp::RemoteSystem const& r) { return r.portDesc(); });
}
Lldp::BoundedString255 RemoteSystem::sysName() const {
  return read([](Lldp::RemoteSystem const& r) { return r.sysName(); });
}
Lldp::BoundedString255 RemoteSystem::sysDesc() const {
  return read([](Lldp::RemoteSystem const& r) { return r.sysDesc(); });
}
Lldp::SystemCapabilitiesMap RemoteSystem::sysCapSupported() const {
  return read([](Lldp::RemoteSystem const& r) { return r.sysCapSupported(); });
}
Lldp::SystemCapabilitiesMap RemoteSystem::sysCapEnabled() const {
  return read([](Lldp::RemoteSystem const& r) { return r.sysCapEnabled(); });
}
bool RemoteSystem::portVlanIdTlvReceived() const {
  return read([](Lldp::RemoteSystem const& r) { return r.portVlanIdTlvReceived(); });
}
Bridging::VlanIdOrNone RemoteSystem::portVlanId() const {
  return read([](Lldp::RemoteSystem const& r) { return r.portVlanId(); });
}
bool RemoteSystem::macPhyConfigStatusTlvReceived() const {
  return read([](Lldp::RemoteSystem const& r) { return r.macPhyConfigStatusTlvReceived(); });
}
bool RemoteSystem::autoNegSupported() const {
  return read([](Lldp::RemoteSystem const& r) { return r.macPhyConfigStatusInfo().autoNegSupported; });
}
bool RemoteSystem::autoNegEnabled() const {
  return read([](Lldp::RemoteSystem const& r) { return r.macPhyConfigStatusInfo().autoNegEnabled; });
}
std::uint16_t RemoteSystem::autoNegAdvertisedCapAsU16() const {
  return read([](Lldp::RemoteSystem const& r) { return r.macPhyConfigStatusInfo().autoNegAdvertisedCapAsU16(); });
}
std::uint32_t RemoteSystem::operMauType() const {
  return read([](Lldp::RemoteSystem const& r) { return r.macPhyConfigStatusInfo().operMauType; });
}
bool RemoteSystem::powerViaMdiTlvReceived() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiTlvReceived(); });
}
Lldp::PowerPortClass RemoteSystem::powerPortClass() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerPortClass; });
}
bool RemoteSystem::powerMdiSupported() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerMdiSupported; });
}
bool RemoteSystem::powerMdiEnabled() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerMdiEnabled; });
}
bool RemoteSystem::powerPairControllable() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerPairControllable; });
}
std::uint32_t RemoteSystem::powerPairs() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerPairs; });
}
std::uint32_t RemoteSystem::powerClass() const {
  return read([](Lldp::RemoteSystem const& r) { return r.powerViaMdiInfo().powerClass; });
}
bool RemoteSystem::linkAggregationTlvReceived() const {
  return read([](Lldp::RemoteSystem const& r) { return r.linkAggregationTlvReceived(); });
}
Lldp::LinkAggStatusMap RemoteSystem::linkAggStatus() const {
  return read([](Lldp::RemoteSystem const& r) { return r.linkAggregationInfo().linkAggStatus; });
}
std::int32_t RemoteSystem::linkAggPortId() const {
  return read([](Lldp::RemoteSystem const& r) { return r.linkAggregationInfo().linkAggPortId; });
}
bool RemoteSystem::maximumFrameSizeTlvReceived() const {
  return read([](Lldp::RemoteSystem const& r) { return r.maximumFrameSizeTlvReceived(); });
}
std::uint16_t RemoteSystem::maxFrameSize() const {
  return read([](Lldp::RemoteSystem const& r) { return r.maximumFrameSizeInfo(); });
}

Interface::EthPortId PortList::portId(std::uint16_t value) const { return portId_[value]; }

void PortList::portIdIs(Interface::EthPortId port) { portId_.newMember(port.value(), port); }

Interface::EthPortId PortList::portIdDel(std::uint16_t value) { return portId_.deleteMember(value); }

void PortList::portIdDelAll() {
  // The walk survives the deletion of the member it stands on.
  for (auto it = portId_.iterator(); !it.atEnd(); it.advance()) {
    portIdDel(it.currNodeMaybeStale().first);
  }
}

Zet::Ptr<PortList> LocalManagementAddress::portsTxEnableIs(Zet::Name const& name) {
  if (portsTxEnable_ && portsTxEnable_->name() == name) {
    return portsTxEnable_;
  }
  if (portsTxEnable_) {
    portsTxEnable_->parentIs(nullptr);
  }
  auto list = Zet::makePtr<PortList>(name);
  list->hasNotificationActiveIs(true);
  list->parentIs(this);
  portsTxEnable_ = list;
  return list;
}

Zet::Ptr<PortList> LocalManagementAddress::portsTxEnableDel() {
  auto list = std::move(portsTxEnable_);
  portsTxEnable_ = nullptr;
  if (list) {
    list->parentIs(nullptr);
  }
  return list;
}

}  // namespace Lldp::Snmp
