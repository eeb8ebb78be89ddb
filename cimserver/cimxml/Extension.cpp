#include "cimserver/cimxml/Extension.hpp"

#include "cimserver/cimxml/HeaderText.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <optional>
#include <utility>

namespace cimserver::cimxml {

namespace {

constexpr std::string_view cimXml = "http://www.dmtf.org/cim/mapping/http/v1.0";

[[noreturn]] void RefuseMethod() {
    throw ProtocolError(Status{405, {{"Allow", "POST, M-POST"}}});
}

[[noreturn]] void RefuseExtension() {
    throw ProtocolError(Status{510, {}});
}

/// `23-` of the parameter `ns=23`; empty for another parameter.
std::string PrefixIn(std::string_view parameter) {
    constexpr std::string_view start = "ns=";
    if (!parameter.starts_with(start)) {
        return {};
    }
    const std::string_view number = parameter.substr(start.size());
    if (number.empty() || number.find_first_not_of("0123456789") != std::string_view::npos) {
        RefuseExtension();
    }
    return std::string(number) + "-";
}

/// Of a declaration such as `"http://..."; ns=23`.
std::string PrefixOf(std::string_view declaration) {
    const auto parts = Parts(declaration, ';');
    if (parts.empty() || WithoutQuotes(parts.front()) != cimXml) {
        RefuseExtension();
    }
    std::string prefix;
    for (const std::string_view parameter : parts) {
        prefix += PrefixIn(parameter);
    }
    return prefix;
}

bool IsCimHeader(std::string_view name) {
    return name.starts_with("CIM");
}

HeaderList Prefixed(HeaderList headers, const std::string& prefix) {
    for (auto& [name, value] : headers) {
        if (IsCimHeader(name)) {
            name.insert(0, prefix);
        }
    }
    return headers;
}

} // namespace

Extension ExtensionOf(const Message& message) {
    if (message.method == "POST") {
        return {};
    }
    if (message.method != "M-POST") {
        RefuseMethod();
    }
    std::optional<std::string> prefix;
    for (const std::string_view header : ValuesOf(message.headers, "Man")) {
        for (const std::string_view declaration : Parts(header, ',')) {
            prefix = PrefixOf(declaration);
        }
    }
    if (!prefix) {
        RefuseExtension();
    }
    return {true, *prefix};
}

ExtendedOutput::ExtendedOutput(Output& output, Extension extension)
    : output_(output), extension_(std::move(extension)) {
}

void ExtendedOutput::Head(const Status& status) {
    if (!extension_.isDemanded) {
        output_.Head(status);
        return;
    }
    Status extended{status.httpStatus, Prefixed(status.headers, extension_.prefix), {}};
    for (const std::string_view trailer : Parts(status.trailerNames, ',')) {
        extended.trailerNames += extended.trailerNames.empty() ? "" : ", ";
        extended.trailerNames.append(extension_.prefix).append(trailer);
    }
    std::string declaration(cimXml);
    if (!extension_.prefix.empty()) {
        declaration += " ; ns=" + extension_.prefix.substr(0, extension_.prefix.size() - 1);
    }
    extended.headers.emplace_back("Man", declaration);
    extended.headers.emplace_back("Ext", "");
    extended.headers.emplace_back("Cache-Control", "no-cache");
    output_.Head(extended);
}

void ExtendedOutput::Trailers(const HeaderList& trailers) {
    output_.Trailers(Prefixed(trailers, extension_.prefix));
}

void ExtendedOutput::LimitTime(MakeLateAnswer late) {
    output_.LimitTime(
        [late = std::move(late), prefix = extension_.prefix](std::chrono::milliseconds limit) {
            LateAnswer answer = late(limit);
            answer.trailers = Prefixed(std::move(answer.trailers), prefix);
            return answer;
        });
}

} // namespace cimserver::cimxml
