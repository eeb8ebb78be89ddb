// The envelope of a request: CIM, MESSAGE, SIMPLEREQ and the call within (DMTF DSP0201).
#pragma once

#include "cimserver/cimxml/XmlTree.hpp"

#include <string>

namespace cimserver::cimxml {

struct MethodCall {
    std::string messageId;
    std::string name;
    bool isExtrinsic = false;
    const Element* element = nullptr; ///< the IMETHODCALL or METHODCALL
};

/// `root` must outlive the result. Throws ProtocolError.
MethodCall ReadMethodCall(const Element& root);

/// True for `major` and a minor number after a point; further parts may follow.
bool IsVersion(std::string_view version, char major);

} // namespace cimserver::cimxml
