#pragma once

#include <filesystem>
#include <optional>

#include "patchkeeper/Settings.hpp"
#include "patchkeeper/Store.hpp"

namespace patchkeeper {

// The directory with all that the tool keeps between its runs: by default /var/lib/patchkeeper, or
// the one that the environment variable PATCHKEEPER_ROOT names.
//
// A directory that is not there counts as an empty one as long as the directory above it is there:
// so it is on a machine where nothing has been taken in yet. Reading makes nothing.
class State {
public:
    explicit State(const std::filesystem::path& root);

    // The directory for this run, from the environment.
    static State OfEnvironment();

    const std::filesystem::path& Root() const { return root_; }
    std::filesystem::path BundleDirectory() const { return root_ / "bundles"; }
    std::filesystem::path DatabaseFile() const { return root_ / "state.db"; }
    std::filesystem::path SettingsFile() const { return root_ / "patchkeeper.conf"; }
    std::filesystem::path LockFile() const { return root_ / "lock"; }
    std::filesystem::path ProgressFile() const { return root_ / "progress"; }
    std::filesystem::path CancelFile() const { return root_ / "cancel"; }
    // What an apply unpacks, while it runs.
    std::filesystem::path WorkDirectory() const { return root_ / "work"; }
    // What applied updates have replaced, a directory for each.
    std::filesystem::path KeptDirectory() const { return root_ / "kept"; }

    // All three throw StateProblem. The settings come first, since the others wait for other
    // processes as long as they say.
    patchkeeper::Settings Settings() const;
    // Nothing when nothing has been kept yet.
    std::optional<Store> OpenExisting(const patchkeeper::Settings& settings) const;
    // Makes the directories and the database that are missing.
    Store OpenOrMake(const patchkeeper::Settings& settings) const;

private:
    void RefuseUnusableRoot() const;

    std::filesystem::path root_;
};

} // namespace patchkeeper
