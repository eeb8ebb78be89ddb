#include "cimserver/http/Framing.hpp"

#include <algorithm>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <strings.h>

namespace cimserver::http {

namespace {

constexpr int badRequest = 400;
constexpr int lengthRequired = 411;
constexpr int notImplemented = 501;

std::vector<std::string> ValuesOf(const Request& request, const char* name) {
    std::vector<std::string> values;
    for (const Header& header : request.headers) {
        if (strcasecmp(header.name.c_str(), name) == 0) {
            values.push_back(header.value);
        }
    }
    return values;
}

bool ExpectsBody(const std::string& method) {
    return method == "POST" || method == "M-POST";
}

bool HasBlank(const Header& header) {
    return header.name.find_first_of(" \t") != std::string::npos;
}

/// Without the port, and an IPv6 address without its brackets (RFC 3986, 3.2.2).
std::string HostIn(const std::string& value) {
    const std::size_t bracket = value.find(']');
    if (value.starts_with('[') && bracket != std::string::npos) {
        const bool isWhole = bracket + 1 == value.size() || value[bracket + 1] == ':';
        return isWhole ? value.substr(1, bracket - 1) : value;
    }
    return value.substr(0, value.find(':'));
}

} // namespace

bool HasNoNamedHost(const Request& request) {
    const auto values = ValuesOf(request, "Host");
    return std::all_of(values.begin(), values.end(), [](const std::string& value) {
        const std::string host = HostIn(value);
        in_addr four{};
        in6_addr six{};
        return host.empty() || strcasecmp(host.c_str(), "localhost") == 0 ||
               inet_pton(AF_INET, host.c_str(), &four) == 1 ||
               inet_pton(AF_INET6, host.c_str(), &six) == 1;
    });
}

std::optional<int> FramingFault(const Request& request, std::string_view version) {
    const bool isOld = version == "HTTP/1.0";
    if (std::any_of(request.headers.begin(), request.headers.end(), HasBlank)) {
        return badRequest;
    }
    if (!isOld && ValuesOf(request, "Host").size() != 1) {
        return badRequest;
    }
    const auto codings = ValuesOf(request, "Transfer-Encoding");
    const auto lengths = ValuesOf(request, "Content-Length");
    if (lengths.size() > 1 || (!codings.empty() && (isOld || !lengths.empty()))) {
        return badRequest;
    }
    if (codings.size() > 1 ||
        (codings.size() == 1 && strcasecmp(codings.front().c_str(), "chunked") != 0)) {
        return notImplemented;
    }
    if (lengths.empty() && codings.empty() && ExpectsBody(request.method)) {
        return lengthRequired;
    }
    return std::nullopt;
}

} // namespace cimserver::http
