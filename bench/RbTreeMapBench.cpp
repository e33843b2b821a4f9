// Costs of the ordered collection per member, at table sizes from a small switch to far beyond
// any: insertion, lookup, a plain walk, and a walk that deletes behind itself so that every
// other step takes the re-descent. Flat per-item walk costs across sizes are the point.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "Zet/Ptr.h"
#include "Zet/RbTreeMap.h"

namespace {

// Shaped like a neighbour's row: a port and an index.
struct RowKey {
  std::uint16_t port = 0;
  std::int32_t index = 0;

  friend bool operator==(RowKey const&, RowKey const&) = default;
  friend bool operator<(RowKey const& a, RowKey const& b) {
    return a.port != b.port ? a.port < b.port : a.index < b.index;
  }
};

struct Row : Zet::PtrInterface, Zet::RbTreeNode {
  explicit Row(RowKey key) : key_(key) {}
  RowKey const& fwkKey() const { return key_; }
  RowKey key_;
};

using Tree = Zet::RbTreeMap<Row, RowKey, Row>;

// `count` distinct keys spread over the 4094 ports, in a fixed shuffled order.
std::vector<RowKey> shuffledKeys(std::int64_t count) {
  std::vector<RowKey> keys;
  keys.reserve(static_cast<std::size_t>(count));
  for (std::int64_t i = 0; i < count; ++i) {
    keys.push_back({static_cast<std::uint16_t>(1 + i % 4094), static_cast<std::int32_t>(i / 4094)});
  }
  std::shuffle(keys.begin(), keys.end(), std::mt19937(2018));
  return keys;
}

std::vector<Zet::Ptr<Row>> makeRows(std::vector<RowKey> const& keys) {
  std::vector<Zet::Ptr<Row>> rows;
  rows.reserve(keys.size());
  for (RowKey const& key : keys) {
    rows.push_back(Zet::makePtr<Row>(key));
  }
  return rows;
}

void fill(Tree& tree, std::vector<Zet::Ptr<Row>> const& rows) {
  for (auto const& row : rows) {
    tree.memberIs(row);
  }
}

void reportShape(benchmark::State& state, std::int64_t items) {
  state.SetItemsProcessed(items);
  state.counters["bytesPerMember"] = sizeof(Row);
}

void insertRows(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    auto rows = makeRows(keys);
    auto tree = std::make_unique<Tree>();
    state.ResumeTiming();
    fill(*tree, rows);
    state.PauseTiming();
    tree.reset();
    rows.clear();
    state.ResumeTiming();
  }
  reportShape(state, state.iterations() * state.range(0));
}

void lookUpRows(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  auto const rows = makeRows(keys);
  Tree tree;
  fill(tree, rows);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(tree[keys[next]]);
    next = next + 1 == keys.size() ? 0 : next + 1;
  }
  reportShape(state, state.iterations());
}

// Whole walks of a tree holding `rows`, in key order.
void timeWalks(benchmark::State& state, std::vector<Zet::Ptr<Row>> const& rows) {
  Tree tree;
  fill(tree, rows);
  for (auto _ : state) {
    for (auto it = tree.iterator(); !it.atEnd(); it.advance()) {
      benchmark::DoNotOptimize(it.get());
    }
  }
  reportShape(state, state.iterations() * state.range(0));
}

void walkRows(benchmark::State& state) { timeWalks(state, makeRows(shuffledKeys(state.range(0)))); }

// The same walk over rows allocated in key order, so that neighbours in the walk are neighbours
// in memory: what remains is the walk's own cost, apart from cache misses.
void walkRowsAllocatedInOrder(benchmark::State& state) {
  auto keys = shuffledKeys(state.range(0));
  std::sort(keys.begin(), keys.end());
  auto rows = makeRows(keys);
  std::shuffle(rows.begin(), rows.end(), std::mt19937(2018));
  timeWalks(state, rows);
}

// Deleting the current row between every two steps makes every other step a stale one.
void walkDeletingRows(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  std::int64_t steps = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto rows = makeRows(keys);
    auto tree = std::make_unique<Tree>();
    fill(*tree, rows);
    rows.clear();
    state.ResumeTiming();
    bool deleteHere = false;
    for (auto it = tree->iteratorMutable(); !it.atEnd(); it.advance(), ++steps) {
      if (deleteHere) {
        benchmark::DoNotOptimize(tree->memberDel(it));
      }
      deleteHere = !deleteHere;
    }
    state.PauseTiming();
    tree.reset();
    state.ResumeTiming();
  }
  reportShape(state, steps);
}

void tableSizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kNanosecond);
}

BENCHMARK(insertRows)->Apply(tableSizes);
BENCHMARK(lookUpRows)->Apply(tableSizes);
BENCHMARK(walkRows)->Apply(tableSizes);
BENCHMARK(walkRowsAllocatedInOrder)->Apply(tableSizes);
BENCHMARK(walkDeletingRows)->Apply(tableSizes);

}  // namespace

BENCHMARK_MAIN();
