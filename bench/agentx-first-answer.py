#!/usr/bin/env python3
"""How soon an AgentX sub-agent answers after it starts under a busy master.

Starts a private snmpd as AgentX master on free loopback ports, lets it run a
few seconds, then starts lldp-snmp-agent on a scenario of N neighbours under
it while a manager polls lldpRemSysName of the first neighbour through the
master every INTERVAL seconds with a timeout of INTERVAL and no retry (each
poll is one snmpget). Prints, per interval, when the agent said it serves and
when the first poll was answered, in seconds from the agent's start.

    bench/agentx-first-answer.py BUILD_DIR [--neighbors 1000] [--intervals 0.02 1]
"""
import argparse
import os
import socket
import subprocess
import sys
import tempfile
import threading
import time

REM_SYS_NAME_FIRST_ROW = "1.0.8802.1.1.2.1.4.1.1.9.0.1.1"
SYS_UPTIME = "1.3.6.1.2.1.1.3.0"
LIMIT_SECONDS = 300


def free_port(kind):
    with socket.socket(socket.AF_INET, kind) as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def poll_once(target, interval, oid):
    r = subprocess.run(["snmpget", "-v2c", "-c", "public", "-t", str(interval), "-r", "0", target, oid],
                       capture_output=True, text=True)
    return "STRING" in r.stdout or "Timeticks" in r.stdout


def measure(agent, scenario, work, interval):
    udp, ax = free_port(socket.SOCK_DGRAM), free_port(socket.SOCK_STREAM)
    conf = os.path.join(work, f"snmpd-{interval}.conf")
    persist = os.path.join(work, f"persist-{interval}")
    os.makedirs(persist, exist_ok=True)
    with open(conf, "w") as f:
        f.write(f"master agentx\nagentXSocket tcp:127.0.0.1:{ax}\nrocommunity public 127.0.0.1\n")
    env = dict(os.environ, SNMP_PERSISTENT_DIR=persist, MIBS="")
    master = subprocess.Popen(["snmpd", "-f", "-C", "-c", conf, "-Le", f"udp:127.0.0.1:{udp}"], env=env,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    target = f"127.0.0.1:{udp}"
    try:
        deadline = time.time() + 10
        while not poll_once(target, 0.2, SYS_UPTIME):
            if time.time() > deadline:
                sys.exit("snmpd did not answer")
        time.sleep(3)  # a master that has been up a while
        start = time.time()
        proc = subprocess.Popen([agent, "--agentx", f"tcp:127.0.0.1:{ax}", "--scenario", scenario,
                                 "--no-notifications", "--persistent-dir", os.path.join(persist, "agent")],
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        serving = []

        def read():
            for line in proc.stdout:
                if "serving" in line and not serving:
                    serving.append(time.time() - start)

        threading.Thread(target=read, daemon=True).start()
        first, polls = None, 0
        while time.time() - start < LIMIT_SECONDS:
            polls += 1
            if poll_once(target, interval, REM_SYS_NAME_FIRST_ROW):
                first = time.time() - start
                break
            time.sleep(interval)
        proc.terminate()
        proc.wait(timeout=10)
        ready = f"{serving[0]:.2f}" if serving else "never"
        answered = f"{first:.2f}" if first is not None else f"not within {LIMIT_SECONDS}"
        print(f"interval {interval:>5} s: serving at {ready} s, first answer at {answered} s, after {polls} polls")
    finally:
        master.terminate()
        master.wait(timeout=10)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build")
    parser.add_argument("--neighbors", type=int, default=1000)
    parser.add_argument("--intervals", type=float, nargs="+", default=[0.02, 1.0])
    args = parser.parse_args()
    agent = os.path.join(args.build, "agent", "lldp-snmp-agent")
    here = os.path.dirname(os.path.abspath(__file__))
    with tempfile.TemporaryDirectory() as work:
        scenario = os.path.join(work, "scenario.json")
        subprocess.run([sys.executable, os.path.join(here, "make-scenario.py"), "--ports", "1", "--neighbors",
                        str(args.neighbors), scenario], check=True, stdout=subprocess.DEVNULL)
        for interval in args.intervals:
            measure(agent, scenario, work, interval)


if __name__ == "__main__":
    main()
