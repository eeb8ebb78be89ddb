#pragma once

#include "support/ToolDouble.hpp"
#include "support/provider/Provider.hpp"

#include "OW_CppProviderIncludes.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

// Every method and operation of the library in every situation: what a client calls, what the tool
// does then, which command lines the shell gets, and what the client is told. `make matrix` prints
// the rows; the test matrix_test carries each of them out on a fresh library.
namespace matrix {

// The library as a row meets it. The scripted tool plays an ordinary answer for every option; see
// PlaysOrdinaryAnswers in Matrix.cpp.
class Scene;

// One thing that happens: a call of a client, or something that befalls the tool.
struct Call {
    std::string className;                  // empty where no client calls
    std::string text;                       // as the table shows it
    std::function<std::string(Scene&)> run; // gives the answer in the form of Row::answer
    std::string given = {};                 // in Row::before: the answer that it gives there
};

struct Row {
    Call call;
    std::string situation; // what is special, in words
    // What happened before; its command lines are not counted. A call that answers with more than
    // the empty text is wrapped in Gives.
    std::vector<Call> before;
    // The text that the shell is given for each run of the tool, in order, blanks and all; also of
    // what runs in the background.
    std::vector<std::string> commands;
    // What the client gets. A method: string "text", boolean true, sint8 1, and behind it
    // `, Name = string "text"` for each out-parameter in order. An instance:
    // ZNX_Class { Name = string "N"; RebootRequired = boolean true; } in its order. A path:
    // /root/cimv2:ZNX_Class.Key="value". An enumeration: its elements, a line each, and the empty
    // text for none. A failure: what Fails gives. Anything else: the empty text.
    std::string answer;
    // What the library has the shell run behind `commands`, and no tool is reached: there is none,
    // or the shell cannot read the line. What collects the output may be left out.
    std::vector<std::string> inVain = {};
};

using Values = std::vector<OpenWBEM::CIMValue>;
using Names = std::optional<std::vector<std::string>>;
using Properties = std::vector<std::pair<std::string, OpenWBEM::CIMValue>>;

// A failure: the number of the CIM status, and the text where there is more than the standard one.
std::string Fails(int status, const std::string& text = "");
// An exception of the provider API that is no CIM failure, by the name of its type.
std::string Escapes(const std::string& type);
// The failure that a tool run with this exit code ends in, where --errors plays its ordinary
// answer.
std::string ToolFails(int exitCode);

// The failure that a line ends in which lacks this field, where this command line has printed it.
std::string LacksField(const std::string& field, const std::string& command);

OpenWBEM::CIMValue Text(const std::string& text);
OpenWBEM::CIMValue Flag(bool flag);
OpenWBEM::CIMValue Number(int number);         // sint32
OpenWBEM::CIMValue When(const char* datetime); // as CIM writes it: yyyymmddhhmmss.mmmmmmsutc
OpenWBEM::CIMValue Null();
// Hostile texts for a text parameter, each with its description.
struct Hostile {
    const char* what;
    std::string text;
};
const std::vector<Hostile>& HostileTexts(); // empty, 100,000 characters, quotes, non-ASCII, …

OpenWBEM::CIMObjectPath ClassPath(const char* className);
OpenWBEM::CIMObjectPath Path(const char* className, const char* key,
                             const OpenWBEM::CIMValue& value);
OpenWBEM::CIMObjectPath Path(const char* className, const char* key, const char* value);

// What a client calls.
Call Enumerate(const char* className, const Names& properties = std::nullopt);
Call EnumerateNames(const char* className);
Call Get(const OpenWBEM::CIMObjectPath& path, const Names& properties = std::nullopt);
Call Create(const char* className);
Call Delete(const OpenWBEM::CIMObjectPath& path);
Call Modify(const char* className, const Properties& properties);
// `out` are the names of the out-parameters that the server has put into the array, with null.
Call Invoke(const OpenWBEM::CIMObjectPath& path, const char* method, const Values& in = {},
            const std::vector<std::string>& out = {});
struct Association {
    std::string assocClass;
    std::string resultClass;
    std::string role;
    std::string resultRole;
};
Call Associators(const OpenWBEM::CIMObjectPath& path, const Association& association);
Call AssociatorNames(const OpenWBEM::CIMObjectPath& path, const Association& association);
Call References(const OpenWBEM::CIMObjectPath& path, const char* resultClass,
                const char* role = "");
Call ReferenceNames(const OpenWBEM::CIMObjectPath& path, const char* resultClass,
                    const char* role = "");

// The same call in Row::before, with what the client gets there.
Call Gives(Call call, const std::string& answer);

// What befalls the tool, for Row::before.
Call Plays(const char* option, const test_support::ToolAnswer& answer);
Call ToolIsGone();

// Row::inVain where there is no tool: the run, and the question what its exit code means.
std::vector<std::string> Missed(const std::string& command, int exitCode = 127);

// The rows of each class, in the file of its name.
std::vector<Row> ComponentRows();
std::vector<Row> AvailableRows();
std::vector<Row> ScheduledRows();
std::vector<Row> ActiveRows();
std::vector<Row> HistoryRows();
std::vector<Row> FileNameRows();
std::vector<Row> FileListRows();
std::vector<Row> InventoryRows();

struct Table {
    const char* unit;
    std::vector<Row> (*rows)();
};
const std::vector<Table>& Tables();

} // namespace matrix
