#include "cimserver/cimxml/Headers.hpp"

#include "cimserver/cimxml/CimObject.hpp"
#include "cimserver/cimxml/HeaderText.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <algorithm>

namespace cimserver::cimxml {

namespace {

[[noreturn]] void RefuseMediaType() {
    throw ProtocolError(Status{415, {}});
}

void CheckOperation(const Message& message, const std::string& prefix) {
    const auto operations = ValuesOf(message.headers, prefix + "CIMOperation");
    if (operations.size() != 1 || !EqualsIgnoringCase(operations.front(), "MethodCall")) {
        throw UnsupportedOperation();
    }
}

void CheckProtocolVersion(const Message& message, const std::string& prefix) {
    for (const std::string_view version :
         ValuesOf(message.headers, prefix + "CIMProtocolVersion")) {
        if (!IsVersion(version, '1')) {
            throw ProtocolError(501, "unsupported-protocol-version");
        }
    }
}

void CheckBatch(const Message& message, const std::string& prefix) {
    if (!ValuesOf(message.headers, prefix + "CIMBatch").empty()) {
        throw MultipleRequests();
    }
}

bool IsUtf8(std::string_view parameter) {
    const std::size_t equals = std::min(parameter.find('='), parameter.size());
    if (!EqualsIgnoringCase(WithoutBlanks(parameter.substr(0, equals)), "charset")) {
        return true;
    }
    const std::string_view value = parameter.substr(std::min(equals + 1, parameter.size()));
    return EqualsIgnoringCase(WithoutQuotes(WithoutBlanks(value)), "utf-8");
}

/// A body without Content-Type is taken as XML in UTF-8.
void CheckContentType(const Message& message) {
    for (const std::string_view value : ValuesOf(message.headers, "Content-Type")) {
        const auto parts = Parts(value, ';');
        const bool isXml =
            !parts.empty() && (EqualsIgnoringCase(parts.front(), "application/xml") ||
                               EqualsIgnoringCase(parts.front(), "text/xml"));
        if (!isXml || !std::all_of(parts.begin() + 1, parts.end(), IsUtf8)) {
            RefuseMediaType();
        }
    }
    for (const std::string_view coding : ValuesOf(message.headers, "Content-Encoding")) {
        if (!EqualsIgnoringCase(coding, "identity")) {
            RefuseMediaType();
        }
    }
}

std::string_view OnlyValue(const Message& message, const std::string& name) {
    const auto values = ValuesOf(message.headers, name);
    if (values.size() != 1) {
        throw HeaderMismatch();
    }
    return values.front();
}

} // namespace

void CheckHeaders(const Message& message, const std::string& prefix) {
    CheckOperation(message, prefix);
    CheckProtocolVersion(message, prefix);
    CheckContentType(message);
    CheckBatch(message, prefix);
}

void CheckAgainstHeaders(const MethodCall& call, const Message& message,
                         const std::string& prefix) {
    ObjectOf(call);
    const auto method = PercentDecoded(OnlyValue(message, prefix + "CIMMethod"));
    if (!method || !EqualsIgnoringCase(*method, call.name) ||
        !IsObjectOf(call, OnlyValue(message, prefix + "CIMObject"))) {
        throw HeaderMismatch();
    }
}

} // namespace cimserver::cimxml
