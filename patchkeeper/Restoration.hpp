#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "patchkeeper/State.hpp"
#include "patchkeeper/Store.hpp"
#include "patchkeeper/TargetTree.hpp"

namespace patchkeeper {

// Puts back what an update has replaced: for a roll-back, and for an apply that failed or died.
// Each step may be taken again after it was interrupted anywhere; files that already are as they
// were before the update are left alone. All throw StateProblem. The holder of the operation lock
// uses it.
class Restoration {
public:
    // Both must outlive this object.
    Restoration(const State& state, Store& store, AppliedUpdate update);

    // How many bytes Draft writes, and whether everything can be put back as far as that can be
    // known beforehand: it throws when a path has become a directory or leads through a link.
    std::uint64_t Prepare();
    // Writes what is to be put back beside its place, where nobody reads it yet.
    void Draft(const TargetTree::CopiedPiece& copied);
    // For good: after it nothing tells of them any more.
    void RemoveDrafts();
    // Puts all of it in place and removes the directories that the update had made.
    void Switch();
    // Strikes the update out of the store. What it replaced is left for ClearLeftovers.
    void Forget();

    // Everything from the first to the last step.
    void Run();

private:
    bool IsAsBefore(std::size_t position) const;
    std::vector<std::string> MadeDirectories();

    Store& store_;
    AppliedUpdate update_;
    std::filesystem::path kept_;
    TargetTree tree_;
    std::vector<Change> changes_;
    std::set<std::string> paths_;
    std::vector<std::size_t> changed_; // positions of those that are not as before
};

} // namespace patchkeeper
