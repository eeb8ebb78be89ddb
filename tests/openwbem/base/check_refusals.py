#!/usr/bin/env python3
"""Statements that the base types must refuse, each beside one of its kind that they must take."""
import argparse
import pathlib
import re
import subprocess
import sys

PAIRS = [
    ("String s = 5; (void)s;", "String s(5); (void)s;"),
    ("String s; s = 5;", "String s; s = String(5);"),
    ("const char* t = String(\"a\"); (void)t;", "const char* t = String(\"a\").c_str(); (void)t;"),
    ("bool b = String(\"a\"); (void)b;", "bool b = String(\"a\").empty(); (void)b;"),
    ("String s = 'a'; (void)s;", "String s('a'); (void)s;"),
    ("String s(5LL); (void)s;", "String s(5L); (void)s;"),
    ("String s = CIMName(\"a\"); (void)s;", "String s = CIMName(\"a\").toString(); (void)s;"),
    ("int i = CIMName(\"a\"); (void)i;", "bool b = CIMName(\"a\"); (void)b;"),
    ("IntrusiveReference<Counted> r; int i = r; (void)i;",
     "IntrusiveReference<Counted> r; bool b = r; (void)b;"),
    ("Counted* c = new Counted; delete c;", "IntrusiveReference<Counted> r(new Counted);"),
    ("throw Exception(\"f\", 1, \"m\");", "throw NULLValueException(\"f\", 1, \"m\");"),
    ("Format f(\"text\"); (void)f;", "Format f(\"%1\", 1); (void)f;"),
    ("Format f(\"%1\", 1, 2, 3, 4, 5, 6, 7, 8, 9, 10); (void)f;",
     "Format f(\"%1\", 1, 2, 3, 4, 5, 6, 7, 8, 9); (void)f;"),
    ("UInt8Array a = 5; (void)a;", "UInt8Array a(5); (void)a;"),
    ("Mutex m; MutexLock l = m;", "Mutex m; MutexLock l(m);"),
]

FRAME = """
#include "OW_Array.hpp"
#include "OW_CIMName.hpp"
#include "OW_Format.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_MutexLock.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_String.hpp"
using namespace OpenWBEM;
struct Counted : IntrusiveCountableBase {
protected:
    ~Counted() override = default;
};
"""


def complaints(compiler, include, statements):
    """The numbers of the statements that the compiler refuses. Each has a file name of its own."""
    text = FRAME + "".join(
        f'#line 1 "statement-{i}"\nvoid statement{i}() {{ {statement} }}\n'
        for i, statement in enumerate(statements))
    run = subprocess.run(
        [*compiler, "-w", f"-I{include}", "-x", "c++", "-fsyntax-only", "-"],
        input=text, capture_output=True, text=True, check=False)
    refused = {int(number) for number in re.findall(r"\bstatement-(\d+):", run.stderr)}
    if run.returncode and not refused:
        sys.exit(run.stderr)
    return refused


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--include", type=pathlib.Path, required=True)
    parser.add_argument("compiler", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    refused = complaints(arguments.compiler, arguments.include, [bad for bad, _ in PAIRS])
    spoilt = complaints(arguments.compiler, arguments.include, [good for _, good in PAIRS])
    wrong = [f"compiles: {bad}" for i, (bad, _) in enumerate(PAIRS) if i not in refused]
    wrong += [f"does not compile: {good}" for i, (_, good) in enumerate(PAIRS) if i in spoilt]
    print("\n".join([*wrong, f"{len(PAIRS)} pairs, {len(wrong)} wrong"]))
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
