// TLS of the HTTP library: how it is told of our versions and certificates.
#pragma once

#include "cimserver/http/Certificate.hpp"

#include <memory>
#include <vector>

#include <microhttpd.h>

namespace cimserver::http {

/// Options for the start of a listener, closed by MHD_OPTION_END: with TLS 1.2 and later, or none.
std::vector<MHD_OptionItem> TlsOptions(bool hasTls);

/// Gives a connection that begins the certificate of this moment, whatever the HTTP library would
/// take. What is returned has to live as long as the connection; null without TLS.
std::shared_ptr<const Certificate::Loaded> UseCertificate(MHD_Connection* connection,
                                                          const Certificate* certificate);

} // namespace cimserver::http
