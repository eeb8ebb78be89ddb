#include "cimserver/conformance/Table.hpp"
#include "support/CallHeaders.hpp"

#include <algorithm>
#include <stdexcept>

namespace conformance {

namespace {

using test_support::HeaderList;

void Remove(HeaderList& headers, const std::string& name) {
    std::erase_if(headers, [&](const auto& header) { return header.first == name; });
}

bool Replace(std::string& text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    if (at == std::string::npos) {
        return false;
    }
    text.replace(at, from.size(), to);
    return true;
}

} // namespace

Request::Request()
    : headers_{{"Host", "localhost"},
               {"Content-Type", "application/xml; charset=\"utf-8\""},
               {"CIMProtocolVersion", "1.0"},
               {"CIMOperation", "MethodCall"}} {
    *this = Calling(test_support::IntrinsicCall("EnumerateClassNames", ""));
}

Request Request::Method(const std::string& method) const {
    Request changed = *this;
    changed.method_ = method;
    return changed;
}

Request Request::Line(const std::string& rest) const {
    Request changed = *this;
    changed.line_ = rest;
    return changed;
}

Request Request::With(const std::string& name, const std::string& value) const {
    return Without(name).Adding(name, value);
}

Request Request::Adding(const std::string& name, const std::string& value) const {
    Request changed = *this;
    changed.headers_.emplace_back(name, value);
    return changed;
}

Request Request::Without(const std::string& name) const {
    Request changed = *this;
    Remove(changed.headers_, name);
    return changed;
}

Request Request::Prefixed(const std::string& prefix) const {
    Request changed = *this;
    for (auto& header : changed.headers_) {
        if (header.first.starts_with("CIM")) {
            header.first.insert(0, prefix);
        }
    }
    return changed;
}

Request Request::Body(const std::string& body) const {
    Request changed = *this;
    changed.body_ = body;
    return changed.With("Content-Length", std::to_string(body.size()));
}

Request Request::Calling(const std::string& body) const {
    Request changed = Body(body);
    for (const auto& [name, value] : test_support::CallHeaders(body)) {
        changed = changed.With(name, value);
    }
    return changed;
}

Request Request::Replacing(const std::string& from, const std::string& to) const {
    std::string body = body_;
    if (!Replace(body, from, to)) {
        throw std::invalid_argument(from + " is not in " + body);
    }
    return Body(body);
}

Request Request::InNameSpace(const std::string& last) const {
    return Replacing("cimv2", last).With("CIMObject", "root%2F" + last);
}

Request Request::Raw(const std::string& bytes) const {
    Request changed = *this;
    changed.raw_ = bytes;
    return changed;
}

std::string Request::Text() const {
    if (!raw_.empty()) {
        return raw_;
    }
    std::string text = method_ + " " + line_ + "\r\n";
    for (const auto& [name, value] : headers_) {
        text.append(name).append(": ").append(value).append("\r\n");
    }
    return text + "\r\n" + body_;
}

Request Operation(const std::string& name, const std::string& parameters) {
    return Request().Calling(test_support::IntrinsicCall(name, parameters));
}

Request MethodCall(const std::string& name, const std::string& object,
                   const std::string& parameters) {
    return Request().Calling(test_support::ExtrinsicCall(name, object, parameters));
}

std::string Parameter(const std::string& name, const std::string& value) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + value + "</IPARAMVALUE>";
}

Expected Status(int status) {
    return {.status = status};
}

Expected Refused(int status, const std::string& cimError) {
    return {.status = status, .cimError = cimError};
}

Expected Error(int number, const std::string& culprit) {
    return {.error = std::to_string(number) + " " + culprit};
}

Expected Answered(const std::string& holds) {
    return {.holds = holds};
}

} // namespace conformance
