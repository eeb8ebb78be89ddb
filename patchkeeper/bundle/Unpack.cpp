#include <algorithm>
#include <cerrno>
#include <functional>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/Check.hpp"
#include "patchkeeper/bundle/Digest.hpp"
#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper {

namespace bundle {

namespace {

namespace fs = std::filesystem;

constexpr mode_t directoryMode = 0755;

Failure ApplyFailure(const std::string& sentence) {
    return {ExitCode::ApplyFailed, sentence};
}

// Writes files below one directory and follows no link on the way.
class Tree {
public:
    explicit Tree(const fs::path& root) : root_(root), directory_(Open()) {
        std::error_code error;
        const bool isEmpty = fs::is_empty(root, error);
        if (error) {
            throw Problem("read", "", error.value());
        }
        if (!isEmpty) {
            throw ApplyFailure(root.string() + " is not empty");
        }
    }

    // A new file that only its owner may touch until Close gives it its mode.
    Descriptor NewFile(const std::string& path) const {
        const auto [directory, name] = Place(path);
        Descriptor file(openat(directory.Number(), name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (file.Number() < 0) {
            throw Problem("written", path, errno);
        }
        return file;
    }

    void MakeLink(const BundleFile& link) const {
        const auto [directory, name] = Place(link.path);
        if (symlinkat(link.link.c_str(), directory.Number(), name.c_str()) != 0) {
            throw Problem("written", link.path, errno);
        }
    }

    void Sync() const {
        if (syncfs(directory_.Number()) != 0) {
            throw Problem("written", "", errno);
        }
    }

    Failure Problem(const std::string& done, const std::string& path, int error) const {
        return CannotBe(done, path.empty() ? root_ : root_ / path, error, ExitCode::ApplyFailed);
    }

    void Empty() const noexcept {
        std::error_code ignored; // the reason for giving up is the one that counts
        for (fs::directory_iterator entry(root_, ignored); entry != fs::directory_iterator();
             entry.increment(ignored)) {
            fs::remove_all(entry->path(), ignored);
        }
    }

private:
    struct At {
        Descriptor directory;
        std::string name;
    };

    int Open() const {
        std::error_code error;
        fs::create_directories(root_, error);
        if (error) {
            throw Problem("made", "", error.value());
        }
        const int directory = open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (directory < 0) {
            throw Problem("opened", "", errno);
        }
        return directory;
    }

    // The directory of a file, made when it is missing, and the file's name in it.
    At Place(const std::string& path) const {
        std::optional<Descriptor> directory(std::in_place,
                                            fcntl(directory_.Number(), F_DUPFD_CLOEXEC, 0));
        std::size_t start = 0;
        for (auto slash = path.find('/'); slash != std::string::npos;
             start = slash + 1, slash = path.find('/', start)) {
            const std::string name = path.substr(start, slash - start);
            const bool isNew = mkdirat(directory->Number(), name.c_str(), directoryMode) == 0;
            if (!isNew && errno != EEXIST) {
                throw Problem("written", path, errno);
            }
            Descriptor next(openat(directory->Number(), name.c_str(),
                                   O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (next.Number() < 0 || (isNew && fchmod(next.Number(), directoryMode) != 0)) {
                throw Problem("written", path, errno);
            }
            directory.emplace(std::move(next));
        }
        return {std::move(*directory), path.substr(start)};
    }

    fs::path root_;
    Descriptor directory_;
};

using Wanted = std::unordered_map<std::string, const BundleFile*>; // by the name in the archive

Wanted WantedOf(const Manifest& manifest, const std::vector<std::string>& components) {
    const std::set<std::string_view> chosen(components.begin(), components.end());
    Wanted wanted;
    for (const auto& file : manifest.files) {
        if (file.component.empty() || chosen.contains(file.component)) {
            wanted.emplace(file.entry, &file);
        }
    }
    return wanted;
}

std::uint64_t SizeOf(const Wanted& wanted) {
    return std::accumulate(
        wanted.begin(), wanted.end(), std::uint64_t{0},
        [](std::uint64_t sum, const auto& file) { return sum + file.second->size; });
}

// The second pass over a bundle that has been found good. It trusts the manifest that was checked
// and nothing in the archive, which may have changed.
class Extraction {
public:
    // `progress` is told the bytes of this pass only.
    Extraction(const fs::path& file, const Tree& tree,
               const std::function<void(std::uint64_t)>& progress)
        : file_(file), tree_(tree), progress_(progress) {}

    void Run(OpenBundle& bundle, Wanted wanted) {
        bundle.reader.Allow(AllowedBytes(bundle.manifest, bundle.manifestText.size()));
        while (const auto entry = bundle.reader.Next()) {
            const auto found = wanted.find(entry->name);
            if (found != wanted.end()) {
                Write(bundle.reader, *found->second);
                wanted.erase(found);
            }
        }
        if (!wanted.empty()) {
            throw Changed();
        }
    }

private:
    Failure Changed() const {
        return ApplyFailure(file_.string() + " changed while it was unpacked");
    }

    void Write(ArchiveReader& reader, const BundleFile& file) {
        if (file.IsLink()) {
            tree_.MakeLink(file);
            return;
        }
        const Descriptor target = tree_.NewFile(file.path);
        Sha256 sum;
        std::uint64_t size = 0;
        for (auto data = reader.Read(); !data.empty(); data = reader.Read()) {
            size += data.size();
            if (size > file.size) {
                throw Changed();
            }
            sum.Add(data);
            if (const int error = WriteAll(target.Number(), data); error != 0) {
                throw tree_.Problem("written", file.path, error);
            }
            done_ += data.size();
            progress_(done_);
        }
        if (sum.Hex() != file.sha256) {
            throw Changed();
        }
        if (fchmod(target.Number(), file.mode) != 0) {
            throw tree_.Problem("written", file.path, errno);
        }
    }

    const fs::path& file_;
    const Tree& tree_;
    const std::function<void(std::uint64_t)>& progress_;
    std::uint64_t done_ = 0;
};

void RequireGood(const fs::path& file, const CheckResult& check, const Manifest& manifest) {
    if (!check.faults.empty()) {
        const auto more = check.faults.size() - 1;
        throw ApplyFailure(file.string() + " has a fault: " + check.faults.front() +
                           (more == 0 ? "" : " (and " + std::to_string(more) + " more)"));
    }
    if (check.manifest.sha256 != manifest.sha256) {
        throw ApplyFailure(file.string() + " is no longer the bundle that it was");
    }
}

void RequireComponents(const Manifest& manifest, const std::vector<std::string>& chosen) {
    for (const auto& name : chosen) {
        if (std::find(manifest.components.begin(), manifest.components.end(), name) ==
            manifest.components.end()) {
            throw ApplyFailure(manifest.name + " " + manifest.version + " has no component " +
                               Quoted(name));
        }
    }
}

void Extract(const BundleSource& source, const Manifest& checked, Wanted wanted, const Tree& tree,
             const std::function<void(std::uint64_t)>& progress) {
    OpenBundle bundle(source);
    if (bundle.manifest.sha256 != checked.sha256) {
        throw ApplyFailure(source.file.string() + " is no longer the bundle that it was");
    }
    try {
        Extraction(source.file, tree, progress).Run(bundle, std::move(wanted));
    } catch (const ArchiveError& error) {
        throw ApplyFailure(source.file.string() +
                           " changed while it was unpacked: " + error.what());
    }
    tree.Sync();
}

} // namespace

} // namespace bundle

void Unpack(const std::filesystem::path& bundleFile, const Manifest& manifest,
            const std::vector<std::string>& chosenComponents,
            const std::filesystem::path& targetDirectory, const Trust& trust,
            const BundleLimits& limits, const BundleProgress& progress) {
    const bundle::BundleSource source(bundleFile, limits, ExitCode::ApplyFailed);
    bundle::RequireComponents(manifest, chosenComponents);
    const bundle::Wanted wanted = bundle::WantedOf(manifest, chosenComponents);
    const std::uint64_t total = manifest.size + bundle::SizeOf(wanted);
    const auto tell = [&](std::uint64_t done) {
        if (progress) {
            progress(done, total);
        }
    };
    const auto check = bundle::CheckBundle(
        source, trust, [&](std::uint64_t done, std::uint64_t /*total*/) { tell(done); });
    bundle::RequireGood(bundleFile, check, manifest);
    const bundle::Tree tree(targetDirectory);
    try {
        bundle::Extract(source, manifest, wanted, tree,
                        [&](std::uint64_t done) { tell(manifest.size + done); });
    } catch (...) {
        tree.Empty();
        throw;
    }
}

} // namespace patchkeeper
