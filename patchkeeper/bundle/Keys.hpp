#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "patchkeeper/bundle/Bundle.hpp"

struct evp_pkey_st;

namespace patchkeeper::bundle {

constexpr std::size_t signatureBytes = 64; // Ed25519, RFC 8032

// Whether `signature` is that of `text` by the owner of `key`.
bool SignatureBelongs(std::string_view signature, std::string_view text, const PublicKey& key);

// An Ed25519 private key from a PEM file without a pass phrase.
class PrivateKey {
public:
    // Throws Failure when the file holds no such key.
    explicit PrivateKey(const std::filesystem::path& pemFile);

    std::string Sign(std::string_view text) const; // signatureBytes long
    PublicKey Public() const;

private:
    struct Free {
        void operator()(evp_pkey_st* key) const;
    };
    std::unique_ptr<evp_pkey_st, Free> key_;
};

} // namespace patchkeeper::bundle
