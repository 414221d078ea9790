"""Programs under test, in processes of their own, whose output lines can be waited for."""

import json
import os
import subprocess
import threading
import time

DEADLINE = 20  # seconds, for whatever should happen at once


class Violation(Exception):
    """Something that must hold does not."""


def require(condition, what):
    if not condition:
        raise Violation(what)


class Process:
    """Ends with the `with` block. A program without `address` chooses its own; `inside` is a command that runs it."""

    folder = None  # for configurations and logs

    def __init__(self, *command, address=None, inside=()):
        # Without the allocator's own caches, so that memory which grows is memory in use.
        environment = {**os.environ, "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1"}
        if address:
            file = f"{self.folder}/{address}.json"
            with open(file, "w", encoding="ascii") as configuration:
                json.dump({"unicast": address}, configuration)
            environment["VSOMEIP_CONFIGURATION"] = file
        self.name = os.path.basename(command[0])
        self.lines = []
        self._changed = threading.Condition()
        with open(f"{self.folder}/{self.name}.log", "ab") as log:
            self._process = subprocess.Popen([*inside, *command], env=environment, stdin=subprocess.PIPE,
                                             stdout=subprocess.PIPE, stderr=log, text=True, bufsize=1)
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()

    def _read(self):
        for line in self._process.stdout:
            with self._changed:
                self.lines.append(line.rstrip("\n"))
                self._changed.notify_all()

    def wait_until(self, condition, what, seconds=DEADLINE):
        with self._changed:
            if not self._changed.wait_for(condition, seconds):
                status = self._process.poll()
                state = "" if status is None else f"; it ended with status {status}"
                raise Violation(f"{self.name}: no {what} within {seconds} s{state}")

    def wait_for(self, *lines, since):
        """Waits until each of the lines has come after the first `since` lines."""
        self.wait_until(lambda: set(lines).issubset(self.lines[since:]),
                        next((line for line in lines if line not in self.lines[since:]), lines))

    def wait_for_more(self, count):
        goal = len(self.lines) + count
        self.wait_until(lambda: len(self.lines) >= goal, "further line")

    def write(self, line):
        try:
            self._process.stdin.write(line + "\n")
        except BrokenPipeError as error:
            raise Violation(f"{self.name} ended with status {self._process.wait()}") from error

    def tell(self, line):
        """Writes a line and waits for the one that answers it."""
        goal = len(self.lines) + 1
        self.write(line)
        self.wait_until(lambda: len(self.lines) >= goal, f"answer to {line:.20}")

    @classmethod
    def log_lines(cls):
        """How many lines all of them have written to their logs."""
        count = 0
        for name in os.listdir(cls.folder):
            if name.endswith(".log"):
                with open(f"{cls.folder}/{name}", "rb") as log:
                    count += log.read().count(b"\n")
        return count

    def memory(self):
        """What it has allocated and touched, in KiB."""
        require(self._process.poll() is None, f"{self.name} ended with status {self._process.poll()}")
        with open(f"/proc/{self._process.pid}/status", encoding="ascii") as status:
            return next(int(line.split()[1]) for line in status if line.startswith("RssAnon"))

    def processor(self):
        """Processor time that it has used, in seconds."""
        with open(f"/proc/{self._process.pid}/stat", encoding="ascii") as stat:
            fields = stat.read().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def kill(self):
        self._process.kill()
        self._process.wait()
        self._reader.join()
        self._process.stdout.close()
        try:
            self._process.stdin.close()
        except BrokenPipeError:  # killed before it had read everything
            pass

    def end(self):
        """Closes its input, which lets it end by itself. Returns the last line."""
        self._process.stdin.close()
        try:
            status = self._process.wait(DEADLINE)
        except subprocess.TimeoutExpired as error:
            raise Violation(f"{self.name} did not end") from error
        self._reader.join()
        require(status == 0, f"{self.name} ended with status {status}")
        return self.lines[-1]


class Rounds:
    """Counts rounds up to a number or until the time is up, but at least a few."""

    def __init__(self, most, seconds, least=1):
        self.done, self._most, self._least = 0, most, least
        self._end = time.monotonic() + seconds

    def __iter__(self):
        while self.done < self._least or (self.done < self._most and time.monotonic() < self._end):
            yield self.done
            self.done += 1
