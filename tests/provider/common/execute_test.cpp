#include "provider/ProviderTest.hpp"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>

using OpenWBEM::Array;
using OpenWBEM::String;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The shell's own argv; the blank behind it keeps it apart from what the library appends.
const char* const SHOW_SHELL = "tr '\\0' '|' < /proc/$$/cmdline";

// A single argument may not be longer than 128 KiB.
String CommandOverTheLimit() {
    return String(("true " + std::string(200000, 'x')).c_str());
}

} // namespace

using Execute_Lines = LogTest;
using Execute_Text = LogTest;
using Execute_Bare = LogTest;

TEST_F(Execute_Lines, KeepsEachLineWithItsNewline) {
    Array<String> lines;
    EXPECT_EQ(Execute("printf 'a\\tb\\n\\nc'", lines), 0);
    EXPECT_THAT(Texts(lines), ElementsAre("a\tb\n", "\n", "c"));
}

TEST_F(Execute_Lines, RunsTheCommandWithErrorOutputAndLogsItWithout) {
    Array<String> lines;
    EXPECT_EQ(Execute(SHOW_SHELL, lines), 0);
    EXPECT_THAT(Texts(lines), ElementsAre(std::string("sh|-c|") + SHOW_SHELL + " 2>&1|"));
    EXPECT_THAT(log->All(), ElementsAre(std::string("INFO: Executing: ") + SHOW_SHELL));
}

TEST_F(Execute_Lines, CollectErrorOutputToo) {
    Array<String> lines;
    EXPECT_EQ(Execute("sh -c 'echo out; echo err >&2'", lines), 0);
    EXPECT_THAT(Texts(lines), ElementsAre("out\n", "err\n"));
}

TEST_F(Execute_Lines, AreEmptyWhenNothingIsPrinted) {
    Array<String> lines(1, "before");
    EXPECT_EQ(Execute("exit 3;", lines), 3);
    EXPECT_THAT(Texts(lines), IsEmpty());
}

TEST_F(Execute_Lines, BreakAfter1023Characters) {
    Array<String> lines;
    EXPECT_EQ(Execute("head -c 2500 /dev/zero | tr '\\0' x; echo", lines), 0);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(Text(lines[0]), std::string(1023, 'x'));
    EXPECT_EQ(Text(lines[1]), std::string(1023, 'x'));
    EXPECT_EQ(Text(lines[2]), std::string(454, 'x') + "\n");
}

TEST_F(Execute_Lines, OfExactly1023CharactersStayWhole) {
    Array<String> lines;
    EXPECT_EQ(Execute("head -c 1022 /dev/zero | tr '\\0' x; echo; echo y", lines), 0);
    EXPECT_THAT(Texts(lines), ElementsAre(std::string(1022, 'x') + "\n", "y\n"));
}

TEST_F(Execute_Lines, AreLeftAloneWhenTheShellCannotStart) {
    Array<String> lines(1, "before");
    EXPECT_EQ(Execute(CommandOverTheLimit(), lines), -1);
    EXPECT_THAT(Texts(lines), ElementsAre("before"));
    EXPECT_EQ(log->All().size(), 1U);
}

TEST_F(Execute_Lines, ReturnTheShellsCodesForAMissingAndAForbiddenProgram) {
    Array<String> lines;
    EXPECT_EQ(Execute("/qv/bin/not-there", lines), 127);
    EXPECT_EQ(Execute("/dev/null", lines), 126);
}

TEST_F(Execute_Lines, CarryEveryExitCode) {
    Array<String> lines;
    for (const int code : {0, 1, 11, 127, 128, 254, 255}) {
        EXPECT_EQ(Execute(String("exit ") + String(code) + ";", lines), code);
    }
}

TEST_F(Execute_Lines, GiveCode255WhenSomebodyElseHasTakenTheExitStatus) {
    const auto previous = signal(SIGCHLD, SIG_IGN);
    Array<String> lines;
    EXPECT_EQ(Execute("echo a", lines), 255);
    signal(SIGCHLD, previous);
    EXPECT_THAT(Texts(lines), ElementsAre("a\n"));
}

TEST_F(Execute_Text, IsAllThatIsPrinted) {
    String output;
    EXPECT_EQ(Execute("sh -c 'echo out; echo err >&2; exit 5'", output), 5);
    EXPECT_EQ(Text(output), "out\nerr\n");
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: sh -c 'echo out; echo err >&2; exit 5'"));
}

TEST_F(Execute_Text, RunsTheCommandWithErrorOutput) {
    String output;
    EXPECT_EQ(Execute(SHOW_SHELL, output), 0);
    EXPECT_EQ(Text(output), std::string("sh|-c|") + SHOW_SHELL + " 2>&1|");
}

TEST_F(Execute_Text, IsLeftAloneWhenTheShellCannotStart) {
    String output("before");
    EXPECT_EQ(Execute(CommandOverTheLimit(), output), -1);
    EXPECT_EQ(Text(output), "before");
}

TEST_F(Execute_Text, OfTenMegabytesIsComplete) {
    String output;
    EXPECT_EQ(Execute("head -c 10000000 /dev/zero | tr '\\0' x", output), 0);
    EXPECT_EQ(output.length(), 10000000U);
}

TEST_F(Execute_Bare, RunsTheCommandAsItIsAndCollectsNothing) {
    const auto file =
        std::filesystem::temp_directory_path() / ("execute_test-" + std::to_string(getpid()));
    const std::string command = std::string(SHOW_SHELL) + " > " + file.string();
    EXPECT_EQ(Execute(String((command + "; exit 7").c_str())), 7);
    std::ifstream in(file);
    const std::string shell{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::filesystem::remove(file);
    EXPECT_EQ(shell, "sh|-c|" + command + "; exit 7|");
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: " + command + "; exit 7"));
}

TEST_F(Execute_Bare, Gives127WhenTheShellCannotStart) {
    EXPECT_EQ(Execute(CommandOverTheLimit()), 127);
}

TEST_F(Execute_Bare, Gives255WhenSomebodyElseHasTakenTheExitStatus) {
    const auto previous = signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(Execute(String("true")), 255);
    signal(SIGCHLD, previous);
}

TEST(CommonOddities, CM3_OutputIsAppendedToWhatTheTextHolds) {
    String output("abc");
    EXPECT_EQ(Execute("echo def", output), 0);
    EXPECT_EQ(Text(output), "abcdef\n");
}

TEST(CommonOddities, CM5_AKilledCommandCountsAsSuccessful) {
    Array<String> lines;
    EXPECT_EQ(Execute("exec sh -c 'kill -9 $$'", lines), 0);
    // Where the shell waits for the command it turns the signal into an exit code.
    EXPECT_EQ(Execute("sh -c 'kill -9 $$' || exit $?; true", lines), 137);
    EXPECT_EQ(Execute(String("exec sh -c 'kill -9 $$'")), 0);
    EXPECT_EQ(Execute(String("sh -c 'kill -9 $$' || exit $?; true")), 137);
}
