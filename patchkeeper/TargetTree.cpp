#include "patchkeeper/TargetTree.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t copyPiece = 64U << 10U;
constexpr mode_t directoryMode = 0755;
constexpr mode_t permissionBits = 07777;

[[noreturn]] void ThrowCannot(const std::string& done, const fs::path& file, int error) {
    throw StateProblem(file.string() + " cannot be " + done + ": " + bundle::SystemReason(error));
}

std::string DraftName(std::size_t position) {
    return std::string(TargetTree::draftPrefix) + std::to_string(position);
}

// The directories on the way to a file, the outermost first.
std::vector<std::string> DirectoriesTo(const std::string& path) {
    std::vector<std::string> directories;
    for (auto slash = path.find('/'); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        directories.push_back(path.substr(0, slash));
    }
    return directories;
}

std::string LastPart(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

Standing StandingOf(const struct stat& status) {
    Standing standing;
    standing.kind = Standing::Kind::File;
    standing.mode = status.st_mode & permissionBits;
    standing.size = static_cast<std::uint64_t>(status.st_size);
    return standing;
}

void Copy(int source, const fs::path& from, int target, const fs::path& to,
          const TargetTree::CopiedPiece& copied) {
    std::vector<char> piece(copyPiece);
    for (;;) {
        const long got = bundle::ReadSome(source, piece.data(), piece.size());
        if (got == 0) {
            return;
        }
        if (got < 0) {
            ThrowCannot("read", from, static_cast<int>(-got));
        }
        const auto size = static_cast<std::size_t>(got);
        if (const int error = bundle::WriteAll(target, {piece.data(), size}); error != 0) {
            ThrowCannot("written", to, error);
        }
        copied(size);
    }
}

Descriptor OpenOutside(const fs::path& file) {
    Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.Number() < 0) {
        ThrowCannot("read", file, errno);
    }
    return descriptor;
}

} // namespace

std::set<std::string> DirectoriesAbove(const std::set<std::string>& paths) {
    std::set<std::string> directories;
    for (const auto& path : paths) {
        const auto way = DirectoriesTo(path);
        directories.insert(way.begin(), way.end());
    }
    return directories;
}

TargetTree::TargetTree(fs::path root)
    : root_(std::move(root)), directory_(open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (directory_.Number() < 0) {
        ThrowCannot("used as the target", root_, errno);
    }
}

void TargetTree::MakeRoot(const fs::path& root) {
    std::error_code error;
    if (fs::create_directories(root, error) && !error) {
        fs::permissions(root, fs::perms{directoryMode}, error); // whatever the umask
    }
    if (error) {
        ThrowCannot("used as the target", root, error.value());
    }
}

void TargetTree::Throw(const std::string& done, const std::string& path, int error) const {
    ThrowCannot(done, root_ / path, error);
}

std::optional<Descriptor> TargetTree::Enter(int directory, const std::string& way) const {
    const std::string name = LastPart(way);
    Descriptor next(
        openat(directory, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (next.Number() >= 0) {
        return next;
    }
    const int error = errno;
    struct stat status {};
    if (error == ENOENT) {
        return std::nullopt;
    }
    if (fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISLNK(status.st_mode)) {
        throw StateProblem((root_ / way).string() +
                           " is a symbolic link, and none is followed below the target");
    }
    Throw("entered", way, error);
}

std::optional<TargetTree::Place> TargetTree::Find(const std::string& path) const {
    std::optional<Descriptor> directory(std::in_place,
                                        fcntl(directory_.Number(), F_DUPFD_CLOEXEC, 0));
    for (const auto& way : DirectoriesTo(path)) {
        auto next = Enter(directory->Number(), way);
        if (!next) {
            return std::nullopt;
        }
        directory.emplace(std::move(*next));
    }
    return Place{std::move(*directory), LastPart(path)};
}

Standing TargetTree::Look(const std::string& path) const {
    const auto place = Find(path);
    struct stat status {};
    if (!place || fstatat(place->directory.Number(), place->name.c_str(), &status,
                          AT_SYMLINK_NOFOLLOW) != 0) {
        if (place && errno != ENOENT) {
            Throw("looked at", path, errno);
        }
        return {};
    }
    if (S_ISREG(status.st_mode)) {
        return StandingOf(status);
    }
    if (!S_ISLNK(status.st_mode)) {
        throw StateProblem((root_ / path).string() +
                           (S_ISDIR(status.st_mode) ? " is a directory"
                                                    : " is neither a file nor a symbolic link") +
                           " and is not replaced");
    }
    std::array<char, PATH_MAX> text{};
    const ssize_t length =
        readlinkat(place->directory.Number(), place->name.c_str(), text.data(), text.size());
    if (length < 0) {
        Throw("read", path, errno);
    }
    Standing standing;
    standing.kind = Standing::Kind::Link;
    standing.link.assign(text.data(), static_cast<std::size_t>(length));
    return standing;
}

std::set<std::string> TargetTree::MissingDirectories(const std::set<std::string>& paths) const {
    std::set<std::string> missing;
    for (const auto& directory : DirectoriesAbove(paths)) {
        if (!Find(directory + '/')) {
            missing.insert(directory);
        }
    }
    return missing;
}

void TargetTree::MakeDirectory(const std::string& directory) const {
    const auto place = Find(directory);
    if (!place) {
        Throw("made", directory, ENOENT);
    }
    if (mkdirat(place->directory.Number(), place->name.c_str(), directoryMode) != 0) {
        if (errno != EEXIST) {
            Throw("made", directory, errno);
        }
        return;
    }
    const auto made = Enter(place->directory.Number(), directory);
    if (!made || fchmod(made->Number(), directoryMode) != 0) { // whatever the umask
        Throw("made", directory, errno);
    }
}

void TargetTree::RemoveIfEmpty(const std::string& directory) const {
    const auto place = Find(directory);
    if (place && unlinkat(place->directory.Number(), place->name.c_str(), AT_REMOVEDIR) != 0 &&
        errno != ENOENT && errno != ENOTEMPTY && errno != EEXIST) {
        Throw("removed", directory, errno);
    }
}

Descriptor TargetTree::OpenFile(const std::string& path) const {
    const auto place = Find(path);
    Descriptor file(place ? openat(place->directory.Number(), place->name.c_str(),
                                   O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)
                          : -1);
    if (file.Number() < 0) {
        Throw("read", path, place ? errno : ENOENT);
    }
    return file;
}

Standing TargetTree::Keep(const std::string& path, const fs::path& copy,
                          const CopiedPiece& copied) const {
    const Descriptor source = OpenFile(path);
    struct stat status {};
    if (fstat(source.Number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw StateProblem((root_ / path).string() + " changed while it was kept");
    }
    const Descriptor target(
        open(copy.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (target.Number() < 0) {
        ThrowCannot("written", copy, errno);
    }
    Copy(source.Number(), root_ / path, target.Number(), copy, copied);
    return StandingOf(status);
}

bool TargetTree::HasContentOf(const std::string& path, const fs::path& file) const {
    const Descriptor one = OpenFile(path);
    const Descriptor other = OpenOutside(file);
    std::vector<char> a(copyPiece);
    std::vector<char> b(copyPiece);
    for (;;) {
        const long got = bundle::ReadSome(one.Number(), a.data(), a.size());
        const long expected = bundle::ReadSome(other.Number(), b.data(), b.size());
        if (got < 0 || expected < 0) {
            Throw("read", path, static_cast<int>(got < 0 ? -got : -expected));
        }
        if (got != expected || !std::equal(a.begin(), a.begin() + got, b.begin())) {
            return false;
        }
        if (got == 0) {
            return true;
        }
    }
}

void TargetTree::Draft(std::size_t position, const std::string& path, const Standing& wanted,
                       const fs::path& source, const CopiedPiece& copied) const {
    if (wanted.kind == Standing::Kind::Nothing) {
        return;
    }
    const auto place = Find(path);
    if (!place) {
        Throw("written", path, ENOENT);
    }
    const int directory = place->directory.Number();
    const std::string name = DraftName(position);
    if (wanted.kind == Standing::Kind::Link) {
        if (symlinkat(wanted.link.c_str(), directory, name.c_str()) != 0) {
            Throw("written", path, errno);
        }
        return;
    }
    const Descriptor from = OpenOutside(source);
    const Descriptor to(openat(directory, name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (to.Number() < 0) {
        Throw("written", path, errno);
    }
    Copy(from.Number(), source, to.Number(), root_ / path, copied);
}

void TargetTree::FinishDraft(std::size_t position, const std::string& path,
                             const Standing& wanted) const {
    if (wanted.kind != Standing::Kind::File) {
        return;
    }
    const auto place = Find(path);
    const Descriptor draft(place ? openat(place->directory.Number(), DraftName(position).c_str(),
                                          O_RDONLY | O_NOFOLLOW | O_CLOEXEC)
                                 : -1);
    if (draft.Number() < 0 || fchmod(draft.Number(), wanted.mode) != 0 ||
        fsync(draft.Number()) != 0) {
        Throw("written", path, place ? errno : ENOENT);
    }
}

void TargetTree::Switch(std::size_t position, const std::string& path,
                        const Standing& wanted) const {
    const auto place = Find(path);
    if (!place) {
        if (wanted.kind == Standing::Kind::Nothing) {
            return;
        }
        Throw("written", path, ENOENT);
    }
    const int directory = place->directory.Number();
    if (wanted.kind == Standing::Kind::Nothing) {
        if (unlinkat(directory, place->name.c_str(), 0) != 0 && errno != ENOENT) {
            Throw("removed", path, errno);
        }
    } else if (renameat(directory, DraftName(position).c_str(), directory, place->name.c_str()) !=
               0) {
        Throw("written", path, errno);
    }
}

void TargetTree::RemoveDraft(std::size_t position, const std::string& path) const {
    const auto place = Find(path);
    if (place && unlinkat(place->directory.Number(), DraftName(position).c_str(), 0) != 0 &&
        errno != ENOENT && errno != EISDIR) { // a directory is nobody's draft
        Throw("removed", path, errno);
    }
}

void TargetTree::SyncDirectories(const std::set<std::string>& paths) const {
    std::set<std::string> directories = DirectoriesAbove(paths);
    directories.insert("");
    for (const auto& directory : directories) {
        const auto place = Find(directory.empty() ? "" : directory + '/');
        if (place && fsync(place->directory.Number()) != 0) {
            Throw("written", directory, errno);
        }
    }
}

} // namespace patchkeeper
