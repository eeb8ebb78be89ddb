#include "matrix/Matrix.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const IDENTITY = "ZNX_SoftwareIdentity";
const char* const CARTRIDGE = "ZNX_ElementManagerCartridgeVersionInfo";
const std::string LISTS = "/qv/bin/patchkeeper  2>&1";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";
const std::string ASKS_WHY_137 = "/qv/bin/patchkeeper --errors 137 2>&1";

const std::string BASH =
    "ZNX_SoftwareIdentity { InstanceID = string \"0\"; Name = string \"bash\"; "
    "PackageVersion = string \"5.2\"; RevisionNumber = string \"5.2\"; "
    "Classifications = uint16 8; "
    "InstalledDate = datetime 20260102030400.000000+000; }";
const std::string CARTRIDGE_PACKAGE =
    "ZNX_SoftwareIdentity { InstanceID = string \"1\"; Name = string \"znxliteEMcartridge\"; "
    "PackageVersion = string \"7.1\"; RevisionNumber = string \"7.1\"; "
    "Classifications = uint16 10; "
    "InstalledDate = datetime 20260102030400.000000+000; }";
const std::string VERSION_INFO =
    "ZNX_ElementManagerCartridgeVersionInfo { Version = string \"7.1\"; }";

const std::string PATHS_OF_BOTH = "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"0\"\n"
                                  "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"1\"";
const std::string CARTRIDGE_PATH =
    "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo.Version=\"7.1\"";

const std::string TWO_CARTRIDGES = "znxliteEMcartridge\t8\tFirmware\tJan 2 2026 03:04\n"
                                   "bash\t5.2\tOther\tJan 2 2026 03:04\n"
                                   "znxliteEMcartridge\t7\tFirmware\tJan 2 2026 03:04\n";

OpenWBEM::CIMObjectPath Package(const char* id) {
    return Path(IDENTITY, "InstanceID", id);
}

OpenWBEM::CIMObjectPath Version(const char* version) {
    return Path(CARTRIDGE, "Version", version);
}

Call Prints(const std::string& output) {
    return Plays("", ToolAnswer().Output(output));
}

Call Listed() {
    return Gives(EnumerateNames(IDENTITY), PATHS_OF_BOTH);
}

std::string Lacks(const std::string& field) {
    return LacksField(field, "/qv/bin/patchkeeper ");
}

void AddPackages(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Enumerate(IDENTITY), "two packages", {}, {LISTS}, BASH + "\n" + CARTRIDGE_PACKAGE},
        {Enumerate(IDENTITY, {{"Name"}}),
         "the list shortens nothing",
         {},
         {LISTS},
         BASH + "\n" + CARTRIDGE_PACKAGE},
        {Enumerate(IDENTITY), "a line of one field", {Prints("bash\n")}, {LISTS}, Lacks("Version")},
        {Enumerate(IDENTITY),
         "a line of two fields",
         {Prints("bash\t5.2\n")},
         {LISTS},
         Lacks("Classification")},
        {Enumerate(IDENTITY),
         "an unreadable date",
         {Prints("bash\t5.2\tOther\tyesterday\n")},
         {LISTS},
         Escapes("DateTimeException")},
        {EnumerateNames(IDENTITY), "two packages", {}, {LISTS}, PATHS_OF_BOTH},
        {EnumerateNames(IDENTITY),
         "an unreadable date, which no path needs",
         {Prints("bash\t5.2\tOther\tyesterday\n")},
         {LISTS},
         "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"0\""},
        {Enumerate("znx_softwareidentity"), "the class name in another case", {}, {}, Fails(5)},
        {Enumerate(CARTRIDGE), "one cartridge", {}, {LISTS}, VERSION_INFO},
        {Enumerate(CARTRIDGE),
         "two cartridges",
         {Prints(TWO_CARTRIDGES)},
         {LISTS},
         "ZNX_ElementManagerCartridgeVersionInfo { Version = string \"8\"; }\n"
         "ZNX_ElementManagerCartridgeVersionInfo { Version = string \"7\"; }"},
        {Enumerate(CARTRIDGE),
         "its name in another case",
         {Prints("znxliteemcartridge\t7\tFirmware\tJan 2 2026 03:04\n")},
         {LISTS},
         ""},
        {Enumerate(CARTRIDGE),
         "an unreadable date, which nobody reads",
         {Prints("znxliteEMcartridge\t7.1\tFirmware\tyesterday\n")},
         {LISTS},
         VERSION_INFO},
        {EnumerateNames(CARTRIDGE), "one cartridge", {}, {LISTS}, CARTRIDGE_PATH},
        {EnumerateNames(CARTRIDGE),
         "two cartridges",
         {Prints(TWO_CARTRIDGES)},
         {LISTS},
         "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo.Version=\"8\"\n"
         "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo.Version=\"7\""},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

// What holds for each enumeration of both classes: it is the same listing.
void AddListings(std::vector<Row>& rows, const Call& call) {
    const Call fails = Plays("", ToolAnswer().Output("bash\n").ExitCode(23));
    const std::vector<Row> more = {
        {call, "no output", {Prints("")}, {LISTS}, ""},
        {call, "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {call,
         "the tool fails with 1",
         {Plays("", ToolAnswer().ExitCode(1))},
         {LISTS, "/qv/bin/patchkeeper --errors 1 2>&1"},
         ToolFails(1)},
        {call,
         "the tool fails and cannot say why",
         {fails, Plays("--errors", ToolAnswer().Output("some of it").ExitCode(3))},
         {LISTS, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {call,
         "the tool is killed",
         {Plays("", ToolAnswer().DiesBySignal(SIGKILL))},
         {LISTS, ASKS_WHY_137},
         ToolFails(137)},
        {call,
         "the tool is gone",
         {ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper ")},
        {call, "a blank line", {Prints("\n")}, {LISTS}, Lacks("Name")},
        {call,
         "a line lacks its last field",
         {Prints("bash\t5.2\tOther\n")},
         {LISTS},
         Lacks("Date")},
        {call,
         "the second line is short",
         {Prints("bash\t5.2\tOther\tJan 2 2026 03:04\nvim\n")},
         {LISTS},
         Lacks("Version")},
        {call,
         "a line of error output",
         {Plays("", ToolAnswer().ErrorText("cannot read cache\n"))},
         {LISTS},
         Lacks("Version")},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddGets(std::vector<Row>& rows) {
    const Call listed = Listed();
    const Call fails = Plays("", ToolAnswer().ExitCode(23));
    const std::vector<Row> more = {
        {Get(Package("0")), "before any enumeration", {}, {}, Fails(6)},
        {Get(Package("0")), "after an enumeration of names", {listed}, {}, BASH},
        {Get(Package("1")),
         "after an enumeration of instances",
         {Gives(Enumerate(IDENTITY), BASH + "\n" + CARTRIDGE_PACKAGE)},
         {},
         CARTRIDGE_PACKAGE},
        {Get(Package("0")),
         "after an enumeration of the cartridge",
         {Gives(Enumerate(CARTRIDGE), VERSION_INFO)},
         {},
         BASH},
        {Get(Package("0"), {{"Name"}}), "the list shortens nothing", {listed}, {}, BASH},
        {Get(Package("0")), "the tool knows others since", {listed, Prints("")}, {}, BASH},
        {Get(Package("0")), "the tool is gone since", {listed, ToolIsGone()}, {}, BASH},
        {Get(Package("0")),
         "after an enumeration that failed",
         {listed, fails, Gives(EnumerateNames(IDENTITY), ToolFails(23))},
         {},
         Fails(6)},
        {Get(Package("0")),
         "it stands before the short line of the last enumeration",
         {Prints("bash\t5.2\tOperating System\tJan 2 2026 03:04\nvim\n"),
          Gives(Enumerate(IDENTITY), Lacks("Version"))},
         {},
         BASH},
        {Get(Package("0")),
         "an unreadable date",
         {Prints("bash\t5.2\tOther\tyesterday\n"),
          Gives(EnumerateNames(IDENTITY), "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"0\"")},
         {},
         Escapes("DateTimeException")},
        {Get(Package("2")), "no such position", {listed}, {}, Fails(6)},
        {Get(Package("00")), "the position written otherwise", {listed}, {}, Fails(6)},
        {Get(ClassPath(IDENTITY)), "no key", {listed}, {}, Fails(4)},
        {Get(Path(IDENTITY, "Name", "bash")), "another key", {listed}, {}, Fails(4)},
        {Get(Path(IDENTITY, "InstanceID", Null())), "a null key", {listed}, {}, Fails(4)},
        {Get(Path(IDENTITY, "InstanceID", Number(0))), "a number as key", {listed}, {}, BASH},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(IDENTITY, "InstanceID", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {listed},
                        {},
                        Fails(6)});
    }
}

void AddGetsOfTheCartridge(std::vector<Row>& rows) {
    const Call listed = Listed();
    const std::vector<Row> more = {
        {Get(Version("7.1")), "the installed version", {listed}, {}, VERSION_INFO},
        {Get(Version("6")), "another version than the installed one", {listed}, {}, VERSION_INFO},
        {Get(ClassPath(CARTRIDGE)), "no key", {listed}, {}, VERSION_INFO},
        {Get(Version("7")),
         "two cartridges",
         {Prints(TWO_CARTRIDGES),
          Gives(EnumerateNames(CARTRIDGE), "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo."
                                           "Version=\"8\"\n"
                                           "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo."
                                           "Version=\"7\"")},
         {},
         "ZNX_ElementManagerCartridgeVersionInfo { Version = string \"8\"; }"},
        {Get(Version("7.1")), "before any enumeration", {}, {}, Fails(4)},
        {Get(Version("7.1")),
         "no cartridge in the list",
         {Prints("bash\t5.2\tOperating System\tJan 2 2026 03:04\n"), EnumerateNames(CARTRIDGE)},
         {},
         Fails(4)},
        {Get(Path(CARTRIDGE, "InstanceID", "0")),
         "no cartridge in the list, and a package's key",
         {Prints("bash\t5.2\tOperating System\tJan 2 2026 03:04\n"), EnumerateNames(CARTRIDGE)},
         {},
         BASH},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        rows.push_back({Get(Path(CARTRIDGE, "Version", Text(hostile.text))),
                        std::string("the key is ") + hostile.what,
                        {listed},
                        {},
                        VERSION_INFO});
    }
}

void AddRefusals(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Create(IDENTITY), "always refused", {}, {}, Fails(7)},
        {Modify(IDENTITY, {{"InstanceID", Text("0")}}), "always refused", {}, {}, Fails(7)},
        {Delete(Package("0")), "always refused", {Listed()}, {}, Fails(7)},
        {Delete(Package("9")), "refused before the record is looked for", {}, {}, Fails(7)},
        {Invoke(Package("0"), "Any"), "always refused", {Listed()}, {}, Fails(7)},
        {Invoke(ClassPath(IDENTITY), "Any"), "refused before the key is read", {}, {}, Fails(7)},
        {Create(CARTRIDGE), "always refused", {}, {}, Fails(7)},
        {Modify(CARTRIDGE, {{"Version", Text("8")}}), "always refused", {}, {}, Fails(7)},
        {Delete(Version("7.1")), "always refused", {}, {}, Fails(7)},
        {Invoke(Version("7.1"), "Any"), "always refused", {}, {}, Fails(7)},
        {Get(Path("ZNX_Other", "InstanceID", "0")), "an unknown class", {}, {}, Fails(5)},
        {Invoke(ClassPath("ZNX_Other"), "Any"), "an unknown class", {}, {}, Fails(5)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

} // namespace

std::vector<Row> InventoryRows() {
    std::vector<Row> rows;
    AddPackages(rows);
    for (const char* const className : {IDENTITY, CARTRIDGE}) {
        AddListings(rows, Enumerate(className));
        AddListings(rows, EnumerateNames(className));
    }
    AddGets(rows);
    AddGetsOfTheCartridge(rows);
    AddRefusals(rows);
    return rows;
}

} // namespace matrix
