"""What the README shows is what there is, and does what it says: readme_test.py PROJECT PROGRAMS"""

import json
import os
import pathlib
import random
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import threading
import unittest

PROJECT, PROGRAMS = map(pathlib.Path, sys.argv[1:3])
README = (PROJECT / "README.md").read_text()
DEADLINE = 20  # seconds


def block(language):
    """The README's one code block of a language."""
    (text,) = re.findall(rf"^```{language}\n(.*?)^```$", README, re.MULTILINE | re.DOTALL)
    return text


class ReadmeTest(unittest.TestCase):
    def setUp(self):
        # A discovery of its own: the README's commands use the default instance, and its example takes any.
        config = tempfile.NamedTemporaryFile("w", suffix=".json")  # pylint: disable=consider-using-with
        self.addCleanup(config.close)
        port = random.randrange(31000, 32000)
        json.dump({"network": f"readme{port}", "service-discovery": {"port": port}, "logging": {"level": "warning"}},
                  config)
        config.flush()
        path = f"{PROGRAMS}:{os.environ['PATH']}"
        self.environment = {**os.environ, "VSOMEIP_CONFIGURATION": config.name, "PATH": path}

    def start(self, command):
        """Starts a command of the shell in the background, and waits until it offers what it is asked to."""
        process = subprocess.Popen(["bash", "-c", command], env=self.environment, start_new_session=True, text=True,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.addCleanup(self.end, process)
        giving_up = threading.Timer(DEADLINE, os.killpg, (process.pid, signal.SIGKILL))
        giving_up.start()
        self.addCleanup(giving_up.cancel)
        words = shlex.split(command)
        for interface in words[words.index("simulate") + 1 : words.index("--values")]:
            while f"offering {interface}," not in (line := process.stderr.readline()):
                self.assertTrue(line, f"{command}: offers nothing")
        giving_up.cancel()

    def end(self, process):
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGINT)
        process.communicate(timeout=DEADLINE)

    def run_here(self, command):
        result = subprocess.run(["bash", "-c", command], env=self.environment, capture_output=True, text=True,
                                timeout=DEADLINE, check=False)
        self.assertEqual(result.returncode, 0, f"{command}: {result.stderr}")
        return result.stdout

    def test_sources_are_those_that_are_built(self):
        self.assertEqual(block("cpp"), (PROJECT / "examples/readme_example.cpp").read_text())
        self.assertEqual(block("cmake"), (PROJECT / "tests/package/consumer/CMakeLists.txt").read_text())

    def test_commands_print_what_is_shown(self):
        steps = re.findall(r"^\$ (.*)\n((?:[^$\n].*\n)*)", block("console"), re.MULTILINE)
        self.assertGreater(len(steps), 3)
        for command, output in steps:
            if command.endswith("&"):
                self.start(command.removesuffix("&"))
            else:
                self.assertEqual(self.run_here(command), output, command)
        # The example, against the same simulated vehicle.
        self.assertEqual(self.run_here("readme_example"), "instance 1: 42\n")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
