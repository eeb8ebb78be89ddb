#include "HistoryTest.hpp"

#include <functional>

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

// Runs the actions side by side, each the given number of times.
void RunTogether(const std::vector<std::function<void()>>& actions, int times) {
    std::vector<std::thread> threads;
    for (const auto& action : actions) {
        threads.emplace_back([&action, times] {
            for (int i = 0; i < times; ++i) {
                action();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

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
            ASSERT_EQ(Value(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(HISTORY).size(), SIZE + 0U); };
    const auto get = [&] { ASSERT_EQ(Value(Get("7"), "Name"), "update7"); };
    const auto remove = [&] { ASSERT_EQ(Invoke("7", "Remove"), CIMValue(true)); };
    RunTogether({enumerate, enumerate, names, get, get, remove}, 10);
}

TEST_F(HistoryOverlap, AnEnumerationKeepsItsRecordsWhileAnotherReplacesTheList) {
    // In the middle of the first enumeration a second one replaces the list by an empty one.
    class Interrupted : public CIMInstanceResultHandlerIFC {
    public:
        explicit Interrupted(std::function<void()> interruption)
            : interruption_(std::move(interruption)) {}
        std::size_t handled = 0;

    private:
        void doHandle(const CIMInstance&) override {
            if (handled++ == 3) {
                interruption_();
            }
        }
        std::function<void()> interruption_;
    } result([&] {
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
    EXPECT_EQ(Value(Get("7"), "Name"), "update7");
    tool.Release("--hist");
    slow.join();
    EXPECT_EQ(Value(Get("0"), "Name"), "late");
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
    EXPECT_EQ(Value(Get("0"), "Name"), "vim");
    EXPECT_EQ(tool.Calls().size(), 2U);
}
