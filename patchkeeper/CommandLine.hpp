#pragma once

#include <ostream>

#include "patchkeeper/Commands.hpp"

namespace patchkeeper {

// What main was given, without the program's name. A password among it is blanked where it stands,
// so that other users of the machine no longer see it in the list of processes.
Arguments TakeArguments(int argumentCount, char* const* arguments);

// Runs the command that the arguments ask for and returns the exit code. Records and answers go to
// `out`, the one sentence about a failure to `err`. Throws nothing but std::bad_alloc. One call per
// process.
int RunCommand(const Arguments& arguments, std::ostream& out, std::ostream& err);

} // namespace patchkeeper
