#include "patchkeeper/bundle/Digest.hpp"

#include <array>

#include <openssl/evp.h>

#include "patchkeeper/Failure.hpp"

namespace patchkeeper::bundle {

namespace {

void Require(bool done) {
    if (!done) {
        throw Failure(ExitCode::General, "the cryptographic library computes no SHA-256 sum");
    }
}

} // namespace

void Sha256::Free::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : context_(EVP_MD_CTX_new()) {
    Require(context_ != nullptr && EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr) == 1);
}

void Sha256::Add(std::string_view data) {
    Require(EVP_DigestUpdate(context_.get(), data.data(), data.size()) == 1);
}

std::string Sha256::Hex() {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> sum{};
    unsigned length = 0;
    Require(EVP_DigestFinal_ex(context_.get(), sum.data(), &length) == 1);
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text += digits[sum[i] >> 4U];
        text += digits[sum[i] & 0xFU];
    }
    return text;
}

std::string Sha256Of(std::string_view data) {
    Sha256 sum;
    sum.Add(data);
    return sum.Hex();
}

} // namespace patchkeeper::bundle
