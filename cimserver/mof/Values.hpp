// Types and values of MOF as the object model holds them.
#pragma once

#include "cimserver/mof/Syntax.hpp"

#include "OW_CIM.hpp"

#include <optional>

namespace cimserver::mof {

/// The type of an element. A reference names its class; whether there is such a class is not asked.
/// Throws syntax::Error for an unknown type and for an array of no possible size.
OpenWBEM::CIMDataType ToDataType(const syntax::Name& type, bool isReference,
                                 const std::optional<syntax::Array>& array);

/// Null stays null. Throws syntax::Error where the value is not one of the type.
OpenWBEM::CIMValue ToCimValue(const syntax::Value& value, const OpenWBEM::CIMDataType& type);

OpenWBEM::String ToString(const std::string& text);

} // namespace cimserver::mof
