#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace patchkeeper {

// What patchkeeper.conf says, or the defaults. README.md has the table.
struct Settings {
    std::filesystem::path target;                   // where updates are installed; absolute
    std::string emUrl;                              // "" when not set
    std::uint64_t sizeLimit = 2ULL << 30U;          // bytes of one bundle, packed or unpacked
    std::chrono::seconds lockTimeout{10};           // how long a command waits for others
    std::chrono::seconds connectTimeout{30};        // for a connection to a server
    std::chrono::seconds transferTimeout{60};       // without a byte from a server
    std::filesystem::path authorities;              // absolute; "" for those of the system
    std::uint64_t applyRate = 0;                    // bytes per second, 0 for no limit
    std::vector<std::filesystem::path> trustedKeys; // absolute
    bool allowUnsigned = false;
};

// Reads `name = value` lines; `#` begins a comment line. A missing file gives the defaults; paths
// that are not absolute are taken from `root`. Throws StateProblem with every mistake in the file,
// each with file, line and item, and when the file cannot be read.
Settings ReadSettings(const std::filesystem::path& file, const std::filesystem::path& root);

} // namespace patchkeeper
