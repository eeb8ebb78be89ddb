// Updates that are applied: what is on disk afterwards, what is listed, and what is refused.

#include <chrono>
#include <filesystem>
#include <set>
#include <string>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <gmock/gmock.h>

#include "patchkeeper/OnTarget.hpp"
#include "patchkeeper/Running.hpp"
#include "patchkeeper/bundle/Bundle.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::Result;
using patchkeeper_test::Running;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Apply : public patchkeeper_test::OnTarget {
protected:
    fs::path HeldFile() const { return fs::directory_iterator(Root() / "bundles")->path(); }
};

TEST_F(Apply, FilesAndLinksStandBelowTheTarget) {
    Put("etc/demo.conf", "old\n");
    fs::permissions(Target() / "etc/demo.conf", fs::perms(0600));
    Put("etc/other", "stays\n");
    Take({.files = {{"files/etc/demo.conf", "new\n"}, {"files/usr/lib/demo/data", "data\n"}},
          .links = {{"files/usr/lib/current", "demo"}}});
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_EQ(Files(), (patchkeeper_test::Tree{{"etc", "40755 "},
                                               {"etc/demo.conf", "100644 new\n"},
                                               {"etc/other", "100644 stays\n"},
                                               {"usr", "40755 "},
                                               {"usr/lib", "40755 "},
                                               {"usr/lib/current", "120777 demo"},
                                               {"usr/lib/demo", "40755 "},
                                               {"usr/lib/demo/data", "100644 data\n"}}));
    ExpectNoLeftovers();
}

TEST_F(Apply, ModesDoNotDependOnTheUmask) {
    Take({.files = {{"files/a/b", "x"}}});
    EXPECT_EQ(InShell("umask 0077; patchkeeper --apply demo 1.0").exitCode, 0);
    EXPECT_EQ(Files().at("a"), "40755 ");
    EXPECT_EQ(Files().at("a/b"), "100644 x");
}

TEST_F(Apply, OptionalComponentsComeWhenTheyAreAskedFor) {
    Take({.files = {
              {"files/base", "1"}, {"components/docs/docs", "2"}, {"components/src/src", "3"}}});
    Take({.version = "2.0", .files = {{"files/base", "1"}, {"components/docs/docs", "2"}}});
    EXPECT_EQ(Output("--apply demo 1.0 src src"), "");
    EXPECT_TRUE(fs::exists(Target() / "base"));
    EXPECT_TRUE(fs::exists(Target() / "src"));
    EXPECT_FALSE(fs::exists(Target() / "docs"));
    ExpectNoChange("--apply demo 2.0 docs more", 15, "demo 2.0 has no component 'more'");
}

TEST_F(Apply, ListsTellOfIt) {
    Take();
    Take({.version = "0.9"});
    const std::string packages = Output("");
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t4\t-\tApplied\n"
                                 "demo\t0.9\tA demo\t4\t-\tObsolete\n");
    EXPECT_THAT(Output("--hist"), StartsWith("demo\t1.0\tA demo\t-\t"));
    EXPECT_THAT(Output("--hist"), EndsWith("\tRemovable\n"));
    EXPECT_THAT(Output(""), StartsWith(packages + "demo\t1.0\tOther\t"));
    EXPECT_EQ(Output("--apply"), "");
    EXPECT_EQ(Output("--status"), "2\t100 %, 12 of 12 bytes: demo 1.0 has been applied\n");
}

TEST_F(Apply, CartridgeOfABundleIsInTheInventory) {
    Take({.name = "znxliteEMcartridge", .version = "7.1"});
    EXPECT_EQ(Output("--apply znxliteEMcartridge 7.1"), "");
    EXPECT_THAT(Output(""), HasSubstr("\nznxliteEMcartridge\t7.1\tOther\t"));
}

TEST_F(Apply, NeededRebootIsSaid) {
    Take({.rebootNeeded = true});
    const Result result = Run("--apply demo 1.0");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "patchkeeper: note: demo 1.0 has been applied; a reboot is needed.\n");
    EXPECT_THAT(Output("--status"), EndsWith(": demo 1.0 has been applied; a reboot is needed\n"));
}

TEST_F(Apply, MarkIsTakenUp) {
    Take();
    Output("--setinprogress");
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_THAT(Output("--status"), StartsWith("2\t"));
    EXPECT_EQ(Output("--setinprogress"), "");
}

TEST_F(Apply, PersonSeesABarAndASentence) {
    Take();
    const Result seen =
        InShell("script -qec '" PATCHKEEPER_PROGRAM " --apply demo 1.0' /dev/null </dev/null");
    EXPECT_THAT(seen.output, HasSubstr("########################################] 100 %"));
    EXPECT_THAT(seen.output, EndsWith("\rdemo 1.0 has been applied.\r\n"));
}

TEST_F(Apply, ScheduleOfAnAppliedUpdateIsGone) {
    Take();
    Sql("INSERT INTO schedules (bundle, apply_at) SELECT id, 2000000000 FROM bundles");
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_EQ(Output("--sched"), "");
}

TEST_F(Apply, WhatCannotBeAppliedIsRefused) {
    Take();
    Take({.version = "0.9"});
    ExpectNoChange("--apply demo 3.0", 15, "demo 3.0 is not held on this machine");
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    ExpectNoChange("--apply demo 1.0", 15, "demo 1.0 is applied already");
    ExpectNoChange("--apply demo 0.9", 15, "a later version of demo than 0.9 is applied");
    EXPECT_EQ(Output("--status"), "-1\ta later version of demo than 0.9 is applied\n");
}

TEST_F(Apply, BundleThatIsNotValidIsNeverUnpacked) {
    Take();
    Take({.version = "2.0"});
    Sql("UPDATE bundles SET faults = 'it is torn' WHERE version = '1.0'");
    ExpectNoChange("--apply demo 1.0", 15, "demo 1.0 is not valid: it is torn");
    directory_.Write("root/patchkeeper.conf", "");
    const Result result = Run("--apply demo 2.0");
    EXPECT_EQ(result.exitCode, 15);
    EXPECT_THAT(result.errors, EndsWith("has a fault: it is not signed.\n"));
    EXPECT_FALSE(fs::exists(Target()));
    ExpectNoLeftovers();
}

TEST_F(Apply, BundleIsCheckedAgain) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(3000)}}});
    std::string bytes = patchkeeper_test::Contents(HeldFile());
    bytes[2000] = static_cast<char>(bytes[2000] ^ 1);
    std::ofstream(HeldFile(), std::ios::binary) << bytes;
    const Result result = Run("--apply demo 1.0");
    EXPECT_EQ(result.exitCode, 15);
    EXPECT_THAT(result.errors, HasSubstr("has a fault: "));
    EXPECT_FALSE(fs::exists(Target()));
    ExpectNoLeftovers();
}

TEST_F(Apply, OtherBundleInItsPlaceIsRefused) {
    Take();
    const fs::path held = HeldFile();
    patchkeeper_test::MakeUpdate(held, {.name = "other"});
    ExpectNoChange("--apply demo 1.0", 15, held.string() + " is no longer the bundle that it was");
}

TEST_F(Apply, MissingBundleFileIsASentence) {
    Take();
    fs::remove(HeldFile());
    ExpectNoChange("--apply demo 1.0", 15,
                   "the bundle of demo 1.0 is gone from " + (Root() / "bundles").string());
}

TEST_F(Apply, SizeLimitHoldsForWhatIsUnpackedToo) {
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nsize_limit = 100K\n");
    patchkeeper_test::MakeUpdate(At("flat.tar.gz"),
                                 {.files = {{"files/zeros", std::string(200'000, '0')}}});
    ASSERT_LT(fs::file_size(At("flat.tar.gz")), 100U << 10U);
    const Result result = Run("--hd " + At("flat.tar.gz").string());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.errors, HasSubstr("has been taken in but is not valid: "));
    EXPECT_THAT(Output("--cache"), EndsWith("\tInvalid\n"));
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\n");
    Sql("UPDATE bundles SET faults = ''");
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nsize_limit = 100K\n");
    EXPECT_EQ(Run("--apply demo 1.0").exitCode, 15);
    EXPECT_FALSE(fs::exists(Target()));
}

TEST_F(Apply, LinkOutOfTheTargetIsNotFollowed) {
    fs::create_directories(At("outside"));
    fs::create_directories(Target());
    fs::create_symlink(At("outside"), Target() / "etc");
    Take();
    ExpectNoChange("--apply demo 1.0", 15,
                   (Target() / "etc").string() +
                       " is a symbolic link, and none is followed below the target");
    EXPECT_TRUE(fs::is_empty(At("outside")));
}

TEST_F(Apply, LinkInTheLastPlaceIsReplacedAndNotFollowed) {
    directory_.Write("outside", "theirs\n");
    fs::create_directories(Target() / "etc");
    fs::create_symlink(At("outside"), Target() / "etc/demo.conf");
    Take();
    EXPECT_EQ(Output("--apply demo 1.0"), "");
    EXPECT_EQ(Files().at("etc/demo.conf"), "100644 new\n");
    EXPECT_EQ(patchkeeper_test::Contents(At("outside")), "theirs\n");
}

TEST_F(Apply, DirectoryOrOddFileInTheWayIsRefusedBeforeAnythingChanges) {
    Take({.files = {{"files/a", "first"}, {"files/etc/demo.conf", "new\n"}}});
    fs::create_directories(Target() / "etc/demo.conf");
    ExpectNoChange("--apply demo 1.0", 15,
                   (Target() / "etc/demo.conf").string() + " is a directory and is not replaced");
    fs::remove(Target() / "etc/demo.conf");
    ASSERT_EQ(mkfifo((Target() / "etc/demo.conf").c_str(), 0600), 0);
    ExpectNoChange("--apply demo 1.0", 15,
                   (Target() / "etc/demo.conf").string() +
                       " is neither a file nor a symbolic link and is not replaced");
    fs::remove_all(Target() / "etc");
    Put("etc", "a file where a directory has to be");
    ExpectNoChange("--apply demo 1.0", 15,
                   (Target() / "etc").string() + " cannot be entered: Not a directory");
}

TEST_F(Apply, TargetThatIsNoDirectoryIsASentence) {
    directory_.Write("file", "");
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\ntarget = " + At("file").string() + "\n");
    Take();
    ExpectNoChange("--apply demo 1.0", 15,
                   At("file").string() + " cannot be used as the target: Not a directory");
}

TEST_F(Apply, OwnFilesOfTheProgramAreNotReplaced) {
    directory_.Write("root/patchkeeper.conf",
                     "allow_unsigned = true\ntarget = " + directory_.Path().string() + "\n");
    Take({.files = {{"files/root/state.db", "gone"}}});
    ExpectFailure("--apply demo 1.0", 15,
                  "root/state.db is a place that this program keeps for itself");
    Take({.name = "root", .files = {{"files/root", "gone"}}});
    ExpectFailure("--apply root 1.0", 15, "root is a place that this program keeps for itself");
    Take({.name = "draft", .files = {{"files/x/.patchkeeper-0", ""}}});
    ExpectFailure("--apply draft 1.0", 15,
                  "x/.patchkeeper-0 is a place that this program keeps for itself");
    Take({.name = "way", .files = {{"files/.patchkeeper-1/x", ""}, {"files/a", ""}}});
    ExpectFailure("--apply way 1.0", 15,
                  ".patchkeeper-1/x is a place that this program keeps for itself");
    Take({.name = "beside", .files = {{"files/rootless", "fine"}}});
    EXPECT_EQ(Output("--apply beside 1.0"), "");
    ExpectNoLeftovers();
}

TEST_F(Apply, DirectoryNamedAsADraftIsInTheWayAndStays) {
    Take({.files = {{"files/data", "new"}}});
    fs::create_directories(Target() / ".patchkeeper-0");
    ExpectFailure("--apply demo 1.0", 15,
                  (Target() / "data").string() + " cannot be written: File exists");
    EXPECT_TRUE(fs::is_directory(Target() / ".patchkeeper-0"));
    fs::remove(Target() / ".patchkeeper-0");
    EXPECT_EQ(Output("--apply demo 1.0"), ""); // nothing is left to be undone
}

TEST_F(Apply, DirectoryOfTheProgramIsNoTarget) {
    Take();
    for (const char* target : {"bundles", "kept/1", "work/../work"}) {
        directory_.Write("root/patchkeeper.conf",
                         "allow_unsigned = true\ntarget = " + std::string(target) + "\n");
        ExpectFailure("--apply demo 1.0", 15,
                      "the target " + (Root() / target).string() +
                          " is a place that this program keeps for itself");
    }
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t4\t-\tAvailable\n");
}

TEST_F(Apply, ReadOnlyTargetIsASentenceAndNothingChanges) {
    Put("etc/demo.conf", "old\n");
    Take({.files = {{"files/etc/demo.conf", "new\n"}, {"files/a", "first"}}});
    fs::permissions(directory_.Path(), fs::perms(0755));
    if (geteuid() == 0) { // who may write everywhere; the program goes on as the owner
        ASSERT_EQ(InShell("chown -R 12345:12345 \"$PATCHKEEPER_ROOT\"").exitCode, 0);
    }
    fs::permissions(Target() / "etc", fs::perms(0555));
    ExpectNoChange("--apply demo 1.0", 15,
                   (Target() / "etc/demo.conf").string() + " cannot be written: Permission denied");
    fs::permissions(Target() / "etc", fs::perms(0755));
}

TEST_F(Apply, FullDiskUndoesItAndSaysSo) {
    Put("data", "old\n");
    Take({.files = {{"files/data", patchkeeper_test::Noise(3'000'000)}, {"files/a", "first"}}});
    const auto before = Files();
    // The unpacked data does not fit.
    const Result result = InShell("ulimit -f 2000; patchkeeper --apply demo 1.0");
    EXPECT_EQ(result.exitCode, 15);
    EXPECT_EQ(result.errors, "patchkeeper: " + (Root() / "work/data").string() +
                                 " cannot be written: File too large.\n");
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Output("--hist"), "");
    EXPECT_THAT(Output("--status"), StartsWith("-1\t"));
    ExpectNoLeftovers();
    EXPECT_EQ(Output("--apply demo 1.0"), "");
}

TEST_F(Apply, FullTargetUndoesItAndSaysSo) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(200'000)}, {"files/a", "new\n"}}});
    fs::create_directories(Target());
    const std::string target = Target().string();
    const Result
        result = // the target is a file system of its own, in which too little room is left
        InShell("bwrap --dev-bind / / --size 102400 --tmpfs " + target + " sh -c 'echo old >" +
                target + "/a; " PATCHKEEPER_PROGRAM " --apply demo 1.0; echo code $?; cd " +
                target + "; find . -type f; cat a'");
    EXPECT_EQ(result.errors,
              "patchkeeper: " + target + "/data cannot be written: No space left on device.\n");
    EXPECT_EQ(result.output, "code 15\n./a\nold\n");
    EXPECT_EQ(Output("--hist"), "");
    ExpectNoLeftovers();
}

TEST_F(Apply, ProgressIsSeenInManySteps) {
    Take({.files = {{"files/data", patchkeeper_test::Noise(400'000)}}});
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\napply_rate = 300K\n");
    const auto begin = std::chrono::steady_clock::now();
    Running apply(Root(), {"--apply", "demo", "1.0"});
    std::set<std::string> seen;
    std::string active;
    while (apply.IsRunning()) {
        const std::string status = Output("--status");
        if (status.starts_with("1\t")) {
            seen.insert(status);
            active += Output("--apply");
        }
    }
    EXPECT_EQ(apply.Wait(), 0);
    EXPECT_GE(seen.size(), 5U);
    EXPECT_THAT(seen, testing::Each(EndsWith(" bytes: applying demo 1.0\n")));
    EXPECT_THAT(active, StartsWith("demo\t1.0\tA demo\t"));
    EXPECT_THAT(active, EndsWith("\t-\t400000\tApplying\n"));
    // 1.2 million bytes at 300K a second.
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(3800));
    EXPECT_THAT(Output("--status"), StartsWith("2\t100 %, 1200000 of 1200000 bytes: "));
}

} // namespace
