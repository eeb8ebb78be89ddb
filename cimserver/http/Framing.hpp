// Whether the head of a request tells for certain where its body ends (RFC 9112, 3.2 and 6).
#pragma once

#include "cimserver/http/Http.hpp"

#include <optional>
#include <string_view>

namespace cimserver::http {

/// The status with which a request is refused before its body is read; nothing when it is taken.
/// What the HTTP library does not look at: a header name with a blank, Host not there once in
/// HTTP/1.1, several lengths, a length beside a transfer coding, or such a coding in HTTP/1.0
/// (400), another coding than chunked (501), and none of both where a body is expected (411).
std::optional<int> FramingFault(const Request& request, std::string_view version);

/// The Host of a request is a numeric address, `localhost`, empty or absent. A web page whose own
/// name was made to lead to this machine (DNS rebinding) cannot have its browser send such a one.
bool HasNoNamedHost(const Request& request);

} // namespace cimserver::http
