#include "patchkeeper/Apply.hpp"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "patchkeeper/BundleStates.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Intake.hpp"
#include "patchkeeper/Pace.hpp"
#include "patchkeeper/ProgressBar.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/Recovery.hpp"
#include "patchkeeper/Restoration.hpp"
#include "patchkeeper/TargetTree.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

Failure CannotApply(const std::string& sentence) {
    return {ExitCode::ApplyFailed, sentence};
}

void MakeDirectory(const fs::path& directory) {
    std::error_code error;
    fs::create_directory(directory, error);
    if (error) {
        throw StateProblem("the directory " + directory.string() +
                           " cannot be made: " + error.message());
    }
}

// All that has been written to its file system: many files at once, and their names.
void SyncFilesUnder(const fs::path& directory) {
    const Descriptor file(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.Number() < 0 || syncfs(file.Number()) != 0) {
        throw StateProblem("the directory " + directory.string() +
                           " cannot be written: " + std::generic_category().message(errno));
    }
}

// The files of no component and those of the chosen ones.
std::vector<BundleFile> WantedFiles(const Manifest& manifest,
                                    const std::vector<std::string>& components) {
    std::vector<BundleFile> wanted;
    std::copy_if(manifest.files.begin(), manifest.files.end(), std::back_inserter(wanted),
                 [&](const BundleFile& file) {
                     return file.component.empty() ||
                            std::find(components.begin(), components.end(), file.component) !=
                                components.end();
                 });
    return wanted;
}

// A part of the path is named as the drafts are.
bool HasDraftName(const std::string& path) {
    return ('/' + path).find('/' + std::string(TargetTree::draftPrefix)) != std::string::npos;
}

Standing StandingOf(const BundleFile& file) {
    Standing standing;
    standing.kind = file.IsLink() ? Standing::Kind::Link : Standing::Kind::File;
    standing.mode = file.mode;
    standing.size = file.size;
    standing.link = file.link;
    return standing;
}

// The part of the work that is about one bundle. The order of its steps is what makes it safe: the
// journal is written when everything is ready that undoing needs, and before anything changes below
// the target.
class Application {
public:
    Application(const State& state, Store& store, const Settings& settings, Operation& operation,
                const HeldBundle& bundle)
        : state_(state), store_(store), settings_(settings), operation_(operation), bundle_(bundle),
          address_(bundle.name + ' ' + bundle.version),
          pace_(settings.applyRate, [this] { RefuseCancelled(); }) {}

    std::string Run(const std::vector<std::string>& components) {
        try {
            Prepare(components);
        } catch (...) {
            ClearLeftovers(state_, store_);
            throw;
        }
        try {
            return Install();
        } catch (const std::exception& error) {
            Undo(error.what());
            throw;
        }
    }

private:
    void RefuseCancelled() const {
        if (operation_.IsCancelRequested()) {
            throw CannotApply(address_ + " was cancelled");
        }
    }

    void Tell(std::uint64_t done) {
        pace_.Spend(done - done_);
        done_ = done;
        operation_.Progress(done, total_, "applying " + address_);
    }

    void Prepare(const std::vector<std::string>& components) {
        RefuseOwnTarget();
        const fs::path file = state_.BundleDirectory() / bundle_.file;
        const Manifest manifest = ReadHeld(file);
        files_ = WantedFiles(manifest, components);
        std::uint64_t installed = 0;
        for (const auto& wanted : files_) {
            installed += wanted.size;
            paths_.insert(wanted.path);
        }
        Unpack(file, manifest, components, state_.WorkDirectory(), TrustOf(settings_),
               LimitsOf(settings_), [&](std::uint64_t done, std::uint64_t total) {
                   total_ = total + installed;
                   Tell(done);
               });
        TargetTree::MakeRoot(settings_.target);
        tree_.emplace(settings_.target);
        RefuseOwnFiles();
        update_.target = fs::canonical(settings_.target).string();
        update_.kept = std::to_string(operation_.Number());
        update_.appliedAt = std::time(nullptr);
        KeepWhatIsReplaced();
        Transaction transaction = store_.Begin(Transaction::Kind::Write);
        directories_ = tree_->MissingDirectories(paths_);
        update_.id = store_.AddApplying(manifest, update_, changes_, directories_);
        transaction.Commit();
    }

    Manifest ReadHeld(const fs::path& file) const {
        try {
            Manifest manifest = ReadManifest(file, LimitsOf(settings_));
            if (manifest.name == bundle_.name && manifest.version == bundle_.version) {
                return manifest;
            }
        } catch (const Failure& failure) {
            throw CannotApply(failure.what());
        }
        throw CannotApply(file.string() + " is no longer the bundle that it was");
    }

    // What stands in these directories is removed when nothing in the store tells of it.
    void RefuseOwnTarget() const {
        for (const auto& own :
             {state_.BundleDirectory(), state_.KeptDirectory(), state_.WorkDirectory()}) {
            std::error_code ignored; // what cannot be looked at is no directory of ours
            const std::string below = fs::relative(settings_.target, own, ignored).string();
            if (!below.empty() && below != ".." && !below.starts_with("../")) {
                throw CannotApply("the target " + settings_.target.string() +
                                  " is a place that this program keeps for itself");
            }
        }
    }

    // An update must neither change what this program keeps, nor look like one of its drafts.
    void RefuseOwnFiles() const {
        std::error_code ignored; // both directories are there
        const std::string root = fs::relative(state_.Root(), settings_.target, ignored).string();
        for (const auto& path : paths_) {
            if (HasDraftName(path) || root == "." || path == root || path.starts_with(root + '/')) {
                throw CannotApply(path + " is a place that this program keeps for itself");
            }
        }
    }

    void KeepWhatIsReplaced() {
        const fs::path kept = state_.KeptDirectory() / update_.kept;
        MakeDirectory(state_.KeptDirectory());
        MakeDirectory(kept);
        bool isAnyKept = false;
        for (std::size_t i = 0; i < files_.size(); ++i) {
            Standing before = tree_->Look(files_[i].path);
            if (before.kind == Standing::Kind::File) {
                isAnyKept = true;
                before = tree_->Keep(files_[i].path, kept / std::to_string(i),
                                     [&](std::size_t bytes) { pace_.Spend(bytes); });
            }
            changes_.push_back({files_[i].path, std::move(before)});
        }
        if (isAnyKept) {
            SyncFilesUnder(kept);
        }
    }

    std::string Install() {
        for (const auto& directory : directories_) {
            tree_->MakeDirectory(directory);
        }
        for (std::size_t i = 0; i < files_.size(); ++i) {
            tree_->Draft(i, files_[i].path, StandingOf(files_[i]),
                         state_.WorkDirectory() / files_[i].path,
                         [&](std::size_t bytes) { Tell(done_ + bytes); });
        }
        for (std::size_t i = 0; i < files_.size(); ++i) {
            RefuseCancelled();
            tree_->FinishDraft(i, files_[i].path, StandingOf(files_[i]));
        }
        RefuseCancelled();
        for (std::size_t i = 0; i < files_.size(); ++i) {
            tree_->Switch(i, files_[i].path, StandingOf(files_[i]));
        }
        tree_->SyncDirectories(paths_);
        return Record();
    }

    std::string Record() {
        std::string sentence =
            address_ + " has been applied" + (bundle_.rebootNeeded ? "; a reboot is needed" : "");
        Transaction transaction = store_.Begin(Transaction::Kind::Write);
        store_.SetAppliedState(update_.id, AppliedUpdate::State::Applied);
        if (!bundle_.removable) {
            store_.DropKept(update_.id); // it is never put back
        }
        store_.RemoveSchedule(bundle_.id);
        operation_.Succeed(sentence);
        transaction.Commit();
        ClearLeftovers(state_, store_);
        return sentence;
    }

    void Undo(const std::string& reason) {
        try {
            Restoration(state_, store_, update_).Run();
        } catch (const StateProblem& problem) {
            throw StateProblem(
                reason +
                "; it could not be undone, which the next command tries again: " + problem.what());
        }
        ClearLeftovers(state_, store_);
    }

    const State& state_;
    Store& store_;
    const Settings& settings_;
    Operation& operation_;
    const HeldBundle& bundle_;
    const std::string address_;
    Pace pace_;
    std::uint64_t done_ = 0; // bytes checked, unpacked and put below the target
    std::uint64_t total_ = 0;
    std::vector<BundleFile> files_;
    std::set<std::string> paths_;
    std::set<std::string> directories_; // that are made
    std::vector<Change> changes_;
    AppliedUpdate update_;
    std::optional<TargetTree> tree_;
};

void RefuseUnfit(Store& store, const State& state, const HeldBundle& bundle) {
    const std::string address = bundle.name + ' ' + bundle.version;
    const std::string_view word = BundleStates(store, state.BundleDirectory()).Of(bundle);
    if (!bundle.faults.empty()) {
        throw CannotApply(address + " is not valid: " + bundle.faults);
    }
    if (word == bundle_state::invalid) {
        throw CannotApply("the bundle of " + address + " is gone from " +
                          state.BundleDirectory().string());
    }
    if (word == bundle_state::obsolete) {
        throw CannotApply("a later version of " + bundle.name + " than " + bundle.version +
                          " is applied");
    }
    if (word == bundle_state::applied) {
        throw CannotApply(address + " is applied already");
    }
}

} // namespace

std::string ApplyHeld(const State& state, Store& store, const Settings& settings,
                      Operation& operation, const HeldBundle& bundle,
                      const std::vector<std::string>& components) {
    RefuseUnfit(store, state, bundle);
    return Application(state, store, settings, operation, bundle).Run(components);
}

void ApplyUpdate(const State& state, const std::string& name, const std::string& version,
                 const std::vector<std::string>& components, const Messages& messages) {
    const std::string address = name + ' ' + version;
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    Store store = OrFailMark(state, [&] { return state.OpenOrMake(settings); });
    Operation operation = OrFailMark(state, [&] {
        return Operation(state, store, settings, {"apply", "applying " + address, name, version},
                         messages.notes);
    });
    ProgressBar bar(messages.out, messages.toPerson);
    operation.Watch([&](std::uint64_t done, std::uint64_t total) { bar.Show(done, total); });
    try {
        const auto bundle = store.FindBundle(name, version);
        if (!bundle) {
            throw CannotApply(address + " is not held on this machine");
        }
        const std::string sentence =
            ApplyHeld(state, store, settings, operation, *bundle, components);
        bar.Clear();
        if (messages.toPerson) {
            messages.out << FieldText(sentence) << ".\n";
        } else if (bundle->rebootNeeded) {
            messages.notes << "patchkeeper: note: " << sentence << ".\n";
        }
    } catch (const std::exception& error) {
        operation.FailQuietly(error.what());
        throw;
    }
}

} // namespace patchkeeper
