"""Every block marked `console` in README.md, CONTRIBUTING.md and docs/ runs as it stands, by the rules of the second.

Arguments, before those of unittest: the folders of this build's programs and libraries.
"""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS, LIBRARIES = (pathlib.Path(sys.argv.pop(1)).resolve() for _ in range(2))
LONGEST = 100 # seconds that a page may take on a busy machine

# What no test runs, by its first line, and why it cannot be a console block.
NOT_RUN = {
    "make demo    # installs what is missing, builds, shows the whole life of an update with a real CIM client":
        "installs packages, which needs root, and builds",
    "apt install ./cimserver_*.deb ./software-update-provider_*.deb ./patchkeeper_*.deb":
        "installs packages, which needs root; make packages-test does it in a clean tree",
    "make serve                   # the stand-in tool in its place, http://127.0.0.1:5988, until Ctrl-C":
        "stays until Ctrl-C; the console blocks run while it does",
    "ps -o pid,etime,args --ppid $(pidof cimserver)      # PID  ELAPSED  /qv/bin/patchkeeper …":
        "ends a process of the reader's choice",
}
# Blocks that are nothing to be typed.
TEXTS = ("text", "mof", "json", "cpp", "cmake", "ini")


class Block:
    def __init__(self, page, line, mark, lines):
        self.page, self.line, self.mark, self.lines = page, line, mark, lines

    @property
    def place(self):
        return f"{self.page}:{self.line}"

    def steps(self):
        """Pairs of a command and the lines of output that the block shows for it."""
        steps = []
        for line in self.lines:
            if line.startswith("$ "):
                steps.append(([line[2:]], []))
            elif not steps:
                raise ValueError(f"{self.place}: the block does not begin with a command")
            elif line.startswith("> ") and not steps[-1][1]:
                steps[-1][0].append(line[2:])
            else:
                steps[-1][1].append(line)
        return [("\n".join(command), shown) for command, shown in steps]


def pages():
    return [SOURCE / "README.md", SOURCE / "CONTRIBUTING.md", *sorted((SOURCE / "docs").rglob("*.md"))]


def blocks_of(text, page):
    found, block = [], None
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith("```"):
            if block is None:
                block = Block(page, number, line[3:], [])
            else:
                found.append(block)
                block = None
        elif block is not None:
            block.lines.append(line)
    return found


def blocks(page):
    return blocks_of(page.read_text(encoding="utf-8"), page.relative_to(SOURCE))


def matches(shown, printed):
    """`...` on a line of its own stands for any lines, `…` for any text within one."""
    pattern = "".join("(?:.*\n)*?" if line == "..."
                      else ".*".join(re.escape(part) for part in line.rstrip().split("…")) + "[ \t]*\n"
                      for line in shown)
    return re.fullmatch(pattern, printed) is not None


# The reader's shell knows nothing of the server that runs beside it.
SCRIPT = """
SERVE_INSIDE=yes scripts/serve 5988 >serve.log 2>&1 &
server=$!
timeout 60 grep -qm 1 'CIM server at' < <(tail --pid="$server" -s 0.1 -n +1 -F serve.log 2>/dev/null) || exit 90
bash "$1"
kill -TERM "$server"
wait "$server"
"""


class World:
    """A copy of the tree in links, with the programs of this build, in a network of its own."""

    def __init__(self, folder):
        self.tree = pathlib.Path(folder) / "tree"
        self.results = pathlib.Path(folder) / "results"
        (self.tree / "build").mkdir(parents=True)
        self.results.mkdir()
        for entry in SOURCE.iterdir():
            if entry.name not in ("build", ".git"):
                (self.tree / entry.name).symlink_to(entry)
        (self.tree / "build/bin").symlink_to(PROGRAMS)
        (self.tree / "build/lib").symlink_to(LIBRARIES)

    def run(self, commands):
        """For each command its exit code (None: it was not reached or did not end) and what it printed."""
        typed = ""
        for number, command in enumerate(commands):
            files = self.results / str(number)
            typed += f"exec >'{files}.out' 2>&1\n{command}\necho $? >'{files}.code'\n"
        (self.results / "typed").write_text(typed, encoding="utf-8")
        environment = {name: value for name, value in os.environ.items()
                       if name != "PATCHKEEPER_ROOT" and not name.lower().endswith("_proxy")}
        with subprocess.Popen([SOURCE / "scripts/with-qv", "build/bin/patchkeeper", "bwrap", "--dev-bind", "/", "/",
                               "--unshare-net", "--unshare-pid", "--proc", "/proc", "--", "bash", "-c", SCRIPT, "page",
                               self.results / "typed"],
                              cwd=self.tree, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, start_new_session=True,
                              env={**environment, "TZ": "UTC", "LC_ALL": "C.UTF-8"}) as process:
            try:
                self.said = process.communicate(timeout=LONGEST)[0]
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGTERM)
                self.said = "it took too long\n" + process.communicate()[0]
        self.code = process.returncode
        return [(self.code_of(number), self.read(f"{number}.out")) for number in range(len(commands))]

    def code_of(self, number):
        text = self.read(f"{number}.code")
        return int(text) if text else None

    def read(self, name):
        file = self.results / name
        return file.read_text(encoding="utf-8") if file.exists() else ""


class Documentation(unittest.TestCase):
    def test_every_block_is_marked(self):
        not_run = []
        for page in pages():
            for block in blocks(page):
                if block.mark == "sh":
                    not_run.append(block.lines[0])
                else:
                    self.assertIn(block.mark, ("console", "appliance", *TEXTS), block.place)
                if block.mark != "console":
                    self.assertFalse([line for line in block.lines if line.startswith("$ ")], block.place)
        self.assertEqual(sorted(not_run), sorted(NOT_RUN))

    def test_pages_with_appliance_blocks_say_so(self):
        for page in pages():
            if any(block.mark == "appliance" for block in blocks(page)):
                self.assertIn("No test of this repository runs them", page.read_text(encoding="utf-8"), page)

    def test_comparison(self):
        self.assertTrue(matches(["a…c", "...", "z"], "abc\nx\ny\nz\n"))
        self.assertTrue(matches(["a", "..."], "a\n"))
        self.assertFalse(matches(["a"], "a\nb\n"))
        self.assertFalse(matches(["a.c"], "abc\n"))

    def test_a_command_that_fails_or_prints_something_else_is_seen(self):
        text = "```console\n$ false\n$ echo a; echo b\na\nb\n$ echo c\nd\n```\n"
        self.assertEqual(len(self.problems(blocks_of(text, "page"))), 2)

    def problems(self, found):
        steps = [(block, command, shown) for block in found for command, shown in block.steps()]
        with tempfile.TemporaryDirectory() as folder:
            world = World(folder)
            results = world.run([command for _, command, _ in steps])
            problems = [] if world.code == 0 else [f"the page as a whole ended with {world.code}:\n{world.said}"]
        for (block, command, shown), (code, printed) in zip(steps, results):
            if code != 0:
                problems.append(f"{block.place}: `{command}` ended with {code}:\n{printed}")
            elif shown and not matches(shown, printed):
                problems.append(f"{block.place}: `{command}` printed\n{printed}")
        return problems


def add_test_of(page):
    found = [block for block in blocks(page) if block.mark == "console"]
    if found:
        def test(self):
            self.assertEqual("\n".join(self.problems(found)), "")
        name = "test_blocks_of_" + re.sub(r"\W", "_", str(page.relative_to(SOURCE)))
        setattr(Documentation, name, test)


for documented in pages():
    add_test_of(documented)

if __name__ == "__main__":
    unittest.main()
