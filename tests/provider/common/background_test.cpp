#include "provider/ProviderTest.hpp"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <pthread.h>

using OpenWBEM::String;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

const char* const COMMAND = "/qv/bin/patchkeeper --apply N V ";
const char* const MARK = "/qv/bin/patchkeeper --setinprogress";

std::set<int> Descriptors(const test_support::ToolReport& report) {
    std::set<int> numbers;
    for (const auto& [number, target] : report.descriptors) {
        numbers.insert(number);
    }
    return numbers;
}

// No thread can be made while this lives: its stack would be larger than the address space.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstacksize(&attributes, std::size_t{1} << 46);
        pthread_setattr_default_np(&attributes);
    }
    ~NoMoreThreads() { pthread_setattr_default_np(&before_); }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t before_;
};

} // namespace

class Background : public ToolTest {
protected:
    Background() { tool.Plays("--setinprogress", ToolAnswer()); }
};

// What ps and a debugger show of the task; the system keeps fifteen characters.
TEST_F(Background, TheTaskHasItsName) {
    tool.Plays("--apply", ToolAnswer().Held());
    SpawnBackgroundThread(COMMAND);
    ASSERT_TRUE(tool.WaitForCalls(2));
    std::vector<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string name;
        std::getline(file, name);
        names.push_back(name);
    }
    EXPECT_THAT(names, testing::Contains("BackgroundThrea"));
    tool.Release("--apply");
}

TEST_F(Background, ReturnsWhileTheToolStillRuns) {
    tool.Plays("--apply", ToolAnswer().Held());
    EXPECT_FALSE(BackgroundTasksRun());
    EXPECT_EQ(PrintedBy([] { SpawnBackgroundThread(COMMAND); }), "");
    ASSERT_TRUE(tool.WaitForCalls(2));
    EXPECT_TRUE(BackgroundTasksRun());
    tool.Release("--apply");
    WaitForBackgroundTasks();
    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--setinprogress"),
                                          ElementsAre("/qv/bin/patchkeeper", "--apply", "N", "V")));
    EXPECT_THAT(log->All(),
                ElementsAre(std::string("INFO: Executing: ") + MARK,
                            std::string("INFO: Spawing background thread for ") + COMMAND,
                            std::string("INFO: Executing: ") + COMMAND));
}

TEST_F(Background, SeveralTasksRunAtOnce) {
    tool.Plays("--apply", ToolAnswer().Held());
    SpawnBackgroundThread(COMMAND);
    SpawnBackgroundThread(COMMAND);
    ASSERT_TRUE(tool.WaitForCalls(4));
    tool.Release("--apply");
    WaitForBackgroundTasks();
}

TEST_F(Background, StartsNothingWhenTheMarkCannotBeSet) {
    tool.Plays("--setinprogress", ToolAnswer().ExitCode(11));
    const std::string message = std::string("Failed: ") + COMMAND;
    const std::string text = message + "\n#SWU_Error_ExecutionFailed," + message + "#";
    EXPECT_EQ(PrintedBy([&] {
                  EXPECT_EQ(CimErrorOf([] { SpawnBackgroundThread(COMMAND); }), Failed(text));
              }),
              message + "\n");
    EXPECT_FALSE(BackgroundTasksRun());
    EXPECT_THAT(tool.CommandLines(), ElementsAre(MARK));
    EXPECT_THAT(log->All(), ElementsAre(std::string("INFO: Executing: ") + MARK,
                                        "ERROR: " + message, "INFO: Exception: " + text));
}

TEST_F(Background, TellsWhenTheTaskCannotStart) {
    const std::string message = std::string("Unable to start Background Thread: ") + COMMAND;
    const std::string text = message + "\n#SWU_Error_ExecutionFailed," + message + "#";
    {
        const NoMoreThreads none;
        EXPECT_EQ(CimErrorOf([] { SpawnBackgroundThread(COMMAND); }), Failed(text));
    }
    EXPECT_FALSE(BackgroundTasksRun());
    EXPECT_THAT(tool.CommandLines(), ElementsAre(MARK));
    EXPECT_THAT(log->All(),
                ElementsAre(std::string("INFO: Executing: ") + MARK,
                            std::string("INFO: Spawing background thread for ") + COMMAND,
                            "ERROR: " + message, "INFO: " + message, "INFO: Exception: " + text));
}

TEST_F(Background, AFailureIsOnlyLogged) {
    tool.Plays("--apply", ToolAnswer().ExitCode(11));
    SpawnBackgroundThread(COMMAND);
    EXPECT_TRUE(log->WaitFor(std::string("INFO: Error during background ") + COMMAND +
                             ": SWU_Patchkeeper_Unknown"));
    WaitForBackgroundTasks();
    EXPECT_EQ(log->All().size(), 4U);
}

TEST_F(Background, ACommandOverTheLimitIsOnlyLogged) {
    const std::string command = "true " + std::string(200000, 'x');
    SpawnBackgroundThread(command.c_str());
    WaitForBackgroundTasks();
    ASSERT_EQ(log->All().size(), 4U);
    EXPECT_EQ(log->All()[3], ("INFO: Error during background " + command).substr(0, 6 + 1023));
}

TEST_F(Background, ASucceedingTaskLogsNothingAtItsEnd) {
    tool.Plays("--apply", ToolAnswer());
    SpawnBackgroundThread(COMMAND);
    WaitForBackgroundTasks();
    EXPECT_EQ(log->All().size(), 3U);
}

TEST_F(Background, AToolInheritsNothingOfOneThatRunsMeanwhile) {
    tool.Plays("--status", ToolAnswer().ReportsItself());
    String output;
    ASSERT_EQ(Execute("/qv/bin/patchkeeper --status", output), 0);
    const std::set<int> alone = Descriptors(tool.Report());
    tool.Plays("--cache", ToolAnswer().Held());
    std::thread captured([] {
        String unused;
        EXPECT_EQ(Execute("/qv/bin/patchkeeper --cache", unused), 0);
    });
    ASSERT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(Execute(String("/qv/bin/patchkeeper --status")), 0);
    EXPECT_EQ(Descriptors(tool.Report()), alone);
    tool.Release("--cache");
    captured.join();
}

class CommonOddities : public Background {};

TEST_F(CommonOddities, CM1_TheTraceLineSaysSpawing) {
    tool.Plays("--apply", ToolAnswer());
    SpawnBackgroundThread(COMMAND);
    EXPECT_TRUE(
        log->Contains("INFO: Spawing background thread for /qv/bin/patchkeeper --apply N V "));
}

TEST_F(CommonOddities, CM2_EveryFailureInTheBackgroundIsLoggedAsUnknown) {
    for (const int code : {1, 11, 23, 34, 255}) {
        log->Forget();
        tool.Plays("--apply", ToolAnswer().ExitCode(code));
        SpawnBackgroundThread("/qv/bin/patchkeeper --apply");
        WaitForBackgroundTasks();
        ASSERT_EQ(log->All().size(), 4U);
        EXPECT_EQ(log->All()[3], "INFO: Error during background /qv/bin/patchkeeper --apply: "
                                 "SWU_Patchkeeper_Unknown");
    }
}

TEST_F(CommonOddities, CM12_TheArgumentOfAFailedStartIsTheWholeSentence) {
    tool.Plays("--setinprogress", ToolAnswer().ExitCode(1));
    PrintedBy([&] {
        EXPECT_EQ(CimErrorOf([] { SpawnBackgroundThread("/qv/bin/patchkeeper --em "); }).message,
                  "general error (Failed: /qv/bin/patchkeeper --em \n"
                  "#SWU_Error_ExecutionFailed,Failed: /qv/bin/patchkeeper --em #)");
    });
}

TEST_F(CommonOddities, CM13_AFailedMarkIsPrintedAlwaysAndAFailedStartOnlyWithTheSwitch) {
    gProviderAgentDebug = false;
    EXPECT_EQ(PrintedBy([&] {
                  const NoMoreThreads none;
                  EXPECT_EQ(CimErrorOf([] { SpawnBackgroundThread(COMMAND); }).number, 1);
              }),
              "");
    tool.Plays("--setinprogress", ToolAnswer().ExitCode(1));
    EXPECT_EQ(
        PrintedBy([&] { EXPECT_EQ(CimErrorOf([] { SpawnBackgroundThread(COMMAND); }).number, 1); }),
        "Failed: /qv/bin/patchkeeper --apply N V \n");
}
