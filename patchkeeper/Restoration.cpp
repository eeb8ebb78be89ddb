#include "patchkeeper/Restoration.hpp"

#include <algorithm>
#include <utility>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace {

// The target of an update, which may be gone.
TargetTree TreeAt(const std::string& target) {
    TargetTree::MakeRoot(target);
    return TargetTree(target);
}

} // namespace

Restoration::Restoration(const State& state, Store& store, AppliedUpdate update)
    : store_(store), update_(std::move(update)), kept_(state.KeptDirectory() / update_.kept),
      tree_(TreeAt(update_.target)), changes_(store_.ChangesOf(update_.id)) {
    for (const auto& change : changes_) {
        paths_.insert(change.path);
    }
}

bool Restoration::IsAsBefore(std::size_t position) const {
    const Change& change = changes_[position];
    return tree_.Look(change.path) == change.before &&
           (change.before.kind != Standing::Kind::File ||
            tree_.HasContentOf(change.path, kept_ / std::to_string(position)));
}

std::uint64_t Restoration::Prepare() {
    changed_.clear();
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        if (!IsAsBefore(i)) {
            changed_.push_back(i);
            bytes += changes_[i].before.size;
        }
    }
    return bytes;
}

void Restoration::Draft(const TargetTree::CopiedPiece& copied) {
    std::set<std::string> wanted;
    for (const auto position : changed_) {
        if (changes_[position].before.kind != Standing::Kind::Nothing) {
            wanted.insert(changes_[position].path);
        }
    }
    for (const auto& directory : tree_.MissingDirectories(wanted)) {
        tree_.MakeDirectory(directory); // somebody has removed it meanwhile
    }
    for (const auto position : changed_) {
        tree_.Draft(position, changes_[position].path, changes_[position].before,
                    kept_ / std::to_string(position), copied);
    }
    for (const auto position : changed_) {
        tree_.FinishDraft(position, changes_[position].path, changes_[position].before);
    }
}

void Restoration::RemoveDrafts() {
    for (std::size_t i = 0; i < changes_.size(); ++i) {
        tree_.RemoveDraft(i, changes_[i].path);
    }
    tree_.SyncDirectories(paths_);
}

void Restoration::Switch() {
    for (const auto position : changed_) {
        tree_.Switch(position, changes_[position].path, changes_[position].before);
    }
    for (const auto& directory : MadeDirectories()) {
        tree_.RemoveIfEmpty(directory);
    }
    tree_.SyncDirectories(paths_);
}

// Those that stand on the way to files of this update, the inner ones first.
std::vector<std::string> Restoration::MadeDirectories() {
    const std::set<std::string> ours = DirectoriesAbove(paths_);
    std::vector<std::string> directories;
    for (auto& directory : store_.MadeDirectories(update_.target)) {
        if (ours.contains(directory)) {
            directories.push_back(std::move(directory));
        }
    }
    std::sort(directories.rbegin(), directories.rend());
    return directories;
}

void Restoration::Forget() {
    for (const auto& directory : MadeDirectories()) {
        if (!tree_.MissingDirectories({directory + '/'}).empty()) {
            store_.ForgetMadeDirectory(update_.target, directory);
        }
    }
    store_.RemoveApplied(update_.id);
}

void Restoration::Run() {
    RemoveDrafts();
    Prepare();
    Draft([](std::size_t) {});
    Switch();
    Transaction transaction = store_.Begin(Transaction::Kind::Write);
    Forget();
    transaction.Commit();
}

} // namespace patchkeeper
