#!/usr/bin/env python3
"""Write a scenario of P ports with N neighbours each, every TLV kind present on every neighbour.

    bench/make-scenario.py --ports 50 --neighbors 200 [--addresses 1] OUT.json

The values are deterministic so that two runs serve the same tables. Large scenarios belong in a temp dir.
"""
import argparse
import json
import sys


def mac(prefix, n):
    """A locally administered MAC with the 32-bit n in its last four bytes."""
    return "02:%02x:%02x:%02x:%02x:%02x" % (prefix, (n >> 24) & 0xFF, (n >> 16) & 0xFF, (n >> 8) & 0xFF, n & 0xFF)


def ipv4(n, first=0):
    return "%d.%d.%d.%d" % (10 + first, (n >> 16) & 0xFF, (n >> 8) & 0xFF, n & 0xFF)


def addresses(serial, port, count):
    """An IPv4 address, then an IPv6 one, then more IPv4 ones: count in all."""
    out = []
    for i in range(count):
        if i == 1:
            out.append({"manAddrSubtype": 2, "manAddr": "2001:db8::%x:%x" % (serial >> 16, serial & 0xFFFF),
                        "ifSubtype": "ifIndex", "ifId": port})
        else:
            out.append({"manAddrSubtype": 1, "manAddr": ipv4(serial, i), "ifSubtype": "ifIndex", "ifId": port,
                        "oid": "1.3.6.1.2.1.2.2.1.1.%d" % port})
    return out


def neighbor(port, index, serial, address_count):
    vlan = 1 + serial % 4000
    return {
        "index": index,
        "msap": {"chassisIdSubtype": "macAddress", "chassisId": mac(0x10, serial),
                 "portIdSubtype": "interfaceName", "portId": "Ethernet%d" % (1 + serial % 48)},
        "portDesc": "uplink to bench-sw port %d" % port,
        "sysName": "nbr-%d-%d" % (port, index),
        "sysDesc": "Bench neighbour, release 1.%d" % (serial % 10),
        "sysCapSupported": ["bridge", "router"],
        "sysCapEnabled": ["bridge"],
        "managementAddress": addresses(serial, port, address_count),
        "unknownTlv": [{"type": 100, "info": {"hex": "%08x" % serial}}],
        "unknownOrgDefTlv": [{"oui": "00-12-bb", "subtype": 5, "index": 1, "orgDefInfo": "rev %d" % serial}],
        "portVlanIdTlvReceived": True,
        "portVlanId": vlan,
        "portAndProtocolVlan": [{"portAndProtocolVlanId": vlan, "supported": True, "enabled": True}],
        "vlanName": [{"vlanId": vlan, "vlanName": "vlan%d" % vlan}],
        "protocolIdentityInfo": [{"index": 1, "protocolId": {"hex": "0026424203000000"}}],
        "linkAggregationTlvReceived": True,
        "linkAggregationInfo": {"linkAggStatus": ["aggCapable"], "linkAggPortId": 0},
        "macPhyConfigStatusTlvReceived": True,
        "macPhyConfigStatusInfo": {"autoNegSupported": True, "autoNegEnabled": True,
                                   "autoNegAdvertisedCap": ["b100baseTXFD", "b1000baseTFD"], "operMauType": 30},
        "powerViaMdiTlvReceived": True,
        "powerViaMdiInfo": {"powerPortClass": "pClassPD", "powerMdiSupported": True, "powerMdiEnabled": True,
                            "powerPairControllable": False, "powerPairs": 1, "powerClass": 3},
        "maximumFrameSizeTlvReceived": True,
        "maximumFrameSizeInfo": 9216,
        "lastChangeTime": 1.0,
    }


def port(number, neighbors, first_serial, address_count):
    name = "Ethernet%d" % number
    return {
        "name": name,
        "config": {"adminStatus": "txAndRx", "enabledTlvs": ["portDesc", "sysName", "sysDesc", "sysCap"],
                   "manAddrTxEnable": True, "portVlanTxEnable": True,
                   "dot3EnabledTlvs": ["macPhyConfigStatus", "powerViaMDI", "linkAggregation", "maxFrameSize"]},
        "localPort": {"portIdSubtype": "interfaceName", "portId": name, "portDesc": "bench port %d" % number,
                      "portVlanId": 1, "maxFrameSize": 9236, "linkAggStatus": ["aggCapable"]},
        "portStatus": {"txFramesTotal": 1000 + number, "rxFramesTotal": 900 + number},
        "neighbors": [neighbor(number, i + 1, first_serial + i, address_count) for i in range(neighbors)],
    }


def scenario(ports, neighbors, address_count):
    return {
        "description": "Bench switch: %d ports x %d neighbours" % (ports, neighbors),
        "localSystem": {
            "chassisIdSubtype": "macAddress", "chassisId": "02:00:5e:00:be:01", "sysName": "bench-sw",
            "sysDesc": "LldpSnmp bench switch", "sysCapSupported": ["bridge", "router"], "sysCapEnabled": ["bridge"],
            "managementAddress": [{"manAddrSubtype": 1, "manAddr": "192.0.2.10", "ifSubtype": "ifIndex",
                                   "ifId": 1, "priority": 1}],
        },
        "ports": [port(p + 1, neighbors, p * neighbors, address_count) for p in range(ports)],
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--ports", type=int, required=True, help="ports, 1 to 4094")
    parser.add_argument("--neighbors", type=int, required=True, help="neighbours per port")
    parser.add_argument("--addresses", type=int, default=1,
                        help="management addresses per neighbour, 1 to 200 (default 1)")
    parser.add_argument("out", help="the scenario file to write")
    args = parser.parse_args()
    if not 1 <= args.ports <= 4094 or args.neighbors < 0 or not 1 <= args.addresses <= 200:
        parser.error("--ports must be 1 to 4094, --neighbors 0 or more and --addresses 1 to 200")
    with open(args.out, "w", encoding="utf-8") as out:
        json.dump(scenario(args.ports, args.neighbors, args.addresses), out, separators=(",", ":"))
    return 0


if __name__ == "__main__":
    sys.exit(main())
