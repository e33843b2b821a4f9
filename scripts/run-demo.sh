#!/usr/bin/env bash
# Installs the dependencies, builds, and runs lldp-snmp-agent on its built-in
# demo switch at udp:127.0.0.1:1161 (community "public"). Extra arguments go
# to the agent, e.g. scripts/run-demo.sh --scenario examples/minimal-host.json
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -DLLDPSNMP_TESTS=OFF
cmake --build build -j"$(nproc)" --target lldp-snmp-agent
echo "Serving the LLDP-MIB on udp:127.0.0.1:1161; try:"
echo "  snmpwalk -v2c -c public 127.0.0.1:1161 1.0.8802.1.1.2"
exec build/agent/lldp-snmp-agent "$@"
