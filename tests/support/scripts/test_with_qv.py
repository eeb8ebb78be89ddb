"""The launcher scripts/with-qv: what a command sees and what its caller gets back.

Nothing here changes the machine: the tests of QV=host run in a throw-away root of their own.
"""

import os
import pathlib
import pty
import select
import shutil
import signal
import subprocess
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[3]
LAUNCHER = str(TREE / "scripts/with-qv")
TOOL = "/usr/bin/echo"
PATIENCE = 30


def launch(*command, tool=TOOL, env=None, **options):
    settings = {key: value for key, value in os.environ.items() if not key.startswith("QV")}
    settings.update(env or {})
    options = {"timeout": PATIENCE, "capture_output": True, "text": True, **options}
    return subprocess.run([LAUNCHER, tool, *command], env=settings, check=False, **options)


def start(script, **options):
    return subprocess.Popen([LAUNCHER, TOOL, "bash", "-c", script], stdout=subprocess.PIPE,
                            text=True, **options)


def defaults():
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT, signal.SIGTERM):
        signal.signal(number, signal.SIG_DFL)


class Command(unittest.TestCase):
    def test_finds_the_tool_at_its_place(self):
        self.assertEqual(launch("/qv/bin/patchkeeper", "a  b", "", "-n").stdout, "a  b  -n\n")

    def test_gets_its_standard_input(self):
        self.assertEqual(launch("cat", input="text").stdout, "text")

    def test_gives_its_exit_code(self):
        for code in (0, 1, 7, 125, 255):
            self.assertEqual(launch("sh", "-c", f"exit {code}").returncode, code)

    def test_killed_by_a_signal_gives_128_and_its_number(self):
        self.assertEqual(launch("sh", "-c", "kill -9 $$").returncode, 128 + 9)

    def test_stays_who_and_where_it_was(self):
        with tempfile.TemporaryDirectory() as folder:
            seen = launch("sh", "-c", "id -u; pwd -P", cwd=folder).stdout
            self.assertEqual(seen, f"{os.getuid()}\n{os.path.realpath(folder)}\n")

    def test_inherits_no_descriptor_of_the_launcher(self):
        seen = launch("sh", "-c", "ls /proc/$$/fd").stdout.split()
        self.assertEqual(sorted(seen, key=int)[:3], ["0", "1", "2"])
        bare = subprocess.run(["sh", "-c", "ls /proc/$$/fd"], capture_output=True, text=True,
                              check=True).stdout.split()
        self.assertEqual(seen, bare)

    def test_has_default_signals_and_keeps_those_that_the_caller_ignores(self):
        script = ("sh", "-c", "grep -E '^Sig(Ign|Blk)' /proc/self/status")

        def ignoring_hangups():
            defaults()
            signal.signal(signal.SIGHUP, signal.SIG_IGN)

        for caller in (defaults, ignoring_hangups):
            # Whoever started the tests may ignore signals that are no business of the launcher.
            bare = subprocess.run(script, preexec_fn=caller, capture_output=True, text=True,
                                  check=True).stdout
            self.assertEqual(launch(*script, preexec_fn=caller).stdout, bare)
            ignored = int(bare.split()[3], 16)
            self.assertEqual(ignored & 1 << (signal.SIGHUP - 1),
                             1 << (signal.SIGHUP - 1) if caller is ignoring_hangups else 0)
            self.assertFalse(ignored & 1 << (signal.SIGQUIT - 1))

    def test_can_be_launched_inside_another_launch(self):
        inner = launch(LAUNCHER, "/usr/bin/printf", "/qv/bin/patchkeeper", "%s", "inner")
        self.assertEqual((inner.stdout, inner.returncode), ("inner", 0))


class Folders(unittest.TestCase):
    def writes(self, folder, **options):
        probe = f"{folder}/with-qv-probe-{os.getpid()}"
        return launch("sh", "-c", f"touch '{probe}' && rm '{probe}'", **options).returncode == 0

    def test_the_machine_is_read_only(self):
        for folder in ("/", "/usr/bin", "/etc", "/var/lib"):
            self.assertFalse(self.writes(folder, cwd="/"), folder)

    def test_what_must_be_writable_is(self):
        with tempfile.TemporaryDirectory(dir="/var/tmp") as folder:
            self.assertFalse(self.writes(folder, cwd="/"))
            self.assertTrue(self.writes("/tmp", cwd="/"))
            self.assertTrue(self.writes("/dev/shm", cwd="/"))
            self.assertTrue(self.writes("/qv/bin", cwd="/"))
            self.assertTrue(self.writes(folder, cwd=folder))
            self.assertTrue(self.writes(folder, cwd="/", env={"QV_WRITABLE": f"/none:{folder}"}))
            self.assertTrue(self.writes(folder, cwd="/", env={"TMPDIR": folder}))

    def test_the_machine_has_no_qv_afterwards(self):
        before = os.path.lexists("/qv")
        launch("touch", "/qv/bin/more")
        self.assertEqual(os.path.lexists("/qv"), before)


class Signals(unittest.TestCase):
    def test_reach_the_command_which_ends_in_its_own_way(self):
        for name in ("HUP", "INT", "QUIT", "TERM", "USR1", "USR2"):
            with start(f"trap 'exit 42' {name}; echo ready; while :; do sleep 0.02; done",
                       start_new_session=True, preexec_fn=defaults) as process:
                self.assertEqual(process.stdout.readline(), "ready\n")
                process.send_signal(getattr(signal, "SIG" + name))
                self.assertEqual(process.wait(PATIENCE), 42, name)

    def test_of_the_terminal_reach_it_once(self):
        pid, terminal = pty.fork()
        if pid == 0:
            defaults()
            os.execv(LAUNCHER, [LAUNCHER, TOOL, "bash", "-c",
                                "trap 'echo got' INT; trap 'exit 7' TERM; echo ready; "
                                "while :; do sleep 0.02; done"])
        seen = self.read_until(terminal, "ready")
        os.write(terminal, b"\x03")
        seen = self.read_until(terminal, "got")
        os.kill(pid, signal.SIGTERM)
        seen += self.read_until(terminal, None)
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]), 7)
        self.assertEqual(seen.count("got"), 1, seen)
        os.close(terminal)

    def read_until(self, terminal, text):
        seen = ""
        while text is None or text not in seen:
            ready, _, _ = select.select([terminal], [], [], PATIENCE)
            self.assertTrue(ready, f"no {text} in {seen!r}")
            try:
                piece = os.read(terminal, 1000).decode()
            except OSError: # the other side is closed
                break
            if not piece:
                break
            seen += piece
        return seen

    def test_command_dies_with_a_killed_launcher(self):
        with start("echo ready; exec sleep 60") as process:
            self.assertEqual(process.stdout.readline(), "ready\n")
            process.kill()
            ready, _, _ = select.select([process.stdout], [], [], PATIENCE)
            self.assertTrue(ready) # end of file: nobody holds the pipe any more
            self.assertEqual(process.stdout.read(), "")


class Refusals(unittest.TestCase):
    def refused(self, result, *words):
        self.assertEqual(result.returncode, 125, result.stderr)
        for word in words:
            self.assertIn(word, result.stderr)

    def test_without_command_or_tool(self):
        self.refused(launch(), "usage")
        self.refused(launch("true", tool="/no/tool"), "/no/tool")

    def test_of_an_unknown_kind(self):
        self.refused(launch("true", env={"QV": "other"}), "other")

    def test_where_no_root_can_be_made_name_the_reason(self):
        with tempfile.TemporaryDirectory() as folder:
            fake = pathlib.Path(folder, "bwrap")
            fake.write_text("#!/bin/sh\necho 'bwrap: not allowed here' >&2\nexit 1\n")
            fake.chmod(0o755)
            result = launch("true", env={"PATH": f"{folder}:{os.environ['PATH']}"})
        self.refused(result, "no private root can be made here", "not allowed here")
        self.assertEqual("QV=host" in result.stderr, os.getuid() == 0)


def on_a_machine_of_its_own(script):
    """Runs a script as root of a throw-away root file system in which / can be written."""
    arguments = ["bwrap", "--unshare-user", "--uid", "0", "--gid", "0", "--die-with-parent",
                 "--tmpfs", "/"]
    for entry in sorted(os.scandir("/"), key=lambda entry: entry.name):
        if entry.name in ("qv", "dev", "proc", "tmp"):
            continue
        if entry.is_symlink():
            arguments += ["--symlink", os.readlink(entry.path), entry.path]
        else:
            arguments += ["--ro-bind", entry.path, entry.path]
    arguments += ["--dev-bind", "/dev", "/dev", "--bind", "/proc", "/proc", "--bind", "/tmp",
                  "/tmp", "--setenv", "QV", "host", "--unsetenv", "QV_HOST_TOOL", "--"]
    return subprocess.run([*arguments, "bash", "-c", script], capture_output=True, text=True,
                          check=False, timeout=PATIENCE)


class Host(unittest.TestCase):
    def test_makes_the_link_and_removes_it(self):
        done = on_a_machine_of_its_own(
            f"{LAUNCHER} {TOOL} bash -c 'readlink /qv/bin/patchkeeper; /qv/bin/patchkeeper hi; exit 9'"
            "; echo $?; ls -d /qv")
        self.assertEqual(done.stdout, f"{TOOL}\nhi\n9\n", done.stderr)

    def test_removes_it_after_a_signal(self):
        done = on_a_machine_of_its_own(
            f"mkfifo /p; {LAUNCHER} {TOOL} bash -c 'trap \"exit 3\" TERM; echo >/p; "
            "while :; do sleep 0.02; done' & read </p; kill $!; wait $!; echo $?; ls -d /qv")
        self.assertEqual(done.stdout, "3\n", done.stderr)

    def test_leaves_alone_what_stands_there(self):
        done = on_a_machine_of_its_own(
            f"mkdir /qv && echo mine >/qv/file; {LAUNCHER} {TOOL} true; echo $?; cat /qv/file; ls /qv")
        self.assertEqual(done.stdout, "125\nmine\nfile\n")
        self.assertIn("something stands at /qv", done.stderr)

    def test_works_inside_itself_with_the_same_tool_only(self):
        done = on_a_machine_of_its_own(
            f"{LAUNCHER} {TOOL} bash -c '{LAUNCHER} {TOOL} /qv/bin/patchkeeper inner; "
            f"{LAUNCHER} /usr/bin/printf true; echo $?'; ls -d /qv")
        self.assertEqual(done.stdout, "inner\n125\n", done.stderr)

    def test_runs_beside_each_other_wait(self):
        done = on_a_machine_of_its_own(
            f"for i in 1 2 3; do {LAUNCHER} {TOOL} sh -c 'sleep 0.1; /qv/bin/patchkeeper ok' & done;"
            " wait; ls -d /qv")
        self.assertEqual(done.stdout, "ok\nok\nok\n", done.stderr)

    def test_needs_root(self):
        other = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
        with tempfile.TemporaryDirectory() as folder:
            os.chmod(folder, 0o755)
            copy = shutil.copy(LAUNCHER, folder) # the tree may be closed to others
            done = subprocess.run([*(other if os.getuid() == 0 else []), "env", "QV=host", copy, TOOL,
                                   "true"], capture_output=True, text=True, check=False, cwd="/")
        self.assertEqual(done.returncode, 125)
        self.assertIn("needs root", done.stderr)


if __name__ == "__main__":
    unittest.main()
