#include "patchkeeper/Intake.hpp"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/BundleStates.hpp"
#include "patchkeeper/Descriptor.hpp"
#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t copyPiece = 256U << 10U;

[[noreturn]] void ThrowCannot(const std::string& done, const fs::path& file, int error) {
    throw Refused(file.string() + " cannot be " + done + ": " +
                  std::generic_category().message(error));
}

// Removes a file unless told that it is to stay.
class Draft {
public:
    explicit Draft(fs::path file) : file_(std::move(file)) {}
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() { unlink(file_.c_str()); }

    const fs::path& File() const { return file_; }

private:
    fs::path file_;
};

Descriptor OpenSource(const fs::path& source, std::uint64_t limit) {
    Descriptor file(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (file.Number() < 0 || fstat(file.Number(), &status) != 0) {
        ThrowCannot("read", source, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw Refused(source.string() + " is not a file");
    }
    if (limit != 0 && static_cast<std::uint64_t>(status.st_size) > limit) {
        throw Refused(source.string() + " has " + std::to_string(status.st_size) +
                      " bytes, more than the " + std::to_string(limit) + " of size_limit");
    }
    return file;
}

void WritePiece(int target, const char* data, std::size_t size, const fs::path& file) {
    while (size > 0) {
        const ssize_t written = write(target, data, size);
        if (written < 0 && errno != EINTR) {
            ThrowCannot("written", file, errno);
        }
        if (written > 0) {
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
}

void Copy(const fs::path& source, const fs::path& target, std::uint64_t limit,
          const CopyProgress& progress) {
    const Descriptor in = OpenSource(source, limit);
    const Descriptor out(open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (out.Number() < 0) {
        ThrowCannot("written", target, errno);
    }
    std::vector<char> piece(copyPiece);
    std::uint64_t done = 0;
    for (;;) {
        const ssize_t got = read(in.Number(), piece.data(), piece.size());
        if (got == 0) {
            break;
        }
        if (got < 0 && errno != EINTR) {
            ThrowCannot("read", source, errno);
        }
        const auto size = static_cast<std::size_t>(std::max<ssize_t>(0, got));
        done += size;
        if (limit != 0 && done > limit) {
            throw Refused(source.string() + " has grown beyond size_limit");
        }
        WritePiece(out.Number(), piece.data(), size, target);
        progress(done);
    }
    if (fsync(out.Number()) != 0) {
        ThrowCannot("written", target, errno);
    }
}

void SyncDirectory(const fs::path& directory) {
    const Descriptor file(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.Number() < 0 || fsync(file.Number()) != 0) {
        ThrowCannot("written", directory, errno);
    }
}

bool HaveSameContent(const fs::path& one, const fs::path& other) {
    std::ifstream first(one, std::ios::binary);
    std::ifstream second(other, std::ios::binary);
    std::vector<char> a(copyPiece);
    std::vector<char> b(copyPiece);
    do {
        first.read(a.data(), static_cast<std::streamsize>(a.size()));
        second.read(b.data(), static_cast<std::streamsize>(b.size()));
        if (first.bad() || second.bad() || first.gcount() != second.gcount() ||
            !std::equal(a.begin(), a.begin() + first.gcount(), b.begin())) {
            return false;
        }
    } while (first && second);
    return first.eof() && second.eof();
}

// By name, dash and version in one text an update must be told from every other.
void RefuseAmbiguous(Store& store, const Manifest& manifest) {
    const auto refuse = [&](const std::string& name, const std::string& version) {
        if (name != manifest.name) {
            throw Refused(manifest.name + ' ' + manifest.version + " cannot be told from " + name +
                          ' ' + version + ", which is here already");
        }
    };
    const std::string address = manifest.name + '-' + manifest.version;
    if (const auto bundle = store.FindBundle(address)) {
        refuse(bundle->name, bundle->version);
    }
    if (const auto applied = store.FindApplied(address)) {
        refuse(applied->name, applied->version);
    }
}

// One operation may take in the same update twice, a bad copy and then a good one.
std::string FreeName(const fs::path& directory, const std::string& stem) {
    std::string name = stem + ".tar.gz";
    for (int i = 2; fs::exists(fs::symlink_status(directory / name)); ++i) {
        name = stem + '.' + std::to_string(i) + ".tar.gz";
    }
    return name;
}

std::string Joined(const std::vector<std::string>& faults) {
    std::string text;
    for (const auto& fault : faults) {
        text += (text.empty() ? "" : "; ") + fault;
    }
    return text;
}

// Calls a function of the bundle library for a copy; its failure is a refusal of the source.
template <typename Call>
auto AsRefusal(const std::string& source, const fs::path& copy, Call call) {
    try {
        return call();
    } catch (const Failure& failure) {
        std::string reason = failure.what();
        const auto found = reason.find(copy.string());
        if (found != std::string::npos) {
            reason.replace(found, copy.string().size(), source);
        }
        throw Refused(reason);
    }
}

} // namespace

Trust TrustOf(const Settings& settings) {
    Trust trust;
    trust.allowUnsigned = settings.allowUnsigned;
    for (const auto& file : settings.trustedKeys) {
        try {
            trust.keys.push_back(ReadPublicKey(file));
        } catch (const Failure& failure) {
            throw StateProblem(std::string("trusted_keys: ") + failure.what());
        }
    }
    return trust;
}

BundleLimits LimitsOf(const Settings& settings) {
    BundleLimits limits;
    if (settings.sizeLimit != 0) {
        limits.totalBytes = std::min(limits.totalBytes, settings.sizeLimit);
    }
    return limits;
}

Intake::Intake(const State& state, Store& store, const Settings& settings)
    : state_(state), store_(store), settings_(settings), trust_(TrustOf(settings)) {
}

Taken Intake::TakeIn(const fs::path& source, const Operation& operation,
                     const CopyProgress& progress) {
    const Draft draft(state_.BundleDirectory() / "incoming");
    Copy(source, draft.File(), settings_.sizeLimit, progress);
    return TakeInDraft(draft.File(), source.string(), operation);
}

Taken Intake::TakeInDraft(const fs::path& file, const std::string& source,
                          const Operation& operation) {
    const Draft draft(file);
    const BundleLimits limits = LimitsOf(settings_);
    const Manifest manifest =
        AsRefusal(source, draft.File(), [&] { return ReadManifest(draft.File(), limits); });
    RefuseAmbiguous(store_, manifest);

    HeldBundle bundle;
    if (const auto held = store_.FindBundle(manifest.name, manifest.version)) {
        const BundleStates states(store_, state_.BundleDirectory());
        if (states.Of(*held) != bundle_state::invalid) {
            if (!HaveSameContent(state_.BundleDirectory() / held->file, draft.File())) {
                throw Refused(source + " is " + manifest.name + ' ' + manifest.version +
                              ", which is held already with other content");
            }
            return {Taken::How::HeldAlready, manifest.name, manifest.version, ""};
        }
        bundle.id = held->id;
    }
    bundle.file = FreeName(state_.BundleDirectory(), manifest.name + '@' + manifest.version + '.' +
                                                         std::to_string(operation.Number()));
    bundle.location = source;
    bundle.takenIn = std::time(nullptr);
    bundle.faults = Joined(
        AsRefusal(source, draft.File(), [&] { return FaultsOf(draft.File(), trust_, limits); }));
    Taken taken{Taken::How::Added, manifest.name, manifest.version, bundle.faults};
    Record(manifest, bundle, draft.File());
    return taken;
}

void Intake::Record(const Manifest& manifest, const HeldBundle& bundle,
                    const fs::path& copy) const {
    const fs::path place = state_.BundleDirectory() / bundle.file;
    std::error_code error;
    fs::rename(copy, place, error);
    if (error) {
        ThrowCannot("written", place, error.value());
    }
    SyncDirectory(state_.BundleDirectory());
    const auto replaced = store_.FindBundle(manifest.name, manifest.version);
    try {
        Transaction transaction = store_.Begin(Transaction::Kind::Write);
        if (replaced) {
            store_.RemoveForReplacement(replaced->id);
        }
        store_.AddBundle(manifest, bundle);
        transaction.Commit();
    } catch (const StateProblem&) {
        fs::remove(place, error);
        throw;
    }
    if (replaced) {
        fs::remove(state_.BundleDirectory() / replaced->file,
                   error); // else the next one removes it
    }
}

} // namespace patchkeeper
