#include "patchkeeper/State.hpp"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::State;
using patchkeeper_test::TemporaryDirectory;
using testing::HasSubstr;

TEST(State, MarkHoldsTheTimeInADirectoryMadeForIt) {
    const TemporaryDirectory directory;
    const fs::path root = directory.Path() / "a/b";
    const std::time_t before = std::time(nullptr);
    State(root).MarkInProgress();
    std::time_t marked = 0;
    std::ifstream(root / "in-progress") >> marked;
    EXPECT_GE(marked, before);
    EXPECT_LE(marked, std::time(nullptr));
    EXPECT_EQ(std::distance(fs::directory_iterator(root), fs::directory_iterator()), 1);
}

TEST(State, MarkIsRenewed) {
    const TemporaryDirectory directory;
    directory.Write("in-progress", "1\n");
    State(directory.Path()).MarkInProgress();
    std::time_t marked = 0;
    std::ifstream(directory.Path() / "in-progress") >> marked;
    EXPECT_GT(marked, 1);
}

TEST(State, RootThatIsNoDirectoryIsAFailureThatNamesIt) {
    const TemporaryDirectory directory;
    const fs::path file = directory.Write("file", "");
    try {
        State(file).MarkInProgress();
        FAIL() << "no failure";
    } catch (const patchkeeper::Failure& failure) {
        EXPECT_EQ(failure.Code(), patchkeeper::ExitCode::SoftwareUpdateFailed);
        EXPECT_EQ(std::string(failure.what()), "an operation cannot be marked as in progress in " +
                                                   file.string() + ": Not a directory");
    }
}

TEST(State, MarkThatCannotBePutInPlaceLeavesNoDraft) {
    const TemporaryDirectory directory;
    fs::create_directories(directory.Path() / "in-progress/in-the-way");
    EXPECT_THROW(State(directory.Path()).MarkInProgress(), patchkeeper::Failure);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.Path()), fs::directory_iterator()), 1);
}

TEST(State, RootComesFromTheEnvironment) {
    setenv("PATCHKEEPER_ROOT", "/some/where", 1);
    EXPECT_EQ(State::OfEnvironment().Root(), "/some/where");
    setenv("PATCHKEEPER_ROOT", "", 1);
    EXPECT_EQ(State::OfEnvironment().Root(), "/var/lib/patchkeeper");
    unsetenv("PATCHKEEPER_ROOT");
    EXPECT_EQ(State::OfEnvironment().Root(), "/var/lib/patchkeeper");
}

} // namespace
