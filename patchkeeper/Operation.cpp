#include "patchkeeper/Operation.hpp"

#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Owner.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/Recovery.hpp"

namespace patchkeeper {

namespace {

using Row = OperationRow;

constexpr std::chrono::milliseconds betweenWrites{100};
constexpr std::size_t longestText = 900; // the code, percent and bytes stand before it on the line

std::int64_t NowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

// A mark from the future, after the clock was set back, would never grow old.
bool IsFreshMark(const Row& row) {
    const std::int64_t age = NowMs() - row.startedMs;
    return row.state == Row::State::Marked && age >= 0 &&
           age <= std::chrono::milliseconds(longestMark).count();
}

std::string Text(const std::string& text) {
    return FieldText(text, longestText);
}

// `ofNothing`: the percent where there are no bytes to do.
std::string WithBytes(std::uint64_t done, std::uint64_t total, const std::string& text,
                      std::uint64_t ofNothing) {
    const std::uint64_t percent = total == 0 ? ofNothing : std::min(done, total) * 100 / total;
    return std::to_string(percent) + " %, " + std::to_string(done) + " of " +
           std::to_string(total) + " bytes: " + Text(text);
}

struct Seen {
    std::uint64_t done = 0;
    std::uint64_t total = 0;
    std::string text;
};

// What the operation of that number has told last. A file of an earlier operation does not count.
Seen ReadProgress(const State& state, const Row& row) {
    std::ifstream in(state.ProgressFile());
    std::int64_t number = 0;
    Seen seen;
    if (in >> number >> seen.done >> seen.total && in.get() == ' ' && std::getline(in, seen.text) &&
        number == row.number) {
        return seen;
    }
    return {0, 0, row.text};
}

// Nothing when the row changed meanwhile.
std::optional<Status> StatusOfRunning(const State& state, Store& store, const Row& row) {
    if (OperationLock::IsHeld(state.LockFile())) {
        const Seen seen = ReadProgress(state, row);
        return Status{Status::Running, WithBytes(seen.done, seen.total, seen.text, 0)};
    }
    // Nobody held the lock: the operation has died, unless it has ended since the row was read.
    const Row again = store.ReadOperation();
    if (again.number == row.number && again.state == Row::State::Running) {
        return Status{Status::Failed, Text("The operation was interrupted: " + row.text)};
    }
    return std::nullopt;
}

} // namespace

Status NothingRunning() {
    return {Status::Nothing, "Nothing is running."};
}

Status ReadStatus(const State& state, Store& store) {
    for (;;) {
        const Row row = store.ReadOperation();
        switch (row.state) {
        case Row::State::None:
            return NothingRunning();
        case Row::State::Marked:
            return IsFreshMark(row)
                       ? Status{Status::Running, WithBytes(0, 0, "waiting for the command", 0)}
                       : Status{Status::Failed,
                                "No command began within 30 seconds after it was announced."};
        case Row::State::Running:
            if (auto status = StatusOfRunning(state, store, row)) {
                return *status;
            }
            break;
        case Row::State::Done:
            return {Status::Done, WithBytes(row.bytes, row.total, row.text, 100)};
        case Row::State::Failed:
            return {Status::Failed, Text(row.text)};
        }
    }
}

void MarkInProgress(const State& state, Store& store) {
    Transaction transaction = store.Begin(Transaction::Kind::Write);
    Row row = store.ReadOperation();
    if (row.state == Row::State::Running && OperationLock::IsHeld(state.LockFile())) {
        throw Failure(ExitCode::SoftwareUpdateFailed, "an operation is running: " + row.text);
    }
    if (IsFreshMark(row)) {
        throw Failure(ExitCode::SoftwareUpdateFailed,
                      "an operation has been announced and has not begun yet");
    }
    Row mark;
    mark.number = row.number + 1;
    mark.state = Row::State::Marked;
    mark.startedMs = NowMs();
    store.WriteOperation(mark);
    transaction.Commit();
}

void FailMark(const State& state, const std::string& reason) noexcept {
    try {
        ActAsOwnerOf(state.Root());
        std::optional<Store> store = state.OpenExisting(state.Settings());
        if (!store) {
            return;
        }
        Transaction transaction = store->Begin(Transaction::Kind::Write);
        Row row = store->ReadOperation();
        if (row.state == Row::State::Marked) {
            row.state = Row::State::Failed;
            row.text = reason;
            store->WriteOperation(row);
            transaction.Commit();
        }
    } catch (const std::exception&) {
        return; // the mark grows old by itself
    }
}

// One short write: a reader sees the number, or nothing yet.
void RequestCancel(const State& state, std::int64_t number) {
    std::ofstream out(state.CancelFile(), std::ios::trunc);
    out << std::to_string(number) + '\n' << std::flush;
    if (!out) {
        throw StateProblem(state.CancelFile().string() + " cannot be written");
    }
}

Operation::Operation(const State& state, Store& store, const Settings& settings,
                     OperationSubject subject, std::ostream& notes)
    : state_(state), store_(store), lock_(state.LockFile(), settings.lockTimeout) {
    Recover(state_, store_, notes);
    Transaction transaction = store_.Begin(Transaction::Kind::Write);
    before_ = store_.ReadOperation();
    row_.number = before_.number + 1;
    row_.state = Row::State::Running;
    row_.kind = std::move(subject.kind);
    row_.text = std::move(subject.text);
    row_.name = std::move(subject.name);
    row_.version = std::move(subject.version);
    row_.startedMs = NowMs();
    store_.WriteOperation(row_);
    transaction.Commit();
}

Operation::~Operation() {
    if (row_.state == Row::State::Running) {
        FailQuietly("The operation ended without a result: " + row_.text);
    }
}

void Operation::Progress(std::uint64_t done, std::uint64_t total, const std::string& text) {
    row_.bytes = done;
    row_.total = total;
    const auto now = std::chrono::steady_clock::now();
    if (now < nextWrite_ && done < total) {
        return;
    }
    nextWrite_ = now + betweenWrites;
    if (watcher_) {
        watcher_(done, total);
    }
    const auto draft = state_.ProgressFile().string() + ".new";
    std::ofstream(draft, std::ios::trunc)
        << row_.number << ' ' << done << ' ' << total << ' ' << Text(text) << '\n';
    std::error_code ignored; // progress that cannot be shown does not stop the work
    std::filesystem::rename(draft, state_.ProgressFile(), ignored);
}

bool Operation::IsCancelRequested() const {
    std::ifstream in(state_.CancelFile());
    std::string line;
    return std::getline(in, line) && !in.eof() && line == std::to_string(row_.number);
}

void Operation::End(Row::State state, const std::string& text) {
    Row end = row_;
    end.state = state;
    end.text = text;
    store_.WriteOperation(end);
    row_ = end;
}

void Operation::Succeed(const std::string& text) {
    End(Row::State::Done, text);
}

void Operation::Fail(const std::string& text) {
    End(Row::State::Failed, text);
}

void Operation::Withdraw() {
    before_.number = row_.number;
    store_.WriteOperation(before_);
    row_ = before_;
}

void Operation::FailQuietly(const std::string& text) noexcept {
    try {
        Fail(text);
    } catch (const std::exception&) {
        return; // it reads as interrupted
    }
}

} // namespace patchkeeper
