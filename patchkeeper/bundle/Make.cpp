#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/ArchiveWriter.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/Check.hpp"
#include "patchkeeper/bundle/Digest.hpp"
#include "patchkeeper/bundle/Files.hpp"
#include "patchkeeper/bundle/Keys.hpp"
#include "patchkeeper/bundle/ManifestText.hpp"

namespace patchkeeper {

namespace bundle {

namespace {

namespace fs = std::filesystem;

Failure MakeFailure(const std::string& sentence) {
    return {ExitCode::SoftwareUpdateFailed, sentence};
}

void ReadDigest(const fs::path& source, BundleFile& file) {
    const Descriptor descriptor = OpenRegularFile(source);
    Sha256 sum;
    std::array<char, 65536> buffer{};
    for (;;) {
        const long got = ReadSome(descriptor.Number(), buffer.data(), buffer.size());
        if (got < 0) {
            throw CannotBe("read", source, static_cast<int>(-got));
        }
        if (got == 0) {
            break;
        }
        sum.Add({buffer.data(), static_cast<std::size_t>(got)});
        file.size += static_cast<std::uint64_t>(got);
    }
    file.sha256 = sum.Hex();
}

BundleFile DescribeFile(const fs::directory_entry& source, const std::string& entry) {
    const std::string fault = EntryTextFault(entry);
    if (!fault.empty()) {
        throw MakeFailure("the file name " + Quoted(entry) + " " + fault);
    }
    BundleFile file;
    file.entry = entry;
    SplitEntry(file);
    if (source.is_symlink()) {
        file.link = fs::read_symlink(source.path()).string();
        const std::string linkFault = EntryTextFault(file.link);
        if (!linkFault.empty()) {
            throw MakeFailure("what the link " + Quoted(entry) + " leads to " + linkFault);
        }
    } else if (source.is_regular_file()) {
        file.mode = static_cast<unsigned>(source.status().permissions());
        ReadDigest(source.path(), file);
    } else {
        throw MakeFailure(source.path().string() + " is neither a file nor a link");
    }
    return file;
}

std::vector<fs::directory_entry> Sorted(const fs::path& directory) {
    std::vector<fs::directory_entry> entries{fs::directory_iterator(directory),
                                             fs::directory_iterator()};
    std::sort(entries.begin(), entries.end());
    return entries;
}

void DescribeTree(const fs::path& directory, const std::string& entry,
                  std::vector<BundleFile>& files) {
    const auto entries = Sorted(directory);
    if (entries.empty()) {
        throw MakeFailure(directory.string() + " is empty, and a bundle carries files only");
    }
    for (const auto& below : entries) {
        const std::string name = entry + "/" + below.path().filename().string();
        if (below.is_directory() && !below.is_symlink()) {
            DescribeTree(below.path(), name, files);
        } else {
            files.push_back(DescribeFile(below, name));
        }
    }
}

void TakeComponents(const fs::path& directory, std::vector<std::string>& declared) {
    std::vector<std::string> found;
    if (fs::exists(directory)) {
        for (const auto& entry : Sorted(directory)) {
            found.push_back(entry.path().filename().string());
            if (!IsPlainName(found.back())) {
                throw MakeFailure(Quoted(found.back()) + " is no name for a component");
            }
        }
    }
    if (declared.empty()) {
        declared = found;
        return;
    }
    auto sorted = declared;
    std::sort(sorted.begin(), sorted.end());
    if (sorted != found) {
        throw MakeFailure("the components in manifest.json are not those in " + directory.string());
    }
}

void RefuseStrangers(const fs::path& directory) {
    for (const auto& entry : fs::directory_iterator(directory)) {
        const std::string name = entry.path().filename();
        if (name != manifestEntry && name != signatureEntry && name != "files" &&
            name != "components") {
            throw MakeFailure(entry.path().string() + " has no place in a bundle");
        }
    }
}

Manifest Describe(const fs::path& directory) {
    const fs::path file = directory / manifestEntry;
    Manifest manifest;
    try {
        manifest =
            ParseManifest(ReadSmallFile(file, BundleLimits().manifestBytes), ManifestForm::Source);
    } catch (const ManifestError& error) {
        throw MakeFailure(directory.string() + " makes no bundle: " + error.what());
    }
    RefuseStrangers(directory);
    TakeComponents(directory / "components", manifest.components);
    if (fs::exists(directory / "files")) {
        DescribeTree(directory / "files", "files", manifest.files);
    }
    for (const auto& name : manifest.components) {
        DescribeTree(directory / "components" / name, "components/" + name, manifest.files);
    }
    for (const auto& described : manifest.files) {
        manifest.size += described.size;
    }
    return manifest;
}

// The file in the making; it goes unless it is put in place.
class Draft {
public:
    explicit Draft(const fs::path& output)
        : output_(output), path_(output.string() + ".new-" + std::to_string(getpid())),
          descriptor_(open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644)) {
        if (descriptor_.Number() < 0) {
            throw CannotBe("written", output_, errno);
        }
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() {
        if (!isInPlace_) {
            unlink(path_.c_str());
        }
    }

    const fs::path& Path() const { return path_; }
    int Number() const { return descriptor_.Number(); }

    void PutInPlace() {
        if (fsync(descriptor_.Number()) != 0 || rename(path_.c_str(), output_.c_str()) != 0) {
            throw CannotBe("written", output_, errno);
        }
        isInPlace_ = true;
    }

private:
    fs::path output_;
    fs::path path_;
    Descriptor descriptor_;
    bool isInPlace_ = false;
};

void WriteBundle(const fs::path& directory, const Manifest& manifest,
                 const std::optional<PrivateKey>& key, int descriptor) {
    const std::string text = ManifestText(manifest);
    ArchiveWriter writer(descriptor);
    writer.AddText(manifestEntry, text);
    if (key) {
        writer.AddText(signatureEntry, key->Sign(text));
    }
    for (const auto& file : manifest.files) {
        if (file.IsLink()) {
            writer.AddLink(file.entry, file.link);
        } else {
            writer.AddFile(file.entry, directory / file.entry, file.size, file.mode);
        }
    }
    writer.Finish();
}

void RequireSound(const fs::path& directory, const fs::path& draft,
                  const std::optional<PrivateKey>& key) {
    Trust trust;
    trust.allowUnsigned = !key;
    if (key) {
        trust.keys.push_back(key->Public());
    }
    const auto faults = FaultsOf(draft, trust);
    if (!faults.empty()) {
        throw MakeFailure(directory.string() + " makes no sound bundle: " + faults.front());
    }
}

} // namespace

} // namespace bundle

std::filesystem::path MakeBundle(const std::filesystem::path& directory,
                                 const std::filesystem::path& output,
                                 const std::optional<std::filesystem::path>& privateKey) try {
    std::optional<bundle::PrivateKey> key;
    if (privateKey) {
        key.emplace(*privateKey);
    }
    const Manifest manifest = bundle::Describe(directory);
    std::filesystem::path target =
        output.empty() ? std::filesystem::path(manifest.name + "-" + manifest.version + ".tar.gz")
                       : output;
    bundle::Draft draft(target);
    try {
        bundle::WriteBundle(directory, manifest, key, draft.Number());
    } catch (const bundle::ArchiveError& error) {
        throw bundle::MakeFailure(target.string() + " cannot be written: " + error.what());
    }
    bundle::RequireSound(directory, draft.Path(), key);
    draft.PutInPlace();
    return target;
} catch (const std::filesystem::filesystem_error& error) {
    throw bundle::CannotBe("read", error.path1(), error.code().value());
}

} // namespace patchkeeper
