// A request that is answered by an HTTP status instead of a CIM-XML answer.
#pragma once

#include "cimserver/cimxml/CimXml.hpp"

#include <optional>
#include <stdexcept>
#include <utility>

namespace cimserver::cimxml {

class ProtocolError : public std::runtime_error {
public:
    /// `cimError` is the value of the CIMError header (DMTF DSP0200, clause on CIM-XML status
    /// codes).
    ProtocolError(int httpStatus, const char* cimError)
        : std::runtime_error(cimError), status_{httpStatus, {{"CIMError", cimError}}} {}
    explicit ProtocolError(Status status)
        : std::runtime_error("no CIM-XML request"), status_(std::move(status)) {}

    const Status& AsStatus() const { return status_; }

    /// The limit that the request reached.
    std::optional<XmlLimit> reached;

private:
    Status status_;
};

inline ProtocolError NotWellFormed() {
    return {400, "request-not-well-formed"};
}
inline ProtocolError NotLooselyValid() {
    return {400, "request-not-loosely-valid"};
}
/// Allowed by the DTD, but more than this server takes.
inline ProtocolError NotValid(std::optional<XmlLimit> reached = std::nullopt) {
    ProtocolError error(400, "request-not-valid");
    error.reached = reached;
    return error;
}
inline ProtocolError HeaderMismatch() {
    return {400, "header-mismatch"};
}
inline ProtocolError MultipleRequests() {
    return {501, "multiple-requests-unsupported"};
}
inline ProtocolError UnsupportedOperation() {
    return {400, "unsupported-operation"};
}

} // namespace cimserver::cimxml
