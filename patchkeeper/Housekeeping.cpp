#include "patchkeeper/Housekeeping.hpp"

#include <filesystem>
#include <system_error>

#include "patchkeeper/BundleStates.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/OperationLock.hpp"
#include "patchkeeper/PartialCopy.hpp"
#include "patchkeeper/Recovery.hpp"

namespace patchkeeper {

namespace {

void Remove(const State& state, Store& store, const HeldBundle& bundle) {
    store.RemoveBundle(bundle.id);
    std::error_code ignored; // the next command that changes something removes what is left
    std::filesystem::remove(state.BundleDirectory() / bundle.file, ignored);
}

} // namespace

void Forget(const State& state, const std::string& name, const std::string& version,
            std::ostream& notes) {
    const Settings settings = state.Settings();
    Store store = state.OpenOrMake(settings);
    const OperationLock lock(state.LockFile(), settings.lockTimeout);
    Recover(state, store, notes);
    const auto bundle = store.FindBundle(name, version);
    if (!bundle) {
        throw Failure(ExitCode::SoftwareUpdateFailed,
                      name + ' ' + version + " is not held on this machine");
    }
    if (BundleStates(store, state.BundleDirectory()).IsScheduled(*bundle)) {
        throw Failure(ExitCode::SoftwareUpdateFailed, name + ' ' + version + " is scheduled");
    }
    Remove(state, store, *bundle);
}

void Prune(const State& state, std::ostream& out, std::ostream& notes) {
    const Settings settings = state.Settings();
    Store store = state.OpenOrMake(settings);
    const OperationLock lock(state.LockFile(), settings.lockTimeout);
    Recover(state, store, notes);
    const BundleStates states(store, state.BundleDirectory());
    for (const auto& bundle : store.Bundles()) {
        const auto word = states.Of(bundle);
        if ((word == bundle_state::obsolete || word == bundle_state::invalid) &&
            !states.IsScheduled(bundle)) {
            Remove(state, store, bundle);
            out << bundle.name << ' ' << bundle.version << " has been removed (" << word << ").\n";
        }
    }
    if (const auto url = PartialCopy::UrlOf(state)) {
        PartialCopy::Discard(state);
        out << "What had been fetched of " << *url << " has been removed.\n";
    }
}

} // namespace patchkeeper
