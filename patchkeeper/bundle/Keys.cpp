#include "patchkeeper/bundle/Keys.hpp"

#include <openssl/evp.h>
#include <openssl/pem.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/bundle/Files.hpp"

namespace patchkeeper {

namespace bundle {

namespace {

constexpr std::uint64_t longestKeyFile = 65'536;

template <typename T, void (*Release)(T*)>
struct Releaser {
    void operator()(T* object) const { Release(object); }
};
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY, EVP_PKEY_free>>;
using Context = std::unique_ptr<EVP_MD_CTX, Releaser<EVP_MD_CTX, EVP_MD_CTX_free>>;

// A key with a pass phrase is refused; the library would ask for it at the terminal.
int NoPassPhrase(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*data*/) {
    return -1;
}

using PemReader = EVP_PKEY* (*)(BIO*, EVP_PKEY**, pem_password_cb*, void*);

EVP_PKEY* ReadKey(const std::filesystem::path& pemFile, PemReader read, const char* kind) {
    const std::string text = ReadSmallFile(pemFile, longestKeyFile);
    const std::unique_ptr<BIO, Releaser<BIO, BIO_free_all>> source(
        BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    Key key(source ? read(source.get(), nullptr, NoPassPhrase, nullptr) : nullptr);
    if (!key || EVP_PKEY_get_id(key.get()) != EVP_PKEY_ED25519) {
        throw Failure(ExitCode::SoftwareUpdateFailed,
                      pemFile.string() + " holds no Ed25519 " + kind + " key in PEM form");
    }
    return key.release();
}

PublicKey RawPublicKey(const EVP_PKEY* key) {
    PublicKey raw{};
    std::size_t length = raw.size();
    if (EVP_PKEY_get_raw_public_key(key, raw.data(), &length) != 1 || length != raw.size()) {
        throw Failure(ExitCode::General, "the cryptographic library does not hand out a key");
    }
    return raw;
}

const unsigned char* Bytes(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

bool SignatureBelongs(std::string_view signature, std::string_view text, const PublicKey& key) {
    const Key publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.data(), key.size()));
    const Context context(EVP_MD_CTX_new());
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), Bytes(signature), signature.size(), Bytes(text),
                            text.size()) == 1;
}

void PrivateKey::Free::operator()(evp_pkey_st* key) const {
    EVP_PKEY_free(key);
}

PrivateKey::PrivateKey(const std::filesystem::path& pemFile)
    : key_(ReadKey(pemFile, PEM_read_bio_PrivateKey, "private")) {
}

std::string PrivateKey::Sign(std::string_view text) const {
    const Context context(EVP_MD_CTX_new());
    std::string signature(signatureBytes, '\0');
    std::size_t length = signature.size();
    if (!context || EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get()) != 1 ||
        EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &length,
                       Bytes(text), text.size()) != 1 ||
        length != signatureBytes) {
        throw Failure(ExitCode::General, "the cryptographic library does not sign");
    }
    return signature;
}

PublicKey PrivateKey::Public() const {
    return RawPublicKey(key_.get());
}

} // namespace bundle

PublicKey ReadPublicKey(const std::filesystem::path& pemFile) {
    const bundle::Key key(bundle::ReadKey(pemFile, PEM_read_bio_PUBKEY, "public"));
    return bundle::RawPublicKey(key.get());
}

} // namespace patchkeeper
