// What the commands do when the state cannot be used, when others use it, and when they are killed.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "patchkeeper/OnState.hpp"
#include "patchkeeper/Operation.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper_test::MakeTestBundle;
using patchkeeper_test::Result;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Every command that looks at the state, with the code of its failure.
struct CommandCode {
    const char* arguments;
    int exitCode;
};
constexpr CommandCode readers[] = {
    {"", 1},
    {"--cache", 12},
    {"-l demo-1.0", 12},
    {"--files", 12},
    {"--warnings demo 1", 12},
    {"--hascomponents demo 1", 12},
    {"--components demo 1", 12},
    {"--hist", 12},
    {"--sched", 12},
    {"--apply", 12},
    {"--status", 12},
};
constexpr CommandCode writers[] = {
    {"--setinprogress", 12},     {"--usb /tmp", 22},      {"--hd /tmp", 14},
    {"--apply demo 1", 15},      {"--rback demo 1", 16},  {"--sched demo 1 x y", 17},
    {"--msched demo 1 x y", 18}, {"--msched demo 1", 18}, {"--run-due", 15},
    {"forget demo 1", 12},       {"prune", 12},
};

class Trouble : public patchkeeper_test::OnState {
protected:
    void ExpectFailure(const CommandCode& row, const std::string& sentence) const {
        const Result result = Run(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.arguments;
        EXPECT_EQ(result.output, "") << row.arguments;
        EXPECT_EQ(result.errors, "patchkeeper: " + sentence + ".\n") << row.arguments;
    }
    void ExpectAllFail(const std::string& sentence) const {
        for (const auto& row : readers) {
            ExpectFailure(row, sentence);
        }
        for (const auto& row : writers) {
            ExpectFailure(row, sentence);
        }
    }
    std::string Database() const { return "the database " + (Root() / "state.db").string(); }

    // The root as one that nobody may write to; for root it belongs to somebody else, as whom the
    // program goes on.
    void MakeReadOnly() const {
        fs::permissions(directory_.Path(), fs::perms(0755));
        if (geteuid() == 0) {
            for (const auto& file : fs::recursive_directory_iterator(Root())) {
                ASSERT_EQ(lchown(file.path().c_str(), 12345, 12345), 0);
            }
            ASSERT_EQ(lchown(Root().c_str(), 12345, 12345), 0);
        }
        for (const auto& file : fs::recursive_directory_iterator(Root())) {
            fs::permissions(file.path(), fs::perms(file.is_directory() ? 0555 : 0444));
        }
        fs::permissions(Root(), fs::perms(0555));
    }

    // Starts the program directly, without a shell that a signal could reach instead.
    pid_t Start(const std::string& option, const std::string& argument) const {
        const std::string root = "PATCHKEEPER_ROOT=" + Root().string();
        std::string program = PATCHKEEPER_PROGRAM;
        std::string first = option;
        std::string second = argument;
        std::string variable = root;
        char* arguments[] = {program.data(), first.data(), second.data(), nullptr};
        char* environment[] = {variable.data(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        pid_t process = -1;
        EXPECT_EQ(posix_spawn(&process, program.c_str(), &actions, nullptr, arguments, environment),
                  0);
        posix_spawn_file_actions_destroy(&actions);
        return process;
    }
};

TEST_F(Trouble, DamagedDatabaseFailsEveryCommandWithItsCode) {
    directory_.Write("root/state.db", std::string(8192, 'x'));
    ExpectAllFail(Database() + " is damaged: file is not a database");
}

TEST_F(Trouble, NewerDatabaseFailsEveryCommandWithItsCode) {
    Output("prune");
    Sql("PRAGMA user_version = 99");
    ExpectAllFail(Database() + " has version 99, which is newer than this program's 2");
}

TEST_F(Trouble, MistakesInTheSettingsFailEveryCommandWithItsCode) {
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = maybe\n");
    ExpectAllFail((Root() / "patchkeeper.conf").string() +
                  ":1: allow_unsigned: 'maybe' is neither true nor false");
}

TEST_F(Trouble, MissingRootFailsEveryCommandWithItsCode) {
    fs::remove_all(Root());
    fs::create_symlink("/no/such/place", Root());
    ExpectAllFail("the root directory " + Root().string() +
                  " cannot be used: No such file or directory");
}

TEST_F(Trouble, BusyDatabaseFailsEveryCommandAfterABoundedWait) {
    directory_.Write("root/patchkeeper.conf", "lock_timeout = 1\n");
    Output("prune");
    patchkeeper::Database database = OpenDatabase();
    database.Execute("BEGIN EXCLUSIVE");
    const std::string sentence = Database() + " is busy: another command has kept it for 1000 ms";
    for (const CommandCode& row :
         {CommandCode{"", 1}, CommandCode{"--cache", 12}, CommandCode{"--status", 12},
          CommandCode{"--usb /tmp", 22}, CommandCode{"--setinprogress", 12},
          CommandCode{"--apply demo 1", 15}, CommandCode{"--rback demo 1", 16},
          CommandCode{"--sched demo 1 x y", 17}, CommandCode{"--msched demo 1", 18},
          CommandCode{"--run-due", 15}}) {
        ExpectFailure(row, sentence);
    }
    database.Execute("COMMIT");
    EXPECT_EQ(Output("--cache"), "");
}

TEST_F(Trouble, RunningOperationKeepsOthersOutAndListsGoOn) {
    Take({});
    directory_.Write("root/patchkeeper.conf", "lock_timeout = 1\n");
    const patchkeeper::State state(Root());
    patchkeeper::Store store = state.OpenOrMake(state.Settings());
    std::ostringstream notes;
    patchkeeper::Operation operation(state, store, state.Settings(),
                                     {"fetch", "fetching from /mnt", "", ""}, notes);
    operation.Progress(50, 200, "fetching x.tar.gz");
    const std::string sentence = "another operation is running, and has been for 1000 ms";
    for (const CommandCode& row :
         {CommandCode{"--hd /tmp", 14}, CommandCode{"--usb /tmp", 22},
          CommandCode{"--apply demo 1.0", 15}, CommandCode{"--rback demo 1.0", 16},
          CommandCode{"forget demo 1.0", 12}, CommandCode{"prune", 12}}) {
        ExpectFailure(row, sentence);
    }
    ExpectFailure({"--setinprogress", 12}, "an operation is running: fetching from /mnt");
    EXPECT_EQ(Output("--status"), "1\t25 %, 50 of 200 bytes: fetching x.tar.gz\n");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
}

TEST_F(Trouble, ReadOnlyRootCanBeListedButNotChanged) {
    Take({});
    const std::string bundle = MakeTestBundle(At("other.tar.gz"), {.name = "other"}).string();
    MakeReadOnly();
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
    EXPECT_THAT(Output("--status"), StartsWith("2\t"));
    EXPECT_GT(Output("").size(), 0U);
    for (const CommandCode& row :
         {CommandCode{"--setinprogress", 12}, CommandCode{"prune", 12}, CommandCode{"--hd ", 14},
          CommandCode{"--usb ", 22}, CommandCode{"--apply demo 1.0", 15},
          CommandCode{"--rback demo 1.0", 16},
          CommandCode{"--sched demo 1.0 'Wed May 18 03:33:20 2033' 'Wed May 18 03:33:20 2033'",
                      17}}) {
        const std::string arguments = row.arguments;
        const Result result = Run(arguments + (arguments.ends_with(' ') ? bundle : ""));
        EXPECT_EQ(result.exitCode, row.exitCode) << arguments;
        EXPECT_THAT(result.errors, HasSubstr(Root().string())) << arguments;
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
    }
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
}

TEST_F(Trouble, RootDirectoryThatCannotBeMadeIsAFailure) {
    for (const auto& [arguments, code] :
         {std::pair("--setinprogress", 12), std::pair("--cache", 12), std::pair("--hd /tmp", 14)}) {
        const Result result =
            InShell("PATCHKEEPER_ROOT=/dev/null/root patchkeeper " + std::string(arguments));
        EXPECT_EQ(result.exitCode, code) << arguments;
        EXPECT_EQ(result.errors, "patchkeeper: the root directory /dev/null/root cannot be used: "
                                 "Not a directory.\n");
    }
}

TEST_F(Trouble, FullDiskUndoesTheFetchAndSaysSo) {
    Take({});
    const std::string bundle =
        MakeTestBundle(At("big.tar.gz"),
                       {.name = "big", .text = patchkeeper_test::Noise(2'000'000)})
            .string();
    const Result result = InShell("ulimit -f 1000; patchkeeper --hd " + bundle);
    EXPECT_EQ(result.exitCode, 14);
    EXPECT_EQ(result.errors, "patchkeeper: " + (Root() / "bundles/incoming").string() +
                                 " cannot be written: File too large.\n");
    EXPECT_THAT(Output("--status"), StartsWith("-1\t"));
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(Root() / "bundles"), fs::directory_iterator()),
              1);
    EXPECT_EQ(Output("--hd " + bundle), "");
}

TEST_F(Trouble, FullDiskKeepsTheDatabaseAsItWas) {
    Take({});
    const std::string before = Output("--status");
    const Result result = // through a pipe: nothing can be written to a file
        InShell("{ ulimit -f 0; patchkeeper --setinprogress 2>&1; echo code $?; } | cat");
    EXPECT_THAT(result.output, StartsWith("patchkeeper: " + Database() + " cannot be "));
    EXPECT_THAT(result.output, EndsWith("\ncode 12\n"));
    EXPECT_EQ(Output("--status"), before);
    EXPECT_EQ(Output("--setinprogress"), "");
}

TEST_F(Trouble, RecordedNowhereIsRemovedByTheNextCommandThatChangesSomething) {
    Take({});
    directory_.Write("root/bundles/lost@1.0.7.tar.gz", "copied, and killed before it was recorded");
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
    const Result result = Run("prune");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors,
              "patchkeeper: note: a leftover of an interrupted command was removed: " +
                  (Root() / "bundles/lost@1.0.7.tar.gz").string() + ".\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(Root() / "bundles"), fs::directory_iterator()),
              1);
    EXPECT_EQ(Output("--cache"), "demo\t1.0\tA demo\t6\t-\tAvailable\n");
}

TEST_F(Trouble, FetchKilledAtAnyMomentIsThereAsAWholeOrNotAtAll) {
    const std::string bundle =
        MakeTestBundle(At("demo.tar.gz"), {.text = patchkeeper_test::Noise(400'000)}).string();
    int killed = 0;
    for (int i = 0; i < 40; ++i) {
        const pid_t process = Start("--hd", bundle);
        ASSERT_GT(process, 0) << "the program could not be started"; // -1 would kill everybody
        std::this_thread::sleep_for(std::chrono::milliseconds(i));   // anywhere will do
        kill(process, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(process, &status, 0), process);
        killed += WIFSIGNALED(status) ? 1 : 0;
        const std::string held = Output("--cache");
        EXPECT_THAT(held, testing::AnyOf("", "demo\t1.0\tA demo\t400000\t-\tAvailable\n")) << i;
        EXPECT_THAT(Output("--status").substr(0, 2), testing::AnyOf("0\t", "-1", "2\t")) << i;
        EXPECT_EQ(Run("prune").exitCode, 0) << i;
        const std::ptrdiff_t files =
            std::distance(fs::directory_iterator(Root() / "bundles"), fs::directory_iterator());
        EXPECT_EQ(files, held.empty() ? 0 : 1) << i;
        if (!held.empty()) {
            EXPECT_EQ(Output("forget demo 1.0"), "") << i;
        }
    }
    EXPECT_GT(killed, 0);
}

TEST_F(Trouble, TenFetchesAndTenListsAtOnceAllSucceed) {
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nlock_timeout = 100\n");
    for (int i = 0; i < 10; ++i) {
        MakeTestBundle(At(std::to_string(i) + ".tar.gz"), {.name = "demo" + std::to_string(i)});
    }
    const Result result = InShell(
        "for i in 0 1 2 3 4 5 6 7 8 9; do { patchkeeper --hd " + directory_.Path().string() +
        "/$i.tar.gz; echo fetch $?; } & { patchkeeper --cache >/dev/null; echo list $?; } & "
        "done; wait");
    EXPECT_EQ(result.errors, "");
    std::istringstream lines(result.output);
    std::multiset<std::string> codes;
    for (std::string line; std::getline(lines, line);) {
        codes.insert(line);
    }
    EXPECT_EQ(codes.count("fetch 0"), 10U);
    EXPECT_EQ(codes.count("list 0"), 10U);
    const std::string held = Output("--cache");
    EXPECT_EQ(std::count(held.begin(), held.end(), '\n'), 10);
    EXPECT_THAT(Output("--status"), StartsWith("2\t"));
}

TEST_F(Trouble, ApplyingRollingBackAndSchedulingAtOnceAllComeOutWhole) {
    directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\nlock_timeout = 100\n");
    for (int i = 0; i < 6; ++i) {
        Take({.name = "demo" + std::to_string(i),
              .path = "etc/" + std::to_string(i),
              .text = patchkeeper_test::Noise(50'000)});
    }
    for (const char* update : {"demo0 1.0", "demo1 1.0"}) {
        Output("--apply " + std::string(update));
    }
    const std::string when = " 'Wed May 18 03:33:20 2033' 'Wed May 18 03:33:20 2033'";
    const std::string commands[] = {
        "--rback demo0 1.0",        "--rback demo1 1.0", "--apply demo2 1.0",
        "--apply demo3 1.0",        "--apply demo3 1.0", "--sched demo4 1.0" + when,
        "--sched demo5 1.0" + when, "--run-due",         "--hd " + At("incoming.tar.gz").string(),
        "--hist >/dev/null"};
    std::string all;
    for (std::size_t i = 0; i < std::size(commands); ++i) {
        all += "{ patchkeeper " + commands[i] + "; echo " + std::to_string(i) + ": $?; } & ";
    }
    const Result result = InShell(all + "wait");
    std::multiset<std::string> codes;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        codes.insert(line.starts_with("4: ") ? line.replace(0, 1, "3") : line);
    }
    // One of the two that apply the same update comes too late.
    EXPECT_EQ(codes, (std::multiset<std::string>{"0: 0", "1: 0", "2: 0", "3: 0", "3: 15", "5: 0",
                                                 "6: 0", "7: 0", "8: 0", "9: 0"}));
    EXPECT_EQ(result.errors, "patchkeeper: demo3 1.0 is applied already.\n");
    std::set<std::string> installed;
    for (const auto& file : fs::directory_iterator(Root() / "target/etc")) {
        installed.insert(file.path().filename().string());
        EXPECT_EQ(fs::file_size(file.path()), 50'000U);
    }
    EXPECT_EQ(installed, (std::set<std::string>{"2", "3"}));
    const std::string history = Output("--hist");
    EXPECT_EQ(std::count(history.begin(), history.end(), '\n'), 2);
    const std::string schedules = Output("--sched");
    EXPECT_EQ(std::count(schedules.begin(), schedules.end(), '\n'), 2);
}

TEST_F(Trouble, OfTenMarksAtOnceOneIsTaken) {
    const Result result = InShell(
        "for i in 0 1 2 3 4 5 6 7 8 9; do { patchkeeper --setinprogress; echo $?; } & done; wait");
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '0'), 1);
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 10);
}

TEST_F(Trouble, EverythingBelongsToTheOwnerOfTheRoot) {
    fs::permissions(directory_.Path(), fs::perms(0755));
    const std::string bundle = MakeTestBundle(At("demo.tar.gz")).string();
    const uid_t owner = geteuid() == 0 ? 12345 : geteuid();
    if (geteuid() == 0) {
        ASSERT_EQ(chown(Root().c_str(), owner, owner), 0);
    }
    Output("--setinprogress");
    Output("--hd " + bundle);
    EXPECT_THAT(Output("--cache"), EndsWith("\tAvailable\n"));
    int files = 0;
    for (const auto& file : fs::recursive_directory_iterator(Root())) {
        if (file.path().filename() == "patchkeeper.conf") {
            continue; // the test's own
        }
        struct stat status {};
        ASSERT_EQ(lstat(file.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, owner) << file.path();
        ++files;
    }
    EXPECT_GE(files, 4); // bundles, the one in it, lock, state.db
}

} // namespace
