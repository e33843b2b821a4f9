#define ZET_UNIT "LldpSnmp"

#include "LldpSm.h"

#include <cstdint>
#include <ostream>

#include "LldpRemTablesChange.h"
#include "MirrorRows.h"
#include "Ringlog/Ringlog.h"
#include "Root.h"
#include "SnmpConversions.h"
#include "Zet/Assert.h"
#include "Zet/Exception.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace Lldp::Snmp {

namespace {

// A key goes to the ring log as its two values.
struct RinglogKey {
  Lldp::ManagementAddress::Key const& key;
  friend std::ostream& operator<<(std::ostream& os, RinglogKey const& k) {
    return os << k.key.manAddrSubtype << " " << k.key.stringValue();
  }
};

}  // namespace

Zet::Ptr<LldpSm> LldpSm::LldpSmIs(Zet::Ptr<Lldp::AllStatus const> const& status,
                                  Zet::Ptr<Lldp::LocalSystem const> const& localSystem,
                                  Zet::Ptr<Lldp::Config const> const& config, Zet::Ptr<Root> const& root) {
  auto sm = Zet::makePtr<LldpSm>(Passkey{}, status, localSystem, config, root);
  // The first scan belongs to construction; it runs here, where a counted
  // reference already holds the object that the handlers pass around.
  sm->handleInitialized();
  sm->hasNotificationActiveIs(true);
  return sm;
}

LldpSm::LldpSm(Passkey, Zet::Ptr<Lldp::AllStatus const> const& status,
               Zet::Ptr<Lldp::LocalSystem const> const& localSystem, Zet::Ptr<Lldp::Config const> const& config,
               Zet::Ptr<Root> const& root)
    : status_(status, this), localSystem_(localSystem, this), config_(config), root_(root) {}

LldpSm::~LldpSm() {
  zetDoZombieReactors(true);
  status_.ownerClear();
  localSystem_.ownerClear();
  manAddrDelAll();
  manAddrPrioDelAll();
}

void LldpSm::statusIs(Zet::Ptr<Lldp::AllStatus const> const& status) {
  status_.notifierIs(status, this, zetMarkedForDeletion());
}

Zet::Ptr<Lldp::AllStatus const> LldpSm::statusDel() { return status_.notifierDel(); }

void LldpSm::localSystemIs(Zet::Ptr<Lldp::LocalSystem const> const& localSystem) {
  localSystem_.notifierIs(localSystem, this, zetMarkedForDeletion());
}

Zet::Ptr<Lldp::LocalSystem const> LldpSm::localSystemDel() { return localSystem_.notifierDel(); }

void LldpSm::hasNotificationActiveIs(bool b) { notificationActiveIs(*this, b, status_, localSystem_); }

void LldpSm::zetDoZombieReactors(bool z) { doZombieReactors(*this, z, status_, localSystem_); }

void LldpSm::handleInitialized() {
  Ringlog::BlockTimer const timer("void Lldp::Snmp::LldpSm::handleInitialized()");
  ZET_TRACE(_defaultTraceHandle(), 8) << "LldpSm::handleInitialized()";
  ringlogWrite(8, "LldpSm::handleInitialized()");
  auto const local = localSystem();
  // Addresses before priorities: each priority then finds its address's row.
  for (auto const& [key, address] : local->managementAddress()) {
    handleManagementAddress(key);
  }
  for (auto const& [prio, key] : local->managementAddressPrio()) {
    handleManagementAddressPrio(prio);
  }
  // Not before: until now the conversions have no mirror to read. No
  // notification either, whatever remTablesLastChangeTime says.
  lldpRootIs(root_);
}

void LldpSm::handleLastChangeTime() {
  Ringlog::BlockTimer const timer("void Lldp::Snmp::LldpSm::handleLastChangeTime()");
  double const now = Zet::System::currentTime();
  // Strict: exactly one interval after the last one, the next may go.
  if (lastNotificationTime_ + Lldp::Config::notificationInterval() > now) {
    ZET_TRACE(_defaultTraceHandle(), 6) << "Suppressing lldpRemTablesChange notification at time " << now;
    return;
  }
  auto const counters = status();
  std::uint32_t const inserts = counters->remTablesInserts();
  std::uint32_t const deletes = counters->remTablesDeletes();
  std::uint32_t const drops = counters->remTablesDrops();
  std::uint32_t const ageouts = counters->remTablesAgeouts();
  int const err = ::Snmp::lldpRemTablesChangeNotify(inserts, deletes, drops, ageouts, "");
  ringlogWrite(4, "Generated lldpRemTablesChange notification at time ", now, " err= ", err);
  ZET_TRACE(_defaultTraceHandle(), 4) << "Generated lldpRemTablesChange notification at time " << now
                                      << ", err=" << err;
  ZET_ASSERT(err == (0));
  // A refused notification starts a quiet period all the same.
  lastNotificationTimeIs(now);
}

void LldpSm::handleManagementAddress(Lldp::ManagementAddress::Key const& key) {
  Ringlog::BlockTimer const timer(
      "void Lldp::Snmp::LldpSm::handleManagementAddress(const Lldp::ManagementAddress::Key&)");
  ZET_TRACE(_defaultTraceHandle(), 2) << "LldpSm::handleManagementAddress( " << key << " )";
  ringlogWrite(2, "LldpSm::handleManagementAddress( ", RinglogKey{key}, " )");
  Zet::Ptr<LldpSm> const self(this);
  if (localSystem()->managementAddressHas(key)) {
    doAddLocalManagementAddress(self, key);
  } else {
    doRemoveLocalManagementAddress(self, key);
  }
}

void LldpSm::handleManagementAddressPrio(Lldp::ManAddrPriority const& prio) {
  Ringlog::BlockTimer const timer(
      "void Lldp::Snmp::LldpSm::handleManagementAddressPrio(const Lldp::ManAddrPriority&)");
  ZET_TRACE(_defaultTraceHandle(), 2) << "LldpSm::handleManagementAddressPrio( " << prio << " )";
  Zet::Ptr<LldpSm> const self(this);
  auto const local = localSystem();
  auto const& prios = local->managementAddressPrio();
  // The entry, or else the next greater priority, which is not this one.
  auto const found = prios.lower_bound(prio);
  if (found != prios.end() && found->first == prio) {
    Lldp::ManagementAddress::Key const manAddrKey = found->second;
    // The writer puts an address in before its priority and takes it out after.
    ZET_ASSERT(localSystem()->managementAddressHas( manAddrKey ));
    manAddrIs(prio, manAddrKey);
    manAddrPrioIs(manAddrKey, prio);
    doAddLocalManagementAddress(self, manAddrKey);
    return;
  }
  // Gone from the notifier: only the state machine's copy knows whose it was.
  auto const key = manAddrDel(prio);
  manAddrPrioDel(key);
  doRemoveLocalManagementAddress(self, key);
}

void LldpSm::handleLocalPort(Ondo::IntfId intfId, Interface::EthPortId ethPortId) {
  Ringlog::BlockTimer const timer(
      "void Lldp::Snmp::LldpSm::handleLocalPort(Ondo::IntfId, Interface::EthPortId)");
  ZET_TRACE(_defaultTraceHandle(), 2) << "LldpSm::handleLocalPort( " << intfId << " )";
  ringlogWrite(2, "LldpSm::handleLocalPort( ", intfId, " )");
  Zet::Ptr<LldpSm> const self(this);
  auto const local = localSystem();
  bool const present = local->localPortHas(intfId);
  // Over the notifier's priorities: an address without one keeps an empty list.
  for (auto const& [prio, key] : local->managementAddressPrio()) {
    if (present) {
      doAddLocalManagementAddressPort(self, key, ethPortId);
    } else {
      doRemoveLocalManagementAddressPort(self, key, ethPortId);
    }
  }
}

void LldpSm::manAddrPrioIs(Lldp::ManagementAddress::Key const& key, Lldp::ManAddrPriority const& prio) {
  manAddrPrio_.newMember(key, prio);
}

Lldp::ManAddrPriority LldpSm::manAddrPrioDel(Lldp::ManagementAddress::Key const& key) {
  return manAddrPrio_.deleteMember(key);
}

void LldpSm::manAddrPrioDelAll() {
  // The walk survives the deletion of the member it stands on.
  for (auto it = manAddrPrio_.iterator(); !it.atEnd(); it.advance()) {
    manAddrPrioDel(it.currNodeMaybeStale().first);
  }
}

Lldp::ManagementAddress::Key LldpSm::manAddr(Lldp::ManAddrPriority const& prio) const {
  auto const node = manAddr_[prio];
  return node ? node->key() : Lldp::ManagementAddress::Key();
}

void LldpSm::manAddrIs(Lldp::ManAddrPriority const& prio, Lldp::ManagementAddress::Key const& key) {
  if (auto const node = manAddr_[prio]) {
    node->keyIs(key);
    return;
  }
  auto node = Zet::makePtr<ZetManAddr>(prio, key);
  node->hasNotificationActiveIs(true);
  manAddr_.memberIs(node);
}

Lldp::ManagementAddress::Key LldpSm::manAddrDel(Lldp::ManAddrPriority const& prio) {
  auto const node = manAddr_.memberDel(prio);
  return node ? node->key() : Lldp::ManagementAddress::Key();
}

Lldp::ManagementAddress::Key LldpSm::manAddrDel(ManAddrs::Iterator const& it) {
  auto const node = manAddr_.memberDel(it);
  return node ? node->key() : Lldp::ManagementAddress::Key();
}

void LldpSm::manAddrDelAll() {
  // The iterator finds its way on through the changed tree.
  for (auto it = manAddr_.iteratorMutable(); !it.atEnd(); it.advance()) {
    manAddrDel(it);
  }
}

void doAddLocalManagementAddress(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key) {
  ZET_TRACE(_defaultTraceHandle(), 2) << "Adding LocalManagementAddress with key " << key;
  ringlogWrite(2, "Adding LocalManagementAddress with key ", RinglogKey{key});
  Root& root = *sm->root();
  if (!root.localManagementAddress(key)) {
    auto const row = root.localManagementAddressIs(key);
    // WARNING: a row that exists keeps the record it was made with, unlike a
    // neighbour's, which is overwritten. Keep it so.
    row->rawValueIs(sm->localSystem()->managementAddress(key));
    row->portsTxEnableIs("portsTxEnable");
  }
  // Also for a row that was there: a repeat costs a walk and changes nothing.
  for (auto it = root.localPort().iterator(); !it.atEnd(); it.advance()) {
    doAddLocalManagementAddressPort(sm, key, it->ethPortId());
  }
}

void doRemoveLocalManagementAddress(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key) {
  ZET_TRACE(_defaultTraceHandle(), 2) << "Removing LocalManagementAddress with key " << key;
  ringlogWrite(2, "Removing LocalManagementAddress with key ", RinglogKey{key});
  // The list goes with the row; an absent row is no fault.
  sm->root()->localManagementAddressDel(key);
}

void doAddLocalManagementAddressPort(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key,
                                     Interface::EthPortId ethPortId) {
  ZET_TRACE(_defaultTraceHandle(), 2) << "Adding port " << ethPortId << " to ManagementAddress with key " << key;
  ringlogWrite(2, "Adding port ", ethPortId, "  to ManagementAddress with key ", RinglogKey{key});
  auto const row = sm->root()->localManagementAddress(key);
  if (!row) {
    return;
  }
  // Compared by value: a real priority equal to the default counts as none.
  if (sm->manAddrPrio(key) == Lldp::ManAddrPriority()) {
    return;
  }
  if (ethPortId.value() > Interface::EthPortId::max) {
    Zet::throwRangeException("EthPortId::value < EthPortId::min or > EthPortId::max not allowed");
  }
  row->portsTxEnable()->portIdIs(ethPortId);
}

void doRemoveLocalManagementAddressPort(Zet::Ptr<LldpSm> const& sm, Lldp::ManagementAddress::Key const& key,
                                        Interface::EthPortId ethPortId) {
  // Traced first, so also for an address without a row.
  ZET_TRACE(_defaultTraceHandle(), 2) << "Removing port " << ethPortId << " from ManagementAddress with key " << key;
  ringlogWrite(2, "Removing port ", ethPortId, " from ManagementAddress with key ", RinglogKey{key});
  auto const row = sm->root()->localManagementAddress(key);
  if (!row) {
    return;
  }
  if (sm->manAddrPrio(key) == Lldp::ManAddrPriority()) {
    return;
  }
  row->portsTxEnable()->portIdDel(ethPortId.value());
}

}  // namespace Lldp::Snmp
