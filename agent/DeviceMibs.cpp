#include "DeviceMibs.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/agent/agent_sysORTable.h>

#include "LldpAgent/Enumerations.h"

// net-snmp's own MIB modules, in libnetsnmpmibs without a public header.
extern "C" void init_system_mib(void);
extern "C" void init_sysORTable(void);

namespace {

struct SysOrEntry {
  std::vector<oid> id;  // the module's MODULE-IDENTITY
  char const* description;
};

std::vector<SysOrEntry> const lldpModules{
    {{1, 0, 8802, 1, 1, 2}, "LLDP-MIB: the LLDP local system, its ports and their neighbours (IEEE 802.1AB)"},
    {{1, 0, 8802, 1, 1, 2, 1, 5, 32962}, "LLDP-EXT-DOT1-MIB: the IEEE 802.1 organizationally specific TLVs"},
    {{1, 0, 8802, 1, 1, 2, 1, 5, 4623}, "LLDP-EXT-DOT3-MIB: the IEEE 802.3 organizationally specific TLVs"},
};
SysOrEntry const ifMib{{1, 3, 6, 1, 2, 1, 31}, "The MIB module to describe generic objects for network interface sub-layers"};

void addSysOr(SysOrEntry const& entry) {
  std::vector<oid> id = entry.id;
  register_sysORTable(id.data(), id.size(), entry.description);
}

void removeSysOr(SysOrEntry const& entry) {
  std::vector<oid> id = entry.id;
  unregister_sysORTable(id.data(), id.size());
}

// A line of the system group's own configuration, run now: its handlers keep
// the value, as if it stood in --config.
void configure(char const* token, std::string const& value) {
  // A lone "" is net-snmp's way to write the empty value.
  std::string line = std::string(token) + " " + (value.empty() ? std::string("\"\"") : value);
  netsnmp_config(line.data());
}

// Text that a DisplayString can carry as it stands.
bool displayable(Zet::String const& text) {
  constexpr std::size_t maxBytes = 255;
  return !text.empty() && text.size() <= maxBytes &&
         std::ranges::none_of(text.view(), [](char const c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

// sysServices from the capabilities the local system has enabled: the layers
// (bit L-1 for layer L) that each kind of system serves; 0 when none says.
long servicesOf(Lldp::SystemCapabilitiesMap capabilities) {
  constexpr long physical = 1, datalink = 2, internet = 4, endToEnd = 8, applications = 64;
  struct Layers {
    int bit;  // of LldpSystemCapabilitiesMap
    long layers;
  };
  constexpr Layers byCapability[] = {{1, physical},                   // repeater
                                     {2, datalink},                   // bridge
                                     {3, datalink},                   // wlanAccessPoint
                                     {4, internet},                   // router
                                     {5, endToEnd | applications},    // telephone
                                     {6, datalink},                   // docsisCableDevice
                                     {7, endToEnd | applications}};   // stationOnly
  long services = 0;
  for (Layers const& entry : byCapability) {
    if ((capabilities.value() >> entry.bit & 1u) != 0) {
      services |= entry.layers;
    }
  }
  return services;
}

void applySystem(DesiredState const& state) {
  DesiredSystem const& system = state.system;
  DesiredLocalSystem const& local = state.localSystem;
  if (system.sysDescr) {
    configure("sysDescr", *system.sysDescr);
  } else if (displayable(local.sysDesc)) {
    configure("sysDescr", local.sysDesc.stdString());
  }
  if (system.sysObjectID) {
    configure("sysObjectID", "." + system.sysObjectID->stringValue().stdString());
  }
  if (system.sysContact) {
    configure("sysContact", *system.sysContact);
  }
  if (system.sysName) {
    configure("sysName", *system.sysName);
  } else if (displayable(local.sysName)) {
    configure("sysName", local.sysName.stdString());
  }
  if (system.sysLocation) {
    configure("sysLocation", *system.sysLocation);
  }
  long const services = system.sysServices ? *system.sysServices : servicesOf(local.sysCapEnabled);
  if (system.sysServices || services != 0) {
    configure("sysServices", std::to_string(services));
  }
}

// A column of a table kept by net-snmp's table_dataset helper.
struct Column {
  unsigned int subId;
  u_char type;
};

// A read-only table whose rows net-snmp's table_dataset helper keeps and serves.
class DataSetTable {
 public:
  DataSetTable(char const* name, std::vector<oid> const& tableOid, std::vector<Column> const& columns)
      : set_(netsnmp_create_table_data_set(name)) {
    netsnmp_table_dataset_add_index(set_, ASN_INTEGER);  // ifIndex
    for (Column const& column : columns) {
      netsnmp_table_set_add_default_row(set_, column.subId, column.type, 0, nullptr, 0);
    }
    registration_ = netsnmp_create_handler_registration(name, nullptr, tableOid.data(), tableOid.size(),
                                                        HANDLER_CAN_RONLY);
    netsnmp_register_table_data_set(registration_, set_, nullptr);
  }
  ~DataSetTable() {
    netsnmp_unregister_handler(registration_);
    clear();
  }
  DataSetTable(DataSetTable const&) = delete;
  DataSetTable& operator=(DataSetTable const&) = delete;

  void clear() {
    while (netsnmp_table_row* const row = netsnmp_table_data_set_get_first_row(set_)) {
      netsnmp_table_dataset_remove_and_delete_row(set_, row);
    }
  }

  // A new row at `index`; filled with setInteger() and setOctets(), then added.
  class Row {
   public:
    explicit Row(long index) : row_(netsnmp_create_table_data_row()) {
      netsnmp_table_row_add_index(row_, ASN_INTEGER, &index, sizeof index);
    }
    void setInteger(unsigned int column, u_char type, long value) {
      netsnmp_set_row_column(row_, column, type, &value, sizeof value);
    }
    void setOctets(unsigned int column, std::string_view bytes) {
      netsnmp_set_row_column(row_, column, ASN_OCTET_STR, bytes.data(), bytes.size());
    }
    netsnmp_table_row* release() { return std::exchange(row_, nullptr); }

   private:
    netsnmp_table_row* row_;
  };

  void add(Row& row) { netsnmp_table_dataset_add_row(set_, row.release()); }

 private:
  netsnmp_table_data_set* set_;
  netsnmp_handler_registration* registration_ = nullptr;
};

// IF-MIB's objects, under interfaces (1.3.6.1.2.1.2) and ifMIBObjects (1.3.6.1.2.1.31.1).
namespace ifTable {
constexpr unsigned int ifIndex = 1, ifDescr = 2, ifType = 3, ifMtu = 4, ifSpeed = 5, ifPhysAddress = 6,
                       ifAdminStatus = 7, ifOperStatus = 8, ifLastChange = 9;
}  // namespace ifTable
namespace ifXTable {
constexpr unsigned int ifName = 1, ifHighSpeed = 15, ifAlias = 18;
}  // namespace ifXTable

}  // namespace

struct DeviceMibs::Interfaces {
  int ifNumber = 0;
  DataSetTable table{"ifTable",
                     {1, 3, 6, 1, 2, 1, 2, 2},
                     {{ifTable::ifIndex, ASN_INTEGER},
                      {ifTable::ifDescr, ASN_OCTET_STR},
                      {ifTable::ifType, ASN_INTEGER},
                      {ifTable::ifMtu, ASN_INTEGER},
                      {ifTable::ifSpeed, ASN_GAUGE},
                      {ifTable::ifPhysAddress, ASN_OCTET_STR},
                      {ifTable::ifAdminStatus, ASN_INTEGER},
                      {ifTable::ifOperStatus, ASN_INTEGER},
                      {ifTable::ifLastChange, ASN_TIMETICKS}}};
  DataSetTable xTable{"ifXTable",
                      {1, 3, 6, 1, 2, 1, 31, 1, 1},
                      {{ifXTable::ifName, ASN_OCTET_STR},
                       {ifXTable::ifHighSpeed, ASN_GAUGE},
                       {ifXTable::ifAlias, ASN_OCTET_STR}}};

  static inline oid ifNumberOid[] = {1, 3, 6, 1, 2, 1, 2, 1, 0};

  Interfaces() {
    netsnmp_register_read_only_int_instance("ifNumber", ifNumberOid, OID_LENGTH(ifNumberOid), &ifNumber, nullptr);
  }
  ~Interfaces() { unregister_mib(ifNumberOid, OID_LENGTH(ifNumberOid)); }
  Interfaces(Interfaces const&) = delete;
  Interfaces& operator=(Interfaces const&) = delete;

  void apply(std::vector<DesiredPort> const& ports) {
    table.clear();
    xTable.clear();
    for (DesiredPort const& port : ports) {
      DesiredInterface const& interface = port.interface;
      long const index = ifIndexOf(port.number);
      std::string const name = port.name.stringValue().stdString();
      DataSetTable::Row row(index);
      row.setInteger(ifTable::ifIndex, ASN_INTEGER, index);
      row.setOctets(ifTable::ifDescr, interface.ifDescr.value_or(name));
      row.setInteger(ifTable::ifType, ASN_INTEGER, interface.ifType);
      row.setInteger(ifTable::ifMtu, ASN_INTEGER, interface.ifMtu);
      constexpr std::uint64_t gaugeMax = std::numeric_limits<std::uint32_t>::max();
      row.setInteger(ifTable::ifSpeed, ASN_GAUGE, static_cast<long>(std::min(interface.speed, gaugeMax)));
      bool const macPortId = port.localPort.portIdSubtype == Lldp::PortIdSubtype::macAddress;
      Zet::String const physAddress =
          interface.physAddress.value_or(macPortId ? port.localPort.portId.value() : Zet::String());
      row.setOctets(ifTable::ifPhysAddress, physAddress.view());
      row.setInteger(ifTable::ifAdminStatus, ASN_INTEGER, interface.adminStatus);
      constexpr std::int32_t up = 1, down = 2;
      row.setInteger(ifTable::ifOperStatus, ASN_INTEGER,
                     interface.operStatus.value_or(interface.adminStatus == up ? up : down));
      row.setInteger(ifTable::ifLastChange, ASN_TIMETICKS, 0);
      table.add(row);

      DataSetTable::Row xRow(index);
      xRow.setOctets(ifXTable::ifName, name);
      // In millions of bits per second, rounded to the nearest.
      constexpr std::uint64_t million = 1000000;
      xRow.setInteger(ifXTable::ifHighSpeed, ASN_GAUGE,
                      static_cast<long>(std::min((interface.speed + million / 2) / million, gaugeMax)));
      xRow.setOctets(ifXTable::ifAlias, interface.ifAlias);
      xTable.add(xRow);
    }
    ifNumber = static_cast<int>(ports.size());
  }
};

DeviceMibs::DeviceMibs(bool master) : master_(master) {
  if (!master_) {
    return;
  }
  init_system_mib();
  init_sysORTable();
  interfaces_ = std::make_unique<Interfaces>();
  addSysOr(ifMib);
}

DeviceMibs::~DeviceMibs() {
  if (announced_) {
    for (SysOrEntry const& entry : lldpModules) {
      removeSysOr(entry);
    }
  }
  if (master_) {
    removeSysOr(ifMib);
  }
}

void DeviceMibs::apply(DesiredState const& state) {
  if (!master_) {
    return;
  }
  applySystem(state);
  interfaces_->apply(state.ports);
}

void DeviceMibs::announceLldpModules() {
  for (SysOrEntry const& entry : lldpModules) {
    addSysOr(entry);
  }
  announced_ = true;
}

long DeviceMibs::ifIndexOf(Interface::EthPortId number) {
  return number.value() == 0 ? static_cast<long>(Interface::EthPortId::max) + 1 : static_cast<long>(number.value());
}
