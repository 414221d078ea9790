"""docs/adding-an-interface.md leads to a service that can be offered and read: added_interface_test.py PROJECT BUILD"""

import json
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT, BUILD = (pathlib.Path(argument).absolute() for argument in sys.argv[1:3])
GUIDE = (PROJECT / "docs/adding-an-interface.md").read_text()
DEADLINE = 200  # seconds, for each command: one compiles


def blocks(text, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.MULTILINE | re.DOTALL)


def run(*command, cwd):
    return subprocess.run(command, cwd=cwd, check=True, stdout=subprocess.PIPE, text=True, timeout=DEADLINE).stdout


class AddedInterfaceTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(folder.cleanup)
        self.work = pathlib.Path(folder.name)

    def side(self, name, model):
        """A clone with this one model, in which the guide's commands have been run. Yields what they print."""
        clone = self.work / name
        (clone / "interfaces/model").mkdir(parents=True)
        shutil.copytree(PROJECT / "scripts", clone / "scripts")
        shutil.copy(PROJECT / ".clang-format", clone)
        shutil.copy(PROJECT / "interfaces/model/interface.schema.json", clone / "interfaces/model")
        (clone / f"interfaces/model/{model['name']}.json").write_text(json.dumps(model))
        printed = [run("bash", "-c", command, cwd=clone) for command in re.findall(r"^\$ (.*)$", GUIDE, re.MULTILINE)]
        program, = blocks((clone / f"docs/interfaces/{model['name']}.md").read_text(), "cpp")
        (clone / "main.cpp").write_text(program)
        return printed

    def test_generated_built_offered_and_read(self):
        source, = blocks(GUIDE, "json")
        model = json.loads(source)
        shown = re.findall(r"^\$ .*\n((?:[^$`\n].*\n)*)", GUIDE, re.MULTILINE)
        self.assertEqual(self.side("offer", model), shown)
        model["role"] = "consumed"
        del model["checkOrder"]
        self.side("read", model)

        run("cmake", "--install", BUILD, "--prefix", self.work / "installed", cwd=self.work)
        shutil.copy(PROJECT / "tests/package/added_interface/CMakeLists.txt", self.work)
        run("cmake", "-G", "Ninja", "-S", ".", "-B", "build", f"-DPROJECT={PROJECT}",
            f"-Dtarn7_ROOT={self.work / 'installed'}", cwd=self.work)
        run("cmake", "--build", "build", cwd=self.work)

        port = random.randrange(31000, 32000)
        configuration = self.work / "stack.json"
        configuration.write_text(json.dumps(
            {"network": f"added{port}", "service-discovery": {"port": port}, "logging": {"level": "warning"}}))
        os.environ["VSOMEIP_CONFIGURATION"] = str(configuration)
        with subprocess.Popen([self.work / "build/offer"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as offer:
            try:
                # vsomeip3 writes its log here as well.
                self.assertIn("offered\n", iter(offer.stdout.readline, ""))
                self.assertIn("instance 1: 1 record(s)\n", run(self.work / "build/read", cwd=self.work))
            finally:
                offer.communicate("\n", timeout=DEADLINE)
        self.assertEqual(offer.returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
