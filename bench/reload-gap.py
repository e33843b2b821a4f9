#!/usr/bin/env python3
"""How long a built agent stops answering while it takes in a changed state.

For each size it writes a scenario (bench/make-scenario.py, 100 neighbours per
port, 2 addresses each), starts the agent on a free 127.0.0.1 port, then
rewrites the file with a tenth of the neighbours changed (new sysName and
sysDesc, a later change time) and sends SIGHUP while one client asks a GET
every 2 ms. Prints, per size: the longest time between two answers around the
reload (the time without answers), the time until the reload's change is
served, and the longest gap in a quiet second before it for comparison.

    bench/reload-gap.py [--build build-release] [--sizes 10000,50000]
"""
import argparse
import json
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time

from snmp_get import Snmp

HERE = pathlib.Path(__file__).resolve().parent


class Poller:
    """One GET at a time; remembers the longest wait between two answers."""

    def __init__(self, port, oid):
        # A reload that held the agent for long must still be waited for.
        self.snmp = Snmp(port, timeout=120.0)
        self.oid = oid

    def ask(self):
        _, value = self.snmp.get(self.oid)
        return time.monotonic(), value

    def longest_gap(self, seconds, until=None):
        """Polls for `seconds` (or until `until(value)` holds, at most 120 s); gives the longest gap."""
        # From before the first request: a reload that holds the agent delays its answer.
        last = start = time.monotonic()
        gap = 0.0
        done_at = None
        while True:
            now, value = self.ask()
            gap = max(gap, now - last)
            last = now
            if until and done_at is None and until(value):
                done_at = now - start
            if (until is None and now - start >= seconds) or (until and done_at is not None
                                                               and now - start >= done_at + 0.5):
                return gap, done_at
            if now - start > 120:
                return gap, None
            time.sleep(0.002)


def changed(scenario, every=10):
    for port in scenario["ports"]:
        for i, neighbor in enumerate(port["neighbors"]):
            if i % every == 0:
                neighbor["sysName"] += "-changed"
                neighbor["sysDesc"] += " (changed)"
                neighbor["lastChangeTime"] = 2.0
    return scenario


def run(build, neighbours, workdir):
    ports = max(1, neighbours // 100)
    path = workdir / "scenario.json"
    subprocess.run([sys.executable, HERE / "make-scenario.py", "--ports", str(ports), "--neighbors", "100",
                    "--addresses", "2", str(path)], check=True)
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
        s.bind(("127.0.0.1", 0))
        port = s.getsockname()[1]
    agent = subprocess.Popen([str(build / "agent" / "lldp-snmp-agent"), "--scenario", str(path), "--listen",
                              f"udp:127.0.0.1:{port}", "--persistent-dir", str(workdir)],
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        # lldpRemSysName of the first neighbour of port 1: changed by the reload.
        poller = Poller(port, "1.0.8802.1.1.2.1.4.1.1.9.0.1.1")
        deadline = time.monotonic() + 300
        while time.monotonic() < deadline:
            try:
                if poller.ask()[1] == b"nbr-1-1":
                    break
            except (TimeoutError, ConnectionRefusedError):
                time.sleep(0.2)
        quiet, _ = poller.longest_gap(1.0)
        scenario = changed(json.loads(path.read_text()))
        path.write_text(json.dumps(scenario, separators=(",", ":")))
        agent.send_signal(signal.SIGHUP)
        gap, applied = poller.longest_gap(0, until=lambda value: value == b"nbr-1-1-changed")
        return quiet, gap, applied
    finally:
        agent.terminate()
        agent.wait(timeout=30)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", default="build-release", help="build directory (default build-release)")
    parser.add_argument("--sizes", default="10000,50000", help="neighbour counts, comma-separated")
    args = parser.parse_args()
    build = pathlib.Path(args.build).resolve()
    print(f"{'neighbours':>10} {'quiet gap s':>12} {'reload gap s':>13} {'served after s':>15}")
    for size in (int(s) for s in args.sizes.split(",")):
        with tempfile.TemporaryDirectory() as tmp:
            quiet, gap, applied = run(build, size, pathlib.Path(tmp))
            served = f"{applied:.3f}" if applied is not None else "not in 120 s"
            print(f"{size:>10} {quiet:>12.3f} {gap:>13.3f} {served:>15}", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
