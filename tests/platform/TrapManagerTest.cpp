// The trap manager over a real net-snmp agent library: a test socket on the
// loopback stands as the trap2sink, and what arrives there is decoded.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <typeinfo>
#include <vector>

#include "Snmp/TrapManager.h"
#include "Zet/Demangle.h"
#include "Zet/Entity.h"
#include "Zet/System.h"

namespace {

using Oid = std::vector<oid>;

Oid const sysUpTime{1, 3, 6, 1, 2, 1, 1, 3, 0};
Oid const snmpTrapOid{1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
// Notifications of the test's own, in net-snmp's playground: the agent library
// sends standard ones (coldStart) by itself, which the sink passes over.
Oid const ownTrapOne{1, 3, 6, 1, 4, 1, 8072, 9999, 0, 1};
Oid const ownTrapTwo{1, 3, 6, 1, 4, 1, 8072, 9999, 0, 2};
Oid const standardTraps{1, 3, 6, 1, 6, 3, 1, 1, 5};

// What the sink got: the bindings' names, with the value of snmpTrapOID.0.
struct Trap {
  std::vector<Oid> names;
  Oid trapOid;
};

// The notification in `bytes`, if they hold an SNMPv2 trap.
std::optional<Trap> decode(std::vector<u_char>& bytes) {
  size_t length = bytes.size();
  u_char community[256];
  size_t communityLength = sizeof community;
  long version = 0;
  u_char* const data = snmp_comstr_parse(bytes.data(), &length, community, &communityLength, &version);
  std::unique_ptr<netsnmp_pdu, decltype(&snmp_free_pdu)> const pdu(snmp_pdu_create(0), &snmp_free_pdu);
  if (data == nullptr || snmp_pdu_parse(pdu.get(), data, &length) != SNMPERR_SUCCESS ||
      pdu->command != SNMP_MSG_TRAP2) {
    return std::nullopt;
  }
  Trap trap;
  for (auto* v = pdu->variables; v != nullptr; v = v->next_variable) {
    trap.names.emplace_back(v->name, v->name + v->name_length);
    if (trap.names.back() == snmpTrapOid && v->type == ASN_OBJECT_ID) {
      trap.trapOid.assign(v->val.objid, v->val.objid + v->val_len / sizeof(oid));
    }
  }
  return trap;
}

// A UDP socket on the loopback that plays the notification sink.
class Sink {
 public:
  Sink() : fd_(socket(AF_INET, SOCK_DGRAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t size = sizeof address;
    getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
  }
  ~Sink() { close(fd_); }
  Sink(Sink const&) = delete;
  Sink& operator=(Sink const&) = delete;

  int port() const { return port_; }

  // The next notification of the test's own, running net-snmp's alarms while
  // it waits; bounded at about 10 s.
  std::optional<Trap> next() {
    for (int round = 0; round < 200; ++round) {
      run_alarms();
      pollfd p{fd_, POLLIN, 0};
      if (poll(&p, 1, 50) != 1) {
        continue;
      }
      std::vector<u_char> bytes(65536);
      auto const n = recv(fd_, bytes.data(), bytes.size(), 0);
      bytes.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
      auto trap = decode(bytes);
      if (!trap || !std::equal(standardTraps.begin(), standardTraps.end(), trap->trapOid.begin(),
                               trap->trapOid.end())) {
        return trap;
      }
    }
    return std::nullopt;
  }

 private:
  int fd_;
  int port_ = 0;
};

Sink& sink() {
  static Sink s;
  return s;
}

bool netSnmpStarted() {
  return netsnmp_ds_get_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_HAVE_READ_CONFIG) != 0;
}

// net-snmp as the agent runs it, with our sink as its only trap2sink and no
// configuration of the machine's.
void startNetSnmp() {
  if (netSnmpStarted()) {
    return;
  }
  // net-snmp's persistent files; gone when the process ends.
  static struct Directory {
    Directory() { std::filesystem::create_directories(path); }
    ~Directory() {
      std::error_code ec;
      std::filesystem::remove_all(path, ec);
    }
    std::string const path =
        (std::filesystem::temp_directory_path() / ("trap-manager-test-" + std::to_string(getpid()))).string();
  } const directory;
  setenv("MIBS", "", 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
  netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, directory.path.c_str());
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 0);
  init_agent("trapManagerTest");
  std::string line = "trap2sink 127.0.0.1:" + std::to_string(sink().port()) + " public";
  netsnmp_config_remember(line.data());
  init_snmp("trapManagerTest");
}

Zet::Ptr<Snmp::TrapManager> manager() {
  auto const name = Zet::demangle(typeid(Snmp::TrapManager));
  return Zet::ptrCast<Snmp::TrapManager>(Zet::Entity::singletonIs(&Snmp::TrapManager::_zetType, name));
}

variable_list* notification(Oid const& trapOid) {
  netsnmp_variable_list* vars = nullptr;
  snmp_varlist_add_variable(&vars, snmpTrapOid.data(), snmpTrapOid.size(), ASN_OBJECT_ID, trapOid.data(),
                            trapOid.size() * sizeof(oid));
  return vars;
}

// The snmpTrapOID.0 of the next notification the sink gets; empty if none comes.
Oid nextTrapOid() {
  auto const trap = sink().next();
  return trap ? trap->trapOid : Oid();
}

// Runs first: it needs a process in which net-snmp has not read its configuration yet.
TEST(TrapManager, HoldsADueNotificationUntilTheLoopRunsWithTheSinksRead) {
  if (netSnmpStarted()) {
    GTEST_SKIP() << "net-snmp already started";
  }
  auto const m = manager();
  EXPECT_EQ(Zet::Entity::singletonExists("Snmp::TrapManager"), m);
  auto const sentBefore = m->sentCount();
  m->enqueueTrap(notification(ownTrapOne), "", 0.0);
  // A loop that turns before net-snmp has started has no sink to send to.
  run_alarms();
  EXPECT_EQ(m->pendingCount(), 1u);
  EXPECT_EQ(m->sentCount(), sentBefore);

  startNetSnmp();
  EXPECT_EQ(nextTrapOid(), ownTrapOne);
  EXPECT_EQ(m->pendingCount(), 0u);
  EXPECT_EQ(m->sentCount(), sentBefore + 1);
}

TEST(TrapManager, SendsADueNotificationAtOnceHoldsALaterOneForTheAlarmAndDropsWhatWaits) {
  startNetSnmp();
  auto const m = manager();
  auto const sentBefore = m->sentCount();
  double const later = Zet::System::currentTime() + 0.2;
  m->enqueueTrap(notification(ownTrapTwo), "ctx", later);
  m->enqueueTrap(notification(ownTrapOne), "", 0.0);
  // Only the event loop runs alarms, so the later one cannot have gone yet.
  ASSERT_EQ(m->pendingCount(), 1u);
  EXPECT_EQ(m->pending()[0].sendTime, later);
  EXPECT_EQ(m->pending()[0].context, Zet::String("ctx"));
  EXPECT_EQ(m->sentCount(), sentBefore + 1);

  auto const due = sink().next();
  ASSERT_TRUE(due);
  // net-snmp puts sysUpTime.0 in front of the bindings it was given.
  EXPECT_EQ(due->names, (std::vector<Oid>{sysUpTime, snmpTrapOid}));
  EXPECT_EQ(due->trapOid, ownTrapOne);
  EXPECT_EQ(nextTrapOid(), ownTrapTwo);
  EXPECT_EQ(m->pendingCount(), 0u);
  EXPECT_EQ(m->sentCount(), sentBefore + 2);

  m->enqueueTrap(notification(ownTrapTwo), "", Zet::System::currentTime() + 0.05);
  m->pendingDelAll();
  EXPECT_EQ(m->pendingCount(), 0u);
  // Well past the time the alarm would have gone off, had it stayed.
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  run_alarms();
  EXPECT_EQ(m->sentCount(), sentBefore + 2);
}

}  // namespace
