// Reads values, instances and the parameters of methods from a request (DMTF DSP0201). All
// functions throw ProtocolError when the elements do not fit the DTD, and CIMException
// INVALID_PARAMETER, which says what is meant, when a text is no value of its type or a value has
// no form in this server.
#pragma once

#include "cimserver/cimxml/XmlTree.hpp"

#include "OW_CIM.hpp"

namespace cimserver::cimxml {

/// A VALUE, VALUE.ARRAY, VALUE.REFERENCE or VALUE.REFARRAY as a value of that type; `what` stands
/// for it in errors ("Parameter Path"). A reference is one whatever the type says.
OpenWBEM::CIMValue ReadValue(const Element& value, OpenWBEM::CIMDataType::Type type,
                             const OpenWBEM::String& what);

/// An INSTANCE: class name and properties. Qualifiers are passed over, they are the class's.
OpenWBEM::CIMInstance ReadInstance(const Element& instance);

/// A PARAMVALUE; without PARAMTYPE the value is a string or an array of strings.
OpenWBEM::CIMParamValue ReadParameter(const Element& paramValue);

} // namespace cimserver::cimxml
