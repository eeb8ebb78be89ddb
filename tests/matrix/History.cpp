#include "matrix/Matrix.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const HISTORY = "ZNX_HistorySoftwareUpdate";
const std::string LISTS = "/qv/bin/patchkeeper --hist 2>&1";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";
const std::string ASKS_WHY_1 = "/qv/bin/patchkeeper --errors 1 2>&1";
const std::string DESCRIBES_N = "/qv/bin/patchkeeper -l N-V 2>&1";
const std::string DESCRIBES_M = "/qv/bin/patchkeeper -l M-2.0 2>&1";
const std::string MARKS = "/qv/bin/patchkeeper --setinprogress";
const std::string ROLLS_BACK = "/qv/bin/patchkeeper --rback N V";

const std::string N_PROPERTIES =
    "ZNX_HistorySoftwareUpdate { InstanceID = string \"0\"; Name = string \"N\"; "
    "VersionString = string \"V\"; ShortDescription = string \"Desc\"; "
    "Category = string \"Security\"; Date = datetime 20260102030400.000000+000; "
    "Removeable = boolean true;";
const std::string M_PROPERTIES =
    "ZNX_HistorySoftwareUpdate { InstanceID = string \"1\"; Name = string \"M\"; "
    "VersionString = string \"2.0\"; ShortDescription = string \"More\"; "
    "Category = string \"Fix\"; Date = datetime 20260203040500.000000+000; "
    "Removeable = boolean false;";
const std::string DESCRIPTION = " UpdateDescription = string \"The long\ntext.\n\";";
const std::string N = N_PROPERTIES + " }";
const std::string M = M_PROPERTIES + " }";
const std::string N_DESCRIBED = N_PROPERTIES + DESCRIPTION + " }";
const std::string M_DESCRIBED = M_PROPERTIES + DESCRIPTION + " }";

const std::string PATH_OF_N = "/root/cimv2:ZNX_HistorySoftwareUpdate.InstanceID=\"0\"";
const std::string PATH_OF_M = "/root/cimv2:ZNX_HistorySoftwareUpdate.InstanceID=\"1\"";

OpenWBEM::CIMObjectPath Update(const char* id) {
    return Path(HISTORY, "InstanceID", id);
}

Call Prints(const std::string& output) {
    return Plays("--hist", ToolAnswer().Output(output));
}

std::string Lacks(const std::string& field) {
    return LacksField(field, "/qv/bin/patchkeeper --hist");
}

std::string NotStarted() {
    return Fails(1, "Failed: /qv/bin/patchkeeper --rback N V\n#SWU_Error_ExecutionFailed,"
                    "Failed: /qv/bin/patchkeeper --rback N V#");
}

void AddEnumerations(std::vector<Row>& rows) {
    const Call fails = Plays("--hist", ToolAnswer().ExitCode(23));
    const Call killed = Plays("--hist", ToolAnswer().DiesBySignal(SIGKILL));
    const Call mute = Plays("--errors", ToolAnswer().ExitCode(1));
    const std::vector<Row> more = {
        {Enumerate(HISTORY), "two updates", {}, {LISTS}, N + "\n" + M},
        {Enumerate(HISTORY), "nothing was applied", {Prints("")}, {LISTS}, ""},
        {Enumerate(HISTORY), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {Enumerate(HISTORY),
         "the tool fails with 1",
         {Plays("--hist", ToolAnswer().ExitCode(1))},
         {LISTS, ASKS_WHY_1},
         ToolFails(1)},
        {Enumerate(HISTORY),
         "the tool fails and cannot say why",
         {fails, mute},
         {LISTS, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(HISTORY),
         "the tool is killed",
         {killed},
         {LISTS, "/qv/bin/patchkeeper --errors 137 2>&1"},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {Enumerate(HISTORY),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --hist")},
        {Enumerate(HISTORY), "a blank line", {Prints("\n")}, {LISTS}, Lacks("Name")},
        {Enumerate(HISTORY), "a line of one field", {Prints("N\n")}, {LISTS}, Lacks("Version")},
        {Enumerate(HISTORY),
         "a line of two fields",
         {Prints("N\tV\n")},
         {LISTS},
         Lacks("Description")},
        {Enumerate(HISTORY),
         "a line of three fields",
         {Prints("N\tV\tD\n")},
         {LISTS},
         Lacks("Category")},
        {Enumerate(HISTORY),
         "a line of four fields",
         {Prints("N\tV\tD\tC\n")},
         {LISTS},
         Lacks("Date")},
        {Enumerate(HISTORY),
         "a line of five fields",
         {Prints("N\tV\tD\tC\tJan 2 2026 03:04\n")},
         {LISTS},
         Lacks("Removable")},
        {Enumerate(HISTORY),
         "an unreadable date",
         {Prints("N\tV\tD\tC\tyesterday\tRemovable\n")},
         {LISTS},
         Escapes("DateTimeException")},
        {Enumerate("znx_historysoftwareupdate"),
         "the class name in another case",
         {},
         {},
         Fails(5)},
        {EnumerateNames(HISTORY), "two updates", {}, {LISTS}, PATH_OF_N + "\n" + PATH_OF_M},
        {EnumerateNames(HISTORY), "nothing was applied", {Prints("")}, {LISTS}, ""},
        {EnumerateNames(HISTORY), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {EnumerateNames(HISTORY),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --hist")},
        {EnumerateNames(HISTORY),
         "a line of five fields",
         {Prints("N\tV\tD\tC\tJan 2 2026 03:04\n")},
         {LISTS},
         Lacks("Removable")},
        {EnumerateNames(HISTORY),
         "an unreadable date, which no path needs",
         {Prints("N\tV\tD\tC\tyesterday\tRemovable\n")},
         {LISTS},
         PATH_OF_N},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddDescriptions(std::vector<Row>& rows) {
    const Names wanted = {{"UpdateDescription"}};
    const Names twice = {{"UpdateDescription", "UpdateDescription"}};
    const Call listed = Gives(EnumerateNames(HISTORY), PATH_OF_N + "\n" + PATH_OF_M);
    const Call fails = Plays("-l", ToolAnswer().Output("some of it").ExitCode(5));
    const std::vector<Row> more = {
        {Enumerate(HISTORY, wanted),
         "the description is asked for",
         {},
         {LISTS, DESCRIBES_N, DESCRIBES_M},
         N_DESCRIBED + "\n" + M_DESCRIBED},
        {Enumerate(HISTORY, wanted),
         "the tool does not tell the description",
         {fails},
         {LISTS, DESCRIBES_N, ASKS_WHY_1},
         ToolFails(1)},
        {Enumerate(HISTORY, {{"Name"}}), "the list shortens nothing", {}, {LISTS}, N + "\n" + M},
        {Get(Update("0"), wanted),
         "the description is asked for",
         {listed},
         {DESCRIBES_N},
         N_DESCRIBED},
        {Get(Update("0"), {{"Name", "UpdateDescription", "No such"}}),
         "the description is asked for among others",
         {listed},
         {DESCRIBES_N},
         N_DESCRIBED},
        {Get(Update("0"), twice),
         "the description is asked for twice",
         {listed},
         {DESCRIBES_N, DESCRIBES_N},
         N_DESCRIBED},
        {Get(Update("0"), {{"updatedescription"}}), "in another case", {listed}, {}, N},
        {Get(Update("0"), {{}}), "an empty list", {listed}, {}, N},
        {Get(Update("0"), wanted),
         "the tool does not tell the description",
         {listed, fails},
         {DESCRIBES_N, ASKS_WHY_1},
         ToolFails(1)},
        {Get(Update("0"), wanted),
         "the tool says 1 to the description",
         {listed, Plays("-l", ToolAnswer().ExitCode(1))},
         {DESCRIBES_N, ASKS_WHY_1},
         ToolFails(1)},
        {Get(Update("0"), wanted),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper -l N-V", 1)},
        {Get(Update("9"), wanted), "no such position", {listed}, {}, Fails(6)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddGets(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(HISTORY), PATH_OF_N + "\n" + PATH_OF_M);
    const Call fails = Plays("--hist", ToolAnswer().ExitCode(23));
    const std::vector<Row> more = {
        {Get(Update("0")), "before any enumeration", {}, {}, Fails(6)},
        {Get(Update("0")), "after an enumeration of names", {listed}, {}, N},
        {Get(Update("1")),
         "after an enumeration of instances",
         {Gives(Enumerate(HISTORY), N + "\n" + M)},
         {},
         M},
        {Get(Update("2")), "no such position", {listed}, {}, Fails(6)},
        {Get(Update("00")), "another text of the same number", {listed}, {}, Fails(6)},
        {Get(Update("0")), "the list became stale", {listed, Prints("X\tY\n")}, {}, N},
        {Get(Update("0")),
         "the tool failed at the last enumeration",
         {listed, fails, Gives(EnumerateNames(HISTORY), ToolFails(23))},
         {},
         Fails(6)},
        {Get(Update("1")),
         "the second line was short at the last enumeration",
         {Prints("N\tV\tDesc\tSecurity\tJan 2 2026 03:04\tRemovable\nM\n"),
          Gives(EnumerateNames(HISTORY), Lacks("Version"))},
         {},
         Fails(6)},
        {Get(Update("0")),
         "it stands before the short line of the last enumeration",
         {Prints("N\tV\tDesc\tSecurity\tJan 2 2026 03:04\tRemovable\nM\n"),
          Gives(EnumerateNames(HISTORY), Lacks("Version"))},
         {},
         N},
        {Get(Update("0")),
         "an unreadable date",
         {Prints("N\tV\tD\tC\tyesterday\tRemovable\n"), Gives(EnumerateNames(HISTORY), PATH_OF_N)},
         {},
         Escapes("DateTimeException")},
        {Get(ClassPath(HISTORY)), "no key", {listed}, {}, Fails(4)},
        {Get(Path(HISTORY, "Name", "N")), "another key", {listed}, {}, Fails(4)},
        {Get(Path(HISTORY, "InstanceID", Null())), "a null key", {listed}, {}, Fails(4)},
        {Get(Path(HISTORY, "InstanceID", Number(1))),
         "a number as key is read as its text",
         {listed},
         {},
         M},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(HISTORY, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {listed},
                        {},
                        Fails(6)});
    }
}

void AddRefusals(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(HISTORY), PATH_OF_N + "\n" + PATH_OF_M);
    const std::vector<Row> more = {
        {Create(HISTORY), "always refused", {listed}, {}, Fails(7)},
        {Modify(HISTORY, {{"InstanceID", Text("0")}}), "always refused", {listed}, {}, Fails(7)},
        {Modify(HISTORY, {}), "nothing is given", {}, {}, Fails(7)},
        {Delete(Update("0")), "always refused", {listed}, {}, Fails(7)},
        {Delete(Update("9")), "refused before the record is looked for", {listed}, {}, Fails(7)},
        {Delete(ClassPath(HISTORY)), "no key", {}, {}, Fails(7)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddMethods(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(HISTORY), PATH_OF_N + "\n" + PATH_OF_M);
    const Call mark = Plays("--setinprogress", ToolAnswer().ExitCode(23));
    const std::string done = "boolean true";
    const std::vector<Row> more = {
        {Invoke(Update("0"), "Remove"), "a removable update", {listed}, {MARKS, ROLLS_BACK}, done},
        {Invoke(Update("1"), "Remove"),
         "an update that is not removable is for the tool to refuse",
         {listed},
         {MARKS, "/qv/bin/patchkeeper --rback M 2.0"},
         done},
        {Invoke(Update("0"), "Remove"),
         "the roll-back fails",
         {listed, Plays("--rback", ToolAnswer().ExitCode(16))},
         {MARKS, ROLLS_BACK},
         done},
        {Invoke(Update("0"), "Remove"),
         "the roll-back is killed",
         {listed, Plays("--rback", ToolAnswer().DiesBySignal(SIGKILL))},
         {MARKS, ROLLS_BACK},
         done},
        {Invoke(Update("0"), "Remove"), "the mark fails", {listed, mark}, {MARKS}, NotStarted()},
        {Invoke(Update("0"), "Remove"),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         NotStarted(),
         {MARKS}},
        {Invoke(Update("0"), "Remove"),
         "the list became stale",
         {listed, Prints("X\tY\n")},
         {MARKS, ROLLS_BACK},
         done},
        {Invoke(Update("0"), "Remove"), "before any enumeration", {}, {}, Fails(6)},
        {Invoke(Update("2"), "Remove"), "no such position", {listed}, {}, Fails(6)},
        {Invoke(ClassPath(HISTORY), "Remove"), "no key", {listed}, {}, Fails(4)},
        {Invoke(Path(HISTORY, "InstanceID", Null()), "Remove"),
         "a null key",
         {listed},
         {},
         Fails(4)},
        {Invoke(Update("0"), "remove"), "the name in another case", {listed}, {}, Fails(17)},
        {Invoke(Update("0"), "RollBack"), "an unknown method", {listed}, {}, Fails(17)},
        {Invoke(Update("0"), ""), "no method name", {listed}, {}, Fails(17)},
        {Invoke(Update("2"), "RollBack"),
         "an unknown method of an unknown record",
         {listed},
         {},
         Fails(6)},
        {Invoke(ClassPath(HISTORY), "RollBack"),
         "an unknown method without a key",
         {listed},
         {},
         Fails(4)},
        {Invoke(Update("0"), "Remove", {Text("x")}),
         "a parameter too many",
         {listed},
         {MARKS, ROLLS_BACK},
         done},
        {Invoke(Update("0"), "Remove", {Null(), Number(1), Flag(false)}),
         "null and other types as parameters",
         {listed},
         {MARKS, ROLLS_BACK},
         done},
        {Invoke(Update("0"), "Remove", {}, {"Status"}),
         "an out-parameter is left as it was",
         {listed},
         {MARKS, ROLLS_BACK},
         done + ", Status = null"},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Invoke(Path(HISTORY, "InstanceID", Text(hostile.text)), "Remove"),
                        std::string("the key is ") + hostile.what,
                        {listed},
                        {},
                        Fails(6)});
        rows.push_back({Invoke(Update("0"), "Remove", {Text(hostile.text)}),
                        std::string("a parameter too many, ") + hostile.what,
                        {listed},
                        {MARKS, ROLLS_BACK},
                        done});
    }
}

} // namespace

std::vector<Row> HistoryRows() {
    std::vector<Row> rows;
    AddEnumerations(rows);
    AddDescriptions(rows);
    AddGets(rows);
    AddRefusals(rows);
    AddMethods(rows);
    return rows;
}

} // namespace matrix
