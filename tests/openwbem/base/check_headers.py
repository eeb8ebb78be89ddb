#!/usr/bin/env python3
"""Compiles each header alone, or all of them together; fails at the first warning."""
import argparse
import pathlib
import subprocess
import sys


def complaints(compiler, include, headers):
    """What the compiler says about a file that includes the headers, each of them twice."""
    text = "".join(f'#include "{header}"\n' * 2 for header in headers)
    run = subprocess.run(
        [*compiler, "-Werror", f"-I{include}", "-x", "c++", "-fsyntax-only", "-"],
        input=text, capture_output=True, text=True, check=False)
    return run.stderr or f"exit code {run.returncode}" if run.returncode else ""


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--include", type=pathlib.Path, required=True)
    parser.add_argument("--together", action="store_true", help="all headers in one file")
    parser.add_argument("compiler", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    headers = sorted(path.name for path in arguments.include.glob("OW_*.h*"))
    if not headers:
        sys.exit(f"no header in {arguments.include}")
    groups = [headers] if arguments.together else [[header] for header in headers]
    failed = 0
    for group in groups:
        text = complaints(arguments.compiler, arguments.include, group)
        if text:
            failed += 1
            print(f"--- {', '.join(group)}\n{text}")
    print(f"{len(headers)} headers in {len(groups)} files, {failed} files failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
