#pragma once

#include <filesystem>

namespace patchkeeper {

// What the tool remembers between its runs: a directory of its own, by default
// /var/lib/patchkeeper, or the one that the environment variable PATCHKEEPER_ROOT names.
class State {
public:
    explicit State(std::filesystem::path root);

    // The directory for this run, from the environment. It need not exist.
    static State OfEnvironment();

    // Marks that an operation is about to run, in the file `in-progress` (the time of the mark in
    // seconds since 1970, UTC), which appears whole or not at all; a mark that is there already is
    // renewed. Makes the directory when it is missing.
    // Throws Failure (SoftwareUpdateFailed) when that is not possible.
    void MarkInProgress() const;

    const std::filesystem::path& Root() const { return root_; }

private:
    std::filesystem::path root_;
};

} // namespace patchkeeper
