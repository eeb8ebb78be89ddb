// What a request says of who sends it: HTTP Basic (RFC 7617).
#pragma once

#include "cimserver/http/Http.hpp"

#include <optional>
#include <string>

namespace cimserver::http {

struct Credentials {
    std::string user;
    std::string password;
};

/// Exactly one of three: nothing was said (both empty), credentials, or a fault that tells why what
/// was said is none. A fault holds nothing of what the client sent.
struct Offer {
    std::optional<Credentials> credentials;
    std::string fault;
};

/// Reads the Authorization headers. Faults are an empty header, several of them, another scheme, no
/// strict Base64 (RFC 4648, 4), no colon, an empty user name, and control characters.
Offer ReadOffer(const Request& request);

/// Takes the Authorization headers away, so that no password goes further than this.
void DropCredentials(Request& request);

} // namespace cimserver::http
