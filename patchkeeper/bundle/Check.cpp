#include "patchkeeper/bundle/Check.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Digest.hpp"
#include "patchkeeper/bundle/Files.hpp"
#include "patchkeeper/bundle/Keys.hpp"
#include "patchkeeper/bundle/ManifestFaults.hpp"
#include "patchkeeper/bundle/ManifestText.hpp"

namespace patchkeeper {

namespace bundle {

namespace {

constexpr std::uint64_t headerBytes = 4096;      // of one entry with a long name, and its padding
constexpr std::uint64_t spareBytes = 64U << 10U; // the end of the archive
constexpr std::uint64_t mostBeforeManifest = 4U << 20U; // extended headers, and what is read ahead

std::string ReadManifestText(ArchiveReader& reader, std::uint64_t limit) {
    const auto entry = reader.Next();
    if (!entry || entry->name != manifestEntry) {
        throw ArchiveError(entry ? "its first entry is " + Quoted(entry->name) +
                                       " and not manifest.json"
                                 : "it is empty");
    }
    if (entry->kind != EntryKind::File) {
        throw ArchiveError("manifest.json is " + KindText(entry->kind));
    }
    if (entry->size > limit) {
        throw ArchiveError("manifest.json has more than " + std::to_string(limit) + " bytes");
    }
    std::string text;
    for (auto data = reader.Read(); !data.empty(); data = reader.Read()) {
        text += data;
    }
    return text;
}

Failure NoBundle(const BundleSource& source, const std::string& reason) {
    return {source.code, source.file.string() + " is no update bundle: " + reason};
}

// The second part of a check: what stands behind the manifest, held against it.
class ContentCheck {
public:
    ContentCheck(OpenBundle& bundle, std::vector<std::string>& faults,
                 const BundleProgress& progress)
        : bundle_(bundle), faults_(faults), progress_(progress) {
        for (const auto& file : bundle.manifest.files) {
            expected_.emplace(file.entry, &file);
        }
    }

    void Run(const Trust& trust) {
        bundle_.reader.Allow(AllowedBytes(bundle_.manifest, bundle_.manifestText.size()));
        try {
            while (const auto entry = bundle_.reader.Next()) {
                Look(*entry);
            }
            bundle_.reader.Finish();
            NameMissing();
            LookAtSignature(trust);
        } catch (const ArchiveError& error) {
            faults_.emplace_back(error.what()); // what would follow cannot be told missing
        }
    }

private:
    void Look(const Entry& entry) {
        if (entry.name == signatureEntry) {
            ReadSignature(entry);
            return;
        }
        const auto expected = expected_.find(entry.name);
        if (expected == expected_.end()) {
            faults_.push_back(Quoted(entry.name) + StrangerFault(entry));
        } else if (!seen_.insert(expected->second).second) {
            faults_.push_back(Quoted(entry.name) + " is in the archive twice");
        } else {
            Compare(entry, *expected->second);
        }
    }

    static std::string StrangerFault(const Entry& entry) {
        if (entry.name == manifestEntry) {
            return " is in the archive twice";
        }
        const std::string pathFault = PathFault(entry.name);
        std::string fault =
            pathFault == "leaves its root" ? " leaves its root" : " is not in the manifest";
        if (entry.kind != EntryKind::File) {
            fault += " and is " + KindText(entry.kind);
        }
        return fault;
    }

    void Compare(const Entry& entry, const BundleFile& file) {
        const EntryKind kind = file.IsLink() ? EntryKind::Link : EntryKind::File;
        const std::string name = Quoted(entry.name);
        if (entry.kind != kind) {
            faults_.push_back(name + " is " + KindText(entry.kind) + " and not " + KindText(kind));
        } else if (file.IsLink()) {
            if (entry.link != file.link) {
                faults_.push_back(name + " leads to " + Quoted(entry.link) + " and not to " +
                                  Quoted(file.link));
            }
        } else {
            if (entry.mode != file.mode) {
                faults_.push_back(name + " has another mode than the manifest says");
            }
            CompareData(entry, file);
        }
    }

    void CompareData(const Entry& entry, const BundleFile& file) {
        if (entry.size != file.size) {
            faults_.push_back(Quoted(entry.name) + " has " + std::to_string(entry.size) +
                              " bytes, but the manifest declares " + std::to_string(file.size));
            return;
        }
        Sha256 sum;
        for (auto data = bundle_.reader.Read(); !data.empty(); data = bundle_.reader.Read()) {
            sum.Add(data);
            done_ += data.size();
            if (progress_) {
                progress_(done_, bundle_.manifest.size);
            }
        }
        if (sum.Hex() != file.sha256) {
            faults_.push_back(Quoted(entry.name) + " has another SHA-256 than the manifest says");
        }
    }

    void ReadSignature(const Entry& entry) {
        if (isSigned_) {
            faults_.emplace_back("manifest.sig is in the archive twice");
            return;
        }
        isSigned_ = true;
        if (entry.kind != EntryKind::File || entry.size != signatureBytes) {
            return; // it matches no key
        }
        for (auto data = bundle_.reader.Read(); !data.empty(); data = bundle_.reader.Read()) {
            signature_ += data;
        }
    }

    void NameMissing() {
        for (const auto& file : bundle_.manifest.files) {
            if (expected_.at(file.entry) == &file && !seen_.contains(&file)) {
                faults_.push_back(Quoted(file.entry) + " is missing");
            }
        }
    }

    void LookAtSignature(const Trust& trust) {
        if (!isSigned_) {
            if (!trust.allowUnsigned) {
                faults_.emplace_back("it is not signed");
            }
            return;
        }
        const bool belongs =
            std::any_of(trust.keys.begin(), trust.keys.end(), [&](const PublicKey& key) {
                return SignatureBelongs(signature_, bundle_.manifestText, key);
            });
        if (!belongs) {
            faults_.emplace_back("its signature is that of no trusted key");
        }
    }

    OpenBundle& bundle_;
    std::vector<std::string>& faults_;
    const BundleProgress& progress_;
    std::unordered_map<std::string_view, const BundleFile*> expected_;
    std::set<const BundleFile*> seen_;
    std::uint64_t done_ = 0;
    bool isSigned_ = false;
    std::string signature_;
};

} // namespace

std::uint64_t AllowedBytes(const Manifest& manifest, std::size_t manifestBytes) {
    return manifest.size + manifestBytes + headerBytes * (manifest.files.size() + 2) + spareBytes;
}

BundleSource::BundleSource(std::filesystem::path bundleFile, const BundleLimits& bundleLimits,
                           ExitCode exitCode)
    : file(std::move(bundleFile)), limits(bundleLimits), code(exitCode),
      descriptor(OpenRegularFile(file, code)) {
}

OpenBundle::OpenBundle(const BundleSource& source) try
    : reader(source.descriptor.Number(), source.limits.manifestBytes + mostBeforeManifest),
      manifestText(ReadManifestText(reader, source.limits.manifestBytes)),
      manifest(ParseManifest(manifestText, ManifestForm::Bundle)) {
} catch (const ArchiveError& error) {
    throw NoBundle(source, error.what());
} catch (const ManifestError& error) {
    throw NoBundle(source, error.what());
}

CheckResult CheckBundle(const BundleSource& source, const Trust& trust,
                        const BundleProgress& progress) {
    OpenBundle bundle(source);
    CheckResult result;
    const std::string limitFault = LimitFault(bundle.manifest, source.limits);
    if (!limitFault.empty()) {
        result.faults.push_back(limitFault); // the rest is not looked at
    } else {
        result.faults = ManifestFaults(bundle.manifest);
        ContentCheck(bundle, result.faults, progress).Run(trust);
    }
    result.manifest = std::move(bundle.manifest);
    return result;
}

} // namespace bundle

Manifest ReadManifest(const std::filesystem::path& bundleFile, const BundleLimits& limits) {
    const bundle::BundleSource source(bundleFile, limits, ExitCode::SoftwareUpdateFailed);
    return bundle::OpenBundle(source).manifest;
}

std::vector<std::string> FaultsOf(const std::filesystem::path& bundleFile, const Trust& trust,
                                  const BundleLimits& limits, const BundleProgress& progress) {
    const bundle::BundleSource source(bundleFile, limits, ExitCode::SoftwareUpdateFailed);
    return bundle::CheckBundle(source, trust, progress).faults;
}

} // namespace patchkeeper
