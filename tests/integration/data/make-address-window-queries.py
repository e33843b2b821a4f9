#!/usr/bin/env python3
"""Write the requests that tests/integration/AddressWindowTest.cpp sends to the three address tables.

    tests/integration/data/make-address-window-queries.py > tests/integration/data/address-window-queries.txt

One PDU a line: GET, GETNEXT or GETBULK (then non-repeaters and max-repetitions), then the OIDs. The OIDs are
the instances of address-window.json and crafted ones around them: before, between and after, cut short or
longer than an index, with address lengths that differ from the bytes given, with values outside the index's
range, under time marks that keep or drop each neighbour. Seeded, so that the file is the same on every run.
"""
import ipaddress
import json
import os
import random

HERE = os.path.dirname(os.path.abspath(__file__))
LLDP = [1, 0, 8802, 1, 1, 2, 1]


def address_bytes(address):
    value = address.get("manAddr", "")
    if isinstance(value, dict):
        return list(bytes.fromhex(value["hex"]))
    if address.get("manAddrSubtype") in (1, 2):
        return list(ipaddress.ip_address(value).packed)
    return list(value.encode())


def address_index(address):
    data = address_bytes(address)
    return [address.get("manAddrSubtype", 0), len(data)] + data


def tables(scenario):
    local = [address_index(a) for a in scenario["localSystem"]["managementAddress"]]
    remote, ticks = [], []
    for port in scenario["ports"]:
        for neighbor in port.get("neighbors", []):
            t = round(neighbor["lastChangeTime"] * 100)
            ticks.append(t)
            for a in neighbor.get("managementAddress", []):
                remote.append([port["number"], neighbor["index"]] + address_index(a))
    # entry OID, served columns, instance indexes, marks (None: no time filter)
    return [
        (LLDP + [1, 7, 1], [1], local, None),  # lldpConfigManAddrTable
        (LLDP + [3, 8, 1], [3, 4, 5, 6], local, None),  # lldpLocManAddrTable
        (LLDP + [4, 2, 1], [3, 4, 5], remote, sorted(set(ticks))),  # lldpRemManAddrTable
    ]


def crafted(index, remote):
    """The index itself and OIDs around it."""
    out = [index, index[:-1] + [index[-1] + 1], index + [0], index + [255, 7]]
    if index[-1] > 0:
        out.append(index[:-1] + [index[-1] - 1])
    out += [index[:n] for n in range(1, len(index))]
    address = 2 if remote else 0  # position of the subtype
    length = index[address + 1]
    data = index[address + 2:]
    head = index[:address + 1]
    out += [head + [length + 1] + data, head + [length + 1] + data + [0]]
    if length > 0:
        out += [head + [length - 1] + data[:-1], head + [length - 1] + data]
        out.append(head + [length] + data[:-1] + [256])
    out += [head + [32] + [1] * 32, head + [200, 1, 2], head[:-1] + [2147483648, 4, 10, 0, 0, 1],
            head[:-1] + [4294967295]]
    if remote:
        out += [[4095] + index[1:], [65537] + index[1:], [index[0], 2147483648] + index[2:],
                [index[0], 4294967295], [index[0], index[1] + 1], [index[0] + 1]]
    return out


def oids(rng, table):
    entry, columns, instances, marks = table
    every = columns + [columns[0] - 1, columns[-1] + 1]
    result = [entry[:-1], entry, entry + [columns[0]], entry + [columns[-1] + 1]]
    # Every instance in every column, as a walk would ask.
    result += [entry + [c] + ([0] if marks is not None else []) + index for index in instances for c in columns]
    for index in instances:
        for suffix in crafted(index, marks is not None):
            column = rng.choice(every) if rng.random() < 0.25 else rng.choice(columns)
            mark = []
            if marks is not None:
                t = rng.choice(marks)
                mark = [rng.choice([0, 0, 0, t, t + 2, t + 3, 4294967295])]
            result.append(entry + [column] + mark + suffix)
    if marks is not None:
        result += [entry + [c, m] for c in columns for m in (0, marks[0] + 3, 4294967295)]
    return [".".join(map(str, o)) for o in result]


def main():
    rng = random.Random(8802)
    scenario = json.load(open(os.path.join(HERE, "address-window.json")))
    per_table = [oids(rng, t) for t in tables(scenario)]
    every = [o for t in per_table for o in t]
    lines = []
    for table in per_table:
        for o in table:
            lines.append("GET " + o)
            lines.append("GETNEXT " + o)
            if rng.random() < 0.3:
                lines.append("GETBULK 0 %d %s" % (rng.randint(2, 6), o))
    # Two columns at one instance: when a pass finds nothing for the last
    # varbind, net-snmp moves on by the column of the list's first or last.
    for entry, columns, instances, marks in tables(scenario):
        for index in instances:
            for mark in ([[]] if marks is None else [[0]] + [[t + d] for t in marks for d in (2, 3)]):
                for a in columns:
                    for b in columns:
                        if a != b:
                            pair = [".".join(map(str, entry + [c] + mark + index)) for c in (a, b)]
                            lines.append("GETNEXT " + " ".join(pair))
    for _ in range(900):
        # Mostly one table, so that the three arrive in one list; now and then from all.
        pool = rng.choice(per_table) if rng.random() < 0.8 else every
        three = [rng.choice(pool) for _ in range(3)]
        if rng.random() < 0.1:
            three[2] = three[0]
        kind = rng.choice(["GET", "GETNEXT", "GETNEXT", "GETBULK"])
        if kind == "GETBULK":
            lines.append("GETBULK %d %d %s" % (rng.randint(0, 1), rng.randint(1, 5), " ".join(three)))
        else:
            lines.append(kind + " " + " ".join(three))
    print("\n".join(lines))


if __name__ == "__main__":
    main()
