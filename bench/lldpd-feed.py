#!/usr/bin/env python3
"""Measures lldp-snmp-agent's lldpd feed; bench/lldpd-feed.sh sets the lab up and runs this.

    lldpd-feed.py SENDER_NAMESPACE SENDER_INTERFACE NEAR_SOCKET AGENT_PORT PORT_NUMBER NEIGHBORS SAMPLES AGENT_PID

Latency: one new neighbour at a time, the time from lldpd reporting it (lldpcli watch)
to the agent answering a GET of its lldpRemSysName. Rate: NEIGHBORS new neighbours
sent at once, then all of them updated, then all of them withdrawn (TTL 0): changes
per second from the first frame to the agent serving the last change, beside lldpd's
own time to take them in, and the agent's CPU time per change.
"""

import os
import select
import statistics
import struct
import subprocess
import sys
import time

from snmp_get import Snmp

REM_SYS_NAME = "1.0.8802.1.1.2.1.4.1.1.9"
INSERTS = "1.0.8802.1.1.2.1.2.2.0"
DELETES = "1.0.8802.1.1.2.1.2.3.0"


def wait_for(condition, seconds, pause=0.001):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if condition():
            return time.monotonic()
        time.sleep(pause)
    raise TimeoutError("gave up waiting")


class Watch:
    """lldpcli watch on the near lldpd: the moments lldpd reports neighbours added, by system name."""

    def __init__(self, near_socket):
        # Line-buffered, and read unbuffered here: select() does not see lines a file object holds.
        self.process = subprocess.Popen(["stdbuf", "-oL", "lldpcli", "-u", near_socket, "-f", "keyvalue", "watch"],
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, bufsize=0)
        self.pending = b""
        self.seen = {}

    def until(self, name, seconds):
        deadline = time.monotonic() + seconds
        while name not in self.seen:
            left = deadline - time.monotonic()
            if left <= 0:
                raise TimeoutError(f"lldpd did not report {name}")
            ready, _, _ = select.select([self.process.stdout], [], [], left)
            if not ready:
                continue
            self.pending += os.read(self.process.stdout.fileno(), 1 << 20)
            *lines, self.pending = self.pending.split(b"\n")
            now = time.monotonic()
            for line in lines:
                text = line.decode(errors="replace")
                if text.startswith("lldp-added.") and ".chassis.name=" in text:
                    self.seen.setdefault(text.split("=", 1)[1].strip(), now)
        return self.seen[name]

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=5)


def main():
    namespace, interface, near_socket = sys.argv[1], sys.argv[2], sys.argv[3]
    agent_port, port_number, neighbors, samples, agent_pid = (int(a) for a in sys.argv[4:9])

    def cpu():
        with open(f"/proc/{agent_pid}/stat") as stat:
            fields = stat.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
    sender = subprocess.Popen(["ip", "netns", "exec", namespace, sys.executable,
                               sys.path[0] + "/lldpdu-sender.py", interface],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)

    def send(command):
        sender.stdin.write(command + "\n")
        sender.stdin.flush()
        return float(sender.stdout.readline().split()[1])

    snmp = Snmp(agent_port)
    watch = Watch(near_socket)
    index = 0

    def answers(n, name):
        tag, value = snmp.get(f"{REM_SYS_NAME}.0.{port_number}.{n}")
        return tag == 0x04 and value.decode() == name

    # One neighbour at a time.
    latencies = []
    for sample in range(samples):
        index += 1
        name = f"bench-{index}"
        send(f"send {index} 1 120")
        learnt = watch.until(name, 10)
        served = wait_for(lambda: answers(index, name), 10)
        latencies.append((served - learnt) * 1000)
    latencies.sort()
    print(f"latency lldpd->SNMP, {samples} neighbours one at a time: median {statistics.median(latencies):.1f} ms, "
          f"p90 {latencies[int(len(latencies) * 0.9) - 1]:.1f} ms, max {latencies[-1]:.1f} ms")

    # Many at once: added, updated, withdrawn.
    first = index + 1
    last = index + neighbors
    base_inserts = snmp.counter(INSERTS)
    cpu_before = cpu()
    start = time.monotonic()
    send(f"send {first} {neighbors} 120")
    lldpd_done = watch.until(f"bench-{last}", 60)
    agent_done = wait_for(lambda: snmp.counter(INSERTS) >= base_inserts + neighbors, 60)
    print(f"{neighbors} neighbours added: lldpd took them in {lldpd_done - start:.2f} s, the agent served them "
          f"{agent_done - start:.2f} s after the first frame ({neighbors / (agent_done - start):.0f} changes/s, "
          f"{(agent_done - lldpd_done) * 1000:.0f} ms behind lldpd); agent CPU {(cpu() - cpu_before) * 1e6 / neighbors:.0f} us per change")

    cpu_before = cpu()
    start = time.monotonic()
    send(f"send {first} {neighbors} 120 -updated")
    agent_done = wait_for(lambda: answers(last, f"bench-{last}-updated"), 60)
    print(f"{neighbors} neighbours updated: served {agent_done - start:.2f} s after the first frame "
          f"({neighbors / (agent_done - start):.0f} changes/s); agent CPU {(cpu() - cpu_before) * 1e6 / neighbors:.0f} us per change")

    base_deletes = snmp.counter(DELETES)
    cpu_before = cpu()
    start = time.monotonic()
    send(f"send {first} {neighbors} 0")
    agent_done = wait_for(lambda: snmp.counter(DELETES) >= base_deletes + neighbors, 60)
    print(f"{neighbors} neighbours withdrawn: served {agent_done - start:.2f} s after the first frame "
          f"({neighbors / (agent_done - start):.0f} changes/s); agent CPU {(cpu() - cpu_before) * 1e6 / neighbors:.0f} us per change")

    watch.close()
    sender.stdin.close()
    sender.wait(timeout=5)


if __name__ == "__main__":
    main()
