#include "patchkeeper/Recovery.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/OperationLock.hpp"
#include "patchkeeper/PartialCopy.hpp"
#include "patchkeeper/Restoration.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

void Note(std::ostream& notes, const std::string& text) {
    notes << "patchkeeper: note: " << text << ".\n";
}

void FailInterruptedOperation(Store& store, std::ostream& notes) {
    OperationRow row = store.ReadOperation();
    if (row.state != OperationRow::State::Running) {
        return;
    }
    row.state = OperationRow::State::Failed;
    row.text = "The operation was interrupted: " + row.text;
    store.WriteOperation(row);
    Note(notes, "an earlier operation was interrupted");
}

void FinishInterruptedUpdates(const State& state, Store& store, std::ostream& notes) {
    for (const auto& update : store.UnfinishedUpdates()) {
        const std::string address = update.name + ' ' + update.version;
        const bool isApply = update.state == AppliedUpdate::State::Applying;
        try {
            Restoration(state, store, update).Run();
        } catch (const StateProblem& problem) {
            throw StateProblem("the interrupted " +
                               (isApply ? "apply of " + address + " cannot be undone: "
                                        : "roll-back of " + address + " cannot be finished: ") +
                               problem.what());
        }
        Note(notes, isApply ? "the interrupted apply of " + address + " has been undone"
                            : "the interrupted roll-back of " + address + " has been finished");
        ClearLeftovers(state, store);
    }
}

// None when the directory is not there.
std::vector<fs::path> FilesIn(const fs::path& directory) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator i(directory, error), end; !error && i != end; i.increment(error)) {
        files.push_back(i->path());
    }
    if (error && error != std::errc::no_such_file_or_directory) {
        throw StateProblem("the directory " + directory.string() +
                           " cannot be read: " + error.message());
    }
    return files;
}

std::vector<fs::path> OldWork(const State& state, Store& store) {
    std::vector<fs::path> old;
    if (fs::exists(fs::symlink_status(state.WorkDirectory()))) {
        old.push_back(state.WorkDirectory());
    }
    const auto kept = store.KeptDirectories();
    for (const auto& directory : FilesIn(state.KeptDirectory())) {
        if (std::find(kept.begin(), kept.end(), directory.filename().string()) == kept.end()) {
            old.push_back(directory);
        }
    }
    return old;
}

std::vector<fs::path> Unrecorded(const State& state, Store& store) {
    std::vector<fs::path> unrecorded = OldWork(state, store);
    std::set<std::string> recorded;
    for (const auto& bundle : store.Bundles()) {
        recorded.insert(bundle.file);
    }
    for (auto& file : FilesIn(state.BundleDirectory())) {
        if (!recorded.contains(file.filename().string()) &&
            !PartialCopy::IsPartOfOne(state, file)) {
            unrecorded.push_back(std::move(file));
        }
    }
    return unrecorded;
}

void RemoveUnrecorded(const State& state, Store& store, std::ostream& notes) {
    for (const auto& file : Unrecorded(state, store)) {
        std::error_code error;
        fs::remove_all(file, error);
        if (error) {
            throw StateProblem("the leftover " + file.string() +
                               " cannot be removed: " + error.message());
        }
        Note(notes, "a leftover of an interrupted command was removed: " + file.string());
    }
}

// These are written as a whole and say for which operation they are: old ones do no harm.
void RemoveOldMessages(const State& state) {
    std::error_code ignored;
    fs::remove(state.ProgressFile().string() + ".new", ignored);
    fs::remove(state.CancelFile(), ignored);
}

} // namespace

void Recover(const State& state, Store& store, std::ostream& notes) {
    FailInterruptedOperation(store, notes);
    FinishInterruptedUpdates(state, store, notes);
    RemoveUnrecorded(state, store, notes);
    RemoveOldMessages(state);
}

void RecoverIfIdle(const State& state, Store& store, std::ostream& notes) {
    const bool isNeeded = store.ReadOperation().state == OperationRow::State::Running ||
                          !store.UnfinishedUpdates().empty();
    if (!isNeeded) {
        return;
    }
    std::optional<OperationLock> lock;
    try {
        lock.emplace(state.LockFile(), std::chrono::milliseconds(0));
    } catch (const StateProblem&) {
        return; // an operation runs
    }
    Recover(state, store, notes);
}

void ClearLeftovers(const State& state, Store& store) noexcept {
    try {
        for (const auto& file : OldWork(state, store)) {
            std::error_code ignored;
            fs::remove_all(file, ignored);
        }
        RemoveOldMessages(state);
    } catch (const std::exception&) {
        return;
    }
}

} // namespace patchkeeper
