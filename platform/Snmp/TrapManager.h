#pragma once
// The agent's sender of SNMP notifications. One per process, reached by the
// name of its type:
//   Zet::Entity::singletonExists(Zet::demangle(typeid(Snmp::TrapManager)))
// Everything runs on the agent's event-loop thread: a held notification waits
// on net-snmp's alarm, which the loop runs, never on a thread or a signal.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Zet/Entity.h"
#include "Zet/String.h"
#include "Zet/ZetType.h"

struct variable_list;  // net-snmp's netsnmp_variable_list

namespace Snmp {

class TrapManager : public Zet::Entity {
 public:
  static Zet::ZetType const _zetType;

  // A notification that has not gone out yet.
  struct Pending {
    variable_list const* vars;
    Zet::String context;
    double sendTime;
  };

  explicit TrapManager(Zet::Name name);
  ~TrapManager() override;
  TrapManager(TrapManager const&) = delete;
  TrapManager& operator=(TrapManager const&) = delete;

  // Takes over `vars` (the bindings from snmpTrapOID.0 on; net-snmp adds
  // sysUpTime.0) and sends them to every configured sink in `context`, ""
  // being the default one. A sendTime of 0.0 or in the past means now; a later
  // one, on the clock of Zet::System::currentTime(), waits for net-snmp's
  // alarm. The sinks come from net-snmp's configuration: one that is due
  // before net-snmp has read it waits for the event loop's first turn. The
  // list is freed once sent.
  void enqueueTrap(variable_list* vars, Zet::String context, double const& sendTime);

  // What waits, oldest first; the views last until the queue changes.
  std::vector<Pending> pending() const;
  std::size_t pendingCount() const { return queue_.size(); }
  // Drops every waiting notification without sending it.
  void pendingDelAll();
  // Notifications handed to net-snmp so far.
  std::uint64_t sentCount() const { return sentCount_; }

 private:
  struct VarsDeleter {
    void operator()(variable_list* vars) const;
  };
  struct Entry {
    std::unique_ptr<variable_list, VarsDeleter> vars;
    Zet::String context;
    double sendTime;
    unsigned alarm;  // net-snmp's alarm registration; 0 when none is set
    bool woken;      // its alarm went off: due, whatever the clock says
  };

  // net-snmp's alarm callback, with `clientarg` the manager.
  static void onAlarm(unsigned int alarm, void* manager);
  // A one-shot alarm `seconds` from now that wakes this manager.
  unsigned newAlarm(double seconds);

  // Sends every entry that is due, in queue order, once the sinks are known.
  void sendDue();

  std::vector<Entry> queue_;
  std::uint64_t sentCount_ = 0;
};

}  // namespace Snmp
