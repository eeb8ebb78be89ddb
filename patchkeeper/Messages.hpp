#pragma once

#include <ostream>

namespace patchkeeper {

// Where the messages of a long command go.
struct Messages {
    std::ostream& out;
    std::ostream& notes;
    bool toPerson; // a bar and a closing sentence on `out`
};

} // namespace patchkeeper
