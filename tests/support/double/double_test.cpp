#include "support/ToolDouble.hpp"

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

namespace {

using std::chrono::milliseconds;
using test_support::ToolAnswer;
using test_support::ToolDouble;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int notFound = 127;
constexpr int notExecutable = 126;

struct Result {
    std::string output;
    int status = 0; // as wait gives it
};

// Runs a command line through the shell, as the library does.
Result Shell(const std::string& command) {
    Result result;
    std::FILE* pipe = popen(command.c_str(), "re");
    std::array<char, 65536> buffer{};
    std::size_t got = 0;
    while ((got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
        result.output.append(buffer.data(), got);
    }
    result.status = pclose(pipe);
    return result;
}

// Starts the tool without a shell between; only one process stands between its signal and the
// status.
int StatusOf(const char* option) {
    const pid_t child = fork();
    if (child == 0) {
        execl("/qv/bin/patchkeeper", "/qv/bin/patchkeeper", option, nullptr);
        _exit(1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(Double, PlaysBytesAndExitCodeOfTheOption) {
    ToolDouble tool;
    tool.Plays("--hist", ToolAnswer().Output("a\tb\n\xff").ErrorText("bad\n").ExitCode(13));
    tool.Plays("", ToolAnswer().Output("inventory\n"));

    const Result hist = Shell("/qv/bin/patchkeeper --hist 2>&1");
    EXPECT_EQ(hist.output, "a\tb\n\xff"
                           "bad\n");
    EXPECT_EQ(WEXITSTATUS(hist.status), 13);
    const Result inventory = Shell("/qv/bin/patchkeeper  2>&1");
    EXPECT_EQ(inventory.output, "inventory\n");
    EXPECT_EQ(inventory.status, 0);
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --hist 2>/dev/null").output, "a\tb\n\xff");
}

TEST(Double, RecordsTheTextThatTheShellWasGiven) {
    ToolDouble tool;
    tool.PlaysOtherwise(ToolAnswer());
    Shell("/qv/bin/patchkeeper --sched  2>&1");
    Shell("  /qv/bin/patchkeeper  -l 'a\\n\tb' \n");
    StatusOf("--hist");
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --sched  2>&1",
                                                  "  /qv/bin/patchkeeper  -l 'a\\n\tb' \n", ""));
    EXPECT_THAT(tool.CommandLines(),
                ElementsAre("/qv/bin/patchkeeper --sched", "/qv/bin/patchkeeper -l a\\n\tb",
                            "/qv/bin/patchkeeper --hist"));
}

TEST(Double, RecordsArgumentsExactly) {
    ToolDouble tool;
    tool.PlaysOtherwise(ToolAnswer());
    Shell("/qv/bin/patchkeeper --sched 'a  b' '' 'tab\tnew\nline\\n'");
    Shell("/qv/bin/patchkeeper ");
    Shell("/qv/bin/patchkeeper --errors 12");

    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--sched", "a  b", "",
                                                      "tab\tnew\nline\\n"),
                                          ElementsAre("/qv/bin/patchkeeper"),
                                          ElementsAre("/qv/bin/patchkeeper", "--errors", "12")));
    EXPECT_THAT(tool.CommandLines(),
                ElementsAre("/qv/bin/patchkeeper --sched a  b  tab\tnew\nline\\n",
                            "/qv/bin/patchkeeper", "/qv/bin/patchkeeper --errors 12"));
    tool.ForgetCalls();
    EXPECT_THAT(tool.Calls(), ElementsAre());
}

TEST(Double, RecordsCallsBesideEachOtherWhole) {
    ToolDouble tool;
    tool.PlaysOtherwise(ToolAnswer());
    Shell("for i in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do "
          "/qv/bin/patchkeeper --status $i & done; wait");
    ASSERT_EQ(tool.Calls().size(), 20U);
    for (const auto& call : tool.Calls()) {
        EXPECT_EQ(call.size(), 3U);
        EXPECT_EQ(call[1], "--status");
    }
}

TEST(Double, UnscriptedCallFailsLoudly) {
    ToolDouble tool;
    tool.Plays("--hist", ToolAnswer());
    const Result result = Shell("/qv/bin/patchkeeper --cache 2>&1");
    EXPECT_EQ(WEXITSTATUS(result.status), 99);
    EXPECT_EQ(result.output, "patchkeeper_double: no answer is scripted for 'cache'\n");
}

TEST(Double, CallWithoutScriptDirectoryFailsLoudly) {
    const Result result = Shell("/qv/bin/patchkeeper --cache 2>&1");
    EXPECT_EQ(WEXITSTATUS(result.status), 99);
    EXPECT_THAT(result.output, HasSubstr("PATCHKEEPER_DOUBLE names no script directory"));
}

TEST(Double, LaterAnswerReplacesTheEarlierOneWhole) {
    ToolDouble tool;
    tool.Plays("-l", ToolAnswer().Output("one\n").ExitCode(5));
    tool.Plays("-l", ToolAnswer().ErrorText("two\n"));
    const Result result = Shell("/qv/bin/patchkeeper -l x-1 2>&1");
    EXPECT_EQ(result.output, "two\n");
    EXPECT_EQ(result.status, 0);
}

TEST(Double, DiesByTheSignalAfterItsOutput) {
    ToolDouble tool;
    tool.Plays("--apply", ToolAnswer().Output("started\n").DiesBySignal(SIGKILL));
    tool.Plays("--rback", ToolAnswer().DiesBySignal(SIGSEGV));
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --apply").output, "started\n");

    const int killed = StatusOf("--apply");
    ASSERT_TRUE(WIFSIGNALED(killed));
    EXPECT_EQ(WTERMSIG(killed), SIGKILL);
    const int crashed = StatusOf("--rback");
    ASSERT_TRUE(WIFSIGNALED(crashed));
    EXPECT_EQ(WTERMSIG(crashed), SIGSEGV);
}

TEST(Double, DelayPassesBeforeTheAnswer) {
    ToolDouble tool;
    tool.Plays("--status", ToolAnswer().Delay(milliseconds(80)));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --status").status, 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(80));
}

TEST(Double, HeldCallIsRecordedAndWaitsForItsRelease) {
    ToolDouble tool;
    tool.Plays("--em", ToolAnswer().Output("done\n").Held());
    Result result;
    std::thread caller([&] { result = Shell("/qv/bin/patchkeeper --em"); });
    EXPECT_TRUE(tool.WaitForCalls(1));
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --hist 2>/dev/null").output, ""); // others pass
    tool.Release("--em");
    caller.join();
    EXPECT_EQ(result.output, "done\n");
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --em").output, "done\n"); // stays released
}

TEST(Double, WaitForCallsGivesUpAtItsLimit) {
    ToolDouble tool;
    tool.PlaysOtherwise(ToolAnswer());
    Shell("/qv/bin/patchkeeper");
    EXPECT_FALSE(tool.WaitForCalls(2, milliseconds(20)));
}

TEST(Double, ReportsItsDescriptorsAndSignals) {
    ToolDouble tool;
    tool.Plays("--cache", ToolAnswer().ReportsItself());
    EXPECT_THROW(tool.Report(), std::runtime_error);
    const int leaked = open("/dev/zero", O_RDONLY);
    signal(SIGUSR1, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
    EXPECT_EQ(StatusOf("--cache"), 0); // a shell would unblock what is blocked

    const auto report = tool.Report();
    EXPECT_EQ(report.descriptors.count(0), 1U);
    EXPECT_EQ(report.descriptors.at(leaked), "/dev/zero");
    EXPECT_TRUE(report.Ignores(SIGUSR1));
    EXPECT_FALSE(report.Ignores(SIGUSR2));
    EXPECT_TRUE(report.Blocks(SIGUSR2));
    EXPECT_FALSE(report.Blocks(SIGUSR1));
}

TEST(Double, PlaysTenMegabytesWhole) {
    ToolDouble tool;
    std::string text;
    while (text.size() < 10'000'000) {
        text += std::to_string(text.size()) + '\n';
    }
    tool.Plays("", ToolAnswer().Output(text));
    EXPECT_TRUE(Shell("/qv/bin/patchkeeper").output == text);
}

TEST(Double, PlaysAFileAndRefusesAMissingOne) {
    ToolDouble tool;
    const auto file = tool.Directory() / "two_lines.tsv";
    std::ofstream(file) << "a\tb\nc\td\n";
    tool.Plays("--files", ToolAnswer().OutputOfFile(file));
    EXPECT_EQ(Shell("/qv/bin/patchkeeper --files").output, "a\tb\nc\td\n");
    EXPECT_THROW(ToolAnswer().OutputOfFile(tool.Directory() / "none"), std::runtime_error);
}

TEST(Double, ToolCanBeTakenAwayAndSpoiltAndComesBack) {
    {
        ToolDouble tool;
        tool.PlaysOtherwise(ToolAnswer().Output("here\n"));
        tool.TakeToolAway();
        EXPECT_EQ(WEXITSTATUS(Shell("/qv/bin/patchkeeper --em 2>/dev/null").status), notFound);
        tool.RestoreTool();
        EXPECT_EQ(Shell("/qv/bin/patchkeeper").output, "here\n");
        tool.MakeToolNotExecutable();
        EXPECT_EQ(WEXITSTATUS(Shell("/qv/bin/patchkeeper 2>/dev/null").status), notExecutable);
    }
    ToolDouble next;
    next.PlaysOtherwise(ToolAnswer().Output("again\n"));
    EXPECT_EQ(Shell("/qv/bin/patchkeeper").output, "again\n");
}

TEST(Double, LeavesNothingBehind) {
    std::filesystem::path directory;
    {
        ToolDouble tool;
        directory = tool.Directory();
        EXPECT_EQ(std::getenv("PATCHKEEPER_DOUBLE"), directory.string());
    }
    EXPECT_FALSE(std::filesystem::exists(directory));
    EXPECT_EQ(std::getenv("PATCHKEEPER_DOUBLE"), nullptr);
}

} // namespace
