"""One version number: that of CMakeLists.txt is the newest of CHANGELOG.md and what the programs tell.
Usage: check_version.py ROOT [PROGRAM…]
"""

import pathlib
import re
import subprocess
import sys


def project_version(root):
    text = (root / "CMakeLists.txt").read_text(encoding="utf-8")
    found = re.search(r"^project\([^)]*?VERSION (\d+\.\d+\.\d+)", text, re.MULTILINE)
    return found.group(1) if found else None


def newest_change(root):
    text = (root / "CHANGELOG.md").read_text(encoding="utf-8")
    found = re.search(r"^## (\d+\.\d+\.\d+)\b", text, re.MULTILINE)
    return found.group(1) if found else None


def problems(root, programs=()):
    version = project_version(root)
    if version is None:
        return ["CMakeLists.txt names no version"]
    found = []
    if newest_change(root) != version:
        found.append(f"CHANGELOG.md begins with {newest_change(root)}, CMakeLists.txt has {version}")
    for program in programs:
        name = pathlib.Path(program).name
        told = subprocess.run([program, "--version"], capture_output=True, text=True, check=True).stdout.strip()
        if told != f"{name} {version}":
            found.append(f"{name} --version tells '{told}', CMakeLists.txt has {version}")
    return found


if __name__ == "__main__":
    result = problems(pathlib.Path(sys.argv[1]), sys.argv[2:])
    print("\n".join(result))
    sys.exit(1 if result else 0)
