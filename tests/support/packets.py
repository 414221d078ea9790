"""Messages and discovery entries, made by hand, and a peer that sends whatever it is told to."""

import itertools
import socket
import struct

GROUP, DISCOVERY_PORT, DATA_PORT = "224.244.224.245", 30490, 30509
DISCOVERY = 0xFFFF8100
FIND, OFFER, SUBSCRIBE, ACKNOWLEDGE = 0, 1, 6, 7  # types of discovery entries
FOREVER = 0xFFFFFF


def message(identifier, body, kind, version, length=None, request=0x12340001):
    return struct.pack(">IIIBBBB", identifier, 8 + len(body) if length is None else length, request, 1, version,
                       kind, 0) + body


def discovery(entries, options, entries_length=None, options_length=None, session=1, flags=0xC0):
    body = struct.pack(">BxxxI", flags, len(entries) if entries_length is None else entries_length) + entries
    body += struct.pack(">I", len(options) if options_length is None else options_length) + options
    return message(DISCOVERY, body, 2, 1, request=session)


def entry(kind, service, instance, version, ttl=3, last=0, option=0):
    """`last` is the minor version of a service, or an eventgroup."""
    return struct.pack(">BBBBHHII", kind, option, 0, 0x10, service, instance, version << 24 | ttl, last)


def endpoint(address, port):
    return struct.pack(">HBB4sBBH", 9, 4, 0, socket.inet_aton(address), 0, 0x11, port)


class Peer:
    """A node of which nothing is known but its address."""

    def __init__(self, address, data_port=0):
        self.address, self._sessions = address, itertools.count(1)
        self.discovery, self.data = (self._bind(port) for port in (DISCOVERY_PORT, data_port))
        for option, value in ((socket.IP_MULTICAST_IF, socket.inet_aton("127.0.0.1")), (socket.IP_MULTICAST_TTL, 0)):
            self.discovery.setsockopt(socket.IPPROTO_IP, option, value)
        self.port = self.data.getsockname()[1]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.discovery.close()
        self.data.close()

    def _bind(self, port):
        udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        udp.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        udp.bind((self.address, port))
        udp.settimeout(10)
        return udp

    def say(self, to, *entries, at=None, session=None):
        """One discovery message. Its entries are at this peer's data port, or `at` an (address, port)."""
        packet = discovery(b"".join(entries), endpoint(*at or (self.address, self.port)),
                           session=session or next(self._sessions))
        self.discovery.sendto(packet, (to, DISCOVERY_PORT))

    def answers(self):
        """The entries of the next message: type, time to live, and the port of the first option that it refers to."""
        packet = self.discovery.recv(65536)
        end = 24 + int.from_bytes(packet[20:24], "big")
        entries = [packet[at:at + 16] for at in range(24, end, 16)]
        ports = [int.from_bytes(packet[end + 4 + 12 * each[1]:][10:12], "big") for each in entries]
        return [(each[0], int.from_bytes(each[9:12], "big"), port) for each, port in zip(entries, ports)]

    def answer(self, kind):
        """The first such entry in the next message that has one: time to live, and the port of its option."""
        while True:
            for each, *rest in self.answers():
                if each == kind:
                    return tuple(rest)

    def waiting(self):
        """The sizes of the datagrams that have come to the data port."""
        self.data.setblocking(False)
        sizes = []
        try:
            while True:
                sizes.append(len(self.data.recv(65536)))
        except BlockingIOError:
            return sizes
