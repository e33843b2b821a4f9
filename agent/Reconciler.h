#pragma once
// The LLDP agent's side of the state database, played from desired snapshots:
// the first apply mounts the three entities the plug-in reads, every apply
// makes them match the snapshot by writing only what differs, in the order
// the plug-in's reactors need (an address before its priority, a priority gone
// before its address, a replaced neighbour as a removal and then an insertion).

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "DesiredState.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalPort.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/PortStatus.h"
#include "LldpAgent/RemoteSystem.h"
#include "Ondo/IntfId.h"
#include "Zet/Ptr.h"

class Reconciler {
 public:
  static constexpr char const* configPath = "Statebase/l2discovery/lldp/config";
  static constexpr char const* statusPath = "Statebase/l2discovery/lldp/status/all";
  static constexpr char const* localSystemPath = "Statebase/l2discovery/lldp/localSystem";

  // A port as the state holds it. The host pairs name and number with these
  // entities when it makes the port's rows.
  struct Port {
    Ondo::IntfId name;
    Interface::EthPortId number;
    Zet::Ptr<Lldp::PortConfig> portConfig;
    Zet::Ptr<Lldp::PortStatus> portStatus;
    Zet::Ptr<Lldp::LocalPort> localPort;
  };

  Reconciler() = default;
  // Unmounts the three entities, if they are still the ones this mounted.
  ~Reconciler();
  Reconciler(Reconciler const&) = delete;
  Reconciler& operator=(Reconciler const&) = delete;

  // Makes the state match `state`. Times in `state` are seconds since the
  // uptime origin (Snmp::uptimeOrigin()), which must be set before.
  void apply(DesiredState const& state);

  // Null before the first apply.
  Zet::Ptr<Lldp::Config> config() const { return config_; }
  Zet::Ptr<Lldp::AllStatus> status() const { return status_; }
  Zet::Ptr<Lldp::LocalSystem> localSystem() const { return localSystem_; }
  // In the order of the last snapshot.
  std::vector<Port> ports() const;

 private:
  struct PortEntry {
    Port port;
    // Writable views of what port.portStatus holds in remoteSystem.
    std::unordered_map<std::int32_t, Zet::Ptr<Lldp::RemoteSystem>> neighbors;
  };

  void applyLocalSystem(DesiredLocalSystem const& desired);
  void removeStalePorts(std::vector<DesiredPort> const& desired);
  void applyPort(PortEntry& entry, DesiredPort const& desired);
  PortEntry makePort(DesiredPort const& desired);
  void applyNeighbors(PortEntry& entry, std::vector<DesiredNeighbor> const& desired);
  void applyNeighbor(Lldp::RemoteSystem& neighbor, DesiredNeighbor const& desired) const;

  Zet::Ptr<Lldp::Config> config_;
  Zet::Ptr<Lldp::AllStatus> status_;
  Zet::Ptr<Lldp::LocalSystem> localSystem_;
  std::vector<PortEntry> ports_;
};
