#pragma once

#include <string>

#include "patchkeeper/Messages.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

// While the update is being applied: tells that apply to give up, and waits for it as long as the
// settings say. Otherwise, as an Operation of its own: takes an applied update back and puts what
// it replaced in place again, as a whole or not at all. Throws Failure (RemoveFailed) when the
// update is not applied, not removable, or a later one has changed one of its files; and
// StateProblem.
void RollBack(const State& state, const std::string& name, const std::string& version,
              const Messages& messages);

} // namespace patchkeeper
