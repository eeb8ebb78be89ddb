#include "cimserver/http/Tls.hpp"

#include "cimserver/http/CertificateLoaded.hpp"

#include <string>

#include <gnutls/abstract.h>
#include <gnutls/gnutls.h>

namespace cimserver::http {

namespace {

/// The HTTP library wants a certificate at its start; this stands for those that UseCertificate
/// gives.
int NoOtherCertificate(gnutls_session_t /*session*/, const gnutls_datum_t* /*names*/,
                       int /*nameCount*/, const gnutls_pk_algorithm_t* /*algorithms*/,
                       int /*algorithmCount*/, gnutls_pcert_st** /*certificate*/,
                       unsigned* /*length*/, gnutls_privkey_t* /*key*/) {
    return -1;
}

} // namespace

std::vector<MHD_OptionItem> TlsOptions(bool hasTls) {
    std::vector<MHD_OptionItem> options;
    if (hasTls) {
        // The library's usual ciphers, but no version before 1.2; it takes no constant.
        static std::string priorities = "NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2";
        options.push_back({MHD_OPTION_HTTPS_PRIORITIES, 0, priorities.data()});
        options.push_back(
            {MHD_OPTION_HTTPS_CERT_CALLBACK, 0, reinterpret_cast<void*>(&NoOtherCertificate)});
    }
    options.push_back({MHD_OPTION_END, 0, nullptr});
    return options;
}

std::shared_ptr<const Certificate::Loaded> UseCertificate(MHD_Connection* connection,
                                                          const Certificate* certificate) {
    const MHD_ConnectionInfo* info =
        MHD_get_connection_info(connection, MHD_CONNECTION_INFO_GNUTLS_SESSION);
    if (certificate == nullptr || info == nullptr) {
        return nullptr;
    }
    auto loaded = certificate->Current();
    gnutls_credentials_set(static_cast<gnutls_session_t>(info->tls_session), GNUTLS_CRD_CERTIFICATE,
                           loaded->credentials);
    return loaded;
}

} // namespace cimserver::http
