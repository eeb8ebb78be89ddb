#include "patchkeeper/RollBack.hpp"

#include <chrono>
#include <thread>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Operation.hpp"
#include "patchkeeper/Pace.hpp"
#include "patchkeeper/ProgressBar.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/Recovery.hpp"
#include "patchkeeper/Restoration.hpp"

namespace patchkeeper {

namespace {

constexpr std::chrono::milliseconds pause{20}; // between two looks at the operation

Failure CannotRemove(const std::string& sentence) {
    return {ExitCode::RemoveFailed, sentence};
}

bool IsStillRunning(const State& state, Store& store, std::int64_t number) {
    const OperationRow row = store.ReadOperation();
    return row.number == number && row.state == OperationRow::State::Running &&
           OperationLock::IsHeld(state.LockFile());
}

// Whether an apply of the update ran and has undone its work. Not so when it had ended before it
// saw the request: the update is applied then.
bool CancelApply(const State& state, Store& store, const Settings& settings,
                 const std::string& name, const std::string& version, std::ostream& notes) {
    const OperationRow row = store.ReadOperation();
    if (row.kind != "apply" || row.name != name || row.version != version ||
        !IsStillRunning(state, store, row.number)) {
        return false;
    }
    RequestCancel(state, row.number);
    const std::string address = name + ' ' + version;
    const auto deadline = std::chrono::steady_clock::now() + settings.lockTimeout;
    while (IsStillRunning(state, store, row.number)) {
        if (std::chrono::steady_clock::now() >= deadline) {
            throw CannotRemove("the apply of " + address +
                               " has been told to stop, and has not within " +
                               std::to_string(settings.lockTimeout.count()) + " s");
        }
        std::this_thread::sleep_for(pause);
    }
    RecoverIfIdle(state, store, notes); // it may have died
    const auto applied = store.FindApplied(name, version);
    return !applied || applied->state != AppliedUpdate::State::Applied;
}

AppliedUpdate FindRemovable(Store& store, const std::string& name, const std::string& version) {
    const std::string address = name + ' ' + version;
    auto update = store.FindApplied(name, version);
    if (!update) {
        throw CannotRemove(address + " is not applied");
    }
    if (!update->removable) {
        throw CannotRemove(address + " is not removable");
    }
    if (const auto later = store.LaterChange(*update)) {
        throw CannotRemove(later->path + " of " + address + " was changed later by " + later->name +
                           ' ' + later->version + ", which has to be rolled back first");
    }
    return *update;
}

// A roll-back that stops after its first change is finished by the next command.
template <class Work>
void OrSayWhatFollows(const std::string& reason, Work work) {
    try {
        work();
    } catch (const StateProblem& problem) {
        throw StateProblem((reason.empty() ? "" : reason + "; ") + problem.what() +
                           "; the next command that changes something finishes the roll-back");
    }
}

// Until everything is written beside its place nothing has changed, and the update stays applied.
void DraftOrKeepApplied(Store& store, Restoration& restoration, const AppliedUpdate& update,
                        const TargetTree::CopiedPiece& copied) {
    try {
        restoration.Draft(copied);
    } catch (const std::exception& error) {
        OrSayWhatFollows(error.what(), [&] {
            restoration.RemoveDrafts();
            store.SetAppliedState(update.id, AppliedUpdate::State::Applied);
        });
        throw;
    }
}

std::string TakeBack(const State& state, Store& store, const Settings& settings,
                     Operation& operation, const AppliedUpdate& update) {
    const std::string address = update.name + ' ' + update.version;
    Restoration restoration(state, store, update);
    const std::uint64_t total = restoration.Prepare();
    store.SetAppliedState(update.id, AppliedUpdate::State::Removing);
    Pace pace(settings.applyRate, [] {});
    std::uint64_t done = 0;
    operation.Progress(done, total, "rolling back " + address);
    DraftOrKeepApplied(store, restoration, update, [&](std::size_t bytes) {
        pace.Spend(bytes);
        done += bytes;
        operation.Progress(done, total, "rolling back " + address);
    });
    OrSayWhatFollows("", [&] { restoration.Switch(); });
    std::string sentence = address + " has been rolled back";
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    restoration.Forget();
    operation.Succeed(sentence);
    transaction.Commit();
    ClearLeftovers(state, store);
    return sentence;
}

} // namespace

void RollBack(const State& state, const std::string& name, const std::string& version,
              const Messages& messages) {
    const std::string address = name + ' ' + version;
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    Store store = OrFailMark(state, [&] { return state.OpenOrMake(settings); });
    if (OrFailMark(state, [&] {
            return CancelApply(state, store, settings, name, version, messages.notes);
        })) {
        if (messages.toPerson) {
            messages.out << FieldText("the apply of " + address + " has been cancelled") << ".\n";
        }
        return;
    }
    Operation operation = OrFailMark(state, [&] {
        return Operation(state, store, settings,
                         {"rback", "rolling back " + address, name, version}, messages.notes);
    });
    ProgressBar bar(messages.out, messages.toPerson);
    operation.Watch([&](std::uint64_t done, std::uint64_t total) { bar.Show(done, total); });
    try {
        const std::string sentence =
            TakeBack(state, store, settings, operation, FindRemovable(store, name, version));
        bar.Clear();
        if (messages.toPerson) {
            messages.out << FieldText(sentence) << ".\n";
        }
    } catch (const std::exception& error) {
        operation.FailQuietly(error.what());
        throw;
    }
}

} // namespace patchkeeper
