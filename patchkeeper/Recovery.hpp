#pragma once

#include <ostream>

#include "patchkeeper/State.hpp"
#include "patchkeeper/Store.hpp"

namespace patchkeeper {

// Brings everything into order that commands which died have left: an operation that still counts
// as running becomes a failed one, an apply that did not end is undone and a roll-back that did not
// end is finished, and files that belong to nothing in the store are removed: half copied bundles,
// those that were copied but never recorded, what an apply had unpacked or kept. What came of a
// file on a server stays, to be continued. One line on `notes` for each. The caller holds the
// operation lock. Throws StateProblem; what could not be done is left to the next command.
void Recover(const State& state, Store& store, std::ostream& notes);

// Does so for commands that need no lock, when there is something to do and no operation runs.
void RecoverIfIdle(const State& state, Store& store, std::ostream& notes);

// Removes what an apply or a roll-back leaves below the root directory and nobody needs any longer:
// the unpacked files, and kept files of updates that are not applied. For the end of one, so it
// throws nothing: what stays is removed by the next Recover.
void ClearLeftovers(const State& state, Store& store) noexcept;

} // namespace patchkeeper
