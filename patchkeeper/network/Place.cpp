#include "patchkeeper/network/Place.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace patchkeeper {

namespace {

constexpr std::string_view digits = "0123456789ABCDEF";
constexpr std::string_view unreserved = "-._~"; // besides letters and digits
constexpr std::string_view reserved = ":/?#[]@!$&'()*+,;=%";
constexpr unsigned largestPort = 65'535;

constexpr auto schemes = std::to_array<std::pair<Protocol, std::string_view>>({
    {Protocol::Ftp, "ftp"},
    {Protocol::Http, "http"},
    {Protocol::Https, "https"},
    {Protocol::Smb, "smb"},
});

std::string_view SchemeOf(Protocol protocol) {
    return std::find_if(schemes.begin(), schemes.end(),
                        [&](const auto& scheme) { return scheme.first == protocol; })
        ->second;
}

bool IsLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

bool HasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char letter) {
        return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F;
    });
}

// A control character in one of them would be a command of its own to an FTP server.
void RefuseControls(const Credentials& credentials) {
    if (HasControls(credentials.user) || HasControls(credentials.password)) {
        throw NoPlace("the user name or the password holds a control character");
    }
}

// The address is not repeated in a sentence: somebody may have put a password into it.
std::string HostOf(const std::string& address) {
    const bool isBracketed = address.size() > 2 && address.front() == '[' && address.back() == ']';
    const std::string host = isBracketed ? address.substr(1, address.size() - 2) : address;
    const bool isNumber6 = host.find(':') != std::string::npos;
    const std::string_view others = isNumber6 ? ":." : "-._";
    const bool isGood = std::all_of(host.begin(), host.end(), [&](char letter) {
        return IsLetterOrDigit(letter) || others.find(letter) != std::string_view::npos;
    });
    if (host.empty() || host.front() == '-' || !isGood || (isBracketed && !isNumber6)) {
        throw NoPlace("the server's address is neither an IP address nor a host name");
    }
    return isNumber6 ? '[' + host + ']' : host;
}

// Takes `:PORT` off the front.
std::string TakePort(std::string_view& rest) {
    if (rest.empty() || rest.front() != ':') {
        return "";
    }
    const std::string_view text = rest.substr(1, rest.find_first_of("/?#", 1) - 1);
    unsigned port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0 ||
        port > largestPort) {
        throw NoPlace("what follows the colon is no port from 1 to 65535");
    }
    rest.remove_prefix(text.size() + 1);
    return ':' + std::to_string(port);
}

int HexDigit(char letter) {
    const char upper =
        letter >= 'a' && letter <= 'f' ? static_cast<char>(letter - 'a' + 'A') : letter;
    const std::size_t value = digits.find(upper);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

Credentials CredentialsOf(std::string_view userInfo) {
    const auto colon = userInfo.find(':');
    Credentials credentials;
    credentials.user = WithoutPercents(std::string(userInfo.substr(0, colon)));
    if (colon != std::string_view::npos) {
        credentials.password = WithoutPercents(std::string(userInfo.substr(colon + 1)));
    }
    return credentials;
}

} // namespace

Place PlaceOf(Protocol protocol, const std::string& address, const Credentials& credentials,
              const std::string& path) {
    RefuseControls(credentials);
    const std::string host = HostOf(address);
    std::string slashed = path;
    if (protocol == Protocol::Smb) {
        std::replace(slashed.begin(), slashed.end(), '\\', '/');
    }
    std::string_view rest = slashed;
    const std::string port = TakePort(rest);
    if (!port.empty() && rest.starts_with('/')) {
        rest.remove_prefix(1); // ends the port
    }
    if (HasControls(rest)) {
        throw NoPlace("the path holds a control character");
    }
    const bool isHttp = protocol == Protocol::Http || protocol == Protocol::Https;
    if (protocol != Protocol::Ftp) {
        rest.remove_prefix(std::min(rest.find_first_not_of('/'), rest.size()));
    }
    return {protocol,
            std::string(SchemeOf(protocol)) + "://" + host + port + '/' +
                WithPercents(rest, isHttp ? reserved : "/"),
            credentials};
}

Place PlaceOfUrl(const std::string& url) {
    const auto scheme = std::find_if(schemes.begin(), schemes.end(), [&](const auto& one) {
        return url.starts_with(std::string(one.second) + "://");
    });
    if (scheme == schemes.end()) {
        throw NoPlace("the URL begins with none of file:///, http://, https://, ftp:// and "
                      "smb://");
    }
    std::string_view rest = std::string_view(url).substr(scheme->second.size() + 3);
    rest = rest.substr(0, rest.find('#'));
    const std::string_view authority = rest.substr(0, rest.find_first_of("/?"));
    rest.remove_prefix(authority.size());
    const auto at = authority.rfind('@');
    Credentials credentials;
    std::string_view server = authority;
    if (at != std::string_view::npos) {
        credentials = CredentialsOf(authority.substr(0, at));
        server.remove_prefix(at + 1);
    }
    const auto bracket = server.rfind(']');
    const auto colon = server.find(':', bracket == std::string_view::npos ? 0 : bracket);
    std::string_view portText =
        colon == std::string_view::npos ? std::string_view() : server.substr(colon);
    const std::string host = HostOf(std::string(server.substr(0, colon)));
    const std::string port = TakePort(portText);
    if (HasControls(rest)) {
        throw NoPlace("the path holds a control character");
    }
    return {scheme->first,
            std::string(scheme->second) + "://" + host + port + (rest.starts_with('/') ? "" : "/") +
                WithPercents(rest, reserved),
            credentials};
}

std::string WithPercents(std::string_view text, std::string_view kept) {
    std::string encoded;
    for (const char letter : text) {
        if (IsLetterOrDigit(letter) || unreserved.find(letter) != std::string_view::npos ||
            kept.find(letter) != std::string_view::npos) {
            encoded += letter;
            continue;
        }
        const auto byte = static_cast<unsigned char>(letter);
        encoded += '%';
        encoded += digits[byte >> 4U];
        encoded += digits[byte & 0xFU];
    }
    return encoded;
}

std::string WithoutPercents(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? HexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            throw NoPlace("a % is not followed by two hexadecimal digits");
        }
        plain += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (HasControls(plain)) {
        throw NoPlace("it holds a control character");
    }
    return plain;
}

} // namespace patchkeeper
