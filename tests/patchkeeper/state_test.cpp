#include "patchkeeper/State.hpp"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::Settings;
using patchkeeper::State;
using patchkeeper_test::TemporaryDirectory;

std::string ProblemOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const patchkeeper::StateProblem& problem) {
        return problem.what();
    }
    return "none";
}

std::ptrdiff_t FilesIn(const fs::path& directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

TEST(State, RootComesFromTheEnvironment) {
    setenv("PATCHKEEPER_ROOT", "/some/where", 1);
    EXPECT_EQ(State::OfEnvironment().Root(), "/some/where");
    setenv("PATCHKEEPER_ROOT", "", 1);
    EXPECT_EQ(State::OfEnvironment().Root(), "/var/lib/patchkeeper");
    unsetenv("PATCHKEEPER_ROOT");
    EXPECT_EQ(State::OfEnvironment().Root(), "/var/lib/patchkeeper");
}

TEST(State, ReadingMakesNothing) {
    const TemporaryDirectory directory;
    const State state(directory.Path());
    EXPECT_FALSE(state.OpenExisting(state.Settings()));
    const State missing(directory.Path() / "missing");
    EXPECT_FALSE(missing.OpenExisting(missing.Settings()));
    EXPECT_EQ(FilesIn(directory.Path()), 0);
}

TEST(State, DirectoryIsMadeWhenTheOneAboveItIsThere) {
    const TemporaryDirectory directory;
    const State state(directory.Path() / "root/");
    state.OpenOrMake(state.Settings());
    EXPECT_TRUE(fs::is_regular_file(directory.Path() / "root/state.db"));
    EXPECT_TRUE(fs::is_directory(directory.Path() / "root/bundles"));
    EXPECT_TRUE(state.OpenExisting(state.Settings()));
}

TEST(State, DirectoryWhoseParentIsMissingIsAProblem) {
    const TemporaryDirectory directory;
    const State state(directory.Path() / "a/b");
    EXPECT_EQ(ProblemOf([&] { state.Settings(); }),
              "the root directory " + directory.Path().string() +
                  "/a/b cannot be used: No such file or directory");
}

TEST(State, LinkThatLeadsNowhereIsAProblem) {
    const TemporaryDirectory directory;
    fs::create_symlink("/no/such/directory", directory.Path() / "root");
    const State state(directory.Path() / "root");
    EXPECT_EQ(ProblemOf([&] { state.Settings(); }),
              "the root directory " + directory.Path().string() +
                  "/root cannot be used: No such file or directory");
}

TEST(State, RootThatIsNoDirectoryIsAProblem) {
    const TemporaryDirectory directory;
    const State state(directory.Write("file", ""));
    EXPECT_EQ(ProblemOf([&] { state.Settings(); }), "the root directory " +
                                                        directory.Path().string() +
                                                        "/file cannot be used: Not a directory");
}

TEST(State, EmptyDatabaseFileCountsAsNone) {
    const TemporaryDirectory directory;
    directory.Write("state.db", "");
    const State state(directory.Path());
    EXPECT_FALSE(state.OpenExisting(Settings()));
    state.OpenOrMake(Settings());
    EXPECT_TRUE(state.OpenExisting(Settings()));
}

TEST(State, FileThatIsNoDatabaseIsAProblem) {
    const TemporaryDirectory directory;
    const fs::path file = directory.Write("state.db", std::string(5000, 'x'));
    const State state(directory.Path());
    const std::string sentence =
        "the database " + file.string() + " is damaged: file is not a database";
    EXPECT_EQ(ProblemOf([&] { state.OpenExisting(Settings()); }), sentence);
    EXPECT_EQ(ProblemOf([&] { state.OpenOrMake(Settings()); }), sentence);
}

} // namespace
