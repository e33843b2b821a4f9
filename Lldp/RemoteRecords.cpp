#define ZET_UNIT "LldpSnmp"
#include "RemoteRecords.h"

#include <ostream>
#include <string_view>

#include "Zet/RecordForm.h"

namespace Lldp::Snmp {

namespace {

// All six share their fields and differ in the type name that heads the text.
template <class Record>
constexpr auto recordForm(std::string_view typeName) {
  return Zet::RecordForm{typeName, Zet::field("key", &Record::key), Zet::field("ptr", &Record::ptr),
                         Zet::field("rawValue", &Record::rawValue)};
}

constexpr auto managementAddressForm = recordForm<RemoteManagementAddress>("Lldp::Snmp::RemoteManagementAddress");
constexpr auto unknownTlvForm = recordForm<RemoteUnknownTlv>("Lldp::Snmp::RemoteUnknownTlv");
constexpr auto unknownOrgDefTlvForm = recordForm<RemoteUnknownOrgDefTlv>("Lldp::Snmp::RemoteUnknownOrgDefTlv");
constexpr auto portAndProtocolVlanForm =
    recordForm<RemotePortAndProtocolVlan>("Lldp::Snmp::RemotePortAndProtocolVlan");
constexpr auto vlanNameForm = recordForm<RemoteVlanName>("Lldp::Snmp::RemoteVlanName");
constexpr auto protocolIdentityInfoForm =
    recordForm<RemoteProtocolIdentityInfo>("Lldp::Snmp::RemoteProtocolIdentityInfo");

}  // namespace

RemoteManagementAddress::RemoteManagementAddress(Zet::String::IteratorConst& pos,
                                                 Zet::String::IteratorConst const& end) {
  managementAddressForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemoteManagementAddress const& record) { return managementAddressForm.toStrep(record); }
std::ostream& operator<<(std::ostream& os, RemoteManagementAddress const& record) {
  return os << valueToStrep(record);
}

RemoteUnknownTlv::RemoteUnknownTlv(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  unknownTlvForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemoteUnknownTlv const& record) { return unknownTlvForm.toStrep(record); }
std::ostream& operator<<(std::ostream& os, RemoteUnknownTlv const& record) { return os << valueToStrep(record); }

RemoteUnknownOrgDefTlv::RemoteUnknownOrgDefTlv(Zet::String::IteratorConst& pos,
                                               Zet::String::IteratorConst const& end) {
  unknownOrgDefTlvForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemoteUnknownOrgDefTlv const& record) { return unknownOrgDefTlvForm.toStrep(record); }
std::ostream& operator<<(std::ostream& os, RemoteUnknownOrgDefTlv const& record) {
  return os << valueToStrep(record);
}

RemotePortAndProtocolVlan::RemotePortAndProtocolVlan(Zet::String::IteratorConst& pos,
                                                     Zet::String::IteratorConst const& end) {
  portAndProtocolVlanForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemotePortAndProtocolVlan const& record) { return portAndProtocolVlanForm.toStrep(record); }
std::ostream& operator<<(std::ostream& os, RemotePortAndProtocolVlan const& record) {
  return os << valueToStrep(record);
}

RemoteVlanName::RemoteVlanName(Zet::String::IteratorConst& pos, Zet::String::IteratorConst const& end) {
  vlanNameForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemoteVlanName const& record) { return vlanNameForm.toStrep(record); }
std::ostream& operator<<(std::ostream& os, RemoteVlanName const& record) { return os << valueToStrep(record); }

RemoteProtocolIdentityInfo::RemoteProtocolIdentityInfo(Zet::String::IteratorConst& pos,
                                                       Zet::String::IteratorConst const& end) {
  protocolIdentityInfoForm.read(*this, pos, end);
}
Zet::String valueToStrep(RemoteProtocolIdentityInfo const& record) {
  return protocolIdentityInfoForm.toStrep(record);
}
std::ostream& operator<<(std::ostream& os, RemoteProtocolIdentityInfo const& record) {
  return os << valueToStrep(record);
}

}  // namespace Lldp::Snmp
