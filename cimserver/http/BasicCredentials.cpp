#include "cimserver/http/BasicCredentials.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <strings.h>

namespace cimserver::http {

namespace {

bool IsAuthorization(const Header& header) {
    return strcasecmp(header.name.c_str(), "Authorization") == 0;
}

/// 64 for what is no digit.
std::uint32_t Digit(char c) {
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    return static_cast<std::uint32_t>(std::min(digits.find(c), digits.size()));
}

/// Padded, without anything between, and with zeros where bits are left over.
std::optional<std::string> FromBase64(std::string_view text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with("=") ? 1 : 0;
    text.remove_suffix(padding);
    std::string bytes;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char c : text) {
        const std::uint32_t digit = Digit(c);
        if (digit == 64) {
            return std::nullopt;
        }
        bits = (bits << 6U) | digit;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<char>(static_cast<unsigned char>(bits >> count)));
            bits &= (1U << count) - 1U;
        }
    }
    return bits == 0 ? std::optional(bytes) : std::nullopt;
}

bool IsControl(char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

Offer Fault(const char* text) {
    return {std::nullopt, text};
}

Offer ReadBasic(std::string_view encoded) {
    const auto text = FromBase64(encoded);
    if (!text) {
        return Fault("credentials that are not Base64");
    }
    const std::size_t colon = text->find(':');
    if (colon == std::string::npos) {
        return Fault("credentials without a colon");
    }
    if (colon == 0) {
        return Fault("no user name");
    }
    if (std::any_of(text->begin(), text->end(), IsControl)) {
        return Fault("control characters in the credentials");
    }
    return {Credentials{text->substr(0, colon), text->substr(colon + 1)}, {}};
}

} // namespace

Offer ReadOffer(const Request& request) {
    const auto first =
        std::find_if(request.headers.begin(), request.headers.end(), &IsAuthorization);
    if (first == request.headers.end()) {
        return {};
    }
    if (std::any_of(first + 1, request.headers.end(), &IsAuthorization)) {
        return Fault("several Authorization headers");
    }
    std::string_view value = first->value;
    value.remove_suffix(value.size() - (value.find_last_not_of(" \t") + 1));
    const std::size_t blank = std::min(value.find(' '), value.size());
    const std::string_view scheme = value.substr(0, blank);
    constexpr std::string_view basic = "Basic";
    if (scheme.empty()) {
        return Fault("an empty Authorization header");
    }
    if (scheme.size() != basic.size() ||
        strncasecmp(scheme.data(), basic.data(), basic.size()) != 0) {
        return Fault("another authentication scheme than Basic");
    }
    value.remove_prefix(blank);
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    return ReadBasic(value);
}

void DropCredentials(Request& request) {
    std::erase_if(request.headers, &IsAuthorization);
}

} // namespace cimserver::http
