#include "TableEngine.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "Bridging/VlanId.h"
#include "Interface/EthPortId.h"
#include "LldpAgent/Oui.h"
#include "Root.h"
#include "Snmp/Conversions.h"
#include "Snmp/SnmpUtil.h"
#include "SnmpConversions.h"
#include "Zet/Assert.h"
#include "Zet/Exception.h"
#include "Zet/Trace.h"

using Lldp::Snmp::Root;

namespace {

Zet::TraceHandle const& _defaultTraceHandle() {
  static Zet::TraceHandle const handle("Snmp", false);
  return handle;
}

constexpr char const* rootPath = Lldp::Snmp::Root::path;

}  // namespace

namespace TableEngine {

// The request's index as a hint carries it, one slot per index component in
// index order; a slot that is not read stays 0.
struct HintValue {
  std::int32_t integer = 0;
  Lldp::Oui oui;
};
constexpr std::size_t maxIndexes = 6;
using HintValues = std::array<HintValue, maxIndexes>;

// The components of a requested index, after a time filter's mark, that a
// request window reads: integers not negative, strings whole.
struct IndexValue {
  std::int32_t integer = 0;
  Zet::String octets;
};
using IndexValues = std::array<IndexValue, maxIndexes>;

// The longest address an index carries; a longer key is written as an empty string.
constexpr int maxIndexAddress = 31;

// Writes a row's index into the variables net-snmp handed over, one after the other.
class IndexWriter {
 public:
  IndexWriter(char const* table, netsnmp_variable_list* first) : table_(table), next_(first) {}

  void integer(char const* label, std::int32_t value) {
    traceValue(label, value);
    unsigned char buffer[1024];
    put(ASN_INTEGER, buffer, Snmp::S32ToAsnIntegerF()(value, buffer, sizeof buffer));
  }
  // `shown` is what the trace writes for the bytes.
  template <class Shown>
  void octets(char const* label, Shown const& shown, Zet::String const& bytes, int bound) {
    traceValue(label, shown);
    unsigned char buffer[1024];
    put(ASN_OCTET_STR, buffer, Snmp::StringToAsnOctetStringF()(bytes, buffer, bound));
  }
  // Three sub-identifiers and no length: the index is registered as a fixed-length implied string.
  void oui(char const* label, Lldp::Oui value) {
    traceValue(label, value);
    unsigned char buffer[3];
    put(ASN_PRIV_IMPLIED_OCTET_STR, buffer, OuiToAsnOctetString(value, buffer, sizeof buffer));
  }

 private:
  template <class Value>
  void traceValue(char const* label, Value const& value) const {
    ZET_TRACE(_defaultTraceHandle(), 2) << table_ << "IterationHelper - iterator has another value: " << label
                                        << value;
  }
  void put(u_char type, unsigned char const* bytes, int length) {
    if (!next_) {
      return;
    }
    // A key too long for its index (an address over 31 bytes) must not arise;
    // should one, its index is written empty rather than out of bounds.
    snmp_set_var_typed_value(next_, type, bytes, length < 0 ? 0 : static_cast<std::size_t>(length));
    next_ = next_->next_variable;
  }

  char const* table_;
  netsnmp_variable_list* next_;
};

// A context is a heap iterator of the collection, handed around as void*.
struct Rows {
  // A new context at the first row; at the end when the collection is empty.
  void* (*first)(Root const& root);
  // A new context at the row whose key the hint names, or null, after tracing
  // why, when the key cannot be built or has no row.
  void* (*atHint)(Root const& root, HintValues const& values, TableDesc const& table);
  void* (*copy)(void const* context);
  // `to` stands where `from` stands.
  void (*assign)(void* to, void const* from);
  void (*advance)(void* context);
  void (*destroy)(void* context);
  // The context's current row, null at the end.
  void const* (*row)(void const* context);
  void (*writeIndexes)(void const* row, IndexWriter& writer);
  void (*streamKey)(std::ostream& os, void const* row);
  // The neighbour's lastChangeTime that the time filter compares; 0.0 for local rows.
  double (*timeMark)(void const* row);

  // Only for collections a request window walks, null for the others:
  // the first row at or above every key whose index starts with the first
  // `count` values, null past the last;
  void const* (*atOrAboveIndex)(Root const& root, IndexValues const& values, std::size_t count);
  // whether the row's index sorts in the OID as its key does.
  bool (*plainIndex)(void const* row);
  // For every collection: a new context at `row`, at the end for null.
  void* (*at)(Root const& root, void const* row);
  bool (*less)(void const* a, void const* b);
  // Moves with every change of the collection's keys.
  std::uint32_t (*version)(Root const& root);
};

namespace {

// What one collection adds to the walk, as traits:
//   collection(root)        the Root's collection;
//   write(row, writer)      the row's index, after a time filter's mark;
//   keyType, key(values)    how a hint becomes a key: only for collections of
//                           tables that take a hint; a range exception from
//                           key() makes the hint unusable;
//   timeMark(row)           only for the remote collections;
//   lowerBound(values, n),  only for collections a request window walks: the
//   plainIndex(row)         smallest key with the first n index values, and
//                           whether a row's index OID sorts as its key.
template <class Traits>
struct RowsOf {
  using Map = std::remove_cvref_t<decltype(Traits::collection(std::declval<Root const&>()))>;
  using Iterator = typename Map::IteratorConst;
  using Row = std::remove_cvref_t<decltype(*std::declval<Iterator const&>().get())>;
  using Key = std::remove_cvref_t<decltype(std::declval<Row const&>().fwkKey())>;

  static Iterator const* as(void const* context) { return static_cast<Iterator const*>(context); }
  static Row const& rowOf(void const* row) { return *static_cast<Row const*>(row); }
  static void* adopt(Iterator it) { return std::make_unique<Iterator>(std::move(it)).release(); }

  static void* first(Root const& root) { return adopt(Traits::collection(root).iterator()); }

  static void* atHint(Root const& root, HintValues const& values, TableDesc const& table) {
    if constexpr (requires { Traits::key(values); }) {
      std::optional<Key> key;
      try {
        [[maybe_unused]] Zet::Expect const rangeMayRaise;
        key.emplace(Traits::key(values));
      } catch (Zet::RangeException const& e) {
        ZET_TRACE(_defaultTraceHandle(), 0) << "Bad hint for " << table.name << ": " << Traits::keyType
                                            << " ctor threw exception: " << e.what();
        return nullptr;
      }
      auto const& map = Traits::collection(root);
      Row const* const row = map.atOrAbove(*key);
      if (!row || !(row->fwkKey() == *key)) {
        ZET_TRACE(_defaultTraceHandle(), 2) << table.name << "_get_first_data_point - key '" << *key
                                            << "' not found in table";
        return nullptr;
      }
      return adopt(map.iterator(row));
    } else {
      (void)root, (void)values, (void)table;
      return nullptr;
    }
  }

  static void* copy(void const* context) { return adopt(Iterator(*as(context))); }
  static void assign(void* to, void const* from) { *static_cast<Iterator*>(to) = *as(from); }
  static void advance(void* context) { static_cast<Iterator*>(context)->advance(); }
  static void destroy(void* context) { std::unique_ptr<Iterator> const gone(static_cast<Iterator*>(context)); }
  static void const* row(void const* context) { return as(context)->get(); }
  static void writeIndexes(void const* row, IndexWriter& writer) { Traits::write(rowOf(row), writer); }
  static void streamKey(std::ostream& os, void const* row) { os << rowOf(row).fwkKey(); }
  static double timeMark(void const* row) {
    if constexpr (requires(Row const& r) { Traits::timeMark(r); }) {
      return Traits::timeMark(rowOf(row));
    } else {
      (void)row;
      return 0.0;
    }
  }

  static constexpr bool windowed = requires(IndexValues const& v, Row const& r) {
    Traits::lowerBound(v, std::size_t{});
    Traits::plainIndex(r);
  };
  static void const* atOrAboveIndex(Root const& root, IndexValues const& values, std::size_t count) {
    if constexpr (windowed) {
      return Traits::collection(root).atOrAbove(Traits::lowerBound(values, count));
    } else {
      (void)root, (void)values, (void)count;
      return nullptr;
    }
  }
  static bool plainIndex(void const* row) {
    if constexpr (windowed) {
      return Traits::plainIndex(rowOf(row));
    } else {
      (void)row;
      return false;
    }
  }
  static void* at(Root const& root, void const* row) {
    return adopt(Traits::collection(root).iterator(static_cast<Row const*>(row)));
  }
  static bool less(void const* a, void const* b) { return rowOf(a).fwkKey() < rowOf(b).fwkKey(); }
  static std::uint32_t version(Root const& root) { return Traits::collection(root).version(); }
};

template <class Traits>
constexpr Rows rowsOf() {
  using R = RowsOf<Traits>;
  return {R::first,
          R::atHint,
          R::copy,
          R::assign,
          R::advance,
          R::destroy,
          R::row,
          R::writeIndexes,
          R::streamKey,
          R::timeMark,
          R::windowed ? R::atOrAboveIndex : nullptr,
          R::windowed ? R::plainIndex : nullptr,
          R::at,
          R::less,
          R::version};
}

// Index fields a request does not give take their smallest value, so that the
// bound is at or below every key that has the fields given.
constexpr std::int32_t smallestS32 = std::numeric_limits<std::int32_t>::min();

Lldp::ManagementAddress::Key addressLowerBound(IndexValues const& v, std::size_t first, std::size_t count) {
  std::int32_t const subtype = count > first ? v[first].integer : smallestS32;
  return {subtype, Lldp::ManAddress(count > first + 1 ? v[first + 1].octets : Zet::String())};
}

// Negative subtypes sort first among the keys but last in the OID, and an
// address the index cannot carry is written empty.
bool plainAddress(Lldp::ManagementAddress::Key const& key) {
  return key.manAddrSubtype >= 0 && key.manAddr.size() <= static_cast<std::size_t>(maxIndexAddress);
}

// A port as an index hint carries it: the low 16 bits, which must then be a port number.
Interface::EthPortId portOf(HintValue const& value) {
  return Interface::EthPortId(static_cast<std::uint16_t>(value.integer));
}

// The tables of one port: lldpPortConfigTable, the statistics and local port tables.
struct PortKeyed {
  static constexpr char const* keyType = "Interface::EthPortId";
  static Interface::EthPortId key(HintValues const& v) { return portOf(v[0]); }
  template <class Row>
  static void write(Row const& row, IndexWriter& w) {
    w.integer("portNum=", row.ethPortId().value());
  }
};
struct PortConfigSpec : PortKeyed {
  static auto const& collection(Root const& root) { return root.portConfig(); }
};
struct PortStatusSpec : PortKeyed {
  static auto const& collection(Root const& root) { return root.portStatus(); }
};
struct LocalPortSpec : PortKeyed {
  static auto const& collection(Root const& root) { return root.localPort(); }
};

// The address tables take no hint: net-snmp compares every row itself, of
// those a request window lets through.
struct LocalManagementAddressSpec {
  static auto const& collection(Root const& root) { return root.localManagementAddress(); }
  static void write(Lldp::Snmp::LocalManagementAddress const& row, IndexWriter& w) {
    w.integer("manAddrSubtype=", row.manAddrSubtype());
    w.octets("manAddr=", row.manAddr(), row.manAddr().value(), maxIndexAddress);
  }
  static Lldp::ManagementAddress::Key lowerBound(IndexValues const& v, std::size_t count) {
    return addressLowerBound(v, 0, count);
  }
  static bool plainIndex(Lldp::Snmp::LocalManagementAddress const& row) { return plainAddress(row.key()); }
};

// The tables of one neighbour: after the mark, its port and index.
struct RemoteKeyed {
  static void writeNeighbour(Interface::EthPortId port, std::int32_t index, IndexWriter& w) {
    w.integer("localPortNum=", port.value());
    w.integer("index=", index);
  }
};
struct RemoteSystemSpec : RemoteKeyed {
  static auto const& collection(Root const& root) { return root.remoteSystem(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemoteSystem::Key";
  static Lldp::Snmp::RemoteSystemKey key(HintValues const& v) { return {portOf(v[1]), v[2].integer}; }
  static void write(Lldp::Snmp::RemoteSystem const& row, IndexWriter& w) {
    writeNeighbour(row.key().ethPortId, row.key().index, w);
  }
  static double timeMark(Lldp::Snmp::RemoteSystem const& row) { return row.timeMark(); }
};

// The value records: the key and the stamp come from the record.
struct RemoteValue : RemoteKeyed {
  template <class Holder>
  static double timeMark(Holder const& row) {
    return row.value.timeMark();
  }
};

struct RemoteManagementAddressSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remoteManagementAddress(); }
  static void write(Root::ZetRemoteManagementAddress const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.integer("manAddrSubtype=", key.manAddrKey.manAddrSubtype);
    w.octets("manAddr=", key.manAddrKey.manAddr, key.manAddrKey.manAddr.value(), maxIndexAddress);
  }
  static Lldp::Snmp::RemoteManagementAddressKey lowerBound(IndexValues const& v, std::size_t count) {
    if (count == 0 || v[0].integer > Interface::EthPortId::max) {
      return {Interface::EthPortId(Interface::EthPortId::min), smallestS32, addressLowerBound(v, 2, 0)};
    }
    Interface::EthPortId const port(static_cast<std::uint16_t>(v[0].integer));
    return {port, count > 1 ? v[1].integer : smallestS32, addressLowerBound(v, 2, count)};
  }
  // A negative neighbour index sorts first on its port, and last in the OID.
  static bool plainIndex(Root::ZetRemoteManagementAddress const& row) {
    return row.value.key.index >= 0 && plainAddress(row.value.key.manAddrKey);
  }
};

struct RemoteUnknownTlvSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remoteUnknownTlv(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemoteUnknownTlv::Key";
  // A negative type becomes a large unsigned one, as the index allows.
  static Lldp::Snmp::RemoteUnknownTlvKey key(HintValues const& v) {
    return {portOf(v[1]), v[2].integer, static_cast<std::uint32_t>(v[3].integer)};
  }
  static void write(Root::ZetRemoteUnknownTlv const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.integer("type=", static_cast<std::int32_t>(key.type));
  }
};

struct RemoteUnknownOrgDefTlvSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remoteUnknownOrgDefTlv(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemoteUnknownOrgDefTlv::Key";
  static Lldp::Snmp::RemoteUnknownOrgDefTlvKey key(HintValues const& v) {
    return {portOf(v[1]), v[2].integer, v[3].oui, static_cast<std::uint32_t>(v[4].integer), v[5].integer};
  }
  static void write(Root::ZetRemoteUnknownOrgDefTlv const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.oui("oui=", key.oui);
    w.integer("subtype=", static_cast<std::int32_t>(key.subtype));
    w.integer("unknownOrgDefTlvIndex=", key.unknownOrgDefTlvIndex);
  }
};

struct RemotePortAndProtocolVlanSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remotePortAndProtocolVlan(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemotePortAndProtocolVlan::Key";
  // The VLAN is tested before the port: its message is the one a hint bad in both shows.
  static Lldp::Snmp::RemotePortAndProtocolVlanKey key(HintValues const& v) {
    Bridging::VlanIdOrNone const vlan(static_cast<std::uint16_t>(v[3].integer));
    return {portOf(v[1]), v[2].integer, vlan};
  }
  static void write(Root::ZetRemotePortAndProtocolVlan const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.integer("portAndProtocolVlanId=", key.portAndProtocolVlanId.value());
  }
};

struct RemoteVlanNameSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remoteVlanName(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemoteVlanName::Key";
  static Lldp::Snmp::RemoteVlanNameKey key(HintValues const& v) {
    Bridging::VlanId const vlan(static_cast<std::uint16_t>(v[3].integer));
    return {portOf(v[1]), v[2].integer, vlan};
  }
  static void write(Root::ZetRemoteVlanName const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.integer("vlanId=", key.vlanId.value());
  }
};

struct RemoteProtocolIdentityInfoSpec : RemoteValue {
  static auto const& collection(Root const& root) { return root.remoteProtocolIdentityInfo(); }
  static constexpr char const* keyType = "Lldp::Snmp::RemoteProtocolIdentityInfo::Key";
  static Lldp::Snmp::RemoteProtocolIdentityInfoKey key(HintValues const& v) {
    return {portOf(v[1]), v[2].integer, v[3].integer};
  }
  static void write(Root::ZetRemoteProtocolIdentityInfo const& row, IndexWriter& w) {
    auto const& key = row.value.key;
    writeNeighbour(key.ethPortId, key.index, w);
    w.integer("protocolIndex=", key.protocolIndex);
  }
};

}  // namespace

constinit Rows const portConfigRows = rowsOf<PortConfigSpec>();
constinit Rows const portStatusRows = rowsOf<PortStatusSpec>();
constinit Rows const localPortRows = rowsOf<LocalPortSpec>();
constinit Rows const localManagementAddressRows = rowsOf<LocalManagementAddressSpec>();
constinit Rows const remoteSystemRows = rowsOf<RemoteSystemSpec>();
constinit Rows const remoteManagementAddressRows = rowsOf<RemoteManagementAddressSpec>();
constinit Rows const remoteUnknownTlvRows = rowsOf<RemoteUnknownTlvSpec>();
constinit Rows const remoteUnknownOrgDefTlvRows = rowsOf<RemoteUnknownOrgDefTlvSpec>();
constinit Rows const remotePortAndProtocolVlanRows = rowsOf<RemotePortAndProtocolVlanSpec>();
constinit Rows const remoteVlanNameRows = rowsOf<RemoteVlanNameSpec>();
constinit Rows const remoteProtocolIdentityInfoRows = rowsOf<RemoteProtocolIdentityInfoSpec>();


namespace {

auto const& trace() { return _defaultTraceHandle(); }

Root const& rootOf(netsnmp_iterator_info const* iinfo) { return *static_cast<Root const*>(iinfo->myvoid); }

ColumnDesc const* columnOf(TableDesc const& table, unsigned int number) {
  for (ColumnDesc const& column : table.columns) {
    if (column.column == number) {
      return &column;
    }
  }
  return nullptr;
}

// The column numbers ride in the record's own block, so that the one free()
// of unregistering takes both.
netsnmp_column_info* makeColumnInfo(std::span<ColumnDesc const> columns) {
  void* const block = std::calloc(1, sizeof(netsnmp_column_info) + columns.size() * sizeof(unsigned int));
  auto* const info = static_cast<netsnmp_column_info*>(block);
  auto* const list = reinterpret_cast<unsigned int*>(info + 1);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    list[i] = columns[i].column;
  }
  info->isRange = 0;
  info->list_count = static_cast<char>(columns.size());
  info->details.list = list;
  return info;
}

netsnmp_table_registration_info* makeTableInfo(TableDesc const& table, netsnmp_column_info* columnInfo,
                                               Zet::String const& context) {
  auto* const info =
      static_cast<netsnmp_table_registration_info*>(std::calloc(1, sizeof(netsnmp_table_registration_info)));
  for (IndexDesc const& index : table.indexes) {
    // A placeholder of three bytes fixes the implied OUI's length, so that
    // the OID carries no length and the indexes after it can still be found.
    bool const fixedOui = index.type == ASN_PRIV_IMPLIED_OCTET_STR;
    if (!snmp_varlist_add_variable(&info->indexes, nullptr, 0, index.type, fixedOui ? "XXX" : nullptr,
                                   fixedOui ? 3 : 0)) {
      ZET_TRACE(trace(), 0) << "Failed to set up " << index.name << " in netsnmp table_info in context \""
                            << context << "\"";
    }
  }
  info->min_column = table.columns.front().column;
  info->max_column = table.columns.back().column;
  info->valid_columns = columnInfo;
  return info;
}

// The requested lldpRemTimeMark: the first index variable, 0 when the request has none.
std::uint32_t requestedMark(netsnmp_variable_list const* indexes) {
  return indexes && indexes->val.integer ? static_cast<std::uint32_t>(*indexes->val.integer) : 0;
}

std::uint32_t ticksOf(double timeMark) { return Snmp::SecondsToTimeTicks(Snmp::NowSecondsToUptimeSeconds(timeMark)); }

// A row stays visible for marks up to two ticks past its last change; the
// sum wraps as TimeTicks do, so a stamp at the top of the range passes only
// the smallest marks.
bool markPasses(std::uint32_t requested, std::uint32_t ticks) {
  return requested <= static_cast<std::uint32_t>(ticks + 2u);
}

struct LastChanged {
  TableDesc const& table;
  std::uint32_t ticks;
  std::uint32_t requested;
};
std::ostream& operator<<(std::ostream& os, LastChanged const& l) {
  return os << l.table.name << "_get_*_data_point: last changed (timeMark) " << l.ticks << " requested value is "
            << l.requested;
}

// Moves the loop context past the rows the time filter (and the table's row
// filter) drops. Bounded: each step goes to a larger key, and nothing changes
// the collection during a walk.
void skipFiltered(TableDesc const& table, void* loop, netsnmp_variable_list const* indexes) {
  Rows const& rows = *table.rows;
  std::uint32_t const requested = requestedMark(indexes);
  RowFilter const* const filter = table.rowFilter;
  for (void const* row = rows.row(loop); row; row = rows.row(loop)) {
    bool const held = !filter || filter->holds(loop);
    // Mark 0, that of every plain walk, passes any row: the neighbour's
    // stamp, one more object to touch per row, is read only when it counts.
    if (held && (requested == 0 || markPasses(requested, ticksOf(rows.timeMark(row))))) {
      if (filter) {
        ZET_TRACE(trace(), 8) << table.name << "_get_*_data_point: " << filter->name << " returns " << held;
      }
      ZET_TRACE(trace(), 8) << LastChanged{table, ticksOf(rows.timeMark(row)), requested};
      return;
    }
    ZET_TRACE(trace(), 2) << table.name << "_get_*_data_point filtered out " << loop;
    if (filter) {
      ZET_TRACE(trace(), 4) << table.name << "_get_*_data_point: " << filter->name << " returns " << held;
    }
    if (held) {
      ZET_TRACE(trace(), 4) << LastChanged{table, ticksOf(rows.timeMark(row)), requested};
    }
    rows.advance(loop);
  }
  if (filter) {
    ZET_TRACE(trace(), 8) << table.name << "_get_*_data_point: " << filter->name << " returns " << false;
  }
}

// One index component of a hint, into its slot; false when it cannot be read.
bool readComponent(TableDesc const& table, IndexDesc const& component, netsnmp_variable_list const& variable,
                   HintValue& value) {
  try {
    [[maybe_unused]] Zet::Expect const rangeMayRaise;
    if (component.type == ASN_PRIV_IMPLIED_OCTET_STR) {
      value.oui = AsnOctetStringToOui(variable.val.string, static_cast<unsigned int>(variable.val_len));
      ZET_TRACE(trace(), 2) << "hint component " << component.name << " is '" << value.oui << "'";
    } else {
      value.integer = Snmp::AsnIntegerToS32(variable.val.integer);
      ZET_TRACE(trace(), 2) << "hint component " << component.name << " is '" << value.integer << "'";
    }
    return true;
  } catch (Zet::RangeException const& e) {
    ZET_TRACE(trace(), 0) << "hint for index " << component.name << " of " << table.name << " is out of range! "
                          << e.what();
    return false;
  }
}

// A new loop context at the row the request's index names, or null when the
// hint is missing, incomplete or unusable, or names no row: an unusable hint
// costs a walk from the first row, never an error.
void* hintedRow(TableDesc const& table, Root const& root, netsnmp_table_request_info const* hint) {
  std::size_t const needed = table.indexes.size();
  if (!hint || hint->number_indexes != needed) {
    return nullptr;
  }
  HintValues values{};
  std::size_t found = 0;
  netsnmp_variable_list const* variable = hint->indexes;
  for (std::size_t i = 0; i < needed && variable; ++i, variable = variable->next_variable) {
    IndexDesc const& component = table.indexes[i];
    if (i == 0 && table.timeFilter == TimeFilter::yes) {
      // The mark is a condition on the rows, not part of their key.
      ++found;
      continue;
    }
    if (variable->type != component.type) {
      ZET_TRACE(trace(), 0) << "hint for " << component.name << " has incorrect type! Expecting "
                            << static_cast<int>(component.type) << " but got " << static_cast<int>(variable->type);
      continue;
    }
    if (readComponent(table, component, *variable, values[i])) {
      ++found;
    }
  }
  if (found != needed) {
    ZET_TRACE(trace(), 2) << table.name << "_get_first_data_point - needed " << needed << " components, "
                          << "found only " << found;
    return nullptr;
  }
  return table.rows->atHint(root, values, table);
}

// What the walk of a windowed table knows beyond net-snmp's callbacks. It
// rides behind the table's iterator info, in the block net-snmp frees with
// it, so that the callbacks find it through `iinfo`.
struct RequestWindowState {
  // The call of the table's chain under way, set by the window handler for
  // its length only: no request outlives it.
  netsnmp_agent_request_info* reqinfo;
  netsnmp_request_info* requests;
  // How the current pass of the walk ends.
  enum class End { whole, whenAnswered, afterFirstRow } end;
  // Whether every key of the collection sorts in the OID as it does here,
  // as found at the collection's version `checkedVersion`.
  bool checked;
  std::uint32_t checkedVersion;
  bool plain;
};
struct WindowedIteratorInfo {
  netsnmp_iterator_info info;  // first: net-snmp sees only this
  RequestWindowState window;
};
static_assert(std::is_standard_layout_v<WindowedIteratorInfo> && std::is_trivially_destructible_v<WindowedIteratorInfo>,
              "net-snmp frees the block with free()");

RequestWindowState* windowOf(TableDesc const& table, netsnmp_iterator_info* iinfo) {
  if (table.requestWindow == RequestWindow::no || !iinfo) {
    return nullptr;
  }
  return &reinterpret_cast<WindowedIteratorInfo*>(iinfo)->window;
}

int windowHandler(netsnmp_mib_handler* handler, netsnmp_handler_registration* reginfo,
                  netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  auto* const window = static_cast<RequestWindowState*>(handler->myvoid);
  struct Forget {
    RequestWindowState* window;
    ~Forget() {
      window->reqinfo = nullptr;
      window->requests = nullptr;
    }
  } const forget{window};
  window->reqinfo = reqinfo;
  window->requests = requests;
  return netsnmp_call_next_handler(handler, reginfo, reqinfo, requests);
}

bool keysPlain(TableDesc const& table, Root const& root, RequestWindowState& window) {
  Rows const& rows = *table.rows;
  std::uint32_t const version = rows.version(root);
  if (window.checked && window.checkedVersion == version) {
    return window.plain;
  }
  // Once per change of the collection: the next requests reuse the answer.
  bool plain = true;
  std::unique_ptr<void, void (*)(void*)> const walk(rows.first(root), rows.destroy);
  for (void const* row = rows.row(walk.get()); row && plain; row = rows.row(walk.get())) {
    plain = rows.plainIndex(row);
    rows.advance(walk.get());
  }
  window.checked = true;
  window.checkedVersion = version;
  window.plain = plain;
  ZET_TRACE(trace(), 2) << table.name << " request window: every index in key order: " << plain;
  return plain;
}

// The OID of the table's entry and a column: the start of every OID the walk builds.
std::size_t columnPrefix(TableDesc const& table, oid column, oid* out) {
  std::copy_n(table.objectId.ids, table.objectId.length, out);
  out[table.objectId.length] = 1;
  out[table.objectId.length + 1] = column;
  return table.objectId.length + 2;
}

// The components of `suffix` that follow the OID's order for plain keys:
// whole integers of 32 bits and whole strings, up to the first that is not.
std::size_t readIndexValues(TableDesc const& table, oid const* suffix, std::size_t length, IndexValues& values) {
  std::size_t pos = 0;
  std::size_t count = 0;
  for (std::size_t i = table.timeFilter == TimeFilter::yes ? 1 : 0; i < table.indexes.size(); ++i) {
    u_char const type = table.indexes[i].type;
    if (pos >= length || count >= values.size()) {
      break;
    }
    if (type == ASN_INTEGER) {
      if (suffix[pos] > static_cast<oid>(std::numeric_limits<std::int32_t>::max())) {
        break;
      }
      values[count].integer = static_cast<std::int32_t>(suffix[pos]);
      pos += 1;
    } else if (type == ASN_OCTET_STR) {
      oid const n = suffix[pos];
      if (n > length - pos - 1 ||
          std::any_of(suffix + pos + 1, suffix + pos + 1 + n, [](oid byte) { return byte > 0xff; })) {
        break;
      }
      std::string bytes(n, '\0');
      std::transform(suffix + pos + 1, suffix + pos + 1 + n, bytes.begin(),
                     [](oid byte) { return static_cast<char>(byte); });
      values[count].octets = Zet::String(bytes);
      pos += 1 + n;
    } else {
      break;
    }
    ++count;
  }
  return count;
}

// Where a pass of a windowed walk starts: at the smallest key any request
// left can be answered from, or at the first row when one of them is below
// every row. Fills `end`; null means the first row.
void const* windowStart(TableDesc const& table, Root const& root, RequestWindowState& window,
                        netsnmp_variable_list* indexes) {
  window.end = RequestWindowState::End::whole;
  if (!window.reqinfo || !window.requests ||
      (window.reqinfo->mode != MODE_GET && window.reqinfo->mode != MODE_GETNEXT)) {
    return nullptr;
  }
  oid mark[MAX_OID_LEN];
  std::size_t markLength = 0;
  if (table.timeFilter == TimeFilter::yes) {
    // The rows' OIDs carry the mark of the list's first request, as net-snmp builds it.
    if (!indexes || !indexes->val.integer) {
      return nullptr;
    }
    netsnmp_variable_list* const rest = indexes->next_variable;
    indexes->next_variable = nullptr;
    int const built = build_oid_noalloc(mark, MAX_OID_LEN, &markLength, nullptr, 0, indexes);
    indexes->next_variable = rest;
    if (built != SNMPERR_SUCCESS) {
      return nullptr;
    }
  }
  if (!keysPlain(table, root, window)) {
    return nullptr;
  }
  window.end = RequestWindowState::End::whenAnswered;
  bool bounded = false;
  void const* start = nullptr;
  for (netsnmp_request_info const* request = window.requests; request; request = request->next) {
    auto const* const info = netsnmp_extract_table_info(const_cast<netsnmp_request_info*>(request));
    if (request->processed || !info) {
      continue;
    }
    oid prefix[MAX_OID_LEN];
    std::size_t prefixLength = columnPrefix(table, info->colnum, prefix);
    std::copy_n(mark, markLength, prefix + prefixLength);
    prefixLength += markLength;
    oid const* const name = request->requestvb->name;
    std::size_t const nameLength = request->requestvb->name_length;
    std::size_t const common = std::min(prefixLength, nameLength);
    int const order = snmp_oid_compare(name, common, prefix, common);
    if (order > 0) {
      continue;  // above every row: no row answers it
    }
    if (order < 0 || nameLength < prefixLength) {
      return nullptr;  // below every row: the first row may answer it
    }
    IndexValues values{};
    std::size_t const count = readIndexValues(table, name + prefixLength, nameLength - prefixLength, values);
    void const* const candidate = table.rows->atOrAboveIndex(root, values, count);
    if (!bounded || (candidate && (!start || table.rows->less(candidate, start)))) {
      start = candidate;
      bounded = true;
    }
  }
  if (!bounded) {
    return nullptr;
  }
  if (!start) {
    // Past the last row: the first row stands in for the walk (see firstDataPoint).
    window.end = RequestWindowState::End::afterFirstRow;
  }
  return start;
}

// Whether the row whose index is in `indexes` has answered every request
// left: its OID is beyond each request's, or a request is beyond the table.
// The rows after it sort after it in the OID as well.
bool answered(TableDesc const& table, RequestWindowState const& window, netsnmp_variable_list* indexes) {
  oid built[MAX_OID_LEN];
  std::size_t const columnAt = columnPrefix(table, 0, built) - 1;
  std::size_t indexLength = 0;
  if (build_oid_noalloc(built + columnAt + 1, MAX_OID_LEN - columnAt - 1, &indexLength, nullptr, 0, indexes) !=
      SNMPERR_SUCCESS) {
    return false;
  }
  std::size_t const builtLength = columnAt + 1 + indexLength;
  std::size_t const rowPrefix = columnAt + 1 + (table.timeFilter == TimeFilter::yes ? 1 : 0);
  for (netsnmp_request_info const* request = window.requests; request; request = request->next) {
    auto const* const info = netsnmp_extract_table_info(const_cast<netsnmp_request_info*>(request));
    if (request->processed || !info) {
      continue;
    }
    built[columnAt] = info->colnum;
    oid const* const name = request->requestvb->name;
    std::size_t const nameLength = request->requestvb->name_length;
    bool const beyond = snmp_oid_compare(built, builtLength, name, nameLength) > 0;
    bool const outside =
        snmp_oid_compare(built, std::min(rowPrefix, builtLength), name, std::min(rowPrefix, nameLength)) < 0;
    if (!beyond && !outside) {
      return false;
    }
  }
  return true;
}

netsnmp_variable_list* iterationHelper(TableDesc const& table, void const* loop, netsnmp_variable_list* indexes) {
  void const* const row = loop ? table.rows->row(loop) : nullptr;
  if (!row) {
    ZET_TRACE(trace(), 2) << table.name << "IterationHelper - iterator is at end";
    return nullptr;
  }
  netsnmp_variable_list* first = indexes;
  if (table.timeFilter == TimeFilter::yes) {
    // The mark stays as requested: the answer's OID carries the request's own.
    ZET_TRACE(trace(), 2) << table.name << "IterationHelper - Using existing TimeFilter " << table.indexes[0].name
                          << "=" << requestedMark(indexes);
    first = indexes ? indexes->next_variable : nullptr;
  }
  IndexWriter writer(table.name, first);
  table.rows->writeIndexes(row, writer);
  return indexes;
}

struct KeyOf {
  Rows const& rows;
  void const* row;
};
std::ostream& operator<<(std::ostream& os, KeyOf const& k) {
  k.rows.streamKey(os, k.row);
  return os;
}

void traceProcessed(TableDesc const& table, netsnmp_request_info const* request) {
  ZET_TRACE(trace(), 2) << table.name << "_handler: request " << static_cast<void const*>(request)
                        << " already processed";
}

int answerGet(TableDesc const& table, netsnmp_request_info* requests) {
  // Some failures mark the head of the list, others the request at hand.
  netsnmp_request_info* const head = requests;
  for (netsnmp_request_info* request = head; request; request = request->next) {
    if (request->processed) {
      // The iterator found no row for it and has answered it already.
      traceProcessed(table, request);
      continue;
    }
    void const* const context = netsnmp_extract_iterator_context(request);
    void const* const row = context ? table.rows->row(context) : nullptr;
    if (!row) {
      ZET_TRACE(trace(), 2) << table.name << "_handler: null data context in request";
      return SNMP_ERR_NOERROR;
    }
    auto const* const info = netsnmp_extract_table_info(request);
    unsigned int const number = info ? info->colnum : 0;
    ColumnDesc const* const column = columnOf(table, number);
    if (!column) {
      ZET_TRACE(trace(), 0) << table.name << " invalid column " << number;
      netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
      return SNMP_ERR_NOERROR;
    }
    ZET_TRACE(trace(), 2) << table.name << "_handler: request GET for column " << column->object << ", key "
                          << KeyOf{*table.rows, row};

    unsigned char buffer[1024];
    int const n = column->read(row, buffer, std::min(column->bufferSize, static_cast<int>(sizeof buffer)));
    if (n < 0) {
      ZET_TRACE(trace(), 2) << "handle_" << table.name << " - " << column->conversion
                            << " failed for: " << column->attribute;
      netsnmp_request_set_error(head, SNMP_ERR_GENERR);
      return SNMP_ERR_GENERR;
    }
    if (column->maxLength != noLength && (n < column->minLength || n > column->maxLength)) {
      ZET_TRACE(trace(), 2) << "handle_" << table.name << " - entity /<sysname>/" << rootPath
                            << " length out of range: " << column->attribute << " (" << n << ")";
      netsnmp_request_set_error(head, SNMP_ERR_GENERR);
      return SNMP_ERR_GENERR;
    }
    snmp_set_var_typed_value(request->requestvb, column->type, buffer, static_cast<std::size_t>(n));
  }
  return SNMP_ERR_NOERROR;
}

// Nothing here can be set. Only the first request left is marked: the agent
// fails the whole SET on it.
int refuseSet(TableDesc const& table, netsnmp_request_info* requests) {
  netsnmp_request_info* request = requests;
  while (request && request->processed) {
    traceProcessed(table, request);
    request = request->next;
  }
  if (!request) {
    return SNMP_ERR_NOERROR;
  }
  auto const* const info = netsnmp_extract_table_info(request);
  unsigned int const number = info ? info->colnum : 0;
  ColumnDesc const* const column = columnOf(table, number);
  if (column && (table.modes & HANDLER_CAN_SET)) {
    ZET_TRACE(trace(), 2) << table.name << "_handler: SET is not configured for column " << column->object;
  } else {
    ZET_TRACE(trace(), 0) << table.name << " invalid column " << number;
  }
  netsnmp_request_set_error(request, SNMP_ERR_NOTWRITABLE);
  return SNMP_ERR_NOERROR;
}

// The module's init function is what the assertion names; its unit is the module's.
[[noreturn]] void failRegistration(char const* expression, MibModule const& module, int line, char const* function) {
  Zet::assertionFailed(expression, module.name(), line, function);
}

}  // namespace

void registerTable(TableDesc const& table, TableCallbacks const& callbacks, MibModule& module,
                   Zet::String const& context, char const* function) {
  if (trace().enabled(1)) {
    char text[200];
    snprint_objid(text, sizeof text, table.objectId.ids, table.objectId.length);
    ZET_TRACE(trace(), 1) << "initialize_table_" << table.name << " initializing oid " << text << " in context \""
                          << context << "\"";
  }
  std::string const name = std::string(table.name) + "_" + context.stdString();
  auto* const registration = netsnmp_create_handler_registration(name.c_str(), callbacks.handler, table.objectId.ids,
                                                                 table.objectId.length, table.modes);
  if (!context.empty()) {
    netsnmp_handler_registration_free(registration);
    ZET_TRACE(trace(), 2) << "initialize_table_" << table.name << " in context \"" << context
                          << "\" statebasePathWithContext not specified ";
    return;
  }
  // Listed before the lookup: a failure below ends the process anyway.
  module.registrationIs(context, registration);

  auto const entity = SnmpUtil::getEntityRelative(rootPath);
  if (!entity) {
    std::cerr << "Can not getEntityRelative( " << rootPath << " ) for table " << table.name
              << ". Is this path correct?" << std::endl;
    failRegistration("e", module, __LINE__, function);
  }
  auto* const root = dynamic_cast<Root*>(entity.get());
  if (!root) {
    std::cerr << rootPath << " does not appear to be of type Lldp::Snmp::Root." << std::endl;
    failRegistration("ptr", module, __LINE__, function);
  }
  // Uncounted: the state database keeps the Root for the life of the process.
  registration->my_reg_void = root;

  netsnmp_column_info* const columnInfo = makeColumnInfo(table.columns);
  netsnmp_table_registration_info* const tableInfo = makeTableInfo(table, columnInfo, context);

  bool const windowed = table.requestWindow == RequestWindow::yes;
  if (windowed && (table.sorted == Sorted::yes || !table.rows->atOrAboveIndex)) {
    std::cerr << "table " << table.name << " has a request window but is sorted or its rows take none" << std::endl;
    failRegistration("windowed", module, __LINE__, function);
  }
  // A windowed table's state rides behind the iterator info, in one block.
  auto* const iinfo = static_cast<netsnmp_iterator_info*>(
      std::calloc(1, windowed ? sizeof(WindowedIteratorInfo) : sizeof(netsnmp_iterator_info)));
  iinfo->refcnt = 0;
  iinfo->get_first_data_point = callbacks.firstDataPoint;
  iinfo->get_next_data_point = callbacks.nextDataPoint;
  iinfo->make_data_context = callbacks.makeDataContext;
  iinfo->free_data_context = callbacks.freeDataContext;
  iinfo->free_loop_context_at_end = callbacks.freeLoopContextAtEnd;
  iinfo->myvoid = root;
  iinfo->flags = (table.sorted == Sorted::yes ? NETSNMP_ITERATOR_FLAG_SORTED : 0) | NETSNMP_HANDLER_OWNS_IINFO;
  iinfo->table_reginfo = tableInfo;

  // net-snmp frees the iterator and table infos with the registration; the
  // column info is the module's to free.
  module.columnInfoIs(context, columnInfo);

  if (netsnmp_register_table_iterator(registration, iinfo) != 0) {
    failRegistration("result == 0", module, __LINE__, function);
  }
  if (table.sorted == Sorted::yes) {
    // A hint belongs to one request: the serialize handler, ahead of the
    // iterator, hands the requests over one at a time.
    if (netsnmp_inject_handler(registration, netsnmp_get_serialize_handler()) != 0) {
      failRegistration("injected == (0)", module, __LINE__, function);
    }
  }
  if (windowed) {
    // Right ahead of the iterator, so that the whole list still reaches it in one call.
    netsnmp_mib_handler* const handler = netsnmp_create_handler("request_window", windowHandler);
    handler->myvoid = windowOf(table, iinfo);
    if (netsnmp_inject_handler_before(registration, handler, TABLE_ITERATOR_NAME) != SNMPERR_SUCCESS) {
      failRegistration("windowInjected == (0)", module, __LINE__, function);
    }
  }
  ZET_TRACE(trace(), 8) << "Initialized table " << table.name << " in context \"" << context << "\"";
}

netsnmp_variable_list* firstDataPoint(TableDesc const& table, void** loopContext, void**,
                                      netsnmp_variable_list* indexes, netsnmp_iterator_info* iinfo) {
  Root const& root = rootOf(iinfo);
  void* loop = nullptr;
  if (table.sorted == Sorted::yes) {
    auto const* const hint = static_cast<netsnmp_table_request_info const*>(*loopContext);
    ZET_TRACE(trace(), 2) << table.name << "_get_first_data_point - *hint = " << static_cast<void const*>(hint)
                          << ", number_indexes = " << (hint ? hint->number_indexes : 0);
    loop = hintedRow(table, root, hint);
    bool const hintMatched = loop != nullptr;
    if (!loop) {
      loop = table.rows->first(root);
    }
    ZET_TRACE(trace(), 2) << table.name << "_get_first_data_point - allocated new loop context " << loop
                          << ", hintMatched=" << hintMatched;
  } else {
    // Not in OID order: net-snmp hands no hint and compares every row itself.
    RequestWindowState* const window = windowOf(table, iinfo);
    void const* const start = window ? windowStart(table, root, *window, indexes) : nullptr;
    loop = start ? table.rows->at(root, start) : table.rows->first(root);
    ZET_TRACE(trace(), 2) << table.name << "_get_first_data_point - allocated new loop context " << loop;
    if (start) {
      if (table.timeFilter == TimeFilter::yes) {
        skipFiltered(table, loop, indexes);
      }
      if (table.rows->row(loop)) {
        *loopContext = loop;
        return iterationHelper(table, loop, indexes);
      }
      // No row from the window's start on passes. A walk that gives net-snmp
      // no row leaves its bookkeeping otherwise than one whose rows nobody
      // takes: one row, the first, keeps it as a whole walk leaves it.
      table.rows->destroy(loop);
      loop = table.rows->first(root);
      window->end = RequestWindowState::End::afterFirstRow;
      ZET_TRACE(trace(), 2) << table.name << "_get_first_data_point - no row in the request window, loop context "
                            << loop;
    }
  }
  if (table.timeFilter == TimeFilter::yes) {
    skipFiltered(table, loop, indexes);
  }
  *loopContext = loop;
  return iterationHelper(table, loop, indexes);
}

netsnmp_variable_list* nextDataPoint(TableDesc const& table, void** loopContext, void** dataContext,
                                     netsnmp_variable_list* indexes, netsnmp_iterator_info* iinfo) {
  void* const loop = *loopContext;
  if (!loop || !table.rows->row(loop)) {
    ZET_TRACE(trace(), 2) << table.name << "_get_next_data_point - at end of loop context " << loop;
    return nullptr;
  }
  if (RequestWindowState const* const window = windowOf(table, iinfo)) {
    using End = RequestWindowState::End;
    if (window->end == End::afterFirstRow || (window->end == End::whenAnswered && answered(table, *window, indexes))) {
      ZET_TRACE(trace(), 2) << table.name << "_get_next_data_point - every request answered, ending loop context "
                            << loop;
      return nullptr;
    }
  }
  void* const data = *dataContext;
  ZET_TRACE(trace(), 2) << table.name << "_get_next_data_point - advancing loop context " << loop
                        << " ; data context " << data;
  table.rows->advance(loop);
  if (table.timeFilter == TimeFilter::yes) {
    skipFiltered(table, loop, indexes);
  }
  if (data) {
    // The data context follows the walk instead of being made anew.
    table.rows->assign(data, loop);
  }
  return iterationHelper(table, loop, indexes);
}

void* makeDataContext(TableDesc const& table, void* loopContext) {
  void* const data = loopContext ? table.rows->copy(loopContext) : nullptr;
  ZET_TRACE(trace(), 2) << table.name << "_make_data_context - allocated data context " << data
                        << " for loop context " << loopContext;
  return data;
}

void freeDataContext(TableDesc const& table, void* dataContext) {
  ZET_TRACE(trace(), 2) << table.name << "_free_data_context " << dataContext;
  if (dataContext) {
    table.rows->destroy(dataContext);
  }
}

void freeLoopContextAtEnd(TableDesc const& table, void* loopContext) {
  ZET_TRACE(trace(), 2) << table.name << "_free_loop_context_at_end " << loopContext;
  if (loopContext) {
    table.rows->destroy(loopContext);
  }
}

int handle(TableDesc const& table, netsnmp_agent_request_info* reqinfo, netsnmp_request_info* requests) {
  ZET_TRACE(trace(), 2) << table.name << "_handler";
  ZET_TRACE(trace(), 2) << table.name << "_handler: request mode " << reqinfo->mode;
  // Only GET reads; every other mode is a phase of a SET.
  return reqinfo->mode == MODE_GET ? answerGet(table, requests) : refuseSet(table, requests);
}

}  // namespace TableEngine
