#pragma once

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

// What the double does when it is called: it waits, prints, and ends. Everything that is not set is
// left out; an empty answer prints nothing and ends with exit code 0. In this order: wait until
// released, wait for the delay, report on itself, print the output, print the error text, end.
class ToolAnswer {
public:
    // Any bytes, to standard output.
    ToolAnswer& Output(std::string text);
    // The same with a file's bytes; a file that cannot be read throws std::runtime_error.
    ToolAnswer& OutputOfFile(const std::filesystem::path& file);
    // Any bytes, to standard error.
    ToolAnswer& ErrorText(std::string text);
    // 0 to 255.
    ToolAnswer& ExitCode(int code);
    // Ends by this signal in place of an exit code; the double restores its default action first.
    ToolAnswer& DiesBySignal(int signal);
    ToolAnswer& Delay(std::chrono::milliseconds delay);
    // Waits, after the call is recorded, until ToolDouble::Release names this option; at most a
    // minute, then it ends with 99.
    ToolAnswer& Held();
    // Writes down its open descriptors and its signals, for ToolDouble::Report.
    ToolAnswer& ReportsItself();

private:
    friend class ToolDouble;
    std::optional<std::string> output_;
    std::optional<std::string> errorText_;
    std::optional<int> exitCode_;
    std::optional<int> signal_;
    std::optional<std::chrono::milliseconds> delay_;
    bool held_ = false;
    bool reports_ = false;
};

// What a call that ReportsItself saw of itself. Bit n-1 of a mask stands for signal n.
struct ToolReport {
    std::map<int, std::string> descriptors; // number to what it points at
    std::uint64_t blockedSignals = 0;
    std::uint64_t ignoredSignals = 0;

    bool Blocks(int signal) const { return ((blockedSignals >> (signal - 1)) & 1U) != 0; }
    bool Ignores(int signal) const { return ((ignoredSignals >> (signal - 1)) & 1U) != 0; }
};

// The scripted tool at /qv/bin/patchkeeper, for one test. It owns a fresh directory that holds the
// script and the record of the calls, and names it to the tool by the environment variable
// PATCHKEEPER_DOUBLE; the destructor removes both, so make it before threads start that read the
// environment, and end what still runs in the background before it goes.
//
// The test program must run in a private root (PRIVATE_ROOT of add_project_test): the constructor
// throws std::runtime_error when /qv/bin/patchkeeper is not the double.
//
//     ToolDouble tool;
//     tool.Plays("--hist", ToolAnswer().Output("a\tb\n"));
//     tool.Plays("--errors", ToolAnswer().Output("It failed.\n"));
//     ... the code under test ...
//     EXPECT_THAT(tool.CommandLines(), ElementsAre("/qv/bin/patchkeeper --hist"));
//
// A call for which nothing is scripted ends with 99 and says so on standard error.
// Not for several threads at once, except Calls, CommandLines, ShellCommands, WaitForCalls and
// Release.
class ToolDouble {
public:
    ToolDouble();
    ~ToolDouble();
    ToolDouble(const ToolDouble&) = delete;
    ToolDouble& operator=(const ToolDouble&) = delete;

    // The answer to calls whose first argument is `option` ("--hist", "-l"); "" is the inventory,
    // which is called without an argument. Replaces an earlier answer; takes effect with the next
    // call.
    ToolDouble& Plays(const std::string& option, const ToolAnswer& answer);
    // The answer to every option without an answer of its own.
    ToolDouble& PlaysOtherwise(const ToolAnswer& answer);

    // Lets calls of an option go that is Held, those waiting now and those to come.
    void Release(const std::string& option);

    // All calls so far, in the order in which they started: the complete argv, program name first.
    std::vector<std::vector<std::string>> Calls() const;
    // The same, each argv joined by single blanks.
    std::vector<std::string> CommandLines() const;
    // The text that the shell was given for each call, blanks and quotes as they were; empty for a
    // call without a shell that waits.
    std::vector<std::string> ShellCommands() const;
    // Waits until at least `count` calls have started; false when `limit` has passed before.
    bool WaitForCalls(std::size_t count,
                      std::chrono::milliseconds limit = std::chrono::seconds(30)) const;
    // Forgets the calls so far; the script stays.
    void ForgetCalls();

    // What the last call of a ReportsItself answer wrote; throws std::runtime_error when there is
    // none.
    ToolReport Report() const;

    // The private root belongs to this test alone, so the tool itself can be spoilt: taken away, or
    // replaced by a file without execute permission. The destructor puts the double back.
    // RestoreTool does so earlier.
    void TakeToolAway();
    void MakeToolNotExecutable();
    void RestoreTool();

    // The directory with the script, for what the functions above do not offer.
    const std::filesystem::path& Directory() const { return directory_; }

private:
    void Write(const std::string& key, const ToolAnswer& answer);
    // The text for the shell, then argv, of each call.
    std::vector<std::vector<std::string>> Record() const;

    std::filesystem::path directory_;
    std::filesystem::path tool_;
};

} // namespace test_support
