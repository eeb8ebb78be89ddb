#include "matrix/Available.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const COMPONENT = "ZNX_SoftwareUpdateComponent";

const std::string LISTS = "/qv/bin/patchkeeper --cache  2>&1";
const std::string ASKS_WARNINGS = "/qv/bin/patchkeeper --warnings N V 2>&1";
const std::string ASKS_COMPONENTS = "/qv/bin/patchkeeper --hascomponents N V";
const std::string SCHEDULES = "/qv/bin/patchkeeper --sched N V \"Fri Jan  2 03:04:05 2026\" "
                              "\"Tue Feb  3 04:05:06 2026\" 2>&1";

const std::string PLACEHOLDER =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"1\"; Name = string \"Dummy\"; "
    "ShortDescription = string \"\"; VersionString = string \"\"; Size = string \"\"; "
    "RebootRequired = boolean false; Status = uint8 0; }";
const std::string N_DESCRIBED =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"0\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; VersionString = string \"V\"; Size = string \"12\"; "
    "RebootRequired = boolean true; Status = uint8 1; "
    "UpdateDescription = string \"The long\ntext.\n\"; }";
const std::string M_DESCRIBED =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"1\"; Name = string \"M\"; "
    "ShortDescription = string \"More\"; VersionString = string \"2.0\"; Size = string \"7\"; "
    "RebootRequired = boolean false; Status = uint8 3; "
    "UpdateDescription = string \"The long\ntext.\n\"; }";

std::string MissingField(const std::string& field) {
    return LacksField(field, "/qv/bin/patchkeeper --cache ");
}

Rows Enumerations() {
    const Names described = Names({"UpdateDescription"});
    return {
        {Enumerate(UPDATE), "two updates", {}, {LISTS}, UPDATE_N + "\n" + UPDATE_M},
        {Enumerate(UPDATE), "there are none", {Plays("--cache", ToolAnswer())}, {LISTS}, ""},
        {Enumerate(UPDATE, Names({"Name"})),
         "a property list without the description",
         {},
         {LISTS},
         UPDATE_N + "\n" + UPDATE_M},
        {Enumerate(UPDATE, described),
         "the description is named",
         {},
         {LISTS, "/qv/bin/patchkeeper -l N-V 2>&1", "/qv/bin/patchkeeper -l M-2.0 2>&1"},
         N_DESCRIBED + "\n" + M_DESCRIBED},
        {Enumerate(UPDATE, described),
         "the description is named and fails with 5",
         {Ends("-l", 5)},
         {LISTS, "/qv/bin/patchkeeper -l N-V 2>&1", Asks(1)},
         ToolFails(1)},
        {Enumerate(UPDATE),
         "the tool fails",
         {Ends("--cache", 33)},
         {LISTS, Asks(33)},
         ToolFails(33)},
        {Enumerate(UPDATE),
         "the tool fails and cannot say why",
         {Ends("--cache", 23), Ends("--errors", 3)},
         {LISTS, Asks(23)},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(UPDATE),
         "the tool is killed",
         {Plays("--cache", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, Asks(137)},
         ToolFails(137)},
        {Enumerate(UPDATE),
         "there is no tool",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --cache ")},
        {Enumerate(UPDATE),
         "a line lacks its last field",
         {Prints("--cache", "N\tV\tDesc\t12\treboot\n")},
         {LISTS},
         MissingField("Category")},
        {Enumerate(UPDATE),
         "an empty line",
         {Prints("--cache", "\n")},
         {LISTS},
         MissingField("Name")},
        {EnumerateNames(UPDATE),
         "two updates",
         {},
         {LISTS},
         "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"0\"\n"
         "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"1\""},
        {EnumerateNames(UPDATE), "there are none", {Plays("--cache", ToolAnswer())}, {LISTS}, ""},
        {EnumerateNames(UPDATE),
         "the tool fails",
         {Ends("--cache", 34)},
         {LISTS, Asks(34)},
         ToolFails(34)},
        {EnumerateNames(UPDATE),
         "a line lacks its last field",
         {Prints("--cache", "N\tV\tDesc\t12\treboot\n")},
         {LISTS},
         MissingField("Category")},
    };
}

Rows Gets() {
    const Call list = UpdatesListed();
    const Names described = Names({"UpdateDescription"});
    const std::string describes = "/qv/bin/patchkeeper -l N-V 2>&1";
    Rows rows = {
        {Get(Update("1")), "before any enumeration", {}, {}, PLACEHOLDER},
        {Get(Update("0")), "before any enumeration", {}, {}, Fails(6)},
        {Get(Update("0")), "after an enumeration", {list}, {}, UPDATE_N},
        {Get(Update("1")),
         "after an enumeration of the names",
         {Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES)},
         {},
         UPDATE_M},
        {Get(Update("0")),
         "the tool knows others since",
         {list, Prints("--cache", "X\tY\tOther\t1\tno\tInvalid\n")},
         {},
         UPDATE_N},
        {Get(Update("0")),
         "after an enumeration that failed",
         {list, Ends("--cache", 33), UpdatesListed(ToolFails(33))},
         {},
         Fails(6)},
        {Get(Update("0")),
         "after an enumeration that failed at its second line",
         {Prints("--cache", "N\tV\tDesc\t12\treboot\tApplied\nM\n"),
          UpdatesListed(MissingField("Version"))},
         {},
         UPDATE_N},
        {Get(Update("0"), described), "the description is named", {list}, {describes}, N_DESCRIBED},
        {Get(Update("0"), Names({"updatedescription", "Name"})),
         "the description is named in another case",
         {list},
         {},
         UPDATE_N},
        {Get(Update("0"), described),
         "the description fails with 5",
         {list, Ends("-l", 5)},
         {describes, Asks(1)},
         ToolFails(1)},
        {Get(Update("0"), described),
         "there is no tool",
         {list, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper -l N-V", 1)},
        {Get(Update("2")), "no such position", {list}, {}, Fails(6)},
        {Get(Update("")), "an empty key", {list}, {}, Fails(6)},
        {Get(Update("00")), "the position written otherwise", {list}, {}, Fails(6)},
        {Get(Path(UPDATE, "InstanceID", Number(0))), "a number as key", {list}, {}, UPDATE_N},
        {Get(Path(UPDATE, "InstanceID", Null())), "a null key", {list}, {}, Fails(4)},
        {Get(ClassPath(UPDATE)), "no key", {list}, {}, Fails(4)},
        {Get(Path(UPDATE, "Name", "N")), "another key", {list}, {}, Fails(4)},
        {Create(UPDATE), "always refused", {}, {}, Fails(7)},
        {Modify(UPDATE, {{"InstanceID", Text("0")}}), "always refused", {list}, {}, Fails(7)},
        {Delete(Update("0")), "always refused", {list}, {}, Fails(7)},
    };
    for (const Hostile& hostile : HostileTexts()) {
        const OpenWBEM::CIMObjectPath path = Path(UPDATE, "InstanceID", Text(hostile.text));
        const std::string what = std::string("the key is ") + hostile.what;
        rows.push_back({Get(path, described), what, {list}, {}, Fails(6)});
        rows.push_back({Delete(path), what, {list}, {}, Fails(7)});
    }
    return rows;
}

// What holds for each method of an update: its path, and that it takes no parameter.
Rows PathsOf(const char* method, const Values& in) {
    const Call list = UpdatesListed();
    Rows rows = {
        {Invoke(Update("0"), method, in), "before any enumeration", {}, {}, Fails(6)},
        {Invoke(Update("2"), method, in), "no such position", {list}, {}, Fails(6)},
        {Invoke(ClassPath(UPDATE), method, in), "no key", {list}, {}, Fails(4)},
        {Invoke(Path(UPDATE, "InstanceID", Null()), method, in),
         "a null key",
         {list},
         {},
         Fails(4)},
        {Invoke(Update("0"), method, in),
         "after an enumeration that failed",
         {list, Ends("--cache", 33), UpdatesListed(ToolFails(33))},
         {},
         Fails(6)},
    };
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Invoke(Path(UPDATE, "InstanceID", Text(hostile.text)), method, in),
                        std::string("the key is ") + hostile.what,
                        {list},
                        {},
                        Fails(6)});
    }
    return rows;
}

Rows Applies() {
    const Call list = UpdatesListed();
    const Call apply = Invoke(Update("0"), "Apply");
    const Call asks = Gives(Invoke(Update("0"), "HasOptionalComponents"), "boolean true");
    const Call asksOther = Gives(Invoke(Update("1"), "HasOptionalComponents"), "boolean true");
    const Call components =
        Gives(Enumerate(COMPONENT), COMPONENT_A + "\n" + COMPONENT_B + "\n" + COMPONENT_C);
    const auto choose = [](const char* id) {
        return Modify(COMPONENT, {{"InstanceID", Text(id)}, {"Install", Flag(true)}});
    };
    const std::string bare = "/qv/bin/patchkeeper --apply N V ";
    const std::string two = "/qv/bin/patchkeeper --apply N V a c";
    const Values one = {Text("x")};
    return {
        {apply, "no component is chosen", {list}, {MARKS, bare}, STARTED},
        {apply,
         "two of three components are chosen",
         {list, asks, components, choose("2"), choose("0")},
         {MARKS, two},
         STARTED},
        {apply,
         "the components of another update are chosen",
         {list, asksOther, components, choose("2"), choose("0")},
         {MARKS, two},
         STARTED},
        {apply,
         "the components were enumerated again since",
         {list, asks, components, choose("0"), components},
         {MARKS, bare},
         STARTED},
        {apply,
         "another update was asked for its components since",
         {list, asks, components, choose("0"), asksOther},
         {MARKS, bare},
         STARTED},
        {apply,
         "the tool knows others since",
         {list, Prints("--cache", "X\tY\tOther\t1\tno\tInvalid\n")},
         {MARKS, bare},
         STARTED},
        {Invoke(Update("1"), "Apply"),
         "the placeholder",
         {},
         {MARKS, "/qv/bin/patchkeeper --apply Dummy  "},
         STARTED},
        {apply,
         "the tool fails in the background",
         {list, Ends("--apply", 15)},
         {MARKS, bare},
         STARTED},
        {apply, "the mark fails", {list, Ends("--setinprogress", 1)}, {MARKS}, Unmarked(bare)},
        {apply, "there is no tool", {list, ToolIsGone()}, {}, Unmarked(bare), {MARKS}},
        {Invoke(Update("0"), "Apply", one), "one parameter too many", {list}, {}, Fails(4)},
        {Invoke(Update("2"), "Apply", one),
         "one parameter too many on an unknown update",
         {list},
         {},
         Fails(6)},
    };
}

Rows Warnings() {
    const Call list = UpdatesListed();
    const Call call = Invoke(Update("0"), "Warnings");
    const ToolAnswer beware = ToolAnswer().Output("Beware.\n");
    std::string lines;
    while (lines.size() < 2 * 70'000) {
        lines += "x\n";
    }
    const auto row = [&](const char* situation, const ToolAnswer& answer,
                         const std::string& result) {
        return Row{call, situation, {list, Plays("--warnings", answer)}, {ASKS_WARNINGS}, result};
    };
    return {
        row("there are warnings", beware, "string \"Beware.\n\""),
        row("there are none", ToolAnswer(), "string \"\""),
        row("exit code 1", ToolAnswer(beware).ExitCode(1), "string \"Beware.\n\""),
        row("error output", ToolAnswer().ErrorText("Hm.\n"), "string \"Hm.\n\""),
        row("no final newline", ToolAnswer().Output("a\nb"), "string \"a\nb\""),
        row("carriage returns", ToolAnswer().Output("a\r\nb\r\n"), "string \"a\r\nb\r\n\""),
        row("bytes that are no UTF-8", ToolAnswer().Output("\xff\xc3\n"), "string \"\xff\xc3\n\""),
        row("a zero byte, which ends its line", ToolAnswer().Output(std::string("a\0b\nc\n", 6)),
            "string \"ac\n\""),
        row("70,000 lines", ToolAnswer().Output(lines), "string \"" + lines + "\""),
        {call,
         "exit code 2",
         {list, Plays("--warnings", ToolAnswer(beware).ExitCode(2))},
         {ASKS_WARNINGS, Asks(2)},
         ToolFails(2)},
        {call,
         "the tool is killed",
         {list, Plays("--warnings", ToolAnswer(beware).DiesBySignal(SIGKILL))},
         {ASKS_WARNINGS, Asks(137)},
         ToolFails(137)},
        {call,
         "there is no tool",
         {list, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --warnings N V")},
        {Invoke(Update("1"), "Warnings"),
         "the placeholder",
         {},
         {"/qv/bin/patchkeeper --warnings Dummy  2>&1"},
         "string \"Beware.\n\""},
        {Invoke(Update("0"), "Warnings", {Null()}), "one parameter too many", {list}, {}, Fails(4)},
    };
}

Rows OptionalComponents() {
    const Call list = UpdatesListed();
    const Call call = Invoke(Update("0"), "HasOptionalComponents");
    const char* const option = "--hascomponents";
    return {
        {call, "it has some", {list}, {ASKS_COMPONENTS}, "boolean true"},
        {call, "it has none", {list, Ends(option, 1)}, {ASKS_COMPONENTS}, "boolean false"},
        {call, "exit code 2", {list, Ends(option, 2)}, {ASKS_COMPONENTS, Asks(2)}, ToolFails(2)},
        {call,
         "exit code 15",
         {list, Ends(option, 15)},
         {ASKS_COMPONENTS, Asks(15)},
         ToolFails(15)},
        {call,
         "the tool is killed",
         {list, Plays(option, ToolAnswer().DiesBySignal(SIGKILL))},
         {ASKS_COMPONENTS, Asks(137)},
         ToolFails(137)},
        {call,
         "there is no tool",
         {list, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --hascomponents N V")},
        {Invoke(Update("0"), "HasOptionalComponents", {Flag(true)}),
         "one parameter too many",
         {list},
         {},
         Fails(4)},
    };
}

Rows Schedules() {
    const Call list = UpdatesListed();
    const Call says = Prints("--sched", "Scheduled.\n");
    const OpenWBEM::CIMValue date = When("20260102030405.000000+000");
    const OpenWBEM::CIMValue time = When("20260203040506.000000+000");
    const auto at = [](const OpenWBEM::CIMValue& day, const OpenWBEM::CIMValue& hour) {
        return Invoke(Update("0"), "AddToSchedule", {day, hour});
    };
    Rows rows = {
        {at(date, time), "a date and a time", {list, says}, {SCHEDULES}, "string \"Scheduled.\n\""},
        {at(When("20260102050405.999999+120"), When("20260202230506.000000-300")),
         "in other time zones",
         {list, says},
         {SCHEDULES},
         "string \"Scheduled.\n\""},
        {at(date, time),
         "the tool says nothing",
         {list, Prints("--sched", "")},
         {SCHEDULES},
         "string \"\""},
        {at(date, time),
         "exit code 1",
         {list, Ends("--sched", 1)},
         {SCHEDULES, Asks(1)},
         ToolFails(1)},
        {at(date, time),
         "exit code 17",
         {list, Ends("--sched", 17)},
         {SCHEDULES, Asks(17)},
         ToolFails(17)},
        {at(date, time),
         "there is no tool",
         {list, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed(SCHEDULES)},
        {Invoke(Update("0"), "AddToSchedule"), "no parameter", {list}, {}, Fails(4)},
        {Invoke(Update("0"), "AddToSchedule", {date}),
         "one parameter too few",
         {list},
         {},
         Fails(4)},
        {Invoke(Update("0"), "AddToSchedule", {date, time, time}),
         "one parameter too many",
         {list},
         {},
         Fails(4)},
    };
    const std::vector<std::pair<const char*, OpenWBEM::CIMValue>> wrong = {
        {"null", Null()},
        {"a text", Text("20260102030405.000000+000")},
        {"a number", Number(1)},
        {"a boolean", Flag(true)},
        {"an interval", When("00000001000000.000000:000")},
        {"an interval of length zero", When("00000000000000.000000:000")},
        {"a datetime of zeros", When("00000000000000.000000+000")},
        {"the 13th month", When("20261302030405.000000+000")},
        {"before 1970", When("19600102030405.000000+000")},
        {"an array", OpenWBEM::CIMValue(OpenWBEM::CIMDateTimeArray(1))},
    };
    for (const auto& [what, value] : wrong) {
        rows.push_back({at(value, time), std::string(what) + " as date", {list}, {}, Fails(4)});
        rows.push_back({at(date, value), std::string(what) + " as time", {list}, {}, Fails(4)});
    }
    for (const Hostile& hostile : HostileTexts()) {
        const OpenWBEM::CIMValue text = Text(hostile.text);
        rows.push_back(
            {at(text, time), std::string("the date is ") + hostile.what, {list}, {}, Fails(4)});
        rows.push_back(
            {at(date, text), std::string("the time is ") + hostile.what, {list}, {}, Fails(4)});
    }
    return rows;
}

Rows OtherMethods() {
    const Call list = UpdatesListed();
    return {
        {Invoke(Update("0"), "Remove"), "an unknown method", {list}, {}, Fails(17)},
        {Invoke(Update("0"), "apply"), "a method in another case", {list}, {}, Fails(17)},
        {Invoke(Update("0"), ""), "an empty name", {list}, {}, Fails(17)},
        {Invoke(Update("0"), "getprogress"),
         "a method of the class in another case",
         {list},
         {},
         Fails(17)},
        {Invoke(Update("2"), "Remove"),
         "an unknown method on an unknown update",
         {list},
         {},
         Fails(6)},
        {Invoke(ClassPath(UPDATE), "Remove"),
         "an unknown method without a key",
         {list},
         {},
         Fails(4)},
    };
}

} // namespace

std::vector<Row> AvailableRows() {
    const Values when = {When("20260102030405.000000+000"), When("20260203040506.000000+000")};
    Rows rows = Enumerations();
    Append(rows, Gets());
    Append(rows, FetchRows());
    Append(rows, Applies());
    Append(rows, PathsOf("Apply", {}));
    Append(rows, Warnings());
    Append(rows, PathsOf("Warnings", {}));
    Append(rows, OptionalComponents());
    Append(rows, PathsOf("HasOptionalComponents", {}));
    Append(rows, Schedules());
    Append(rows, PathsOf("AddToSchedule", when));
    Append(rows, OtherMethods());
    return rows;
}

} // namespace matrix
