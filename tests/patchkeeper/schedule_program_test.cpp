// Updates that are scheduled, moved, dropped, and applied when they are due.

#include <ctime>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/OnTarget.hpp"
#include "patchkeeper/Running.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::Result;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Scheduling : public patchkeeper_test::OnTarget {
protected:
    static constexpr const char* day = " 'Wed May 18 00:00:00 2033'";
    static constexpr const char* clock = " 'Thu Jan  1 03:33:20 1970'";

    // In UTC, so that the moments in the lists are those of the texts.
    Result InUtc(const std::string& arguments) const {
        return InShell("TZ=UTC patchkeeper " + arguments);
    }
    void Schedule(const std::string& update) const {
        const Result result = InUtc("--sched " + update + day + clock);
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        EXPECT_EQ(result.output + result.errors, "");
    }
    void MakeDue() const { Sql("UPDATE schedules SET apply_at = 1000000000"); }
    void ExpectRefused(const std::string& arguments, int code, const std::string& sentence) const {
        const Result result = InUtc(arguments);
        EXPECT_EQ(result.exitCode, code) << arguments;
        EXPECT_EQ(result.errors, "patchkeeper: " + sentence + ".\n");
    }
};

TEST_F(Scheduling, DayOfTheFirstAndTimeOfTheSecondText) {
    Take();
    Schedule("demo 1.0");
    EXPECT_THAT(Output("--sched"), HasSubstr("\tWed May 18 03:33:20 UTC 2033\t-\t4\tScheduled\n"));
    EXPECT_THAT(Output("--cache"), EndsWith("\tSchedule\n"));
    EXPECT_EQ(
        InUtc("--msched demo 1.0 'Thu May 19 03:33:20 2033' 'Wed May 18 00:00:01 2033'").exitCode,
        0);
    EXPECT_THAT(Output("--sched"), HasSubstr("\tThu May 19 00:00:01 UTC 2033\t"));
}

TEST_F(Scheduling, TextsAreLocalTime) {
    Take();
    const Result result =
        InShell("TZ=Asia/Tokyo patchkeeper --sched demo 1.0" + std::string(day) + clock);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_THAT(Output("--sched"), HasSubstr("\tTue May 17 18:33:20 UTC 2033\t"));
}

TEST_F(Scheduling, WithoutADateTheScheduleIsDropped) {
    Take();
    Schedule("demo 1.0");
    EXPECT_EQ(Output("--msched demo 1.0"), "");
    EXPECT_EQ(Output("--sched"), "");
    EXPECT_THAT(Output("--cache"), EndsWith("\tAvailable\n"));
}

TEST_F(Scheduling, PastAndUnreadableTextsAreRefused) {
    Take();
    const std::string form = "' is not a date and time of the form Fri Feb 13 23:59:00 2026";
    ExpectRefused("--sched demo 1.0 'Thu Jan  2 03:04:05 2025' 'Thu Jan  2 03:04:05 2025'", 17,
                  "the day of 'Thu Jan  2 03:04:05 2025' at the time of 'Thu Jan  2 03:04:05 2025' "
                  "is over");
    ExpectRefused("--sched demo 1.0 tomorrow" + std::string(clock), 17, "'tomorrow" + form);
    ExpectRefused("--sched demo 1.0" + std::string(day) + " noon", 17, "'noon" + form);
    ExpectRefused("--sched demo 1.0 '' ''", 17, "'" + form);
    EXPECT_EQ(Output("--sched"), "");
    Schedule("demo 1.0");
    ExpectRefused("--msched demo 1.0 tomorrow" + std::string(clock), 18, "'tomorrow" + form);
    EXPECT_EQ(InUtc("--msched demo 1.0 'Thu Jan  2 03:04:05 2025'" + std::string(clock)).exitCode,
              18);
    EXPECT_THAT(Output("--sched"), HasSubstr("\tWed May 18 03:33:20 UTC 2033\t"));
}

TEST_F(Scheduling, WhatCannotBeAppliedIsNotScheduled) {
    Take();
    Take({.version = "0.9"});
    Take({.name = "bad"});
    Sql("UPDATE bundles SET faults = 'torn' WHERE name = 'bad'");
    const std::string when = std::string(day) + clock;
    ExpectRefused("--sched none 1.0" + when, 17, "none 1.0 is not held on this machine");
    ExpectRefused("--sched bad 1.0" + when, 17, "bad 1.0 cannot be applied: it is Invalid");
    Schedule("demo 1.0");
    ExpectRefused("--sched demo 1.0" + when, 17, "demo 1.0 is scheduled already");
    Output("--apply demo 1.0");
    ExpectRefused("--sched demo 1.0" + when, 17, "demo 1.0 cannot be applied: it is Applied");
    ExpectRefused("--sched demo 0.9" + when, 17, "demo 0.9 cannot be applied: it is Obsolete");
    ExpectRefused("--msched demo 1.0" + when, 18, "demo 1.0 is not scheduled");
    ExpectRefused("--msched demo 1.0", 18, "demo 1.0 is not scheduled");
    ExpectRefused("--msched none 1.0", 18, "none 1.0 is not scheduled");
}

TEST_F(Scheduling, IsPossibleWhileAnApplyRuns) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(400'000)}}});
    Take({.name = "other"});
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 20\napply_rate = 20K\n");
    patchkeeper_test::Running apply(Root(), {"--apply", "demo", "1.0"});
    while (Output("--apply").empty()) {
        ASSERT_TRUE(apply.IsRunning());
    }
    Schedule("other 1.0");
    EXPECT_EQ(Output("--msched other 1.0"), "");
    EXPECT_TRUE(apply.IsRunning());
}

TEST_F(Scheduling, NothingDueIsNothingDone) {
    EXPECT_EQ(Output("--run-due"), "");
    EXPECT_FALSE(fs::exists(Root() / "state.db"));
    Take();
    Schedule("demo 1.0");
    const std::string status = Output("--status");
    EXPECT_EQ(Output("--run-due"), "");
    EXPECT_EQ(Output("--status"), status);
    EXPECT_EQ(Output("--hist"), "");
}

TEST_F(Scheduling, DueUpdatesAreAppliedAndTheirSchedulesGo) {
    Take({.files = {{"files/one", "1"}, {"components/docs/docs", "2"}}});
    Take({.name = "other", .files = {{"files/two", "2"}}});
    Take({.name = "later", .files = {{"files/three", "3"}}});
    Schedule("demo 1.0");
    Schedule("other 1.0");
    MakeDue();
    Schedule("later 1.0");
    const Result result = Run("--run-due");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "patchkeeper: note: demo 1.0 has been applied.\n"
                             "patchkeeper: note: other 1.0 has been applied.\n");
    EXPECT_EQ(TextOf("one") + TextOf("two"), "12");
    EXPECT_FALSE(fs::exists(Target() / "docs")); // nobody has chosen it
    EXPECT_THAT(Output("--sched"), StartsWith("later\t1.0\t"));
    EXPECT_EQ(Output("--run-due"), "");
}

TEST_F(Scheduling, FailureIsRecordedOnceAndBlocksNobody) {
    fs::create_directories(Target() / "one");
    Take({.files = {{"files/one", "1"}}});
    Take({.name = "other", .files = {{"files/two", "2"}}});
    Schedule("demo 1.0");
    Schedule("other 1.0");
    MakeDue();
    const std::string reason = (Target() / "one").string() + " is a directory and is not replaced";
    const Result result = Run("--run-due");
    EXPECT_EQ(result.exitCode, 15);
    EXPECT_THAT(result.errors, EndsWith("patchkeeper: 1 of 2 due updates could not be applied: " +
                                        reason + ".\n"));
    EXPECT_EQ(TextOf("two"), "2");
    EXPECT_THAT(Output("--sched"), StartsWith("demo\t1.0\t"));
    EXPECT_THAT(Output("--sched"), EndsWith("\tFailed: " + reason + "\n"));
    EXPECT_EQ(Output("--run-due"), ""); // it is not tried again …
    fs::remove(Target() / "one");
    EXPECT_EQ(InUtc("--msched demo 1.0" + std::string(day) + clock).exitCode, 0);
    EXPECT_THAT(Output("--sched"), EndsWith("\tScheduled\n"));
    MakeDue();
    EXPECT_EQ(Run("--run-due").exitCode, 0); // … before somebody has looked at it
    EXPECT_EQ(TextOf("one"), "1");
}

TEST_F(Scheduling, BusyStateLeavesWhatIsDueForTheNextTime) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(400'000)}}});
    Take({.name = "other"});
    Schedule("other 1.0");
    MakeDue();
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 1\napply_rate = 20K\n");
    patchkeeper_test::Running apply(Root(), {"--apply", "demo", "1.0"});
    while (Output("--apply").empty()) {
        ASSERT_TRUE(apply.IsRunning());
    }
    ExpectFailure("--run-due", 15, "another operation is running, and has been for 1000 ms");
    EXPECT_THAT(Output("--sched"), EndsWith("\tScheduled\n"));
}

TEST_F(Scheduling, DueUpdateThatDiedIsAppliedTheNextTime) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(400'000)}}});
    Schedule("demo 1.0");
    MakeDue();
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\napply_rate = 20K\n");
    patchkeeper_test::Running due(Root(), {"--run-due"});
    while (Output("--apply").empty()) {
        ASSERT_TRUE(due.IsRunning());
    }
    due.Kill();
    due.Wait();
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\n");
    const Result next = Run("--run-due");
    EXPECT_EQ(next.exitCode, 0);
    EXPECT_THAT(next.errors, HasSubstr("an earlier operation was interrupted"));
    EXPECT_EQ(TextOf("data").size(), 400'000U);
}

TEST_F(Scheduling, OfTenRunsAtOnceOneAppliesWhatIsDue) {
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nlock_timeout = 100\n");
    Take();
    Schedule("demo 1.0");
    MakeDue();
    const Result result = InShell(
        "for i in 0 1 2 3 4 5 6 7 8 9; do { patchkeeper --run-due; echo $?; } & done; wait");
    EXPECT_EQ(result.output, "0\n0\n0\n0\n0\n0\n0\n0\n0\n0\n");
    EXPECT_EQ(result.errors, "patchkeeper: note: demo 1.0 has been applied.\n");
    EXPECT_THAT(Output("--status"), EndsWith(": demo 1.0 has been applied\n"));
}

} // namespace
