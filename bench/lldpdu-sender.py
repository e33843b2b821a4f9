#!/usr/bin/env python3
"""Sends LLDPDUs on an interface through a raw socket, as many neighbours as asked.

Run inside the network namespace of the interface (ip netns exec NS ...). Reads
commands on standard input, one a line, and answers each with "done SECONDS" (the
CLOCK_MONOTONIC time the last frame of the command went out):

    send FIRST COUNT TTL NAME_SUFFIX   neighbours FIRST .. FIRST+COUNT-1, chassis ID "bench-<n>"
                                       (subtype local), port ID "p1", system name "bench-<n><suffix>"
    pace SECONDS                       wait this long between two frames (default 0.0002)

Each LLDPDU carries, beyond the mandatory TLVs, a port description, a system
description, capabilities, an IPv4 management address, and the 802.1 (PVID,
PPVID, VLAN name, protocol identity) and 802.3 (MAC/PHY, link aggregation,
maximum frame size) TLVs, so that every neighbour fills every table.
"""

import socket
import struct
import sys
import time

LLDP_MULTICAST = bytes.fromhex("0180c200000e")
ETHERTYPE_LLDP = 0x88CC


def tlv(kind, value):
    return struct.pack("!H", kind << 9 | len(value)) + value


def org(oui, subtype, value):
    return tlv(127, bytes.fromhex(oui) + bytes([subtype]) + value)


def lldpdu(n, ttl, suffix):
    name = f"bench-{n}".encode()
    return b"".join([
        tlv(1, bytes([7]) + name),
        tlv(2, bytes([7]) + b"p1"),
        tlv(3, struct.pack("!H", ttl)),
        tlv(4, b"bench port"),
        tlv(5, name + suffix.encode()),
        tlv(6, b"bench neighbour"),
        tlv(7, struct.pack("!HH", 0x14, 0x04)),
        tlv(8, bytes([5, 1]) + bytes([192, 0, 2, n % 250 + 1]) + bytes([2]) + struct.pack("!I", 7) + bytes([0])),
        org("0080c2", 1, struct.pack("!H", 10)),
        org("0080c2", 2, bytes([6]) + struct.pack("!H", 20)),
        org("0080c2", 3, struct.pack("!H", 10) + bytes([4]) + b"v010"),
        org("0080c2", 4, bytes([2]) + b"\x88\x8e"),
        org("00120f", 1, bytes([3]) + struct.pack("!HH", 0x6C01, 30)),
        org("00120f", 3, bytes([3]) + struct.pack("!I", 17)),
        org("00120f", 4, struct.pack("!H", 1522)),
        tlv(0, b""),
    ])


def main():
    interface = sys.argv[1]
    sock = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
    sock.bind((interface, 0))
    source = sock.getsockname()[4]
    pace = 0.0002
    for line in sys.stdin:
        words = line.split()
        if not words:
            continue
        if words[0] == "pace":
            pace = float(words[1])
        elif words[0] == "send":
            first, count, ttl = int(words[1]), int(words[2]), int(words[3])
            suffix = words[4] if len(words) > 4 else ""
            for n in range(first, first + count):
                frame = LLDP_MULTICAST + source + struct.pack("!H", ETHERTYPE_LLDP) + lldpdu(n, ttl, suffix)
                sock.send(frame)
                if pace > 0:
                    time.sleep(pace)
        print(f"done {time.monotonic():.6f}", flush=True)


if __name__ == "__main__":
    main()
