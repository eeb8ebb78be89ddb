"""The script that registers the classes: with a compiler that records how it was called, and with cimserver.

Argument, before those of unittest: the server of this build.
"""

import os
import pathlib
import re
import shutil
import stat
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SERVER = pathlib.Path(sys.argv.pop(1)).resolve()
SCRIPT = SOURCE / "packaging/register-software-update-provider"
MOF = str(SOURCE / "schema/ZNX.mof")
QUALIFIERS = str(SOURCE / "schema/qualifiers.mof")


class Registration(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.calls = self.folder / "calls"

    def run_script(self, *words, script=SCRIPT, **variables):
        return subprocess.run([str(word) for word in (script, *words)], capture_output=True, text=True, check=False,
                              env={**os.environ, **variables})

    def succeeds(self, *words, **rest):
        done = self.run_script(*words, **rest)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout


class WithACompiler(Registration):
    def compiler(self, exit_code=0):
        """A compiler that writes a line of its words, each in brackets, for every call."""
        program = self.folder / "the compiler"
        program.write_text(f'#!/bin/sh\nfor word; do printf "[%s]" "$word"; done >>{self.calls}\n'
                           f'echo >>{self.calls}\nexit {exit_code}\n')
        program.chmod(0o755)
        return program

    def recorded(self):
        return self.calls.read_text().splitlines() if self.calls.exists() else []

    def test_load_compiles_the_classes(self):
        self.succeeds("--compiler", self.compiler(), "load")
        self.assertEqual(self.recorded(), [f"[-n][root/cimv2][{MOF}]"])

    def test_every_option_reaches_the_compiler(self):
        self.succeeds("--qualifiers", "--namespace", "root/other", "--repository", "/a b", "--compiler-option", "-v",
                      "load", MOF_COMPILER=str(self.compiler()))
        common = "[-n][root/other][-d][/a b][-v]"
        self.assertEqual(self.recorded(), [f"{common}[{QUALIFIERS}]", f"{common}[{MOF}]"])

    def test_reload_removes_first(self):
        self.succeeds("--compiler", self.compiler(), "reload")
        self.assertEqual(self.recorded(), [f"[-n][root/cimv2][-r][{MOF}]", f"[-n][root/cimv2][{MOF}]"])

    def test_remove_leaves_the_qualifiers(self):
        self.succeeds("--compiler", self.compiler(), "--qualifiers", "--remove-option", "--gone", "remove")
        self.assertEqual(self.recorded(), [f"[-n][root/cimv2][--gone][{MOF}]"])

    def test_dry_run_prints_the_command_and_does_nothing(self):
        for action in ("load", "reload", "remove"):
            printed = self.succeeds("--compiler", self.compiler(), "--dry-run", action)
            self.assertIn(f" -n root/cimv2 {'-r ' if action != 'load' else ''}{MOF}\n", printed)
        self.assertEqual(self.recorded(), [])

    def test_a_failing_compiler_ends_it(self):
        done = self.run_script("--compiler", self.compiler(3), "reload")
        self.assertEqual(done.returncode, 1)
        self.assertIn("ended with 3", done.stderr)
        self.assertEqual(len(self.recorded()), 1)

    def test_a_missing_compiler_is_told(self):
        self.assertEqual(self.run_script("--compiler", self.folder / "none", "load").returncode, 1)

    def test_list_names_every_class_and_its_provider(self):
        declared = re.findall(r"^class (\w+)", pathlib.Path(MOF).read_text(), re.MULTILINE)
        listed = [line.split("\t") for line in self.succeeds("list").splitlines()]
        self.assertEqual(listed, [[name, "c++::SoftwareUpdateProvider"] for name in declared])
        self.assertEqual(len(listed), 9)

    def test_mistakes_on_the_command_line(self):
        for words in ([], ["--nonsense", "load"], ["load", "remove"], ["load", "--mof"]):
            self.assertEqual(self.run_script(*words).returncode, 2, words)

    def test_missing_mof(self):
        self.assertEqual(self.run_script("--mof", self.folder / "none.mof", "list").returncode, 1)

    def test_help_and_manual_page_name_the_same_options(self):
        told = self.succeeds("--help")
        self.assertIn("load|reload|list|remove", told)
        page = (SOURCE / "packaging/man/register-software-update-provider.8").read_text().replace("\\-", "-")
        described = re.findall(r"^\.It Fl (-[a-z-]+)", page, re.MULTILINE)
        self.assertEqual(sorted(set(re.findall(r"^  (--[a-z-]+)", told, re.MULTILINE))), sorted(f"-{name}" for name in described))


class WithCimserver(Registration):
    ACCESS = "owcimomd.allow_anonymous = true\n"

    def setUp(self):
        super().setUp()
        self.config = self.folder / "cimserver.conf"
        self.config.write_text(self.ACCESS)

    def is_well(self):
        done = subprocess.run([SERVER, "--config", self.config, "--check-config"], capture_output=True, text=True,
                              check=False)
        return done.returncode == 0

    def test_the_server_takes_what_load_writes(self):
        self.assertFalse(self.is_well())
        self.succeeds("--cimserver", self.config, "load")
        self.assertTrue(self.is_well())
        self.assertIn("ZNX_SoftwareIdentity\t", self.succeeds("--cimserver", self.config, "list"))

    def test_loading_twice_is_loading_once(self):
        self.succeeds("--cimserver", self.config, "load")
        once = self.config.read_text()
        self.succeeds("--cimserver", self.config, "load")
        self.succeeds("--cimserver", self.config, "reload")
        self.assertEqual(self.config.read_text(), once)

    def test_remove_leaves_the_other_lines_and_the_mode(self):
        self.config.chmod(0o640)
        self.succeeds("--cimserver", self.config, "load")
        self.assertNotEqual(self.config.read_text(), self.ACCESS)
        self.succeeds("--cimserver", self.config, "remove")
        self.assertEqual(self.config.read_text(), self.ACCESS)
        self.assertEqual(stat.S_IMODE(self.config.stat().st_mode), 0o640)
        self.assertEqual(self.run_script("--cimserver", self.config, "list").returncode, 1)

    def test_dry_run_prints_the_file_as_it_would_be(self):
        printed = self.succeeds("--cimserver", self.config, "--dry-run", "load")
        self.assertEqual(self.config.read_text(), self.ACCESS)
        self.succeeds("--cimserver", self.config, "load")
        self.assertEqual(self.config.read_text(), printed)

    def test_a_line_of_ones_own_is_not_overruled(self):
        text = self.ACCESS + "cimserver.mof_files = /else/where.mof\n"
        self.config.write_text(text)
        done = self.run_script("--cimserver", self.config, "load")
        self.assertEqual(done.returncode, 1)
        self.assertIn("cimserver.mof_files", done.stderr)
        self.assertEqual(self.config.read_text(), text)

    def test_a_line_of_ones_own_that_names_the_classes_is_enough(self):
        text = f"{self.ACCESS}cimserver.mof_files = {QUALIFIERS}:{MOF}\n"
        self.config.write_text(text)
        self.assertIn("already", self.succeeds("--cimserver", self.config, "load"))
        self.assertEqual(self.config.read_text(), text)

    def test_a_damaged_block_is_left_alone(self):
        text = "a = 1\n# software-update-provider: begin\nb = 2\nc = 3\n"
        self.config.write_text(text)
        for action in ("load", "reload", "remove", "list"):
            self.assertEqual(self.run_script("--cimserver", self.config, action).returncode, 1)
            self.assertEqual(self.config.read_text(), text)

    def test_a_last_line_without_end_stays_a_line(self):
        self.config.write_text("a = 1")
        self.succeeds("--cimserver", self.config, "load")
        self.assertEqual(self.config.read_text().splitlines()[0], "a = 1")
        self.succeeds("--cimserver", self.config, "remove")
        self.assertEqual(self.config.read_text(), "a = 1\n")

    def test_remove_says_when_the_classes_stay(self):
        text = f"cimserver.mof_files = {QUALIFIERS}:{MOF}\n"
        self.config.write_text(text)
        self.assertEqual(self.run_script("--cimserver", self.config, "remove").returncode, 1)
        self.assertEqual(self.config.read_text(), text)

    def test_only_the_first_line_and_the_whole_name_count(self):
        for text in (f"cimserver.mof_files = {MOF}.old\n", f"cimserver.mof_files = /x.mof\ncimserver.mof_files = {MOF}\n"):
            self.config.write_text(text)
            self.assertEqual(self.run_script("--cimserver", self.config, "list").returncode, 1)

    def test_a_link_to_the_configuration_stays_one(self):
        self.config.write_text("a = 1\n")
        link = self.folder / "link"
        link.symlink_to(self.config)
        self.succeeds("--cimserver", link, "load")
        self.assertTrue(link.is_symlink())
        self.assertIn("mof_files", self.config.read_text())

    def test_qualifiers_have_to_be_there(self):
        alone = self.folder / "ZNX.mof"
        shutil.copy(MOF, alone)
        done = self.run_script("--mof", alone, "--cimserver", self.config, "load")
        self.assertEqual(done.returncode, 1)
        self.assertIn("qualifiers.mof", done.stderr)

    def test_a_file_that_is_not_there_is_made(self):
        self.config.unlink()
        self.succeeds("--cimserver", self.config, "load")
        self.assertIn("cimserver.mof_files", self.config.read_text())

    def test_an_installation_names_its_own_files(self):
        root = self.folder / "opt"
        for folder in ("sbin", "share/software-update-provider", "lib/openwbem/c++providers"):
            (root / folder).mkdir(parents=True)
        script = shutil.copy(SCRIPT, root / "sbin")
        for file in (MOF, QUALIFIERS):
            shutil.copy(file, root / "share/software-update-provider")
        (root / "lib/openwbem/c++providers/libSoftwareUpdateProvider.so").touch()
        self.succeeds("--cimserver", self.config, "load", script=script)
        text = self.config.read_text()
        self.assertIn(f":{root}/share/software-update-provider/ZNX.mof\n", text)
        self.assertIn(f"cppprovifc.prov_location = {root}/lib/openwbem/c++providers\n", text)
        self.assertTrue(self.is_well())


if __name__ == "__main__":
    unittest.main()
