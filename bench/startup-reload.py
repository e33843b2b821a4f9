#!/usr/bin/env python3
"""Times a built agent's start-up and a SIGHUP reload at scale.

For each size it writes a scenario (bench/make-scenario.py, 100 neighbours per
port), starts the agent on a free 127.0.0.1 port and times it until a GET of
lldpRemSysName on the last neighbour is answered; then it replaces the file by
one where every other port has gone, sends SIGHUP and times until the agent's
trace says the reload was applied. Prints one row per size: seconds to the
first answer, seconds of the reload, and the agent's VmRSS after start.
"""
import argparse
import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def answered(port, oid):
    r = subprocess.run(["snmpget", "-v2c", "-c", "public", "-t", "0.5", "-r", "0", "-On",
                        f"udp:127.0.0.1:{port}", oid], capture_output=True, text=True)
    return r.returncode == 0 and "No Such" not in r.stdout


def vm_rss(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return line.split()[1] + " kB"
    return "?"


def run(build, neighbours, workdir):
    ports = max(1, neighbours // 100)
    scenario = workdir / "scenario.json"
    subprocess.run([sys.executable, HERE / "make-scenario.py", "--ports", str(ports), "--neighbors", "100",
                    str(scenario)], check=True)
    half = workdir / "half.json"
    subprocess.run([sys.executable, HERE / "make-scenario.py", "--ports", str(max(1, ports // 2)), "--neighbors",
                    "100", str(half)], check=True)
    port = free_port()
    # lldpRemSysName of neighbour 100 on the last port (timeMark 0).
    last = f"1.0.8802.1.1.2.1.4.1.1.9.0.{ports}.100"
    err = open(workdir / "stderr", "w+")
    start = time.monotonic()
    agent = subprocess.Popen([build / "agent/lldp-snmp-agent", "--listen", f"udp:127.0.0.1:{port}", "--scenario",
                              str(scenario), "--trace", "Agent=1", "--no-notifications"],
                             stdout=subprocess.DEVNULL, stderr=err)
    try:
        while not answered(port, last):
            if agent.poll() is not None:
                raise SystemExit("the agent ended: " + (workdir / "stderr").read_text())
            time.sleep(0.05)
        startup = time.monotonic() - start
        rss = vm_rss(agent.pid)
        os.replace(half, scenario)
        err.seek(0, os.SEEK_END)
        mark = err.tell()
        start = time.monotonic()
        agent.send_signal(signal.SIGHUP)
        while True:
            err.seek(mark)
            if "reload applied" in err.read():
                break
            time.sleep(0.02)
        reload = time.monotonic() - start
    finally:
        agent.send_signal(signal.SIGTERM)
        agent.wait()
    print(f"{neighbours:>7} neighbours  start-up {startup:6.2f} s  reload (half the ports leave) {reload:6.2f} s"
          f"  VmRSS {rss}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path, help="the build directory")
    parser.add_argument("--sizes", default="10000 50000", help="neighbours in all (default: 10000 50000)")
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as tmp:
        for size in args.sizes.split():
            run(args.build.resolve(), int(size), pathlib.Path(tmp))


if __name__ == "__main__":
    main()
