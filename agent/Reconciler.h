#pragma once
// The LLDP agent's side of the state database, played from desired snapshots:
// the first apply mounts the three entities the plug-in reads, every apply
// makes them match the snapshot by writing only what differs, in the order
// the plug-in's reactors need (an address before its priority, a priority gone
// before its address, a replaced neighbour as a removal and then an insertion).
// As an LLDP agent would, it counts the neighbours that come and go, stamps a
// neighbour's lastChangeTime when it arrives or changes, and moves
// remTablesLastChangeTime, written last, when the remote tables changed at all;
// a value that the snapshot gives is served as given instead.
//
// A snapshot does not tell a neighbour that aged out from one that withdrew,
// so every neighbour that goes counts as a delete, never as an ageout.

#include <cstdint>
#include <string>
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
  static constexpr char const* configPath = Lldp::Config::path;
  static constexpr char const* statusPath = Lldp::AllStatus::path;
  static constexpr char const* localSystemPath = Lldp::LocalSystem::path;

  // A port as the state holds it. The host pairs name and number with these
  // entities when it makes the port's rows.
  struct Port {
    Ondo::IntfId name;
    Interface::EthPortId number;
    Zet::Ptr<Lldp::PortConfig> portConfig;
    Zet::Ptr<Lldp::PortStatus> portStatus;
    Zet::Ptr<Lldp::LocalPort> localPort;
  };

  // Told of each port that joins or leaves during an apply, at the moments the
  // plug-in's host must act: a leaving port while it is still whole (in
  // localPort and in the status, with all its neighbours listed), again once
  // it has left both; a joining port once it is complete and in both.
  class PortObserver {
   public:
    virtual ~PortObserver() = default;
    virtual void onPortLeaving(Port const& port) = 0;
    virtual void onPortLeft(Port const& port) = 0;
    virtual void onPortJoined(Port const& port) = 0;
  };

  Reconciler() = default;
  // Unmounts the three entities, if they are still the ones this mounted.
  ~Reconciler();
  Reconciler(Reconciler const&) = delete;
  Reconciler& operator=(Reconciler const&) = delete;

  // What one apply changed, named as an operator knows it: ports by name,
  // neighbours as "<sysName or chassis ID> on <port>".
  struct Report {
    std::vector<std::string> portsJoined;
    std::vector<std::string> portsLeft;
    std::vector<std::string> neighborsAdded;
    std::vector<std::string> neighborsRemoved;
    std::vector<std::string> neighborsChanged;
    // remTablesLastChangeTime was written with a new value: the moment a
    // notification may follow.
    bool remTablesLastChangeTimeMoved = false;
  };

  // Makes the state match `state`. Times in `state` are seconds since the
  // uptime origin (Snmp::uptimeOrigin()), which must be set before.
  // Raises nothing of its own; what an observer raises passes out, with the
  // state as far as it had got.
  Report apply(DesiredState const& state);

  // One apply a port at a time, so that the agent can answer between ports:
  // the constructor writes the configuration and the local system and takes
  // away the ports that go; each step() applies the next port; finish()
  // writes the status last and gives the report. `state` and the reconciler
  // must outlive the pass, and nothing else may apply meanwhile. Between steps
  // the tables show the ports applied so far; the counters and the change
  // time move at finish(), so a notification finds the whole change.
  class Pass;

  // Null for none. Not owned: it must stay until it is replaced or this goes.
  void portObserverIs(PortObserver* observer) { portObserver_ = observer; }

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

  // What one apply did to the remote tables.
  struct RemoteChanges {
    double now = 0.0;  // the one stamp of the apply
    std::uint32_t inserts = 0;
    std::uint32_t deletes = 0;
    bool any = false;
    Report report;
  };

  void applyLocalSystem(DesiredLocalSystem const& desired);
  void removeStalePorts(std::vector<DesiredPort> const& desired, RemoteChanges& changes);
  void applyPort(PortEntry& entry, DesiredPort const& desired, RemoteChanges& changes);
  PortEntry makePort(DesiredPort const& desired, RemoteChanges& changes);
  void applyNeighbors(PortEntry& entry, std::vector<DesiredNeighbor> const& desired, RemoteChanges& changes);
  // True when the neighbour differs from before; `arriving` for a new one.
  bool applyNeighbor(Lldp::RemoteSystem& neighbor, DesiredNeighbor const& desired, bool arriving,
                     double now) const;
  void applyStatus(DesiredStatus const& desired, RemoteChanges& changes);

  Zet::Ptr<Lldp::Config> config_;
  Zet::Ptr<Lldp::AllStatus> status_;
  Zet::Ptr<Lldp::LocalSystem> localSystem_;
  std::vector<PortEntry> ports_;
  PortObserver* portObserver_ = nullptr;
};

class Reconciler::Pass {
 public:
  Pass(Reconciler& reconciler, DesiredState const& state);
  Pass(Pass const&) = delete;
  Pass& operator=(Pass const&) = delete;
  // False once no port is left.
  bool step();
  // Once, after the last step.
  Report finish();

 private:
  Reconciler& reconciler_;
  DesiredState const& state_;
  bool const first_;
  RemoteChanges changes_;
  std::unordered_map<Ondo::IntfId, PortEntry*> kept_;  // not yet placed
  std::vector<PortEntry*> placed_;                     // in the snapshot's order; null: the next of made_
  std::vector<PortEntry> made_;
};

