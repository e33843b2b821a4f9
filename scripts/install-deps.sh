#!/usr/bin/env bash
# Installs what building, running and testing lldp-snmp-agent need (Debian 12).
set -euo pipefail
packages=(
  build-essential cmake pkg-config
  libsnmp-dev snmp snmpd snmptrapd
  nlohmann-json3-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  python3-jsonschema
  lldpd liblldpctl-dev iproute2 util-linux python3
  libsnmp-info-perl
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
