#include "patchkeeper/bundle/HandMade.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>

#include <archive.h>
#include <archive_entry.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/sha.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace patchkeeper_test {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t blockBytes = 512;

void Put(std::string& header, std::size_t at, std::string_view text) {
    header.replace(at, text.size(), text);
}

std::string Octal(std::uint64_t number, std::size_t digits) {
    std::string text(digits, '0');
    for (std::size_t i = digits; i-- > 0; number >>= 3U) {
        text[i] = static_cast<char>('0' + (number & 7U));
    }
    return text;
}

// The fields of a ustar header (POSIX.1, pax).
std::string Header(const Item& item) {
    std::string header(blockBytes, '\0');
    Put(header, 0, std::string_view(item.name).substr(0, 100));
    Put(header, 100, Octal(item.mode, 7));
    Put(header, 108, Octal(0, 7));
    Put(header, 116, Octal(0, 7));
    Put(header, 124, Octal(item.size.value_or(item.data.size()), 11));
    Put(header, 136, Octal(0, 11));
    Put(header, 148, "        ");
    header[156] = item.type;
    Put(header, 157, std::string_view(item.link).substr(0, 100));
    Put(header, 257,
        std::string_view("ustar\0"
                         "00",
                         8));
    unsigned sum = 0;
    for (const char byte : header) {
        sum += static_cast<unsigned char>(byte);
    }
    Put(header, 148, Octal(sum, 6) + '\0' + ' ');
    return header;
}

void Require(bool done) {
    if (!done) {
        throw std::runtime_error("the test's own archive cannot be made");
    }
}

la_ssize_t Append(archive* /*writer*/, void* text, const void* data, std::size_t size) {
    static_cast<std::string*>(text)->append(static_cast<const char*>(data), size);
    return static_cast<la_ssize_t>(size);
}

} // namespace

std::string Tar(const std::vector<Item>& items) {
    std::string tar;
    for (const auto& item : items) {
        tar += Header(item);
        tar += item.data;
        tar.resize((tar.size() + blockBytes - 1) / blockBytes * blockBytes, '\0');
    }
    return tar + std::string(2 * blockBytes, '\0');
}

std::string Gzip(std::string_view data) {
    std::string packed;
    const std::unique_ptr<archive, decltype(&archive_write_free)> writer(archive_write_new(),
                                                                         archive_write_free);
    const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                              archive_entry_free);
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_pathname(entry.get(), "data");
    Require(archive_write_set_format_raw(writer.get()) == ARCHIVE_OK &&
            archive_write_add_filter_gzip(writer.get()) == ARCHIVE_OK &&
            archive_write_set_bytes_in_last_block(writer.get(), 1) == ARCHIVE_OK &&
            archive_write_open(writer.get(), &packed, nullptr, Append, nullptr) == ARCHIVE_OK &&
            archive_write_header(writer.get(), entry.get()) == ARCHIVE_OK &&
            archive_write_data(writer.get(), data.data(), data.size()) ==
                static_cast<la_ssize_t>(data.size()) &&
            archive_write_close(writer.get()) == ARCHIVE_OK);
    return packed;
}

HandMade::HandMade() {
    manifest = {{"format", 1},
                {"name", "fix"},
                {"version", "1.0"},
                {"reboot_needed", false},
                {"removable", true},
                {"size", 0},
                {"files", nlohmann::ordered_json::array()}};
}

HandMade& HandMade::Declare(const std::string& entry, const std::string& data, const char* mode) {
    manifest["files"].push_back(
        {{"path", entry}, {"size", data.size()}, {"mode", mode}, {"sha256", Sha256(data)}});
    manifest["size"] = manifest["size"].get<std::size_t>() + data.size();
    return *this;
}

HandMade& HandMade::File(const std::string& entry, const std::string& data, const char* mode) {
    Declare(entry, data, mode);
    items.push_back({entry, data, static_cast<unsigned>(std::stoul(mode, nullptr, 8))});
    return *this;
}

HandMade& HandMade::Link(const std::string& entry, const std::string& link) {
    manifest["files"].push_back({{"path", entry}, {"link", link}});
    items.push_back({entry, "", 0777, '2', link});
    return *this;
}

std::vector<Item> HandMade::AllItems() const {
    std::vector<Item> all = {{"manifest.json", ManifestText()}};
    if (signature) {
        all.push_back({"manifest.sig", *signature});
    }
    all.insert(all.end(), items.begin(), items.end());
    return all;
}

fs::path Stored(const std::string& bytes) {
    static const TemporaryDirectory directory;
    return directory.Write("update.tar.gz", bytes);
}

std::vector<std::string> Faults(const std::string& bytes, const patchkeeper::BundleLimits& limits) {
    patchkeeper::Trust trust;
    trust.allowUnsigned = true;
    return patchkeeper::FaultsOf(Stored(bytes), trust, limits);
}

std::string Refusal(const std::string& bytes, const patchkeeper::BundleLimits& limits) {
    const fs::path file = Stored(bytes);
    try {
        patchkeeper::ReadManifest(file, limits);
    } catch (const patchkeeper::Failure& failure) {
        const std::string sentence = failure.what();
        const std::string start = file.string() + " is no update bundle: ";
        return sentence.starts_with(start) ? sentence.substr(start.size()) : "?? " + sentence;
    }
    return "";
}

KeyFiles MakeKeys(const fs::path& directory, unsigned char seed) {
    std::array<unsigned char, 32> secret{};
    secret.fill(seed);
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, secret.data(), secret.size()),
        EVP_PKEY_free);
    const std::string name = "key" + std::to_string(seed);
    const KeyFiles files = {directory / (name + ".pem"), directory / (name + ".pub.pem")};
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;
    const File privateFile(std::fopen(files.privateKey.c_str(), "we"), std::fclose);
    const File publicFile(std::fopen(files.publicKey.c_str(), "we"), std::fclose);
    Require(PEM_write_PrivateKey(privateFile.get(), key.get(), nullptr, nullptr, 0, nullptr,
                                 nullptr) == 1 &&
            PEM_write_PUBKEY(publicFile.get(), key.get()) == 1);
    return files;
}

std::string Noise(std::size_t size) {
    std::string noise(size, '\0');
    std::mt19937 numbers(1);
    for (char& byte : noise) {
        byte = static_cast<char>(numbers() & 0xFFU);
    }
    return noise;
}

std::string Sha256(const std::string& data) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> sum{};
    SHA256(reinterpret_cast<const unsigned char*>(data.data()), data.size(), sum.data());
    std::string text;
    for (const unsigned char byte : sum) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned>(byte));
        text += digits.data();
    }
    return text;
}

std::vector<std::string> Below(const fs::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.is_symlink() || !entry.is_directory()) {
            names.push_back(entry.path().lexically_relative(directory).string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ContentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace patchkeeper_test
