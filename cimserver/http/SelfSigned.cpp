#include "cimserver/http/SelfSigned.hpp"

#include <array>
#include <ctime>
#include <memory>
#include <type_traits>

#include <arpa/inet.h>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <gnutls/x509.h>

namespace cimserver::http {

namespace {

struct FreeCertificate {
    void operator()(gnutls_x509_crt_t certificate) const { gnutls_x509_crt_deinit(certificate); }
};
struct FreeKey {
    void operator()(gnutls_x509_privkey_t key) const { gnutls_x509_privkey_deinit(key); }
};
struct FreeDatum {
    void operator()(unsigned char* data) const { gnutls_free(data); }
};
using CertificatePointer =
    std::unique_ptr<std::remove_pointer_t<gnutls_x509_crt_t>, FreeCertificate>;
using KeyPointer = std::unique_ptr<std::remove_pointer_t<gnutls_x509_privkey_t>, FreeKey>;

void Check(int result) {
    if (result < 0) {
        throw CredentialError(std::string("The certificate cannot be made: ") +
                              gnutls_strerror(result));
    }
}

std::string TextOf(const gnutls_datum_t& datum) {
    const std::unique_ptr<unsigned char, FreeDatum> owner(datum.data);
    return {datum.data, datum.data + datum.size};
}

KeyPointer MakeKey() {
    gnutls_x509_privkey_t raw = nullptr;
    Check(gnutls_x509_privkey_init(&raw));
    KeyPointer key(raw);
    Check(gnutls_x509_privkey_generate(raw, GNUTLS_PK_ECDSA,
                                       GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1), 0));
    return key;
}

void AddName(gnutls_x509_crt_t certificate, const std::string& name) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    const bool isFour = inet_pton(AF_INET, name.c_str(), address.data()) == 1;
    const bool isSix = !isFour && inet_pton(AF_INET6, name.c_str(), address.data()) == 1;
    if (isFour || isSix) {
        Check(gnutls_x509_crt_set_subject_alt_name(
            certificate, GNUTLS_SAN_IPADDRESS, address.data(),
            isFour ? sizeof(in_addr) : sizeof(in6_addr), GNUTLS_FSAN_APPEND));
    } else {
        Check(gnutls_x509_crt_set_subject_alt_name(certificate, GNUTLS_SAN_DNSNAME, name.data(),
                                                   static_cast<unsigned>(name.size()),
                                                   GNUTLS_FSAN_APPEND));
    }
}

void SetSerial(gnutls_x509_crt_t certificate) {
    std::array<unsigned char, 16> serial{};
    Check(gnutls_rnd(GNUTLS_RND_NONCE, serial.data(), serial.size()));
    serial.front() = static_cast<unsigned char>((serial.front() & 0x3fU) | 0x40U); // positive
    Check(gnutls_x509_crt_set_serial(certificate, serial.data(), serial.size()));
}

void SetPurpose(gnutls_x509_crt_t certificate) {
    Check(gnutls_x509_crt_set_basic_constraints(certificate, 0, -1));
    Check(gnutls_x509_crt_set_key_usage(certificate, GNUTLS_KEY_DIGITAL_SIGNATURE));
    Check(gnutls_x509_crt_set_key_purpose_oid(certificate, GNUTLS_KP_TLS_WWW_SERVER, 0));
}

void SetTime(gnutls_x509_crt_t certificate, int days) {
    constexpr std::time_t secondsOfDay = 24 * 60 * 60;
    const std::time_t now = std::time(nullptr);
    Check(gnutls_x509_crt_set_activation_time(certificate, now));
    Check(gnutls_x509_crt_set_expiration_time(certificate, now + days * secondsOfDay));
}

} // namespace

PemPair MakeSelfSigned(const std::vector<std::string>& names, int days) {
    const KeyPointer key = MakeKey();
    gnutls_x509_crt_t certificate = nullptr;
    Check(gnutls_x509_crt_init(&certificate));
    const CertificatePointer owner(certificate);
    Check(gnutls_x509_crt_set_version(certificate, 3));
    SetSerial(certificate);
    SetTime(certificate, days);
    Check(gnutls_x509_crt_set_dn_by_oid(certificate, GNUTLS_OID_X520_COMMON_NAME, 0,
                                        names.front().data(),
                                        static_cast<unsigned>(names.front().size())));
    for (const std::string& name : names) {
        AddName(certificate, name);
    }
    SetPurpose(certificate);
    Check(gnutls_x509_crt_set_key(certificate, key.get()));
    Check(gnutls_x509_crt_sign2(certificate, certificate, key.get(), GNUTLS_DIG_SHA256, 0));
    gnutls_datum_t certificateText{};
    Check(gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_PEM, &certificateText));
    PemPair pair;
    pair.certificate = TextOf(certificateText);
    gnutls_datum_t keyText{};
    Check(gnutls_x509_privkey_export2(key.get(), GNUTLS_X509_FMT_PEM, &keyText));
    pair.key = TextOf(keyText);
    return pair;
}

} // namespace cimserver::http
