#include "patchkeeper/PartialCopy.hpp"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

struct Origin {
    std::string url;
    std::string version;
};

fs::path DataFile(const State& state) {
    return state.BundleDirectory() / "partial";
}

fs::path OriginFile(const State& state) {
    return state.BundleDirectory() / "partial.origin";
}

std::string OneLine(std::string text) {
    for (char& letter : text) {
        letter = letter == '\n' ? ' ' : letter;
    }
    return text;
}

std::optional<Origin> ReadOrigin(const State& state) {
    std::ifstream in(OriginFile(state));
    Origin origin;
    if (std::getline(in, origin.url) && std::getline(in, origin.version) && !in.eof()) {
        return origin;
    }
    return std::nullopt;
}

void WriteOrigin(const State& state, const RemoteFile& file) {
    const fs::path place = OriginFile(state);
    const fs::path draft = place.string() + ".new";
    std::error_code error;
    std::ofstream out(draft, std::ios::trunc);
    if (out << OneLine(file.url) << '\n' << OneLine(file.version) << '\n' << std::flush) {
        fs::rename(draft, place, error);
    } else {
        error = std::make_error_code(std::errc::io_error);
    }
    if (error) {
        throw StateProblem(place.string() + " cannot be written: " + error.message());
    }
}

std::optional<std::uint64_t> SizeOfFile(const fs::path& file) {
    struct stat status {};
    if (lstat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(status.st_size);
}

void RefuseTooLarge(const RemoteFile& file, std::uint64_t limit) {
    if (limit != 0 && file.size > limit) {
        throw Refused(file.url + " has " + std::to_string(file.size) + " bytes, more than the " +
                      std::to_string(limit) + " of size_limit");
    }
}

} // namespace

PartialCopy::PartialCopy(const State& state, const RemoteFile& file, std::uint64_t limit,
                         CopyProgress progress)
    : state_(state), data_(DataFile(state)), limit_(limit), progress_(std::move(progress)),
      out_(-1) {
    RefuseTooLarge(file, limit);
    const auto origin = ReadOrigin(state_);
    const auto size = SizeOfFile(data_);
    const bool isSame = origin && size && !file.version.empty() &&
                        origin->url == OneLine(file.url) &&
                        origin->version == OneLine(file.version) &&
                        (file.size == 0 || *size <= file.size) && (limit == 0 || *size <= limit);
    if (!isSame) {
        Discard(state_);
        return;
    }
    out_ = Descriptor(open(data_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW));
    if (out_.Number() < 0) {
        Discard(state_);
        return;
    }
    size_ = *size;
}

void PartialCopy::StartAnew(const RemoteFile& file) {
    Discard();
    size_ = 0;
    RefuseTooLarge(file, limit_);
    WriteOrigin(state_, file);
    out_ = Descriptor(
        open(data_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (out_.Number() < 0) {
        throw StateProblem(data_.string() +
                           " cannot be written: " + std::generic_category().message(errno));
    }
}

void PartialCopy::Begin(std::uint64_t position, const RemoteFile& file) {
    if (position == 0) {
        StartAnew(file);
    } else if (position != size_ || out_.Number() < 0) {
        Discard();
        throw FileFailed(file.url + " cannot be continued: the server sends another part");
    }
}

void PartialCopy::Take(std::string_view bytes) {
    if (limit_ != 0 && bytes.size() > limit_ - size_) {
        Discard();
        throw Refused("the server sends more than the " + std::to_string(limit_) +
                      " bytes of size_limit");
    }
    while (!bytes.empty()) {
        const ssize_t written = write(out_.Number(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            const int error = errno;
            Discard(); // the room may be needed
            throw StateProblem(data_.string() +
                               " cannot be written: " + std::generic_category().message(error));
        }
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            size_ += static_cast<std::uint64_t>(written);
        }
    }
    progress_(size_);
}

void PartialCopy::Finish() {
    if (out_.Number() >= 0 && fsync(out_.Number()) != 0) {
        const int error = errno;
        Discard();
        throw StateProblem(data_.string() +
                           " cannot be written: " + std::generic_category().message(error));
    }
    out_.Close();
}

void PartialCopy::Discard() noexcept {
    out_.Close();
    Discard(state_);
}

std::optional<std::string> PartialCopy::UrlOf(const State& state) {
    const auto origin = ReadOrigin(state);
    return origin && SizeOfFile(DataFile(state)) ? std::optional(origin->url) : std::nullopt;
}

bool PartialCopy::IsPartOfOne(const State& state, const fs::path& file) {
    return (file == DataFile(state) || file == OriginFile(state)) && UrlOf(state);
}

// The origin first: without it nobody takes the data for the beginning of anything.
void PartialCopy::Discard(const State& state) noexcept {
    unlink(OriginFile(state).c_str());
    unlink(DataFile(state).c_str());
}

} // namespace patchkeeper
