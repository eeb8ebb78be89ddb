#include "patchkeeper/CommandLine.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "patchkeeper/Commands.hpp"
#include "patchkeeper/ErrorTexts.hpp"
#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Intake.hpp"
#include "patchkeeper/Lists.hpp"
#include "patchkeeper/Operation.hpp"
#include "patchkeeper/Owner.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/bundle/Commands.hpp"

namespace patchkeeper {

namespace {

const std::string humanOption = "--human";

// Where a command can print.
struct Output {
    std::ostream& out;
    std::ostream& err;
    bool toPerson;
};

int CodeNumber(const std::string& text) {
    int code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw Failure(ExitCode::Usage, "--errors: '" + text + "' is not an exit code");
    }
    return code;
}

std::string CommandHelp() {
    constexpr std::size_t column = 39;
    std::string text = "Commands, one at a time:\n";
    for (const auto& command : Commands()) {
        std::string line = "  " + std::string(command.name);
        line += (command.arguments.empty() ? "" : " ") + std::string(command.arguments);
        line += line.size() < column ? std::string(column - line.size(), ' ') : "  ";
        text += line.append(command.help) + '\n';
    }
    return text + "  bundle DIR [-o FILE] [--key FILE]    Make a bundle of a directory\n"
                  "  check FILE                           Check a bundle and name every fault\n"
                  "An empty USER logs in as nobody; PATH may begin with the port, as in :8080/x.";
}

// A problem of the state becomes the failure of just this command.
template <typename Run>
ExitCode WithCode(ExitCode code, Run run) {
    try {
        return run();
    } catch (const StateProblem& problem) {
        throw Failure(code, problem.what());
    } catch (const std::filesystem::filesystem_error& error) { // the working directory is gone
        throw Failure(code, error.what());
    }
}

ExitCode MarkOperation() {
    const State state = State::OfEnvironment();
    ActAsOwnerOf(state.Root());
    Store store = state.OpenOrMake(state.Settings());
    MarkInProgress(state, store);
    return ExitCode::Ok;
}

ExitCode Inventory(const Output& output, bool table) {
    const State state = State::OfEnvironment();
    ActAsOwnerOf(state.Root());
    ListInventory(state, {output.out, table});
    return ExitCode::Ok;
}

ExitCode RunOptions(const Arguments& arguments, bool table, const Output& output) {
    CLI::App app(
        "Lists the software that is installed on this machine: one line per package with name,\n"
        "version, classification and date of installation, separated by tabs. With a command it\n"
        "takes in, lists, applies, takes back and schedules updates; all that it keeps is in\n"
        "$PATCHKEEPER_ROOT (default /var/lib/patchkeeper).",
        "patchkeeper");
    std::string code;
    bool mark = false;
    bool human = table;
    app.set_version_flag("--version", std::string("patchkeeper ") + PATCHKEEPER_VERSION);
    auto* errors = app.add_option("--errors", code, "Say in a sentence what an exit code means")
                       ->type_name("CODE");
    app.add_flag("--setinprogress", mark, "Mark that an operation is about to run")
        ->excludes(errors);
    app.add_flag(humanOption, human,
                 "Before or behind a list: a table with headings, on a terminal");
    app.footer(CommandHelp());
    try {
        app.parse(Arguments(arguments.rbegin(), arguments.rend())); // CLI11 takes the last first
    } catch (const CLI::ParseError& error) {
        return app.exit(error, output.out, output.err) == 0 ? ExitCode::Ok : ExitCode::Usage;
    }
    if (*errors) {
        output.out << ErrorText(CodeNumber(code)) << '\n';
        return ExitCode::Ok;
    }
    return mark ? WithCode(ExitCode::SoftwareUpdateFailed, MarkOperation)
                : WithCode(ExitCode::General,
                           [&] { return Inventory(output, human && output.toPerson); });
}

bool HasName(const Command& command, const std::string& name) {
    return command.name == name;
}

// The command of that name and number of arguments. Throws Failure (Usage) when the name is there
// with other numbers only; null when the name is no command's.
const Command* Find(const std::string& name, std::size_t arguments) {
    std::string usage;
    bool mayBeMarked = false;
    for (const auto& command : Commands()) {
        if (!HasName(command, name)) {
            continue;
        }
        if (arguments >= command.least && arguments <= command.most) {
            return &command;
        }
        mayBeMarked = mayBeMarked || command.kind == Command::Kind::Operation;
        usage += (usage.empty() ? "" : " or ") + name + (command.arguments.empty() ? "" : " ") +
                 std::string(command.arguments);
    }
    if (usage.empty()) {
        return nullptr;
    }
    if (mayBeMarked) {
        FailMark(State::OfEnvironment(), "the command line of " + name + " was wrong");
    }
    throw Failure(ExitCode::Usage, "the command is: " + usage);
}

bool IsList(const std::string& name) {
    return std::any_of(Commands().begin(), Commands().end(), [&](const Command& command) {
        return HasName(command, name) && command.kind == Command::Kind::List;
    });
}

// Takes --human off the command line, where it may stand before a command or behind a list.
bool TakeHuman(Arguments& arguments) {
    const auto size = arguments.size();
    if (size > 1 && arguments.front() == humanOption) {
        arguments.erase(arguments.begin());
    } else if (size > 1 && arguments.back() == humanOption && IsList(arguments.front())) {
        arguments.pop_back();
    }
    return arguments.size() != size;
}

ExitCode CheckOrMakeBundle(const Arguments& arguments, const Output& output) {
    const auto trust = [] { return TrustOf(State::OfEnvironment().Settings()); };
    return WithCode(ExitCode::SoftwareUpdateFailed,
                    [&] { return RunBundleCommand(arguments, trust, output.out, output.err); });
}

ExitCode Run(Arguments arguments, const Output& output) {
    const bool table = TakeHuman(arguments);
    if (IsBundleCommand(arguments)) {
        return CheckOrMakeBundle(arguments, output);
    }
    const Command* command = arguments.empty() ? nullptr : Find(arguments[0], arguments.size() - 1);
    if (command == nullptr) {
        return RunOptions(arguments, table, output);
    }
    return WithCode(command->code, [&] {
        const State state = State::OfEnvironment();
        ActAsOwnerOf(state.Root());
        const CommandContext context{state, output.out, output.err, table && output.toPerson,
                                     output.toPerson};
        const ExitCode code =
            command->run(context, Arguments(arguments.begin() + 1, arguments.end()));
        if (!output.out.flush()) {
            throw Failure(command->code, "the answer cannot be written");
        }
        return code;
    });
}

ExitCode RunAndFlush(const Arguments& arguments, const Output& output) {
    const ExitCode code = Run(arguments, output);
    if (!output.out.flush()) {
        throw Failure(ExitCode::General, "the answer cannot be written");
    }
    return code;
}

} // namespace

Arguments TakeArguments(int argumentCount, char* const* arguments) {
    Arguments taken(arguments + std::min(argumentCount, 1), arguments + argumentCount);
    for (const auto& command : Commands()) {
        if (!taken.empty() && HasName(command, taken[0]) && command.password != 0 &&
            command.password < taken.size()) {
            char* const password = arguments[1 + command.password];
            std::fill_n(password, std::strlen(password), '\0');
        }
    }
    return taken;
}

int RunCommand(const Arguments& arguments, std::ostream& out, std::ostream& err) {
    const bool toPerson = isatty(STDOUT_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
    try {
        return static_cast<int>(RunAndFlush(arguments, {out, err, toPerson}));
    } catch (const Failure& failure) {
        out.flush();
        err << "patchkeeper: " << FieldText(failure.what())
            << ".\n"; // one line, whatever it quotes
        if (failure.Code() == ExitCode::Usage) {
            err << "Run with --help for more information.\n";
        }
        return static_cast<int>(failure.Code());
    }
}

} // namespace patchkeeper
