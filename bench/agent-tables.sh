#!/usr/bin/env bash
# How fast and how big the agent's tables are, measured over loopback with net-snmp's own tools and two
# instruments of bench/: MinimalTableAgent (a plain net-snmp agent with one sorted, hinted table shaped like
# lldpRemTable, the yardstick) and RequestLatency (single requests timed on one session).
#
#   cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DLLDPSNMP_BENCH=ON -DLLDPSNMP_TESTS=OFF
#   make -C build-bench -j2 lldp-snmp-agent MinimalTableAgent RequestLatency
#   bench/agent-tables.sh build-bench [--sizes "1000 10000 50000"] [--modes "master agentx"] [--samples 200]
#                           [--walk-limit 300] [--addresses 2]
#
# For each size (neighbours in all) it writes a scenario with every TLV kind on every neighbour (and
# --addresses management addresses each) into a temp dir, starts the agent on a free 127.0.0.1 port (as a
# master agent, or as an AgentX sub-agent of a private snmpd that is then asked instead), and beside it
# MinimalTableAgent with as many ports and neighbours, in the same mode with its own snmpd. It prints one row:
# bulk walks (-Cr25) of lldpRemTable on both agents, taken in turn 3 times each with the fastest of each
# kept, so that a moment of noise on a shared machine does not decide the ratio (seconds and varbinds/s of
# ours, varbinds/s of the minimal agent, ours/minimal); a bulk walk of the whole LLDP subtree (seconds,
# varbinds/s, varbinds; the best of 3 while one takes under 10 s; a walk stopped at --walk-limit shows the
# limit and its partial count), and under the row how that walk's time split over the tables (seconds,
# varbinds, varbinds/s per table, by bench/walk-split.py), so that the slowest table shows; the median
# microseconds of --samples requests, one after another on one session, for a GET of a scalar, of
# lldpRemSysName on the first and on the last row, and a GETNEXT on the row before the last, with the client,
# the agent and its snmpd on one CPU; and the agent's VmRSS, also per neighbour beyond an agent serving none.
# Builds nothing; needs python3, bc, taskset, snmpbulkwalk, snmpget, and snmpd for --modes agentx.
set -euo pipefail

usage() {
  echo "usage: $0 BUILD_DIR [--sizes \"1000 10000\"] [--modes \"master agentx\"] [--samples N]" \
    "[--walk-limit SECONDS] [--addresses K]" >&2
  exit 2
}

[[ $# -ge 1 ]] || usage
buildDir=$(cd "$1" && pwd)
shift
sizes="1000 10000"
modes="master agentx"
samples=200
walkLimit=300
addresses=2
# Walks of lldpRemTable per agent and size; the fastest of each counts.
walkRuns=3
while [[ $# -gt 0 ]]; do
  case "$1" in
    --sizes) sizes="$2"; shift 2 ;;
    --modes) modes="$2"; shift 2 ;;
    --samples) samples="$2"; shift 2 ;;
    --walk-limit) walkLimit="$2"; shift 2 ;;
    --addresses) addresses="$2"; shift 2 ;;
    *) usage ;;
  esac
done

here=$(cd "$(dirname "$0")" && pwd)
agent="$buildDir/agent/lldp-snmp-agent"
minimalAgent="$buildDir/bench/MinimalTableAgent"
requestLatency="$buildDir/bench/RequestLatency"
for program in "$agent" "$minimalAgent" "$requestLatency"; do
  [[ -x "$program" ]] || {
    echo "$0: no $program; build lldp-snmp-agent MinimalTableAgent RequestLatency with -DLLDPSNMP_BENCH=ON" >&2
    exit 1
  }
done

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

# Waits until the agent at $1 (host:port, pid $2) answers a GET of $3; a 50k scenario takes a while to load.
waitReady() {
  local target=$1 pid=$2 oid=$3 try
  for ((try = 0; try < 1200; try++)); do
    kill -0 "$pid" 2>/dev/null || { echo "$0: the agent (pid $pid) stopped" >&2; return 1; }
    if snmpget "${snmpOpts[@]}" -t 1 "$target" "$oid" 2>/dev/null | grep -q STRING; then
      return 0
    fi
    sleep 0.5
  done
  echo "$0: no answer from $target within 10 minutes" >&2
  return 1
}

# Prints "seconds varbinds" of one bulk walk of $2 at $1; a walk cut off after $walkLimit seconds counts
# what it got, and its seconds are the limit (its rate is then what it reached, not what a full walk would).
# An agent with nothing past the walked subtree ends it with endOfMibView, which is no varbind of its own.
# $3, if given, gets the walk's time per table.
bulkWalk() {
  local target=$1 oid=$2 split=${3:-/dev/null} t0 t1 count
  t0=$(now)
  count=$(timeout "$walkLimit" stdbuf -oL snmpbulkwalk "${snmpOpts[@]}" -Cr25 "$target" "$oid" |
    python3 "$here/walk-split.py" "$split" || true)
  t1=$(now)
  echo "$(echo "$t1 - $t0" | bc -l) ${count:-0}"
}

# Of two walks ("seconds varbinds"), prints the one with more varbinds per second; the first may be empty.
faster() {
  awk -v a="$1" -v b="$2" 'BEGIN { split(a, x); split(b, y); print (a == "" || y[2] / y[1] > x[2] / x[1]) ? b : a }'
}

# Single requests are timed with everything that serves them on one CPU: on a virtual machine, waking a
# process on another, idle CPU costs more than the agent's work, and by how much varies from run to run.
latencyCpu=$(python3 -c 'import os; print(min(os.sched_getaffinity(0)))')

# Prints the median microseconds of $samples requests, one after another on one session, per OID, in order;
# $1 is the target, then RequestLatency's OIDs and options. A miss ends the run.
requestMedians() {
  taskset -c "$latencyCpu" "$requestLatency" "$@" --samples "$samples" --timeout 60 |
    awk '{ printf "%s%s", (NR > 1 ? " " : ""), $3 }'
}

vmRssKiB() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }

# Starts the command "$@" (after $1 to $3) in mode $1: as a master agent, or as an AgentX sub-agent of a
# private snmpd that is then asked instead. $2 tags its files; it is ready when a GET of $3 answers.
# Sets serverPid, serverPids (with its snmpd) and serverTarget.
startServer() {
  local mode=$1 tag=$2 readyOid=$3 udpPort axPort
  shift 3
  serverPids=()
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
    serverPids+=($!)
    local try
    for ((try = 0; try < 100; try++)); do
      (echo >"/dev/tcp/127.0.0.1/$axPort") 2>/dev/null && break
      sleep 0.1
    done
    "$@" --agentx "tcp:127.0.0.1:$axPort" --persistent-dir "$work/persist-$tag" >"$work/$tag.log" 2>&1 &
  else
    "$@" --listen "udp:127.0.0.1:$udpPort" --persistent-dir "$work/persist-$tag" >"$work/$tag.log" 2>&1 &
  fi
  serverPid=$!
  startedPids+=("$serverPid")
  serverPids+=("$serverPid")
  serverTarget="127.0.0.1:$udpPort"
  waitReady "$serverTarget" "$serverPid" "$readyOid" || { cat "$work/$tag.log" >&2; return 1; }
}

# Our agent on scenario $3, in mode $1, tagged $2.
startAgent() {
  startServer "$1" "$2" "$locSysName" "$agent" --scenario "$3" --no-notifications
}

# The minimal agent with $3 ports of $4 neighbours, in mode $1, tagged $2.
startMinimal() {
  startServer "$1" "$2" "$remSysName.0.1.1" "$minimalAgent" --ports "$3" --neighbors "$4"
}

printf '%-7s %6s %5s %7s | %8s %9s %9s %8s | %8s %9s %9s | %7s %7s %7s %8s | %8s %7s\n' \
  mode neighb ports varbind remTbl_s remTbl_vb/s min_vb/s ours/min wholeMIB_s mib_vb/s mib_varbd \
  scal_us get1_us getN_us nextN_us rss_MiB KiB/nbr

for mode in $modes; do
  python3 "$here/make-scenario.py" --ports 1 --neighbors 0 "$work/empty.json"
  startAgent "$mode" "ours-$mode-0" "$work/empty.json"
  baseRss=$(vmRssKiB "$serverPid")
  stopStarted

  for total in $sizes; do
    ports=$(portsFor "$total")
    perPort=$((total / ports))
    scenario="$work/scenario-$total.json"
    [[ -f "$scenario" ]] ||
      python3 "$here/make-scenario.py" --ports "$ports" --neighbors "$perPort" --addresses "$addresses" "$scenario"
    startAgent "$mode" "ours-$mode-$total" "$scenario"
    agentPid=$serverPid
    agentPids=("${serverPids[@]}")
    target=$serverTarget
    startMinimal "$mode" "minimal-$mode-$total" "$ports" "$perPort"
    minimalTarget=$serverTarget

    # In turn, so that both see the same moments of the machine.
    remWalk=""
    minimalWalk=""
    for ((run = 0; run < walkRuns; run++)); do
      remWalk=$(faster "$remWalk" "$(bulkWalk "$target" "$remTable")")
      minimalWalk=$(faster "$minimalWalk" "$(bulkWalk "$minimalTarget" "$remTable")")
    done
    read -r remSeconds remCount <<<"$remWalk"
    read -r minimalSeconds minimalCount <<<"$minimalWalk"
    ((remCount == minimalCount)) ||
      echo "$0: lldpRemTable gave $remCount varbinds, the minimal agent's table $minimalCount" >&2
    remRate=$(echo "$remCount / $remSeconds" | bc -l)
    minimalRate=$(echo "$minimalCount / $minimalSeconds" | bc -l)
    # Best of $walkRuns as well while a walk takes under 10 s; a longer one is not noise-bound. The split
    # shown is the best walk's.
    mibWalk=$(bulkWalk "$target" "$lldp" "$work/split")
    cp "$work/split" "$work/split-best"
    for ((run = 1; run < walkRuns; run++)); do
      [[ $(echo "${mibWalk%% *} < 10" | bc -l) == 1 ]] || break
      nextWalk=$(bulkWalk "$target" "$lldp" "$work/split")
      if [[ $(faster "$mibWalk" "$nextWalk") == "$nextWalk" ]]; then
        mibWalk=$nextWalk
        cp "$work/split" "$work/split-best"
      fi
    done
    read -r mibSeconds mibCount <<<"$mibWalk"

    # The rows carry lldpRemTimeMark 0, as a walk shows them.
    firstRow="$remSysName.0.1.1"
    lastRow="$remSysName.0.$ports.$perPort"
    beforeLastRow="$remSysName.0.$ports.$((perPort - 1))"
    for pid in "${agentPids[@]}"; do
      taskset -a -p -c "$latencyCpu" "$pid" >/dev/null
    done
    gets=$(requestMedians "$target" "$locSysName" "$firstRow" "$lastRow")
    read -r scalarUs firstUs lastUs <<<"$gets"
    nextUs=$(requestMedians "$target" "$beforeLastRow" --getnext)
    rss=$(vmRssKiB "$agentPid")

    printf '%-7s %6d %5d %7d | %8.2f %9.0f %9.0f %8.2f | %8.2f %9.0f %9d | %7s %7s %7s %8s | %8.1f %7.2f\n' \
      "$mode" "$total" "$ports" "$remCount" "$remSeconds" "$remRate" "$minimalRate" \
      "$(echo "$remRate / $minimalRate" | bc -l)" \
      "$mibSeconds" "$(echo "$mibCount / $mibSeconds" | bc -l)" "$mibCount" \
      "$scalarUs" "$firstUs" "$lastUs" "$nextUs" \
      "$(echo "$rss / 1024" | bc -l)" "$(echo "($rss - $baseRss) / $total" | bc -l)"
    awk '{ name = $1; for (i = 2; i <= NF - 2; ++i) name = name " " $i
           printf "    %-30s %8.2f s %9d vb %9.0f vb/s\n", name, $(NF - 1), $NF, ($(NF - 1) > 0 ? $NF / $(NF - 1) : 0) }' \
      "$work/split-best"
    stopStarted
  done
done
