#pragma once

#include "matrix/Matrix.hpp"

#include <string>
#include <vector>

// What the rows of available updates share: those of the methods of the class stand in
// AvailableFetches.cpp, the others in Available.cpp.
namespace matrix {

using Rows = std::vector<Row>;

inline const char* const UPDATE = "ZNX_AvailableSoftwareUpdate";

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

inline Call Prints(const char* option, const char* output) {
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
