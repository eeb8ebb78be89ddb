#include "matrix/Matrix.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const SCHEDULED = "ZNX_ScheduledSoftwareUpdate";
const std::string LISTS = "/qv/bin/patchkeeper --sched  2>&1";
const std::string DESCRIBES = "/qv/bin/patchkeeper -l N-V 2>&1";
const std::string DROPS = "/qv/bin/patchkeeper --msched N V";
const std::string MOVES = "/qv/bin/patchkeeper --msched N V "
                          "\"Fri Feb 13 00:00:00 2026\" \"Thu Jan  1 23:59:00 2026\"";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";
const std::string ASKS_WHY_18 = "/qv/bin/patchkeeper --errors 18 2>&1";
const std::string ASKS_WHY_137 = "/qv/bin/patchkeeper --errors 137 2>&1";

const std::string N =
    "ZNX_ScheduledSoftwareUpdate { InstanceID = string \"N V\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; UpdateDescription = string \"The long\ntext.\n\"; "
    "VersionString = string \"V\"; Location = string \"ftp\"; "
    "DownloadDate = datetime 20260102030400.000000+000; "
    "ApplyDate = datetime 20260203040500.000000+000; RebootRequired = boolean true; "
    "Status = string \"Scheduled\"; Size = string \"12\"; }";
const std::string N_WITHOUT_DESCRIPTION =
    "ZNX_ScheduledSoftwareUpdate { InstanceID = string \"N V\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; VersionString = string \"V\"; "
    "Location = string \"ftp\"; DownloadDate = datetime 20260102030400.000000+000; "
    "ApplyDate = datetime 20260203040500.000000+000; RebootRequired = boolean true; "
    "Status = string \"Scheduled\"; Size = string \"12\"; }";
const std::string M =
    "ZNX_ScheduledSoftwareUpdate { InstanceID = string \"M 2.0\"; Name = string \"M\"; "
    "ShortDescription = string \"More\"; UpdateDescription = string \"The long\ntext.\n\"; "
    "VersionString = string \"2.0\"; Location = string \"usb\"; "
    "DownloadDate = datetime 20260304050600.000000+000; "
    "ApplyDate = datetime 20260405060700.000000+000; RebootRequired = boolean false; "
    "Status = string \"Waiting\"; Size = string \"7\"; }";

const std::string LINE_OF_N =
    "N\tV\tDesc\tftp\tJan 2 2026 03:04\tFeb 3 2026 04:05\treboot\t12\tScheduled\n";
const std::string LINE_OF_M =
    "M\t2.0\tMore\tusb\tMar 4 2026 05:06\tApr 5 2026 06:07\tno\t7\tWaiting\n";
const std::string PATH_OF_N = "/root/cimv2:ZNX_ScheduledSoftwareUpdate.InstanceID=\"N V\"";
const std::string PATH_OF_M = "/root/cimv2:ZNX_ScheduledSoftwareUpdate.InstanceID=\"M 2.0\"";

OpenWBEM::CIMObjectPath Update(const char* id) {
    return Path(SCHEDULED, "InstanceID", id);
}

const OpenWBEM::CIMValue DAY = When("20260213000000.000000+000");
const OpenWBEM::CIMValue TIME = When("20260101235900.000000+000");

Call Prints(const std::string& output) {
    return Plays("--sched", ToolAnswer().Output(output));
}

std::string Lacks(const std::string& field) {
    return LacksField(field, "/qv/bin/patchkeeper --sched ");
}

void AddEnumerations(std::vector<Row>& rows) {
    const Call fails = Plays("--sched", ToolAnswer().ExitCode(23));
    const Call killed = Plays("--sched", ToolAnswer().DiesBySignal(SIGKILL));
    const Call mute = Plays("--errors", ToolAnswer().ExitCode(1));
    const std::vector<Row> more = {
        {Enumerate(SCHEDULED), "one update", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(SCHEDULED),
         "two updates",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS, DESCRIBES, "/qv/bin/patchkeeper -l M-2.0 2>&1"},
         N + "\n" + M},
        {Enumerate(SCHEDULED),
         "the same update twice",
         {Prints(LINE_OF_N + LINE_OF_N)},
         {LISTS, DESCRIBES, DESCRIBES},
         N + "\n" + N},
        {Enumerate(SCHEDULED), "nothing is scheduled", {Prints("")}, {LISTS}, ""},
        {Enumerate(SCHEDULED, {{"Name"}}), "the list shortens nothing", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(SCHEDULED, {{}}), "an empty list", {}, {LISTS, DESCRIBES}, N},
        {Enumerate(SCHEDULED),
         "the tool does not tell the description",
         {Plays("-l", ToolAnswer().Output("some of it").ExitCode(5))},
         {LISTS, DESCRIBES},
         N_WITHOUT_DESCRIPTION},
        {Enumerate(SCHEDULED),
         "the tool is killed over the description",
         {Plays("-l", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, DESCRIBES},
         N_WITHOUT_DESCRIPTION},
        {Enumerate(SCHEDULED), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {Enumerate(SCHEDULED),
         "the tool fails with 1",
         {Plays("--sched", ToolAnswer().ExitCode(1))},
         {LISTS, "/qv/bin/patchkeeper --errors 1 2>&1"},
         ToolFails(1)},
        {Enumerate(SCHEDULED),
         "the tool fails and cannot say why",
         {fails, mute},
         {LISTS, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(SCHEDULED),
         "the tool is killed",
         {killed},
         {LISTS, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {Enumerate(SCHEDULED),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --sched ")},
        {Enumerate(SCHEDULED), "a blank line", {Prints("\n")}, {LISTS}, Lacks("Name")},
        {Enumerate(SCHEDULED), "a line of one field", {Prints("N\n")}, {LISTS}, Lacks("Version")},
        {Enumerate(SCHEDULED),
         "a line of two fields",
         {Prints("N\tV\n")},
         {LISTS},
         Lacks("Short Description")},
        {Enumerate(SCHEDULED),
         "a line of three fields",
         {Prints("N\tV\tD\n")},
         {LISTS},
         Lacks("Location")},
        {Enumerate(SCHEDULED),
         "a line of four fields",
         {Prints("N\tV\tD\tftp\n")},
         {LISTS},
         Lacks("Download Date")},
        {Enumerate(SCHEDULED),
         "a line of five fields",
         {Prints("N\tV\tD\tftp\tJan 2 2026 03:04\n")},
         {LISTS},
         Lacks("Apply Date")},
        {Enumerate(SCHEDULED),
         "a line of six fields",
         {Prints("N\tV\tD\tftp\tJan 2 2026 03:04\tFeb 3 2026 04:05\n")},
         {LISTS},
         Lacks("Reboot Required")},
        {Enumerate(SCHEDULED),
         "a line of seven fields",
         {Prints("N\tV\tD\tftp\tJan 2 2026 03:04\tFeb 3 2026 04:05\treboot\n")},
         {LISTS},
         Lacks("Size")},
        {Enumerate(SCHEDULED),
         "a line of eight fields",
         {Prints("N\tV\tD\tftp\tJan 2 2026 03:04\tFeb 3 2026 04:05\treboot\t12\n")},
         {LISTS},
         Lacks("Status")},
        {Enumerate(SCHEDULED),
         "the second line is short",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Lacks("Version")},
        {Enumerate(SCHEDULED),
         "an unreadable download date",
         {Prints("N\tV\tD\tftp\tyesterday\tFeb 3 2026 04:05\treboot\t12\tScheduled\n")},
         {LISTS, DESCRIBES},
         Escapes("DateTimeException")},
        {Enumerate(SCHEDULED),
         "an unreadable apply date",
         {Prints("N\tV\tD\tftp\tJan 2 2026 03:04\tsoon\treboot\t12\tScheduled\n")},
         {LISTS, DESCRIBES},
         Escapes("DateTimeException")},
        {Enumerate("znx_scheduledsoftwareupdate"),
         "the class name in another case",
         {},
         {},
         Fails(5)},
        {EnumerateNames(SCHEDULED), "one update", {}, {LISTS}, PATH_OF_N},
        {EnumerateNames(SCHEDULED),
         "two updates",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS},
         PATH_OF_N + "\n" + PATH_OF_M},
        {EnumerateNames(SCHEDULED), "nothing is scheduled", {Prints("")}, {LISTS}, ""},
        {EnumerateNames(SCHEDULED), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {EnumerateNames(SCHEDULED),
         "the tool is killed",
         {killed},
         {LISTS, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {EnumerateNames(SCHEDULED),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --sched ")},
        {EnumerateNames(SCHEDULED),
         "the second line is short",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Lacks("Version")},
        {EnumerateNames(SCHEDULED),
         "an unreadable date, which no path needs",
         {Prints("N\tV\tD\tftp\tyesterday\tsoon\treboot\t12\tScheduled\n")},
         {LISTS},
         PATH_OF_N},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddGets(std::vector<Row>& rows) {
    const Call fails = Plays("--sched", ToolAnswer().Output(LINE_OF_N).ExitCode(23));
    const Call killed = Plays("--sched", ToolAnswer().DiesBySignal(SIGKILL));
    const std::vector<Row> more = {
        {Get(Update("N V")), "before any enumeration", {}, {LISTS, DESCRIBES}, N},
        {Get(Update("N V")),
         "after an enumeration the tool is asked again",
         {Gives(Enumerate(SCHEDULED), N)},
         {LISTS, DESCRIBES},
         N},
        {Get(Update("N V")),
         "the update has gone since the enumeration",
         {Gives(Enumerate(SCHEDULED), N), Prints(LINE_OF_M)},
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
        {Get(Update("N V")), "nothing is scheduled", {Prints("")}, {LISTS}, Fails(6)},
        {Get(Update("N V")), "the tool fails", {fails}, {LISTS, ASKS_WHY}, Fails(6)},
        {Get(Update("N V")), "the tool is killed", {killed}, {LISTS, ASKS_WHY_137}, Fails(6)},
        {Get(Update("N V")),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --sched ")},
        {Get(Update("N V")),
         "a short line behind the update",
         {Prints(LINE_OF_N + "M\n")},
         {LISTS},
         Fails(6)},
        {Get(Update("N V")),
         "an unreadable date",
         {Prints("N\tV\tD\tftp\tyesterday\tFeb 3 2026 04:05\treboot\t12\tScheduled\n")},
         {LISTS, DESCRIBES},
         Escapes("DateTimeException")},
        {Get(ClassPath(SCHEDULED)), "no key", {}, {}, Fails(4)},
        {Get(Path(SCHEDULED, "Name", "N V")), "another key", {}, {}, Fails(4)},
        {Get(Path(SCHEDULED, "InstanceID", Null())), "a null key", {}, {}, Fails(4)},
        {Get(Path(SCHEDULED, "InstanceID", Number(1))), "a number as key", {}, {}, Fails(4)},
        {Get(Path(SCHEDULED, "InstanceID", Flag(true))), "a boolean as key", {}, {}, Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(SCHEDULED, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

void AddDeletions(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Delete(Update("N V")), "the schedule is dropped", {}, {LISTS, DROPS}, ""},
        {Delete(Update("M 2.0")),
         "the second of two",
         {Prints(LINE_OF_N + LINE_OF_M)},
         {LISTS, "/qv/bin/patchkeeper --msched M 2.0"},
         ""},
        {Delete(Update("N V")),
         "the tool refuses",
         {Plays("--msched", ToolAnswer().ExitCode(18))},
         {LISTS, DROPS, ASKS_WHY_18},
         ToolFails(18)},
        {Delete(Update("N V")),
         "the tool refuses and cannot say why",
         {Plays("--msched", ToolAnswer().ExitCode(18)),
          Plays("--errors", ToolAnswer().ExitCode(1))},
         {LISTS, DROPS, ASKS_WHY_18},
         Fails(1, "SWU_Patchkeeper_PatchModifyFailed")},
        {Delete(Update("M 2.0")), "no such update", {}, {LISTS}, Fails(6)},
        {Delete(Update("N V")),
         "the listing fails",
         {Plays("--sched", ToolAnswer().ExitCode(23))},
         {LISTS, ASKS_WHY},
         Fails(6)},
        {Delete(Update("N V")),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --sched ")},
        {Delete(Update("N V")),
         "an unreadable date, which nobody reads",
         {Prints("N\tV\tD\tftp\tyesterday\tsoon\treboot\t12\tScheduled\n")},
         {LISTS, DROPS},
         ""},
        {Delete(ClassPath(SCHEDULED)), "no key", {}, {}, Fails(4)},
        {Delete(Path(SCHEDULED, "InstanceID", Null())), "a null key", {}, {}, Fails(4)},
        {Delete(Path(SCHEDULED, "InstanceID", Number(1))), "a number as key", {}, {}, Fails(4)},
        {Create(SCHEDULED), "always refused", {}, {}, Fails(7)},
        {Modify(SCHEDULED, {{"InstanceID", Text("N V")}}), "always refused", {}, {}, Fails(7)},
        {Modify(SCHEDULED, {}), "nothing is given", {}, {}, Fails(7)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Delete(Path(SCHEDULED, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

void AddModify(std::vector<Row>& rows) {
    const auto modify = [](const Values& in) { return Invoke(Update("N V"), "Modify", in); };
    const Call refuses = Plays("--msched", ToolAnswer().ExitCode(18));
    const std::vector<Row> more = {
        {modify({DAY, TIME}), "a day and a time", {}, {LISTS, MOVES}, "string \"\""},
        {modify({DAY, TIME}),
         "the tool prints what it did",
         {Plays("--msched", ToolAnswer().Output("Moved.\n"))},
         {LISTS, MOVES},
         "string \"\""},
        {modify({When("20260213010000.000000+060"), When("20260213000000.000000-120")}),
         "times of other zones become local ones",
         {},
         {LISTS, "/qv/bin/patchkeeper --msched N V "
                 "\"Fri Feb 13 00:00:00 2026\" \"Fri Feb 13 02:00:00 2026\""},
         "string \"\""},
        {modify({When("20260213******.******+000"), When("20260213235959.999999+000")}),
         "asterisks are zeros and microseconds are lost",
         {},
         {LISTS, "/qv/bin/patchkeeper --msched N V "
                 "\"Fri Feb 13 00:00:00 2026\" \"Fri Feb 13 23:59:59 2026\""},
         "string \"\""},
        {modify({DAY, TIME}),
         "the tool refuses",
         {refuses},
         {LISTS, MOVES, ASKS_WHY_18},
         ToolFails(18)},
        {modify({DAY, TIME}),
         "the tool refuses and cannot say why",
         {refuses, Plays("--errors", ToolAnswer().ExitCode(1))},
         {LISTS, MOVES, ASKS_WHY_18},
         Fails(1, "SWU_Patchkeeper_PatchModifyFailed")},
        {modify({}), "no parameter", {}, {LISTS}, Fails(4)},
        {modify({DAY}), "one parameter", {}, {LISTS}, Fails(4)},
        {modify({DAY, TIME, TIME}), "three parameters", {}, {LISTS}, Fails(4)},
        {modify({DAY, TIME, Null()}), "a third that is null", {}, {LISTS}, Fails(4)},
        {modify({Null(), TIME}), "no day", {}, {LISTS}, Fails(4)},
        {modify({DAY, Null()}), "no time", {}, {LISTS}, Fails(4)},
        {modify({Null(), Null()}), "neither day nor time", {}, {LISTS}, Fails(4)},
        {modify({Number(1), TIME}), "a number as day", {}, {LISTS}, Fails(4)},
        {modify({DAY, Number(1)}), "a number as time", {}, {LISTS}, Fails(4)},
        {modify({Flag(true), TIME}), "a boolean as day", {}, {LISTS}, Fails(4)},
        {modify({DAY, Flag(true)}), "a boolean as time", {}, {LISTS}, Fails(4)},
        {modify({Text("20260213000000.000000+000"), TIME}),
         "the day as text",
         {},
         {LISTS},
         Fails(4)},
        {modify({DAY, Text("20260213000000.000000+000")}),
         "the time as text",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("00000001000000.000000:000"), TIME}),
         "an interval as day",
         {},
         {LISTS},
         Fails(4)},
        {modify({DAY, When("00000000235900.000000:000")}),
         "an interval as time",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("00000000000000.000000:000"), TIME}),
         "the interval of length zero as day",
         {},
         {LISTS},
         Fails(4)},
        {modify({DAY, When("00000000000000.000000:000")}),
         "the interval of length zero as time",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("00000000000000.000000+000"), TIME}),
         "a day that is all zeros",
         {},
         {LISTS},
         Fails(4)},
        {modify({DAY, When("00000000235900.000000+000")}),
         "a time without a day",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("20261301000000.000000+000"), TIME}),
         "the thirteenth month",
         {},
         {LISTS},
         Fails(4)},
        {modify({DAY, When("20260213240000.000000+000")}),
         "the twenty-fifth hour",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("19600213000000.000000+000"), TIME}),
         "a day before 1970",
         {},
         {LISTS},
         Fails(4)},
        {modify({When("202602**000000.000000+000"), TIME}),
         "any day of a month",
         {},
         {LISTS},
         Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({modify({Text(hostile.text), TIME}),
                        std::string("the day is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(4)});
        rows.push_back({modify({DAY, Text(hostile.text)}),
                        std::string("the time is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(4)});
    }
}

void AddRemove(std::vector<Row>& rows) {
    const auto remove = [](const Values& in) { return Invoke(Update("N V"), "Remove", in); };
    const std::vector<Row> more = {
        {remove({}), "the schedule is dropped", {}, {LISTS, DROPS}, "string \"\""},
        {remove({}),
         "the tool prints what it did",
         {Plays("--msched", ToolAnswer().Output("Dropped.\n"))},
         {LISTS, DROPS},
         "string \"\""},
        {remove({}),
         "the tool refuses",
         {Plays("--msched", ToolAnswer().ExitCode(18))},
         {LISTS, DROPS, ASKS_WHY_18},
         ToolFails(18)},
        {remove({}),
         "the tool is killed over it",
         {Plays("--msched", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, DROPS, ASKS_WHY_137},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {remove({DAY, TIME}),
         "two parameters too many, which move nothing",
         {},
         {LISTS, DROPS},
         "string \"\""},
        {remove({Null(), Number(1), Flag(false)}),
         "null and other types as parameters",
         {},
         {LISTS, DROPS},
         "string \"\""},
        {Invoke(Update("N V"), "Remove", {}, {"Status"}),
         "an out-parameter is left as it was",
         {},
         {LISTS, DROPS},
         "string \"\", Status = null"},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({remove({Text(hostile.text)}),
                        std::string("a parameter too many, ") + hostile.what,
                        {},
                        {LISTS, DROPS},
                        "string \"\""});
    }
}

void AddMethodLookups(std::vector<Row>& rows) {
    const Call fails = Plays("--sched", ToolAnswer().ExitCode(23));
    const std::vector<Row> more = {
        {Invoke(Update("M 2.0"), "Modify", {DAY, TIME}), "no such update", {}, {LISTS}, Fails(6)},
        {Invoke(Update("M 2.0"), "Modify"),
         "no such update, and no parameters",
         {},
         {LISTS},
         Fails(6)},
        {Invoke(Update("M 2.0"), "Remove"), "no such update", {}, {LISTS}, Fails(6)},
        {Invoke(Update("N V"), "Modify", {DAY, TIME}),
         "the listing fails",
         {fails},
         {LISTS, ASKS_WHY},
         Fails(6)},
        {Invoke(Update("N V"), "Remove"),
         "the listing fails",
         {fails},
         {LISTS, ASKS_WHY},
         Fails(6)},
        {Invoke(Update("N V"), "Modify", {DAY, TIME}),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --sched ")},
        {Invoke(Update("N V"), "Remove"),
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(6),
         Missed("/qv/bin/patchkeeper --sched ")},
        {Invoke(Update("N V"), "Remove"),
         "the update has gone since the enumeration",
         {Gives(Enumerate(SCHEDULED), N), Prints(LINE_OF_M)},
         {LISTS},
         Fails(6)},
        {Invoke(ClassPath(SCHEDULED), "Modify", {DAY, TIME}), "no key", {}, {}, Fails(4)},
        {Invoke(ClassPath(SCHEDULED), "Remove"), "no key", {}, {}, Fails(4)},
        {Invoke(Path(SCHEDULED, "InstanceID", Null()), "Modify", {DAY, TIME}),
         "a null key",
         {},
         {},
         Fails(4)},
        {Invoke(Path(SCHEDULED, "InstanceID", Null()), "Remove"), "a null key", {}, {}, Fails(4)},
        {Invoke(Path(SCHEDULED, "InstanceID", Number(1)), "Remove"),
         "a number as key",
         {},
         {},
         Fails(4)},
        {Invoke(Update("N V"), "modify", {DAY, TIME}),
         "the name in another case",
         {},
         {LISTS},
         Fails(17)},
        {Invoke(Update("N V"), "remove"), "the name in another case", {}, {LISTS}, Fails(17)},
        {Invoke(Update("N V"), "Cancel"), "another class's method", {}, {LISTS}, Fails(17)},
        {Invoke(Update("N V"), ""), "no method name", {}, {LISTS}, Fails(17)},
        {Invoke(Update("M 2.0"), "Cancel"),
         "an unknown method of an unknown update",
         {},
         {LISTS},
         Fails(6)},
        {Invoke(ClassPath(SCHEDULED), "Cancel"),
         "an unknown method without a key",
         {},
         {},
         Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        const OpenWBEM::CIMObjectPath path = Path(SCHEDULED, "InstanceID", Text(hostile.text));
        rows.push_back({Invoke(path, "Modify", {DAY, TIME}),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
        rows.push_back({Invoke(path, "Remove"),
                        std::string("the key is ") + hostile.what,
                        {},
                        {LISTS},
                        Fails(6)});
    }
}

} // namespace

std::vector<Row> ScheduledRows() {
    std::vector<Row> rows;
    AddEnumerations(rows);
    AddGets(rows);
    AddDeletions(rows);
    AddModify(rows);
    AddRemove(rows);
    AddMethodLookups(rows);
    return rows;
}

} // namespace matrix
