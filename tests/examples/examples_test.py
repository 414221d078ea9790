"""The examples, each against the tool: examples_test.py PROGRAMS"""

import json
import os
import random
import signal
import subprocess
import sys
import tempfile
import threading
import unittest

DEADLINE = 20  # seconds
VALUES = {
    "highVoltageBatteries": [{"member0": 7, "member1": 0.5}, {"member0": 8}],
    "lowVoltageBatteries": [{"member0": 12}, {}],
}
ROUTE = "routebasedenergycontents/"


class ExamplesTest(unittest.TestCase):
    def setUp(self):
        self.instance = str(random.randrange(0x1000, 0xF000))

    def start(self, program, *arguments):
        """A process whose lines, of both outputs, can be waited for. It is ended by Ctrl-C, and must end well."""
        process = subprocess.Popen([os.path.join(sys.argv[1], program), *arguments], text=True, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT)
        giving_up = threading.Timer(DEADLINE, process.kill)
        giving_up.start()
        self.addCleanup(self.end, process)
        self.addCleanup(giving_up.cancel)
        return process

    def end(self, process):
        if not process.stdout.closed:
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=DEADLINE)
            self.assertEqual(process.returncode, 0, process.args)

    def wait_for(self, process, text):
        lines = []
        while text not in (lines or [""])[-1]:
            lines.append(process.stdout.readline())
            self.assertTrue(lines[-1], f"{process.args}: no '{text}' in {lines}")
        return lines[-1]

    def simulate(self, *interfaces):
        with tempfile.NamedTemporaryFile("w", suffix=".json") as values:
            json.dump({f"energysystem/{field}": value for field, value in VALUES.items()}, values)
            values.flush()
            process = self.start("tarn7", "simulate", *interfaces, "--values", values.name, "--instance", self.instance)
            self.wait_for(process, f"offering {interfaces[-1]},")
        return process

    def run_here(self, program, *arguments, status=0):
        result = subprocess.run([os.path.join(sys.argv[1], program), *arguments], capture_output=True, text=True,
                                timeout=DEADLINE, check=False)
        self.assertEqual(result.returncode, status, (program, result.stderr))
        return result.stdout

    def get(self, field):
        return json.loads(self.run_here("tarn7", "get", field, "--instance", self.instance, "--timeout", "8000"))

    def test_read_and_set(self):
        self.run_here("read_a_field", self.instance, status=1)
        self.simulate("energysystem", "chargetimemanager")
        self.assertIn("battery 7: 0.5\nbattery 8: unknown\n", self.run_here("read_a_field", self.instance))
        self.assertIn("calculation 1: 2 targets\n", self.run_here("set_a_field", self.instance))
        self.assertEqual(self.get("chargetimemanager/chargeTimeCalculations"), [{"member0": 1, "member5": [80, 100]}])

    def test_follow_through_a_restart(self):
        follow = self.start("follow_a_field", self.instance)
        for _ in range(2):
            vehicle = self.simulate("energysystem")
            self.wait_for(follow, "subscribed")
            self.wait_for(follow, "2 batteries, 12, 0")
            self.end(vehicle)
            self.wait_for(follow, "waiting")

    def test_offer(self):
        self.wait_for(self.start("offer_a_service", self.instance), "offered")
        self.assertEqual(self.get(ROUTE + "destinations"), [{"member0": 1, "member1": 120}])
        before = self.get(ROUTE + "rangeOnRouteValues")[0]["member1"]
        watch = self.start("tarn7", "watch", ROUTE + "rangeOnRouteValues", "--instance", self.instance)
        self.wait_for(watch, f'"member1":{before - 1}')

    def test_offer_in_polling_mode(self):
        self.wait_for(self.start("offer_in_polling_mode", self.instance), "offered")
        first, second = (self.get(ROUTE + "rangeOnRouteValues")[0]["member0"] for _ in range(2))
        self.assertLess(first, second)

    def test_map(self):
        layers = json.loads(self.run_here("map_json"))
        self.assertEqual(len(layers["linkLayerLongRange"][0]["member1"]), 200)
        with tempfile.NamedTemporaryFile("w", suffix=".json") as values:
            json.dump(layers, values)
            values.flush()
            self.wait_for(self.start("tarn7", "offer", "psd2", "--values", values.name, "--instance", self.instance),
                          "offering psd2")
        summary = self.run_here("tarn7", "watch", "psd2", "--summary", "--count", "8", "--instance", self.instance)
        self.assertRegex(summary, r"(?m)^ +\d{5} bytes  psd2/linkLayerLongRange: 1 record, member1: 200, \d+ elements$")
        for layer, value in layers.items():
            self.assertEqual(self.get(f"psd2/{layer}"), value, layer)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
