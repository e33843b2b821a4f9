// The modules' registration lifecycle against the real net-snmp agent library,
// in process: the agent listens on a loopback port and a manager in the same
// process asks it, which net-snmp serves within the manager's wait.

#include <dlfcn.h>

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "AgentProcess.h"
#include "LldpAgent/AllStatus.h"
#include "LldpAgent/Config.h"
#include "LldpAgent/LocalSystem.h"
#include "LldpAgent/PortConfig.h"
#include "LldpMIB.h"
#include "LldpXdot1MIB.h"
#include "LldpXdot3MIB.h"
#include "MirrorWorld.h"
#include "Root.h"
#include "Snmp/AutoRegistree.h"
#include "Snmp/HandlerFrame.h"
#include "Snmp/MibContext.h"
#include "SnmpClient.h"
#include "Statebase/Statebase.h"

extern "C" void init_vacm_conf(void);

namespace {

int snprintObjidCalls = 0;

}  // namespace

// Counts the plug-in's calls; the plug-in's objects are linked into this
// program, so they bind to this definition before the library's.
extern "C" int snprint_objid(char* buffer, size_t length, oid const* name, size_t nameLength) {
  ++snprintObjidCalls;
  using Real = int (*)(char*, size_t, oid const*, size_t);
  static auto const real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "snprint_objid"));
  return real(buffer, length, name, nameLength);
}

namespace {

constexpr char const* scalarOids[] = {
    "1.0.8802.1.1.2.1.1.1", "1.0.8802.1.1.2.1.1.2", "1.0.8802.1.1.2.1.1.3", "1.0.8802.1.1.2.1.1.4",
    "1.0.8802.1.1.2.1.1.5", "1.0.8802.1.1.2.1.2.1", "1.0.8802.1.1.2.1.2.2", "1.0.8802.1.1.2.1.2.3",
    "1.0.8802.1.1.2.1.2.4", "1.0.8802.1.1.2.1.2.5", "1.0.8802.1.1.2.1.3.1", "1.0.8802.1.1.2.1.3.2",
    "1.0.8802.1.1.2.1.3.3", "1.0.8802.1.1.2.1.3.4", "1.0.8802.1.1.2.1.3.5", "1.0.8802.1.1.2.1.3.6"};

// One agent for the whole program: net-snmp's agent library starts once per process.
class AgentLibrary : public testing::Environment {
 public:
  void SetUp() override {
    Statebase::entityIs("Statebase/l2discovery/lldp/config", Zet::makePtr<Lldp::Config>());
    Statebase::entityIs("Statebase/l2discovery/lldp/status/all", Zet::makePtr<Lldp::AllStatus>());
    auto local = Zet::makePtr<Lldp::LocalSystem>();
    local->chassisIdentifierIs(4, Zet::String("\x00\x1c\x73\xaa\xbb\xcc", 6));
    Statebase::entityIs("Statebase/l2discovery/lldp/localSystem", local);
    // The tables find the mirror at registration.
    Statebase::entityIs("snmp/lldp/root", Lldp::Snmp::Root::RootIs(Zet::Name("root")));

    setenv("MIBS", "", 1);
    port = freeUdpPort();
    directory_ = makeTempDirectory();
    netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, directory_.c_str());
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS,
                          ("udp:127.0.0.1:" + std::to_string(port)).c_str());
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS, 1);
    init_agent("lldp-registration-test");
    Snmp::installHandlerFrame();
    init_vacm_conf();
    char line[] = "rocommunity public 127.0.0.1";
    netsnmp_config_remember(line);
    init_snmp("lldp-registration-test");
    ASSERT_EQ(init_master_agent(), 0);
  }
  void TearDown() override {
    snmp_shutdown("lldp-registration-test");
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }

  static inline int port = 0;

 private:
  std::string directory_;
};

testing::Environment* const agentLibrary = testing::AddGlobalTestEnvironment(new AgentLibrary);

class Registration : public testing::Test {
 protected:
  void TearDown() override {
    for (auto const& [context, mib] : Snmp::mibContexts()) {
      unregister_LldpMIB(context);
      unregister_LldpXdot1MIB(context);
      unregister_LldpXdot3MIB(context);
    }
  }

  // Scalars that net-snmp holds a registration for in a context nothing else uses.
  static int registeredScalars(char const* context) {
    int count = 0;
    for (auto const* text : scalarOids) {
      oid name[MAX_OID_LEN];
      size_t length = MAX_OID_LEN;
      read_objid((std::string(".") + text + ".0").c_str(), name, &length);
      count += netsnmp_subtree_find(name, length, nullptr, context) != nullptr;
    }
    return count;
  }

  // Scalars of the default context that answer a GET with a value.
  static int servedScalars() {
    SnmpClient client("udp:127.0.0.1:" + std::to_string(AgentLibrary::port), "public");
    std::vector<std::string> instances;
    for (auto const* text : scalarOids) {
      instances.push_back(std::string(text) + ".0");
    }
    auto const r = client.get(instances);
    return static_cast<int>(std::count_if(r.varBinds.begin(), r.varBinds.end(), [](VarBind const& b) {
      return b.type != SNMP_NOSUCHOBJECT && b.type != SNMP_NOSUCHINSTANCE;
    }));
  }

  static Response getNotificationInterval() {
    SnmpClient client("udp:127.0.0.1:" + std::to_string(AgentLibrary::port), "public");
    return client.get({"1.0.8802.1.1.2.1.1.5.0"});
  }

  static bool hasMibContext(char const* context, char const* mib) {
    auto const all = Snmp::mibContexts();
    return std::find(all.begin(), all.end(), std::pair<Zet::String, Zet::String>(context, mib)) != all.end();
  }

};

TEST_F(Registration, ModulesAreRecordedInLoadOrder) {
  auto const modules = Snmp::AutoRegistree::registrations();
  ASSERT_EQ(modules.size(), 3u);
  modules[0]->initHandler("");
  EXPECT_TRUE(hasMibContext("", "LldpMIB"));
  EXPECT_FALSE(hasMibContext("", "LldpXdot1MIB"));
  modules[1]->initHandler("");
  modules[2]->initHandler("");
  auto const contexts = Snmp::mibContexts();
  ASSERT_EQ(contexts.size(), 3u);
  EXPECT_EQ(contexts[1].second, Zet::String("LldpXdot1MIB"));
  EXPECT_EQ(contexts[2].second, Zet::String("LldpXdot3MIB"));
}

TEST_F(Registration, DefaultContextRegistersAllSixteenScalarsAndServesThem) {
  init_LldpMIB("");
  EXPECT_EQ(servedScalars(), 16);
  auto const r = getNotificationInterval();
  ASSERT_FALSE(r.timedOut);
  ASSERT_EQ(r.varBinds.size(), 1u);
  EXPECT_EQ(r.varBinds[0].type, ASN_INTEGER);
  EXPECT_EQ(r.varBinds[0].integer, 5);
}

TEST_F(Registration, NonDefaultContextRegistersNothingButRecordsTheMibContext) {
  init_LldpMIB("blue");
  init_LldpXdot1MIB("blue");
  init_LldpXdot3MIB("blue");
  EXPECT_EQ(registeredScalars("blue"), 0);
  EXPECT_EQ(servedScalars(), 0);
  EXPECT_TRUE(hasMibContext("blue", "LldpMIB"));
  EXPECT_TRUE(hasMibContext("blue", "LldpXdot1MIB"));
  EXPECT_TRUE(hasMibContext("blue", "LldpXdot3MIB"));
  EXPECT_EQ(getNotificationInterval().varBinds.at(0).type, SNMP_NOSUCHOBJECT);
}

TEST_F(Registration, UnregisterThenInitServesAgain) {
  init_LldpMIB("");
  unregister_LldpMIB("");
  EXPECT_EQ(servedScalars(), 0);
  EXPECT_FALSE(hasMibContext("", "LldpMIB"));

  init_LldpMIB("");
  EXPECT_EQ(servedScalars(), 16);
  EXPECT_EQ(getNotificationInterval().varBinds.at(0).integer, 5);
}

TEST_F(Registration, UnregisterOfUnknownContextStillTellsTheHost) {
  Snmp::registerMibContext("red", "LldpMIB");
  unregister_LldpMIB("red");
  EXPECT_FALSE(hasMibContext("red", "LldpMIB"));
}

TEST_F(Registration, OidsAreFormattedOnlyWhenTraceLevelOneIsOn) {
  snprintObjidCalls = 0;
  {
    TraceCapture const levelZeroOnly{{"Snmp", 0b1}};
    init_LldpMIB("");
  }
  EXPECT_EQ(snprintObjidCalls, 0);
  unregister_LldpMIB("");
  std::vector<std::string> lines;
  {
    TraceCapture const trace{{"Snmp", 0b11}};
    init_LldpMIB("");
    lines = trace.starting("", 1);
  }
  // One OID formatted per line: the 16 scalars', then the tables'.
  EXPECT_EQ(snprintObjidCalls, static_cast<int>(lines.size()));
  ASSERT_GT(lines.size(), 16u);
  EXPECT_EQ(lines[0], "init_LldpMIB initializing oid iso.0.8802.1.1.2.1.1.1 in context \"\"");
  EXPECT_EQ(lines[16], "initialize_table_lldpPortConfigTable initializing oid iso.0.8802.1.1.2.1.1.6 in context \"\"");
}

TEST_F(Registration, SkippedScalarsAreTracedOncePerObject) {
  std::vector<std::string> lines;
  {
    TraceCapture const trace{{"Snmp", 0b100}};
    init_LldpMIB("green");
    lines = trace.starting("", 2);
  }
  // One line per scalar, then one per table.
  ASSERT_GT(lines.size(), 16u);
  EXPECT_EQ(lines[0],
            "init_LldpMIB in context \"green\": statebasePathWithContext not specified for lldpMessageTxInterval; "
            "skipping registration");
  EXPECT_EQ(lines[15].rfind("init_LldpMIB in context", 0), 0u);
  EXPECT_EQ(lines[16],
            "initialize_table_lldpPortConfigTable in context \"green\" statebasePathWithContext not specified ");
}

// The agent library with the host's frame around its handlers: lldpPortConfigTable
// on a Root whose port 2 has an enabledTlvs no MIB value stands for.
TEST_F(Registration, AnExceptionOutOfAHandlerIsAGenErrAndTheAgentKeepsServing) {
  auto const root = Lldp::Snmp::Root::RootIs(Zet::Name("root"));
  root->portConfigIs(Interface::EthPortId(1), Zet::makePtr<Lldp::PortConfig>());
  auto wide = Zet::makePtr<Lldp::PortConfig>();
  wide->enabledTlvsIs(0x10);
  root->portConfigIs(Interface::EthPortId(2), wide);
  Statebase::entityIs("snmp/lldp/root", root);
  initialize_table_lldpPortConfigTable(nullptr, "");

  SnmpClient client("udp:127.0.0.1:" + std::to_string(AgentLibrary::port), "public");
  auto const failed = client.get({"1.0.8802.1.1.2.1.1.6.1.4.2"});
  ASSERT_FALSE(failed.timedOut);
  EXPECT_EQ(failed.errorStatus, SNMP_ERR_GENERR);
  auto const served = client.get({"1.0.8802.1.1.2.1.1.6.1.4.1"});
  ASSERT_FALSE(served.timedOut);
  EXPECT_EQ(served.errorStatus, SNMP_ERR_NOERROR);
  EXPECT_EQ(served.varBinds.at(0).bytes, std::string(1, '\0'));
  unregister_LldpMIB("");
}

using RegistrationDeathTest = Registration;

// A state path that is missing or holds another type ends the process at
// registration, naming the path and the object, for scalars and tables alike.
TEST_F(RegistrationDeathTest, MissingOrForeignEntityEndsTheProcessNamingThePath) {
  struct Case {
    char const* path;
    Zet::Ptr<Zet::Entity> replacement;  // null: the path is emptied
    std::function<void()> registration;
    char const* message;
  } const cases[] = {
      {"Statebase/l2discovery/lldp/status/all", nullptr, [] { init_LldpMIB(""); },
       "Can not getEntityRelative\\( Statebase/l2discovery/lldp/status/all \\) for scalar "
       "lldpStatsRemTablesLastChangeTime. Is this path correct\\?\n"
       "LldpMIB:[0-9]+: void init_LldpMIB\\(Zet::String\\): Assertion `e_lldpStatsRemTablesLastChangeTime'"},
      {"Statebase/l2discovery/lldp/localSystem", Zet::makePtr<Lldp::Config>(), [] { init_LldpMIB(""); },
       "Statebase/l2discovery/lldp/localSystem does not appear to be of type Lldp::LocalSystem for scalar "
       "lldpLocChassisIdSubtype.\nLldpMIB:[0-9]+: void init_LldpMIB\\(Zet::String\\): Assertion "
       "`ptr_lldpLocChassisIdSubtype'"},
      {"snmp/lldp/root", nullptr, [] { initialize_table_lldpPortConfigTable(nullptr, ""); },
       "Can not getEntityRelative\\( snmp/lldp/root \\) for table lldpPortConfigTable. Is this path "
       "correct\\?\nLldpMIB:[0-9]+: void initialize_table_lldpPortConfigTable\\(Zet::Ptr<const "
       "Snmp::Config>, Zet::String\\): Assertion `e' failed"},
      {"snmp/lldp/root", Zet::makePtr<Lldp::PortConfig>(), [] { initialize_table_lldpLocPortTable(nullptr, ""); },
       "snmp/lldp/root does not appear to be of type Lldp::Snmp::Root.\nLldpMIB:[0-9]+: void "
       "initialize_table_lldpLocPortTable\\(.*\\): Assertion `ptr' failed"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.path);
    auto const saved = Statebase::entity(c.path);
    if (c.replacement) {
      Statebase::entityIs(c.path, c.replacement);
    } else {
      Statebase::entityDel(c.path);
    }
    EXPECT_DEATH(c.registration(), c.message);
    Statebase::entityIs(c.path, saved);
  }
}

}  // namespace
