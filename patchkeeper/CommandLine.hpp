#pragma once

#include <ostream>

namespace patchkeeper {

// Runs the command that the arguments ask for and returns the exit code. Records and answers go to
// `out`, the one sentence about a failure to `err`. Throws nothing but std::bad_alloc. One call per
// process.
int RunCommand(int argumentCount, const char* const* arguments, std::ostream& out,
               std::ostream& err);

} // namespace patchkeeper
