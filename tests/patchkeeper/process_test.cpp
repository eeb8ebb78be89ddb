#include "patchkeeper/Process.hpp"

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/wait.h>

#include <gmock/gmock.h>

namespace {

using patchkeeper::ForEachOutputLine;
using patchkeeper::ProcessError;
using testing::ElementsAre;

std::vector<std::string> Lines(const std::vector<std::string>& command) {
    std::vector<std::string> lines;
    ForEachOutputLine(command, [&](std::string_view line) { lines.emplace_back(line); });
    return lines;
}

std::string ErrorOf(const std::vector<std::string>& command) {
    try {
        Lines(command);
    } catch (const ProcessError& error) {
        return error.what();
    }
    return "no error";
}

std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

TEST(Process, HandsOverLinesWithoutTheirNewlines) {
    EXPECT_THAT(Lines({"printf", "a\\tb\\n\\nlast"}), ElementsAre("a\tb", "", "last"));
    EXPECT_THAT(Lines({"true"}), ElementsAre());
}

TEST(Process, ArgumentsPassNoShell) {
    EXPECT_THAT(Lines({"printf", "%s\\n", "$HOME; `x` 'y' *", ""}),
                ElementsAre("$HOME; `x` 'y' *", ""));
}

TEST(Process, LinesLongerThanAnyBufferStayWhole) {
    const auto lines = Lines({"sh", "-c", "head -c 300000 /dev/zero | tr '\\0' x; echo; echo y"});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], std::string(300000, 'x'));
    EXPECT_EQ(lines[1], "y");
}

TEST(Process, StandardInputIsEmpty) {
    EXPECT_THAT(Lines({"cat"}), ElementsAre());
}

TEST(Process, FailuresNameProgramAndReason) {
    EXPECT_EQ(ErrorOf({"no-such-program"}),
              "no-such-program cannot be started: No such file or directory");
    EXPECT_EQ(ErrorOf({"/dev/null"}), "/dev/null cannot be started: Permission denied");
    EXPECT_EQ(ErrorOf({"false"}), "false failed with exit code 1");
    EXPECT_EQ(ErrorOf({"sh", "-c", "echo first >&2; echo the reason >&2; exit 7"}),
              "sh failed with exit code 7: the reason");
    EXPECT_EQ(ErrorOf({"sh", "-c", "kill -9 $$"}), "sh was ended by signal 9");
}

TEST(Process, LongComplaintsDoNotBlockTheProgram) {
    EXPECT_THAT(Lines({"sh", "-c", "head -c 1000000 /dev/zero >&2; echo done"}),
                ElementsAre("done"));
}

TEST(Process, NothingIsLeftAfterFailures) {
    const auto before = OpenDescriptors();
    for (int i = 0; i < 20; ++i) {
        ErrorOf({"no-such-program"});
        ErrorOf({"false"});
        // The reader gives up while the program would write for ever.
        EXPECT_THROW(
            ForEachOutputLine({"yes"}, [](std::string_view) { throw std::logic_error("enough"); }),
            std::logic_error);
    }
    EXPECT_EQ(OpenDescriptors(), before);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
