"""Two network namespaces and a wire between them that loses, duplicates, delays and reorders."""

import heapq
import random
import select
import socket
import subprocess
import threading
import time

SOL_PACKET, PACKET_VNET_HDR, PACKET_OUTGOING, ETH_P_ALL = 263, 15, 4, 3
LOSS, DUPLICATION, DELAY, JITTER = 0.05, 0.05, 0.010, 0.008  # the jitter reorders


class Unsupported(Exception):
    """This machine does not let us make such a network."""


class Namespace:
    """A network namespace with one interface, `end`, whose other end is here under the same name with a `-wire`."""

    def __init__(self, name, address):
        self._holder = subprocess.Popen(["unshare", "--net", "sh", "-c", "echo there; exec cat"],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._holder.stdout.readline()
        process = self._holder.pid
        self.inside = ["nsenter", f"--net=/proc/{process}/ns/net"]
        self.wire, self.address = f"{name}-wire", address
        run("ip", "link", "add", "name", self.wire, "type", "veth", "peer", "name", "end", "netns", str(process))
        run("ip", "link", "set", self.wire, "up")
        run(*self.inside, "ip", "address", "add", f"{address}/24", "dev", "end")
        run(*self.inside, "ip", "link", "set", "end", "up")

    def close(self):
        self._holder.communicate()  # with the last process in it, the namespace ends, and with that the interface


def run(*command):
    result = subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False)
    if result.returncode != 0:
        raise Unsupported(f"{' '.join(command)}: {result.stderr.strip()}")


class Wire:
    """Carries each frame from one namespace to the other. The faults are the kernel's where it has them (netem);
    otherwise they are made here."""

    def __init__(self, left, right):
        self._namespaces = (left, right)
        self._ports = [self._port(left.wire), self._port(right.wire)]
        self._random = random.Random(1)  # always the same faults, if not always to the same frames
        self.carried = self.lost = self.duplicated = 0
        self._is_faulty = self._is_closed = False
        self._thread = threading.Thread(target=self._carry, daemon=True)
        self._thread.start()
        self.uses_kernel = self._netem("add", "dev", "end", "root", "netem", "delay", f"{DELAY * 1000}ms",
                                       f"{JITTER * 1000}ms", "loss", f"{LOSS:%}", "duplicate", f"{DUPLICATION:%}")
        self._is_faulty = not self.uses_kernel

    def _netem(self, *arguments):
        return all(subprocess.run([*namespace.inside, "tc", "qdisc", *arguments], stderr=subprocess.DEVNULL,
                                  check=False).returncode == 0 for namespace in self._namespaces)

    def heal(self):
        self._is_faulty = False
        if self.uses_kernel:
            self._netem("del", "dev", "end", "root")

    def close(self):
        self._is_closed = True
        self._thread.join()
        for port in self._ports:
            port.close()

    @staticmethod
    def _port(interface):
        port = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, 0)
        # The kernel leaves checksums to the card that a frame never meets: a header in front of each says so.
        port.setsockopt(SOL_PACKET, PACKET_VNET_HDR, 1)
        port.bind((interface, ETH_P_ALL))
        return port

    def _copies(self):
        """The delays of the copies of a frame."""
        if not self._is_faulty:
            return [0]
        if self._random.random() < LOSS:
            self.lost += 1
            return []
        count = 1
        if self._random.random() < DUPLICATION:
            self.duplicated += 1
            count = 2
        return [self._random.uniform(DELAY - JITTER, DELAY + JITTER) for _ in range(count)]

    def _carry(self):
        waiting = []
        while not self._is_closed:
            now = time.monotonic()
            while waiting and waiting[0][0] <= now:
                _, _, target, frame = heapq.heappop(waiting)
                target.send(frame)
            timeout = min(0.1, waiting[0][0] - now) if waiting else 0.1
            for port in select.select(self._ports, [], [], timeout)[0]:
                frame, (_, _, kind, _, _) = port.recvfrom(65536)
                if kind == PACKET_OUTGOING:
                    continue
                self.carried += 1
                target = self._ports[1 - self._ports.index(port)]
                for delay in self._copies():
                    heapq.heappush(waiting, (time.monotonic() + delay, self.carried, target, frame))
