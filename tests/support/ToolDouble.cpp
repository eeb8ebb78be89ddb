#include "support/ToolDouble.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace test_support {

namespace fs = std::filesystem;

namespace {

const fs::path toolPath = "/qv/bin/patchkeeper";
const char* const scriptVariable = "PATCHKEEPER_DOUBLE";

std::string ReadFile(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const fs::path& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

// Empty when there is no link.
fs::path LinkTarget(const fs::path& link) {
    std::error_code none;
    return fs::read_symlink(link, none);
}

fs::path MakeDirectory() {
    std::string name = (fs::temp_directory_path() / "double-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a directory for the double's script");
    }
    return name;
}

std::string Key(const std::string& option) {
    if (option.empty()) {
        return "inventory";
    }
    return option.substr(std::min(option.find_first_not_of('-'), option.size()));
}

char Unescaped(char letter) {
    switch (letter) {
    case 't':
        return '\t';
    case 'n':
        return '\n';
    default:
        return letter;
    }
}

std::vector<std::string> Arguments(const std::string& line) {
    std::vector<std::string> arguments(1);
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\t') {
            arguments.emplace_back();
        } else if (line[i] == '\\' && i + 1 < line.size()) {
            arguments.back() += Unescaped(line[++i]);
        } else {
            arguments.back() += line[i];
        }
    }
    return arguments;
}

} // namespace

ToolAnswer& ToolAnswer::Output(std::string text) {
    output_ = std::move(text);
    return *this;
}

ToolAnswer& ToolAnswer::OutputOfFile(const fs::path& file) {
    return Output(ReadFile(file));
}

ToolAnswer& ToolAnswer::ErrorText(std::string text) {
    errorText_ = std::move(text);
    return *this;
}

ToolAnswer& ToolAnswer::ExitCode(int code) {
    exitCode_ = code;
    return *this;
}

ToolAnswer& ToolAnswer::DiesBySignal(int signal) {
    signal_ = signal;
    return *this;
}

ToolAnswer& ToolAnswer::Delay(std::chrono::milliseconds delay) {
    delay_ = delay;
    return *this;
}

ToolAnswer& ToolAnswer::Held() {
    held_ = true;
    return *this;
}

ToolAnswer& ToolAnswer::ReportsItself() {
    reports_ = true;
    return *this;
}

ToolDouble::ToolDouble() : tool_(LinkTarget(toolPath)) {
    if (tool_.filename() != "patchkeeper_double") {
        throw std::runtime_error(toolPath.string() +
                                 " is not the double: run this test through scripts/with-qv");
    }
    directory_ = MakeDirectory();
    setenv(scriptVariable, directory_.c_str(), 1);
}

ToolDouble::~ToolDouble() {
    unsetenv(scriptVariable);
    std::error_code ignored; // what is left in the temporary directory harms no other test
    fs::remove_all(directory_, ignored);
    if (fs::read_symlink(toolPath, ignored) != tool_) {
        fs::remove(toolPath, ignored);
        fs::create_symlink(tool_, toolPath, ignored);
    }
}

ToolDouble& ToolDouble::Plays(const std::string& option, const ToolAnswer& answer) {
    Write(Key(option), answer);
    return *this;
}

ToolDouble& ToolDouble::PlaysOtherwise(const ToolAnswer& answer) {
    Write("default", answer);
    return *this;
}

void ToolDouble::Write(const std::string& key, const ToolAnswer& answer) {
    const auto set = [&](const char* kind, const std::optional<std::string>& text) {
        const fs::path file = directory_ / (key + kind);
        if (text) {
            WriteFile(file, *text);
        } else {
            fs::remove(file);
        }
    };
    const auto number = [](const auto& value) { return std::to_string(value); };
    const auto flag = [](bool on) { return on ? std::optional<std::string>("") : std::nullopt; };
    using Text = std::optional<std::string>;

    set(".out", answer.output_);
    set(".err", answer.errorText_);
    set(".exit", answer.exitCode_ ? Text(number(*answer.exitCode_)) : std::nullopt);
    set(".signal", answer.signal_ ? Text(number(*answer.signal_)) : std::nullopt);
    set(".delay", answer.delay_ ? Text(number(answer.delay_->count())) : std::nullopt);
    set(".held", flag(answer.held_));
    set(".release", std::nullopt);
    set(".report", flag(answer.reports_));
    set(".answer", "");
}

void ToolDouble::Release(const std::string& option) {
    const std::string key = Key(option);
    const bool own = fs::exists(directory_ / (key + ".answer"));
    WriteFile(directory_ / ((own ? key : "default") + ".release"), "");
}

std::vector<std::vector<std::string>> ToolDouble::Record() const {
    std::vector<std::vector<std::string>> record;
    std::ifstream in(directory_ / "calls", std::ios::binary);
    std::string line;
    while (std::getline(in, line)) {
        record.push_back(Arguments(line));
    }
    return record;
}

std::vector<std::vector<std::string>> ToolDouble::Calls() const {
    std::vector<std::vector<std::string>> calls = Record();
    for (auto& call : calls) {
        call.erase(call.begin());
    }
    return calls;
}

std::vector<std::string> ToolDouble::ShellCommands() const {
    std::vector<std::string> commands;
    for (const auto& call : Record()) {
        commands.push_back(call.front());
    }
    return commands;
}

std::vector<std::string> ToolDouble::CommandLines() const {
    std::vector<std::string> lines;
    for (const auto& call : Calls()) {
        std::string line;
        for (const auto& argument : call) {
            line += (line.empty() ? "" : " ") + argument;
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

bool ToolDouble::WaitForCalls(std::size_t count, std::chrono::milliseconds limit) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + limit;
    const int watch = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (watch < 0 || inotify_add_watch(watch, directory_.c_str(), IN_CREATE | IN_MODIFY) < 0) {
        throw std::runtime_error("cannot watch " + directory_.string());
    }
    bool reached = Calls().size() >= count;
    while (!reached && Clock::now() < end) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        pollfd changed{watch, POLLIN, 0};
        poll(&changed, 1, static_cast<int>(left.count()) + 1);
        char events[4096];
        while (read(watch, events, sizeof events) > 0) {
        }
        reached = Calls().size() >= count;
    }
    close(watch);
    return reached;
}

void ToolDouble::ForgetCalls() {
    fs::remove(directory_ / "calls");
}

ToolReport ToolDouble::Report() const {
    ToolReport report;
    std::istringstream in(ReadFile(directory_ / "report"));
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "fd") {
            int number = 0;
            fields >> number;
            fields.get(); // the blank between number and target
            std::getline(fields, report.descriptors[number]);
        } else if (kind == "SigBlk:") {
            fields >> std::hex >> report.blockedSignals;
        } else if (kind == "SigIgn:") {
            fields >> std::hex >> report.ignoredSignals;
        }
    }
    return report;
}

void ToolDouble::TakeToolAway() {
    fs::remove(toolPath);
}

void ToolDouble::MakeToolNotExecutable() {
    fs::remove(toolPath);
    WriteFile(toolPath, "no program\n");
}

void ToolDouble::RestoreTool() {
    fs::remove(toolPath);
    fs::create_symlink(tool_, toolPath);
}

} // namespace test_support
