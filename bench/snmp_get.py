"""A minimal SNMPv2c client for the benchmarks: one GET at a time, no MIBs, no
process per request, so that a poll every few milliseconds measures the agent."""

import select
import socket


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

    def __init__(self, port, timeout=2.0):
        self.sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.sock.connect(("127.0.0.1", port))
        self.request_id = 1
        self.timeout = timeout

    def get(self, oid):
        self.request_id += 1
        pdu = ber(0xA0, ber_int(self.request_id) + ber_int(0) + ber_int(0) +
                  ber(0x30, ber(0x30, ber_oid(oid) + b"\x05\x00")))
        self.sock.send(ber(0x30, ber_int(1) + ber(0x04, b"public") + pdu))
        while True:
            ready, _, _ = select.select([self.sock], [], [], self.timeout)
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
