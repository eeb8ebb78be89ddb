#include "cimserver/cimxml/MethodCall.hpp"

#include "cimserver/cimxml/DtdNames.hpp"
#include "cimserver/cimxml/ProtocolError.hpp"

#include <algorithm>

namespace cimserver::cimxml {

namespace {

void RequireVersion(const std::string& version, char major, const char* cimError) {
    if (!IsVersion(version, major)) {
        throw ProtocolError(501, cimError);
    }
}

/// The request within a MESSAGE.
const Element& RequestOf(const Element& message) {
    const Element& request = message.OnlyChild();
    if (request.name == "MULTIREQ") {
        throw MultipleRequests();
    }
    if (request.name == "SIMPLEEXPREQ" || request.name == "MULTIEXPREQ") {
        throw UnsupportedOperation();
    }
    if (request.name != "SIMPLEREQ") {
        throw NotLooselyValid();
    }
    return request;
}

/// The call within a SIMPLEREQ; correlators before it are of no use to this server.
const Element& CallOf(const Element& request) {
    const auto call = std::find_if(request.children.begin(), request.children.end(),
                                   [](const Element& child) { return child.name != "CORRELATOR"; });
    if (call == request.children.end() || call + 1 != request.children.end() ||
        (call->name != "IMETHODCALL" && call->name != "METHODCALL")) {
        throw NotLooselyValid();
    }
    return *call;
}

/// Text stands only where the DTD has text, and elements not where it has none.
void CheckContent(const Element& element) {
    const bool isBlank = element.text.find_first_not_of(" \t\r\n") == std::string::npos;
    if ((!isBlank && !HoldsText(element.name)) ||
        (!element.children.empty() && HoldsNoElements(element.name))) {
        throw NotLooselyValid();
    }
    for (const Element& child : element.children) {
        CheckContent(child);
    }
}

} // namespace

bool IsVersion(std::string_view version, char major) {
    const bool hasOnlyDigitsAndPoints =
        version.find_first_not_of("0123456789.") == std::string_view::npos;
    return hasOnlyDigitsAndPoints && version.size() >= 3 && version[0] == major &&
           version[1] == '.' && version[2] != '.' && version.back() != '.';
}

MethodCall ReadMethodCall(const Element& root) {
    if (root.name != "CIM") {
        throw NotLooselyValid();
    }
    RequireVersion(root.RequiredAttribute("CIMVERSION"), '2', "unsupported-cim-version");
    RequireVersion(root.RequiredAttribute("DTDVERSION"), '2', "unsupported-dtd-version");
    const Element& message = root.OnlyChild("MESSAGE");
    const std::string& id = message.RequiredAttribute("ID");
    RequireVersion(message.RequiredAttribute("PROTOCOLVERSION"), '1',
                   "unsupported-protocol-version");
    const Element& call = CallOf(RequestOf(message));
    CheckContent(root);
    return {id, call.RequiredAttribute("NAME"), call.name == "METHODCALL", &call};
}

} // namespace cimserver::cimxml
