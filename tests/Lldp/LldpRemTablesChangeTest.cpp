// Building lldpRemTablesChange: what reaches the agent's real trap manager,
// which holds it in its queue while net-snmp has not read its sinks.

#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "LldpRemTablesChange.h"
#include "Snmp/Config.h"
#include "Snmp/SnmpUtil.h"
#include "Snmp/TrapManager.h"
#include "Statebase/Statebase.h"
#include "Zet/Demangle.h"
#include "Zet/Entity.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace {

using Oid = std::vector<oid>;

// A variable binding as the tests read it: an OID value or an integer one.
struct Binding {
  Oid name;
  int type;
  Oid objectId;
  unsigned long integer;
};

std::vector<Binding> bindings(variable_list const* vars) {
  std::vector<Binding> result;
  for (auto const* v = vars; v; v = v->next_variable) {
    bool const isOid = v->type == ASN_OBJECT_ID;
    result.push_back({Oid(v->name, v->name + v->name_length), v->type,
                      isOid ? Oid(v->val.objid, v->val.objid + v->val_len / sizeof(oid)) : Oid(),
                      isOid ? 0 : static_cast<unsigned long>(*v->val.integer)});
  }
  return result;
}

Zet::Ptr<Snmp::TrapManager> trapManager() {
  auto const name = Zet::demangle(typeid(Snmp::TrapManager));
  return Zet::ptrCast<Snmp::TrapManager>(Zet::Entity::singletonIs(&Snmp::TrapManager::_zetType, name));
}

class LldpRemTablesChange : public testing::Test {
 protected:
  void SetUp() override {
    config_ = Zet::makePtr<Snmp::Config>();
    Statebase::entityIs(SnmpUtil::snmpConfigPath, config_);
    trapManager()->pendingDelAll();
    Zet::Trace::configure("Snmp=4");
    Zet::Trace::sinkIs([this](Zet::String const& handle, int level, std::string_view text) {
      if (handle == Zet::String("Snmp")) {
        traces_.push_back(std::to_string(level) + " " + std::string(text));
      }
    });
  }
  void TearDown() override {
    Zet::Trace::sinkIs(nullptr);
    Zet::Trace::configure("Snmp=-1");
    Zet::System::currentTimeSourceIs(nullptr);
    trapManager()->pendingDelAll();
    Statebase::entityDel(SnmpUtil::snmpConfigPath);
  }

  // The registration the host makes at start, with an optional delay.
  void registerNotification(std::optional<double> delay = std::nullopt) {
    auto const group = config_->notificationConfigIs("lldp");
    group->notificationIs("lldpRemTablesChange");
    if (delay) {
      group->delayIs({"lldpRemTablesChange"}, *delay);
    }
  }

  bool traced(std::string const& line) const { return std::ranges::find(traces_, line) != traces_.end(); }

  Zet::Ptr<Snmp::Config> config_;
  std::vector<std::string> traces_;
};

// The host registers the group and the notification at start; without either the process ends.
TEST_F(LldpRemTablesChange, DiesWhenTheGroupOrTheNotificationIsNotRegistered) {
  EXPECT_DEATH(Snmp::lldpRemTablesChangeNotify(1, 2, 3, 4, ""),
               "LldpMIB:[0-9]+: .*Assertion `snmpConfig->notificationConfig\\( \"lldp\" \\) && \"You need to "
               "register lldp traps from your DefaultConfigPlugin\"' failed");
  config_->notificationConfigIs("lldp");
  EXPECT_DEATH(Snmp::lldpRemTablesChangeNotify(1, 2, 3, 4, ""),
               "LldpMIB:[0-9]+: .*Assertion `snmpConfig->notificationConfig\\( \"lldp\" \\)->notification\\( "
               "\"lldpRemTablesChange\" \\) && \"You need to register lldpRemTablesChange traps from your "
               "DefaultConfigPlugin\"' failed");
}

TEST_F(LldpRemTablesChange, TurnedOffQueuesNothingAndTracesWhy) {
  registerNotification();
  config_->notificationsEnabledIs(false, "notifications turned off with --no-notifications");
  EXPECT_EQ(Snmp::lldpRemTablesChangeNotify(1, 2, 3, 4, ""), 0);
  EXPECT_EQ(trapManager()->pendingCount(), 0u);
  EXPECT_TRUE(traced("4 lldpRemTablesChange notification not sent. notificationStatus returned notifications "
                     "turned off with --no-notifications"));
  EXPECT_FALSE(traced("4 Adding lldpRemTablesChange notification to trap queue"));
}

TEST_F(LldpRemTablesChange, GoesAtOnceWithoutAPositiveDelay) {
  for (std::optional<double> const delay : {std::optional<double>(), std::optional<double>(0.0),
                                            std::optional<double>(-3.0)}) {
    SCOPED_TRACE(delay ? std::to_string(*delay) : "none");
    config_ = Zet::makePtr<Snmp::Config>();
    Statebase::entityIs(SnmpUtil::snmpConfigPath, config_);
    registerNotification(delay);
    trapManager()->pendingDelAll();
    EXPECT_EQ(Snmp::lldpRemTablesChangeNotify(1, 2, 3, 4, ""), 0);
    auto const pending = trapManager()->pending();
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending[0].sendTime, 0.0);
  }
}

TEST_F(LldpRemTablesChange, DelayCountsFromItsOwnReadingOfTheClock) {
  registerNotification(2.5);
  // Each reading is a second later than the one before.
  double clock = 10.0;
  Zet::System::currentTimeSourceIs([&clock] { return clock += 1.0; });
  double const handlerNow = Zet::System::currentTime();
  EXPECT_EQ(Snmp::lldpRemTablesChangeNotify(1, 2, 3, 4, ""), 0);
  auto const pending = trapManager()->pending();
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0].sendTime, handlerNow + 1.0 + 2.5);
}

TEST_F(LldpRemTablesChange, BindsTheNotificationAndFourGaugesInMibOrder) {
  registerNotification();
  std::uint32_t const aboveS32 = 4294967294u;
  EXPECT_EQ(Snmp::lldpRemTablesChangeNotify(7, 0, 2147483648u, aboveS32, "ctx"), 0);
  EXPECT_TRUE(traced("4 Adding lldpRemTablesChange notification to trap queue"));

  auto const pending = trapManager()->pending();
  ASSERT_EQ(pending.size(), 1u);
  EXPECT_EQ(pending[0].context, Zet::String("ctx"));
  auto const b = bindings(pending[0].vars);
  // snmpTrapOID.0 comes first: no sysUpTime.0 of ours, net-snmp adds it when sending.
  ASSERT_EQ(b.size(), 5u);
  EXPECT_EQ(b[0].name, (Oid{1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0}));
  EXPECT_EQ(b[0].type, ASN_OBJECT_ID);
  EXPECT_EQ(b[0].objectId, (Oid{1, 0, 8802, 1, 1, 2, 0, 0, 1}));

  // lldpStatsRemTablesInserts.0 to lldpStatsRemTablesAgeouts.0, columns 2 to 5.
  unsigned long const values[] = {7, 0, 2147483648ul, aboveS32};
  for (oid column = 2; column <= 5; ++column) {
    SCOPED_TRACE(column);
    EXPECT_EQ(b[column - 1].name, (Oid{1, 0, 8802, 1, 1, 2, 1, 2, column, 0}));
    EXPECT_EQ(b[column - 1].type, ASN_GAUGE);
    EXPECT_EQ(b[column - 1].integer, values[column - 2]);
  }
}

}  // namespace
