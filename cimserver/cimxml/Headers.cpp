#include "cimserver/cimxml/Headers.hpp"

#include "cimserver/cimxml/MethodCall.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <algorithm>

namespace cimserver::cimxml {

namespace {

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return Lower(left) == Lower(right); });
}

const std::string* Find(const HeaderList& headers, std::string_view name) {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
        return EqualsIgnoringCase(header.first, name);
    });
    return found == headers.end() ? nullptr : &found->second;
}

/// The prefix of the CIM headers, such as `23-`: an M-POST request names it in its Man header as
/// `ns=23` (RFC 2774).
std::string PrefixOf(const Message& message) {
    const std::string* man = message.method == "M-POST" ? Find(message.headers, "Man") : nullptr;
    const std::size_t start = man == nullptr ? std::string::npos : man->find("ns=");
    if (start == std::string::npos) {
        return {};
    }
    const std::size_t first = start + 3;
    const std::size_t end = std::min(man->find_first_not_of("0123456789", first), man->size());
    return man->substr(first, end - first) + "-";
}

} // namespace

void CheckHeaders(const Message& message) {
    if (message.method != "POST" && message.method != "M-POST") {
        throw ProtocolError(Status{405, {{"Allow", "POST, M-POST"}}});
    }
    const std::string prefix = PrefixOf(message);
    const std::string* operation = Find(message.headers, prefix + "CIMOperation");
    if (operation == nullptr || !EqualsIgnoringCase(*operation, "MethodCall")) {
        throw UnsupportedOperation();
    }
    const std::string* version = Find(message.headers, prefix + "CIMProtocolVersion");
    if (version != nullptr && !IsVersion(*version, '1')) {
        throw ProtocolError(501, "unsupported-protocol-version");
    }
}

} // namespace cimserver::cimxml
