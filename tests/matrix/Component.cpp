#include "matrix/Available.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const COMPONENT = "ZNX_SoftwareUpdateComponent";

const std::string LISTS = "/qv/bin/patchkeeper --components  N V 2>&1";

const std::string ALL = COMPONENT_A + "\n" + COMPONENT_B + "\n" + COMPONENT_C;
const std::string B_CHOSEN = "ZNX_SoftwareUpdateComponent { InstanceID = string \"1\"; "
                             "Name = string \"b\"; VersionString = string \"\"; "
                             "ShortDescription = string \"\"; Install = boolean true; }";

const std::string PATHS = "/root/cimv2:ZNX_SoftwareUpdateComponent.InstanceID=\"0\"\n"
                          "/root/cimv2:ZNX_SoftwareUpdateComponent.InstanceID=\"1\"\n"
                          "/root/cimv2:ZNX_SoftwareUpdateComponent.InstanceID=\"2\"";

const std::string NO_NAME = LacksField("Name", "/qv/bin/patchkeeper --hist");

OpenWBEM::CIMObjectPath Component(const char* id) {
    return Path(COMPONENT, "InstanceID", id);
}

Call Prints(const char* output) {
    return Plays("--components", ToolAnswer().Output(output));
}

Call Choose(const char* id, bool install = true) {
    return Modify(COMPONENT, {{"InstanceID", Text(id)}, {"Install", Flag(install)}});
}

// An update is asked whether it has components, and this is the answer.
Call Asked(const char* id, const std::string& answer) {
    return Gives(Invoke(Update(id), "HasOptionalComponents"), answer);
}

// What makes an update the one whose components are listed.
std::vector<Call> Selected(const std::vector<Call>& more = {}) {
    std::vector<Call> calls = {UpdatesListed(), Asked("0", "boolean true")};
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

std::vector<Call> Listed(const std::vector<Call>& more = {}) {
    std::vector<Call> calls = Selected({Gives(Enumerate(COMPONENT), ALL)});
    calls.insert(calls.end(), more.begin(), more.end());
    return calls;
}

Rows Enumerations() {
    const Call all = Enumerate(COMPONENT);
    const Call names = EnumerateNames(COMPONENT);
    const Call asksOther = Asked("1", "boolean true");
    const std::string unselected = Fails(1, "Missing Name and/or Version");
    return {
        {all, "no update was asked for its components", {}, {}, unselected},
        {all, "an update was enumerated but not asked", {UpdatesListed()}, {}, unselected},
        {all,
         "an update without a version was asked",
         {Asked("1", "boolean true")},
         {},
         unselected},
        {all, "three components", Selected(), {LISTS}, ALL},
        {all,
         "the update has none",
         {UpdatesListed(), Ends("--hascomponents", 1), Asked("0", "boolean false"), Prints("")},
         {LISTS},
         ""},
        {all,
         "the question whether there are any failed",
         {UpdatesListed(), Ends("--hascomponents", 15), Asked("0", ToolFails(15))},
         {LISTS},
         ALL},
        {all,
         "another update was asked since",
         Selected({asksOther}),
         {"/qv/bin/patchkeeper --components  M 2.0 2>&1"},
         ALL},
        {all, "one was chosen before", Listed({Choose("1")}), {LISTS}, ALL},
        {Enumerate(COMPONENT, Names({"Name"})), "a property list", Selected(), {LISTS}, ALL},
        {all,
         "the tool fails",
         Selected({Ends("--components", 12)}),
         {LISTS, Asks(12)},
         ToolFails(12)},
        {all,
         "the tool fails and cannot say why",
         Selected({Ends("--components", 12), Ends("--errors", 3)}),
         {LISTS, Asks(12)},
         Fails(1, "SWU_Patchkeeper_SoftwareUpdateFailed")},
        {all,
         "the tool is killed",
         Selected({Plays("--components", ToolAnswer().DiesBySignal(SIGKILL))}),
         {LISTS, Asks(137)},
         ToolFails(137)},
        {all,
         "there is no tool",
         Selected({ToolIsGone()}),
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --components  N V")},
        {all, "an empty line", Selected({Prints("a\n\nb\n")}), {LISTS}, NO_NAME},
        {all, "further fields", Selected({Prints("a\t1.0\tText\n")}), {LISTS}, COMPONENT_A},
        {names, "three components", Selected(), {LISTS}, PATHS},
        {names, "no update was asked for its components", {}, {}, unselected},
        {names,
         "the tool fails",
         Selected({Ends("--components", 12)}),
         {LISTS, Asks(12)},
         ToolFails(12)},
        {names, "an empty line", Selected({Prints("a\n\nb\n")}), {LISTS}, NO_NAME},
    };
}

Rows Gets() {
    Rows rows = {
        {Get(Component("0")), "before any enumeration", {}, {}, Fails(6)},
        {Get(Component("0")), "the update is selected only", Selected(), {}, Fails(6)},
        {Get(Component("1")), "after an enumeration", Listed(), {}, COMPONENT_B},
        {Get(Component("1")), "it was chosen", Listed({Choose("1")}), {}, B_CHOSEN},
        {Get(Component("1")),
         "it was chosen and dropped",
         Listed({Choose("1"), Choose("1", false)}),
         {},
         COMPONENT_B},
        {Get(Component("1")), "another was chosen", Listed({Choose("0")}), {}, COMPONENT_B},
        {Get(Component("1")),
         "it was chosen before the last enumeration",
         Listed({Choose("1"), Gives(EnumerateNames(COMPONENT), PATHS)}),
         {},
         COMPONENT_B},
        {Get(Component("1"), Names({"Name"})), "a property list", Listed(), {}, COMPONENT_B},
        {Get(Component("0")),
         "the tool knows others since",
         Listed({Prints("x\n")}),
         {},
         COMPONENT_A},
        {Get(Component("0")),
         "the update was asked again since",
         Listed({Asked("0", "boolean true")}),
         {},
         Fails(6)},
        {Get(Component("0")),
         "after an enumeration that failed",
         Listed({Ends("--components", 12), Gives(Enumerate(COMPONENT), ToolFails(12))}),
         {},
         Fails(6)},
        {Get(Component("0")),
         "after an enumeration that failed at its second line",
         Selected({Prints("a\n\n"), Gives(Enumerate(COMPONENT), NO_NAME)}),
         {},
         COMPONENT_A},
        {Get(Component("3")), "no such position", Listed(), {}, Fails(6)},
        {Get(Component("")), "an empty key", Listed(), {}, Fails(6)},
        {Get(Path(COMPONENT, "InstanceID", Number(0))),
         "a number as key",
         Listed(),
         {},
         COMPONENT_A},
        {Get(Path(COMPONENT, "InstanceID", Null())), "a null key", Listed(), {}, Fails(4)},
        {Get(ClassPath(COMPONENT)), "no key", Listed(), {}, Fails(4)},
    };
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(COMPONENT, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        Listed(),
                        {},
                        Fails(6)});
    }
    return rows;
}

Rows Modifications() {
    const auto modify = [](const OpenWBEM::CIMValue& id, const OpenWBEM::CIMValue& install) {
        return Modify(COMPONENT, {{"InstanceID", id}, {"Install", install}});
    };
    Rows rows = {
        {Choose("1"), "before any enumeration", {}, {}, Fails(6)},
        {Choose("1"), "the update is selected only", Selected(), {}, Fails(6)},
        {Choose("1"), "after an enumeration", Listed(), {}, ""},
        {Choose("1"), "it is chosen already", Listed({Choose("1")}), {}, ""},
        {Choose("1", false), "it is chosen", Listed({Choose("1")}), {}, ""},
        {Choose("3"), "no such position", Listed(), {}, Fails(6)},
        {Choose("0"), "there is no tool", Listed({ToolIsGone()}), {}, ""},
        {modify(Number(1), Flag(true)), "InstanceID is a number", Listed(), {}, ""},
        {modify(Null(), Flag(true)), "InstanceID is null", Listed(), {}, Fails(4)},
        {Modify(COMPONENT, {{"Install", Flag(true)}}),
         "InstanceID is absent",
         Listed(),
         {},
         Fails(4)},
        {Modify(COMPONENT, {}), "no property", Listed(), {}, Fails(4)},
        {Modify(COMPONENT, {{"InstanceID", Text("1")}}),
         "Install is absent",
         Listed(),
         {},
         Fails(6)},
        {modify(Text("1"), Null()), "Install is null", Listed(), {}, Fails(6)},
        {modify(Text("1"), Text("true")), "Install is a text", Listed(), {}, Fails(4)},
        {modify(Text("1"), Text("")), "Install is an empty text", Listed(), {}, Fails(4)},
        {modify(Text("1"), Number(1)), "Install is a number", Listed(), {}, Fails(4)},
        {modify(Text("1"), OpenWBEM::CIMValue(OpenWBEM::BoolArray(1, OpenWBEM::Bool(true)))),
         "Install is an array",
         Listed(),
         {},
         Fails(4)},
        {modify(Text("3"), Number(1)),
         "no such position, and Install is a number",
         Listed(),
         {},
         Fails(6)},
        {Modify(COMPONENT, {{"InstanceID", Text("3")}}),
         "no such position, and no Install",
         Listed(),
         {},
         Fails(6)},
    };
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({modify(Text(hostile.text), Flag(true)),
                        std::string(hostile.what) + " as InstanceID",
                        Listed(),
                        {},
                        Fails(6)});
    }
    return rows;
}

Rows Refused() {
    return {
        {Create(COMPONENT), "always refused", Listed(), {}, Fails(7)},
        {Delete(Component("0")), "always refused", Listed(), {}, Fails(7)},
        {Invoke(Component("0"), "Apply"), "any method", Listed(), {}, Fails(17)},
        {Invoke(Component("9"), "Apply"),
         "any method on an unknown component",
         Listed(),
         {},
         Fails(17)},
        {Invoke(ClassPath(COMPONENT), "GetProgress", {Text("x")}),
         "any method of the class",
         {},
         {},
         Fails(17)},
    };
}

} // namespace

std::vector<Row> ComponentRows() {
    Rows rows = Enumerations();
    for (const Rows& more : {Gets(), Modifications(), Refused()}) {
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

} // namespace matrix
