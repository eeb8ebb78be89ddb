// The command line of the server. Every option stands for a configuration item and wins over the
// file.
#pragma once

#include "cimserver/Configuration.hpp"

#include <iosfwd>
#include <optional>

namespace cimserver {

/// What the process ends with.
enum ExitCode : int { exitDone = 0, exitCannotStart = 1, exitUsage = 2 };

/// Reads the arguments and the configuration file that they name into `configuration`. A value: the
/// process has nothing more to do (help, version, usage error, check of the configuration) and ends
/// with it; what was to be said has been written. Throws ConfigurationError.
std::optional<ExitCode> ReadCommandLine(int argc, const char* const* argv,
                                        Configuration& configuration, std::ostream& out,
                                        std::ostream& err);

} // namespace cimserver
