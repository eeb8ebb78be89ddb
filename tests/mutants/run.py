"""Applies each mutant of mutants.txt to a copy of the tree, builds, and runs the tests of the library.

A mutant is three lines: a file, `- ` and a text that occurs in it exactly once, `+ ` and what takes its
place. It is noticed when a test fails and survives when all pass. One that does not compile proves nothing
and ends the run. Usage: run.py [TEXT | --check]: all of them, those with this text in their lines, or only
whether each can be applied to the tree as it stands, which takes no build.
"""

import datetime
import pathlib
import re
import shutil
import subprocess
import sys

TREE = pathlib.Path(__file__).resolve().parents[2]
WORK = TREE / "build/mutants"
COPY = WORK / "tree"
BUILD = WORK / "build"
PAGE = TREE / "docs/mutants.md"
EVERYTHING = {"provider_tests": "provider_", "matrix_test": "matrix_test"}


def mutants():
    """Yields (file, old, new, line number)."""
    text = (TREE / "tests/mutants/mutants.txt").read_text(encoding="utf-8")
    lines = [(number, line) for number, line in enumerate(text.split("\n"), 1)
             if line.strip() and not line.startswith("#")]
    if len(lines) % 3:
        sys.exit("mutants.txt: a mutant has three lines")
    for i in range(0, len(lines), 3):
        (number, file), (_, old), (_, new) = lines[i:i + 3]
        if not old.startswith("- ") or not new.startswith("+ "):
            sys.exit(f"mutants.txt:{number}: a file, a line with '- ' and one with '+ ' are expected")
        yield file.strip(), old[2:], new[2:], number


def misplaced(chosen):
    """What is wrong with mutants that could not be applied, or are there twice."""
    seen = set()
    for file, old, new, number in chosen:
        path = TREE / file
        count = path.read_text(encoding="utf-8").count(old) if path.is_file() else 0
        if count != 1:
            yield f"mutants.txt:{number}: occurs {count} times in {file}: {old}"
        if old == new or (file, old, new) in seen:
            yield f"mutants.txt:{number}: changes nothing, or is there twice: {old}"
        seen.add((file, old, new))


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=False, **options)


def must(*command):
    done = run(*command)
    if done.returncode:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout[-4000:]}{done.stderr[-4000:]}")


def prepare():
    """The copy holds what git knows of, with the changes of the working tree, and all is built."""
    listed = run("git", "-C", TREE, "ls-files", "-co", "--exclude-standard", "-z").stdout
    files = {name for name in listed.split("\0") if name and (TREE / name).is_file()}
    for old in COPY.rglob("*"):
        if old.is_file() and str(old.relative_to(COPY)) not in files:
            old.unlink()
    for name in files:
        target = COPY / name
        if not target.is_file() or target.read_bytes() != (TREE / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(TREE / name, target)
    # Without debug information, so that linking the test programs again costs little.
    must("cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None")
    must("cmake", "--build", BUILD, "--target", *EVERYTHING)


def programs(file):
    """Who looks at this file, one after the other: targets and the names of their tests. A class's own
    tests and the matrix are enough for its folder; what all classes share is everybody's."""
    folder = pathlib.PurePosixPath(file).parts[1]
    listed = (TREE / "tests/provider/CMakeLists.txt").read_text(encoding="utf-8")
    own = {f"provider_{name}_test" for name in re.findall(rf"\b{folder}/(\w+)", listed)}
    nearest = {name: name + "/" for name in own | {"matrix_test"}}
    return [nearest, EVERYTHING] if folder in ("common", "master") else [nearest]


def first_failure(output):
    found = re.search(r"^\s*\d+ - (.*?)(?: +#.*)? \(", output.partition("FAILED:")[2], re.MULTILINE)
    return found.group(1) if found else "a test"


def verdict(chosen):
    """Who of the chosen programs notices what the copy holds now; None when nobody does."""
    must("cmake", "--build", BUILD, "--target", *chosen)
    names = f"^({'|'.join(sorted(chosen.values()))})"
    tests = run("ctest", "--test-dir", BUILD, "-R", names, "-j", "4", "--stop-on-failure")
    return first_failure(tests.stdout) if tests.returncode else None


def try_out(file, old, new):
    path = COPY / file
    text = path.read_text(encoding="utf-8")
    try:
        path.write_text(text.replace(old, new), encoding="utf-8")
        return next(filter(None, map(verdict, programs(file))), None)
    finally:
        path.write_text(text, encoding="utf-8")


def write_page(results):
    survivors = sum(1 for *_, noticed in results if not noticed)
    rows = "\n".join(f"| `{file}` | {cell(old)} | {cell(new)} | {noticed or '**nobody**'} |"
                     for file, old, new, noticed in results)
    PAGE.write_text(f"""# Mutants

What `make mutants` found on {datetime.date.today()}: {len(results)} rules of the library broken one at a time,
{len(results) - survivors} noticed, {survivors} not. The list is `tests/mutants/mutants.txt`; this page is written by the command.

| file | this | replaced by | noticed by |
|---|---|---|---|
{rows}
""", encoding="utf-8")


def cell(text):
    text = text.strip().replace("|", "\\|")
    return f"`` {text} ``" if "`" in text else f"`{text}`"


def main():
    wanted = sys.argv[1] if len(sys.argv) > 1 else ""
    every = list(mutants())
    wrong = list(misplaced(every))
    if wrong:
        sys.exit("\n".join(wrong))
    if wanted == "--check":
        print(f"{len(every)} mutants can be applied")
        return 0
    chosen = [mutant for mutant in every if any(wanted in part for part in mutant[:3])]
    prepare()
    before = verdict(EVERYTHING)
    if before:
        sys.exit(f"the tests fail before anything is broken: {before}")
    results = []
    for file, old, new, _ in chosen:
        noticed = try_out(file, old, new)
        print(f"{'noticed ' if noticed else 'SURVIVES'}  {file}:  {old.strip()}  ->  {new.strip()}"
              f"  {noticed or ''}", flush=True)
        results.append((file, old, new, noticed))
    survivors = sum(1 for *_, noticed in results if not noticed)
    if not wanted:
        write_page(results)
    print(f"{len(results)} mutants, {len(results) - survivors} noticed, {survivors} survived")
    return 1 if survivors or not results else 0


sys.exit(main())
