// Certificates for those who have nobody to sign one.
#pragma once

#include "cimserver/http/SafeFile.hpp"

#include <string>
#include <vector>

namespace cimserver::http {

struct PemPair {
    std::string certificate;
    std::string key;
};

/// A key on the curve P-256 and a certificate for a TLS server that it signs itself. `names` are
/// host names and numeric addresses, at least one: the first is the common name, all of them are
/// subject alternative names. Valid from now on for `days`. Throws CredentialError.
PemPair MakeSelfSigned(const std::vector<std::string>& names, int days);

} // namespace cimserver::http
