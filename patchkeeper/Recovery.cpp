#include "patchkeeper/Recovery.hpp"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "patchkeeper/Failure.hpp"

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

std::vector<fs::path> FilesIn(const fs::path& directory) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator i(directory, error), end; !error && i != end; i.increment(error)) {
        files.push_back(i->path());
    }
    if (error) {
        throw StateProblem("the directory " + directory.string() +
                           " cannot be read: " + error.message());
    }
    return files;
}

void RemoveUnrecorded(const State& state, Store& store, std::ostream& notes) {
    std::set<std::string> recorded;
    for (const auto& bundle : store.Bundles()) {
        recorded.insert(bundle.file);
    }
    for (const auto& file : FilesIn(state.BundleDirectory())) {
        if (recorded.count(file.filename().string()) != 0) {
            continue;
        }
        std::error_code error;
        fs::remove_all(file, error);
        if (error) {
            throw StateProblem("the leftover " + file.string() +
                               " cannot be removed: " + error.message());
        }
        Note(notes, "a leftover of an interrupted command was removed: " + file.string());
    }
}

} // namespace

void Recover(const State& state, Store& store, std::ostream& notes) {
    FailInterruptedOperation(store, notes);
    RemoveUnrecorded(state, store, notes);
    std::error_code ignored; // overwritten by the next operation anyway
    fs::remove(state.ProgressFile().string() + ".new", ignored);
}

} // namespace patchkeeper
