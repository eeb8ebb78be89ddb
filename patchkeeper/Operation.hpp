#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <utility>

#include "patchkeeper/OperationLock.hpp"
#include "patchkeeper/State.hpp"

namespace patchkeeper {

// How long a mark waits for the command that it announces.
constexpr std::chrono::seconds longestMark{30};

// What `--status` tells.
struct Status {
    enum Code { Failed = -1, Nothing = 0, Running = 1, Done = 2 };

    Code code = Nothing;
    std::string text; // one line without a tab
};

// What is told of a state in which nothing has happened yet.
Status NothingRunning();

// The running operation, the mark that announces one, or how the last one ended. An operation whose
// process died reads as failed. Throws StateProblem.
Status ReadStatus(const State& state, Store& store);

// Marks that an operation is about to run. Throws Failure (SoftwareUpdateFailed) while one runs or
// has been marked within the last 30 s; StateProblem when the mark cannot be written.
void MarkInProgress(const State& state, Store& store);

// Tells those who wait for a marked operation that its command has been refused. Does nothing
// without a mark, and throws nothing: the refusal itself is what the caller reports.
void FailMark(const State& state, const std::string& reason) noexcept;

// Does what has to precede a marked operation: when it fails, nobody waits for the operation any
// longer.
template <typename Call>
auto OrFailMark(const State& state, Call call) {
    try {
        return call();
    } catch (const std::exception& error) {
        FailMark(state, error.what());
        throw;
    }
}

// Asks the operation of that number to give up; it may end before it sees that. Throws StateProblem
// when it cannot be asked.
void RequestCancel(const State& state, std::int64_t number);

// What an operation is about; name and version only where it is about one update.
struct OperationSubject {
    std::string kind; // "fetch", "apply", "rback"
    std::string text; // for a person, such as "fetching from /mnt"
    std::string name;
    std::string version;
};

// The one operation that may run at a time: from the construction until Succeed() or Fail() it
// holds the lock and can be seen by ReadStatus of other processes. It takes up a mark. What an
// operation that died has left is cleared first, with a line on `notes` about each thing.
class Operation {
public:
    // Waits for another operation as long as the settings say. Throws StateProblem.
    Operation(const State& state, Store& store, const Settings& settings, OperationSubject subject,
              std::ostream& notes);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation(); // fails it when nothing else has ended it

    // Who else is told of the progress, such as a bar on a terminal.
    using Watcher = std::function<void(std::uint64_t done, std::uint64_t total)>;
    void Watch(Watcher watcher) { watcher_ = std::move(watcher); }

    // Cheap enough for every piece of a copy: other processes see it ten times a second at most,
    // and always the first and the last one.
    void Progress(std::uint64_t done, std::uint64_t total, const std::string& text);

    // The text is one line. Both throw StateProblem.
    void Succeed(const std::string& text);
    void Fail(const std::string& text);
    // As if it had never begun: what was readable before it is again. Throws StateProblem.
    void Withdraw();
    // For when the failure itself is what the caller reports; throws nothing.
    void FailQuietly(const std::string& text) noexcept;

    // Whether RequestCancel has been called for it.
    bool IsCancelRequested() const;

    // Counts the operations of this state; no two have the same.
    std::int64_t Number() const { return row_.number; }

private:
    void End(OperationRow::State state, const std::string& text);

    const State& state_;
    Store& store_;
    OperationLock lock_;
    OperationRow before_;
    OperationRow row_;
    std::chrono::steady_clock::time_point nextWrite_;
    Watcher watcher_;
};

} // namespace patchkeeper
