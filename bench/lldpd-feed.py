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
import socket
import statistics
import struct
import subprocess
import sys
import time

REM_SYS_NAME = "1.0.8802.1.1.2.1.4.1.1.9"
INSERTS = "1.0.8802.1.1.2.1.2.2.0"
DELETES = "1.0.8802.1.1.2.1.2.3.0"


def ber_length(n):
    if n < 0x80:
        return bytes([n])
    body = n.to_bytes((n.bit_length() + 7) // 8, "big")
    return bytes([0x80 | len(body)]) + body


def ber(tag, body):
    return bytes([tag]) + ber_length(len(body)) + body


def ber_int(n):
    return ber(0x02, n.to_bytes(max(1, (n.bit_length() + 8) // 8), "big", signed=True))


def ber_oid(text):
    arcs = [int(a) for a in text.split(".")]
    body = bytes([arcs[0] * 40 + arcs[1]])
    for arc in arcs[2:]:
        chunk = [arc & 0x7F]
        arc >>= 7
        while arc:
            chunk.insert(0, 0x80 | (arc & 0x7F))
            arc >>= 7
        body += bytes(chunk)
    return ber(0x06, body)


def read_tlv(data, pos):
    tag = data[pos]
    length = data[pos + 1]
    pos += 2
    if length & 0x80:
        count = length & 0x7F
        length = int.from_bytes(data[pos:pos + count], "big")
        pos += count
    return tag, data[pos:pos + length], pos + length


class Snmp:
    """A minimal SNMPv2c GET: one OID, the value's tag and bytes."""

    def __init__(self, port):
        self.sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.sock.connect(("127.0.0.1", port))
        self.request_id = 1

    def get(self, oid):
        self.request_id += 1
        pdu = ber(0xA0, ber_int(self.request_id) + ber_int(0) + ber_int(0) +
                  ber(0x30, ber(0x30, ber_oid(oid) + b"\x05\x00")))
        self.sock.send(ber(0x30, ber_int(1) + ber(0x04, b"public") + pdu))
        while True:
            ready, _, _ = select.select([self.sock], [], [], 2.0)
            if not ready:
                raise TimeoutError("the agent did not answer")
            data = self.sock.recv(65535)
            _, message, _ = read_tlv(data, 0)
            pos = 0
            for _ in range(2):  # version, community
                _, _, pos = read_tlv(message, pos)
            _, response, _ = read_tlv(message, pos)
            _, request_id, pos = read_tlv(response, 0)
            if int.from_bytes(request_id, "big", signed=True) != self.request_id:
                continue
            for _ in range(2):  # error status, error index
                _, _, pos = read_tlv(response, pos)
            _, varbinds, _ = read_tlv(response, pos)
            _, varbind, _ = read_tlv(varbinds, 0)
            _, _, pos = read_tlv(varbind, 0)
            tag, value, _ = read_tlv(varbind, pos)
            return tag, value

    def counter(self, oid):
        tag, value = self.get(oid)
        return int.from_bytes(value, "big") if tag in (0x41, 0x42, 0x43) else -1


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
