#!/usr/bin/env bash
# Measures the lldpd feed of a built lldp-snmp-agent, as root:
#
#   bench/lldpd-feed.sh BUILD_DIR [--neighbors N] [--samples S]
#
# Makes two network namespaces joined by a veth pair, runs lldpd on the near
# end (max-neighbors raised to fit) and the agent following it on a free
# 127.0.0.1 port, and sends LLDPDUs from the far end with bench/lldpdu-sender.py
# (a raw socket, one distinct neighbour per chassis ID, every TLV the MIBs
# show). bench/lldpd-feed.py then prints the time from lldpd reporting a new
# neighbour to the agent answering it over SNMP (S samples, default 50), and the
# changes per second the feed sustains with N neighbours (default 1000) added,
# updated and withdrawn at once on the one port. Everything made is removed at
# the end. The script builds nothing.
set -euo pipefail

build=$(realpath "${1:?usage: $0 BUILD_DIR [--neighbors N] [--samples S]}")
shift
neighbors=1000
samples=50
while (($#)); do
  case "$1" in
    --neighbors) neighbors=$2; shift 2 ;;
    --samples) samples=$2; shift 2 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
  esac
done
[ "$(id -u)" -eq 0 ] || { echo "$0: network namespaces need root" >&2; exit 1; }
here=$(dirname "$(realpath "$0")")
near=lldpbench-near-$$
far=lldpbench-far-$$
dir=$(mktemp -d)
chmod 755 "$dir"
agent_pid=""
lldpd_pid=""

cleanup() {
  [ -n "$agent_pid" ] && kill "$agent_pid" 2>/dev/null && wait "$agent_pid" 2>/dev/null || true
  [ -n "$lldpd_pid" ] && kill "$lldpd_pid" 2>/dev/null && wait "$lldpd_pid" 2>/dev/null || true
  for ns in "$near" "$far"; do
    for pid in $(ip netns pids "$ns" 2>/dev/null); do kill -9 "$pid" 2>/dev/null || true; done
    ip netns del "$ns" 2>/dev/null || true
  done
  rm -rf "$dir"
}
trap cleanup EXIT

# Polls `$@` every 0.1 s, at most 10 s.
wait_for() {
  for _ in $(seq 100); do "$@" > /dev/null 2>&1 && return 0; sleep 0.1; done
  echo "$0: gave up waiting for: $*" >&2
  return 1
}

ip netns add "$near"
ip netns add "$far"
ip -n "$near" link add bnear0 type veth peer name bfar0 netns "$far"
for ns in "$near" "$far"; do ip -n "$ns" link set lo up; done
ip -n "$near" link set bnear0 up
ip -n "$far" link set bfar0 up

: > "$dir/empty.conf"
ip netns exec "$near" lldpd -d -u "$dir/near.socket" -I bnear0 -O "$dir/empty.conf" > "$dir/lldpd.log" 2>&1 &
lldpd_pid=$!
wait_for lldpcli -u "$dir/near.socket" show configuration
# lldpd listens on an interface once it has found it.
wait_for sh -c "lldpcli -u '$dir/near.socket' show interfaces | grep -q bnear0"
lldpcli -u "$dir/near.socket" configure system max-neighbors $((neighbors + samples + 10)) > /dev/null

port=$(python3 -c 'import socket; s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
"$build/agent/lldp-snmp-agent" --feed "lldpd:$dir/near.socket" --listen "udp:127.0.0.1:$port" \
  --persistent-dir "$dir" > "$dir/agent.log" 2>&1 &
agent_pid=$!
wait_for snmpget -v2c -c public -t 0.2 -r 0 "127.0.0.1:$port" 1.0.8802.1.1.2.1.1.1.0
ifindex=$(ip netns exec "$near" cat /sys/class/net/bnear0/ifindex)

echo "lldpd $(lldpd -v), agent $build/agent/lldp-snmp-agent, port $ifindex, $(nproc) CPUs"
if ! python3 "$here/lldpd-feed.py" "$far" bfar0 "$dir/near.socket" "$port" "$ifindex" "$neighbors" "$samples" "$agent_pid"; then
  echo "--- lldpd:" >&2; cat "$dir/lldpd.log" >&2
  echo "--- agent:" >&2; cat "$dir/agent.log" >&2
  exit 1
fi
echo "agent VmRSS: $(grep VmRSS /proc/$agent_pid/status | awk '{print $2, $3}') with $((neighbors + samples)) neighbours learnt"
