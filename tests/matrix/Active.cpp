#include "matrix/Matrix.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const ACTIVE = "ZNX_ActiveSoftwareUpdate";
const std::string LISTS = "/qv/bin/patchkeeper --apply  2>&1";
const std::string DESCRIBES = "/qv/bin/patchkeeper -l N-V 2>&1";
const std::string ROLLS_BACK = "/qv/bin/patchkeeper --rback N V";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";
const std::string ASKS_WHY_16 = "/qv/bin/patchkeeper --errors 16 2>&1";
const std::string ASKS_WHY_137 = "/qv/bin/patchkeeper --errors 137 2>&1";

const std::string N =
    "ZNX_ActiveSoftwareUpdate { InstanceID = string \"N V\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; UpdateDescription = string \"The long\ntext.\n\"; "
    "VersionString = string \"V\"; Location = string \"ftp\"; "
    "ApplyDate = datetime 20260203040500.000000+000; RebootRequired = boolean true; "
    "Status = string \"Applying\"; Size = string \"12\"; }";
const std::string N_WITHOUT_DESCRIPTION =
    "ZNX_ActiveSoftwareUpdate { InstanceID = string \"N V\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; VersionString = string \"V\"; "
    "Location = string \"ftp\"; "
    "ApplyDate = datetime 20260203040500.000000+000; RebootRequired = boolean true; "
    "Status = string \"Applying\"; Size = string \"12\"; }";
const std::string M =
    "ZNX_ActiveSoftwareUpdate { InstanceID = string \"M 2.0\"; Name = string \"M\"; "
    "ShortDescription = string \"More\"; UpdateDescription = string \"The long\ntext.\n\"; "
    "VersionString = string \"2.0\"; Location = string \"usb\"; "
    "ApplyDate = datetime 20260405060700.000000+000; RebootRequired = boolean false; "
    "Status = string \"Waiting\"; Size = string \"7\"; }";

const std::string LINE_OF_N = "N\tV\tDesc\tftp\tFeb 3 2026 04:05\treboot\t12\tApplying\n";
const std::string LINE_OF_M = "M\t2.0\tMore\tusb\tApr 5 2026 06:07\tno\t7\tWaiting\n";
const std::string PATH_OF_N = "/root/cimv2:ZNX_ActiveSoftwareUpdate.InstanceID=\"N V\"";
const std::string PATH_OF_M = "/root/cimv2:ZNX_ActiveSoftwareUpdate.InstanceID=\"M 2.0\"";

OpenWBEM::CIMObjectPath Update(const char* id) {
    return Path(ACTIVE, "InstanceID", id);
}

Call Prints(const std::string& output) {
    return Plays("--apply", ToolAnswer().Output(output));
}

std::string Lacks(const std::string& field) {
    return LacksField(field, "/qv/bin/patchkeeper --apply ");
}

void AddEnumerations(std::vector<Row>& rows) {
    const Call fails = Plays("--apply", ToolAnswer().ExitCode(23));
    const Call killed = Plays("--apply", ToolAnswer().DiesBySignal(SIGKILL));
    const Call mute = Plays("--errors", ToolAnswer().ExitCode(1));
    const std::vector<Row> more = {
        {Enumerate(ACTIVE), "one update", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(ACTIVE),
         "two updates",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS, DESCRIBES, "/qv/bin/patchkeeper -l M-2.0 2>&1"},
         N + "\n" + M},
        {Enumerate(ACTIVE),
         "the same update twice",
         {Prints(LINE_OF_N + LINE_OF_N)},
         {LISTS, DESCRIBES, DESCRIBES},
         N + "\n" + N},
        {Enumerate(ACTIVE), "nothing is being applied", {Prints("")}, {LISTS}, ""},
        {Enumerate(ACTIVE, {{"Name"}}), "the list shortens nothing", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(ACTIVE, {{}}), "an empty list", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(ACTIVE),
         "the tool does not tell the description",
         {Plays("-l", ToolAnswer().Output("some of it").ExitCode(5))},
         {LISTS, DESCRIBES},
         N_WITHOUT_DESCRIPTION},
        {Enumerate(ACTIVE),
         "the tool is killed over the description",
         {Plays("-l", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, DESCRIBES},
         N_WITHOUT_DESCRIPTION},
        {Enumerate(ACTIVE), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {Enumerate(ACTIVE),
         "the tool fails with 1",
         {Plays("--apply", ToolAnswer().ExitCode(1))},
         {LISTS, "/qv/bin/patchkeeper --errors 1 2>&1"},
         ToolFails(1)},
        {Enumerate(ACTIVE),
         "the tool fails and cannot say why",
         {fails, mute},
         {LISTS, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(ACTIVE),
         "the tool is killed",
         {killed},
         {LISTS, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {Enumerate(ACTIVE),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --apply ")},
        {Enumerate(ACTIVE), "a blank line", {Prints("\n")}, {LISTS}, Lacks("Name")},
        {Enumerate(ACTIVE), "a line of one field", {Prints("N\n")}, {LISTS}, Lacks("Version")},
        {Enumerate(ACTIVE),
         "a line of two fields",
         {Prints("N\tV\n")},
         {LISTS},
         Lacks("Short Description")},
        {Enumerate(ACTIVE),
         "a line of three fields",
         {Prints("N\tV\tD\n")},
         {LISTS},
         Lacks("Location")},
        {Enumerate(ACTIVE),
         "a line of four fields",
         {Prints("N\tV\tD\tftp\n")},
         {LISTS},
         Lacks("Apply Date")},
        {Enumerate(ACTIVE),
         "a line of five fields",
         {Prints("N\tV\tD\tftp\tFeb 3 2026 04:05\n")},
         {LISTS},
         Lacks("Reboot Required")},
        {Enumerate(ACTIVE),
         "a line of six fields",
         {Prints("N\tV\tD\tftp\tFeb 3 2026 04:05\treboot\n")},
         {LISTS},
         Lacks("Size")},
        {Enumerate(ACTIVE),
         "a line of seven fields",
         {Prints("N\tV\tD\tftp\tFeb 3 2026 04:05\treboot\t12\n")},
         {LISTS},
         Lacks("Status")},
        {Enumerate(ACTIVE),
         "the second line is short",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Lacks("Version")},
        {Enumerate(ACTIVE),
         "an unreadable apply date",
         {Prints("N\tV\tD\tftp\tsoon\treboot\t12\tApplying\n")},
         {LISTS, DESCRIBES},
         Escapes("DateTimeException")},
        {Enumerate("znx_activesoftwareupdate"), "the class name in another case", {}, {}, Fails(5)},
        {EnumerateNames(ACTIVE), "one update", {}, {LISTS}, PATH_OF_N},
        {EnumerateNames(ACTIVE),
         "two updates",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS},
         PATH_OF_N + "\n" + PATH_OF_M},
        {EnumerateNames(ACTIVE), "nothing is being applied", {Prints("")}, {LISTS}, ""},
        {EnumerateNames(ACTIVE), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {EnumerateNames(ACTIVE),
         "the tool is killed",
         {killed},
         {LISTS, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {EnumerateNames(ACTIVE),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --apply ")},
        {EnumerateNames(ACTIVE),
         "the second line is short",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Lacks("Version")},
        {EnumerateNames(ACTIVE),
         "an unreadable date, which no path needs",
         {Prints("N\tV\tD\tftp\tsoon\treboot\t12\tApplying\n")},
         {LISTS},
         PATH_OF_N},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddGets(std::vector<Row>& rows) {
    const Call fails = Plays("--apply", ToolAnswer().Output(LINE_OF_N).ExitCode(23));
    const Call killed = Plays("--apply", ToolAnswer().DiesBySignal(SIGKILL));
    const std::vector<Row> more = {
        {Get(Update("N V")), "before any enumeration", {}, {LISTS, DESCRIBES}, N},
        {Get(Update("N V")),
         "after an enumeration the tool is asked again",
         {Gives(Enumerate(ACTIVE), N)},
         {LISTS, DESCRIBES},
         N},
        {Get(Update("N V")),
         "the update has gone since the enumeration",
         {Gives(Enumerate(ACTIVE), N), Prints(LINE_OF_M)},
         {LISTS},
         Fails(6)},
        {Get(Update("M 2.0")),
         "the second of two",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS, "/qv/bin/patchkeeper -l M-2.0 2>&1"},
         M},
        {Get(Update("N V"), {{"Name"}}), "the list shortens nothing", {}, {LISTS, DESCRIBES}, N},
        {Get(Update("N V")),
         "the tool does not tell the description",
         {Plays("-l", ToolAnswer().Output("some of it").ExitCode(5))},
         {LISTS, DESCRIBES},
         N_WITHOUT_DESCRIPTION},
        {Get(Update("N 2.0")), "no such update", {}, {LISTS}, Fails(6)},
        {Get(Update("n v")), "the key in another case", {}, {LISTS}, Fails(6)},
        {Get(Update("N  V")), "two blanks in the key", {}, {LISTS}, Fails(6)},
        {Get(Update("N-V")), "a hyphen in the key", {}, {LISTS}, Fails(6)},
        {Get(Update("0")), "a position as key", {}, {LISTS}, Fails(6)},
        {Get(Update("N V")), "nothing is being applied", {Prints("")}, {LISTS}, Fails(6)},
        {Get(Update("N V")), "the tool fails", {fails}, {LISTS, ASKS_WHY}, Fails(6)},
        {Get(Update("N V")), "the tool is killed", {killed}, {LISTS, ASKS_WHY_137}, Fails(6)},
        {Get(Update("N V")),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --apply ")},
        {Get(Update("N V")),
         "a short line behind the update",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Fails(6)},
        {Get(Update("N V")),
         "an unreadable date",
         {Prints("N\tV\tD\tftp\tsoon\treboot\t12\tApplying\n")},
         {LISTS, DESCRIBES},
         Escapes("DateTimeException")},
        {Get(ClassPath(ACTIVE)), "no key", {}, {}, Fails(4)},
        {Get(Path(ACTIVE, "Name", "N V")), "another key", {}, {}, Fails(4)},
        {Get(Path(ACTIVE, "InstanceID", Null())), "a null key", {}, {}, Fails(4)},
        {Get(Path(ACTIVE, "InstanceID", Number(1))), "a number as key", {}, {}, Fails(4)},
        {Get(Path(ACTIVE, "InstanceID", Flag(true))), "a boolean as key", {}, {}, Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(ACTIVE, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

void AddRefusals(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Delete(Update("N V")), "looked up, and refused", {}, {LISTS}, Fails(7)},
        {Delete(Update("M 2.0")), "no such update", {}, {LISTS}, Fails(6)},
        {Delete(Update("N V")), "nothing is being applied", {Prints("")}, {LISTS}, Fails(6)},
        {Delete(Update("N V")),
         "the listing fails",
         {Plays("--apply", ToolAnswer().ExitCode(23))},
         {LISTS, ASKS_WHY},
         Fails(6)},
        {Delete(Update("N V")),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --apply ")},
        {Delete(ClassPath(ACTIVE)), "no key", {}, {}, Fails(4)},
        {Delete(Path(ACTIVE, "InstanceID", Null())), "a null key", {}, {}, Fails(4)},
        {Delete(Path(ACTIVE, "InstanceID", Number(1))), "a number as key", {}, {}, Fails(4)},
        {Create(ACTIVE), "always refused", {}, {}, Fails(7)},
        {Modify(ACTIVE, {{"InstanceID", Text("N V")}}), "always refused", {}, {}, Fails(7)},
        {Modify(ACTIVE, {}), "nothing is given", {}, {}, Fails(7)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Delete(Path(ACTIVE, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

void AddCancel(std::vector<Row>& rows) {
    const auto cancel = [](const Values& in) { return Invoke(Update("N V"), "Cancel", in); };
    const Call refuses = Plays("--rback", ToolAnswer().ExitCode(16));
    const std::vector<Row> more = {
        {cancel({}), "the update is rolled back", {}, {LISTS, ROLLS_BACK}, "string \"\""},
        {Invoke(Update("M 2.0"), "Cancel"),
         "the second of two",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS, "/qv/bin/patchkeeper --rback M 2.0"},
         "string \"\""},
        {cancel({}),
         "the tool prints what it did",
         {Plays("--rback", ToolAnswer().Output("Rolled back.\n"))},
         {LISTS, ROLLS_BACK},
         "string \"\""},
        {cancel({}),
         "the tool refuses",
         {refuses},
         {LISTS, ROLLS_BACK, ASKS_WHY_16},
         ToolFails(16)},
        {cancel({}),
         "the tool refuses and cannot say why",
         {refuses, Plays("--errors", ToolAnswer().ExitCode(1))},
         {LISTS, ROLLS_BACK, ASKS_WHY_16},
         Fails(1, "SWU_Patchkeeper_PatchRemoveFailed")},
        {cancel({}),
         "the tool is killed over it",
         {Plays("--rback", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, ROLLS_BACK, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {cancel({}),
         "an unreadable date, which nobody reads",
         {Prints("N\tV\tD\tftp\tsoon\treboot\t12\tApplying\n")},
         {LISTS, ROLLS_BACK},
         "string \"\""},
        {cancel({Null(), Number(1), Flag(false)}),
         "null and other types as parameters",
         {},
         {LISTS, ROLLS_BACK},
         "string \"\""},
        {Invoke(Update("N V"), "Cancel", {}, {"Status"}),
         "an out-parameter is left as it was",
         {},
         {LISTS, ROLLS_BACK},
         "string \"\", Status = null"},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({cancel({Text(hostile.text)}),
                        std::string("a parameter too many, ") + hostile.what,
                        {},
                        {LISTS, ROLLS_BACK},
                        "string \"\""});
    }
}

void AddMethodLookups(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Invoke(Update("M 2.0"), "Cancel"), "no such update", {}, {LISTS}, Fails(6)},
        {Invoke(Update("N V"), "Cancel"),
         "the listing fails",
         {Plays("--apply", ToolAnswer().ExitCode(23))},
         {LISTS, ASKS_WHY},
         Fails(6)},
        {Invoke(Update("N V"), "Cancel"),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --apply ")},
        {Invoke(Update("N V"), "Cancel"),
         "the update has gone since the enumeration",
         {Gives(Enumerate(ACTIVE), N), Prints(LINE_OF_M)},
         {LISTS},
         Fails(6)},
        {Invoke(ClassPath(ACTIVE), "Cancel"), "no key", {}, {}, Fails(4)},
        {Invoke(Path(ACTIVE, "InstanceID", Null()), "Cancel"), "a null key", {}, {}, Fails(4)},
        {Invoke(Path(ACTIVE, "InstanceID", Number(1)), "Cancel"),
         "a number as key",
         {},
         {},
         Fails(4)},
        {Invoke(Update("N V"), "cancel"), "the name in another case", {}, {LISTS}, Fails(17)},
        {Invoke(Update("N V"), "Remove"), "another class's method", {}, {LISTS}, Fails(17)},
        {Invoke(Update("N V"), ""), "no method name", {}, {LISTS}, Fails(17)},
        {Invoke(Update("M 2.0"), "Remove"),
         "an unknown method of an unknown update",
         {},
         {LISTS},
         Fails(6)},
        {Invoke(ClassPath(ACTIVE), "Remove"), "an unknown method without a key", {}, {}, Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Invoke(Path(ACTIVE, "InstanceID", Text(hostile.text)), "Cancel"),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

} // namespace

std::vector<Row> ActiveRows() {
    std::vector<Row> rows;
    AddEnumerations(rows);
    AddGets(rows);
    AddRefusals(rows);
    AddCancel(rows);
    AddMethodLookups(rows);
    return rows;
}

} // namespace matrix
