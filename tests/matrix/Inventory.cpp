#include "matrix/Matrix.hpp"

namespace matrix {

namespace {

const char* const IDENTITY = "ZNX_SoftwareIdentity";
const char* const CARTRIDGE = "ZNX_ElementManagerCartridgeVersionInfo";
const std::string LISTS = "/qv/bin/patchkeeper  2>&1";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";

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

} // namespace

std::vector<Row> InventoryRows() {
    const Call fails = Plays("", test_support::ToolAnswer().ExitCode(23));
    const Call shortLine = Plays("", test_support::ToolAnswer().Output("bash\t5.2\tOther\n"));
    const auto identity = [](const char* id) { return Path(IDENTITY, "InstanceID", id); };
    return {
        {Enumerate(IDENTITY), "two packages", {}, {LISTS}, BASH + "\n" + CARTRIDGE_PACKAGE},
        {Enumerate(IDENTITY),
         "nothing is installed",
         {Plays("", test_support::ToolAnswer())},
         {LISTS},
         ""},
        {Enumerate(IDENTITY), "the tool fails", {fails}, {LISTS, ASKS_WHY}, ToolFails(23)},
        {Enumerate(IDENTITY),
         "a line lacks its last field",
         {shortLine},
         {LISTS},
         Fails(1, "Failed to parse Date field from /qv/bin/patchkeeper \n"
                  "#SWU_Error_ParsingFailed,Date,/qv/bin/patchkeeper #")},
        {EnumerateNames(IDENTITY),
         "two packages",
         {},
         {LISTS},
         "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"0\"\n"
         "/root/cimv2:ZNX_SoftwareIdentity.InstanceID=\"1\""},
        {Get(identity("0")), "before any enumeration", {}, {}, Fails(6)},
        {Get(identity("0")), "after an enumeration", {Enumerate(IDENTITY)}, {}, BASH},
        {Get(identity("2")), "no such position", {Enumerate(IDENTITY)}, {}, Fails(6)},
        {Get(ClassPath(IDENTITY)), "no key", {Enumerate(IDENTITY)}, {}, Fails(4)},
        {Get(Path(IDENTITY, "InstanceID", Null())),
         "a null key",
         {Enumerate(IDENTITY)},
         {},
         Fails(4)},
        {Create(IDENTITY), "always refused", {}, {}, Fails(7)},
        {Modify(IDENTITY, {{"InstanceID", Text("0")}}), "always refused", {}, {}, Fails(7)},
        {Delete(identity("0")), "always refused", {}, {}, Fails(7)},
        {Invoke(identity("0"), "Any"), "always refused", {}, {}, Fails(7)},
        {Enumerate(CARTRIDGE), "one cartridge", {}, {LISTS}, VERSION_INFO},
        {EnumerateNames(CARTRIDGE),
         "one cartridge",
         {},
         {LISTS},
         "/root/cimv2:ZNX_ElementManagerCartridgeVersionInfo.Version=\"7.1\""},
        {Get(Path(CARTRIDGE, "Version", "6")),
         "another version than the installed one",
         {Enumerate(CARTRIDGE)},
         {},
         VERSION_INFO},
        {Get(Path(CARTRIDGE, "Version", "7.1")), "no cartridge in the list", {}, {}, Fails(4)},
        {Create(CARTRIDGE), "always refused", {}, {}, Fails(7)},
        {Modify(CARTRIDGE, {{"Version", Text("8")}}), "always refused", {}, {}, Fails(7)},
        {Delete(Path(CARTRIDGE, "Version", "7.1")), "always refused", {}, {}, Fails(7)},
        {Invoke(Path(CARTRIDGE, "Version", "7.1"), "Any"), "always refused", {}, {}, Fails(7)},
        {Enumerate("znx_softwareidentity"), "the class name in another case", {}, {}, Fails(5)},
        {Get(Path("ZNX_Other", "InstanceID", "0")), "an unknown class", {}, {}, Fails(5)},
        {Invoke(ClassPath("ZNX_Other"), "Any"), "an unknown class", {}, {}, Fails(5)},
    };
}

} // namespace matrix
