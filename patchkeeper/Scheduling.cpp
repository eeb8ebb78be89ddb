#include "patchkeeper/Scheduling.hpp"

#include <ctime>
#include <optional>
#include <vector>

#include "patchkeeper/Apply.hpp"
#include "patchkeeper/BundleStates.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/LocalTime.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/Recovery.hpp"

namespace patchkeeper {

namespace {

std::string AddressOf(const HeldBundle& bundle) {
    return bundle.name + ' ' + bundle.version;
}

std::time_t MomentToCome(const std::string& date, const std::string& time, ExitCode code) {
    std::time_t moment = 0;
    try {
        moment = LocalMoment(date, time);
    } catch (const Unreadable& unreadable) {
        throw Failure(code, unreadable.what());
    }
    if (moment <= std::time(nullptr)) {
        throw Failure(code, "the day of '" + date + "' at the time of '" + time + "' is over");
    }
    return moment;
}

Store OpenInOrder(const State& state, std::ostream& notes) {
    Store store = state.OpenOrMake(state.Settings());
    RecoverIfIdle(state, store, notes);
    return store;
}

// The one of a scheduled update.
Schedule FindSchedule(Store& store, const std::string& name, const std::string& version) {
    const auto bundle = store.FindBundle(name, version);
    auto schedule = bundle ? store.FindSchedule(bundle->id) : std::nullopt;
    if (!schedule) {
        throw Failure(ExitCode::ModifyFailed, name + ' ' + version + " is not scheduled");
    }
    return *schedule;
}

bool IsDue(const Schedule& schedule, std::time_t now) {
    return schedule.failure.empty() && schedule.applyAt <= now;
}

std::vector<HeldBundle> DueBundles(Store& store, std::time_t now) {
    const Transaction reading = store.Begin(Transaction::Kind::Read);
    std::vector<HeldBundle> due;
    const auto bundles = store.Bundles();
    for (const auto& schedule : store.Schedules()) {
        for (const auto& bundle : bundles) {
            if (bundle.id == schedule.bundle && IsDue(schedule, now)) {
                due.push_back(bundle);
            }
        }
    }
    return due;
}

void RecordFailure(Store& store, const HeldBundle& bundle, const std::string& reason) {
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    if (auto schedule = store.FindSchedule(bundle.id)) {
        schedule->failure = reason;
        store.WriteSchedule(*schedule);
        transaction.Commit();
    }
}

// The reason why it failed, or "".
std::string ApplyDue(const State& state, Store& store, const Settings& settings,
                     const HeldBundle& bundle, std::ostream& notes) {
    Operation operation(
        state, store, settings,
        {"apply", "applying " + AddressOf(bundle) + ", which was due", bundle.name, bundle.version},
        notes);
    try {
        const auto schedule = store.FindSchedule(bundle.id);
        const auto held = store.FindBundle(bundle.name, bundle.version);
        if (!held || !schedule || !IsDue(*schedule, std::time(nullptr))) {
            operation.Withdraw(); // another command was quicker
            return "";
        }
        const std::string sentence = ApplyHeld(state, store, settings, operation, *held, {});
        notes << "patchkeeper: note: " << FieldText(sentence) << ".\n";
        return "";
    } catch (const std::exception& error) {
        operation.FailQuietly(error.what());
        RecordFailure(store, bundle, error.what());
        return error.what();
    }
}

} // namespace

void ScheduleUpdate(const State& state, const std::string& name, const std::string& version,
                    const std::string& date, const std::string& time, std::ostream& notes) {
    Store store = OpenInOrder(state, notes);
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    const auto bundle = store.FindBundle(name, version);
    if (!bundle) {
        throw Failure(ExitCode::ScheduleFailed,
                      name + ' ' + version + " is not held on this machine");
    }
    const BundleStates states(store, state.BundleDirectory());
    if (states.IsScheduled(*bundle)) {
        throw Failure(ExitCode::ScheduleFailed, AddressOf(*bundle) + " is scheduled already");
    }
    const auto word = states.Of(*bundle);
    if (word != bundle_state::available) {
        throw Failure(ExitCode::ScheduleFailed,
                      AddressOf(*bundle) + " cannot be applied: it is " + std::string(word));
    }
    store.WriteSchedule({bundle->id, MomentToCome(date, time, ExitCode::ScheduleFailed), ""});
    transaction.Commit();
}

void MoveSchedule(const State& state, const std::string& name, const std::string& version,
                  const std::string& date, const std::string& time, std::ostream& notes) {
    Store store = OpenInOrder(state, notes);
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    const Schedule schedule = FindSchedule(store, name, version);
    store.WriteSchedule({schedule.bundle, MomentToCome(date, time, ExitCode::ModifyFailed), ""});
    transaction.Commit();
}

void DropSchedule(const State& state, const std::string& name, const std::string& version,
                  std::ostream& notes) {
    Store store = OpenInOrder(state, notes);
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    store.RemoveSchedule(FindSchedule(store, name, version).bundle);
    transaction.Commit();
}

void RunDue(const State& state, const Messages& messages) {
    const Settings settings = state.Settings();
    std::optional<Store> store = state.OpenExisting(settings);
    if (!store) {
        return;
    }
    RecoverIfIdle(state, *store, messages.notes);
    const auto due = DueBundles(*store, std::time(nullptr));
    std::string failures;
    std::size_t failed = 0;
    for (const auto& bundle : due) {
        const std::string reason = ApplyDue(state, *store, settings, bundle, messages.notes);
        if (!reason.empty()) {
            failures += (failures.empty() ? "" : "; ") + reason;
            ++failed;
        }
    }
    if (failed > 0) {
        throw Failure(ExitCode::ApplyFailed, std::to_string(failed) + " of " +
                                                 std::to_string(due.size()) +
                                                 " due updates could not be applied: " + failures);
    }
}

} // namespace patchkeeper
