"""The built program, end to end: tool_test.py TARN7 STEERED_PROVIDER STACK SANITIZERS"""

import fcntl
import json
import os
import random
import re
import select
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest
import unittest.mock
from pathlib import Path

DEADLINE = 20  # seconds, for whatever should happen at once
TOOL, PROVIDER, STACK, SANITIZERS = sys.argv[1:5]
COMPLETION = Path(__file__).parents[2] / "tools/tarn7/completion/tarn7.bash"
ADDRESS = "energysystem/notifications"
SETTABLE = "chargetimemanager/chargeTimeCalculations"
VALUES = {
    "notifications": [{"member0": 42}, {}],
    "highVoltageBatteries": [{"member0": 7, "member1": 0.1, "member3": True}, {"member1": "NaN"}],
}

PROVIDED = "routebasedenergycontents"
ROUTE = {
    "destinations": [{"member0": 1, "member5": 6}],
    "rangeOnRouteValues": [{"member1": 4294967295}, {}],
    "routeBasedResidualEnergyValues": [],
    "rwmStatus": [{"member3": 255}],
    "targetSocChargings": [{"member0": 7, "member1": 80}],
}

# An interface that the library has never seen.
DOOR = {
    "name": "door", "role": "consumed", "araServiceId": 7, "serviceId": "0x7001", "version": {"major": 3, "minor": 1},
    "choice": "that numbers are unsigned",
    "fields": [{"name": "leaves", "getter": "0x4020", "record": "DT_leaf", "mutable": True},
               {"name": "bell", "getter": "0x4010", "record": "DT_bell"}],
    "headers": [{"name": "datatypes", "records": [
        {"name": "Box", "parameters": ["T"], "members": [{"id": 0, "name": "value", "type": "T"}]},
        {"name": "DT_leaf", "takenFor": "one of two",
         "records": [{"name": "Hinge", "members": [{"id": 1, "name": "angle", "type": "int16", "takenFor": "degrees"}]}],
         "members": [{"id": 0, "name": "open", "type": "bool"},
                     {"id": 2, "name": "hinges", "type": "Box<sequence<Hinge>>", "choice": "its shape"}]},
        {"name": "DT_bell", "members": [{"id": 0, "name": "tone", "type": "double"}]}]}],
}
LEAVES = [{"open": True, "hinges": {"value": [{"angle": -2}, {}]}}, {}]
LEAVES_HEX = ("00000023" "0000001b" "000001" "4002" "00000012" "4000" "0000000c"  # open, and as far as the hinges
              "00000004" "1001fffe" "00000000" "00000000" "\n")


def map_of(links, text=""):
    """A psd2 value for each field; the link layer holds that many links with all their members, and the text."""
    reference = {"member1": 1 << 40, "member0": 1, "member2": 2}
    two = {"member0": [reference, reference]}
    box, attribute = {"member0": 7}, {"member0": 3, "member1": 4}
    segment = {"member0": 1, "member1": 2, "member2": 3, "member3": 4, "member4": box, "member6": 5}
    points = {"member0": [{"member0": 1, "member1": attribute}] * 2}
    profile = {"member0": 1, "member1": 2, "member2": box, "member3": points}
    link = {"member0": 1, "member1": two, "member2": two, "member3": box, "member4": reference, "member5": 1,
            "member6": box, "member7": box, "member8": {"member0": [segment] * 2}, "member9": {"member0": [attribute] * 2},
            "member10": 1, "member11": 2, "member12": box, "member13": 3, "member14": 4,
            "member15": {"member0": [profile] * 2}, "member16": 1, "member17": box, "member18": 9}
    layer = {"member0": "00" * 16, "member1": [link] * links, "layerInfo": {"member1": {"member0": [{"member0": text}]}}}
    return {field: [layer] if field == "linkLayerLongRange" else [] for field in (
        "automatedParkingLayer", "dynamicContentLayer", "egoPositionLayer", "laneLayer", "linkLayerLongRange",
        "linkLayerShortRange", "positioningObjectsLayer", "timezoneInformation")}


def recording(values, begin=1000.0):
    return "".join(json.dumps({"time": begin, "interface": PROVIDED, "field": field, "value": value}) + "\n"
                   for field, value in values.items())


class Process:
    """A process whose output lines can be waited for."""

    def __init__(self, *command, errors=None):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=errors or subprocess.DEVNULL, bufsize=0)

    def wait_for(self, text, stream=None):
        """The first line that holds the text."""
        stream = stream or self.process.stdout
        line, end = b"", time.monotonic() + DEADLINE
        while select.select([stream], [], [], max(0, end - time.monotonic()))[0]:
            byte = stream.read(1)
            if not byte:
                break
            line += byte
            if byte == b"\n":
                if text.encode() in line:
                    return line.decode()
                line = b""
        raise AssertionError(f"no line with '{text}' in time")

    def end(self, number=signal.SIGINT):
        """Exit status and the rest of standard error; without a signal it ends by itself."""
        if number and self.process.poll() is None:
            self.process.send_signal(number)
        try:
            _, errors = self.process.communicate(timeout=DEADLINE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.communicate()
            raise
        return self.process.returncode, (errors or b"").decode()


def run(*arguments, text=None):
    return subprocess.run([TOOL, *arguments], input=text, capture_output=True, text=True, timeout=DEADLINE, check=False)


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.instance = str(random.randrange(0x1000, 0xF000))

    def start(self, *arguments):
        process = Process(TOOL, *arguments, "--instance", self.instance, errors=subprocess.PIPE)
        self.addCleanup(process.end)
        return process

    def simulate(self, *interfaces, values=None, period="50"):
        arguments = ["simulate", *interfaces, "--period", period]
        if values is not None:
            arguments += ["--values", self.file(json.dumps(values))]
        process = self.start(*arguments)
        process.wait_for(f"offering {interfaces[-1]}", process.process.stderr)
        return process

    def offer(self, *arguments, interface=PROVIDED, values=None):
        process = self.start("offer", interface, "--values", self.file(json.dumps(values or ROUTE)), *arguments)
        process.wait_for("offering", process.process.stderr)
        return process

    def file(self, text):
        file = tempfile.NamedTemporaryFile("w", suffix=".json")  # pylint: disable=consider-using-with
        self.addCleanup(file.close)
        file.write(text)
        file.flush()
        return file.name

    def run_here(self, *arguments, status=0, text=None):
        result = run(*arguments, "--instance", self.instance, "--timeout", "8000", text=text)
        self.assertEqual(result.returncode, status, result.stderr)
        return result

    def assert_unoffered(self, address=ADDRESS):
        result = run("get", address, "--instance", self.instance, "--timeout", "300")
        self.assertEqual((result.returncode, result.stdout), (2, ""))

    def test_simulate_ends_however_far_behind_its_period_it_is(self):
        # So many bytes that no move is done in a millisecond.
        members = [{"id": number, "name": f"a{number}", "type": "bytes<65535>"} for number in range(7)]
        large = {**DOOR, "fields": [{"name": f"f{number}", "getter": f"0x40{number}", "record": "R"}
                                     for number in range(10, 20)],
                 "headers": [{"name": "x", "records": [{"name": "R", "members": members}]}]}
        model = ["--model", self.file(json.dumps(large))]
        simulation = self.start(*model, "simulate", "door", "--period", "1")
        simulation.wait_for("offering door", simulation.process.stderr)
        self.run_here("find", "door", *model)
        status, errors = simulation.end(signal.SIGTERM)
        self.assertEqual(status, 0)
        self.assertIn("door: 0 values read", errors)

    def test_no_control_character_reaches_the_terminal(self):
        escape = "\x1b[2J\x7f\u202e\u2028\x9b31m"
        remark = {**DOOR, "choice": "a\u202e\x9b31m"}
        for status, *arguments in (
                (4, "encode", ADDRESS, json.dumps([{escape: 1}])), (4, "encode", SETTABLE, json.dumps([{"member0": escape}])),
                (1, "list", "--model", self.file(json.dumps({**DOOR, escape: 1}))),
                (1, "list", "--model", self.file(json.dumps({**DOOR, "name": escape}))),
                (1, "list", "--model", self.file(json.dumps(DOOR).replace('"double"', json.dumps(escape)))),
                (0, "list", "door", "--model", self.file(json.dumps(remark))),
                (0, "list", "door", "--json", "--model", self.file(json.dumps(remark)))):
            with self.subTest(arguments=arguments):
                result = run(*arguments)
                self.assertEqual(result.returncode, status, result.stderr)
                self.assertNotRegex(result.stdout + result.stderr, "[\x00-\x09\x0b-\x1f\x7f-\x9f\u2028\u202e]")
                self.assertIn("\\u009b31m", result.stdout + result.stderr)

    def test_list_shows_what_the_library_knows(self):
        interfaces = {entry["interface"]: entry for entry in json.loads(run("list", "--json").stdout)}
        energy = interfaces["energysystem"]
        self.assertEqual((energy["service"], energy["majorVersion"], energy["minorVersion"]), (0x6005, 4, 3))
        self.assertEqual((energy["role"], interfaces[PROVIDED]["role"]), ("consumed", "provided"))
        fields = {field["field"]: field for field in energy["fields"]}
        self.assertEqual(fields["notifications"]["getter"], 0x4010)
        self.assertEqual(fields["notifications"]["eventgroup"], 0xC010)
        self.assertEqual(fields["highVoltageBatteries"]["members"][1], {"id": 1, "name": "member1", "type": "float"})
        one = json.loads(run("list", SETTABLE, "energysystem/notifications", "--json").stdout)
        self.assertEqual([(entry["interface"], [field["field"] for field in entry["fields"]]) for entry in one],
                         [("energysystem", ["notifications"]), ("chargetimemanager", ["chargeTimeCalculations"])])
        table = run("list").stdout
        for interface in interfaces.values():
            for field in interface["fields"]:
                self.assertRegex(table, rf"{field['field']} +getter 0x{field['getter']:04X}")

    def test_help_and_version(self):
        self.assertRegex(run("--version").stdout, r"^tarn7 \d+\.\d+\.\d+, (embedded stack|vsomeip3 3\.\d+\.\d+)$")
        for command in self.complete(""):
            self.assertIn("Example:", run(command, "--help").stdout)

    def complete(self, *words):
        """What bash offers for the last of the words."""
        script = f"source {COMPLETION}; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _tarn7 \"$1\"; " \
                 "printf '%s\\n' \"${COMPREPLY[@]}\""
        return subprocess.check_output(["bash", "-c", script, "bash", TOOL, *words], text=True).split()

    def test_completion(self):
        self.assertLessEqual({"list", "find", "get", "set", "decode", "encode", "watch", "simulate", "offer", "doctor"},
                             set(self.complete("")))
        for words, offered in ((("de",), ["decode"]),
                               (("--",), ["--help", "--version", "--model"]),
                               (("get", "energysystem/no"), [ADDRESS]),
                               (("get", "--timeout", "5", "--hex", "energysystem/no"), [ADDRESS]),
                               (("get", "--timeout", "en"), []),
                               (("get", "--instance", "1", "--t"), ["--timeout"]),
                               (("get", ADDRESS, "en"), []),
                               (("watch", ADDRESS, "charge"), ["chargetimemanager", SETTABLE]),
                               (("simulate", "energysystem", "charge"), ["chargetimemanager"]),
                               (("offer", "en"), ["energysystem"]),
                               (("nonsense", ""), []),
                               (("complet",), [])):
            with self.subTest(words=words):
                self.assertEqual(self.complete(*words), offered)

    def test_wrong_usage_and_wrong_values_are_refused_before_anything_is_sent(self):
        file = self.file
        for status, message, *arguments in (
                (1, "subcommand"),
                (1, "--nonsense", "get", ADDRESS, "--nonsense"),
                (1, "FIELD", "get"),
                (1, "--instance", "get", ADDRESS, "--instance", "65535"),
                (1, "--timeout", "get", ADDRESS, "--timeout", "-1"),
                (1, "--period", "simulate", "energysystem", "--period", "0"),
                (1, "did you mean 'energysystem'?", "get", "energysytem/notifications"),
                (1, "did you mean 'energysystem/notifications'?", "watch", "energysystem/notification"),
                (1, "write INTERFACE/FIELD", "get", "energysystem"),
                (1, "has no setter", "set", ADDRESS, "[]"),
                (1, "has no setter", "set", PROVIDED + "/destinations", "[]"),
                (1, "use tarn7 simulate energysystem", "offer", "energysystem", "--values", "/nonexistent"),
                (1, f"use tarn7 offer {PROVIDED}", "simulate", "energysystem", PROVIDED),
                (1, "--values", "offer", PROVIDED),
                (1, "standard input", "offer", PROVIDED, "--values", "-", "--follow"),
                (4, "cannot be read", "offer", PROVIDED, "--values", "/nonexistent"),
                (4, "did you mean 'rwmStatus'?", "offer", PROVIDED, "--values", file('{"rwmstatus":[]}')),
                (4, 'Attempt to offer service "/kro/services/routebasedenergycontents/RouteBasedEnergyContents" with '
                 'uninitialized field "targetSocChargings"', "offer", PROVIDED, "--values",
                 file(json.dumps({name: value for name, value in ROUTE.items() if name != "targetSocChargings"}))),
                (1, "--values and --replay would both", "simulate", "energysystem", "--values", "-", "--replay", "-"),
                (1, "--speed requires --replay", "simulate", "energysystem", "--speed", "2"),
                (4, "no line is of energysystem", "simulate", "energysystem", "--replay", file(recording(ROUTE))),
                (4, "line 2: no JSON: parse error", "offer", PROVIDED, "--replay",
                 file(recording({"rwmStatus": []}) + "{")),
                (4, "line 1: time: ", "offer", PROVIDED, "--replay", file(recording(ROUTE, begin="yesterday"))),
                (4, "line 1: value: this member", "offer", PROVIDED, "--replay",
                 file(recording({"rwmStatus": []}).replace("value", "valve"))),
                (4, "line 1: no field 'rwmstatus'", "offer", PROVIDED, "--replay", file(recording({"rwmstatus": []}))),
                (4, "line 1: rwmStatus: [0].member0: -1 does not fit", "offer", PROVIDED, "--replay",
                 file(recording({"rwmStatus": [{"member0": -1}]}))),
                (4, "line 1, column 3", "set", SETTABLE, "[{"),
                (4, "[0].membre0: no such member; did you mean member0?", "set", SETTABLE, '[{"membre0":1}]'),
                (4, "[0].member2: 65536 does not fit a 16-bit", "set", SETTABLE, '[{"member2":65536}]'),
                (4, "expected an array", "set", SETTABLE, "7"),
                (4, "[0].member2: 65536 does not fit", "encode", SETTABLE, '[{"member2":65536}]'),
                (4, "[0].member0 at byte 10: Insufficient arguments", "decode", SETTABLE, "0000000700000003000007"),
                (4, "HEX: no hex digits", "decode", SETTABLE, "0g"),
                (4, "cannot be read", "simulate", "energysystem", "--values", "/nonexistent"),
                (4, "parse error", "simulate", "energysystem", "--values", file('{"notifications":[')),
                (4, "expected an object", "simulate", "energysystem", "--values", file("[]")),
                (4, "did you mean 'notifications'?", "simulate", "energysystem", "--values",
                 file('{"notfications":[]}')),
                (4, "notifications: [0].member0: -1 does not fit", "simulate", "energysystem", "--values",
                 file('{"notifications":[{"member0":-1}]}'))):
            with self.subTest(arguments=arguments):
                result = run(*arguments)
                self.assertEqual((result.returncode, result.stdout), (status, ""), result.stderr)
                self.assertIn(message, result.stderr)

    def test_payloads_need_no_network(self):
        for interface in json.loads(run("list", "--json").stdout):
            for field in interface["fields"]:
                value = [{}, {member["name"]: 1 for member in field["members"] if member["type"].startswith("uint")}]
                address = f"{interface['interface']}/{field['field']}"
                payload = run("encode", address, json.dumps(value)).stdout
                self.assertEqual(json.loads(run("decode", address, text=payload.upper()).stdout), value)
        result = run("decode", ADDRESS, "0000000A 00000006", "2000\n0000002a", "ff")
        self.assertEqual((result.stdout, result.returncode), ('[{"member0":42}]\n', 0))
        self.assertEqual(result.stderr, "warning: the value at byte 14: 1 byte is passed over\n")

    def test_a_model_brings_an_interface_that_the_library_has_never_seen(self):
        model = ["--model", self.file(json.dumps(DOOR))]
        # Beside it one that applications provide: it is simulated all the same.
        gate = {**DOOR, "name": "gate", "role": "provided", "serviceId": "0x7002"}
        models = [*model, "--model", self.file(json.dumps(gate))]
        table = run("list", "door", *model).stdout
        for text in (f"door  consumed  service 0x7001  version 3.1  ara::com id 7  from {model[1]}\n",
                     "  our choice: that numbers are unsigned\n", "setter 0x4021  event 0xC020  eventgroup 0xC020  DT_leaf\n",
                     "      taken for: one of two\n", "Box<std::vector<DT_leaf::Hinge>>  our choice: its shape\n",
                     "angle                       int16  taken for: degrees\n"):
            self.assertIn(text, table)
        self.assertEqual(run(*model, "encode", "door/leaves", json.dumps(LEAVES)).stdout, LEAVES_HEX)
        self.assertEqual(json.loads(run(*model, "decode", "door/leaves", LEAVES_HEX).stdout), LEAVES)
        for status, message, *arguments in (
                (4, "[0].hinges.value[0].angle: 32768 does not fit a 16-bit signed integer", "encode", "door/leaves",
                 '[{"hinges":{"value":[{"angle":32768}]}}]'),
                (1, "did you mean 'door/bell'?", "get", "door/bel"), (1, "door/bell has no setter", "set", "door/bell", "[]"),
                (1, "use tarn7 simulate door", "offer", "door", "--values", "/nonexistent"),
                (1, "use tarn7 simulate gate", "offer", "gate", "--values", "/nonexistent")):
            result = run(*arguments, *models)
            self.assertEqual((result.returncode, result.stdout), (status, ""), result.stderr)
            self.assertIn(message, result.stderr)
        self.assertIn("no interface 'door'", run("get", "door/bell").stderr)

        simulation = self.start(*models, "simulate", "door", "gate", "--period", "50", "--values",
                                self.file(json.dumps({"door/leaves": LEAVES})))
        simulation.wait_for("offering gate", simulation.process.stderr)
        self.assertEqual(self.run_here("find", "door", "gate", *models).stdout.count(f"instance {self.instance}: found"), 2)
        self.assertEqual(json.loads(self.run_here("get", "door/leaves", *model).stdout), LEAVES)
        self.assertEqual(self.run_here("get", "door/leaves", "--hex", *model).stdout, LEAVES_HEX)
        self.run_here("set", "door/leaves", '[{"opne":true}]', *model, status=4)
        watch = self.start(*models, "watch", "door", "gate/bell")
        watch.wait_for('"interface":"gate","field":"bell","value":[{"tone":')
        self.assertEqual(self.run_here(*model, "set", "door/leaves", '[{"open":false}]').stdout, '[{"open":false}]\n')
        watch.wait_for('"interface":"door","field":"leaves","value":[{"open":false}]}')
        self.assertIn("door: 2 values read, 1 set", simulation.end()[1])

        self.assertEqual(self.complete(*model, "get", "door/"), ["door/leaves", "door/bell"])
        self.assertEqual(self.complete("get", *model, "door/b"), ["door/bell"])
        self.assertEqual(self.complete("get", "--mo"), ["--model"])
        with tempfile.TemporaryDirectory() as folder:
            run("wireshark", folder, *model)
            self.assertIn('"7001","door"', (Path(folder) / "SOMEIP_service_identifiers").read_text())

    def test_a_model_with_a_mistake_is_refused(self):
        door = self.file(json.dumps(DOOR))
        for message, *files in (
                ("/nonexistent cannot be read: No such file", "/nonexistent"),
                (f"{Path(door).parent} cannot be read: Is a directory", str(Path(door).parent)),
                ("/dev/zero is larger than", "/dev/zero"),
                ("no JSON: parse error at line 1, column 2", self.file("{")),
                ("headers[0].records[2].members[0].type: no type 'duoble'; did you mean double?",
                 self.file(json.dumps(DOOR).replace('"double"', '"duoble"'))),
                ("name: there is an interface energysystem, which the library has",
                 self.file(json.dumps({**DOOR, "name": "energysystem"}))),
                ("serviceId: it is that of energysystem", self.file(json.dumps({**DOOR, "serviceId": "0x6005"}))),
                (f"name: there is an interface door, which is from {door}", door, door)):
            with self.subTest(message=message):
                result = run("list", *(word for file in files for word in ("--model", file)))
                self.assertEqual((result.returncode, result.stdout), (1, ""), result.stderr)
                self.assertTrue(result.stderr.startswith(f"tarn7: {files[-1]}"), result.stderr)
                self.assertIn(message, result.stderr)

    def test_get(self):
        self.simulate("energysystem", values=VALUES)
        for field, value in VALUES.items():
            self.assertEqual(json.loads(self.run_here("get", "energysystem/" + field).stdout), value)
        payload = self.run_here("get", ADDRESS, "--hex").stdout
        self.assertEqual(payload, "0000000e" "00000006" "20000000002a" "00000000" "\n")

    def test_get_waits_for_the_service(self):
        self.assert_unoffered()
        late = self.start("get", ADDRESS, "--timeout", str(1000 * DEADLINE))
        self.simulate("energysystem", values=VALUES)
        self.assertEqual(json.loads(late.wait_for("[")), VALUES["notifications"])
        result = run("get", ADDRESS, "--hex", "--instance", "0xFFF0", "--timeout", "100")
        self.assertEqual((result.returncode, result.stdout), (2, ""))

    def test_find(self):
        follow = Process(TOOL, "find", "--follow", "--json", errors=subprocess.PIPE)
        self.addCleanup(follow.end)
        simulation = self.simulate("energysystem")
        self.offer()
        for interface in ("energysystem", PROVIDED):
            line = self.run_here("find", interface).stdout
            self.assertEqual(line, f"{interface}, instance {self.instance}: found\n")
            follow.wait_for(f'"{interface}","instance":{self.instance},"found":true,"rightVersion":true')
        self.assertIn(f"energysystem, instance {self.instance}: found", run("find", "--timeout", "500").stdout)
        simulation.end()
        follow.wait_for(f'{{"interface":"energysystem","instance":{self.instance},"found":false}}')
        self.assertIn("instances found", follow.end()[1])
        missing = run("find", "energysystem", PROVIDED, "--instance", self.instance, "--timeout", "300")
        self.assertEqual(missing.returncode, 2)
        self.assertIn("tarn7: energysystem is not offered\n", missing.stderr)

    def doctor(self, configuration, status):
        """The findings by check, as (level, text and remedy)."""
        path = configuration if isinstance(configuration, str) else self.file(json.dumps(configuration))
        with unittest.mock.patch.dict(os.environ, VSOMEIP_CONFIGURATION=path):
            result = run("doctor", "--json", "--timeout", "500")
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        findings = {}
        for finding in json.loads(result.stdout):
            self.assertTrue(finding["level"] == "ok" or finding["remedy"], finding)
            findings.setdefault(finding["check"], []).append(
                (finding["level"], finding["text"] + " -> " + finding.get("remedy", "")))
        return findings

    def assert_finding(self, findings, check, level, text):
        self.assertTrue(any(found == level and text in line for found, line in findings[check]), findings)

    def test_doctor_says_what_is_wrong(self):
        for check, text, configuration in (
                ("configuration", "/nonexistent, which VSOMEIP_CONFIGURATION names, is not there", "/nonexistent"),
                ("configuration", "line 1, column 2", self.file("{")),
                ("configuration", "port 70000 is no number", {"service-discovery": {"port": "70000"}}),
                ("unicast", "192.0.2.1 is no address of this machine", {"unicast": "192.0.2.1"}),
                ("multicast", "no message can be sent to 10.0.0.1", {"service-discovery": {"multicast": "10.0.0.1"}}),
                ("services", "stack", {"unicast": "192.0.2.1"})):
            with self.subTest(text=text):
                self.assert_finding(self.doctor(configuration, 3), check, "problem", text)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as selfish:
            selfish.bind(("0.0.0.0", 0))
            port = selfish.getsockname()[1]
            own_name = Path("/proc/self/comm").read_bytes()
            self.addCleanup(Path("/proc/self/comm").write_bytes, own_name)
            Path("/proc/self/comm").write_bytes(b"x -> \x1b;$(rm)")
            findings = self.doctor({"unicast": "127.77.200.1", "service-discovery": {"port": port}}, 3)
            self.assert_finding(findings, "ports", "problem", f"{port} is taken")
            self.assert_finding(findings, "ports", "problem", f"$'x -> \\x1b;$(rm)' (process {os.getpid()})")

    def test_doctor_lets_pass_what_is_right(self):
        configuration = self.file(json.dumps({"service-discovery": {"port": random.randrange(20000, 30000)},
                                              "netmask": "255.0.0.0", "applications": [{"name": "x", "di": 7}]}))
        with unittest.mock.patch.dict(os.environ, VSOMEIP_CONFIGURATION=configuration):
            self.simulate("energysystem")
        findings = self.doctor(configuration, 0)
        for check in ("stack", "configuration", "unicast", "multicast", "ports", "routing host"):
            self.assertTrue(all(level == "ok" for level, _ in findings[check]), findings)
        self.assert_finding(findings, "ports", "ok", "is shared with tarn7 (process ")
        self.assert_finding(findings, "keys", "warning", 'unknown and has no effect -> take it out, or write "id"')
        self.assert_finding(findings, "services", "ok", f"energysystem is offered: instance {self.instance}")
        self.assert_finding(findings, "services", "warning", "tarn7 simulate chargetimemanager")

    def test_failed_calls(self):
        provider = Process(PROVIDER)
        self.addCleanup(provider.end)
        for command in (f"offer 6005 {int(self.instance):x} 4 3 4010 4020",
                        "fail 4010 00000013" "01" "0010" "8000000000001267" "00000001" "00000000", "set 4020 000000ff"):
            provider.process.stdin.write(command.encode() + b"\n")
            provider.wait_for("done")
        error = "domain Com (0x8000000000001267), code 1: Service is not available."
        for message, *arguments in ((error, ADDRESS), (error, ADDRESS, "--hex"),
                                    ("code 3", "energysystem/highVoltageBatteries")):
            result = self.run_here("get", *arguments, status=3)
            self.assertEqual(result.stdout, "")
            self.assertIn(message, result.stderr)
        self.assertEqual(self.run_here("get", "energysystem/highVoltageBatteries", "--hex").stdout, "000000ff\n")

    def test_watch_follows_fields(self):
        watch = self.start("watch", "energysystem", ADDRESS, "--count", "12")  # before there is a service
        begin = time.time()
        self.simulate("energysystem", values=VALUES)
        samples = [json.loads(watch.wait_for("{")) for _ in range(12)]
        self.assertEqual(watch.end(None)[0], 0)
        for sample in samples:
            self.assertEqual(list(sample), ["time", "interface", "field", "value"])
            self.assertTrue(begin - 1 <= sample["time"] <= time.time() + 1)
            self.assertEqual(sample["value"], VALUES.get(sample["field"], sample["value"]))
        self.assertEqual({sample["field"] for sample in samples},
                         {"highVoltageBatteries", "lowVoltageBatteries", "lowVoltageSystemInfo", "notifications"})
        moving = [sample["value"] for sample in samples if sample["field"] == "lowVoltageBatteries"]
        self.assertNotEqual(moving[0], moving[-1])

    def test_watch_ends(self):
        self.simulate("energysystem", values=VALUES, period="100000")
        watch = self.start("watch", ADDRESS)
        watch.wait_for(ADDRESS.split("/")[1])
        status, errors = watch.end(signal.SIGINT)
        self.assertEqual(status, 0)
        self.assertRegex(errors, r"(?m)^(1 sample|2 samples)$")
        in_vain = run("watch", ADDRESS, "--count", "100", "--timeout", "500", "--instance", self.instance)
        self.assertEqual(in_vain.returncode, 2)
        self.assertIn("of 100 samples came in time", in_vain.stderr)
        self.assertEqual(run("watch", ADDRESS, "--timeout", "100", "--instance", "0xFFF1").returncode, 2)

    def test_watch_ends_when_its_reader_leaves(self):
        self.simulate("energysystem")
        watch = self.start("watch", "energysystem")
        watch.wait_for("{")
        watch.process.stdout.close()
        self.assertEqual(watch.process.wait(DEADLINE), 0)

    def test_set_is_what_getters_and_notifications_carry(self):
        simulation = self.simulate("energysystem", "chargetimemanager")
        value = [{"member0": 1, "member3": "00ff", "member5": [1, 65535], "member6": False}, {}]
        self.assertEqual(json.loads(self.run_here("set", SETTABLE, json.dumps(value)).stdout), value)
        self.assertEqual(json.loads(self.run_here("get", SETTABLE).stdout), value)
        self.assertEqual(json.loads(self.run_here("watch", SETTABLE, "--count", "1").stdout)["value"], value)
        self.assertEqual(self.run_here("set", SETTABLE, "-", text="[]").stdout, "[]\n")
        self.run_here("set", SETTABLE, "[{]", status=4)
        status, errors = simulation.end(signal.SIGTERM)
        self.assertEqual(status, 0)
        self.assertIn("chargetimemanager: 1 value read, 2 set", errors)
        self.assert_unoffered()

    def test_set_that_is_refused_does_not_reach_the_service(self):
        simulation = self.simulate("chargetimemanager", values={SETTABLE: [{"member0": 5}]})
        for wrong in ("[{]", '[{"member7":1}]', '[{"member3":"0g"}]', '[{"member6":1}]'):
            self.run_here("set", SETTABLE, wrong, status=4)
        self.assertEqual(json.loads(self.run_here("get", SETTABLE).stdout), [{"member0": 5}])
        self.assertIn("1 value read, 0 set", simulation.end()[1])

    def test_set_reaches_who_follows_the_field(self):
        self.simulate("chargetimemanager", values={SETTABLE: [{"member0": 5}]}, period="100000")
        watch = self.start("watch", SETTABLE)
        watch.wait_for('"value":[{"member0":5}]')
        self.run_here("set", SETTABLE, '[{"member0":6}]')
        watch.wait_for('"value":[{"member0":6}]')

    def test_offer_is_what_getters_and_notifications_carry(self):
        watch = self.start("watch", PROVIDED, "--count", "5")  # before there is a service
        offer = self.offer()
        samples = [json.loads(watch.wait_for("{")) for _ in ROUTE]
        self.assertEqual({sample["field"]: sample["value"] for sample in samples}, ROUTE)
        self.assertEqual(watch.end(None)[0], 0)
        for field, value in ROUTE.items():
            self.assertEqual(json.loads(self.run_here("get", f"{PROVIDED}/{field}").stdout), value)
        payload = self.run_here("get", PROVIDED + "/rwmStatus", "--hex").stdout
        self.assertEqual(payload, "00000007" "00000003" "0003ff" "\n")
        status, errors = offer.end()
        self.assertEqual(status, 0)
        self.assertIn(f"{PROVIDED}: 5 values offered", errors)
        self.assert_unoffered(PROVIDED + "/rwmStatus")

    def test_a_map_of_several_megabytes_is_served_and_notified(self):
        # ThreadSanitizer slows the program down by a factor of ten and more, past any deadline that is of use.
        large = map_of(links=2_000 if "thread" in SANITIZERS else 10_000)
        self.offer(interface="psd2", values=large)
        for command in ("get", "watch"):
            limit = ["--count", "1"] if command == "watch" else []
            value = json.loads(self.run_here(command, "psd2/linkLayerLongRange", *limit).stdout)
            self.assertTrue((value if command == "get" else value["value"]) == large["linkLayerLongRange"], command)

    def test_a_map_above_the_limit_of_the_stack_is_an_error_at_the_sender(self):
        if STACK != "embedded":
            self.skipTest(f"the limit is the embedded stack's, not that of {STACK}")
        refused = r"A payload of 17826\d{3} bytes is above the limit of 16777216: nothing is sent"
        too_large = map_of(links=1, text="x" * (17 << 20))
        result = run("offer", "psd2", "--instance", self.instance, "--values", self.file(json.dumps(too_large)))
        self.assertEqual(result.returncode, 4)
        self.assertRegex(result.stderr, "the value of a field cannot be sent: " + refused)
        small = map_of(links=1)
        offer = self.offer("--follow", interface="psd2", values=small)
        offer.process.stdin.write(json.dumps({"linkLayerLongRange": too_large["linkLayerLongRange"]}).encode() + b"\n")
        self.assertRegex(offer.wait_for("passed over", offer.process.stderr), "linkLayerLongRange: " + refused)
        value = self.run_here("get", "psd2/linkLayerLongRange").stdout
        self.assertTrue(json.loads(value) == small["linkLayerLongRange"], "the former value stays")

    def test_watch_follows_what_is_offered_again(self):
        watch = self.start("watch", PROVIDED + "/rwmStatus", "energysystem/notifications")
        first = self.offer()
        watch.wait_for("rwmStatus")
        first.end()
        watch.wait_for("gone", watch.process.stderr)
        self.offer()
        watch.wait_for("rwmStatus")
        self.simulate("energysystem")  # the library's proxy and the stack itself, side by side
        watch.wait_for("notifications")

    def test_offer_follows_standard_input(self):
        offer = self.offer("--follow")
        watch = self.start("watch", PROVIDED)
        for field in ROUTE:
            watch.wait_for("{")
        lines = ('{"destinations":[],"rwmStatus":[{"member0":1}]}', '{"destinatons":[]}', "nonsense",
                 '{"rwmStatus":[{"member0":2}],"destinations":[{"member0":-1}]}', '{"rwmStatus":[{"member0":3}]}')
        offer.process.stdin.write("\n".join(lines).encode())  # the last line has no end
        offer.process.stdin.close()
        offer.process.stdin = None
        for number, text in ((2, "did you mean 'destinations'?"), (3, "parse error"), (4, "-1 does not fit")):
            self.assertIn(text, offer.wait_for(f"line {number}: ", offer.process.stderr))
        samples = [json.loads(watch.wait_for("{")) for _ in range(3)]
        self.assertEqual([(sample["field"], sample["value"]) for sample in samples if sample["field"] == "rwmStatus"],
                         [("rwmStatus", [{"member0": 1}]), ("rwmStatus", [{"member0": 3}])])
        self.assertEqual(self.run_here("get", PROVIDED + "/destinations").stdout, "[]\n")  # goes on after the end
        status, errors = offer.end(signal.SIGTERM)
        self.assertEqual(status, 0)
        self.assertIn("8 values offered", errors)

    def test_what_watch_writes_is_played_back(self):
        self.simulate("energysystem", period="40")
        recorded = self.run_here("watch", "energysystem", ADDRESS, "--count", "60").stdout
        samples = [json.loads(line) for line in recorded.splitlines()]
        expected = [sample for sample in samples if sample["field"] == "notifications"]
        self.instance = str(int(self.instance) + 1)
        watch = self.start("watch", ADDRESS)
        simulation = self.start("simulate", "energysystem", "--speed", "0.2", "--replay", self.file(recorded))
        played = []
        while not played or played[-1]["value"] != expected[-1]["value"]:
            played.append(json.loads(watch.wait_for("{")))
        self.assertGreater(len(played), 5)
        expected = expected[-len(played):]
        self.assertEqual([sample["value"] for sample in played], [sample["value"] for sample in expected])
        ratio = (played[-1]["time"] - played[1]["time"]) / (expected[-1]["time"] - expected[1]["time"])
        self.assertTrue(2.5 < ratio < 10, ratio)  # the first one is what stood when it subscribed
        simulation.wait_for("at its end", simulation.process.stderr)
        self.assertEqual(simulation.end()[0], 0)

    def test_offer_plays_back_standard_input(self):
        watch = self.start("watch", PROVIDED + "/rwmStatus")
        offer = self.start("offer", PROVIDED, "--replay", "-")
        foreign = recording({"notifications": "whatever"}).replace(PROVIDED, "energysystem")
        offer.process.stdin.write((recording(ROUTE) + foreign + recording({"rwmStatus": [{"member0": 1}]}, 1001.0)
                                   + recording({"rwmStatus": [{"member0": 2}]}, 900.0)).encode())
        offer.process.stdin.close()
        offer.process.stdin = None
        watch.wait_for('"value":[{"member0":2}]')
        for field, value in ROUTE.items():
            if field != "rwmStatus":
                self.assertEqual(json.loads(self.run_here("get", f"{PROVIDED}/{field}").stdout), value)
        self.assertIn(f"{PROVIDED}: {len(ROUTE) + 2} values offered", offer.end()[1])

    def test_watch_shows_a_table_on_a_terminal(self):
        self.simulate("energysystem")
        terminal, other_end = os.openpty()
        self.addCleanup(os.close, terminal)
        fcntl.ioctl(other_end, termios.TIOCSWINSZ, struct.pack("HHHH", 6, 90, 0, 0))
        watch = subprocess.Popen([TOOL, "watch", ADDRESS, PROVIDED, "--instance", self.instance], stdout=other_end,
                                 stderr=subprocess.PIPE)
        self.addCleanup(watch.kill)
        os.close(other_end)
        row = rb"energysystem/notifications +[\d.]+ s +[1-9][\d.]*/s +subscribed +ok +\[{\"mem[^\n]*\xe2\x80\xa6\r+\n"
        row += rb"[^\r]*contents/destinations +- +0.0/s +not offered +- +\r+\n[^\r]*and 4 more fields"
        shown, end = b"", time.monotonic() + DEADLINE
        while not re.search(row, shown):
            self.assertTrue(select.select([terminal], [], [], max(0, end - time.monotonic()))[0], shown[-999:])
            shown += os.read(terminal, 65536)
        for line in re.sub(rb"\x1b\[[?\d]*[A-Za-z]", b"", shown).decode(errors="replace").split("\n"):
            self.assertLessEqual(len(line.split("Ctrl-C ends")[0].rstrip("\r")), 90)
        watch.send_signal(signal.SIGINT)
        while select.select([terminal], [], [], 0)[0] or watch.poll() is None:
            try:
                shown += os.read(terminal, 65536)
            except OSError:  # nobody is at the other end any more
                break
        self.assertTrue(shown.startswith(b"\x1b[?1049h") and shown.endswith(b"\x1b[?1049l"), shown[-40:])
        self.assertRegex(watch.communicate(timeout=DEADLINE)[1], rb"(?m)^\d+ samples$")
        self.assertEqual(watch.returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
