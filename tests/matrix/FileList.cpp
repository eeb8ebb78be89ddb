#include "matrix/Available.hpp"

#include <csignal>

namespace matrix {

using test_support::ToolAnswer;

namespace {

const char* const FILE_LIST = "ZNX_AvailableSoftwareFileList";
const char* const FILE_NAMES = "ZNX_AvailableSoftwareFileName";

const std::string FILES_OF_N = "/qv/bin/patchkeeper --files N-V 2>&1";
const std::string FILES_OF_M = "/qv/bin/patchkeeper --files M-2.0 2>&1";
const std::string FILES_OF_THE_PLACEHOLDER = "/qv/bin/patchkeeper --files Dummy- 2>&1";
const std::string ASKS_WHY = "/qv/bin/patchkeeper --errors 23 2>&1";

const std::string PLACEHOLDER =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"1\"; Name = string \"Dummy\"; "
    "ShortDescription = string \"\"; VersionString = string \"\"; Size = string \"\"; "
    "RebootRequired = boolean false; Status = uint8 0; }";
const std::string PATH_OF_N = "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"0\"";
const std::string BOTH_FILES = "ZNX_AvailableSoftwareFileName { FileName = string \"one\"; }\n"
                               "ZNX_AvailableSoftwareFileName { FileName = string \"two\"; }";
const std::string PATHS_OF_BOTH_FILES =
    "/root/cimv2:ZNX_AvailableSoftwareFileName.FileName=\"one\"\n"
    "/root/cimv2:ZNX_AvailableSoftwareFileName.FileName=\"two\"";
const std::string NOTHING = " { }";

OpenWBEM::CIMObjectPath File(const char* name) {
    return Path(FILE_NAMES, "FileName", name);
}

// The instance that ties a file to the update with this position.
std::string Tie(const std::string& id, const std::string& file) {
    return "ZNX_AvailableSoftwareFileList { "
           "Antecedent = REF /root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"" +
           id + "\"; Dependent = REF /root/cimv2:ZNX_AvailableSoftwareFileName.FileName=\"" + file +
           "\"; }";
}

std::string PathOfTie(const std::string& id, const std::string& file) {
    return "/root/cimv2:ZNX_AvailableSoftwareFileList."
           "Antecedent=\"/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\\\"" +
           id + "\\\"\",Dependent=\"/root/cimv2:ZNX_AvailableSoftwareFileName.FileName=\\\"" +
           file + "\\\"\"";
}

Association Result(const char* resultClass) {
    return {FILE_LIST, resultClass, "", ""};
}

Association Role(const char* role) {
    return {FILE_LIST, "", role, ""};
}

Association ResultRole(const char* role) {
    return {FILE_LIST, "", "", role};
}

void AddEnumerations(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES);
    const Call empty = Plays("--cache", ToolAnswer());
    const Call fails = Plays("--files", ToolAnswer().ExitCode(23));
    const Call killed = Plays("--files", ToolAnswer().DiesBySignal(SIGKILL));
    const Call mute = Plays("--errors", ToolAnswer().ExitCode(1));
    const Call noFiles = Plays("--files", ToolAnswer());
    const std::string ties =
        Tie("0", "one") + "\n" + Tie("0", "two") + "\n" + Tie("1", "one") + "\n" + Tie("1", "two");
    const std::string paths = PathOfTie("0", "one") + "\n" + PathOfTie("0", "two") + "\n" +
                              PathOfTie("1", "one") + "\n" + PathOfTie("1", "two");
    const std::vector<Row> more = {
        {Enumerate(FILE_LIST),
         "two updates of two files each",
         {listed},
         {FILES_OF_N, FILES_OF_M},
         ties},
        {Enumerate(FILE_LIST, {{"Antecedent"}}),
         "the list shortens nothing",
         {listed},
         {FILES_OF_N, FILES_OF_M},
         ties},
        {Enumerate(FILE_LIST),
         "only the placeholder, before any enumeration of the updates",
         {},
         {FILES_OF_THE_PLACEHOLDER},
         Tie("1", "one") + "\n" + Tie("1", "two")},
        {Enumerate(FILE_LIST), "no updates", {empty, EnumerateNames(UPDATE)}, {}, ""},
        {Enumerate(FILE_LIST),
         "the updates became stale",
         {listed, empty},
         {FILES_OF_N, FILES_OF_M},
         ties},
        {Enumerate(FILE_LIST),
         "updates without files",
         {listed, noFiles},
         {FILES_OF_N, FILES_OF_M},
         Tie("0", "Filename1") + "\n" + Tie("0", "Testname") + "\n" + Tie("1", "Filename1") + "\n" +
             Tie("1", "Testname")},
        {Enumerate(FILE_LIST),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
        {Enumerate(FILE_LIST),
         "the tool fails and cannot say why",
         {listed, fails, mute},
         {FILES_OF_N, ASKS_WHY},
         Fails(1, "SWU_Patchkeeper_NoPatchesFound")},
        {Enumerate(FILE_LIST),
         "the tool is killed",
         {listed, killed},
         {FILES_OF_N, "/qv/bin/patchkeeper --errors 137 2>&1"},
         Fails(1, "What it means.\n\n#SWU_Patchkeeper_Unknown#")},
        {Enumerate(FILE_LIST),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files N-V")},
        {Enumerate("znx_availablesoftwarefilelist"),
         "the class name in another case",
         {listed},
         {},
         Fails(5)},
        {EnumerateNames(FILE_LIST),
         "two updates of two files each",
         {listed},
         {FILES_OF_N, FILES_OF_M},
         paths},
        {EnumerateNames(FILE_LIST),
         "only the placeholder, before any enumeration of the updates",
         {},
         {FILES_OF_THE_PLACEHOLDER},
         PathOfTie("1", "one") + "\n" + PathOfTie("1", "two")},
        {EnumerateNames(FILE_LIST), "no updates", {empty, EnumerateNames(UPDATE)}, {}, ""},
        {EnumerateNames(FILE_LIST),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
        {EnumerateNames(FILE_LIST),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files N-V")},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddInstanceCalls(std::vector<Row>& rows) {
    const std::vector<Row> more = {
        {Get(ClassPath(FILE_LIST)), "no key", {}, {}, NOTHING},
        {Get(Path(FILE_LIST, "Antecedent", "x")),
         "an empty instance whatever is asked for",
         {Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES)},
         {},
         NOTHING},
        {Get(Path(FILE_LIST, "Antecedent", Null())), "a null key", {}, {}, NOTHING},
        {Create(FILE_LIST), "always refused", {}, {}, Fails(7)},
        {Modify(FILE_LIST, {{"Antecedent", Text("x")}}), "always refused", {}, {}, Fails(7)},
        {Modify(FILE_LIST, {}), "nothing is given", {}, {}, Fails(7)},
        {Delete(Path(FILE_LIST, "Antecedent", "x")), "always refused", {}, {}, Fails(7)},
        {Delete(ClassPath(FILE_LIST)), "no key", {}, {}, Fails(7)},
        {Invoke(ClassPath(FILE_LIST), "Any"),
         "methods of this class reach no provider",
         {},
         {},
         Fails(5)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddWaysToTheUpdate(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES);
    const std::vector<Row> more = {
        {Associators(Update("0"), Result(UPDATE)), "an update's path", {listed}, {}, UPDATE_N},
        {Associators(Update("0"), Role("Dependent")), "an update's path", {listed}, {}, UPDATE_N},
        {Associators(Update("0"), ResultRole("Antecedent")),
         "an update's path",
         {listed},
         {},
         UPDATE_N},
        {Associators(Update("0"), {FILE_LIST, FILE_NAMES, "Antecedent", "Antecedent"}),
         "contradicting wishes, and the update wins",
         {listed},
         {},
         UPDATE_N},
        {Associators(Update("1"), Result(UPDATE)),
         "before any enumeration of the updates",
         {},
         {},
         PLACEHOLDER},
        {Associators(Update("0"), Result(UPDATE)),
         "not there before any enumeration of the updates",
         {},
         {},
         Fails(6)},
        {Associators(Path("ZNX_Other", "InstanceID", "0"), Result(UPDATE)),
         "the class of the path is not looked at",
         {listed},
         {},
         UPDATE_N},
        {Associators(Update("9"), Result(UPDATE)), "no such position", {listed}, {}, Fails(6)},
        {Associators(File("one"), Role("Dependent")), "a file's path", {listed}, {}, Fails(4)},
        {Associators(File("one"), Result(UPDATE)), "a file's path", {listed}, {}, Fails(4)},
        {Associators(File("one"), ResultRole("Antecedent")),
         "a file's path",
         {listed},
         {},
         Fails(4)},
        {Associators(ClassPath(UPDATE), Result(UPDATE)), "no key", {listed}, {}, Fails(4)},
        {Associators(Path(UPDATE, "InstanceID", Null()), Result(UPDATE)),
         "a null key",
         {listed},
         {},
         Fails(4)},
        {AssociatorNames(Update("0"), Result(UPDATE)), "an update's path", {listed}, {}, PATH_OF_N},
        {AssociatorNames(Update("0"), Role("Dependent")),
         "an update's path",
         {listed},
         {},
         PATH_OF_N},
        {AssociatorNames(Update("0"), ResultRole("Antecedent")),
         "an update's path",
         {listed},
         {},
         PATH_OF_N},
        {AssociatorNames(Update("9"), Result(UPDATE)), "no such position", {listed}, {}, Fails(6)},
        {AssociatorNames(File("one"), Role("Dependent")), "a file's path", {listed}, {}, Fails(4)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddWaysToTheFiles(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES);
    const Call fails = Plays("--files", ToolAnswer().ExitCode(23));
    const Call noFiles = Plays("--files", ToolAnswer());
    const std::vector<Row> more = {
        {Associators(Update("0"), Result(FILE_NAMES)),
         "an update's path",
         {listed},
         {FILES_OF_N},
         BOTH_FILES},
        {Associators(Update("1"), Role("Antecedent")),
         "an update's path",
         {listed},
         {FILES_OF_M},
         BOTH_FILES},
        {Associators(Update("0"), ResultRole("Dependent")),
         "an update's path",
         {listed},
         {FILES_OF_N},
         BOTH_FILES},
        {Associators(Update("0"), {FILE_LIST, "Other", "other", "Dependent"}),
         "one recognised wish is enough",
         {listed},
         {FILES_OF_N},
         BOTH_FILES},
        {Associators(Update("1"), Result(FILE_NAMES)),
         "the placeholder, before any enumeration of the updates",
         {},
         {FILES_OF_THE_PLACEHOLDER},
         BOTH_FILES},
        {Associators(Update("0"), Result(FILE_NAMES)),
         "an update without files",
         {listed, noFiles},
         {FILES_OF_N},
         "ZNX_AvailableSoftwareFileName { FileName = string \"Filename1\"; }\n"
         "ZNX_AvailableSoftwareFileName { FileName = string \"Testname\"; }"},
        {Associators(Update("0"), Result(FILE_NAMES)),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
        {Associators(Update("0"), Result(FILE_NAMES)),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files N-V")},
        {Associators(Update("9"), Result(FILE_NAMES)), "no such position", {listed}, {}, Fails(6)},
        {Associators(File("one"), Result(FILE_NAMES)), "a file's path", {listed}, {}, Fails(4)},
        {Associators(File("one"), Role("Antecedent")), "a file's path", {listed}, {}, Fails(4)},
        {AssociatorNames(Update("0"), Result(FILE_NAMES)),
         "an update's path",
         {listed},
         {FILES_OF_N},
         PATHS_OF_BOTH_FILES},
        {AssociatorNames(Update("0"), Role("Antecedent")),
         "an update's path",
         {listed},
         {FILES_OF_N},
         PATHS_OF_BOTH_FILES},
        {AssociatorNames(Update("0"), ResultRole("Dependent")),
         "an update's path",
         {listed},
         {FILES_OF_N},
         PATHS_OF_BOTH_FILES},
        {AssociatorNames(Update("0"), Result(FILE_NAMES)),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

void AddWaysToNowhere(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES);
    const Association none = {FILE_LIST, "", "", ""};
    const Association unknown = {FILE_LIST, "ZNX_Other", "antecedent", "dependent"};
    const Association anywhere = {"", FILE_NAMES, "", ""};
    const Association elsewhere = {"znx_availablesoftwarefilelist", FILE_NAMES, "", ""};
    const std::vector<Row> more = {
        {Associators(Update("0"), none), "nothing is wished for", {listed}, {}, Fails(7)},
        {Associators(Update("0"), unknown), "unknown wishes", {listed}, {}, Fails(7)},
        {Associators(File("one"), none), "refused before the key is read", {listed}, {}, Fails(7)},
        {Associators(Update("0"), anywhere), "no association class", {listed}, {}, Fails(5)},
        {Associators(Update("0"), elsewhere),
         "the association class in another case",
         {listed},
         {},
         Fails(5)},
        {AssociatorNames(Update("0"), none), "nothing is wished for", {listed}, {}, Fails(7)},
        {AssociatorNames(Update("0"), unknown), "unknown wishes", {listed}, {}, Fails(7)},
        {AssociatorNames(Update("0"), anywhere), "no association class", {listed}, {}, Fails(5)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
    for (const Hostile& hostile : HostileTexts()) {
        const std::string what = hostile.what;
        rows.push_back({Associators(Update("0"), Result(hostile.text.c_str())),
                        "the result class is " + what,
                        {listed},
                        {},
                        Fails(7)});
        rows.push_back({Associators(Update("0"), Role(hostile.text.c_str())),
                        "the role is " + what,
                        {listed},
                        {},
                        Fails(7)});
        rows.push_back({Associators(Update("0"), ResultRole(hostile.text.c_str())),
                        "the result role is " + what,
                        {listed},
                        {},
                        Fails(7)});
        rows.push_back(
            {Associators(Path(UPDATE, "InstanceID", Text(hostile.text)), Result(FILE_NAMES)),
             "the key is " + what,
             {listed},
             {},
             Fails(6)});
        rows.push_back({References(Path(UPDATE, "InstanceID", Text(hostile.text)), FILE_LIST),
                        "the key is " + what,
                        {listed},
                        {},
                        Fails(6)});
        rows.push_back({References(Update("0"), FILE_LIST, hostile.text.c_str()),
                        "the role is " + what,
                        {listed},
                        {FILES_OF_N},
                        Tie("0", "one") + "\n" + Tie("0", "two")});
    }
}

void AddReferences(std::vector<Row>& rows) {
    const Call listed = Gives(EnumerateNames(UPDATE), PATHS_OF_UPDATES);
    const Call fails = Plays("--files", ToolAnswer().ExitCode(23));
    const Call noFiles = Plays("--files", ToolAnswer());
    const std::string ties = Tie("0", "one") + "\n" + Tie("0", "two");
    const std::string paths = PathOfTie("0", "one") + "\n" + PathOfTie("0", "two");
    const std::vector<Row> more = {
        {References(Update("0"), FILE_LIST), "an update's path", {listed}, {FILES_OF_N}, ties},
        {References(Update("0"), FILE_LIST, "Antecedent"),
         "the role of the update",
         {listed},
         {FILES_OF_N},
         ties},
        {References(Update("0"), FILE_LIST, "Dependent"),
         "the role of the other end",
         {listed},
         {FILES_OF_N},
         ties},
        {References(Update("1"), FILE_LIST),
         "the placeholder, before any enumeration of the updates",
         {},
         {FILES_OF_THE_PLACEHOLDER},
         Tie("1", "one") + "\n" + Tie("1", "two")},
        {References(Update("0"), FILE_LIST),
         "an update without files",
         {listed, noFiles},
         {FILES_OF_N},
         Tie("0", "Filename1") + "\n" + Tie("0", "Testname")},
        {References(Update("0"), FILE_LIST),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
        {References(Update("0"), FILE_LIST),
         "the tool is gone",
         {listed, ToolIsGone()},
         {},
         Fails(1, "SWU_Patchkeeper_Unknown"),
         Missed("/qv/bin/patchkeeper --files N-V")},
        {References(Update("9"), FILE_LIST), "no such position", {listed}, {}, Fails(6)},
        {References(File("one"), FILE_LIST), "a file's path", {listed}, {}, Fails(4)},
        {References(File("one"), FILE_LIST, "Dependent"),
         "a file's path and its role",
         {listed},
         {},
         Fails(4)},
        {References(ClassPath(UPDATE), FILE_LIST), "no key", {listed}, {}, Fails(4)},
        {References(Path(UPDATE, "InstanceID", Null()), FILE_LIST),
         "a null key",
         {listed},
         {},
         Fails(4)},
        {References(Update("0"), ""), "no result class", {listed}, {}, Fails(5)},
        {References(Update("0"), FILE_NAMES), "another result class", {listed}, {}, Fails(5)},
        {ReferenceNames(Update("0"), FILE_LIST), "an update's path", {listed}, {FILES_OF_N}, paths},
        {ReferenceNames(Update("0"), FILE_LIST, "Dependent"),
         "the role of the other end",
         {listed},
         {FILES_OF_N},
         paths},
        {ReferenceNames(Update("0"), FILE_LIST),
         "the tool fails",
         {listed, fails},
         {FILES_OF_N, ASKS_WHY},
         ToolFails(23)},
        {ReferenceNames(Update("9"), FILE_LIST), "no such position", {listed}, {}, Fails(6)},
        {ReferenceNames(File("one"), FILE_LIST), "a file's path", {listed}, {}, Fails(4)},
        {ReferenceNames(Update("0"), ""), "no result class", {listed}, {}, Fails(5)},
    };
    rows.insert(rows.end(), more.begin(), more.end());
}

} // namespace

std::vector<Row> FileListRows() {
    std::vector<Row> rows;
    AddEnumerations(rows);
    AddInstanceCalls(rows);
    AddWaysToTheUpdate(rows);
    AddWaysToTheFiles(rows);
    AddWaysToNowhere(rows);
    AddReferences(rows);
    return rows;
}

} // namespace matrix
