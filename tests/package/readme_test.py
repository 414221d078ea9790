"""What README and guide show is what there is, and does what they say: readme_test.py PROJECT BUILD"""

import contextlib
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import tempfile
import unittest

PROJECT, BUILD = (pathlib.Path(argument).absolute() for argument in sys.argv[1:3])
DEADLINE = 120  # seconds, for all commands of a document: the guide's compile an application


def blocks(document, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", (PROJECT / document).read_text(), re.MULTILINE | re.DOTALL)


class ReadmeTest(unittest.TestCase):
    def setUp(self):
        # A clone of its own, with a home and a discovery: the commands use the default instance.
        clone = tempfile.TemporaryDirectory()  # pylint: disable=consider-using-with
        self.addCleanup(clone.cleanup)
        self.clone = pathlib.Path(clone.name)
        (self.clone / "build").mkdir()
        (self.clone / "build/release").symlink_to(BUILD)
        for folder in ("examples", "tests"):
            (self.clone / folder).symlink_to(PROJECT / folder)
        port = random.randrange(31000, 32000)
        (self.clone / "stack.json").write_text(json.dumps(
            {"network": f"readme{port}", "service-discovery": {"port": port}, "logging": {"level": "warning"}}))

    def run_commands(self, commands):
        """What each prints, in one shell, as a reader types them. Commands in the background print to nowhere."""
        mark = "the next command"
        script = ["set -e"]
        for command in commands:
            script += [f"{{ {command} }} >/dev/null 2>&1" if command.endswith("&") else command, f"echo '{mark}'"]
        environment = {**os.environ, "HOME": str(self.clone), "PATH": f"{BUILD}/bin:{os.environ['PATH']}",
                       "VSOMEIP_CONFIGURATION": str(self.clone / "stack.json")}
        with subprocess.Popen(["bash", "-c", "\n".join(script)], cwd=self.clone, env=environment, text=True,
                              start_new_session=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE) as shell:
            try:
                output, errors = shell.communicate(timeout=DEADLINE)
            finally:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(shell.pid, signal.SIGTERM)  # what still runs in the background
        outputs = output.split(mark + "\n")[:-1]
        self.assertEqual(len(outputs), len(commands), f"{commands[len(outputs):][:1]} failed: {errors}")
        return outputs

    def check_document(self, document, *others):
        """Every command succeeds, and prints what is shown, where something is shown."""
        steps = [step for block in blocks(document, "console")
                 for step in re.findall(r"^\$ (.*)\n((?:[^$\n].*\n)*)", block, re.MULTILINE)]
        self.assertGreater(len(steps), 3)
        outputs = self.run_commands([command for command, _ in steps] + [*others])
        for (command, shown), printed in zip(steps, outputs):
            self.assertEqual(printed if shown else shown, shown, command)
        return outputs[len(steps):]

    def test_readme(self):
        self.assertEqual(blocks("README.md", "cpp"), [(PROJECT / "examples/readme_example.cpp").read_text()])
        lists = PROJECT / "tests/package/consumer/CMakeLists.txt"
        self.assertEqual(blocks("README.md", "cmake"), [lists.read_text()])
        self.assertEqual(self.check_document("README.md", "readme_example"), ["instance 1: 42\n"])

    def test_guide(self):
        self.check_document("docs/guide.md")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
