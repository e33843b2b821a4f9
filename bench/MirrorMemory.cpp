// What the mirror costs per neighbour, beside what the LLDP state it mirrors
// costs: loads a scenario, writes it into the state database as the agent
// does, then builds the Root and its reactors, and reads the heap in use
// after each step. Also what reading the scenario costs on the way: the
// scenario as read, while it is kept, and the heap that malloc keeps free
// after the parse (the JSON document is gone by then), which counts in the
// process's resident size until it is trimmed, as the agent does after a load.
//
//   bench/make-scenario.py --ports 50 --neighbors 200 --addresses 2 /tmp/s.json
//   MirrorMemory /tmp/s.json
//
// No SNMP: the plug-in's tables add no memory per row, they walk the mirror.

#include <malloc.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <exception>
#include <fstream>
#include <memory>
#include <string>

#include "PortDriver.h"
#include "Reconciler.h"
#include "Scenario.h"
#include "Snmp/Config.h"
#include "Snmp/SnmpUtil.h"
#include "Statebase/Statebase.h"
#include "Zet/Ptr.h"

namespace {

// Bytes handed out by malloc and not yet freed, small blocks and mapped ones.
double heapInUse() {
  struct mallinfo2 const info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

// Bytes malloc holds free, whether or not their pages are resident.
double heapFree() {
  struct mallinfo2 const info = mallinfo2();
  return static_cast<double>(info.fordblks);
}

double residentBytes() {
  std::ifstream statm("/proc/self/statm");
  double pages = 0;
  double resident = 0;
  statm >> pages >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void report(char const* what, double bytes, std::size_t neighbours) {
  std::printf("%-40s %12.0f bytes", what, bytes);
  if (neighbours > 0) {
    std::printf("  %8.0f bytes per neighbour", bytes / static_cast<double>(neighbours));
  }
  std::printf("\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s SCENARIO.json\n", argv[0]);
    return 2;
  }
  try {
    Statebase::entityIs(SnmpUtil::snmpConfigPath, Zet::makePtr<Snmp::Config>());
    double const start = heapInUse();
    double const startFree = heapFree();
    auto state = std::make_unique<DesiredState const>(loadScenarioFile(argv[1]));
    double const read = heapInUse();
    double const parseFree = heapFree() - startFree;

    Reconciler reconciler;
    reconciler.apply(*state);
    double const afterState = heapInUse();
    PortDriver ports;
    ports.follow(reconciler);
    double const afterMirror = heapInUse();
    double const residentLoaded = residentBytes();
    state.reset();
    double const released = read - start - (afterMirror - heapInUse());
    malloc_trim(0);
    double const residentTrimmed = residentBytes();

    std::size_t const neighbours = ports.root()->remoteSystem().count();
    std::printf("%zu neighbours, %zu remote management addresses\n", neighbours,
                ports.root()->remoteManagementAddress().count());
    report("scenario as read (while kept)", read - start, neighbours);
    report("  of it shared with the state", released, neighbours);
    report("malloc's free heap after reading", parseFree, neighbours);
    report("LLDP state (inbound entities)", afterState - read, neighbours);
    report("mirror (Root, rows, records, reactors)", afterMirror - afterState, neighbours);
    report("resident, all loaded", residentLoaded, neighbours);
    report("resident, scenario dropped and trimmed", residentTrimmed, neighbours);
    return 0;
  } catch (std::exception const& e) {
    std::fprintf(stderr, "%s: %s\n", argv[0], e.what());
    return 1;
  }
}
