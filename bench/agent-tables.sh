#!/usr/bin/env bash
# How fast and how big the agent's tables are, measured over loopback with net-snmp's own tools.
#
#   cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DLLDPSNMP_TESTS=OFF
#   make -C build-bench -j2 lldp-snmp-agent
#   bench/agent-tables.sh build-bench [--sizes "1000 10000 50000"] [--modes "master agentx"] [--samples 15]
#                           [--walk-limit 300]
#
# For each size (neighbours in all) it writes a scenario with every TLV kind on every neighbour into a temp dir,
# starts the agent on a free 127.0.0.1 port (as a master agent, or as an AgentX sub-agent of a private snmpd
# that is then asked instead), and prints one row: bulk walks (-Cr25) of lldpRemTable and of the whole LLDP
# subtree (seconds and varbinds/s; a walk stopped at --walk-limit shows the limit and its partial count), the
# median time of one snmpget of a scalar, of lldpRemSysName on the first and on the last row, of one
# snmpgetnext on the last row, and the agent's VmRSS, also per neighbour beyond an agent serving none.
# Request times include starting snmpget, which the scalar's time shows.
# Builds nothing; needs python3, snmpbulkwalk, snmpget, snmpgetnext, and snmpd for --modes agentx.
set -euo pipefail

usage() {
  echo "usage: $0 BUILD_DIR [--sizes \"1000 10000\"] [--modes \"master agentx\"] [--samples N] [--walk-limit SECONDS]" >&2
  exit 2
}

[[ $# -ge 1 ]] || usage
buildDir=$(cd "$1" && pwd)
shift
sizes="1000 10000"
modes="master agentx"
samples=15
walkLimit=300
while [[ $# -gt 0 ]]; do
  case "$1" in
    --sizes) sizes="$2"; shift 2 ;;
    --modes) modes="$2"; shift 2 ;;
    --samples) samples="$2"; shift 2 ;;
    --walk-limit) walkLimit="$2"; shift 2 ;;
    *) usage ;;
  esac
done

here=$(cd "$(dirname "$0")" && pwd)
agent="$buildDir/agent/lldp-snmp-agent"
[[ -x "$agent" ]] || { echo "$0: no $agent; build the target lldp-snmp-agent first" >&2; exit 1; }

lldp=1.0.8802.1.1.2
remTable=$lldp.1.4.1
remSysName=$remTable.1.9
locSysName=$lldp.1.3.3.0
# No MIB files: every OID here is numeric, and loading MIBs would dominate a single request's time.
snmpOpts=(-v2c -c public -m "" -On -t 60 -r 0)

work=$(mktemp -d /tmp/agent-tables.XXXXXX)
startedPids=()

stopStarted() {
  local pid
  for pid in "${startedPids[@]}"; do
    kill "$pid" 2>/dev/null || true
  done
  for pid in "${startedPids[@]}"; do
    wait "$pid" 2>/dev/null || true
  done
  startedPids=()
}
trap 'stopStarted; rm -rf "$work"' EXIT
trap 'exit 130' INT TERM

freePort() {  # $1: udp or tcp
  python3 - "$1" <<'EOF'
import socket, sys
kind = socket.SOCK_DGRAM if sys.argv[1] == "udp" else socket.SOCK_STREAM
with socket.socket(socket.AF_INET, kind) as s:
    s.bind(("127.0.0.1", 0))
    print(s.getsockname()[1])
EOF
}

now() { echo "${EPOCHREALTIME/,/.}"; }

# Shapes: a few ports with many neighbours each, as on an access switch behind hubs or in a large lab.
portsFor() {
  local total=$1
  if ((total <= 1000)); then echo 20; elif ((total <= 10000)); then echo 50; else echo 100; fi
}

# Waits until the agent answers lldpLocSysName at $1 (host:port); a 50k scenario takes a while to load.
waitReady() {
  local target=$1 pid=$2 try
  for ((try = 0; try < 1200; try++)); do
    kill -0 "$pid" 2>/dev/null || { echo "$0: the agent (pid $pid) stopped" >&2; return 1; }
    if snmpget "${snmpOpts[@]}" -t 1 "$target" "$locSysName" 2>/dev/null | grep -q STRING; then
      return 0
    fi
    sleep 0.5
  done
  echo "$0: no answer from $target within 10 minutes" >&2
  return 1
}

# Prints "seconds varbinds" of one bulk walk of $2 at $1; a walk cut off after $walkLimit seconds counts
# what it got, and its seconds are the limit (its rate is then what it reached, not what a full walk would).
bulkWalk() {
  local target=$1 oid=$2 t0 t1 count
  t0=$(now)
  count=$(timeout "$walkLimit" stdbuf -oL snmpbulkwalk "${snmpOpts[@]}" -Cr25 "$target" "$oid" | wc -l || true)
  t1=$(now)
  echo "$(echo "$t1 - $t0" | bc -l) $count"
}

# Prints the median milliseconds of $samples runs of command $1 (snmpget or snmpgetnext) on $3 at $2.
medianRequest() {
  local tool=$1 target=$2 oid=$3 i t0 t1 out times=()
  for ((i = 0; i < samples; i++)); do
    t0=$(now)
    out=$("$tool" "${snmpOpts[@]}" "$target" "$oid")
    t1=$(now)
    [[ "$out" != *"No Such"* && -n "$out" ]] || { echo "$0: $tool $oid: $out" >&2; return 1; }
    times+=("$(echo "($t1 - $t0) * 1000" | bc -l)")
  done
  printf '%s\n' "${times[@]}" | sort -g | awk '{ v[NR] = $1 } END { printf "%.2f", (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

vmRssKiB() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }

# Starts the agent (and for agentx its snmpd) on scenario $2 in mode $1; sets agentPid and target.
startAgent() {
  local mode=$1 scenario=$2 tag=$3 udpPort axPort
  udpPort=$(freePort udp)
  mkdir -p "$work/persist-$tag"
  if [[ $mode == agentx ]]; then
    axPort=$(freePort tcp)
    mkdir -p "$work/snmpd-$tag"
    cat >"$work/snmpd-$tag/snmpd.conf" <<EOF
master agentx
agentXSocket tcp:127.0.0.1:$axPort
# A GET deep into a large table may take longer than the default second.
agentXTimeout 60
agentXRetries 0
rocommunity public 127.0.0.1
EOF
    SNMP_PERSISTENT_DIR="$work/snmpd-$tag" snmpd -f -Lo -C -c "$work/snmpd-$tag/snmpd.conf" \
      "udp:127.0.0.1:$udpPort" >"$work/snmpd-$tag.log" 2>&1 &
    startedPids+=($!)
    local try
    for ((try = 0; try < 100; try++)); do
      (echo >"/dev/tcp/127.0.0.1/$axPort") 2>/dev/null && break
      sleep 0.1
    done
    "$agent" --agentx "tcp:127.0.0.1:$axPort" --scenario "$scenario" --persistent-dir "$work/persist-$tag" \
      --no-notifications >"$work/agent-$tag.log" 2>&1 &
  else
    "$agent" --listen "udp:127.0.0.1:$udpPort" --scenario "$scenario" --persistent-dir "$work/persist-$tag" \
      --no-notifications >"$work/agent-$tag.log" 2>&1 &
  fi
  agentPid=$!
  startedPids+=("$agentPid")
  target="127.0.0.1:$udpPort"
  waitReady "$target" "$agentPid" || { cat "$work/agent-$tag.log" >&2; return 1; }
}

printf '%-7s %6s %5s %7s | %8s %9s | %8s %9s %9s | %7s %7s %7s %7s | %8s %7s\n' \
  mode neighb ports varbind remTbl_s remTbl_vb/s wholeMIB_s mib_vb/s mib_varbd \
  scal_ms get1_ms getN_ms nextN_ms rss_MiB KiB/nbr

for mode in $modes; do
  python3 "$here/make-scenario.py" --ports 1 --neighbors 0 "$work/empty.json"
  startAgent "$mode" "$work/empty.json" "$mode-0"
  baseRss=$(vmRssKiB "$agentPid")
  stopStarted

  for total in $sizes; do
    ports=$(portsFor "$total")
    perPort=$((total / ports))
    scenario="$work/scenario-$total.json"
    [[ -f "$scenario" ]] || python3 "$here/make-scenario.py" --ports "$ports" --neighbors "$perPort" "$scenario"
    startAgent "$mode" "$scenario" "$mode-$total"

    read -r remSeconds remCount < <(bulkWalk "$target" "$remTable")
    read -r mibSeconds mibCount < <(bulkWalk "$target" "$lldp")
    # lldpRemTimeMark is 100 (lastChangeTime 1.0) on every row of the generated scenario.
    firstRow="$remSysName.100.1.1"
    lastRow="$remSysName.100.$ports.$perPort"
    beforeLastRow="$remSysName.100.$ports.$((perPort - 1))"
    scalarMs=$(medianRequest snmpget "$target" "$locSysName")
    firstMs=$(medianRequest snmpget "$target" "$firstRow")
    lastMs=$(medianRequest snmpget "$target" "$lastRow")
    nextMs=$(medianRequest snmpgetnext "$target" "$beforeLastRow")
    rss=$(vmRssKiB "$agentPid")

    printf '%-7s %6d %5d %7d | %8.2f %9.0f | %8.2f %9.0f %9d | %7s %7s %7s %7s | %8.1f %7.2f\n' \
      "$mode" "$total" "$ports" "$remCount" "$remSeconds" "$(echo "$remCount / $remSeconds" | bc -l)" \
      "$mibSeconds" "$(echo "$mibCount / $mibSeconds" | bc -l)" "$mibCount" \
      "$scalarMs" "$firstMs" "$lastMs" "$nextMs" \
      "$(echo "$rss / 1024" | bc -l)" "$(echo "($rss - $baseRss) / $total" | bc -l)"
    stopStarted
  done
done
