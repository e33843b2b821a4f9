// The table engine where SNMP would hide a fault: how a hint starts a walk,
// which rows the time filter lets through, and how the handlers answer
// crafted request lists.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <string>
#include <string_view>
#include <vector>

#include "LldpAgent/LocalPort.h"
#include "LldpAgent/PortConfig.h"
#include "LldpAgent/RemoteSystem.h"
#include "LldpMIB.h"
#include "MirrorWorld.h"
#include "Root.h"
#include "SnmpConversions.h"
#include "TableEngine.h"
#include "Zet/Exception.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::Root;
using TableEngine::ColumnDesc;
using TableEngine::IndexDesc;
using TableEngine::Sorted;
using TableEngine::TableDesc;
using TableEngine::TimeFilter;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

int readNothing(void const*, unsigned char*, int) { return 0; }
ColumnDesc const oneColumn[] = {{1, "testColumn", "attribute", "conversion", ASN_INTEGER, 1024, 0, -1, readNothing}};

IndexDesc const portIndexes[] = {{"testPortNum", ASN_INTEGER}};
TableDesc const portTable{"testPortTable", {1, 3, 6, 1, 4, 1, 99999, 1}, HANDLER_CAN_RONLY, portIndexes, oneColumn,
                          Sorted::yes, TimeFilter::no, nullptr, &TableEngine::portConfigRows};

IndexDesc const remoteIndexes[] = {
    {"testTimeMark", ASN_TIMETICKS}, {"testLocalPortNum", ASN_INTEGER}, {"testIndex", ASN_INTEGER}};
TableDesc const remoteTable{"testRemTable", {1, 3, 6, 1, 4, 1, 99999, 2}, HANDLER_CAN_RONLY, remoteIndexes,
                            oneColumn, Sorted::yes, TimeFilter::yes, nullptr, &TableEngine::remoteSystemRows};

TableEngine::RowFilter const portVlanFilter{"portVlanIdTlvReceived", [](void const* context) {
                                              return portVlanIdTlvReceived(
                                                  *static_cast<RemoteSystemIterator const*>(context));
                                            }};
TableDesc const filteredTable{"testFilteredTable", {1, 3, 6, 1, 4, 1, 99999, 3}, HANDLER_CAN_RONLY, remoteIndexes,
                              oneColumn, Sorted::yes, TimeFilter::yes, &portVlanFilter,
                              &TableEngine::remoteSystemRows};

IndexDesc const orgDefIndexes[] = {{"testTimeMark", ASN_TIMETICKS}, {"testLocalPortNum", ASN_INTEGER},
                                   {"testIndex", ASN_INTEGER},      {"testOui", ASN_PRIV_IMPLIED_OCTET_STR},
                                   {"testSubtype", ASN_INTEGER},    {"testOrgDefIndex", ASN_INTEGER}};
TableDesc const orgDefTable{"testOrgDefTable", {1, 3, 6, 1, 4, 1, 99999, 4}, HANDLER_CAN_RONLY, orgDefIndexes,
                            oneColumn, Sorted::yes, TimeFilter::yes, nullptr, &TableEngine::remoteUnknownOrgDefTlvRows};

// A variable list as net-snmp builds one from a table's indexes; freed with the object.
class Variables {
 public:
  Variables() = default;
  explicit Variables(std::span<IndexDesc const> indexes) {
    for (auto const& index : indexes) {
      snmp_varlist_add_variable(&list_, nullptr, 0, index.type, nullptr, 0);
    }
  }
  ~Variables() { snmp_free_varbind(list_); }
  Variables(Variables const&) = delete;
  Variables& operator=(Variables const&) = delete;

  Variables& integer(u_char type, long value) {
    snmp_varlist_add_variable(&list_, nullptr, 0, type, &value, sizeof value);
    return *this;
  }
  // As a manager's value too wide for a 32-bit integer arrives: net-snmp would truncate it on the way in.
  Variables& wideInteger(long value) {
    *snmp_varlist_add_variable(&list_, nullptr, 0, ASN_INTEGER, nullptr, 0)->val.integer = value;
    return *this;
  }
  Variables& octets(u_char type, std::string const& bytes) {
    snmp_varlist_add_variable(&list_, nullptr, 0, type, bytes.data(), bytes.size());
    return *this;
  }
  netsnmp_variable_list* get() const { return list_; }
  netsnmp_variable_list* at(std::size_t i) const {
    auto* v = list_;
    for (; i > 0 && v; --i) {
      v = v->next_variable;
    }
    return v;
  }
  long integerAt(std::size_t i) const { return *at(i)->val.integer; }

 private:
  netsnmp_variable_list* list_ = nullptr;
};

class TableWalk : public testing::Test {
 protected:
  TableWalk() { iinfo_.myvoid = root_.get(); }

  // Starts a walk of `table` with `hint` (null: none) and gives the first row's index.
  netsnmp_variable_list* first(TableDesc const& table, netsnmp_table_request_info* hint, Variables const& out) {
    loop_ = hint;
    void* data = nullptr;
    return TableEngine::firstDataPoint(table, &loop_, &data, out.get(), &iinfo_);
  }
  netsnmp_variable_list* next(TableDesc const& table, Variables const& out) {
    void* data = nullptr;
    return TableEngine::nextDataPoint(table, &loop_, &data, out.get(), &iinfo_);
  }
  void endWalk(TableDesc const& table) {
    TableEngine::freeLoopContextAtEnd(table, loop_);
    loop_ = nullptr;
  }

  void neighbour(std::uint16_t port, std::int32_t index, double lastChangeTime, bool portVlanIdTlv = false) {
    auto inbound = Zet::makePtr<Lldp::RemoteSystem>(index, Lldp::RemoteSystemMsap());
    inbound->lastChangeTimeIs(lastChangeTime);
    inbound->portVlanIdTlvReceivedIs(portVlanIdTlv);
    root_->remoteSystemIs({EthPortId(port), index}, inbound);
  }

  Zet::Ptr<Root> const root_ = Root::RootIs(Zet::Name("root"));
  netsnmp_iterator_info iinfo_{};
  void* loop_ = nullptr;
};

struct PortHintCase {
  char const* what;
  u_char type;
  long value;
  std::uint16_t startPort;
  bool matched;
  char const* trace;  // empty: the hint is passed over without a word
  unsigned int numberIndexes = 1;
};

TEST_F(TableWalk, APortHintStartsAtItsRowOrElseAtTheFirst) {
  for (std::uint16_t port : {1, 3, 7}) {
    root_->portConfigIs(EthPortId(port), Zet::makePtr<Lldp::PortConfig>());
  }
  PortHintCase const cases[] = {
      {"an existing port", ASN_INTEGER, 3, 3, true, "hint component testPortNum is '3'"},
      {"65539 narrows to port 3", ASN_INTEGER, 65539, 3, true, "hint component testPortNum is '65539'"},
      {"65537 narrows to port 1", ASN_INTEGER, 65537, 1, true, "hint component testPortNum is '65537'"},
      {"port 0 is a key, with no row here", ASN_INTEGER, 0, 1, false,
       "testPortTable_get_first_data_point - key '0' not found in table"},
      {"4095 is no port", ASN_INTEGER, 4095, 1, false,
       "Bad hint for testPortTable: Interface::EthPortId ctor threw exception: "
       "EthPortId::value < EthPortId::min or > EthPortId::max not allowed"},
      {"a value beyond 32 bits", ASN_INTEGER, 1L << 33, 1, false,
       "hint for index testPortNum of testPortTable is out of range! "},
      {"an octet string", ASN_OCTET_STR, 0, 1, false, "hint for testPortNum has incorrect type! Expecting 2 but got 4"},
      {"no index, as on a GETNEXT of the column", ASN_INTEGER, 3, 1, false, "", 0},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.what);
    Variables hintValues;
    if (c.type == ASN_INTEGER) {
      hintValues.wideInteger(c.value);
    } else {
      hintValues.octets(c.type, "3");
    }
    netsnmp_table_request_info hint{};
    hint.number_indexes = c.numberIndexes;
    hint.indexes = hintValues.get();
    Variables out(portIndexes);
    TraceCapture const trace{{"Snmp", 0b111}};
    ASSERT_EQ(first(portTable, &hint, out), out.get());
    EXPECT_EQ(out.integerAt(0), c.startPort);
    EXPECT_THAT(trace.text(), HasSubstr(c.matched ? ", hintMatched=1" : ", hintMatched=0"));
    if (*c.trace) {
      EXPECT_THAT(trace.text(), HasSubstr(c.trace));
    } else {
      EXPECT_THAT(trace.text(), Not(AnyOf(HasSubstr("hint component"), HasSubstr("needed"))));
    }
    if (!c.matched && c.type != ASN_INTEGER) {
      EXPECT_THAT(trace.text(), HasSubstr("testPortTable_get_first_data_point - needed 1 components, found only 0"));
    }
    endWalk(portTable);
  }
}

TEST_F(TableWalk, ANeighbourHintSkipsTheMarkAndNarrowsThePort) {
  neighbour(1, 1, 10.0);
  neighbour(2, 5, 10.0);
  neighbour(2, 6, 10.0);
  struct Case {
    char const* what;
    long port;
    bool indexIsInteger;
    long startPort;
    long startIndex;
    char const* trace;
  } const cases[] = {
      {"an existing neighbour", 2, true, 2, 6, ", hintMatched=1"},
      {"port 65538 narrows to 2", 65538, true, 2, 6, ", hintMatched=1"},
      {"an index of the wrong type", 2, false, 1, 1,
       "testRemTable_get_first_data_point - needed 3 components, found only 2"},
      {"port 5000", 5000, true, 1, 1,
       "Bad hint for testRemTable: Lldp::Snmp::RemoteSystem::Key ctor threw exception: "},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.what);
    Variables hintValues;
    // The mark's type is not looked at: it is a condition, not part of the key.
    hintValues.integer(ASN_INTEGER, 0).integer(ASN_INTEGER, c.port);
    if (c.indexIsInteger) {
      hintValues.integer(ASN_INTEGER, 6);
    } else {
      hintValues.octets(ASN_OCTET_STR, "6");
    }
    netsnmp_table_request_info hint{};
    hint.number_indexes = 3;
    hint.indexes = hintValues.get();
    Variables out(remoteIndexes);
    TraceCapture const trace{{"Snmp", 0b111}};
    ASSERT_EQ(first(remoteTable, &hint, out), out.get());
    EXPECT_EQ(out.integerAt(1), c.startPort);
    EXPECT_EQ(out.integerAt(2), c.startIndex);
    EXPECT_THAT(trace.text(), HasSubstr(c.trace));
    endWalk(remoteTable);
  }
}

TEST_F(TableWalk, AnOuiHintComponentIsReadAsItsThreeOctets) {
  auto const inbound = Zet::makePtr<Lldp::RemoteSystem>(1, Lldp::RemoteSystemMsap());
  root_->remoteUnknownOrgDefTlvIs({{EthPortId(1), 1, Lldp::Oui(0x00120f), 1, 1}, inbound, {}});
  root_->remoteUnknownOrgDefTlvIs({{EthPortId(1), 1, Lldp::Oui(0x0080c2), 7, 1}, inbound, {}});
  Variables hintValues;
  hintValues.integer(ASN_TIMETICKS, 0).integer(ASN_INTEGER, 1).integer(ASN_INTEGER, 1);
  hintValues.octets(ASN_PRIV_IMPLIED_OCTET_STR, std::string("\x00\x80\xc2", 3));
  hintValues.integer(ASN_INTEGER, 7).integer(ASN_INTEGER, 1);
  netsnmp_table_request_info hint{};
  hint.number_indexes = 6;
  hint.indexes = hintValues.get();
  Variables out(orgDefIndexes);
  TraceCapture const trace{{"Snmp", 0b111}};
  first(orgDefTable, &hint, out);
  EXPECT_THAT(trace.text(), HasSubstr("hint component testOui is '00-80-c2'"));
  EXPECT_THAT(trace.text(), HasSubstr(", hintMatched=1"));
  auto const* oui = out.at(3);
  EXPECT_EQ(oui->type, ASN_PRIV_IMPLIED_OCTET_STR);
  EXPECT_EQ(std::string(reinterpret_cast<char const*>(oui->val.string), oui->val_len), std::string("\x00\x80\xc2", 3));
  EXPECT_EQ(out.integerAt(4), 7);
  endWalk(orgDefTable);
}

TEST_F(TableWalk, TheTimeFilterPassesRowsUpToTwoTicksPastTheirChangeAndKeepsTheMark) {
  neighbour(1, 1, 50.0);          // 5000 ticks
  neighbour(2, 1, 90.0, true);    // 9000 ticks
  root_->remoteSystemIs({EthPortId(3), 1}, nullptr);  // no neighbour: the stamp 0.0, 0 ticks
  neighbour(4, 1, 42949672.955, true);  // 0xffffffff ticks: plus two wraps to 1
  struct Case {
    TableDesc const* table;
    long mark;
    std::vector<long> ports;
  } const cases[] = {
      {&remoteTable, 0, {1, 2, 3, 4}},  {&remoteTable, 2, {1, 2, 3}}, {&remoteTable, 5002, {1, 2}},
      {&remoteTable, 5003, {2}},        {&remoteTable, 9003, {}},
      // The row filter hides neighbours without the TLV, and the one without a neighbour.
      {&filteredTable, 0, {2, 4}},      {&filteredTable, 9002, {2}},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(std::string(c.table->name) + " at mark " + std::to_string(c.mark));
    Variables out;
    out.integer(ASN_TIMETICKS, c.mark).integer(ASN_INTEGER, 0).integer(ASN_INTEGER, 0);
    std::vector<long> ports;
    for (auto* got = first(*c.table, nullptr, out); got && ports.size() < 10; got = next(*c.table, out)) {
      ports.push_back(out.integerAt(1));
      EXPECT_EQ(out.integerAt(0), c.mark);
    }
    EXPECT_EQ(ports, c.ports);
    endWalk(*c.table);
  }
}

// A request list as the iterator helper leaves it for a table handler: each
// request with its varbind, its column and the row it found (or none).
class Requests {
 public:
  struct RequestShape {
    unsigned int column;
    void const* context;  // an iterator of the table's collection; null: no row found
    bool processed = false;
  };
  Requests(int mode, std::vector<RequestShape> const& shapes) : infos_(shapes.size()), requests_(shapes.size()) {
    reqinfo_.mode = mode;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      auto& r = requests_[i];
      r.agent_req_info = &reqinfo_;
      r.processed = shapes[i].processed;
      r.next = i + 1 < shapes.size() ? &requests_[i + 1] : nullptr;
      snmp_varlist_add_variable(&r.requestvb, nullptr, 0, ASN_NULL, nullptr, 0);
      infos_[i].colnum = shapes[i].column;
      netsnmp_request_add_list_data(&r, netsnmp_create_data_list(TABLE_HANDLER_NAME, &infos_[i], nullptr));
      if (shapes[i].context) {
        netsnmp_request_add_list_data(
            &r, netsnmp_create_data_list(TABLE_ITERATOR_NAME, const_cast<void*>(shapes[i].context), nullptr));
      }
    }
  }
  ~Requests() {
    for (auto& r : requests_) {
      netsnmp_free_request_data_sets(&r);
      snmp_free_varbind(r.requestvb);
    }
  }
  Requests(Requests const&) = delete;
  Requests& operator=(Requests const&) = delete;

  int handle(Netsnmp_Node_Handler* handler) { return handler(nullptr, nullptr, &reqinfo_, requests_.data()); }
  netsnmp_request_info const& operator[](std::size_t i) const { return requests_[i]; }
  // Neither answered nor marked.
  bool untouched(std::size_t i) const { return requests_[i].requestvb->type == ASN_NULL && requests_[i].status == 0; }

 private:
  netsnmp_agent_request_info reqinfo_{};
  std::vector<netsnmp_table_request_info> infos_;
  std::vector<netsnmp_request_info> requests_;
};

class TableRequests : public testing::Test {
 protected:
  TableRequests() {
    auto config = Zet::makePtr<Lldp::PortConfig>();
    config->adminStatusIs(Lldp::AdminStatus::rxOnly);
    root_->portConfigIs(EthPortId(1), config);
    auto wide = Zet::makePtr<Lldp::PortConfig>();
    wide->enabledTlvsIs(0x10);
    root_->portConfigIs(EthPortId(2), wide);
    auto local = Zet::makePtr<Lldp::LocalPort>(Ondo::IntfId("Ethernet1"));
    local->portIdIs(Lldp::PortId(Zet::String("Ethernet1")));
    root_->localPortIs(EthPortId(1), local);
    root_->localPortIs(EthPortId(5), nullptr);
  }

  Root::RowMap<Lldp::Snmp::PortConfig>::IteratorConst configAt(std::uint16_t port) const {
    return root_->portConfig().iterator(root_->portConfig(EthPortId(port)).get());
  }
  Root::RowMap<Lldp::Snmp::LocalPort>::IteratorConst localAt(std::uint16_t port) const {
    return root_->localPort().iterator(root_->localPort(EthPortId(port)).get());
  }

  Zet::Ptr<Root> const root_ = Root::RootIs(Zet::Name("root"));
};

TEST_F(TableRequests, GetAnswersUntilARequestWithoutDataContext) {
  auto const row = configAt(1);
  Requests list(MODE_GET, {{2, &row}, {2, nullptr}, {2, &row}});
  EXPECT_EQ(list.handle(lldpPortConfigTable_handler), SNMP_ERR_NOERROR);
  EXPECT_EQ(list[0].requestvb->type, ASN_INTEGER);
  EXPECT_EQ(*list[0].requestvb->val.integer, 2);  // rxOnly
  EXPECT_TRUE(list.untouched(1));
  EXPECT_TRUE(list.untouched(2));
}

TEST_F(TableRequests, GetOfAColumnOutsideTheTableIsNoSuchObjectOnThatRequestAlone) {
  auto const row = configAt(1);
  TraceCapture const trace{{"Snmp", 0b1}};
  Requests list(MODE_GET, {{3, &row}, {9, &row}, {2, &row}});
  EXPECT_EQ(list.handle(lldpPortConfigTable_handler), SNMP_ERR_NOERROR);
  EXPECT_EQ(*list[0].requestvb->val.integer, 1);  // notificationEnable: true
  EXPECT_EQ(list[1].requestvb->type, SNMP_NOSUCHOBJECT);
  EXPECT_TRUE(list.untouched(2));
  EXPECT_THAT(trace.text(), HasSubstr("lldpPortConfigTable invalid column 9"));
}

TEST_F(TableRequests, AValueOutOfItsLengthBoundFailsTheHeadOfTheList) {
  auto const good = localAt(1);
  auto const empty = localAt(5);
  TraceCapture const trace{{"Snmp", 0b111}};
  Requests list(MODE_GET, {{3, &good}, {3, &empty}, {2, &good}});
  EXPECT_EQ(list.handle(lldpLocPortTable_handler), SNMP_ERR_GENERR);
  EXPECT_EQ(list[0].status, SNMP_ERR_GENERR);
  EXPECT_EQ(list[1].status, 0);
  EXPECT_TRUE(list.untouched(2));
  EXPECT_THAT(trace.text(),
              HasSubstr("handle_lldpLocPortTable - entity /<sysname>/snmp/lldp/root length out of range: portId (0)"));
}

TEST_F(TableRequests, EnabledTlvsAboveFifteenLeavesTheHandlerAsARangeException) {
  auto const row = configAt(2);
  Requests list(MODE_GET, {{4, &row}});
  EXPECT_THROW(
      {
        try {
          list.handle(lldpPortConfigTable_handler);
        } catch (Zet::RangeException const& e) {
          EXPECT_STREQ(e.what(), "EnabledTlvs::value > 0xf not allowed");
          throw;
        }
      },
      Zet::RangeException);
}

TEST_F(TableRequests, EveryOtherModeMarksTheFirstUnprocessedRequestNotWritable) {
  auto const row = configAt(1);
  struct Case {
    Netsnmp_Node_Handler* handler;
    int mode;
    unsigned int column;
    char const* trace;
  } const cases[] = {
      {lldpPortConfigTable_handler, MODE_SET_RESERVE1, 2,
       "lldpPortConfigTable_handler: SET is not configured for column lldpPortConfigAdminStatus"},
      {lldpPortConfigTable_handler, MODE_SET_ACTION, 4,
       "lldpPortConfigTable_handler: SET is not configured for column lldpPortConfigTLVsTxEnable"},
      {lldpPortConfigTable_handler, MODE_SET_RESERVE1, 9, "lldpPortConfigTable invalid column 9"},
      // Read-only tables have no SET text for any column.
      {lldpStatsRxPortTable_handler, MODE_SET_RESERVE1, 2, "lldpStatsRxPortTable invalid column 2"},
  };
  for (auto const& c : cases) {
    SCOPED_TRACE(c.trace);
    TraceCapture const trace{{"Snmp", 0b111}};
    Requests list(c.mode, {{c.column, &row, true}, {c.column, &row}, {c.column, &row}});
    EXPECT_EQ(list.handle(c.handler), SNMP_ERR_NOERROR);
    EXPECT_EQ(list[0].status, 0);
    EXPECT_EQ(list[1].status, SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(list[2].status, 0);
    EXPECT_THAT(trace.text(), HasSubstr(c.trace));
    EXPECT_THAT(trace.text(), HasSubstr("already processed"));
  }
}

}  // namespace
