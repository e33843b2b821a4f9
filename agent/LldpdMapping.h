#pragma once
// What lldpd knows, as plain values read out of liblldpctl's atoms, and the
// LLDP state it becomes. Nothing here talks to lldpd: every choice of a value
// is made from these inputs, so that it can be tested without a daemon.
//
// README.md, "Live feed from lldpd", tells the mapping to users.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "DesiredState.h"
#include "LldpAgent/RemoteSystemMsap.h"
#include "Zet/String.h"

struct LldpdManagementAddress {
  std::string address;   // as lldpd writes it: "192.0.2.1", "2001:db8::1"
  std::int64_t ifIndex = 0;  // 0: unknown

  friend bool operator==(LldpdManagementAddress const&, LldpdManagementAddress const&) = default;
};

struct LldpdChassis {
  std::int32_t idSubtype = 0;  // lldpd's subtypes are the MIB's
  std::string id;              // bytes
  std::string name;
  std::string description;
  std::uint32_t capAvailable = 0;  // lldpd's LLDP_CAP_* bits are the MIB's bits
  std::uint32_t capEnabled = 0;
  std::vector<LldpdManagementAddress> managementAddresses;
};

struct LldpdCustomTlv {
  std::string oui;  // three bytes
  std::uint32_t subtype = 0;
  std::string info;
};

struct LldpdVlan {
  std::int64_t id = 0;
  std::string name;
};

struct LldpdPpvid {
  std::int64_t id = 0;
  std::uint32_t status = 0;  // LLDP_PPVID_CAP_* bits
};

struct LldpdPower {
  std::int64_t deviceType = 0;  // 0: none; LLDP_DOT3_POWER_PSE 1, _PD 2
  bool supported = false;
  bool enabled = false;
  bool pairControl = false;
  std::int64_t pairs = 0;
  std::int64_t powerClass = 0;
};

// What one end of a link announces: a local port, or a neighbour's port.
struct LldpdPortInfo {
  std::int32_t idSubtype = 0;
  std::string id;  // bytes
  std::string description;
  std::int64_t pvid = 0;
  std::vector<LldpdVlan> vlans;
  std::vector<LldpdPpvid> ppvids;
  std::vector<std::string> protocolIds;  // bytes
  std::int64_t mfs = 0;
  std::int64_t aggregationId = 0;
  bool autonegSupported = false;
  bool autonegEnabled = false;
  std::uint32_t autonegAdvertised = 0;  // as on the wire: LLDP_DOT3_LINK_AUTONEG_OTHER is 0x8000
  std::uint32_t mauType = 0;
  LldpdPower power;
  std::vector<LldpdCustomTlv> customTlvs;
};

struct LldpdNeighbor {
  LldpdChassis chassis;
  LldpdPortInfo port;
  std::int64_t lastChange = 0;  // lldpd's age of the neighbour: seconds since the epoch
};

struct LldpdCounters {
  std::uint32_t tx = 0;
  std::uint32_t rx = 0;
  std::uint32_t rxDiscarded = 0;
  std::uint32_t rxUnrecognized = 0;
  std::uint32_t ageouts = 0;
  std::uint32_t inserts = 0;
  std::uint32_t deletes = 0;
};

// lldpd's per-port LLDP mode (lldpcli "configure ports X lldp status"), numbered as liblldpctl gives it.
enum class LldpdPortMode : std::int32_t { unknown = 0, txOnly = 1, rxOnly = 2, disabled = 3, rxAndTx = 4 };

struct LldpdInterface {
  std::string name;
  std::int64_t ifIndex = 0;
  LldpdPortMode mode = LldpdPortMode::rxAndTx;
  LldpdPortInfo local;
  LldpdCounters counters;
  std::vector<LldpdNeighbor> neighbors;
};

struct LldpdConfig {
  std::int64_t txInterval = 30;
  std::int64_t txHold = 4;
  bool receiveOnly = false;
  bool capabilitiesAdvertised = true;
  bool managementAdvertised = true;
};

// The parts of the mapping that decide one value each.
namespace LldpdMapping {

// `bytes` cut to at most `limit` bytes; when they are valid UTF-8, the cut
// falls before a character, never inside one.
Zet::String bounded(std::string_view bytes, std::size_t limit);
bool isUtf8(std::string_view bytes);

Lldp::RemoteSystemMsap msapOf(LldpdNeighbor const& neighbor);
// Addresses lldpd cannot tell the family of are left out; the first of equal ones is kept.
std::vector<Lldp::ManagementAddress> managementAddresses(std::vector<LldpdManagementAddress> const& addresses);
// `startEpoch`: the wall clock (seconds since the epoch) at sysUpTime 0.
DesiredNeighbor neighbor(LldpdNeighbor const& neighbor, std::int32_t index, double startEpoch);
DesiredLocalSystem localSystem(LldpdChassis const& chassis, LldpdConfig const& config);
DesiredPortConfig portConfig(LldpdInterface const& interface, LldpdConfig const& config);
DesiredLocalPort localPort(LldpdPortInfo const& port);
DesiredPortStatus portStatus(LldpdCounters const& counters);
DesiredConfig config(LldpdConfig const& config);

// Port numbers for the interfaces, by name: the ifIndex when it is 1 to 4094;
// otherwise the number the interface had in `previous`, while no ifIndex
// claims it, or else the next number above every number given. An interface
// that finds no number at all is left out.
std::map<std::string, std::uint16_t> portNumbers(std::vector<std::pair<std::string, std::int64_t>> const& ifIndexes,
                                                 std::map<std::string, std::uint16_t> const& previous);

}  // namespace LldpdMapping

// lldpd's state as the feed has learnt it, whole reads and change
// notifications merged, and the snapshot it gives. Neighbours are numbered per
// port in the order they arrive (1, 2, ...; never reused while the port
// stays), and keep their index across reads for as long as their MSAP stays.
class LldpdState {
 public:
  explicit LldpdState(double startEpoch) : startEpoch_(startEpoch) {}

  // The wall clock at sysUpTime 0 moves with the uptime origin (a new AgentX
  // master): the neighbours' change times stay where lldpd put them.
  void startEpochIs(double startEpoch);
  double startEpoch() const { return startEpoch_; }

  void configIs(LldpdConfig const& config) { config_ = config; }
  void localChassisIs(LldpdChassis const& chassis) { localChassis_ = chassis; }
  // A read of every interface: interfaces not in the list leave, with their
  // neighbours. Those named in `unreadable` are there but could not be read:
  // they stay as they are, or join with their name alone.
  void interfacesIs(std::vector<LldpdInterface> const& interfaces, std::vector<std::string> const& unreadable = {});
  // A read of one interface: its neighbours become exactly those it lists.
  void interfaceIs(LldpdInterface const& interface);
  // A neighbour added or updated, or deleted, on the named interface, counted
  // in its inserts or deletes as lldpd counts them. False when the interface
  // is not known, and nothing changed.
  bool neighborIs(std::string const& interfaceName, LldpdNeighbor const& neighbor);
  bool neighborDel(std::string const& interfaceName, LldpdNeighbor const& neighbor);
  bool hasInterface(std::string const& name) const { return ports_.contains(name); }

  DesiredState snapshot() const;

 private:
  struct Port {
    LldpdInterface interface;  // without its neighbours
    std::map<std::int32_t, DesiredNeighbor> neighbors;
    std::unordered_map<Lldp::RemoteSystemMsap, std::int32_t> indexes;
    std::int32_t nextIndex = 1;
  };

  Port& portIs(LldpdInterface const& interface);
  // True when the neighbour is new on the port.
  bool upsert(Port& port, LldpdNeighbor const& neighbor);
  void renumber();

  double startEpoch_;
  LldpdConfig config_;
  LldpdChassis localChassis_;
  std::map<std::string, Port> ports_;
  std::map<std::string, std::uint16_t> numbers_;
};
