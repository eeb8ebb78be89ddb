#include "patchkeeper/Fetch.hpp"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Intake.hpp"
#include "patchkeeper/ProgressBar.hpp"
#include "patchkeeper/Record.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view bundleSuffix = ".tar.gz";

struct FetchCodes {
    ExitCode failed;
    ExitCode nothingFound;
};

// One bundle that may be taken in.
struct Candidate {
    fs::path file;
    std::uint64_t size = 0;
};

bool IsBundleName(const fs::path& file) {
    const std::string name = file.filename().string();
    return name.size() > bundleSuffix.size() && name.ends_with(bundleSuffix);
}

Failure CannotRead(const fs::path& path, const std::error_code& error, ExitCode code) {
    return {code, path.string() + " cannot be read: " + error.message()};
}

std::uint64_t SizeOf(const fs::path& file) {
    std::error_code ignored; // what cannot be read is refused when it is its turn
    const std::uintmax_t size = fs::file_size(file, ignored);
    return ignored ? 0 : size;
}

std::vector<Candidate> BundlesIn(const fs::path& directory, const FetchCodes& codes) {
    std::vector<Candidate> found;
    std::error_code error;
    for (fs::directory_iterator i(directory, error), end; !error && i != end; i.increment(error)) {
        std::error_code ignored;
        if (IsBundleName(i->path()) && !i->is_directory(ignored)) {
            found.push_back({i->path(), SizeOf(i->path())});
        }
    }
    if (error) {
        throw CannotRead(directory, error, codes.failed);
    }
    if (found.empty()) {
        throw Failure(codes.nothingFound, "there is no update bundle in " + directory.string());
    }
    std::sort(found.begin(), found.end(),
              [](const Candidate& one, const Candidate& other) { return one.file < other.file; });
    return found;
}

std::vector<Candidate> BundlesAt(const fs::path& path, const FetchCodes& codes) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) {
        throw CannotRead(path,
                         error ? error : std::make_error_code(std::errc::no_such_file_or_directory),
                         codes.failed);
    }
    if (fs::is_directory(status)) {
        return BundlesIn(path, codes);
    }
    return {{path, SizeOf(path)}};
}

// What became of the bundles of one fetch.
struct Outcome {
    std::vector<std::string> taken; // a sentence without a full stop for each
    std::vector<std::string> refused;

    static std::string Joined(const std::vector<std::string>& texts) {
        std::string all;
        for (const auto& text : texts) {
            all += (all.empty() ? "" : "; ") + text;
        }
        return all;
    }
};

std::string SentenceOf(const Taken& taken) {
    const std::string update = taken.name + ' ' + taken.version;
    if (taken.how == Taken::How::HeldAlready) {
        return update + " is held already";
    }
    return update + (taken.faults.empty() ? " has been taken in"
                                          : " has been taken in but is not valid: " + taken.faults);
}

Outcome TakeAllIn(Intake& intake, Operation& operation, const std::vector<Candidate>& candidates,
                  std::ostream& notes) {
    std::uint64_t total = 0;
    for (const auto& candidate : candidates) {
        total += candidate.size;
    }
    Outcome outcome;
    std::uint64_t before = 0; // of the bundles that are done
    for (const auto& candidate : candidates) {
        const std::string text = "fetching " + candidate.file.filename().string();
        operation.Progress(before, total, text);
        try {
            const Taken taken = intake.TakeIn(
                candidate.file, candidate.file.string(), operation, [&](std::uint64_t done) {
                    operation.Progress(std::min(before + done, total), total, text);
                });
            outcome.taken.push_back(SentenceOf(taken));
            if (!taken.faults.empty()) {
                notes << "patchkeeper: note: " << FieldText(outcome.taken.back()) << ".\n";
            }
        } catch (const Refused& refused) {
            outcome.refused.emplace_back(refused.what());
        }
        before += candidate.size;
    }
    operation.Progress(total, total, "fetched");
    return outcome;
}

std::string Work(const State& state, Store& store, const Settings& settings, Operation& operation,
                 const fs::path& path, const FetchCodes& codes, std::ostream& notes) {
    const std::vector<Candidate> candidates = BundlesAt(path, codes);
    Intake intake(state, store, settings);
    const Outcome outcome = TakeAllIn(intake, operation, candidates, notes);
    if (outcome.refused.empty()) {
        return Outcome::Joined(outcome.taken);
    }
    const std::string refused = Outcome::Joined(outcome.refused);
    throw Failure(codes.failed, candidates.size() == 1
                                    ? refused
                                    : std::to_string(outcome.refused.size()) + " of " +
                                          std::to_string(candidates.size()) +
                                          " bundles could not be taken in: " + refused);
}

void Fetch(const State& state, const Settings& settings, const std::string& from,
           const Messages& messages, const FetchCodes& codes) {
    const fs::path path = fs::absolute(from);
    Store store = OrFailMark(state, [&] { return state.OpenOrMake(settings); });
    Operation operation = OrFailMark(state, [&] {
        return Operation(state, store, settings,
                         {"fetch", "fetching from " + path.string(), "", ""}, messages.notes);
    });
    ProgressBar bar(messages.out, messages.toPerson);
    operation.Watch([&](std::uint64_t done, std::uint64_t total) { bar.Show(done, total); });
    std::string result;
    try {
        result = Work(state, store, settings, operation, path, codes, messages.notes);
    } catch (const std::exception& error) {
        operation.FailQuietly(error.what());
        throw;
    }
    operation.Succeed(result);
    bar.Clear();
    if (messages.toPerson) {
        messages.out << FieldText(result) << ".\n";
    }
}

int HexDigit(char letter) {
    constexpr std::string_view digits = "0123456789abcdef";
    const char lower =
        letter >= 'A' && letter <= 'F' ? static_cast<char>(letter - 'A' + 'a') : letter;
    const std::size_t value = digits.find(lower);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

} // namespace

void FetchFromUsb(const State& state, const std::string& path, const Messages& messages) {
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    Fetch(state, settings, path, messages, {ExitCode::UsbFailed, ExitCode::NoLocalUpdatesFound});
}

void FetchFromDisk(const State& state, const std::string& path, const Messages& messages) {
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    Fetch(state, settings, path, messages,
          {ExitCode::DownloadFailed, ExitCode::NoLocalUpdatesFound});
}

void FetchFromElementManager(const State& state, const Messages& messages) {
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    const std::string path = OrFailMark(state, [&] {
        if (settings.emUrl.empty()) {
            throw Failure(ExitCode::DownloadFailed,
                          "em_url is not set in " + state.SettingsFile().string());
        }
        return PathOfFileUrl(settings.emUrl);
    });
    Fetch(state, settings, path, messages, {ExitCode::DownloadFailed, ExitCode::NoUpdatesFound});
}

std::string PathOfFileUrl(const std::string& url) {
    const Failure noPath(ExitCode::DownloadFailed,
                         "em_url: '" + url +
                             "' names no file or directory of this "
                             "machine (file:///PATH), and nothing else is "
                             "offered by this version");
    std::string_view rest = url;
    if (!rest.starts_with("file:")) {
        throw noPath;
    }
    rest.remove_prefix(5);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const auto host = rest.substr(0, rest.find('/'));
        if (!host.empty() && host != "localhost") {
            throw noPath;
        }
        rest.remove_prefix(host.size());
    }
    std::string path;
    while (!rest.empty()) {
        char letter = rest.front();
        std::size_t length = 1;
        if (letter == '%') {
            const int high = rest.size() > 2 ? HexDigit(rest[1]) : -1;
            const int low = rest.size() > 2 ? HexDigit(rest[2]) : -1;
            if (high < 0 || low < 0 || high + low == 0) {
                throw noPath;
            }
            letter = static_cast<char>(high * 16 + low);
            length = 3;
        }
        path += letter;
        rest.remove_prefix(length);
    }
    if (path.empty() || path.front() != '/') {
        throw noPath;
    }
    return path;
}

} // namespace patchkeeper
