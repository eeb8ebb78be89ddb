// The CIMObject header: the namespace of an intrinsic call, the path of the class or instance of
// an extrinsic one (DMTF DSP0200, 6.3).
#pragma once

#include "cimserver/cimxml/MethodCall.hpp"

#include <string_view>

namespace cimserver::cimxml {

/// The namespace, class or instance of the call. Throws ProtocolError when there is none.
const Element& ObjectOf(const MethodCall& call);

/// True when `header`, as it was sent, is the object of the call. Names are compared without regard
/// to case, keys in any order, texts byte for byte; a host is passed over. What stands in quotes
/// need not be percent-encoded. Throws ProtocolError when the call's object does not fit the DTD.
bool IsObjectOf(const MethodCall& call, std::string_view header);

} // namespace cimserver::cimxml
