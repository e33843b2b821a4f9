// What the mirror costs per neighbour, beside what the LLDP state it mirrors
// costs: loads a scenario, writes it into the state database as the agent
// does, then builds the Root and its reactors, and reads the heap in use
// after each step.
//
//   bench/make-scenario.py --ports 50 --neighbors 200 /tmp/s.json
//   MirrorMemory /tmp/s.json
//
// No SNMP: the plug-in's tables add no memory per row, they walk the mirror.

#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <exception>
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
    DesiredState const state = loadScenarioFile(argv[1]);
    Statebase::entityIs(SnmpUtil::snmpConfigPath, Zet::makePtr<Snmp::Config>());

    double const before = heapInUse();
    Reconciler reconciler;
    reconciler.apply(state);
    double const afterState = heapInUse();
    PortDriver ports;
    ports.follow(reconciler);
    double const afterMirror = heapInUse();

    std::size_t const neighbours = ports.root()->remoteSystem().count();
    std::printf("%zu neighbours, %zu remote management addresses\n", neighbours,
                ports.root()->remoteManagementAddress().count());
    report("LLDP state (inbound entities)", afterState - before, neighbours);
    report("mirror (Root, rows, records, reactors)", afterMirror - afterState, neighbours);
    return 0;
  } catch (std::exception const& e) {
    std::fprintf(stderr, "%s: %s\n", argv[0], e.what());
    return 1;
  }
}
