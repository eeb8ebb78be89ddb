#include "patchkeeper/RemoteSource.hpp"

#include <utility>

#include "patchkeeper/PartialCopy.hpp"

namespace patchkeeper {

namespace {

// Remembers whether the server has continued a copy.
class Continued : public Receiver {
public:
    explicit Continued(PartialCopy& copy) : copy_(copy) {}

    void Begin(std::uint64_t position, const RemoteFile& file) override {
        isContinued_ = position > 0;
        copy_.Begin(position, file);
    }
    void Take(std::string_view bytes) override { copy_.Take(bytes); }
    bool IsContinued() const { return isContinued_; }

private:
    PartialCopy& copy_;
    bool isContinued_ = false;
};

} // namespace

RemoteSource::RemoteSource(const State& state, const Settings& settings, const Place& place)
    : state_(state), settings_(settings), place_(place) {
}

BundleSource::Found RemoteSource::Find() {
    try {
        server_ = OpenServer(
            place_, {settings_.connectTimeout, settings_.transferTimeout, settings_.authorities});
        Server::Found there = server_->Find();
        files_ = std::move(there.files);
        Found found;
        found.isDirectory = there.isDirectory;
        for (const auto& file : files_) {
            found.candidates.push_back({file.name, file.size});
        }
        return found;
    } catch (const TransferFailed& failed) {
        throw Unavailable(failed.what());
    }
}

// A copy that was made in parts may have lost some when the machine went down: it gets another
// chance as a whole.
Taken RemoteSource::Take(std::size_t position, Intake& intake, const Operation& operation,
                         const CopyProgress& progress) {
    const RemoteFile& file = files_.at(position);
    try {
        const Attempt first = TryToTake(file, intake, operation, progress);
        return first.isGood || !first.isContinued
                   ? first.taken
                   : TryToTake(file, intake, operation, progress).taken;
    } catch (const FileFailed& failed) {
        throw Refused(failed.what());
    } catch (const TransferFailed& failed) {
        throw Unavailable(failed.what());
    }
}

RemoteSource::Attempt RemoteSource::TryToTake(const RemoteFile& file, Intake& intake,
                                              const Operation& operation,
                                              const CopyProgress& progress) {
    PartialCopy copy(state_, file, settings_.sizeLimit, progress);
    Attempt attempt;
    attempt.isContinued = copy.Size() > 0 && copy.Size() == file.size;
    if (!attempt.isContinued) {
        Continued receiver(copy);
        server_->Read(file, copy.Size(), receiver);
        attempt.isContinued = receiver.IsContinued();
    }
    copy.Finish();
    try {
        attempt.taken = intake.TakeInDraft(copy.File(), file.url, operation);
        attempt.isGood = attempt.taken.faults.empty();
    } catch (const Refused&) {
        if (!attempt.isContinued) {
            copy.Discard();
            throw;
        }
    }
    copy.Discard();
    return attempt;
}

} // namespace patchkeeper
