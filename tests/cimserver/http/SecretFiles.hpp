// Password files and certificates for tests: cheap to check, in a directory that goes with them.
#pragma once

#include "cimserver/http/Certificate.hpp"
#include "cimserver/http/Users.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace http_test {

/// The cost of hashes of tests: a check takes about 1 ms.
constexpr unsigned long cheap = 1;

class SecretFiles {
public:
    SecretFiles();
    ~SecretFiles();
    SecretFiles(const SecretFiles&) = delete;
    SecretFiles& operator=(const SecretFiles&) = delete;

    std::filesystem::path Path(const std::string& name) const { return directory_ / name; }
    /// With mode 0600.
    void Write(const std::string& name, const std::string& text) const;
    std::vector<std::string> Names() const;

    /// A file with anna, whose password is `secret`, and bert with `hidden`.
    cimserver::http::UserSettings AnnaAndBert() const;
    /// A self-signed pair in one file, for that name and 127.0.0.1.
    cimserver::http::CertificateFiles PairFor(const std::string& name) const;

private:
    std::filesystem::path directory_;
};

} // namespace http_test
