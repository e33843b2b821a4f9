#include "LldpdAtoms.h"

#include <string>
#include <vector>

namespace {

// liblldpctl answers a value it does not have with a negative error code.
std::int64_t integer(lldpctl_atom_t* atom, lldpctl_key_t key) {
  long const value = lldpctl_atom_get_int(atom, key);
  return value < 0 ? 0 : value;
}

std::uint32_t counter(lldpctl_atom_t* atom, lldpctl_key_t key) {
  return static_cast<std::uint32_t>(integer(atom, key));
}

std::string text(lldpctl_atom_t* atom, lldpctl_key_t key) {
  char const* const value = lldpctl_atom_get_str(atom, key);
  return value ? std::string(value) : std::string();
}

std::string bytes(lldpctl_atom_t* atom, lldpctl_key_t key) {
  std::size_t length = 0;
  auto const* const value = lldpctl_atom_get_buffer(atom, key, &length);
  return value ? std::string(reinterpret_cast<char const*>(value), length) : std::string();
}

// Calls `each` with every atom of the list at `key`.
template <class Each>
void forEach(lldpctl_atom_t* atom, lldpctl_key_t key, Each const& each) {
  LldpctlAtom const list(lldpctl_atom_get(atom, key));
  if (!list) {
    return;
  }
  lldpctl_atom_t* element = nullptr;
  lldpctl_atom_foreach(list.get(), element) {
    each(element);
  }
}

LldpdPortInfo readPortInfo(lldpctl_atom_t* port) {
  LldpdPortInfo info;
  info.idSubtype = static_cast<std::int32_t>(integer(port, lldpctl_k_port_id_subtype));
  info.id = bytes(port, lldpctl_k_port_id);
  info.description = text(port, lldpctl_k_port_descr);
  info.pvid = integer(port, lldpctl_k_port_vlan_pvid);
  forEach(port, lldpctl_k_port_vlans, [&](lldpctl_atom_t* vlan) {
    info.vlans.push_back({integer(vlan, lldpctl_k_vlan_id), text(vlan, lldpctl_k_vlan_name)});
  });
  forEach(port, lldpctl_k_port_ppvids, [&](lldpctl_atom_t* ppvid) {
    info.ppvids.push_back({integer(ppvid, lldpctl_k_ppvid_id), counter(ppvid, lldpctl_k_ppvid_status)});
  });
  forEach(port, lldpctl_k_port_pis,
          [&](lldpctl_atom_t* pi) { info.protocolIds.push_back(bytes(pi, lldpctl_k_pi_id)); });
  info.mfs = integer(port, lldpctl_k_port_dot3_mfs);
  info.aggregationId = integer(port, lldpctl_k_port_dot3_aggregid);
  info.autonegSupported = integer(port, lldpctl_k_port_dot3_autoneg_support) != 0;
  info.autonegEnabled = integer(port, lldpctl_k_port_dot3_autoneg_enabled) != 0;
  info.autonegAdvertised = counter(port, lldpctl_k_port_dot3_autoneg_advertised);
  info.mauType = counter(port, lldpctl_k_port_dot3_mautype);
  if (LldpctlAtom const power(lldpctl_atom_get(port, lldpctl_k_port_dot3_power)); power) {
    info.power.deviceType = integer(power.get(), lldpctl_k_dot3_power_devicetype);
    info.power.supported = integer(power.get(), lldpctl_k_dot3_power_supported) != 0;
    info.power.enabled = integer(power.get(), lldpctl_k_dot3_power_enabled) != 0;
    info.power.pairControl = integer(power.get(), lldpctl_k_dot3_power_paircontrol) != 0;
    info.power.pairs = integer(power.get(), lldpctl_k_dot3_power_pairs);
    info.power.powerClass = integer(power.get(), lldpctl_k_dot3_power_class);
  }
  forEach(port, lldpctl_k_custom_tlvs, [&](lldpctl_atom_t* tlv) {
    info.customTlvs.push_back({bytes(tlv, lldpctl_k_custom_tlv_oui), counter(tlv, lldpctl_k_custom_tlv_oui_subtype),
                               bytes(tlv, lldpctl_k_custom_tlv_oui_info_string)});
  });
  return info;
}

}  // namespace

LldpdConfig readLldpdConfig(lldpctl_atom_t* config) {
  LldpdConfig result;
  result.txInterval = integer(config, lldpctl_k_config_tx_interval);
  result.txHold = integer(config, lldpctl_k_config_tx_hold);
  result.receiveOnly = integer(config, lldpctl_k_config_receiveonly) != 0;
  result.capabilitiesAdvertised = integer(config, lldpctl_k_config_chassis_cap_advertise) != 0;
  result.managementAdvertised = integer(config, lldpctl_k_config_chassis_mgmt_advertise) != 0;
  return result;
}

LldpdChassis readLldpdChassis(lldpctl_atom_t* chassis) {
  LldpdChassis result;
  result.idSubtype = static_cast<std::int32_t>(integer(chassis, lldpctl_k_chassis_id_subtype));
  result.id = bytes(chassis, lldpctl_k_chassis_id);
  result.name = text(chassis, lldpctl_k_chassis_name);
  result.description = text(chassis, lldpctl_k_chassis_descr);
  result.capAvailable = counter(chassis, lldpctl_k_chassis_cap_available);
  result.capEnabled = counter(chassis, lldpctl_k_chassis_cap_enabled);
  forEach(chassis, lldpctl_k_chassis_mgmt, [&](lldpctl_atom_t* address) {
    result.managementAddresses.push_back({text(address, lldpctl_k_mgmt_ip), integer(address, lldpctl_k_mgmt_iface_index)});
  });
  return result;
}

LldpdNeighbor readLldpdNeighbor(lldpctl_atom_t* port) {
  LldpdNeighbor neighbor;
  if (LldpctlAtom const chassis(lldpctl_atom_get(port, lldpctl_k_port_chassis)); chassis) {
    neighbor.chassis = readLldpdChassis(chassis.get());
  }
  neighbor.port = readPortInfo(port);
  neighbor.lastChange = integer(port, lldpctl_k_port_age);
  return neighbor;
}

LldpdInterface readLldpdInterface(lldpctl_atom_t* port) {
  LldpdInterface interface;
  interface.name = text(port, lldpctl_k_port_name);
  interface.ifIndex = integer(port, lldpctl_k_port_index);
  interface.mode = static_cast<LldpdPortMode>(integer(port, lldpctl_k_port_status));
  interface.local = readPortInfo(port);
  interface.counters.tx = counter(port, lldpctl_k_tx_cnt);
  interface.counters.rx = counter(port, lldpctl_k_rx_cnt);
  interface.counters.rxDiscarded = counter(port, lldpctl_k_rx_discarded_cnt);
  interface.counters.rxUnrecognized = counter(port, lldpctl_k_rx_unrecognized_cnt);
  interface.counters.ageouts = counter(port, lldpctl_k_ageout_cnt);
  interface.counters.inserts = counter(port, lldpctl_k_insert_cnt);
  interface.counters.deletes = counter(port, lldpctl_k_delete_cnt);
  forEach(port, lldpctl_k_port_neighbors, [&](lldpctl_atom_t* neighbor) {
    if (integer(neighbor, lldpctl_k_port_hidden) == 0) {
      interface.neighbors.push_back(readLldpdNeighbor(neighbor));
    }
  });
  return interface;
}
