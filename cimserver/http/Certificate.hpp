// The certificate with which the server proves at the start of TLS who it is.
#pragma once

#include "cimserver/http/SafeFile.hpp"

#include <filesystem>
#include <memory>
#include <mutex>

namespace cimserver::http {

struct CertificateFiles {
    std::filesystem::path certificate; ///< PEM, with the chain behind it if there is one
    std::filesystem::path key;         ///< PEM; may be the same file
};

/// Any thread may ask. A connection keeps what it began with.
class Certificate {
public:
    /// The TLS library's certificate and key, ready for use.
    struct Loaded;

    /// Throws CredentialError.
    explicit Certificate(const CertificateFiles& files);

    std::shared_ptr<const Loaded> Current() const;

    /// Reads these files for the connections that are accepted from now on. Throws CredentialError;
    /// then everything stays as it was.
    void Reload(const CertificateFiles& files);

private:
    mutable std::mutex mutex_;
    std::shared_ptr<const Loaded> loaded_;
};

} // namespace cimserver::http
