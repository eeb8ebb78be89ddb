"""Every deliberate oddity stands in three places: a comment in the code (`ODDITY MP-1: why`), a test
named after it (`SomethingOddities.MP1_WhatHolds`) and a row of docs/oddities.md. Usage: check_oddities.py ROOT
"""

import pathlib
import re
import sys

CODE_FOLDERS = ("provider", "platform", "openwbem", "cimserver", "patchkeeper")


def files(root, folders):
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".cpp", ".hpp", ".h", ".mof", ".py"):
                yield path


def ids_in_code(root):
    found = set()
    for path in files(root, CODE_FOLDERS):
        found.update(re.findall(r"ODDITY ([A-Z]{2}-\d+): \S", path.read_text(encoding="utf-8")))
    return found


def ids_in_tests(root):
    found = set()
    pattern = re.compile(r"TEST(?:_F|_P)?\(\s*\w+Oddities,\s*([A-Z]{2})(\d+)_\w+")
    for path in files(root, ("tests",)):
        for letters, number in pattern.findall(path.read_text(encoding="utf-8")):
            found.add(f"{letters}-{number}")
    return found


def ids_in_table(root):
    text = (root / "docs" / "oddities.md").read_text(encoding="utf-8")
    return re.findall(r"^\| ([A-Z]{2}-\d+) \|", text, re.MULTILINE)


def problems(root):
    places = {
        "a comment in the code": ids_in_code(root),
        "a test": ids_in_tests(root),
        "a row of docs/oddities.md": set(ids_in_table(root)),
    }
    every = set().union(*places.values())
    found = [
        f"{oddity} lacks {place}"
        for oddity in sorted(every)
        for place, ids in places.items()
        if oddity not in ids
    ]
    rows = ids_in_table(root)
    found += [f"{oddity} has two rows" for oddity in sorted(set(rows)) if rows.count(oddity) > 1]
    if not every:
        found.append("no oddity found at all: is this the right folder?")
    return found


if __name__ == "__main__":
    result = problems(pathlib.Path(sys.argv[1]))
    print("\n".join(result))
    sys.exit(1 if result else 0)
