#!/usr/bin/env bash
# Installs the dependencies, builds, and runs lldp-snmp-agent on its built-in
# demo switch at udp:127.0.0.1:1161 (community "public"). Extra arguments go
# to the agent, e.g. scripts/run-demo.sh --scenario examples/host-one-port.json
# Builds in build-demo/, apart from the tests' build/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build-demo -DLLDPSNMP_TESTS=OFF
cmake --build build-demo -j"$(nproc)" --target lldp-snmp-agent
echo "When it says it is serving, try from another terminal:"
echo "  snmpwalk -v2c -c public -M +$PWD/mibs -m LLDP-MIB:LLDP-EXT-DOT1-MIB:LLDP-EXT-DOT3-MIB 127.0.0.1:1161 LLDP-MIB::lldpObjects"
exec build-demo/agent/lldp-snmp-agent "$@"
