"""The manual pages, the sample configuration and the class reference say what the programs, the MOF and the library say.

Arguments, before those of unittest: the server and the tool of this build.
"""

import importlib.machinery
import importlib.util
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SERVER, TOOL = (str(pathlib.Path(sys.argv.pop(1)).resolve()) for _ in range(2))
PAGES = SOURCE / "packaging/man"
SAMPLE = SOURCE / "packaging/cimserver.conf"


def load_script(name):
    loader = importlib.machinery.SourceFileLoader(name.replace("-", "_"), str(SOURCE / "scripts" / name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


reference = load_script("make-reference")


def output(*command, **environment):
    run = subprocess.run(command, capture_output=True, text=True, check=False, env={**os.environ, **environment})
    return run.stdout


def plain(macro):
    """The words of a line of mdoc: `Fl \\-http Ar TLS Op Ar X` is `--http TLS [X]`."""
    text = macro.replace("\\-", "-").replace("\\&", "")
    text = re.sub(r"\bOo ", "[ ", text).replace(" Oc", " ]")
    text = re.sub(r"\bOp (.*)$", r"[ \1 ]", text)
    text = re.sub(r"\bFl (\S)", r"-\1", text)
    text = re.sub(r"\b(Ar|Cm|Li|Va|No) ", "", text)
    for wrong, right in (("[ ", "["), (" ]", "]"), (" ...", "..."), (" , ", ",")):
        text = text.replace(wrong, right)
    return text.strip()


class Page:
    def __init__(self, name):
        self.text = (PAGES / name).read_text(encoding="utf-8")

    def section(self, title, macro="Sh"):
        found = re.search(rf'^\.{macro} {re.escape(title)}\n(.*?)(?=^\.(?:Sh{"|Ss" if macro == "Ss" else ""}) |\Z)',
                          self.text, re.MULTILINE | re.DOTALL)
        return found.group(1)

    @staticmethod
    def items(section):
        return [plain(line) for line in re.findall(r"^\.It (.*)$", section, re.MULTILINE)]


def options_in(help_text):
    """`--mof FILE...` for each option of a help text, without CLI11's notes."""
    part = help_text.split("Options:\n")[1].split("\n\n")[0]
    found = []
    for line in part.splitlines():
        words = re.match(r"  (-\S+(?: [A-Z][A-Z:]*(?![a-z]))?(?: \.\.\.)?)", line)
        if words:
            found.append(words.group(1).replace(" ...", "...").split(":INT")[0])
    return found


def names_in(help_text):
    """The names alone, `--mof`."""
    return {name for option in options_in(help_text) for name in re.findall(r"--?[a-z-]+", option)}


def commands_in(help_text):
    part = help_text.split("Commands, one at a time:\n")[1]
    return [re.split(r"  +", line.strip())[0] for line in part.splitlines() if line.startswith("  ")]


def server_items():
    """Name to default and unit, in the order of the server's help."""
    part = output(SERVER, "--help").split("Configuration items, with their defaults:\n")[1]
    found = {}
    for line in re.findall(r"^  (\S.*)$", part, re.MULTILINE):
        name, _, default = line.partition(" = ")
        found[name] = default
    return found


class Manual(unittest.TestCase):
    def test_pages_have_no_mistakes(self):
        for page in sorted(PAGES.iterdir()):
            lint = output("mandoc", "-T", "lint", "-W", "style", page)
            # Whether the pages that are referred to are installed is a matter of the machine.
            lines = [line for line in lint.splitlines() if "mandoc.db" not in line and "referenced manual" not in line]
            self.assertEqual(lines, [])
            shown = subprocess.run(["man", "--warnings", "-l", page], capture_output=True, text=True, check=False,
                                   env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "80"})
            self.assertEqual((shown.returncode, shown.stderr), (0, ""))
            self.assertIn("NAME", shown.stdout)

    def test_no_page_tells_another_version(self):
        version = re.search(r"VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text().split("project(")[1]).group(1)
        for program, name in ((SERVER, "cimserver"), (TOOL, "patchkeeper")):
            self.assertEqual(output(program, "--version"), f"{name} {version}\n")
        for page in sorted(PAGES.iterdir()):
            heading = "".join(line for line in page.read_text().splitlines(True) if re.match(r"\.(Dt|Os|Nm|Nd)", line))
            self.assertEqual([found for found in re.findall(r"\d+\.\d+\.\d+", heading)
                              if found not in (version, "3.0.3")], [])


class Options(unittest.TestCase):
    def test_those_of_the_server(self):
        page = Page("cimserver.8")
        options = page.section("OPTIONS")
        self.assertEqual(sorted(page.items(options.split("\n.Ss ")[0])),
                         sorted(options_in(output(SERVER, "--help"))))
        for command in ("passwd", "certificate"):
            told = options_in(output(SERVER, command, "--help"))
            written = page.items(page.section(f"cimserver {command}", "Ss"))
            self.assertEqual(sorted(item for item in written if item.startswith("-")), sorted(told))

    def test_those_of_the_tool(self):
        page = Page("patchkeeper.1")
        help_text = output(TOOL, "--help")
        self.assertEqual(sorted(page.items(page.section("OPTIONS"))), sorted(options_in(help_text)))
        # What bundle and check take beside their operand is another test's matter.
        written = [re.sub(r"^(bundle DIR|check FILE).*", r"\1", item) for item in page.items(page.section("COMMANDS"))]
        told = [re.sub(r"^(bundle DIR|check FILE).*", r"\1", command) for command in commands_in(help_text)]
        self.assertEqual(sorted(written), sorted(told))

    def test_none_is_named_that_is_not_there(self):
        for name, program, commands in (("cimserver.8", SERVER, ("passwd", "certificate")),
                                        ("patchkeeper.1", TOOL, ("bundle", "check"))):
            help_text = output(program, "--help")
            there = names_in(help_text).union(*(names_in(output(program, command, "--help")) for command in commands))
            if program == TOOL:
                there |= {command.split()[0] for command in commands_in(help_text) if command.startswith("-")}
            written = {"-" + option for option in
                       re.findall(r"\bFl (-?[a-z-]+)", Page(name).text.replace("\\-", "-"))}
            self.assertEqual(written, there)


class Items(unittest.TestCase):
    def test_those_of_the_server_with_their_defaults(self):
        items = server_items()
        self.assertGreater(len(items), 30)
        page = Page("cimserver.conf.5")
        written = page.items(page.section("CONFIGURATION ITEMS"))
        self.assertEqual(written, [name + (f" = {default}" if default else "") for name, default in items.items()])

    def test_those_that_are_read_again(self):
        table = (SOURCE / "docs/running.md").read_text(encoding="utf-8")
        told = set(re.findall(r"^\| `([^`]+)` \| [^|]* \| SIGHUP \|", table, re.MULTILINE))
        section = Page("cimserver.conf.5").section("CONFIGURATION ITEMS").split(".Ss ", 1)[1]
        entries = re.findall(r"^\.It Va (\S+)(.*?)(?=^\.It |\Z)", section, re.MULTILINE | re.DOTALL)
        self.assertEqual({name for name, text in entries if "SIGHUP" in text}, told)

    def test_those_of_the_sample_with_their_defaults(self):
        lines = re.findall(r"^(#?)([a-z_]+\.\S+) =(.*)$", SAMPLE.read_text(encoding="utf-8"), re.MULTILINE)
        items = server_items()
        self.assertEqual([name for _, name, _ in lines], list(items))
        for mark, name, value in lines:
            if mark:
                words = items[name].split(" ")
                default = words[0] if words[0].lstrip("-").isdigit() else items[name]
                self.assertEqual(value.strip(), default, name)

    def test_the_sample_lets_nobody_in_by_itself(self):
        set_items = dict(re.findall(r"^([a-z_]+\.\S+) = (.*)$", SAMPLE.read_text(encoding="utf-8"), re.MULTILINE))
        self.assertEqual(set_items.pop("simple_auth.password_file"), "/var/lib/cimserver/passwords")
        self.assertEqual(list(set_items), ["cimserver.mof_files"])

    def check(self, text):
        with tempfile.TemporaryDirectory() as folder:
            users = pathlib.Path(folder) / "passwd"
            users.touch(0o600)
            subprocess.run([SERVER, "passwd", "anna", "--file", users], input="secret\n", text=True, check=True,
                           capture_output=True)
            configuration = pathlib.Path(folder) / "cimserver.conf"
            text = text.replace("/var/lib/cimserver/passwords\n", f"{users}\n")
            text = text.replace("/usr/share/software-update-provider/", f"{SOURCE}/schema/")
            configuration.write_text(text, encoding="utf-8")
            run = subprocess.run([SERVER, "--check-config", "--config", configuration, "--provider-dir", folder],
                                 capture_output=True, text=True, check=False)
            return run.returncode, run.stdout + run.stderr

    def test_the_server_takes_the_sample(self):
        text = SAMPLE.read_text(encoding="utf-8")
        self.assertEqual(self.check(text), (0, "The configuration is in order.\n"))
        set_defaults = re.sub(r"^#([a-z_]+\.\S+ = .)", r"\1", text, flags=re.MULTILINE)
        set_defaults = re.sub(r"^cppprovifc.prov_location.*\n", "", set_defaults, flags=re.MULTILINE)
        self.assertEqual(self.check(set_defaults), (0, "The configuration is in order.\n"))
        self.assertEqual(self.check(text + "cimserver.none = 1\n")[0], 1)

    def test_those_of_the_tool_with_their_defaults(self):
        page = Page("patchkeeper.1")
        written = dict(item.split(" = ") if " = " in item else (item, "") for item in
                       page.items(page.section("SETTINGS")))
        source = (SOURCE / "patchkeeper/Settings.cpp").read_text(encoding="utf-8")
        self.assertEqual(list(written), re.findall(r'item == "(\w+)"', source))
        table = (SOURCE / "patchkeeper/README.md").read_text(encoding="utf-8").split("| item | default |")[1]
        for name, default in written.items():
            row = re.search(rf"^\| `{name}` \| ([^|]*) \|", table, re.MULTILINE).group(1)
            self.assertEqual(default or row, row.strip("`") if default else row)
            self.assertEqual(not default, row in ("not set", "none"), name)


class Bundles(unittest.TestCase):
    def test_items_of_the_manifest(self):
        table = (SOURCE / "patchkeeper/bundle/README.md").read_text(encoding="utf-8").split("| item | value |")[1]
        rows = re.findall(r"^\| ((?:`\w+`(?:, )?)+) \|", table.split("\n\n")[0], re.MULTILINE)
        told = {name for row in rows for name in re.findall(r"\w+", row)}
        section = Page("patchkeeper.1").section("BUNDLES")
        written = {name for line in re.findall(r"^\.(?:It )?Li (.*)$", section, re.MULTILINE)
                   for name in re.findall(r"\w+", line)}
        self.assertGreater(len(told), 12)
        self.assertEqual(written, told)


class ExitCodes(unittest.TestCase):
    def test_those_of_the_tool_with_their_sentences(self):
        entries = re.findall(r"^\.It Li (\d+)\n(.*)$", Page("patchkeeper.1").section("EXIT STATUS"), re.MULTILINE)
        written = {int(code): sentence for code, sentence in entries}
        told = {code: output(TOOL, "--errors", str(code)).strip() for code in range(256)}
        general = told[1]
        self.assertEqual({code: sentence for code, sentence in told.items() if sentence != general},
                         {code: sentence for code, sentence in written.items() if sentence != general and code})
        self.assertEqual([code for code, sentence in written.items() if sentence == general], [1, 2])


class Library(unittest.TestCase):
    PAGE = Page("SoftwareUpdateProvider.7")

    @classmethod
    def setUpClass(cls):
        cls.classes = reference.classes(SERVER)

    @staticmethod
    def signature(method):
        words = [("out " if reference.is_true(parameter, "Out") else "")
                 + f"{parameter.get('TYPE')} {parameter.get('NAME')}" for parameter in reference.parameters(method)]
        return f"{method.get('TYPE')} {method.get('NAME')}({', '.join(words)})"

    @staticmethod
    def written_methods(section):
        found = []
        for returned, name, words in re.findall(r"^\.It Ft (\S+) Fn (\w+)(.*)$", section, re.MULTILINE):
            found.append(f"{returned} {name}(" + ", ".join(re.findall('"([^"]*)"', words)) + ")")
        return found

    def test_classes(self):
        self.assertEqual(re.findall(r"^\.Ss (ZNX_\w+)$", self.PAGE.text, re.MULTILINE),
                         [cim_class.get("NAME") for cim_class in self.classes])

    def test_properties_and_methods(self):
        for cim_class in self.classes:
            section = self.PAGE.section(cim_class.get("NAME"), "Ss")
            listed = re.search(r"^Properties:\n(.*)$", section, re.MULTILINE).group(1)
            self.assertEqual(listed.removeprefix(".Li ").removesuffix(" .").split(" , "),
                             [element.get("NAME") for element in reference.properties(cim_class)])
            self.assertEqual(self.written_methods(section),
                             [self.signature(method) for method in cim_class.findall("METHOD")])

    def test_messages(self):
        source = "".join(file.read_text(encoding="utf-8") for file in (SOURCE / "provider").rglob("*.cpp"))
        written = re.findall(r"^\.It Li (SWU_\w+)(?: No (\d+))?$", self.PAGE.text, re.MULTILINE)
        self.assertEqual({name for name, _ in written}, set(re.findall(r'"(SWU_[A-Za-z]+_[A-Za-z]+)"', source)))
        table = (SOURCE / "docs/messages.md").read_text(encoding="utf-8")
        self.assertEqual([entry for entry in written if entry[1]],
                         re.findall(r"^\| `(SWU_\w+)` \| (\d+) \|", table, re.MULTILINE))

    def test_the_operations_that_are_said_to_be_covered(self):
        rows = (SOURCE / "docs/standards.md").read_text(encoding="utf-8").splitlines()
        covered = next(row for row in rows if "over HTTP: operations" in row).split(" | ")[1]
        source = (SOURCE / "cimserver/cimxml/CallReader.cpp").read_text(encoding="utf-8")
        self.assertEqual(covered.split(";")[0].split(", "), re.findall(r'^    \{"(\w+)", &Read', source, re.MULTILINE))

    def test_the_reference_is_what_the_script_makes(self):
        self.assertEqual((SOURCE / "docs/reference.md").read_text(encoding="utf-8"), reference.page(SERVER))


if __name__ == "__main__":
    unittest.main()
