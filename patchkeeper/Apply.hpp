#pragma once

#include <string>
#include <vector>

#include "patchkeeper/Messages.hpp"
#include "patchkeeper/Operation.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

// Applies a held update with the chosen optional components, as an Operation: checks the bundle
// again, unpacks it, keeps what it replaces below the target, and puts all its files there. It
// happens as a whole or not at all, also when the process dies (docs/decisions/0010). Throws
// Failure (ApplyFailed) and StateProblem.
void ApplyUpdate(const State& state, const std::string& name, const std::string& version,
                 const std::vector<std::string>& components, const Messages& messages);

// The same within an operation that runs already; `operation` is ended when it succeeds, and only
// then. Returns the sentence, without a full stop, that tells so.
std::string ApplyHeld(const State& state, Store& store, const Settings& settings,
                      Operation& operation, const HeldBundle& bundle,
                      const std::vector<std::string>& components);

} // namespace patchkeeper
