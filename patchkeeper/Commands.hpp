#pragma once

#include <cstddef>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

// Without the program's name and, for a command, without the command's.
using Arguments = std::vector<std::string>;

struct CommandContext {
    const State& state;
    std::ostream& out;
    std::ostream& err;
    bool table;    // lists as tables
    bool toPerson; // `out` and `err` are a terminal
};

// A command that stands first on the command line. It takes all that stands behind it as it is: a
// password may begin with a dash. Several commands have the same name and differ in the number of
// arguments.
struct Command {
    enum class Kind {
        List,     // may be followed by --human
        Change,   // changes the state at once
        Operation // what a mark announces: a fetch, apply or roll-back
    };

    std::string_view name;
    std::string_view arguments; // for --help
    std::size_t least;          // number of arguments
    std::size_t most;
    Kind kind;
    ExitCode code; // for failures that have no code of their own
    std::string_view help;
    ExitCode (*run)(const CommandContext& context, const Arguments& arguments);
    std::size_t password = 0; // which argument is one, counted from 1; 0 for none
};

std::span<const Command> Commands();

} // namespace patchkeeper
