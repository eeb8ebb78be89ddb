"""scripts/require-packages with a package manager that only plays one."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[3] / "scripts/require-packages"

DPKG_QUERY = """#!/bin/sh
echo query >> "$RECORD"
for name in "$@"; do
    case $name in
    -*) ;;
    gone) echo "not-installed gone" ;;
    *) grep -qx "$name" "$HAVE" && echo "installed $name" || status=1 ;;
    esac
done
exit $status
"""

APT_GET = """#!/bin/sh
echo "apt-get $* [$DEBIAN_FRONTEND]" >> "$RECORD"
[ "$1" = update ] && { touch "$HAVE.updated"; exit 0; }
[ -e "$HAVE.stale" ] && ! [ -e "$HAVE.updated" ] && { echo "E: not found" ; exit 100; }
[ -e "$HAVE.broken" ] && { echo "E: disk full"; exit 100; }
exit 0
"""


class RequirePackages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        (self.tree / "scripts").mkdir()
        shutil.copy(SCRIPT, self.tree / "scripts")
        (self.tree / "scripts/packages.txt").write_text(
            "# a comment\nbuild: one two\nrun: three one\nleft: gone\n")
        self.have("one", "two", "three")
        self.program("dpkg-query", DPKG_QUERY)
        self.program("apt-get", APT_GET)
        self.program("id", "#!/bin/sh\necho 0\n")
        self.program("sudo", "#!/bin/sh\nexit 1\n")

    def have(self, *packages):
        (self.tree / "have").write_text("".join(f"{name}\n" for name in packages))

    def program(self, name, text):
        (self.tree / "bin").mkdir(exist_ok=True)
        file = self.tree / "bin" / name
        file.write_text(text)
        file.chmod(0o755)

    def run_script(self, *sets):
        record = self.tree / "record"
        record.write_text("")
        settings = {**os.environ, "PATH": f"{self.tree}/bin:{os.environ['PATH']}",
                    "HAVE": str(self.tree / "have"), "RECORD": str(record)}
        settings.pop("DEBIAN_FRONTEND", None)
        done = subprocess.run([self.tree / "scripts/require-packages", *sets], env=settings,
                              capture_output=True, text=True, check=False, timeout=30)
        self.calls = record.read_text().splitlines()
        return done

    def test_silent_and_one_query_when_nothing_is_missing(self):
        done = self.run_script("build", "run")
        self.assertEqual((done.stdout, done.stderr, done.returncode), ("", "", 0))
        self.assertEqual(self.calls, ["query"])

    def test_root_installs_just_what_is_missing(self):
        self.have("one")
        done = self.run_script("build", "run")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout, "Installing two three\n")
        self.assertEqual(self.calls, ["query", "apt-get install --yes --no-install-recommends "
                                      "two three [noninteractive]"])

    def test_removed_package_counts_as_missing(self):
        self.run_script("left")
        self.assertIn("apt-get install --yes --no-install-recommends gone [noninteractive]",
                      self.calls)

    def test_package_of_two_sets_is_named_once(self):
        self.have("two", "three")
        self.assertEqual(self.run_script("build", "run").stdout, "Installing one\n")

    def test_lists_are_fetched_when_it_does_not_work_without(self):
        self.have()
        (self.tree / "have.stale").touch()
        done = self.run_script("build")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual([call.split()[1] for call in self.calls[1:]], ["install", "update", "install"])

    def test_failing_installation_tells_why(self):
        self.have()
        (self.tree / "have.broken").touch()
        done = self.run_script("build")
        self.assertEqual(done.returncode, 1)
        self.assertIn("disk full", done.stderr)
        self.assertIn("apt-get install --yes --no-install-recommends one two", done.stderr)

    def test_ordinary_user_goes_through_sudo_that_does_not_ask(self):
        self.have()
        self.program("id", "#!/bin/sh\necho 1000\n")
        self.program("sudo", "#!/bin/sh\necho \"sudo $*\" >> \"$RECORD\"\nshift\nexec \"$@\"\n")
        done = self.run_script("build")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.calls[1:], [
            "sudo -n true",
            "sudo -n env DEBIAN_FRONTEND=noninteractive apt-get install --yes "
            "--no-install-recommends one two",
            "apt-get install --yes --no-install-recommends one two [noninteractive]"])

    def test_without_root_and_sudo_it_prints_the_one_line(self):
        self.have("two")
        self.program("id", "#!/bin/sh\necho 1000\n")
        done = self.run_script("build", "run")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, "")
        self.assertEqual(done.stderr.splitlines()[-1],
                         "sudo apt-get install --yes --no-install-recommends one three")
        self.assertEqual(self.calls, ["query"])

    def test_unknown_set_is_refused(self):
        self.assertEqual(self.run_script("nonsense").returncode, 2)
        self.assertEqual(self.run_script().returncode, 2)


if __name__ == "__main__":
    unittest.main()
