// The lists, as programs and as persons see them.

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Inventory.hpp"
#include "patchkeeper/OnState.hpp"
#include "patchkeeper/Operation.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::MakeTestBundle;
using patchkeeper_test::Result;
using testing::EndsWith;
using testing::HasSubstr;

class Lists : public patchkeeper_test::OnState {};

TEST_F(Lists, NothingIsAnEmptyAnswerAndMakesNothing) {
    for (const char* list : {"--cache", "--files", "--hist", "--sched", "--apply"}) {
        EXPECT_EQ(Output(list), "") << list;
    }
    EXPECT_EQ(Output("--status"), "0\tNothing is running.\n");
    EXPECT_GT(Output("").size(), 0U);
    EXPECT_EQ(std::distance(fs::directory_iterator(Root()), fs::directory_iterator()), 1);
}

TEST_F(Lists, NothingIsAnEmptyAnswerOnceADatabaseIsThereToo) {
    Output("prune");
    for (const char* list : {"--cache", "--files", "--hist", "--sched", "--apply"}) {
        EXPECT_EQ(Output(list), "") << list;
    }
    EXPECT_EQ(Output("--status"), "0\tNothing is running.\n");
}

TEST_F(Lists, CacheHasSixFieldsInTheOrderOfTakingIn) {
    Take({.name = "zeta", .version = "2.0", .shortDescription = "The\\tlast\\nletter"});
    Take({.name = "alpha", .shortDescription = "", .text = "123"});
    EXPECT_EQ(Output("--cache"), "zeta\t2.0\tThe last letter\t6\t-\tAvailable\n"
                                 "alpha\t1.0\t-\t3\t-\tAvailable\n");
}

TEST_F(Lists, RebootIsSaidWithItsWord) {
    Take({});
    Sql("UPDATE bundles SET reboot_needed = 1");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\treboot\tAvailable\n");
}

TEST_F(Lists, EveryStateHasItsWord) {
    for (const char* version : {"1.0", "1.9", "1.10", "2.0~rc1", "2.0"}) {
        Take({.version = version});
    }
    Take({.name = "other"});
    Take({.name = "gone"});
    RecordApplied("demo", "1.10");
    Sql("INSERT INTO schedules (bundle, apply_at) SELECT id, 2000000000 FROM bundles WHERE version "
        "= '2.0'");
    Sql("UPDATE bundles SET faults = 'torn' WHERE name = 'other'");
    for (const auto& file : fs::directory_iterator(Root() / "bundles")) {
        if (file.path().filename().string().starts_with("gone@")) {
            fs::remove(file.path());
        }
    }
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tObsolete\n"
                                 "demo\t1.9\tA demo\t6\t-\tObsolete\n"
                                 "demo\t1.10\tA demo\t6\t-\tApplied\n"
                                 "demo\t2.0~rc1\tA demo\t6\t-\tAvailable\n"
                                 "demo\t2.0\tA demo\t6\t-\tSchedule\n"
                                 "other\t1.0\tA demo\t6\t-\tInvalid\n"
                                 "gone\t1.0\tA demo\t6\t-\tInvalid\n");
}

TEST_F(Lists, AppliedVersionIsObsoleteOnceALaterOneIsApplied) {
    Take({});
    RecordApplied("demo", "1.0");
    EXPECT_THAT(Output("--cache"), EndsWith("\tApplied\n"));
    RecordApplied("demo", "1.1");
    EXPECT_THAT(Output("--cache"), EndsWith("\tObsolete\n"));
}

TEST_F(Lists, NoRecordIsLongerThanAReaderTakes) {
    const std::string longText(4000, 'x');
    Take({.name = std::string(64, 'n'),
          .version = std::string(64, '1'),
          .shortDescription = longText,
          .more = R"("warnings": [")" + longText + R"("],)"});
    Sql("INSERT INTO schedules (bundle, apply_at) SELECT id, 2000000000 FROM bundles");
    Sql("UPDATE bundles SET location = '/" + longText + "'");
    RecordApplied("a", "1");
    Sql("UPDATE applied SET short_description = '" + longText + "', category = '" + longText + "'");
    const std::string update = std::string(64, 'n') + ' ' + std::string(64, '1');
    for (const std::string& list : {std::string("--cache"), std::string("--sched"),
                                    std::string("--hist"), "--warnings " + update}) {
        const std::string output = Output(list);
        EXPECT_EQ(output.size(), 1023U) << list;
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << list;
    }
    EXPECT_THAT(Output("--cache"), EndsWith("\t6\t-\tSchedule\n"));
    EXPECT_THAT(Output("--sched"), EndsWith("\tWed May 18 03:33:20 UTC 2033\t-\t6\tScheduled\n"));
}

TEST_F(Lists, DescriptionKeepsItsLines) {
    Take({.more = R"("long_description": "first\tline\n\nthird",)"});
    EXPECT_EQ(Output("-l demo-1.0"), "first line\n\nthird\n");
    Take({.name = "plain"});
    EXPECT_EQ(Output("-l plain-1.0"), "-\n");
}

TEST_F(Lists, DescriptionOfAnAppliedUpdateOutlivesItsBundle) {
    Take({});
    RecordApplied("demo", "1.0");
    Output("forget demo 1.0");
    EXPECT_EQ(Output("-l demo-1.0"), "long\n");
}

TEST_F(Lists, FilesOfOneUpdateAndOfAllEachOnce) {
    Take({.component = "docs"});
    Take({.version = "2.0"});
    Take({.name = "other", .path = "usr/bin/other"});
    EXPECT_EQ(Output("--files demo-1.0"), "etc/demo.conf\nusr/docs\n");
    EXPECT_EQ(Output("--files demo-2.0"), "etc/demo.conf\n");
    EXPECT_EQ(Output("--files"), "etc/demo.conf\nusr/docs\nusr/bin/other\n");
}

TEST_F(Lists, WarningsAreLinesAndFaultsStandBeforeThem) {
    Take({.more = R"("warnings": ["mind\nthe gap", "twice"],)"});
    EXPECT_EQ(Output("--warnings demo 1.0"), "mind the gap\ntwice\n");
    Sql("UPDATE bundles SET faults = 'one; two'");
    EXPECT_EQ(Output("--warnings demo 1.0"),
              "This bundle is not valid: one; two\nmind the gap\ntwice\n");
    Take({.name = "calm"});
    EXPECT_EQ(Output("--warnings calm 1.0"), "");
}

TEST_F(Lists, ComponentsAreCountedByTheExitCodeAndListed) {
    Take({.component = "docs"});
    Take({.name = "plain"});
    EXPECT_EQ(Output("--hascomponents demo 1.0"), "");
    EXPECT_EQ(Output("--components demo 1.0"), "docs\n");
    const Result none = Run("--hascomponents plain 1.0");
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.output + none.errors, "");
    EXPECT_EQ(Output("--components plain 1.0"), "");
}

TEST_F(Lists, UpdateThatIsNotHeldIsAFailure) {
    const auto expectNotHeld = [&] {
        for (const char* arguments :
             {"-l none-1.0", "--files none-1.0", "--warnings none 1.0", "--hascomponents none 1.0",
              "--components none 1.0", "forget none 1.0"}) {
            const Result result = Run(arguments);
            EXPECT_EQ(result.exitCode, 12) << arguments;
            EXPECT_EQ(result.output, "") << arguments;
            EXPECT_THAT(result.errors, EndsWith("1.0 is not held on this machine.\n"));
        }
    };
    expectNotHeld();
    Take({});
    expectNotHeld();
}

TEST_F(Lists, HistoryHasSixFields) {
    Output("prune");
    RecordApplied("demo", "1.0");
    RecordApplied("fixed", "2", false);
    EXPECT_EQ(Output("--hist"),
              "demo\t1.0\tshort\tFixes\tThu Jan  2 03:04:05 UTC 2025\tRemovable\n"
              "fixed\t2\tshort\tFixes\tThu Jan  2 03:04:05 UTC 2025\tPermanent\n");
}

TEST_F(Lists, InventoryEndsWithWhatBundlesInstalled) {
    Output("prune");
    const std::string before = Output("");
    RecordApplied("znxliteEMcartridge", "7.1");
    EXPECT_EQ(Output(""),
              before + "znxliteEMcartridge\t7.1\tFirmware\tThu Jan  2 03:04:05 UTC 2025\n");
}

TEST_F(Lists, SchedulesHaveNineFieldsTheEarliestFirst) {
    Take({});
    Take({.version = "2.0"});
    Sql("UPDATE bundles SET taken_in = 1735787045, location = '/mnt/demo.tar.gz'");
    Sql("INSERT INTO schedules (bundle, apply_at) SELECT id, 1750775866 - 100000 * (version = "
        "'2.0') FROM bundles");
    EXPECT_EQ(Output("--sched"),
              "demo\t2.0\tA demo\t/mnt/demo.tar.gz\tThu Jan  2 03:04:05 UTC 2025\t"
              "Mon Jun 23 10:51:06 UTC 2025\t-\t6\tScheduled\n"
              "demo\t1.0\tA demo\t/mnt/demo.tar.gz\tThu Jan  2 03:04:05 UTC 2025\t"
              "Tue Jun 24 14:37:46 UTC 2025\t-\t6\tScheduled\n");
}

TEST_F(Lists, UpdateThatIsBeingAppliedHasEightFields) {
    Take({});
    Sql("UPDATE bundles SET location = '/mnt/demo.tar.gz', reboot_needed = 1");
    const patchkeeper::State state(Root());
    patchkeeper::Store store = state.OpenOrMake(state.Settings());
    {
        std::ostringstream notes;
        patchkeeper::Operation operation(state, store, state.Settings(),
                                         {"apply", "applying demo 1.0", "demo", "1.0"}, notes);
        const std::string began = patchkeeper::DateText(store.ReadOperation().startedMs / 1000);
        EXPECT_EQ(Output("--apply"),
                  "demo\t1.0\tA demo\t/mnt/demo.tar.gz\t" + began + "\treboot\t6\tApplying\n");
        operation.Succeed("done");
    }
    EXPECT_EQ(Output("--apply"), "");
}

TEST_F(Lists, RunningFetchIsNoActiveUpdate) {
    Take({});
    const patchkeeper::State state(Root());
    patchkeeper::Store store = state.OpenOrMake(state.Settings());
    std::ostringstream notes;
    const patchkeeper::Operation operation(state, store, state.Settings(),
                                           {"fetch", "fetching", "demo", "1.0"}, notes);
    EXPECT_EQ(Output("--apply"), "");
}

TEST_F(Lists, AnswerThatCannotBeWrittenIsTheListsFailure) {
    Take({});
    const Result result = Run("--cache >/dev/full");
    EXPECT_EQ(result.exitCode, 12);
    EXPECT_EQ(result.errors, "patchkeeper: the answer cannot be written.\n");
}

TEST_F(Lists, TablesAreForTerminalsOnly) {
    Take({});
    const std::string record = "demo\t1.0\tA demo\t6\t-\tAvailable\n";
    EXPECT_EQ(Output("--cache --human"), record);
    EXPECT_EQ(Output("--human --cache"), record);
    for (const char* arguments : {"--cache --human", "--human --cache"}) {
        const Result seen =
            InShell("script -qec 'patchkeeper() { " PATCHKEEPER_PROGRAM " \"$@\"; }; patchkeeper " +
                    std::string(arguments) + "' /dev/null </dev/null");
        EXPECT_EQ(seen.exitCode, 0);
        EXPECT_EQ(seen.output, "Name  Version  Description  Size  Reboot  State\r\n"
                               "demo  1.0      A demo       6     -       Available\r\n")
            << arguments;
    }
    const Result plain =
        InShell("script -qec '" PATCHKEEPER_PROGRAM " --cache' /dev/null </dev/null");
    EXPECT_EQ(plain.output, "demo\t1.0\tA demo\t6\t-\tAvailable\r\n");
}

TEST_F(Lists, LongWorkShowsABarOnATerminalOnly) {
    const std::string file = MakeTestBundle(At("demo.tar.gz")).string();
    const Result seen =
        InShell("script -qec '" PATCHKEEPER_PROGRAM " --hd " + file + "' /dev/null </dev/null");
    EXPECT_THAT(seen.output, HasSubstr("########################################] 100 %"));
    EXPECT_THAT(seen.output, EndsWith("\rdemo 1.0 has been taken in.\r\n"));
    EXPECT_EQ(Output("--hd " + file), "");
}

} // namespace
