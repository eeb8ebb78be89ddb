"""The systemd units: systemd takes them without a word, and they keep the services confined.

Arguments, before those of unittest: the server and the tool of this build.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

UNITS = pathlib.Path(__file__).resolve().parents[2] / "packaging/systemd"
PROGRAMS = {pathlib.Path(name).name: pathlib.Path(name).resolve() for name in (sys.argv.pop(1), sys.argv.pop(1))}
MOST_EXPOSED = 3.0


def analyze(*words):
    return subprocess.run(["systemd-analyze", *(str(word) for word in words)], capture_output=True, text=True,
                          check=False)


class Units(unittest.TestCase):
    def setUp(self):
        """The units as they are installed, but with the programs of this build."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for unit in UNITS.iterdir():
            text = re.sub(r"^ExecStart=\S*/(\w+)", lambda match: f"ExecStart={PROGRAMS[match.group(1)]}",
                          unit.read_text(), flags=re.MULTILINE)
            self.unit(unit.name.removesuffix(".in")).write_text(text)

    def unit(self, name):
        return self.folder / name

    def verify(self):
        return analyze("verify", "--man=no", "--recursive-errors=no", *sorted(self.folder.iterdir()))

    def test_systemd_finds_nothing_to_say(self):
        self.assertEqual(len(list(self.folder.iterdir())), 4)
        done = self.verify()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def test_systemd_would_say_it(self):
        service = self.unit("cimserver.service")
        service.write_text(service.read_text() + "[Service]\nMemoryMost=1G\n")
        self.assertIn("MemoryMost", self.verify().stderr)

    def exposure(self, name):
        done = analyze("security", "--offline=yes", "--no-pager", self.unit(name))
        return float(re.search(r"Overall exposure level for \S+: ([\d.]+)", done.stdout).group(1))

    def test_services_are_confined(self):
        for name in ("cimserver.service", "patchkeeper-due.service"):
            self.assertLess(self.exposure(name), MOST_EXPOSED, name)

    def test_a_service_without_walls_would_be_noticed(self):
        service = self.unit("cimserver.service")
        service.write_text(re.sub(r"^(Protect|Private|Restrict|SystemCall|NoNew|Capability)\w+=.*\n", "",
                                  service.read_text(), flags=re.MULTILINE))
        self.assertGreater(self.exposure("cimserver.service"), MOST_EXPOSED)

    def test_nothing_runs_as_root_and_a_running_tool_outlives_a_restart(self):
        for name in ("cimserver.service", "patchkeeper-due.service"):
            self.assertIn("\nUser=cimserver\n", self.unit(name).read_text())
        self.assertIn("\nKillMode=process\n", self.unit("cimserver.service").read_text())


if __name__ == "__main__":
    unittest.main()
