#!/usr/bin/env python3
# SPDX-FileCopyrightText: Nightjar contributors
# SPDX-License-Identifier: Apache-2.0
"""Devices on a network that answer multicast DNS (RFC 6762) about their services.

    mdns_device.py ADDRESS TYPE SECONDS NAME...

What says where a service is lives for SECONDS, what says that there is one for 75 minutes, as usual. SIGTERM
makes the devices take their leave, SIGKILL does not. Names with "*N" stand for N devices.
"""
import signal
import socket
import struct
import sys
import time

GROUP = ("224.0.0.251", 5353)
A, PTR, TXT, SRV, ANY = 1, 12, 16, 33, 255


def labels(*parts):
    return b"".join(bytes([len(p.encode())]) + p.encode() for p in parts) + b"\0"


def record(name, kind, lifetime, data, unique=True):
    return name + struct.pack(">HHIH", kind, 0x8001 if unique else 1, lifetime, len(data)) + data


def read_name(packet, at):
    parts = []
    while packet[at]:
        if packet[at] & 0xC0:
            rest, _ = read_name(packet, (packet[at] & 0x3F) << 8 | packet[at + 1])
            return parts + rest, at + 2
        parts.append(packet[at + 1 : at + 1 + packet[at]].decode("utf-8", "replace"))
        at += 1 + packet[at]
    return parts, at + 1


class Devices:
    def __init__(self, address, kind, lifetime, names):
        self.kind, self.lifetime, self.names = kind.split("."), lifetime, names
        self.host = "host-" + address.replace(".", "-")
        self.address = socket.inet_aton(address)
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.socket.bind(("", 5353))
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, socket.inet_aton(GROUP[0]) + self.address)
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, self.address)
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_TTL, 255)
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_LOOP, 0)

    def pointer(self, name, lifetime=4500):
        return record(labels(*self.kind, "local"), PTR, lifetime, labels(name, *self.kind, "local"), unique=False)

    def place(self, name):
        data = struct.pack(">HHH", 0, 0, 80) + labels(self.host, "local")
        return record(labels(name, *self.kind, "local"), SRV, self.lifetime, data)

    def text(self, name):
        return record(labels(name, *self.kind, "local"), TXT, 4500, b"\0")

    def send(self, records):
        while records:
            packet, count = b"", 0
            while records and len(packet) + len(records[0]) < 1400:
                packet += records.pop(0)
                count += 1
            try:
                self.socket.sendto(struct.pack(">HHHHHH", 0, 0x8400, 0, count, 0, 0) + packet, GROUP)
            except OSError:
                return  # the cable is out
            time.sleep(0.0003)

    def answer(self, packet):
        if len(packet) < 12 or packet[2] & 0x80:
            return
        at, records = 12, []
        for _ in range(struct.unpack(">H", packet[4:6])[0]):
            parts, at = read_name(packet, at)
            kind, _ = struct.unpack(">HH", packet[at : at + 4])
            at += 4
            if parts == self.kind + ["local"] and kind in (PTR, ANY):
                for name in self.names:
                    records += [self.pointer(name), self.place(name), self.text(name)]
            elif parts[1:] == self.kind + ["local"] and parts[0] in self.names:
                records += [self.place(parts[0])] if kind in (SRV, ANY) else [self.text(parts[0])]
            elif parts == [self.host, "local"] and kind in (A, ANY):
                records.append(record(labels(self.host, "local"), A, self.lifetime, self.address))
        self.send(records)

    def leave(self, *_):
        self.send([self.pointer(name, lifetime=0) for name in self.names])
        sys.exit(0)


def expand(word):
    name, star, count = word.rpartition("*")
    return [f"{name} {number:04}" for number in range(int(count))] if star else [word]


def main():
    address, kind, lifetime, *words = sys.argv[1:]
    devices = Devices(address, kind, int(lifetime), [name for word in words for name in expand(word)])
    signal.signal(signal.SIGTERM, devices.leave)
    devices.send([r for n in devices.names for r in (devices.pointer(n), devices.place(n), devices.text(n))])
    while True:
        devices.answer(devices.socket.recv(9000))


main()
