"""What a peer that does not keep the rules of discovery gets, and what leaves the machine.

Usage: hostile_check.py FIELD_PROVIDER, in a network namespace of its own in which the user is root.
"""

import json
import os
import socket
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from packets import ACKNOWLEDGE, DISCOVERY_PORT, FIND, GROUP, OFFER, SUBSCRIBE, Peer, entry, message  # noqa: E402

SERVICE, INSTANCE, MAJOR, EVENTGROUP, GETTER, SETTER = 0x4711, 1, 3, 0x21, 0x0010, 0x0011
ETH_P_IP = 0x0800
LOOPBACK, NETWORK = "127.0.7.1", "10.9.0.1"  # of the provider
SIZE = 1000  # of the field's value
VALUE = 16 + SIZE  # of its notification


def expect(what, actual, expected):
    if actual != expected:
        sys.exit(f"{what}: {actual!r} instead of {expected!r}")


def subscription(ttl=3, option=0):
    return entry(SUBSCRIBE, SERVICE, INSTANCE, MAJOR, ttl, EVENTGROUP, option)


def find(peer, provider):
    peer.say(provider, entry(FIND, SERVICE, INSTANCE, 0xFF, 3, 0xFFFFFFFF))


def expect_exclusive():
    try:
        Peer(LOOPBACK)
    except OSError:
        return
    sys.exit("another program can share our discovery port")


class Provider:
    def __init__(self, program, size=SIZE, **configuration):
        with tempfile.NamedTemporaryFile("w", suffix=".json", encoding="ascii") as file:
            json.dump(configuration, file)
            file.flush()
            self._process = subprocess.Popen([program, str(INSTANCE), "1", str(size)], stdin=subprocess.PIPE,
                                             env={**os.environ, "VSOMEIP_CONFIGURATION": file.name})
            deadline = time.monotonic() + 10
            while not self._is_there(configuration["unicast"]) and time.monotonic() < deadline:
                os.sched_yield()

    @staticmethod
    def _is_there(address):
        with open("/proc/net/udp", encoding="ascii") as sockets:
            return f"{int.from_bytes(socket.inet_aton(address), 'little'):08X}:" in sockets.read()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.communicate()


def found(peer, provider):
    """Its offer, as soon as it answers."""
    peer.discovery.settimeout(0.1)
    for _ in range(100):
        find(peer, provider)
        try:
            return peer.answer(OFFER)
        except socket.timeout:
            pass
    sys.exit(f"{provider} offers nothing to {peer.address}")


def check_subscriptions(program):
    with Provider(program, unicast=LOOPBACK), Peer("127.0.7.2") as peer, Peer("127.0.7.3") as third:
        _, port = found(peer, LOOPBACK)
        for udp in (peer.discovery, third.discovery):
            udp.settimeout(10)
        expect_exclusive()
        # For others, for a group, for the provider itself, and for who is not on the machine.
        for other in (third.address, GROUP, LOOPBACK, "127.255.255.255", "10.9.0.2"):
            peer.say(LOOPBACK, subscription(), at=(other, third.port))
            expect(f"subscription for {other}", peer.answer(ACKNOWLEDGE)[0], 0)
        peer.say(GROUP, subscription(), entry(FIND, SERVICE, INSTANCE, 0xFF, 3, 0xFFFFFFFF))
        expect("answers to the group's", peer.answers(), [(OFFER, 3, port)])  # a subscription concerns two nodes only
        peer.say(LOOPBACK, *[subscription(), subscription(0)] * 40, subscription())
        expect("acknowledge", peer.answer(ACKNOWLEDGE)[0], 3)
        third.say(LOOPBACK, subscription(0), at=(peer.address, peer.port))  # ends nothing of another one's
        third.say(LOOPBACK, subscription())
        expect("acknowledge", third.answer(ACKNOWLEDGE)[0], 3)
        expect("values for 41 subscriptions", peer.waiting(), [VALUE])
        request = message(SERVICE << 16 | SETTER, b"\2" * SIZE, 0, MAJOR)
        third.data.sendto(request, (LOOPBACK, port))
        expect("new value", [len(third.data.recv(65536)) for _ in range(3)], [VALUE, VALUE, 16])
        peer.data.settimeout(10)
        expect("new value", len(peer.data.recv(65536)), VALUE)
        wrong = message(SERVICE << 16 | GETTER, b"", 0, MAJOR + 1)
        right = message(SERVICE << 16 | GETTER, b"", 0, MAJOR)
        peer.data.sendto(wrong * 4000 + right, (LOOPBACK, port))
        expect("one error for 4000 wrong requests, and the value", [len(peer.data.recv(65536)) for _ in range(2)],
               [16, VALUE])


def check_network(program):
    port = 30777
    for configuration, far_is_served in (({}, False), ({"netmask": "255.254.0.0"}, True)):
        with Provider(program, unicast=NETWORK, services=[{"service": SERVICE, "instance": INSTANCE,
                                                           "unreliable": port}], **configuration), \
                Peer("10.9.0.2") as near, Peer("10.8.0.2") as far:
            expect("offer at the configured port", found(near, NETWORK), (3, port))
            find(far, NETWORK)
            near.discovery.settimeout(10)
            near.say(NETWORK, subscription())
            expect("acknowledge", near.answer(ACKNOWLEDGE)[0], 3)
            far.discovery.setblocking(False)
            try:
                far.answer(OFFER)
                is_served = True
            except BlockingIOError:
                is_served = False
            expect(f"answer beyond the network {configuration}", is_served, far_is_served)
    with Provider(program, unicast=LOOPBACK, **{"service-discovery": {"enable": False}}), \
            socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as free:
        free.bind((LOOPBACK, DISCOVERY_PORT))  # raises if the provider takes part in discovery
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as all_addresses, Peer("127.0.7.2") as peer:
        all_addresses.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        all_addresses.bind(("", DISCOVERY_PORT))
        with Provider(program, unicast=LOOPBACK):
            expect("offer beside a program at all addresses", found(peer, LOOPBACK), (3, 30509))
            expect_exclusive()


def ip(command):
    subprocess.run(["ip", *command.split()], check=True)


def check_silent_hosts(program):
    """What the kernel keeps for hosts that do not answer holds up nobody else, as long as the sender's buffer is larger."""
    size, kept_for_each = 200000, 212992
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as udp:
        udp.setsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF, 4 << 20)
        room = udp.getsockopt(socket.SOL_SOCKET, socket.SO_SNDBUF) // kept_for_each
    silent = [f"10.9.0.{50 + i}" for i in range(min(3, room - 1))]
    with Provider(program, size, unicast=NETWORK), Peer("10.9.0.2") as near:
        for address in silent:
            ip(f"address add {address}/32 dev lo")
        for address in silent:
            with Peer(address) as peer:
                _, port = found(peer, NETWORK)
                for ttl in (3, 0, 3):  # the value goes out now, and once more in 500 ms
                    peer.say(NETWORK, subscription(ttl))
                peer.discovery.settimeout(10)
                for _ in range(2):
                    expect("acknowledge", peer.answer(ACKNOWLEDGE)[0], 3)
        for address in silent:
            ip(f"address del {address}/32 dev lo")
        near.data.settimeout(20)
        start, slowest = time.monotonic(), 0
        while time.monotonic() < start + 1.5:
            asked = time.monotonic()
            near.data.sendto(message(SERVICE << 16 | GETTER, b"", 0, MAJOR), (NETWORK, port))
            left = size
            while left > 0:
                left -= len(near.data.recv(65536)) - 20  # headers of the message and of the segment
            slowest = max(slowest, time.monotonic() - asked)
    if slowest > 1:
        sys.exit(f"a getter took {slowest:.1f} s beside hosts that do not answer")


def main():
    for command in ("link add out type veth peer name sniffed", "address add 10.9.0.1/24 dev out",
                    "address add 10.9.0.2/32 dev lo", "address add 10.8.0.2/32 dev lo", "link set out up",
                    "link set sniffed up", "route add default dev out"):
        ip(command)
    with socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(ETH_P_IP)) as sniffer:
        sniffer.bind(("sniffed", ETH_P_IP))
        sniffer.setblocking(False)
        check_subscriptions(sys.argv[1])
        try:
            sys.exit(f"a packet has left the machine: {sniffer.recv(65536)!r}")
        except BlockingIOError:
            pass
        check_network(sys.argv[1])
        check_silent_hosts(sys.argv[1])
        sniffer.settimeout(10)
        while sniffer.recv(65536)[30:34] != socket.inet_aton(GROUP):  # the kernel says that it joins the group
            pass
    print("peers that break the rules get nothing, others all of it, and nothing has left the machine")


main()
