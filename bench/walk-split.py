#!/usr/bin/env python3
"""Count the varbinds of a walk read from standard input (snmpbulkwalk -On, line-buffered), and write to FILE
how long each table of the LLDP MIBs took: the time from one line to the next goes to the later line's table.

    snmpbulkwalk -On ... | bench/walk-split.py FILE      prints the count; FILE gets "name seconds varbinds"

A bulk walk's answers come a PDU at a time, so a table's share is right to within one PDU.
"""
import sys
import time

LLDP = "1.0.8802.1.1.2.1."
# Tables by their OID under LLDP, in MIB order; the scalars of a group are one line each.
TABLES = {
    "1.6": "lldpPortConfigTable", "1.7": "lldpConfigManAddrTable", "2.6": "lldpStatsTxPortTable",
    "2.7": "lldpStatsRxPortTable", "3.7": "lldpLocPortTable", "3.8": "lldpLocManAddrTable",
    "4.1": "lldpRemTable", "4.2": "lldpRemManAddrTable", "4.3": "lldpRemUnknownTLVTable",
    "4.4": "lldpRemOrgDefInfoTable",
    "5.32962.1.1.1": "lldpXdot1ConfigPortVlanTable", "5.32962.1.2.1": "lldpXdot1LocTable",
    "5.32962.1.3.1": "lldpXdot1RemTable", "5.32962.1.3.2": "lldpXdot1RemProtoVlanTable",
    "5.32962.1.3.3": "lldpXdot1RemVlanNameTable", "5.32962.1.3.4": "lldpXdot1RemProtocolTable",
    "5.4623.1.1.1": "lldpXdot3PortConfigTable", "5.4623.1.2.3": "lldpXdot3LocLinkAggTable",
    "5.4623.1.2.4": "lldpXdot3LocMaxFrameSizeTable", "5.4623.1.3.1": "lldpXdot3RemPortTable",
    "5.4623.1.3.2": "lldpXdot3RemPowerTable", "5.4623.1.3.3": "lldpXdot3RemLinkAggTable",
    "5.4623.1.3.4": "lldpXdot3RemMaxFrameSizeTable",
}


def table_of(name):
    oid = name.lstrip(".").split(" ", 1)[0]
    if not oid.startswith(LLDP):
        return "other"
    rest = oid[len(LLDP):]
    for prefix, table in TABLES.items():
        if rest.startswith(prefix + "."):
            return table
    return {"1": "lldpConfiguration", "2": "lldpStatistics", "3": "lldpLocalSystemData"}.get(
        rest.split(".")[0], "lldpObjects") + " scalars"


def main():
    seconds, counts, order = {}, {}, []
    count = 0
    last = time.monotonic()
    for line in sys.stdin:
        if not line.startswith(".") or "No more variables" in line:
            continue
        now = time.monotonic()
        table = table_of(line)
        if table not in counts:
            order.append(table)
            seconds[table], counts[table] = 0.0, 0
        seconds[table] += now - last
        counts[table] += 1
        last = now
        count += 1
    with open(sys.argv[1], "w", encoding="utf-8") as out:
        for table in order:
            out.write("%s %.3f %d\n" % (table, seconds[table], counts[table]))
    print(count)


if __name__ == "__main__":
    main()
