// Costs of the mirror's neighbour rows at table sizes from a small switch to far beyond any:
// insertion through remoteSystemIs, lookup by key, a walk by advance(), and a walk that removes
// a row between every two steps, as a reactor does while a manager walks lldpRemTable. Per-item
// figures that stay flat across sizes are the point. The footprint runs report the bytes one
// row and one management address record take, the second with what its strings hold.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "Interface/EthPortId.h"
#include "LldpAgent/BoundedString.h"
#include "LldpAgent/Enumerations.h"
#include "LldpAgent/ManAddress.h"
#include "LldpAgent/ManagementAddress.h"
#include "LldpAgent/RemoteSystem.h"
#include "MirrorKeys.h"
#include "MirrorRows.h"
#include "RemoteRecords.h"
#include "Root.h"
#include "Zet/Ptr.h"
#include "Zet/String.h"

namespace {

using Interface::EthPortId;
using Lldp::Snmp::RemoteSystemKey;
using Lldp::Snmp::Root;

// `count` distinct keys spread over the 4094 ports, in a fixed shuffled order.
std::vector<RemoteSystemKey> shuffledKeys(std::int64_t count) {
  std::vector<RemoteSystemKey> keys;
  keys.reserve(static_cast<std::size_t>(count));
  for (std::int64_t i = 0; i < count; ++i) {
    keys.emplace_back(EthPortId(static_cast<std::uint16_t>(1 + i % 4094)), static_cast<std::int32_t>(1 + i / 4094));
  }
  std::shuffle(keys.begin(), keys.end(), std::mt19937(2018));
  return keys;
}

// All rows read one neighbour: the row's cost, not the neighbour's, is measured.
Zet::Ptr<Lldp::RemoteSystem const> sharedNeighbour() {
  return Zet::makePtr<Lldp::RemoteSystem>(
      1, Lldp::RemoteSystem::Msap(Lldp::ChassisIdSubtype::local, Lldp::ChassisId(Zet::String("neighbour")),
                                  Lldp::PortIdSubtype::local, Lldp::PortId(Zet::String("p1"))));
}

Zet::Ptr<Root> filledRoot(std::vector<RemoteSystemKey> const& keys, Zet::Ptr<Lldp::RemoteSystem const> const& ptr) {
  auto root = Root::RootIs(Zet::Name("root"));
  for (auto const& key : keys) {
    root->remoteSystemIs(key, ptr);
  }
  return root;
}

// Bytes in use on the heap, mapped blocks included.
std::size_t heapInUse() {
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

double perItem(std::size_t before, std::size_t after, std::size_t items) {
  return static_cast<double>(after - before) / static_cast<double>(items);
}

void remoteSystemInsert(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  auto const neighbour = sharedNeighbour();
  for (auto _ : state) {
    state.PauseTiming();
    auto root = Root::RootIs(Zet::Name("root"));
    state.ResumeTiming();
    for (auto const& key : keys) {
      benchmark::DoNotOptimize(root->remoteSystemIs(key, neighbour));
    }
    state.PauseTiming();
    root = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void remoteSystemLookup(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  auto const root = filledRoot(keys, sharedNeighbour());
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(root->remoteSystem(keys[next]));
    next = next + 1 == keys.size() ? 0 : next + 1;
  }
  state.SetItemsProcessed(state.iterations());
}

void remoteSystemWalk(benchmark::State& state) {
  auto const root = filledRoot(shuffledKeys(state.range(0)), sharedNeighbour());
  for (auto _ : state) {
    for (auto it = root->remoteSystem().iterator(); !it.atEnd(); it.advance()) {
      benchmark::DoNotOptimize(it.get());
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The same walk over rows allocated in key order, so that neighbours in the walk are neighbours
// in memory: what remains is the step's own cost, apart from cache misses.
void remoteSystemWalkAllocatedInOrder(benchmark::State& state) {
  auto keys = shuffledKeys(state.range(0));
  std::sort(keys.begin(), keys.end());
  auto const root = filledRoot(keys, sharedNeighbour());
  for (auto _ : state) {
    for (auto it = root->remoteSystem().iterator(); !it.atEnd(); it.advance()) {
      benchmark::DoNotOptimize(it.get());
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Every other step stands on a row that has just left the tree, so it takes the descent by key.
void remoteSystemWalkDeleting(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  auto const neighbour = sharedNeighbour();
  std::int64_t steps = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto root = filledRoot(keys, neighbour);
    state.ResumeTiming();
    bool deleteHere = false;
    for (auto it = root->remoteSystem().iterator(); !it.atEnd(); it.advance(), ++steps) {
      if (deleteHere) {
        benchmark::DoNotOptimize(root->remoteSystemDel(it->key()));
      }
      deleteHere = !deleteHere;
    }
    state.PauseTiming();
    root = nullptr;
    state.ResumeTiming();
  }
  state.SetItemsProcessed(steps);
}

// What one row adds to the heap beyond its object: the tree links live in the row itself.
void remoteSystemFootprint(benchmark::State& state) {
  auto const keys = shuffledKeys(state.range(0));
  auto const neighbour = sharedNeighbour();
  double heapPerRow = 0.0;
  for (auto _ : state) {
    std::size_t const before = heapInUse();
    auto root = filledRoot(keys, neighbour);
    heapPerRow = perItem(before, heapInUse(), keys.size());
    state.PauseTiming();
    root = nullptr;
    state.ResumeTiming();
  }
  state.counters["sizeofRow"] = sizeof(Lldp::Snmp::RemoteSystem);
  state.counters["heapBytesPerRow"] = heapPerRow;
}

// A record holds a copy of the neighbour's address: its key and its raw value share the bytes,
// which are counted once as the strings' share.
void remoteManagementAddressFootprint(benchmark::State& state) {
  auto const count = static_cast<std::size_t>(state.range(0));
  auto const neighbour = sharedNeighbour();
  double stringsPerRecord = 0.0;
  double heapPerHolder = 0.0;
  for (auto _ : state) {
    std::vector<Lldp::Snmp::RemoteManagementAddress> records;
    records.reserve(count);
    std::vector<Zet::String> addresses;
    addresses.reserve(count);
    std::size_t const beforeStrings = heapInUse();
    for (std::size_t i = 0; i < count; ++i) {
      auto const n = static_cast<std::uint32_t>(i);
      char const bytes[4] = {10, static_cast<char>(n >> 16), static_cast<char>(n >> 8), static_cast<char>(n)};
      addresses.emplace_back(bytes, sizeof bytes);
    }
    stringsPerRecord = perItem(beforeStrings, heapInUse(), count);
    for (std::size_t i = 0; i < count; ++i) {
      Lldp::ManagementAddress::Key const address(1, Lldp::ManAddress(addresses[i]));
      Lldp::ManagementAddress raw(address);
      raw.ifSubtype = Lldp::ManAddrIfSubtype::ifIndex;
      raw.ifId = static_cast<std::int32_t>(i);
      records.push_back({{EthPortId(static_cast<std::uint16_t>(1 + i % 4094)), 1, address}, neighbour, raw});
    }
    addresses.clear();

    std::size_t const before = heapInUse();
    auto root = Root::RootIs(Zet::Name("root"));
    for (auto const& record : records) {
      root->remoteManagementAddressIs(record);
    }
    heapPerHolder = perItem(before, heapInUse(), count);
    state.PauseTiming();
    root = nullptr;
    records.clear();
    state.ResumeTiming();
  }
  state.counters["sizeofHolder"] = sizeof(Root::ZetRemoteManagementAddress);
  state.counters["stringBytesPerRecord"] = stringsPerRecord;
  state.counters["heapBytesPerHolder"] = heapPerHolder;
  state.counters["bytesPerHolder"] = heapPerHolder + stringsPerRecord;
}

void tableSizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kNanosecond);
}

BENCHMARK(remoteSystemInsert)->Apply(tableSizes);
BENCHMARK(remoteSystemLookup)->Apply(tableSizes);
BENCHMARK(remoteSystemWalk)->Apply(tableSizes);
BENCHMARK(remoteSystemWalkAllocatedInOrder)->Apply(tableSizes);
BENCHMARK(remoteSystemWalkDeleting)->Apply(tableSizes);
BENCHMARK(remoteSystemFootprint)->Arg(100'000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(remoteManagementAddressFootprint)->Arg(100'000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
