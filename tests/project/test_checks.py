"""The checks of the tree find what they are there to find."""

import pathlib
import tempfile
import unittest

import check_layers
import check_oddities
import check_version


class Tree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


class Oddities(Tree):
    CODE = "provider/master/M.cpp", "// ODDITY MP-1: clients know it.\n"
    TEST = "tests/provider/m.cpp", "TEST_F(MasterOddities, MP1_Spelling) {}\n"
    ROW = "docs/oddities.md", "| MP-1 | spelling |\n"

    def problems_without(self, missing):
        self.write("docs/oddities.md", "\n")
        for name, text in (self.CODE, self.TEST, self.ROW):
            if (name, text) != missing:
                self.write(name, text)
        return check_oddities.problems(self.root)

    def test_nothing_is_said_of_a_complete_one(self):
        self.assertEqual(self.problems_without(None), [])

    def test_missing_comment(self):
        self.assertEqual(self.problems_without(self.CODE), ["MP-1 lacks a comment in the code"])

    def test_missing_test(self):
        self.assertEqual(self.problems_without(self.TEST), ["MP-1 lacks a test"])

    def test_missing_row(self):
        self.assertEqual(self.problems_without(self.ROW), ["MP-1 lacks a row of docs/oddities.md"])

    def test_two_rows(self):
        self.problems_without(None)
        self.write("docs/oddities.md", self.ROW[1] * 2)
        self.assertEqual(check_oddities.problems(self.root), ["MP-1 has two rows"])

    def test_empty_tree(self):
        self.write("docs/oddities.md", "\n")
        self.assertIn("no oddity found at all", check_oddities.problems(self.root)[0])


class Layers(Tree):
    def problems_of(self, name, include):
        self.write("cimserver/http/Http.hpp", "#pragma once\n")
        self.write(name, f'#include "{include}"\n')
        return check_layers.problems(self.root)

    def test_downwards_is_allowed(self):
        self.assertEqual(self.problems_of("cimserver/operations/A.cpp", "cimserver/mof/Mof.hpp"), [])
        self.assertEqual(self.problems_of("provider/inventory/A.cpp", "provider/common/Common.hpp"), [])

    def test_upwards(self):
        self.assertEqual(len(self.problems_of("cimserver/mof/A.cpp", "cimserver/host/Host.hpp")), 1)

    def test_private_header_of_another_layer(self):
        self.assertEqual(len(self.problems_of("cimserver/operations/A.cpp", "cimserver/mof/Grammar.hpp")), 1)

    def test_http_knows_no_cim(self):
        self.assertEqual(len(self.problems_of("cimserver/http/A.cpp", "OW_String.hpp")), 1)

    def test_the_library_knows_no_server(self):
        self.assertEqual(len(self.problems_of("provider/common/A.cpp", "cimserver/http/Http.hpp")), 1)

    def test_a_class_knows_no_stranger(self):
        self.assertEqual(len(self.problems_of("provider/inventory/A.cpp", "provider/history/H.hpp")), 1)

    def test_the_tool_knows_no_cim(self):
        self.assertEqual(len(self.problems_of("patchkeeper/A.cpp", "OW_String.hpp")), 1)


class Version(Tree):
    def problems_of(self, changes, told):
        self.write("CMakeLists.txt", "cmake_minimum_required(VERSION 3.25.0)\nproject(A\n    VERSION 1.2.3)\n")
        self.write("CHANGELOG.md", f"# Changes\n\n## {changes}, not released\n\n## 0.9.0\n")
        self.write("program", f"#!/bin/sh\necho program {told}\n")
        (self.root / "program").chmod(0o755)
        return check_version.problems(self.root, [str(self.root / "program")])

    def test_one_number_everywhere(self):
        self.assertEqual(self.problems_of("1.2.3", "1.2.3"), [])

    def test_other_number_in_the_changes(self):
        self.assertEqual(len(self.problems_of("1.2.4", "1.2.3")), 1)

    def test_program_that_tells_another_number(self):
        self.assertEqual(len(self.problems_of("1.2.3", "1.2.30")), 1)


if __name__ == "__main__":
    unittest.main()
