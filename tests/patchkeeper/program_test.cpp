#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Program.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

using patchkeeper_test::Result;
using patchkeeper_test::Shell;
using patchkeeper_test::TemporaryDirectory;
using testing::HasSubstr;

// Runs the program with a dpkg-query of the test's own making.
Result WithDpkgQuery(const std::string& script) {
    const TemporaryDirectory directory;
    directory.WriteProgram("dpkg-query", "#!/bin/sh\n" + script);
    return Shell("PATH=" + directory.Path().string() + ":$PATH patchkeeper");
}

TEST(Program, ListsEveryInstalledPackageOfThisMachine) {
    const Result listed = Shell("patchkeeper");
    EXPECT_EQ(listed.exitCode, 0);
    EXPECT_EQ(listed.errors, "");
    const Result counted =
        Shell("dpkg-query --show --showformat='${db:Status-Status}\\n' | grep -c '^installed$'");
    EXPECT_GT(std::stoi(counted.output), 0);
    EXPECT_EQ(std::count(listed.output.begin(), listed.output.end(), '\n'),
              std::stoi(counted.output));

    const std::regex form(
        "[^\t]+\t[^\t]+\t(Other|Configuration Software|Application Software|Diagnostic Software|"
        "Operating System|Middleware|Firmware)\t[A-Z][a-z]{2} [A-Z][a-z]{2} [ 1-3][0-9] "
        "[0-9]{2}:[0-9]{2}:[0-9]{2} UTC [0-9]{4}");
    std::istringstream lines(listed.output);
    std::string line;
    while (std::getline(lines, line)) {
        EXPECT_TRUE(std::regex_match(line, form)) << line;
        EXPECT_LE(line.size(), 1022U);
    }
}

TEST(Program, ReadsThisMachinesDatabaseAlsoInAnotherLocaleAndZone) {
    const Result plain = Shell("patchkeeper");
    const Result other = Shell("LC_ALL=de_DE.UTF-8 TZ=Asia/Tokyo patchkeeper");
    EXPECT_EQ(other.output, plain.output);
    EXPECT_EQ(other.exitCode, 0);
}

TEST(Program, WarningsOfDpkgQueryDoNotReachTheReader) {
    const Result result =
        WithDpkgQuery("echo 'warning: odd entry' >&2; printf 'installed\\tone\\t1\\tlibs\\t0\\n'");
    EXPECT_EQ(result.output, "one\t1\tMiddleware\tThu Jan  1 00:00:00 UTC 1970\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Program, FailingDpkgQueryIsNamedWithItsReason) {
    const Result result = WithDpkgQuery("echo 'the lock is gone' >&2; exit 2");
    EXPECT_EQ(result.errors, "patchkeeper: the package database cannot be read: dpkg-query failed "
                             "with exit code 2: the lock is gone.\n");
    EXPECT_EQ(result.exitCode, 1);
}

TEST(Program, KilledDpkgQueryIsAFailure) {
    const Result result = WithDpkgQuery("printf 'installed\\tone\\t1\\tlibs\\t0\\n'; kill -9 $$");
    EXPECT_EQ(result.errors,
              "patchkeeper: the package database cannot be read: dpkg-query was ended "
              "by signal 9.\n");
    EXPECT_EQ(result.exitCode, 1);
}

TEST(Program, UnexpectedAnswerOfDpkgQueryIsAFailure) {
    for (const char* line : {"one\\t1\\tlibs\\t0", "installed\\tone\\t1\\tlibs\\t0\\tmore", "x"}) {
        const Result result = WithDpkgQuery("printf '" + std::string(line) + "\\n'");
        EXPECT_THAT(result.errors, HasSubstr("printed a line that is not understood")) << line;
        EXPECT_EQ(result.exitCode, 1) << line;
        EXPECT_EQ(result.output, "") << line;
    }
}

TEST(Program, DateThatIsNoNumberIsUnknown) {
    const Result result = WithDpkgQuery("printf 'installed\\tone\\t1\\tlibs\\t12x\\n'");
    EXPECT_EQ(result.output, "one\t1\tMiddleware\tThu Jan  1 00:00:00 UTC 1970\n");
    EXPECT_EQ(result.exitCode, 0);
}

TEST(Program, MissingDpkgQueryIsASentenceAndAFailure) {
    const Result result = Shell("PATH=/nowhere patchkeeper");
    EXPECT_EQ(result.errors,
              "patchkeeper: the package database cannot be read: dpkg-query cannot be "
              "started: No such file or directory.\n");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.exitCode, 1);
}

TEST(Program, AnswerThatCannotBeWrittenIsAFailure) {
    for (const char* arguments : {"", "--errors 12"}) {
        const Result result = Shell(std::string("patchkeeper ") + arguments + " >/dev/full");
        EXPECT_EQ(result.errors, "patchkeeper: the answer cannot be written.\n");
        EXPECT_EQ(result.exitCode, 1);
    }
}

TEST(Program, ErrorsDescribesACodeAndSucceeds) {
    const Result known = Shell("patchkeeper --errors 12");
    EXPECT_EQ(known.output, "The software update failed.\n");
    EXPECT_EQ(known.exitCode, 0);
    for (const char* code : {"0", "24", "32", "255", "-1"}) {
        const Result unknown = Shell(std::string("patchkeeper --errors ") + code);
        EXPECT_EQ(unknown.output, "The update tool failed for a reason that it cannot name.\n");
        EXPECT_EQ(unknown.exitCode, 0) << code;
        EXPECT_EQ(unknown.errors, "");
    }
}

TEST(Program, ErrorsOfSomethingThatIsNoNumberIsAUsageError) {
    for (const char* code : {"twelve", "12x", "0x12", "''", "99999999999", "1.5"}) {
        const Result result = Shell(std::string("patchkeeper --errors ") + code);
        EXPECT_EQ(result.exitCode, 2) << code;
        EXPECT_EQ(result.output, "") << code;
        EXPECT_NE(result.errors, "") << code;
    }
}

TEST(Program, WrongCommandLinesAreUsageErrors) {
    for (const char* arguments :
         {"--errors", "--bogus", "-x", "something", "--setinprogress now", "--errors 1 2",
          "--setinprogress --errors 1", "--setinprogress --cache"}) {
        const TemporaryDirectory root;
        const Result result =
            Shell("PATCHKEEPER_ROOT=" + root.Path().string() + " patchkeeper " + arguments);
        EXPECT_EQ(result.exitCode, 2) << arguments;
        EXPECT_EQ(result.output, "") << arguments;
        EXPECT_THAT(result.errors, HasSubstr("--help")) << arguments;
        EXPECT_TRUE(std::filesystem::is_empty(root.Path())) << arguments;
    }
}

TEST(Program, WrongNumbersOfArgumentsAreUsageErrorsThatNameTheCommand) {
    const struct {
        const char* arguments;
        const char* usage;
    } rows[] = {
        {"--cache 1", "--cache"},
        {"-l", "-l NAME-VERSION"},
        {"--files a b", "--files [NAME-VERSION]"},
        {"--warnings a", "--warnings NAME VERSION"},
        {"--apply a", "--apply or --apply NAME VERSION [COMPONENT...]"},
        {"--hd", "--hd PATH"},
        {"--rback a", "--rback NAME VERSION"},
        {"--sched a", "--sched or --sched NAME VERSION DATE TIME"},
        {"--msched a b c", "--msched NAME VERSION DATE TIME or --msched NAME VERSION"},
        {"--run-due a", "--run-due"},
        {"--em x", "--em"},
        {"forget a", "forget NAME VERSION"},
        {"prune a", "prune"},
    };
    for (const auto& row : rows) {
        const TemporaryDirectory root;
        const Result result =
            Shell("PATCHKEEPER_ROOT=" + root.Path().string() + " patchkeeper " + row.arguments);
        EXPECT_EQ(result.exitCode, 2) << row.arguments;
        EXPECT_EQ(result.errors, "patchkeeper: the command is: " + std::string(row.usage) +
                                     ".\nRun with --help for more information.\n");
        EXPECT_TRUE(std::filesystem::is_empty(root.Path())) << row.arguments;
    }
}

TEST(Program, HelpAndVersionAreForAPerson) {
    const Result help = Shell("patchkeeper --help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.errors, "");
    for (const char* text :
         {"Lists the software that is installed", "--errors CODE", "--setinprogress", "--version",
          "--cache ", "--hd PATH", "forget NAME VERSION", "bundle DIR",
          "--apply NAME VERSION [COMPONENT...]", "--rback NAME VERSION",
          "--sched NAME VERSION DATE TIME", "--msched NAME VERSION", "--run-due",
          "An empty USER logs in as nobody; PATH may begin with the port, as in :8080/x.\n"}) {
        EXPECT_THAT(help.output, HasSubstr(text));
    }
    const Result version = Shell("patchkeeper --version");
    EXPECT_EQ(version.output, "patchkeeper " PROJECT_VERSION_TEXT "\n");
    EXPECT_EQ(version.exitCode, 0);
}

} // namespace
