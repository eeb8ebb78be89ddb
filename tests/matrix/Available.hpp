#pragma once

#include "matrix/Matrix.hpp"

#include <string>
#include <vector>

// What the rows of available updates, of their components and files share. Those of the methods of
// the class of updates stand in AvailableFetches.cpp, those of the methods of one in Available.cpp.
namespace matrix {

using Rows = std::vector<Row>;

inline const char* const UPDATE = "ZNX_AvailableSoftwareUpdate";

// The updates and components of the tool's ordinary answers.
inline const std::string UPDATE_N =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"0\"; Name = string \"N\"; "
    "ShortDescription = string \"Desc\"; VersionString = string \"V\"; Size = string \"12\"; "
    "RebootRequired = boolean true; Status = uint8 1; }";
inline const std::string UPDATE_M =
    "ZNX_AvailableSoftwareUpdate { InstanceID = string \"1\"; Name = string \"M\"; "
    "ShortDescription = string \"More\"; VersionString = string \"2.0\"; Size = string \"7\"; "
    "RebootRequired = boolean false; Status = uint8 3; }";
inline const std::string PATHS_OF_UPDATES =
    "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"0\"\n"
    "/root/cimv2:ZNX_AvailableSoftwareUpdate.InstanceID=\"1\"";
inline const std::string COMPONENT_A =
    "ZNX_SoftwareUpdateComponent { InstanceID = string \"0\"; Name = string \"a\"; "
    "VersionString = string \"\"; ShortDescription = string \"\"; Install = boolean false; }";
inline const std::string COMPONENT_B =
    "ZNX_SoftwareUpdateComponent { InstanceID = string \"1\"; Name = string \"b\"; "
    "VersionString = string \"\"; ShortDescription = string \"\"; Install = boolean false; }";
inline const std::string COMPONENT_C =
    "ZNX_SoftwareUpdateComponent { InstanceID = string \"2\"; Name = string \"c\"; "
    "VersionString = string \"\"; ShortDescription = string \"\"; Install = boolean false; }";

inline const std::string MARKS = "/qv/bin/patchkeeper --setinprogress";
inline const std::string STARTED = "string \"\"";

inline void Append(Rows& rows, const Rows& more) {
    rows.insert(rows.end(), more.begin(), more.end());
}

inline std::string Asks(int exitCode) {
    return "/qv/bin/patchkeeper --errors " + std::to_string(exitCode) + " 2>&1";
}

inline OpenWBEM::CIMObjectPath Update(const char* id) {
    return Path(UPDATE, "InstanceID", id);
}

// In Row::before: the updates are enumerated, and the listing ends so.
inline Call UpdatesListed(const std::string& answer = UPDATE_N + "\n" + UPDATE_M) {
    return Gives(Enumerate(UPDATE), answer);
}

inline Call Prints(const char* option, const std::string& output) {
    return Plays(option, test_support::ToolAnswer().Output(output));
}

inline Call Ends(const char* option, int exitCode) {
    return Plays(option, test_support::ToolAnswer().ExitCode(exitCode));
}

// The answer where the mark could not be set.
inline std::string Unmarked(const std::string& command) {
    return Fails(1, "Failed: " + command + "\n#SWU_Error_ExecutionFailed,Failed: " + command + "#");
}

// GetVia… and GetProgress.
Rows FetchRows();

} // namespace matrix
