// What only the code that talks to the TLS library sees of a certificate.
#pragma once

#include "cimserver/http/Certificate.hpp"

#include <gnutls/gnutls.h>

namespace cimserver::http {

struct Certificate::Loaded {
    Loaded();
    ~Loaded();
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

    gnutls_certificate_credentials_t credentials = nullptr;
};

/// The versions and ciphers of TLS: the library's usual ones, but no version before 1.2.
inline constexpr const char* tlsPriorities = "NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2";

} // namespace cimserver::http
