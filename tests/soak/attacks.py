"""Peers that mean harm: each scenario tries one thing and says what came of it."""

import contextlib
import itertools
import random
import socket
import time

from garbage import EVENTGROUP, GETTER, MAJOR, OTHER_SERVICE, SERVICE, Garbage
from nodes import MEMORY, Client, Provider
from packets import (ACKNOWLEDGE, DATA_PORT, DISCOVERY_PORT, FOREVER, GROUP, OFFER, SUBSCRIBE, Peer, discovery, endpoint,
                     entry, message)
from process import Process, Rounds, Violation, require

PROVIDER, CLIENT = "127.78.0.1", "127.78.0.2"
OWN = entry(OFFER, SERVICE, 1, MAJOR, last=3)
SUBSCRIPTION = entry(SUBSCRIBE, SERVICE, 1, MAJOR, FOREVER, EVENTGROUP)
STOP = entry(SUBSCRIBE, SERVICE, 1, MAJOR, 0, EVENTGROUP)
REASONS = 14  # that the stack tells apart


class Pair:
    """A provider and its client, which serve until the end."""

    def __enter__(self):
        self.provider, self.client = Provider(1, address=PROVIDER), Client(address=CLIENT)
        self.client.wait_for("state subscribed", "sample 1", since=0)
        self._number = 1
        return self

    def __exit__(self, *_):
        self.client.kill()
        self.provider.kill()

    def serve(self, more_records=0):
        """A new value, which the client must see and get. How long that took."""
        self._number += 1
        before, start = len(self.client.lines), time.monotonic()
        self.provider.set(self._number, more_records)
        self.client.wait_for(f"sample {self._number}", f"get {self._number}", since=before)
        return time.monotonic() - start


def false_offer(seconds):
    """Each from another address, and never again: the true provider must come back."""
    with Pair() as pair:
        rounds, times = Rounds(100, seconds), []
        for done in rounds:
            with Peer(f"127.66.1.{1 + done}") as liar:
                liar.say(GROUP, entry(OFFER, SERVICE, 1, MAJOR, FOREVER, 3))
                liar.answer(SUBSCRIBE)  # it has taken over
                start, before = time.monotonic(), len(pair.client.lines)
                pair.client.wait_for("state subscribed", since=before)
                times.append(time.monotonic() - start)
            pair.serve()
    require(max(times) < 3, f"the true provider was back after {max(times):.1f} s")
    return f"{rounds.done} false offers; the true provider was back after {max(times):.1f} s at most"


def hoarder(seconds):
    """All the subscriptions that one address can get, and then somebody else's."""
    ports = iter(range(1, 1 << 16))
    accepted = 0
    with Pair() as pair, Peer("127.66.2.1") as peer:
        memory = pair.provider.memory()
        for _ in Rounds(100, seconds, least=100):
            some = list(itertools.islice(ports, 50))
            entries = b"".join(entry(SUBSCRIBE, SERVICE, 1, MAJOR, FOREVER, EVENTGROUP, at) for at in range(len(some)))
            packet = discovery(entries, b"".join(endpoint(peer.address, port) for port in some), session=some[0])
            peer.discovery.sendto(packet, (PROVIDER, DISCOVERY_PORT))
            answered = 0
            while answered < len(some):
                answers = [ttl for kind, ttl, _ in peer.answers() if kind == ACKNOWLEDGE]
                answered += len(answers)
                accepted += sum(ttl > 0 for ttl in answers)
        with Peer("127.66.2.2") as other:
            other.say(PROVIDER, SUBSCRIPTION)
            require(other.answer(ACKNOWLEDGE)[0] > 0, "one address has kept out all others")
        late, growth = pair.serve(), pair.provider.memory() - memory
    require(accepted <= 512 and late < 1, f"{accepted} subscriptions accepted, and served after {late:.1f} s")
    return f"5000 subscriptions asked for, {accepted} accepted; another one's, too; memory {growth:+} KiB"


def many_peers(seconds):
    """Empty discovery messages from more addresses than are remembered: those in use must not be forgotten."""
    with Pair() as pair:
        rounds, addresses, before = Rounds(100, seconds), 0, len(pair.client.lines)
        for _ in rounds:
            for addresses in range(addresses + 1, addresses + 1101):
                with Peer(f"127.66.{3 + addresses // 250}.{1 + addresses % 250}") as peer:
                    peer.say(PROVIDER, session=1)  # not the client: what one forgets, the other remembers
            addresses %= 55000
            pair.client.wait_for_more(120)  # longer than the offers' cycle
            pair.serve()
        lost = pair.client.lines[before:].count("state pending")
    require(lost == 0, f"the subscription was lost {lost} times")
    return f"{rounds.done * 1100} addresses; the subscription was never lost"


def redirect(seconds):
    """Ends and redirects the subscriptions of others, and asks for a large value again and again."""
    with Pair() as pair, Peer("127.66.0.1") as peer, Peer("127.66.0.2") as third:
        pair.serve(more_records=25000)
        rounds, start = Rounds(1000, seconds, least=20), time.monotonic()
        sent = received = 0
        for _ in rounds:
            for address, port in ((CLIENT, DATA_PORT), (third.address, third.port)):
                peer.say(PROVIDER, STOP, SUBSCRIPTION, STOP, at=(address, port))
            peer.say(PROVIDER, *[SUBSCRIPTION, STOP] * 40)
            sent += 1
            received += sum(peer.waiting())
            pair.serve(more_records=25000)
        stolen, took = sum(third.waiting()), time.monotonic() - start
    values = received / 100000
    require(stolen == 0 and values <= 2 * took + 2, f"{stolen} bytes to a third address, {values:.0f} values in {took:.0f} s")
    return (f"{sent * 82} subscriptions and ends of others; nothing went to a third address, the value of 100 kB "
            f"{values:.0f} times to the one who asked 40 times in each of {sent} datagrams, in {took:.0f} s")


def withdrawn(seconds):
    """What was sent to the client alone before the service ended is read after that."""
    with Client(address=CLIENT), Peer("127.66.0.3") as peer:
        def subscriptions():
            """How many come until there is a pause."""
            count = 0
            with contextlib.suppress(socket.timeout):
                while True:
                    count += peer.answer(SUBSCRIBE)[0] > 0
            return count

        rounds, back = Rounds(100, seconds, least=5), 0
        peer.discovery.settimeout(0.05)
        for _ in rounds:
            for _ in range(100):  # until the client is there
                peer.say(GROUP, OWN)
                if subscriptions() > 0:
                    break
            else:
                raise Violation("the client does not subscribe")
            peer.say(GROUP, entry(OFFER, SERVICE, 1, MAJOR, 0, 3))
            subscriptions()
            peer.say(CLIENT, OWN)
            back += subscriptions()
    require(back == 0, f"a withdrawn service came back {back} times")
    return f"{rounds.done} withdrawals with an answer to a find behind each; none came back"


def open_flood(seconds):
    """As fast as it can be sent, from two addresses and many more: garbage, and among it what is valid."""
    garbage, chance, packets = Garbage(), random.Random(3), 0
    request = message(SERVICE << 16 | GETTER, b"", 0, MAJOR)
    valid = (SUBSCRIPTION, STOP, entry(OFFER, OTHER_SERVICE, 1, MAJOR, FOREVER), entry(OFFER, SERVICE, 2, MAJOR, FOREVER, 3),
             entry(0, SERVICE, 0xFFFF, 0xFF, 3, 0xFFFFFFFF))
    with Pair() as pair, Peer("127.66.0.4") as second, Peer("127.66.0.5") as third:
        memory = [process.memory() for process in (pair.provider, pair.client)]
        lines = Process.log_lines()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            peer = chance.choice((second, third))
            peer.say(chance.choice((PROVIDER, CLIENT, GROUP)), *chance.choices(valid, k=chance.randrange(1, 80)))
            peer.discovery.sendto(garbage.discovery(), (chance.choice((PROVIDER, CLIENT, GROUP)), DISCOVERY_PORT))
            for packet in (garbage.data(), garbage.data(), request, request * 80):
                peer.data.sendto(packet, (chance.choice((PROVIDER, CLIENT)), DATA_PORT))
            packets += 6
        late = pair.serve()
        growth = [process.memory() - before for process, before in zip((pair.provider, pair.client), memory)]
        lines = Process.log_lines() - lines
        _, values, errors, given_up = pair.client.getters()
    require(late < 2, f"served again after {late:.1f} s")  # one, were the machine not shared
    require(max(growth) <= 16 * MEMORY, f"provider and client grew by {growth} KiB")
    require(lines <= 2 * REASONS * (seconds + 2), f"{lines} log lines")
    return (f"{packets} packets, {packets / seconds:.0f} a second; {values} getters got a value, {errors} an error, "
            f"{given_up} were lost; served {late:.2f} s after the end; provider {growth[0]:+} KiB, client {growth[1]:+} "
            f"KiB; {lines} log lines")


def greedy(seconds):
    """Getters of a large value from one address, as fast as they can be sent, by somebody who does not read."""
    requests = message(SERVICE << 16 | GETTER, b"", 0, MAJOR) * 80
    with Pair() as pair, Peer("127.66.0.6") as peer:
        pair.serve(more_records=25000)
        memory, lines, most, asked = pair.provider.memory(), Process.log_lines(), 0, 0
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            for _ in range(100):
                peer.data.sendto(requests, (PROVIDER, DATA_PORT))
                asked += 80
            most = max(most, pair.provider.memory() - memory)
        late = pair.serve()
        lines = Process.log_lines() - lines
        _, values, errors, given_up = pair.client.getters()
    require(late < 2, f"served again after {late:.1f} s")
    require(most <= 200 << 10, f"the provider grew by {most} KiB")
    require(lines <= 2 * REASONS * (seconds + 2), f"{lines} log lines")
    return (f"{asked} getters of 100 kB; of the client's {values} got a value, {errors} an error, {given_up} were lost; served "
            f"{late:.2f} s after the end; provider {most:+} KiB at most; {lines} log lines")


def bad_requests(seconds):
    """As many wrong requests as a datagram holds, as fast as they can be sent."""
    requests = message(SERVICE << 16 | GETTER, b"", 0, MAJOR + 1) * 4090
    with Pair() as pair, Peer("127.66.0.7") as peer:
        errors = sent = 0
        memory, lines = pair.provider.memory(), Process.log_lines()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            peer.data.sendto(requests, (PROVIDER, DATA_PORT))
            sent += 1
            errors += len(peer.waiting())
        late = pair.serve()
        errors += len(peer.waiting())
        growth, lines = pair.provider.memory() - memory, Process.log_lines() - lines
        _, values, _, given_up = pair.client.getters()
    require(0 < errors <= sent, f"{errors} errors for {sent} datagrams")
    require(late < 2, f"served again after {late:.1f} s")
    require(growth <= MEMORY, f"the provider grew by {growth} KiB")
    require(lines <= 2 * REASONS * (seconds + 2), f"{lines} log lines")
    return (f"{sent} datagrams with 4090 wrong requests each, {sent / seconds:.0f} a second, {errors} errors; {values} of the "
            f"client's getters got a value, {given_up} were lost; served {late:.2f} s after the end; provider {growth:+} KiB; "
            f"{lines} log lines")


ATTACKS = {"greedy": greedy, "bad-requests": bad_requests, "false-offer": false_offer, "hoarder": hoarder, "many-peers": many_peers, "redirect": redirect,
           "withdrawn": withdrawn, "open-flood": open_flood}
