"""scripts/demo and scripts/serve with the programs of this build, from a tree of their own.

Arguments: the server, the tool, and the provider library, before those of unittest.
"""

import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[3]
SERVER, TOOL, LIBRARY = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(3))
PATIENCE = 60


class Tree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        shutil.copytree(SOURCE / "scripts", self.tree / "scripts")
        shutil.copytree(SOURCE / "schema", self.tree / "schema")
        (self.tree / "build/bin").mkdir(parents=True)
        (self.tree / "build/lib/providers").mkdir(parents=True)
        self.place("bin/cimserver", SERVER)
        self.place("bin/patchkeeper", TOOL)
        self.place("lib/providers/libSoftwareUpdateProvider.so", LIBRARY)
        self.settings = {key: value for key, value in os.environ.items()
                         if key not in ("QV", "PATCHKEEPER_ROOT") and "proxy" not in key.lower()}

    def place(self, name, target):
        (self.tree / "build" / name).symlink_to(target)

    def replace_by_script(self, name, text):
        file = self.tree / "build" / name
        file.unlink()
        file.write_text(text)
        file.chmod(0o755)

    def start(self, script, *arguments):
        process = subprocess.Popen([self.tree / "scripts" / script, *arguments], cwd="/", text=True,
                                   env=self.settings, start_new_session=True, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(lambda: (process.poll() is None and process.kill(), process.wait(),
                                 process.stdout.close(), process.stderr.close()))
        return process

    def run_script(self, script, *arguments):
        return subprocess.run([self.tree / "scripts" / script, *arguments], cwd="/", text=True,
                              env=self.settings, capture_output=True, timeout=PATIENCE, check=False)

    def left(self):
        return sorted(file.name for file in (self.tree / "build").iterdir())


class Demo(Tree):
    def test_walks_through_and_cleans_up(self):
        done = self.run_script("demo")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(done.stderr, "")
        count = subprocess.run("dpkg-query -W -f='${db:Status-Status}\\n' | grep -c '^installed$'",
                               shell=True, capture_output=True, text=True, check=True).stdout.strip()
        self.assertIn(f"{count} packages; dpkg-query counts {count}\n", done.stdout)
        shown = [line for line in done.stdout.splitlines() if line.startswith("  $ wbemcli ")]
        for method in ("GetProgress", "Warnings", "HasOptionalComponents", "Apply", "Remove", "Cancel"):
            self.assertTrue([command for command in shown if command.endswith(" " + method)], method)
        for said in ("web-fix 1.0 has been taken in", "web-fix 1.0 has been applied",
                     "web-fix 1.0 has been rolled back", "web-fix 1.0 was cancelled",
                     "on the disk: /usr/bin/web-check /usr/lib/web.so", "CIM_ERR_NOT_FOUND"):
            self.assertIn(said, done.stdout)
        self.assertEqual(self.left(), ["bin", "lib"])

    def fails(self, *reasons):
        done = self.run_script("demo")
        self.assertEqual(done.returncode, 1, done.stdout + done.stderr)
        for reason in reasons:
            self.assertIn(reason, done.stderr)
        self.assertEqual(self.left(), ["bin", "lib"])

    def test_fails_when_the_counts_differ(self):
        self.replace_by_script("bin/patchkeeper", f"#!/bin/sh\n[ $# = 0 ] || exec {TOOL} \"$@\"\n"
                               f"{TOOL} | tail -n +2\n")
        self.fails("The demo failed: the CIM client sees")

    def test_fails_when_the_tool_fails(self):
        self.replace_by_script("bin/patchkeeper", f"#!/bin/sh\n[ $# = 0 ] && exit 12\n{TOOL} \"$@\"\n")
        self.fails("The demo failed:", "The software update failed.")

    def test_fails_when_the_server_does_not_start(self):
        self.replace_by_script("bin/cimserver", "#!/bin/sh\necho 'no room' >&2\nexit 1\n")
        self.fails("The demo failed: the CIM server did not start", "no room")

    def test_fails_when_the_server_ends_badly(self):
        self.replace_by_script("bin/cimserver", f"#!/bin/bash\ntrap 'kill $p; wait; exit 3' TERM\n"
                               f"{SERVER} \"$@\" & p=$!\nwait\n")
        self.fails("The demo failed: the CIM server ended with exit code 3")

    def test_fails_when_nothing_is_applied(self):
        self.replace_by_script("bin/patchkeeper", f"#!/bin/sh\n[ \"$1\" = --apply ] && [ $# -gt 2 ] && set -- --status\n"
                               f"exec {TOOL} \"$@\"\n")
        self.fails("The demo failed: the operation ended with: ")

    def test_names_what_is_not_built(self):
        (self.tree / "build/bin/cimserver").unlink()
        done = self.run_script("demo")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, "build/bin/cimserver is missing; 'make build' builds it\n")


class Serve(Tree):
    def greeting(self, process):
        return [process.stdout.readline() for _ in range(7)]

    def test_greets_serves_and_stops(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            process = self.start("serve", "0")
            lines = self.greeting(process)
            url = re.match(r"CIM server at (http://127\.0\.0\.1:\d+), namespace root/cimv2\.", lines[0])
            self.assertTrue(url, lines)
            self.assertIn("let in and may change everything (owcimomd.allow_anonymous", lines[1])
            commands = [line.strip() for line in lines if line.startswith("  wbemcli ")]
            self.assertEqual(len(commands), 3)
            for command in commands:
                self.assertIn(url[1], command)
                done = subprocess.run(command, shell=True, env=self.settings, capture_output=True,
                                      text=True, timeout=PATIENCE, check=False)
                self.assertEqual((done.returncode, done.stderr), (0, ""), command)
                self.assertIn(":ZNX_", done.stdout)
            process.send_signal(number)
            self.assertEqual(process.wait(PATIENCE), 0, number)

    def test_listens_on_the_port_asked_for(self):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        process = self.start("serve", str(port))
        self.assertIn(f":{port},", self.greeting(process)[0])
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 0)

    def test_applies_what_is_due(self):
        calls = self.tree / "build/calls"
        self.replace_by_script("bin/patchkeeper", f"#!/bin/sh\necho \"$@\" >>{calls}\n")
        self.settings["DUE_SECONDS"] = "0.1"
        process = self.start("serve", "0")
        self.greeting(process)
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end and not (calls.exists() and "--run-due\n" in calls.read_text()):
            time.sleep(0.05)
        self.assertIn("--run-due\n", calls.read_text())
        process.terminate()
        process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 0)

    def test_refuses_what_is_no_number_of_seconds(self):
        self.settings["DUE_SECONDS"] = "often"
        done = self.run_script("serve", "0")
        self.assertEqual((done.returncode, done.stderr),
                         (2, "DUE_SECONDS: 'often' is no number of seconds\n"))

    def test_leaves_nobody_who_waits_for_the_next_minute(self):
        process = self.start("serve", "0")
        self.greeting(process)
        process.terminate()
        started = time.monotonic()
        process.communicate(timeout=PATIENCE)  # until nobody holds its output any more
        self.assertLess(time.monotonic() - started, 50)

    def test_says_when_the_port_is_taken(self):
        with socket.socket() as taken:
            taken.bind(("127.0.0.1", 0))
            taken.listen()
            port = taken.getsockname()[1]
            done = self.run_script("serve", str(port))
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(f"127.0.0.1:{port}: Address already in use", done.stderr)
        self.assertIn(f"make serve PORT={port + 1}", done.stderr)

    def test_refuses_what_is_no_port(self):
        for port in ("x", "65536", "-1", "80a"):
            self.assertEqual(self.run_script("serve", port).returncode, 2, port)


if __name__ == "__main__":
    unittest.main()
