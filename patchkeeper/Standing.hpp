#pragma once

#include <cstdint>
#include <string>

namespace patchkeeper {

// What stands at a path below a target directory, as far as it has to be put back.
struct Standing {
    enum class Kind { Nothing, File, Link };

    Kind kind = Kind::Nothing;
    unsigned mode = 0;      // permission bits of a file, set-user-ID and the like included
    std::uint64_t size = 0; // of a file
    std::string link;       // what a symbolic link holds

    friend bool operator==(const Standing&, const Standing&) = default;
};

} // namespace patchkeeper
