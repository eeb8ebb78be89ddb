#pragma once

#include <ostream>

#include "patchkeeper/State.hpp"
#include "patchkeeper/Store.hpp"

namespace patchkeeper {

// Brings everything into order that commands which died have left: an operation that still counts
// as running becomes a failed one, half copied bundles and those that were copied but never
// recorded are removed. One line on `notes` for each. The caller holds the operation lock. Throws
// StateProblem.
void Recover(const State& state, Store& store, std::ostream& notes);

} // namespace patchkeeper
