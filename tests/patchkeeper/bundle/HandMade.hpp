#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "patchkeeper/bundle/Bundle.hpp"

namespace patchkeeper_test {

// One entry of a hand-made archive; nothing is checked, so that it can be as wrong as a test likes.
struct Item {
    std::string name;
    std::string data = "";
    unsigned mode = 0644;
    char type =
        '0'; // of the ustar header: 0 file, 1 hard link, 2 link, 3 and 4 devices, 5 directory
    std::string link = "";
    std::optional<std::uint64_t> size = std::nullopt; // when the header lies
};

// A POSIX ustar archive with its two blocks of zeros at the end.
std::string Tar(const std::vector<Item>& items);
std::string Gzip(std::string_view data);

// A bundle put together by hand: the manifest and the entries, which need not fit.
struct HandMade {
    nlohmann::ordered_json manifest;
    std::vector<Item> items; // behind the manifest
    std::optional<std::string> signature;

    // A good manifest without files: update "fix" in version "1.0".
    HandMade();

    // Declares a file and puts it in.
    HandMade& File(const std::string& entry, const std::string& data, const char* mode = "0644");
    HandMade& Link(const std::string& entry, const std::string& link);
    // Declares a file only.
    HandMade& Declare(const std::string& entry, const std::string& data, const char* mode = "0644");

    std::string ManifestText() const { return manifest.dump(); }
    std::vector<Item> AllItems() const; // those of manifest and signature in front
    std::string Bytes() const { return Gzip(Tar(AllItems())); }
};

// Writes bytes as a bundle in a fresh directory, which lasts as long as the program.
std::filesystem::path Stored(const std::string& bytes);

// The faults where unsigned bundles are allowed.
std::vector<std::string> Faults(const std::string& bytes, const patchkeeper::BundleLimits& = {});

// The sentence with which a bundle is refused, without the name of the file; "" when it is read.
std::string Refusal(const std::string& bytes, const patchkeeper::BundleLimits& = {});

// An Ed25519 pair of keys in PEM files of a directory; one seed gives one pair.
struct KeyFiles {
    std::filesystem::path privateKey;
    std::filesystem::path publicKey;
};
KeyFiles MakeKeys(const std::filesystem::path& directory, unsigned char seed);

// Bytes that do not get smaller by packing, the same every time.
std::string Noise(std::size_t size);

std::string Sha256(const std::string& data);

// The names of all files and links below a directory, in order.
std::vector<std::string> Below(const std::filesystem::path& directory);
std::string ContentOf(const std::filesystem::path& file);

} // namespace patchkeeper_test
