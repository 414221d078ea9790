"""The Wireshark profile, applied by tshark to messages of every field: wireshark_test.py TARN7"""

import itertools
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

TOOL = sys.argv[1]
REQUEST, NOTIFICATION, RESPONSE, ERROR, SEGMENT = 0x00, 0x02, 0x80, 0x81, 0x20


def run(*arguments, status=0, **options):
    result = subprocess.run(arguments, capture_output=True, text=True, timeout=120, check=False, **options)
    assert result.returncode == status, result.stderr
    return result


class Sample:
    """A value with all members, and what Wireshark should show: (display filter, text) of each number and string."""

    def __init__(self, path, field):
        self.shown, self.numbers = [], itertools.count(1)
        self.value = self.make(path, field["type"], field.get("members"))

    def make(self, path, kind, members):
        number = next(self.numbers)
        if kind.startswith("sequence of "):
            return [self.make(path, kind[len("sequence of "):], members) for _ in range(2)]
        if kind == "record":
            return {member["name"]: self.make(f"{path}.{member['name']}", member["type"], member.get("members"))
                    for member in members}
        if kind.endswith("bytes"):
            value = bytes((number + i) % 256 for i in range(int(kind.split()[0]) if kind[0].isdigit() else 3))
            self.shown += [(path, str(byte)) for byte in value]
            return value.hex()
        value, text = {"bool": (number % 2 == 1, ["0 (false)", "1 (true)"][number % 2]),
                       "string": (f"text {number}", f"text {number}"),
                       "float": (number + 0.5, f"{number}.5"), "double": (number + 0.5, f"{number}.5")}.get(
                           kind) or self.integer(number, *kind.split("int"))
        self.shown.append((path, text))
        return value

    @staticmethod
    def integer(number, unsigned, bits):
        value = (number * 0x9E3779B97F4A7C15) % 2**int(bits)  # each byte another
        if not unsigned and value >= 2**(int(bits) - 1):
            value -= 2**int(bits)
        return value, str(value)


def someip(service, method, version, message_type, payload):
    return struct.pack(">HHIHHBBBB", service, method, 8 + len(payload), 0x1234, 1, 1, version, message_type, 0) + payload


def packet(udp, port):
    ip = struct.pack(">BBHIBBHII", 0x45, 0, 28 + len(udp), 0, 64, 17, 0, 0x7F000001, 0x7F000002)
    raw = ip + struct.pack(">HHHH", 40000, port, 8 + len(udp), 0) + udp
    return struct.pack("<IIII", 0, 0, len(raw), len(raw)) + raw


class WiresharkTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.profile = self.folder / "wireshark" / "profiles" / "tarn7"
        run(TOOL, "wireshark", self.profile)

    def dissect(self, packets, port=40001):
        capture = self.folder / "capture.pcap"
        capture.write_bytes(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 2**18, 228)
                            + b"".join(packet(udp, port) for udp in packets))
        result = run("tshark", "-C", "tarn7", "-r", capture, "-T", "pdml",
                     env={**os.environ, "XDG_CONFIG_HOME": str(self.folder), "HOME": str(self.folder)})
        self.assertNotIn(str(self.profile), result.stderr)  # where it would find fault with the profile
        fields = [[(field.get("name"), field.get("showname", "")) for field in element.iter("field")]
                  for element in xml.etree.ElementTree.fromstring(result.stdout)]
        for name, text in itertools.chain(*fields):
            self.assertFalse(name.startswith("_ws.") or "unparsed" in name, text)
        return fields

    @unittest.skipUnless(shutil.which("tshark"), "tshark is not installed")
    def test_every_member_of_every_field_is_named_with_its_value(self):
        packets, expected = [], []
        for interface in json.loads(run(TOOL, "list", "--json").stdout):
            for field in interface["fields"]:
                address = f"{interface['interface']}/{field['field']}"
                sample = Sample(address.replace("/", "."), field)
                payload = bytes.fromhex(run(TOOL, "encode", address, "-", input=json.dumps(sample.value)).stdout)
                for name, method, types in (("get ", field["getter"], [RESPONSE]), ("", field["event"], [NOTIFICATION]),
                                            ("set ", field.get("setter"), [REQUEST, RESPONSE])):
                    for message_type in types if method else ():
                        packets.append(someip(interface["service"], method, interface["majorVersion"], message_type,
                                              payload))
                        expected.append((interface["interface"], name + field["field"], sample.shown))
        for fields, (service, method, shown) in zip(self.dissect(packets), expected, strict=True):
            self.assertIn(("someip.servicename", f"Service Name: {service}"), fields)
            self.assertIn(("someip.methodname", f"Method Name: {method}"), fields)
            prefix = f"someip.payload.{service}."
            self.assertEqual([(name[len("someip.payload."):], text.partition(": ")[2]) for name, text in fields
                              if name.startswith(prefix)], shown)

    @unittest.skipUnless(shutil.which("tshark"), "tshark is not installed")
    def test_a_segmented_message_an_error_and_a_subscription(self):
        payload = bytes.fromhex("0000001e" + "0000000620000000002a" * 3)
        segments = [someip(0x6005, 0xC010, 4, NOTIFICATION | SEGMENT,
                           struct.pack(">I", begin | (begin < 32)) + payload[begin:begin + 16]) for begin in (0, 16, 32)]
        names = [name for name, _ in self.dissect(segments)[2]]
        self.assertEqual(names.count("someip.payload.energysystem.notifications.member0"), 3)
        error = someip(0x6005, 0x4010, 4, ERROR, bytes.fromhex("00000013" "01" "0010" "8000000000001267" "00000003"
                                                               "ffffffff"))
        fields = dict(self.dissect([error])[0])
        for name, text in (("domain", f"[uint64]: {0x8000000000001267}"), ("value", "[int32]: 3"),
                           ("supportData", "[int32]: -1")):
            self.assertEqual(fields["someip.payload.error." + name], f"{name} {text}")
        entry = struct.pack(">BBBBHHIHH", 6, 0, 0, 0, 0x6005, 1, 4 << 24 | 3, 0, 0xC010)
        discovery = someip(0xFFFF, 0x8100, 1, NOTIFICATION, struct.pack(">II", 0x80 << 24, 16) + entry + bytes(4))
        texts = [text for _, text in self.dissect([discovery], port=30490)[0]]
        self.assertIn("Eventgroup Name: notifications", texts)

    def test_foreign_files_stay(self):
        run(TOOL, "wireshark", self.profile)  # its own are replaced
        (self.profile / "preferences").write_text("mine\n")
        self.assertIn("--force", run(TOOL, "wireshark", self.profile, status=1).stderr)
        self.assertEqual((self.profile / "preferences").read_text(), "mine\n")
        run(TOOL, "wireshark", self.profile, "--force")
        self.assertIn("cannot be written", run(TOOL, "wireshark", self.profile / "preferences" / "x", status=1).stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
