#include "cimserver/http/Certificate.hpp"

#include "cimserver/http/CertificateLoaded.hpp"

#include <cerrno>
#include <new>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace cimserver::http {

namespace {

void CheckReadable(const std::filesystem::path& file, const char* what) {
    if (access(file.c_str(), R_OK) != 0) {
        throw CredentialError(file.string() + ": the " + what +
                              " cannot be read: " + std::generic_category().message(errno) +
                              "; `cimserver certificate` makes a self-signed pair");
    }
}

void CheckSecret(const std::filesystem::path& key) {
    struct stat status = {};
    if (stat(key.c_str(), &status) == 0 && (status.st_mode & S_IRWXO) != 0) {
        throw CredentialError(key.string() +
                              ": the key can be read or changed by everybody; chmod o-rwx");
    }
}

std::shared_ptr<const Certificate::Loaded> Load(const CertificateFiles& files) {
    CheckReadable(files.certificate, "certificate");
    CheckReadable(files.key, "key");
    auto loaded = std::make_shared<Certificate::Loaded>();
    const int result = gnutls_certificate_set_x509_key_file(
        loaded->credentials, files.certificate.c_str(), files.key.c_str(), GNUTLS_X509_FMT_PEM);
    if (result < 0) {
        throw CredentialError(files.certificate.string() + ", " + files.key.string() +
                              ": no certificate with its key in PEM: " + gnutls_strerror(result) +
                              "; `cimserver certificate` makes such a pair");
    }
    CheckSecret(files.key);
    return loaded;
}

} // namespace

Certificate::Loaded::Loaded() {
    if (gnutls_certificate_allocate_credentials(&credentials) != GNUTLS_E_SUCCESS) {
        throw std::bad_alloc();
    }
}

Certificate::Loaded::~Loaded() {
    gnutls_certificate_free_credentials(credentials);
}

Certificate::Certificate(const CertificateFiles& files) : loaded_(Load(files)) {
}

std::shared_ptr<const Certificate::Loaded> Certificate::Current() const {
    const std::lock_guard lock(mutex_);
    return loaded_;
}

void Certificate::Reload(const CertificateFiles& files) {
    auto next = Load(files);
    const std::lock_guard lock(mutex_);
    loaded_.swap(next);
}

} // namespace cimserver::http
