#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Archive.hpp"
#include "patchkeeper/bundle/Bundle.hpp"
#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper::bundle {

constexpr const char* manifestEntry = "manifest.json";
constexpr const char* signatureEntry = "manifest.sig";

// A bundle on disk, opened once, so that every look is at the same file.
struct BundleSource {
    // Throws Failure with the given code, and so does what reads from here.
    BundleSource(std::filesystem::path bundleFile, const BundleLimits& bundleLimits,
                 ExitCode exitCode);

    std::filesystem::path file;
    BundleLimits limits;
    ExitCode code;
    Descriptor descriptor;
};

// A bundle whose manifest has been read; the reader stands behind it. The source must live on.
struct OpenBundle {
    // Throws Failure as ReadManifest does.
    explicit OpenBundle(const BundleSource& source);

    ArchiveReader reader;
    std::string manifestText;
    Manifest manifest;
};

struct CheckResult {
    Manifest manifest;
    std::vector<std::string> faults;
};

// FaultsOf, on an open file.
CheckResult CheckBundle(const BundleSource& source, const Trust& trust,
                        const BundleProgress& progress);

// How many bytes an honest archive of this manifest unpacks to at most, headers included.
std::uint64_t AllowedBytes(const Manifest& manifest, std::size_t manifestBytes);

} // namespace patchkeeper::bundle
