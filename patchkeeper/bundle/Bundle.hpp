#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace patchkeeper {

// Update bundles: what is in one, whether it is sound, unpacking and making one. README.md beside
// this header describes the format.
//
// Every function works on its arguments alone and may be called from any thread. What cannot be
// done is thrown as Failure with a sentence that names the file: by Unpack with the code
// ApplyFailed, by all others with SoftwareUpdateFailed. A caller with a code of its own for the
// step at hand puts the sentence under that code.

// What is accepted at most.
struct BundleLimits {
    std::uint64_t manifestBytes = 16U << 20U; // of manifest.json
    std::size_t files = 65'000;               // readers count the files of an update in 16 bits
    std::uint64_t totalBytes = 16ULL << 30U;  // of all files, unpacked
};

constexpr std::size_t longestName = 64;           // name, version and component names, in bytes
constexpr std::size_t longestBundlePath = 900;    // `path` and `entry` of a file: it fits a line
constexpr std::size_t longestBundleText = 65'536; // of one description, category or warning

// One file or symbolic link of a bundle.
struct BundleFile {
    std::string entry;     // its name in the archive: "files/usr/bin/x", "components/docs/usr/x"
    std::string path;      // where it goes, relative to the target: "usr/bin/x"
    std::string component; // the optional component that it belongs to, "" for none
    std::uint64_t size = 0;
    unsigned mode = 0;  // permission bits; 0 for a link
    std::string sha256; // 64 lower-case hexadecimal digits; "" for a link
    std::string link;   // what a symbolic link holds; "" for a file

    bool IsLink() const { return !link.empty(); }
};

// What manifest.json says. Texts are UTF-8 without control characters other than tab and newline,
// each at most longestBundleText bytes; cutting them to the length of a record is the reader's
// business. `entry`, `path` and `link` of a file hold neither white space nor control characters;
// in a bundle with faults they may still be absolute or climb with "..": look at them, but
// touch no file by them.
struct Manifest {
    std::string name;    // see IsPlainName
    std::string version; // see IsPlainName
    std::string shortDescription;
    std::string longDescription;
    std::string category;
    std::string classification; // one of the texts that readers of the inventory know
    bool rebootNeeded = false;
    bool removable = false;
    std::uint64_t size = 0; // bytes of all files
    std::vector<std::string> warnings;
    std::vector<std::string> components; // names of the optional ones, see IsPlainName
    std::vector<BundleFile> files;       // those of all components too
    std::string sha256;                  // of manifest.json itself

    std::vector<BundleFile> FilesOf(std::string_view component) const; // "" for those of none
};

// Whether a text may be the name or version of an update or the name of a component: letters,
// digits and . _ + ~ - (ASCII), at most 64 bytes, not empty, not beginning with a dash. Such names
// pass a shell unquoted.
bool IsPlainName(std::string_view text);

// An Ed25519 public key, as it is on the wire.
using PublicKey = std::array<unsigned char, 32>;

// Reads a public key from a PEM file ("-----BEGIN PUBLIC KEY-----").
PublicKey ReadPublicKey(const std::filesystem::path& pemFile);

// Whose bundles are taken. A signature that belongs to none of the keys is a fault even where
// unsigned bundles are allowed.
struct Trust {
    std::vector<PublicKey> keys;
    bool allowUnsigned = false;
};

// Told from time to time how much of the work is done, in bytes of files read and written; what it
// throws ends the work and passes through.
using BundleProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// Reads the manifest and nothing behind it. Throws when the file is no bundle: missing, no regular
// file, not a tar.gz with manifest.json in front, a manifest that is no JSON, too large, lacks an
// item, or has names that break the rules above.
Manifest ReadManifest(const std::filesystem::path& bundleFile, const BundleLimits& limits = {});

// Reads the whole bundle and returns every fault, each as a sentence without a full stop; none for
// a good bundle. Throws what ReadManifest throws. Nothing is written. The work is bounded by what
// the manifest declares and by the limits.
std::vector<std::string> FaultsOf(const std::filesystem::path& bundleFile, const Trust& trust,
                                  const BundleLimits& limits = {},
                                  const BundleProgress& progress = {});

// Checks the bundle as FaultsOf does, then unpacks the files of no component and those of the
// chosen components to their paths below `targetDirectory`, which is made, or is there and empty.
// The data is on disk when this returns. Throws, and writes nothing, when the bundle has a fault,
// when `manifest` is not the manifest in it, or when a chosen component is none of its; throws, and
// removes what it wrote, when writing fails or the bundle changes under it. Owners and times in the
// bundle do not count: all belongs to the caller; directories have the mode 0755.
void Unpack(const std::filesystem::path& bundleFile, const Manifest& manifest,
            const std::vector<std::string>& chosenComponents,
            const std::filesystem::path& targetDirectory, const Trust& trust,
            const BundleLimits& limits = {}, const BundleProgress& progress = {});

// Makes a bundle of a directory with manifest.json, files/ and components/NAME/, signed when a
// private key (PEM, Ed25519) is given, and returns its path. An empty `output` means
// NAME-VERSION.tar.gz in the working directory. The file appears whole and checked, or not at all;
// one of that name is replaced. The same directory gives the same bytes.
std::filesystem::path MakeBundle(const std::filesystem::path& directory,
                                 const std::filesystem::path& output,
                                 const std::optional<std::filesystem::path>& privateKey);

} // namespace patchkeeper
