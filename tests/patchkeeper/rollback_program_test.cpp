// Applied updates that are taken back, and applies that are cancelled.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/OnTarget.hpp"
#include "patchkeeper/Running.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::Result;
using patchkeeper_test::Running;
using patchkeeper_test::Tree;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class RollBack : public patchkeeper_test::OnTarget {
protected:
    // An apply slow enough to be met while it runs: each piece of the bundle takes it longer than
    // others wait.
    void TakeSlow() const {
        Take({.files = {{"files/data", patchkeeper_test::Noise(400'000)}, {"files/new/a", "x"}}});
        directory_.Write("root/patchkeeper.conf",
                         "allow_unsigned = true\nlock_timeout = 8\napply_rate = 2K\n");
    }
    void WaitUntilApplying(Running& apply) const {
        while (Output("--apply").empty()) {
            ASSERT_TRUE(apply.IsRunning());
        }
    }
};

TEST_F(RollBack, EverythingIsAsItWas) {
    Put("etc/demo.conf", "old\n");
    fs::permissions(Target() / "etc/demo.conf", fs::perms(04640));
    fs::create_symlink("../nowhere", Target() / "etc/was-link");
    Put("etc/was-file", "a file\n");
    Put("etc/other", "stays\n");
    const Tree before = Files();
    Take({.files = {{"files/etc/demo.conf", "new\n"},
                    {"files/etc/was-link", "now a file\n"},
                    {"files/usr/lib/demo/data", "data\n"}},
          .links = {{"files/etc/was-file", "demo.conf"}}});
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_NE(Files(), before);
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Output("--hist"), "");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t20\t-\tAvailable\n");
    EXPECT_EQ(Output("--status"), "2\t100 %, 11 of 11 bytes: demo 1.0 has been rolled back\n");
    ExpectNoLeftovers();
    EXPECT_EQ(Output("--apply demo 1.0"), "");
}

TEST_F(RollBack, WorksWithoutTheBundleAndAfterTheTargetWasSetElsewhere) {
    Put("etc/demo.conf", "old\n");
    Take();
    Output("--apply demo 1.0");
    Output("forget demo 1.0");
    directory_.Write("root/patchkeeper.conf", "target = elsewhere\n");
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(TextOf("etc/demo.conf"), "old\n");
    EXPECT_FALSE(fs::exists(Root() / "elsewhere"));
}

TEST_F(RollBack, EarlierVersionIsTheAppliedOneAgain) {
    Take({.files = {{"files/one", "1"}}});
    Take({.version = "2.0", .files = {{"files/two", "2"}}});
    Output("--apply demo 1.0");
    Output("--apply demo 2.0");
    EXPECT_THAT(Output("--cache"), StartsWith("demo\t1.0\tA demo\t1\t-\tObsolete\n"));
    EXPECT_EQ(Output("--rback demo 2.0"), "");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t1\t-\tApplied\n"
                                 "demo\t2.0\tA demo\t1\t-\tAvailable\n");
    EXPECT_THAT(Output(""), HasSubstr("\ndemo\t1.0\tOther\t"));
}

TEST_F(RollBack, WhatIsNotAppliedOrNotRemovableIsRefused) {
    Take();
    ExpectNoChange("--rback demo 1.0", 16, "demo 1.0 is not applied");
    Take({.name = "fixed", .files = {{"files/fixed", "1"}}, .removable = false});
    Put("fixed", "0");
    Output("--apply fixed 1.0");
    EXPECT_THAT(Output("--hist"), EndsWith("\tPermanent\n"));
    EXPECT_TRUE(fs::is_empty(Root() / "kept")); // for what is never put back
    ExpectNoChange("--rback fixed 1.0", 16, "fixed 1.0 is not removable");
    EXPECT_EQ(Output("--status"), "-1\tfixed 1.0 is not removable\n");
}

TEST_F(RollBack, TargetIsTheSameHoweverItIsWritten) {
    Take({.files = {{"files/data", "one\n"}}});
    Take({.name = "other", .files = {{"files/data", "two\n"}}});
    Output("--apply demo 1.0");
    fs::create_directory_symlink(Target(), Root() / "way");
    for (const char* target : {"./target/", "way"}) {
        directory_.Write("root/patchkeeper.conf",
                         "allow_unsigned = true\ntarget = " + std::string(target) + "\n");
        Output("--apply other 1.0");
        ExpectNoChange("--rback demo 1.0", 16,
                       "data of demo 1.0 was changed later by other 1.0, which has to be rolled "
                       "back first");
        Output("--rback other 1.0");
    }
}

TEST_F(RollBack, FileOfALaterUpdateIsNamedAndKept) {
    Put("etc/demo.conf", "old\n");
    Take({.files = {{"files/etc/demo.conf", "one\n"}, {"files/a", "1"}}});
    Take({.name = "other", .files = {{"files/etc/demo.conf", "two\n"}, {"files/b", "2"}}});
    Take({.name = "apart", .files = {{"files/c", "3"}}});
    Output("--apply demo 1.0");
    Output("--apply other 1.0");
    Output("--apply apart 1.0");
    ExpectNoChange("--rback demo 1.0", 16,
                   "etc/demo.conf of demo 1.0 was changed later by other 1.0, which has to be "
                   "rolled back first");
    EXPECT_EQ(Output("--rback other 1.0"), "");
    EXPECT_EQ(TextOf("etc/demo.conf"), "one\n");
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(TextOf("etc/demo.conf"), "old\n");
    EXPECT_TRUE(fs::exists(Target() / "c"));
    ExpectNoLeftovers();
    EXPECT_EQ(Output("--rback apart 1.0"), ""); // nothing stood there, so nothing is copied
    EXPECT_EQ(Output("--status"), "2\t100 %, 0 of 0 bytes: apart 1.0 has been rolled back\n");
}

TEST_F(RollBack, DirectoriesGoWithTheLastUpdateThatNeedsThem) {
    Take({.files = {{"files/shared/dir/one", "1"}}});
    Take({.name = "other", .files = {{"files/shared/dir/two", "2"}}});
    Output("--apply demo 1.0");
    Output("--apply other 1.0");
    Output("--rback demo 1.0");
    EXPECT_EQ(TextOf("shared/dir/two"), "2");
    Put("shared/mine", "not from a bundle");
    Output("--rback other 1.0");
    EXPECT_FALSE(fs::exists(Target() / "shared/dir"));
    EXPECT_TRUE(fs::exists(Target() / "shared/mine"));
}

TEST_F(RollBack, FileThatSomebodyRemovedComesBack) {
    Put("etc/demo.conf", "old\n");
    Take();
    Output("--apply demo 1.0");
    fs::remove_all(Target());
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(TextOf("etc/demo.conf"), "old\n");
}

TEST_F(RollBack, LinkOnTheWayIsRefusedAndTheUpdateStaysApplied) {
    Put("etc/demo.conf", "old\n");
    Take();
    Output("--apply demo 1.0");
    fs::rename(Target() / "etc", At("outside"));
    fs::create_symlink(At("outside"), Target() / "etc");
    ExpectNoChange("--rback demo 1.0", 16,
                   (Target() / "etc").string() +
                       " is a symbolic link, and none is followed below the target");
    EXPECT_EQ(patchkeeper_test::Contents(At("outside/demo.conf")), "new\n");
}

TEST_F(RollBack, FullDiskLeavesTheUpdateApplied) {
    Put("data", patchkeeper_test::Noise(3'000'000));
    Take({.files = {{"files/data", "small\n"}, {"files/a", "first"}}});
    Output("--apply demo 1.0");
    const Tree before = Files();
    const Result result = InShell("ulimit -f 2000; patchkeeper --rback demo 1.0");
    EXPECT_EQ(result.exitCode, 16);
    EXPECT_EQ(result.errors, "patchkeeper: " + (Target() / "data").string() +
                                 " cannot be written: File too large.\n");
    EXPECT_EQ(Files(), before);
    EXPECT_THAT(Output("--hist"), StartsWith("demo\t1.0\t"));
    ExpectNoLeftovers();
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(TextOf("data").size(), 3'000'000U);
}

TEST_F(RollBack, RunningApplyIsCancelledAndUndone) {
    Put("data", "old\n");
    const Tree before = Files();
    TakeSlow();
    Running apply(Root(), {"--apply", "demo", "1.0"});
    WaitUntilApplying(apply);
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(apply.Wait(), 15);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Output("--status"), "-1\tdemo 1.0 was cancelled\n");
    EXPECT_EQ(Output("--hist") + Output("--apply"), "");
    ExpectNoLeftovers();
}

TEST_F(RollBack, CancelUndoesWhatStandsBelowTheTargetAlready) {
    Put("data", "old\n");
    const Tree before = Files();
    Take({.files = {{"files/data", patchkeeper_test::Noise(200'000)}, {"files/new/a", "x"}}});
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 8\napply_rate = 50K\n");
    Running apply(Root(), {"--apply", "demo", "1.0"});
    while (Files() == before) { // a directory for the first drafts
        ASSERT_TRUE(apply.IsRunning());
    }
    EXPECT_EQ(Output("--rback demo 1.0"), "");
    EXPECT_EQ(apply.Wait(), 15);
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Output("--hist"), "");
    ExpectNoLeftovers();
}

TEST_F(RollBack, CancelOfAnApplyThatDoesNotStopGivesUp) {
    TakeSlow();
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 1\napply_rate = 2K\n");
    Running apply(Root(), {"--apply", "demo", "1.0"});
    WaitUntilApplying(apply);
    apply.Signal(SIGSTOP);
    ExpectFailure("--rback demo 1.0", 16,
                  "the apply of demo 1.0 has been told to stop, and has not within 1 s");
    apply.Signal(SIGCONT);
    EXPECT_EQ(apply.Wait(), 15);
    EXPECT_EQ(Output("--status"), "-1\tdemo 1.0 was cancelled\n");
}

TEST_F(RollBack, CancelOfAnApplyThatIsKilledMeanwhileUndoesItItself) {
    Put("data", "old\n");
    const Tree before = Files();
    Take({.files = {{"files/data", patchkeeper_test::Noise(200'000)}, {"files/new/a", "x"}}});
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 60\napply_rate = 50K\n");
    Running apply(Root(), {"--apply", "demo", "1.0"});
    while (Files() == before) { // a directory for the first drafts
        ASSERT_TRUE(apply.IsRunning());
    }
    apply.Signal(SIGSTOP);
    Running cancel(Root(), {"--rback", "demo", "1.0"});
    while (!fs::exists(Root() / "cancel")) {
        ASSERT_TRUE(cancel.IsRunning());
    }
    apply.Kill();
    EXPECT_EQ(cancel.Wait(), 0);
    EXPECT_EQ(Files(), before);
    ExpectNoLeftovers();
}

TEST_F(RollBack, CancelOfAnotherUpdateWaitsForTheRunningOneAndGivesUp) {
    Take({.name = "other", .files = {{"files/other", "1"}}});
    Output("--apply other 1.0");
    TakeSlow();
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\nlock_timeout = 1\napply_rate = 2K\n");
    Running apply(Root(), {"--apply", "demo", "1.0"});
    WaitUntilApplying(apply);
    ExpectFailure("--rback other 1.0", 16,
                  "another operation is running, and has been for 1000 ms");
    EXPECT_THAT(Output("--apply"), StartsWith("demo\t1.0\t"));
}

TEST_F(RollBack, WhatCannotBeUndoneNowIsTriedAgainByEveryCommand) {
    Put("etc/demo.conf", "old\n");
    const Tree before = Files();
    Take();
    Output("--apply demo 1.0");
    Sql("UPDATE applied SET state = 'applying'"); // as if it had died before its last step
    EXPECT_EQ(Output("--hist"), "");
    fs::rename(Target() / "etc", Target() / "moved");
    fs::create_symlink("moved", Target() / "etc");
    const std::string reason =
        "the interrupted apply of demo 1.0 cannot be undone: " + (Target() / "etc").string() +
        " is a symbolic link, and none is followed below the target";
    ExpectFailure("prune", 12, reason);
    ExpectFailure("--rback demo 1.0", 16, reason);
    ExpectFailure("--hd " + At("incoming.tar.gz").string(), 14, reason);
    fs::remove(Target() / "etc");
    fs::rename(Target() / "moved", Target() / "etc");
    const Result next = Run("--msched demo 1.0");
    EXPECT_EQ(next.exitCode, 18);
    EXPECT_EQ(next.errors, "patchkeeper: note: the interrupted apply of demo 1.0 has been undone.\n"
                           "patchkeeper: demo 1.0 is not scheduled.\n");
    EXPECT_EQ(Files(), before);
    ExpectNoLeftovers();
}

TEST_F(RollBack, WhatStopsHalfWayIsFinishedByTheNextCommand) {
    Put("data", patchkeeper_test::Noise(200'000));
    Put("etc/demo.conf", "old\n");
    const Tree before = Files();
    Take({.files = {{"files/data", "new\n"}, {"files/etc/demo.conf", "new\n"}}});
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\napply_rate = 100K\n");
    Running rollBack(Root(), {"--rback", "demo", "1.0"});
    while (Output("--status").find(": rolling back") == std::string::npos) {
        ASSERT_TRUE(rollBack.IsRunning());
    }
    // While the old content is being written beside its place, something comes into that place.
    fs::remove(Target() / "data");
    Put("data/in the way", "x");
    EXPECT_EQ(rollBack.Wait(), 16);
    EXPECT_THAT(Output("--status"),
                EndsWith("; the next command that changes something finishes the roll-back\n"));
    fs::remove_all(Target() / "data");
    const Result next = Run("prune");
    EXPECT_EQ(next.exitCode, 0);
    EXPECT_THAT(next.errors, HasSubstr("the interrupted roll-back of demo 1.0 has been finished"));
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Output("--hist"), "");
}

TEST_F(RollBack, NextCommandUndoesAKilledApplyAndSaysSo) {
    Put("data", "old\n");
    const Tree before = Files();
    TakeSlow();
    Running apply(Root(), {"--apply", "demo", "1.0"});
    WaitUntilApplying(apply);
    apply.Kill();
    EXPECT_EQ(apply.Wait(), -1);
    EXPECT_EQ(Output("--status"), "-1\tThe operation was interrupted: applying demo 1.0\n");
    const Result next = Run("prune");
    EXPECT_EQ(next.exitCode, 0);
    EXPECT_THAT(next.errors,
                HasSubstr("patchkeeper: note: an earlier operation was interrupted.\n"));
    EXPECT_EQ(Files(), before);
    ExpectNoLeftovers();
}

} // namespace
