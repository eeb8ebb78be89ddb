#include "patchkeeper/Operation.hpp"

#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::MarkInProgress;
using patchkeeper::Operation;
using patchkeeper::OperationRow;
using patchkeeper::ReadStatus;
using patchkeeper::Settings;
using patchkeeper::State;
using patchkeeper::Status;
using patchkeeper::Store;
using patchkeeper::Transaction;
using patchkeeper_test::TemporaryDirectory;
using testing::HasSubstr;
using testing::StartsWith;

class Operations : public testing::Test {
protected:
    Operations() { settings_.lockTimeout = std::chrono::seconds(1); }

    void ExpectStatus(Status::Code code, const std::string& text) {
        const Status status = ReadStatus(state_, store_);
        EXPECT_EQ(status.code, code);
        EXPECT_EQ(status.text, text);
    }
    std::string FailureOfMark() {
        try {
            MarkInProgress(state_, store_);
        } catch (const patchkeeper::Failure& failure) {
            EXPECT_EQ(failure.Code(), patchkeeper::ExitCode::SoftwareUpdateFailed);
            return failure.what();
        }
        return "none";
    }
    // As if the mark had been set earlier.
    void MoveMark(std::chrono::milliseconds back) {
        OperationRow row = store_.ReadOperation();
        row.startedMs -= back.count();
        store_.WriteOperation(row);
    }
    // A process that begins an operation, leaves files behind and dies in the middle of it.
    void DieInTheMiddle() {
        const pid_t child = fork();
        if (child == 0) {
            Store store = state_.OpenOrMake(settings_);
            std::ostringstream notes;
            Operation operation(state_, store, settings_, subject_, notes);
            operation.Progress(5, 10, "half");
            std::filesystem::copy_file("/proc/self/status", state_.BundleDirectory() / "incoming");
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
    }

    TemporaryDirectory directory_;
    Settings settings_;
    State state_{directory_.Path()};
    Store store_ = state_.OpenOrMake(settings_);
    patchkeeper::OperationSubject subject_{"fetch", "fetching from /mnt", "", ""};
    std::ostringstream notes_;
};

TEST_F(Operations, NothingHasHappenedAtFirst) {
    ExpectStatus(Status::Nothing, "Nothing is running.");
}

TEST_F(Operations, MarkReadsAsRunning) {
    EXPECT_EQ(FailureOfMark(), "none");
    ExpectStatus(Status::Running, "0 %, 0 of 0 bytes: waiting for the command");
}

TEST_F(Operations, SecondMarkIsRefusedUntilTheFirstIsTooOld) {
    MarkInProgress(state_, store_);
    EXPECT_EQ(FailureOfMark(), "an operation has been announced and has not begun yet");
    MoveMark(std::chrono::milliseconds(29'000));
    EXPECT_NE(FailureOfMark(), "none");
    MoveMark(std::chrono::milliseconds(1'001));
    EXPECT_EQ(FailureOfMark(), "none");
}

TEST_F(Operations, MarkThatNoCommandTakesUpReadsAsFailed) {
    MarkInProgress(state_, store_);
    MoveMark(std::chrono::milliseconds(30'001));
    ExpectStatus(Status::Failed, "No command began within 30 seconds after it was announced.");
}

TEST_F(Operations, MarkFromBeforeTheClockWasSetBackReadsAsFailed) {
    MarkInProgress(state_, store_);
    MoveMark(std::chrono::milliseconds(-60'000));
    EXPECT_EQ(ReadStatus(state_, store_).code, Status::Failed);
    EXPECT_EQ(FailureOfMark(), "none");
}

TEST_F(Operations, MarkIsRefusedWhileAnOperationRuns) {
    Operation operation(state_, store_, settings_, subject_, notes_);
    EXPECT_EQ(FailureOfMark(), "an operation is running: fetching from /mnt");
    operation.Succeed("all is well");
    EXPECT_EQ(FailureOfMark(), "none");
}

TEST_F(Operations, CommandTakesUpTheMark) {
    MarkInProgress(state_, store_);
    Operation operation(state_, store_, settings_, subject_, notes_);
    ExpectStatus(Status::Running, "0 %, 0 of 0 bytes: fetching from /mnt");
    operation.Progress(0, 300, "fetching a.tar.gz");
    ExpectStatus(Status::Running, "0 %, 0 of 300 bytes: fetching a.tar.gz");
    operation.Progress(300, 300, "fetched");
    ExpectStatus(Status::Running, "100 %, 300 of 300 bytes: fetched");
    operation.Succeed("demo 1.0 has been taken in");
    ExpectStatus(Status::Done, "100 %, 300 of 300 bytes: demo 1.0 has been taken in");
    EXPECT_EQ(notes_.str(), "");
}

TEST_F(Operations, ProgressOfLongWorkIsSeenInManySteps) {
    Operation operation(state_, store_, settings_, subject_, notes_);
    std::set<std::string> seen;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (std::uint64_t done = 0; seen.size() < 6 && std::chrono::steady_clock::now() < deadline;
         ++done) {
        operation.Progress(done, 1'000'000'000, "copying");
        seen.insert(ReadStatus(state_, store_).text);
    }
    EXPECT_EQ(seen.size(), 6U);
}

TEST_F(Operations, ProgressOfAnEarlierOperationDoesNotCount) {
    {
        Operation operation(state_, store_, settings_, subject_, notes_);
        operation.Progress(7, 10, "old");
        operation.Succeed("done");
    }
    const Operation operation(state_, store_, settings_, subject_, notes_);
    ExpectStatus(Status::Running, "0 %, 0 of 0 bytes: fetching from /mnt");
}

TEST_F(Operations, FailureStaysReadableUntilTheNextOperation) {
    {
        Operation operation(state_, store_, settings_, subject_, notes_);
        operation.Fail("the disk\tis\nfull");
    }
    ExpectStatus(Status::Failed, "the disk is full");
    ExpectStatus(Status::Failed, "the disk is full");
    MarkInProgress(state_, store_);
    EXPECT_EQ(ReadStatus(state_, store_).code, Status::Running);
}

TEST_F(Operations, OperationThatIsLeftWithoutAResultHasFailed) {
    { const Operation operation(state_, store_, settings_, subject_, notes_); }
    ExpectStatus(Status::Failed, "The operation ended without a result: fetching from /mnt");
}

TEST_F(Operations, LongTextStaysOnALineThatReadersTake) {
    Operation operation(state_, store_, settings_, subject_, notes_);
    operation.Fail(std::string(5000, 'x'));
    EXPECT_EQ(ReadStatus(state_, store_).text.size(), 900U);
}

TEST_F(Operations, SecondOperationIsTurnedAwayAfterABoundedWait) {
    const Operation operation(state_, store_, settings_, subject_, notes_);
    Store other = state_.OpenOrMake(settings_);
    try {
        const Operation second(state_, other, settings_, {"fetch", "another", "", ""}, notes_);
        FAIL() << "both run";
    } catch (const patchkeeper::StateProblem& problem) {
        EXPECT_STREQ(problem.what(), "another operation is running, and has been for 1000 ms");
    }
    EXPECT_THAT(ReadStatus(state_, store_).text, HasSubstr("fetching from /mnt"));
}

TEST_F(Operations, KilledOperationReadsAsInterrupted) {
    DieInTheMiddle();
    ExpectStatus(Status::Failed, "The operation was interrupted: fetching from /mnt");
    EXPECT_EQ(FailureOfMark(), "none");
}

TEST_F(Operations, NextOperationClearsWhatAKilledOneLeftAndSaysSo) {
    DieInTheMiddle();
    EXPECT_TRUE(fs::exists(state_.BundleDirectory() / "incoming"));
    const Operation operation(state_, store_, settings_, subject_, notes_);
    EXPECT_TRUE(fs::is_empty(state_.BundleDirectory()));
    EXPECT_EQ(notes_.str(),
              "patchkeeper: note: an earlier operation was interrupted.\n"
              "patchkeeper: note: a leftover of an interrupted command was removed: " +
                  (state_.BundleDirectory() / "incoming").string() + ".\n");
}

TEST_F(Operations, WithdrawnOperationLeavesWhatWasReadable) {
    {
        Operation operation(state_, store_, settings_, subject_, notes_);
        operation.Fail("the disk is full");
    }
    {
        Operation operation(state_, store_, settings_, subject_, notes_);
        operation.Withdraw();
    }
    ExpectStatus(Status::Failed, "the disk is full");
}

TEST_F(Operations, CancelIsForTheOperationOfThatNumberOnly) {
    const Operation operation(state_, store_, settings_, subject_, notes_);
    EXPECT_FALSE(operation.IsCancelRequested());
    patchkeeper::RequestCancel(state_, operation.Number() - 1);
    EXPECT_FALSE(operation.IsCancelRequested());
    patchkeeper::RequestCancel(state_, operation.Number());
    EXPECT_TRUE(operation.IsCancelRequested());
}

TEST_F(Operations, RefusedCommandFailsTheMarkAndNothingElse) {
    patchkeeper::FailMark(state_, "not offered");
    ExpectStatus(Status::Nothing, "Nothing is running.");
    MarkInProgress(state_, store_);
    patchkeeper::FailMark(state_, "not offered");
    ExpectStatus(Status::Failed, "not offered");
    Operation operation(state_, store_, settings_, subject_, notes_);
    patchkeeper::FailMark(state_, "not offered");
    EXPECT_EQ(ReadStatus(state_, store_).code, Status::Running);
}

} // namespace
