"""What scripts/generate refuses and notices: generate_test.py PROJECT"""

import importlib.machinery
import importlib.util
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(sys.argv[1]).absolute()
GUIDE = (PROJECT / "docs/adding-an-interface.md").read_text()
MODEL = re.search(r"^```json\n(.*?)^```$", GUIDE, re.MULTILINE | re.DOTALL)[1]
sys.dont_write_bytecode = True  # beside the script
LOADER = importlib.machinery.SourceFileLoader("generate", str(PROJECT / "scripts/generate"))
GENERATE = importlib.util.module_from_spec(importlib.util.spec_from_loader("generate", LOADER))
LOADER.exec_module(GENERATE)
GONE = object()
READING = ".headers[0].records[0].records[0]"
PRESSURES = ".headers[0].records[0]"
STATUS = ".headers[0].records[1]"
NUMBER = {"id": 9, "name": "number", "type": "uint8"}



def nested(depth):
    """A record within a record, and so on."""
    record = {"name": f"R{depth}", "brief": "One of many.", "members": [NUMBER]}
    return {**record, "records": [nested(depth - 1)]} if depth > 1 else record


# What is changed to what in the model of docs/adding-an-interface.md, and what is said then.
REFUSED = [
    # The schema's part, with each of its rules.
    (".colour", "red", ".colour: is unknown: there are $schema, name,"),
    (f"{READING}.members[0].typ", "bool", f"{READING}.members[0].typ: is unknown: there are id,"),
    (".version", [1, 0], ".version: [1, 0] is not an object"),
    (".version.major", True, ".version.major: true is not an integer"),
    (".version.major", 255, ".version.major: 255 is not within 0 and 254"),
    (".brief", GONE, ".: has no 'brief'"),
    (".brief", "Ends in \\.", ".brief: "),
    (".fields[0].mutable", "yes", '.fields[0].mutable: "yes" is not true or false'),
    (".role", "both", '.role: "both" is none of consumed, provided'),
    (".serviceId", "0x60G1", '.serviceId: "0x60G1" is not of the form ^0x[0-9A-Fa-f]{4}$'),
    (".fields", [], ".fields: is empty"),
    (f"{STATUS}.alias", "bool", f"{STATUS}: has to have one of members or alias or is"),
    (f"{STATUS}.members", GONE, f"{STATUS}: has to have one of members or alias or is"),
    (f"{STATUS}.brief", GONE, f"{STATUS}: has to have brief or takenFor"),
    (f"{STATUS}.members[0].id", 4096, f"{STATUS}.members[0].id: 4096 is not within 0 and 4095"),
    # Names.
    (".name", "wheels", ".name: 'wheels' is not the name of the file"),
    (".fields[0].name", "fields", ".fields[0].name: 'fields' is no name for a field"),
    (".fields[0].name", "a-b", '.fields[0].name: "a-b" is not of the form'),
    (".fields[0].name", "status", ".fields[1].name: 'status' is taken: .fields[0].name has this name"),
    (f"{STATUS}.members[0].name", "register", f"{STATUS}.members[0].name: 'register' is no name for a record, parameter or member"),
    (f"{STATUS}.members[0].name", "code", f"{STATUS}.members[1].name: 'code' is taken"),
    (f"{STATUS}.name", "DT__status", f"{STATUS}.name: 'DT__status' is no name"),
    (f"{STATUS}.name", "DT_pressures_struct", f"{STATUS}.name: 'DT_pressures_struct' is described before"),
    (f"{PRESSURES}.records", [{"name": "Reading", "brief": "Twice.", "members": [NUMBER]}] * 2,
     f"{PRESSURES}.records[1].name: 'Reading' is taken: {PRESSURES}.records[0].name has this name"),
    (".headers[0].name", "skeleton", ".headers[0].name: 'skeleton' is no name for a header"),
    (".fields[0].name", "pressures\n", '.fields[0].name: "pressures\\n" is not of the form'),
    *((".fields[0].name", name, f".fields[0].name: '{name}' is no name for a field")
      for name in ("accessor", "handle", "instances", "name", "linux")),
    *((".class", name, f".class: '{name}' is no name for a class")
      for name in ("Field", "MutableField", "NULL", "ProxyImplBase", "Service")),
    *((".class", name, f".class: '{name[0].lower() + name[1:]}' is no name for a variable of this class")
      for name in ("Answer", "Auto", "Double", "Handle", "Value")),
    *((f"{STATUS}.name", name, f"{STATUS}.name: '{name}' is no name")
      for name in ("BIG_ENDIAN", "EINTR", "EXIT_SUCCESS", "INFINITY", "M_PI", "PRIu8", "SIGINT", "SIZE_MAX", "TARN7_EXPORT")),
    (f"{READING}.name", "DT_status_struct", f"{READING}.name: 'DT_status_struct' is another record's or parameter's, outside of it"),
    (f"{READING}.name", "DT_pressures_struct", f"{READING}.name: 'DT_pressures_struct' is another record's"),
    (PRESSURES, {"name": "Box", "brief": "Shape.", "parameters": ["T"], "members": [NUMBER], "records": [
        {"name": "Inner", "brief": "Deep.", "members": [NUMBER], "parameters": ["T"]}]},
     f"{PRESSURES}.records[0].parameters[0]: 'T' is another record's or parameter's"),
    (".headers", [{"name": name, "brief": "Some.", "records": [{"name": f"DT_{name}", "brief": "One.", "members": [NUMBER]}]}
                  for name in ("datatypes", "more")], ".headers[0].name: 'datatypes' is the name of the header that includes all others"),
    # Ids.
    (".fields[0].getter", "0x4010", ".fields[1].getter: 0x4010 is the getter of pressures as well"),
    (".fields[0].getter", "0x4030", ".fields[0].getter: 0x4030 is out of order: the getters of 2 fields are 0x4010 to 0x4020,"),
    (".fields[0].getter", "0x4021", ".fields[0].getter: 0x4021 is out of order"),
    (f"{READING}.members[1].id", 0, f"{READING}.members[1].id: the data id 0 occurs twice"),
    (f"{READING}.members[0].id", 2, f"{READING}.members[1].id: the data id 1 follows 2: where that is meant,"),
    (".serviceId", "0x6005", ".serviceId: 0x6005 is that of energysystem"),
    (".serviceId", "0xffff", ".serviceId: 0xFFFF is reserved"),
    (".araServiceId", 56470, ".araServiceId: 56470 is that of energysystem"),
    # Fields.
    (".checkOrder", ["status"], ".checkOrder: has to name each field once"),
    (".checkOrder", ["status", "status"], ".checkOrder: has to name each field once"),
    (".checkOrder", GONE, ".checkOrder: is there for a provided interface, and for no other"),
    (".role", "consumed", ".checkOrder: is there for a provided interface, and for no other"),
    (".fields[0].mutable", True, ".fields[0].mutable: the library offers no field that clients may write"),
    (".fields[0].record", "DT_doors_struct", ".fields[0].record: 'DT_doors_struct' is no record"),
    (".fields[0].record", "Reading", ".fields[0].record: 'Reading' is no record"),
    (STATUS, {"name": "DT_status_struct", "brief": "None.", "alias": "bool"}, ".fields[1].record: 'DT_status_struct' is an alias, which is"),
    (f"{STATUS}.parameters", ["T"], ".fields[1].record: 'DT_status_struct' is a shape"),
    (".fields", [{}] * 1024, ".fields: has 1024 items, and may have 1023"),
    # Types.
    (f"{STATUS}.members[0].type", "uint24", f"{STATUS}.members[0].type: the type 'uint24' is unknown"),
    (f"{STATUS}.members[0].type", "sequence<bytes<0>>", f"{STATUS}.members[0].type: '0' is no number of bytes from 1 to 65535"),
    (f"{STATUS}.members[0].type", "bytes<65536>", f"{STATUS}.members[0].type: '65536' is no number of bytes from 1 to 65535"),
    (f"{STATUS}.members[0].type", "sequence<" * 2000 + "bool" + ">" * 2000, f"{STATUS}.members[0].type: types nest more than 64 deep"),
    (".headers[0].records", [nested(70)], ".headers[0].records[0]" + ".records[0]" * 64 + ": records nest more than 64 deep"),
    *((STATUS, {"name": "DT_status_struct", "brief": "None.", key: "DT_pressures_struct", "records": [nested(1)]},
       f"{STATUS}.records: is only for what has members") for key in ("alias", "is")),
    (".headers[0].records", [{"name": "Flag", "brief": "None.", "alias": "bool"}, {"name": "DT_status_struct", "brief": "None.", "is": "Flag"}],
     ".headers[0].records[1].is: 'Flag' is an alias, which is not allowed here"),
    (f"{STATUS}.members[0].type", "sequence<", f"{STATUS}.members[0].type: 'sequence<' is no type"),
    (f"{STATUS}.members[0].type", "Reading", f"{STATUS}.members[0].type: the type 'Reading' is unknown"),
    (f"{STATUS}.members[0].type", "DT_pressures_struct<bool>", f"{STATUS}.members[0].type: DT_pressures_struct takes 0 arguments, not 1"),
    (f"{STATUS}.members[0].type", "sequence<DT_status_struct>", f"{STATUS}.members[0].type: the type 'DT_status_struct' is unknown"),
    (PRESSURES, {"name": "DT_pressures_struct", "brief": "None.", "is": "uint8"}, f"{PRESSURES}.is: 'uint8' is no record"),
    (f"{READING}.members", [NUMBER, {**NUMBER, "id": 10}], f"{READING}.members[1].name: 'number' is taken"),
]


def change(model, place, value):
    *way, last = [int(key) if key.isdigit() else key for key in re.findall(r"\w+", place)]
    for key in way:
        model = model[key]
    if value is GONE:
        del model[last]
    else:
        model[last] = value


class GenerateTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(folder.cleanup)
        self.clone = pathlib.Path(folder.name)
        for part in ("scripts", "interfaces/model"):
            shutil.copytree(PROJECT / part, self.clone / part)
        shutil.copy(PROJECT / ".clang-format", self.clone)

    def generate(self, *arguments):
        result = subprocess.run([self.clone / "scripts/generate", *arguments], capture_output=True, text=True, check=False)
        return result.returncode, result.stdout, result.stderr

    def expect_refused(self, text, said):
        (self.clone / "interfaces/model/tyres.json").write_text(text)
        with self.assertRaises(SystemExit) as end:
            GENERATE.main([])
        printed = str(end.exception.code)  # and the exit status is 1
        self.assertTrue(printed.startswith(f"interfaces/model/tyres.json: {said}"), f"{printed}\nis not: {said}")
        self.assertEqual([entry.name for entry in (self.clone / "interfaces").iterdir()], ["model"], "something was written")

    def test_mistakes_in_a_model_are_refused(self):
        GENERATE.ROOT = self.clone  # in this process: a process for each takes its time
        for place, value, said in REFUSED:
            with self.subTest(place=place, value=value):
                model = json.loads(MODEL)
                change(model, place, value)
                self.expect_refused(json.dumps(model), said)
        self.expect_refused(MODEL[:100], ".: no JSON: ")
        self.expect_refused(MODEL.replace("4711", "4" * 5000), ".: no JSON: ")
        self.expect_refused("[" * 100000, ".: is nested too deep")
        self.expect_refused(MODEL.replace('"class"', '"name"'), ".: the key 'name' occurs twice in one object")

    def test_what_is_no_model_is_left_alone_or_named(self):
        (self.clone / "interfaces/model/model.json").write_text(MODEL.replace('"tyres"', '"model"'))
        self.assertIn("model.json: .name: 'model' is no name for an interface", self.generate()[2])
        (self.clone / "interfaces/model/model.json").unlink()
        (self.clone / "interfaces/model/gone.json").symlink_to("nowhere")
        self.assertEqual(self.generate(), (1, "", "interfaces/model/gone.json: .: cannot be read: No such file or directory\n"))
        (self.clone / "interfaces/model/gone.json").rename(self.clone / "interfaces/model/.#psd2.json")
        (self.clone / "interfaces/.psd2.swp").write_bytes(b"b0\xff\n")
        self.assertEqual(self.generate()[::2], (0, ""))

    def test_all_mistaken_models_are_named_at_once(self):
        for name in ("energysystem", "psd2"):
            (self.clone / f"interfaces/model/{name}.json").write_text("{}")
        status, printed, errors = self.generate()
        self.assertEqual((status, printed), (1, ""))
        self.assertEqual([line.split(": ")[0] for line in errors.splitlines()],
                         ["interfaces/model/energysystem.json", "interfaces/model/psd2.json"])

    def test_check_names_what_differs_is_missing_or_is_left_over(self):
        self.assertEqual(self.generate()[0], 0)
        self.assertEqual(self.generate(), (0, "", ""))
        self.assertEqual(self.generate("--check"), (0, "", ""))
        page = self.clone / "docs/interfaces/energysystem.md"
        page.write_text(page.read_text() + "More.\n")
        (self.clone / "interfaces/psd2/psd2_skeleton.cpp").unlink()
        different = "".join(f"{path}: differs from what scripts/generate writes\n"
                            for path in ("docs/interfaces/energysystem.md", "interfaces/psd2/psd2_skeleton.cpp"))
        self.assertEqual(self.generate("--check"), (1, different, ""))
        self.assertTrue(page.read_text().endswith("More.\n"), "--check writes nothing")
        self.generate()
        (self.clone / "interfaces/model/chargetimemanager.json").unlink()
        status, _, errors = self.generate()
        self.assertEqual((status, errors.count("/chargetimemanager"), errors.count(": its model is gone; remove it\n")), (1, 13, 7), errors)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
