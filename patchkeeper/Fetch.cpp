#include "patchkeeper/Fetch.hpp"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "patchkeeper/Intake.hpp"
#include "patchkeeper/LocalSource.hpp"
#include "patchkeeper/ProgressBar.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/RemoteSource.hpp"

namespace patchkeeper {

namespace {

struct FetchCodes {
    ExitCode failed;
    ExitCode nothingFound;
};

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

Outcome TakeAllIn(BundleSource& source, const std::vector<Candidate>& candidates, Intake& intake,
                  Operation& operation, std::ostream& notes) {
    std::uint64_t total = 0;
    for (const auto& candidate : candidates) {
        total += candidate.size;
    }
    Outcome outcome;
    std::uint64_t before = 0; // of the bundles that are done
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const std::string text = "fetching " + candidates[i].name;
        operation.Progress(before, total, text);
        try {
            const Taken taken = source.Take(i, intake, operation, [&](std::uint64_t done) {
                operation.Progress(std::min(before + done, total), total, text);
            });
            outcome.taken.push_back(SentenceOf(taken));
            if (!taken.faults.empty()) {
                notes << "patchkeeper: note: " << FieldText(outcome.taken.back()) << ".\n";
            }
        } catch (const Refused& refused) {
            outcome.refused.emplace_back(refused.what());
        }
        before += candidates[i].size;
    }
    operation.Progress(total, total, "fetched");
    return outcome;
}

std::string Work(BundleSource& source, Intake& intake, Operation& operation,
                 const FetchCodes& codes, std::ostream& notes) {
    const BundleSource::Found found = source.Find();
    if (found.candidates.empty()) {
        throw Failure(codes.nothingFound, "there is no update bundle in " + source.Name());
    }
    const Outcome outcome = TakeAllIn(source, found.candidates, intake, operation, notes);
    if (outcome.refused.empty()) {
        return Outcome::Joined(outcome.taken);
    }
    const std::string refused = Outcome::Joined(outcome.refused);
    throw Failure(codes.failed, found.candidates.size() == 1
                                    ? refused
                                    : std::to_string(outcome.refused.size()) + " of " +
                                          std::to_string(found.candidates.size()) +
                                          " bundles could not be taken in: " + refused);
}

void Fetch(const State& state, const Settings& settings, BundleSource& source,
           const Messages& messages, const FetchCodes& codes) {
    Store store = OrFailMark(state, [&] { return state.OpenOrMake(settings); });
    Operation operation = OrFailMark(state, [&] {
        return Operation(state, store, settings,
                         {"fetch", "fetching from " + source.Name(), "", ""}, messages.notes);
    });
    ProgressBar bar(messages.out, messages.toPerson);
    operation.Watch([&](std::uint64_t done, std::uint64_t total) { bar.Show(done, total); });
    std::string result;
    try {
        Intake intake(state, store, settings);
        result = Work(source, intake, operation, codes, messages.notes);
    } catch (const Unavailable& unavailable) {
        operation.FailQuietly(unavailable.what());
        throw Failure(codes.failed, unavailable.what());
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

void FetchFromHere(const State& state, const std::string& path, const Messages& messages,
                   const FetchCodes& codes) {
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    LocalSource source(path);
    Fetch(state, settings, source, messages, codes);
}

ExitCode CodeOf(Protocol protocol) {
    switch (protocol) {
    case Protocol::Ftp:
        return ExitCode::FtpFailed;
    case Protocol::Http:
        return ExitCode::HttpFailed;
    case Protocol::Https:
        return ExitCode::HttpsFailed;
    case Protocol::Smb:
        return ExitCode::SambaFailed;
    }
    return ExitCode::General;
}

bool IsFileUrl(std::string_view url) {
    return url.starts_with("file:");
}

} // namespace

void FetchFromUsb(const State& state, const std::string& path, const Messages& messages) {
    FetchFromHere(state, path, messages, {ExitCode::UsbFailed, ExitCode::NoLocalUpdatesFound});
}

void FetchFromDisk(const State& state, const std::string& path, const Messages& messages) {
    FetchFromHere(state, path, messages, {ExitCode::DownloadFailed, ExitCode::NoLocalUpdatesFound});
}

void FetchFromElementManager(const State& state, const Messages& messages) {
    const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
    std::optional<Place> place;
    std::unique_ptr<BundleSource> source;
    OrFailMark(state, [&] {
        if (settings.emUrl.empty()) {
            throw Failure(ExitCode::DownloadFailed,
                          "em_url is not set in " + state.SettingsFile().string());
        }
        try {
            if (IsFileUrl(settings.emUrl)) {
                source = std::make_unique<LocalSource>(PathOfFileUrl(settings.emUrl));
            } else {
                place = PlaceOfUrl(settings.emUrl);
                source = std::make_unique<RemoteSource>(state, settings, *place);
            }
        } catch (const NoPlace& noPlace) { // the URL itself may hold a password
            throw Failure(ExitCode::DownloadFailed, std::string("em_url: ") + noPlace.what());
        }
    });
    Fetch(state, settings, *source, messages, {ExitCode::DownloadFailed, ExitCode::NoUpdatesFound});
}

void FetchFromServer(const State& state, Protocol protocol, const ServerWords& words,
                     const Messages& messages) {
    const ExitCode code = CodeOf(protocol);
    try {
        const Settings settings = OrFailMark(state, [&] { return state.Settings(); });
        const Place place = OrFailMark(
            state, [&] { return PlaceOf(protocol, words.address, words.credentials, words.path); });
        RemoteSource source(state, settings, place);
        Fetch(state, settings, source, messages, {code, ExitCode::NoUpdatesFound});
    } catch (const NoPlace& noPlace) {
        throw Failure(code, noPlace.what());
    } catch (const StateProblem& problem) {
        throw Failure(code, problem.what());
    }
}

std::string PathOfFileUrl(const std::string& url) {
    const NoPlace noPath("a file: URL names a file or directory of this machine (file:///PATH)");
    std::string_view rest = url;
    if (!IsFileUrl(rest)) {
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
    if (!rest.starts_with('/')) {
        throw noPath;
    }
    return WithoutPercents(std::string(rest));
}

} // namespace patchkeeper
