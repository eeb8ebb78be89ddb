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

} // namespace cimserver::http
