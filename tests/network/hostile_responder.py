#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Announces services over multicast DNS (RFC 6762, RFC 6763) whose names and TXT records are
wrong, and between them one that is right, again and again until it is ended.

usage: hostile_responder.py ADDRESS TYPE
"""
import socket
import struct
import sys
import time

GROUP = ("224.0.0.251", 5353)
PTR, TXT, SRV, A = 12, 16, 33, 1
FLUSH_IN = 0x8001


def name(*labels):
    return b"".join(bytes([len(label)]) + label for label in labels) + b"\0"


def record(owner, kind, data, kind_class=FLUSH_IN):
    return owner + struct.pack("!HHIH", kind, kind_class, 120, len(data)) + data


def announcement(instance, address, type_labels, port, txt):
    """A whole response: pointer, location, text and address of one service."""
    service_type = name(*type_labels, b"local")
    service = name(instance, *type_labels, b"local")
    host = name(b"hostile", b"local")
    records = [
        record(service_type, PTR, service, 1),
        record(service, SRV, struct.pack("!HHH", 0, 0, port) + host),
        record(service, TXT, txt),
        record(host, A, socket.inet_aton(address)),
    ]
    return struct.pack("!HHHHHH", 0, 0x8400, 0, len(records), 0, 0) + b"".join(records)


def entries(*texts):
    return b"".join(bytes([len(text)]) + text for text in texts)


def packets(address, type_labels):
    """Each wrong in its own way; the last two are right."""
    hostile = [
        (b"Till \xff\xfe\xc0\x80", entries(b"demo=1")),  # no valid UTF-8
        (b"\xed\xa0\x80", entries(b"demo=1")),  # a surrogate
        (b"with\0zero", entries(b"demo=1")),
        (b"\x1b[31mred\x07", entries(b"demo=1")),  # would reach a terminal
        (b"x" * 63, entries(b"demo=1")),
        (b"no text", b""),
        (b"short entry", b"\x20demo=1"),  # promises more than there is
        (b"no key", entries(b"=1", b"", b"=", b"demo")),
        (b"bytes", entries(b"demo=\xff\x00\xfe", b"\xff\xff=1")),
        (b"long text", entries(*[b"k%03d=" % i + b"v" * 240 for i in range(30)])),
    ]
    for port, (instance, txt) in enumerate(hostile, start=7000):
        yield announcement(instance, address, type_labels, port, txt)
    whole = announcement(b"cut", address, type_labels, 7999, entries(b"demo=1"))
    yield whole[: len(whole) // 2]
    yield struct.pack("!HHHHHH", 0, 0x8400, 0, 0xFFFF, 0, 0) + name(b"loop")[:-1] + b"\xc0\x0c"
    yield announcement(b"Twice", address, type_labels, 8000, entries(b"demo=1", b"demo=0"))
    yield announcement(b"Good", address, type_labels, 8001, entries(b"demo=1"))


def main():
    address, service_type = sys.argv[1:]
    type_labels = [label.encode() for label in service_type.split(".")]
    sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    sender.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    sender.bind(("", 5353))  # answers from another port are ignored
    sender.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, socket.inet_aton(address))
    sender.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_TTL, 255)
    while True:
        for packet in packets(address, type_labels):
            sender.sendto(packet, GROUP)
            time.sleep(0.005)
        time.sleep(0.2)


if __name__ == "__main__":
    main()
