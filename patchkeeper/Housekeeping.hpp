#pragma once

#include <ostream>
#include <string>

#include "patchkeeper/State.hpp"

namespace patchkeeper {

// What keeps the state from growing. Both wait for a running operation as long as the settings say,
// clear what dead commands have left (with lines on `notes`), and throw StateProblem.

// Removes one held bundle. What it has installed, and the record of that, stays. Throws Failure
// (SoftwareUpdateFailed) when it is not held, or is scheduled.
void Forget(const State& state, const std::string& name, const std::string& version,
            std::ostream& notes);

// Removes every held bundle that is Obsolete or Invalid and not scheduled; a line about each on
// `out`.
void Prune(const State& state, std::ostream& out, std::ostream& notes);

} // namespace patchkeeper
