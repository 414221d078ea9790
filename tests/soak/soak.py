"""Faults beside normal traffic: soak.py PROGRAMS FOLDER SECONDS [SCENARIO...]

PROGRAMS is the folder of the built programs, FOLDER gets logs and configurations, SECONDS is for all scenarios
together. Runs in a network namespace of its own, where only the loopback interface is up: scripts/soak makes it. One
line of figures for each scenario; exit status 1 if one found what must not be.
"""

import contextlib
import itertools
import json
import random
import socket
import statistics
import sys
import time

from attacks import ATTACKS
from garbage import Garbage
from nodes import MEMORY, ROUTE, TIME_TO_LIVE, TOOL, Client, Provider
from process import Process, Rounds, Violation, require
from wire import Namespace, Unsupported, Wire


def udp(counter):
    """A counter of the kernel, for this network namespace."""
    with open("/proc/net/snmp", encoding="ascii") as file:
        names, values = (line.split() for line in file if line.startswith("Udp:"))
    return int(values[names.index(counter)])


def provider_killed(seconds):
    rounds, restored, seen = Rounds(100, seconds), [], 0
    with Client() as client:
        for done in rounds:
            number, before, start = 1000 * (done + 1), len(client.lines), time.monotonic()
            # Now at another address than before, now at one that it has had before.
            with Provider(number, address="127.78.0.1" if done % 4 < 2 else None) as provider:
                client.wait_for("state subscribed", f"sample {number}", since=before)
                restored.append(time.monotonic() - start)
                for following in range(number + 1, number + 20):
                    provider.set(following)
                samples = (f"sample {n}" for n in range(number, number + 20))
                client.wait_for(*samples, f"get {number + 19}", since=before)
                client.wait_for_more(20)
                seen += 20
                before = len(client.lines)
                for following in range(number + 20, number + 50):  # killed while it sends
                    provider.write(provider.setting(following))
            if done % 10 == 9:  # long enough for its offer to expire
                client.wait_for("state pending", since=before)
        started, values, errors, given_up = client.getters()
    return (f"{rounds.done} kills; subscribed again after {statistics.median(restored):.2f} s "
            f"(slowest {max(restored):.2f} s); all of {seen} samples seen; of {started} getters {values} got a value, "
            f"{errors} an error, and {given_up} were in flight or found no provider and ended in an error with their "
            f"proxy")


def client_killed(seconds):
    warm_up = 10
    rounds, numbers = Rounds(300, seconds - 2 * TIME_TO_LIVE, least=2 * warm_up), itertools.count(1)
    values = f"{Process.folder}/route.json"
    with open(values, "w", encoding="ascii") as file:
        json.dump(ROUTE, file)
    watch = (TOOL, "watch", "energysystem", "routebasedenergycontents")
    with Process(TOOL, "simulate", "energysystem", "--period", "20") as simulated, \
            Process(TOOL, "offer", "routebasedenergycontents", "--values", values, "--follow") as offered, \
            Process(*watch) as survivor:
        providers = (simulated, offered)

        def update(*watchers):
            """A value that each watcher must see, among the simulated ones."""
            number = next(numbers)
            wanted = f'"member0":{number}}}'
            offered.write(json.dumps({"destinations": [{"member0": number}]}))
            for watcher in watchers:
                watcher.wait_until(lambda: any(wanted in line for line in watcher.lines[-500:]), "update")

        for done in rounds:
            if done == warm_up:
                memory = [process.memory() for process in providers]
            with Process(*watch) as client:
                if done % 3 == 0:  # killed while it subscribes
                    client.wait_for_more(1)
                else:
                    update(client, survivor)
        # What is still sent to a client that was killed meets no socket, until its subscriptions expire.
        killed = last = time.monotonic()
        dead = udp("NoPorts")
        require(dead > 0, "nothing was sent to a client that was killed: this tries nothing")
        while time.monotonic() < last + 1:
            update(survivor)
            if udp("NoPorts") > dead:
                last, dead = time.monotonic(), udp("NoPorts")
                require(last < killed + TIME_TO_LIVE + 1, "clients that were killed are still notified")
        growth = [process.memory() - before for process, before in zip(providers, memory)]
    require(max(growth) <= MEMORY, f"the providers grew by {growth} KiB")
    return (f"{rounds.done} kills; {dead} datagrams to killed clients, the last {last - killed:.1f} s after the last "
            f"kill; memory since the first {warm_up}: simulated {growth[0]:+} KiB, offered {growth[1]:+} KiB")


def network(seconds):
    number, end = 1, "10.77.0.{}".format
    with contextlib.closing(Namespace("left", end(1))) as left, \
            contextlib.closing(Namespace("right", end(2))) as right, \
            contextlib.closing(Wire(left, right)) as wire, \
            Provider(number, address=end(1), inside=left.inside) as provider, \
            Client(address=end(2), inside=right.inside) as client:

        def advance():
            """Every other value goes in segments."""
            nonlocal number
            number += 1
            provider.set(number, number % 2 * 1000)

        start = time.monotonic()
        client.wait_for("state subscribed", since=0)
        for _ in Rounds(10000, seconds - 5):
            advance()
            client.wait_for_more(5)
        sent, seen = number, len(set(client.numbers("sample")))
        flaps = client.lines.count("state pending")
        busy = max(process.processor() for process in (provider, client)) / (time.monotonic() - start)
        wire.heal()
        before = len(client.lines)
        advance()
        client.wait_for(f"sample {number}", f"get {number}", since=before)
        client.wait_for_more(200)  # what was delayed has arrived, and what it led to is over
        before = len(client.lines)
        for _ in range(50):
            advance()
        client.wait_for(*(f"sample {n}" for n in range(number - 49, number + 1)), f"get {number}", since=before)
        require(client.lines[before:].count("state pending") == 0, "the subscription does not last")
        wrong = set(client.numbers("sample") + client.numbers("get")) - set(range(number + 1))
        require(not wrong, f"values that were never sent: {wrong}")
        started, values, errors, given_up = client.getters()
    require(errors == 0, f"{errors} getters ended in an error")
    require(busy <= 0.2, f"{busy:.0%} of a processor for next to no traffic")
    # A getter needs a datagram for the request and up to three for the answer.
    require(values >= 0.7 * started, f"only {values} of {started} getters got a value")
    faults = "by the kernel" if wire.uses_kernel else f"by the test, the kernel has no netem: {wire.lost} lost, " \
        f"{wire.duplicated} twice"
    return (f"{wire.carried} frames ({faults}); {values} of {started} getters got a value, {given_up} were lost and "
            f"ended with their proxy; {seen} of {sent} samples seen; subscription lost and restored {flaps} times; "
            f"{busy:.0%} of a processor; afterwards all of 50 samples seen")


def flood(seconds):
    garbage, chance, packets, size, memory = Garbage(), random.Random(2), 0, 0, None
    provider_address, client_address, group = "127.78.0.1", "127.78.0.2", "224.244.224.245"
    with Provider(1, address=provider_address) as provider, Client(address=client_address) as client:
        client.wait_for("state subscribed", "sample 1", since=0)
        end = time.monotonic() + seconds
        rounds = Rounds(10**6, seconds, least=100)
        for done in rounds:
            if memory is None and time.monotonic() > end - 0.7 * seconds:
                memory = [process.memory() for process in (provider, client)]
            source = f"127.66.{chance.randrange(256)}.{chance.randrange(1, 255)}"
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as data, \
                    socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as discovery:
                data.bind((source, 0))
                discovery.bind((source, 30490))  # discovery listens to this port only
                discovery.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, socket.inet_aton("127.0.0.1"))
                for _ in range(20):
                    for sender, packet, port, targets in (
                            (data, garbage.data(), 30509, (provider_address, client_address)),
                            (discovery, garbage.discovery(), 30490, (provider_address, client_address, group))):
                        size += sender.sendto(packet, (chance.choice(targets), port))
                        packets += 1
                if done % 50 == 0:
                    size += discovery.sendto(garbage.huge_discovery(), (group, 30490))
                    packets += 1
                # Both work off what came before this: no more is sent than the kernel's buffers hold.
                before = len(client.lines)
                provider.set(done + 2)
                client.wait_for(f"sample {done + 2}", since=before)
        growth = [process.memory() - before for process, before in zip((provider, client), memory)]
        started, values, errors, given_up = client.getters()
    require(values == started, f"of {started} getters {errors} ended in an error and {given_up} without answer")
    require(max(growth) <= MEMORY, f"provider and client grew by {growth} KiB")
    return (f"{packets} packets, {size >> 20} MiB, {packets / seconds:.0f} a second; all of {values} getters got a "
            f"value, all of {rounds.done} samples seen; memory since a third of the time: "
            f"provider {growth[0]:+} KiB, client {growth[1]:+} KiB")


SCENARIOS = {"provider-killed": provider_killed, "client-killed": client_killed, "network": network, "flood": flood,
             **ATTACKS}


def main():
    names = sys.argv[4:] or list(SCENARIOS)
    if not set(names) <= set(SCENARIOS):
        sys.exit(f"soak: the scenarios are {', '.join(SCENARIOS)}")
    failed, skipped = [], []
    for name in names:
        start = time.monotonic()
        try:
            figures = SCENARIOS[name](float(sys.argv[3]) / len(names))
        except Violation as violation:
            failed.append(name)
            figures = f"FAILED: {violation}"
        except Unsupported as reason:
            skipped.append(name)
            figures = f"skipped: {reason}"
        print(f"{name}: {figures} ({time.monotonic() - start:.0f} s)", flush=True)
    print(f"soak: {len(names) - len(failed) - len(skipped)} of {len(names)} scenarios passed"
          + (f"; skipped: {', '.join(skipped)}" if skipped else "")
          + (f"; failed: {', '.join(failed)}; logs in {Process.folder}" if failed else ""))
    sys.exit(1 if failed else 0)


main()
