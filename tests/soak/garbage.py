"""Packets that a node must survive: malformed ones, and ones that mean nothing to it."""

import random
import struct

import packets
from packets import discovery

SERVICE, MAJOR, GETTER, EVENTGROUP = 0x6005, 4, 0x4010, 0xC010  # of a service that is offered, for near misses
OTHER_SERVICE = 0x4712


def message(identifier, body, kind, **fields):
    return packets.message(identifier, body, kind, MAJOR, **fields)


class Garbage:
    def __init__(self):
        self._random = random.Random(20240607)  # always the same packets

    def _bytes(self, most):
        return self._random.randbytes(self._random.randrange(most))

    def _number(self, bits):
        return self._random.choice((0, 1, 1 << bits - 1, (1 << bits) - 1, self._random.getrandbits(bits)))

    def _spoil(self, packet):
        spoiled = bytearray(packet)
        for _ in range(3):
            spoiled[self._random.randrange(len(packet))] = self._random.randrange(256)
        return bytes(spoiled[:self._random.randrange(len(packet))] if self._random.random() < 0.2 else spoiled)

    def data(self):
        identifier = SERVICE << 16 | self._random.choice((GETTER, GETTER | 0x8000, self._random.getrandbits(16)))
        kind = self._random.choice((0x00, 0x01, 0x02, 0x80, 0x81, self._random.getrandbits(8)))
        # Mostly one that could be part of a message, of which nothing else will come.
        place = self._random.choice((self._number(32), self._random.getrandbits(20) << 4 | self._random.getrandbits(1)))
        segment = struct.pack(">I", place) + self._random.randbytes(16 * self._random.randrange(88))
        segment = segment[:None if self._random.random() < 0.8 else self._random.randrange(len(segment))]
        return self._random.choice((
            lambda: self._bytes(1472),
            lambda: message(identifier, b"", kind)[:self._random.randrange(16)],
            lambda: message(identifier, self._bytes(64), kind, length=self._number(32)),
            lambda: message(identifier, segment, kind | 0x20, request=self._random.getrandbits(32)),
            lambda: self._spoil(message(identifier, self._bytes(64), kind)),
        ))()

    def discovery(self):
        kind = self._random.choice((0, 1, 6, 7, self._random.randrange(256)))
        entry = struct.pack(">BBBBHHII", kind, self._random.randrange(3), 0, 0x10, OTHER_SERVICE, self._number(16),
                            MAJOR << 24 | self._number(24), self._number(32))
        near_miss = struct.pack(">BBBBHHIHH", 6, 0, 0, 0x10, SERVICE, 1, MAJOR << 24 | 3, 0,
                                EVENTGROUP ^ (1 << self._random.randrange(16)))
        # Without the endpoint that it speaks of: it must not replace the true offer, nor take it back.
        false_offer = struct.pack(">BBBBHHII", 1, 7, 0, 0x10, SERVICE, 1, MAJOR << 24 | self._random.choice((0, 3)), 3)
        option = struct.pack(">HBB4sBBH", 9, 4, 0, bytes((127, 66, 0, 1)), 0, 0x11, self._number(16))
        return self._random.choice((
            lambda: self._bytes(1472),
            lambda: discovery(entry, option, entries_length=self._number(32)),
            lambda: discovery(entry, option, options_length=self._number(32)),
            lambda: discovery(entry * self._random.randrange(90), option * self._random.randrange(16)),
            lambda: discovery(near_miss, option),
            lambda: discovery(false_offer, option),
            lambda: discovery(entry, struct.pack(">HB", self._number(16), self._random.randrange(256))),
            lambda: self._spoil(discovery(entry * 3, option * 2)),
        ))()

    def huge_discovery(self):
        entry = struct.pack(">BBBBHHII", 1, 0, 0, 0x10, OTHER_SERVICE, 1, MAJOR << 24 | 3, 0)
        return discovery(entry * 4000, b"")
