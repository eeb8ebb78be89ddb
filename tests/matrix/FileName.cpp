#include "matrix/Matrix.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const FILE_NAMES = "ZNX_AvailableSoftwareFileName";
const std::string LISTS = "/qv/bin/patchkeeper --files  2>&1";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";

std::string InstanceOf(const std::string& name) {
    return "ZNX_AvailableSoftwareFileName { FileName = string \"" + name + "\"; }";
}

std::string PathOf(const std::string& name) {
    return "/root/cimv2:ZNX_AvailableSoftwareFileName.FileName=\"" + name + "\"";
}

OpenWBEM::CIMObjectPath File(const char* name) {
    return Path(FILE_NAMES, "FileName", name);
}

Call Prints(const std::string& output) {
    return Plays("--files", ToolAnswer().Output(output));
}

void AddEnumerations(std::vector<Row>& rows) {
    const Call fails = Plays("--files", ToolAnswer().ExitCode(23));
    const Call killed = Plays("--files", ToolAnswer().DiesBySignal(SIGKILL));
    const Call mute = Plays("--errors", ToolAnswer().ExitCode(1));
    const std::string bothDefaults = InstanceOf("Filename1") + "\n" + InstanceOf("Testname");
    const std::vector<Row> more = {
        {Enumerate(FILE_NAMES),
         "two files",
         {},
         {LISTS},
         InstanceOf("one") + "\n" + InstanceOf("two")},
        {Enumerate(FILE_NAMES, {{"Other"}}),
         "the list shortens nothing",
         {},
         {LISTS},
         InstanceOf("one") + "\n" + InstanceOf("two")},
        {Enumerate(FILE_NAMES), "no output", {Prints("")}, {LISTS}, bothDefaults},
        {Enumerate(FILE_NAMES), "white space only", {Prints(" \n\t\n")}, {LISTS}, ""},
        {Enumerate(FILE_NAMES),
         "several separators",
         {Prints("one\r\ntwo  three\n")},
         {LISTS},
         InstanceOf("one") + "\n" + InstanceOf("two") + "\n" + InstanceOf("three")},
        {Enumerate(FILE_NAMES),
         "a name twice",
         {Prints("one one")},
         {LISTS},
         InstanceOf("one") + "\n" + InstanceOf("one")},
        {Enumerate(FILE_NAMES), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {Enumerate(FILE_NAMES),
         "the tool fails with 1",
         {Plays("--files", ToolAnswer().ExitCode(1))},
         {LISTS, "/qv/bin/patchkeeper --errors 1 2>&1"},
         ToolFails(1)},
        {Enumerate(FILE_NAMES),
         "the tool fails and cannot say why",
         {fails, mute},
         {LISTS, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(FILE_NAMES),
         "the tool is killed",
         {killed},
         {LISTS, "/qv/bin/patchkeeper --errors 137 2>&1"},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {Enumerate(FILE_NAMES),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files ")},
        {Enumerate("znx_availablesoftwarefilename"),
         "the class name in another case",
         {},
         {},
         Fails(5)},
        {EnumerateNames(FILE_NAMES),
         "two files",
         {},
         {LISTS},
         PathOf("one") + "\n" + PathOf("two")},
        {EnumerateNames(FILE_NAMES),
         "no output",
         {Prints("")},
         {LISTS},
         PathOf("Filename1") + "\n" + PathOf("Testname")},
        {EnumerateNames(FILE_NAMES), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {EnumerateNames(FILE_NAMES),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files ")},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddGets(std::vector<Row>& rows) {
    const Call listed = Gives(Enumerate(FILE_NAMES), InstanceOf("one") + "\n" + InstanceOf("two"));
    const Call fails = Plays("--files", ToolAnswer().Output("one\n").ExitCode(23));
    const Call killed = Plays("--files", ToolAnswer().DiesBySignal(SIGKILL));
    const std::vector<Row> more = {
        {Get(File("one")), "before any enumeration", {}, {LISTS}, InstanceOf("one")},
        {Get(File("two")),
         "after an enumeration the tool is asked again",
         {listed},
         {LISTS},
         InstanceOf("two")},
        {Get(File("one")),
         "the file has gone since the enumeration",
         {listed, Prints("two")},
         {LISTS},
         Fails(6)},
        {Get(File("two"), {{"Other"}}),
         "the list shortens nothing",
         {},
         {LISTS},
         InstanceOf("two")},
        {Get(File("three")), "no such file", {}, {LISTS}, Fails(6)},
        {Get(File("One")), "the name in another case", {}, {LISTS}, Fails(6)},
        {Get(File("one two")), "two names in one", {}, {LISTS}, Fails(6)},
        {Get(File("Testname")), "no output", {Prints("")}, {LISTS}, InstanceOf("Testname")},
        {Get(File("one")), "a name twice", {Prints("one one")}, {LISTS}, InstanceOf("one")},
        {Get(File("one")), "the tool fails", {fails}, {LISTS, ASKS_WHY}, Fails(6)},
        {Get(File("one")),
         "the tool is killed",
         {killed},
         {LISTS, "/qv/bin/patchkeeper --errors 137 2>&1"},
         Fails(6)},
        {Get(File("one")),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --files ")},
        {Get(ClassPath(FILE_NAMES)), "no key", {}, {}, Fails(6)},
        {Get(Path(FILE_NAMES, "InstanceID", "one")), "another key", {}, {}, Fails(6)},
        {Get(Path(FILE_NAMES, "FileName", Null())), "a null key", {}, {}, Fails(6)},
        {Get(Path(FILE_NAMES, "FileName", Number(1))),
         "a number as key",
         {Prints("1")},
         {},
         Fails(6)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(FILE_NAMES, "FileName", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

} // namespace

std::vector<Row> FileNameRows() {
    std::vector<Row> rows;
    AddEnumerations(rows);
    AddGets(rows);
    const std::vector<Row> refused = {
        {Create(FILE_NAMES), "always refused", {}, {}, Fails(7)},
        {Modify(FILE_NAMES, {{"FileName", Text("one")}}), "always refused", {}, {}, Fails(7)},
        {Modify(FILE_NAMES, {}), "nothing is given", {}, {}, Fails(7)},
        {Delete(File("one")), "always refused", {}, {}, Fails(7)},
        {Delete(ClassPath(FILE_NAMES)), "no key", {}, {}, Fails(7)},
        {Invoke(File("one"), "Any"), "methods of this class reach no provider", {}, {}, Fails(5)},
        {Invoke(ClassPath(FILE_NAMES), "Any"), "no key", {}, {}, Fails(5)},
        {Invoke(File("one"), "Remove", {Text("x")}), "another class's method", {}, {}, Fails(5)},
    };
    rows.insert(rows.end(), refused.begin(), refused.end());
    return rows;
}

} // namespace matrix
