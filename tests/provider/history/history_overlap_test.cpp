#include "HistoryTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::ToolAnswer;
using testing::ElementsAre;

class HistoryOverlap : public HistoryTest {
protected:
    HistoryOverlap() {
        std::string output;
        for (int i = 0; i < SIZE; ++i) {
            output += Line("update" + std::to_string(i), std::to_string(i));
        }
        tool.Plays("--setinprogress", ToolAnswer());
        tool.Plays("--rback", ToolAnswer());
        Lists(output);
    }

    static constexpr int SIZE = 40;
};

TEST_F(HistoryOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = calls.EnumInstances(HISTORY);
        ASSERT_EQ(instances.size(), SIZE + 0U);
        for (std::size_t i = 0; i < SIZE; ++i) {
            ASSERT_EQ(ValueOf(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(HISTORY).size(), SIZE + 0U); };
    const auto get = [&] { ASSERT_EQ(ValueOf(Get("7"), "Name"), "update7"); };
    const auto remove = [&] { ASSERT_EQ(Invoke("7", "Remove"), CIMValue(true)); };
    SideBySide({enumerate, enumerate, names, get, get, remove}, 10);
}

TEST_F(HistoryOverlap, AnEnumerationKeepsItsRecordsWhileAnotherReplacesTheList) {
    // In the middle of the first enumeration a second one replaces the list by an empty one.
    InterruptedResult result([&] {
        Prints("");
        EXPECT_TRUE(calls.EnumInstances(HISTORY).empty());
    });
    calls.EnumInstances(HISTORY, result);
    EXPECT_EQ(result.handled, SIZE + 0U);
}

TEST_F(HistoryOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--hist", ToolAnswer().Output(Line("late", "1")).Held());
    std::thread slow([&] { EXPECT_EQ(calls.EnumInstances(HISTORY).size(), 1U); });
    EXPECT_TRUE(tool.WaitForCalls(1));
    EXPECT_EQ(ValueOf(Get("7"), "Name"), "update7");
    tool.Release("--hist");
    slow.join();
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "late");
}

// The roll-back, which goes on after the call.
class HistoryRollBack : public HistoryTest {
protected:
    HistoryRollBack() {
        tool.Plays("--setinprogress", ToolAnswer());
        Lists(Line("vim", "9.0"));
    }
};

TEST_F(HistoryRollBack, TheCallReturnsWhileTheToolStillRuns) {
    tool.Plays("--rback", ToolAnswer().Held());
    EXPECT_EQ(Invoke("0", "Remove"), CIMValue(true));
    EXPECT_TRUE(BackgroundTasksRun());
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_TRUE(BackgroundTasksRun());
    tool.Release("--rback");
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --setinprogress",
                                                  "/qv/bin/patchkeeper --rback vim 9.0"));
    EXPECT_THAT(
        log->All(),
        ElementsAre("INFO: Executing: /qv/bin/patchkeeper --setinprogress",
                    "INFO: Spawing background thread for /qv/bin/patchkeeper --rback vim 9.0",
                    "INFO: Executing: /qv/bin/patchkeeper --rback vim 9.0"));
}

TEST_F(HistoryRollBack, ARecordReturnsTrueOfItself) {
    tool.Plays("--rback", ToolAnswer());
    HistoryUpdate record;
    record.Name = "a";
    record.Version = "b";
    EXPECT_TRUE(record.Remove());
    WaitForBackgroundTasks();
    EXPECT_EQ(tool.CommandLines().back(), "/qv/bin/patchkeeper --rback a b");
}

TEST_F(HistoryRollBack, NothingStartsWhereTheMarkFails) {
    tool.Plays("--setinprogress", ToolAnswer().ExitCode(1));
    const std::string text = "Failed: /qv/bin/patchkeeper --rback vim 9.0";
    EXPECT_EQ(CimErrorOf([&] { Invoke("0", "Remove"); }),
              Failed(text + "\n#SWU_Error_ExecutionFailed," + text + "#"));
    EXPECT_FALSE(BackgroundTasksRun());
    EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --setinprogress"));
}

TEST_F(HistoryRollBack, TheListStaysAsItIs) {
    tool.Plays("--rback", ToolAnswer());
    Invoke("0", "Remove");
    WaitForBackgroundTasks();
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "vim");
    EXPECT_EQ(tool.Calls().size(), 2U);
}
