// What the program does beside serving: `cimserver passwd` writes the file of users,
// `cimserver certificate` a certificate that is its own authority.
#pragma once

#include "cimserver/CommandLine.hpp"

#include <iosfwd>
#include <optional>

namespace cimserver {

/// Nothing when the first argument names no command. A password is read from standard input: asked
/// for twice without echo at a terminal, one line of it otherwise. Throws what says why nothing was
/// written, derived from std::exception.
std::optional<ExitCode> RunCommand(int argc, const char* const* argv, std::ostream& out,
                                   std::ostream& err);

} // namespace cimserver
