// Turns values into another CIM type.
#pragma once

#include "OW_CIMFwd.hpp"
#include "OW_Exception.hpp"
#include "OW_config.h"

namespace OpenWBEM {

/// A value was read as a type that it does not have.
OW_DECLARE_EXCEPTION(ValueCast)

namespace CIMValueCast {

/// The value as `type`. Null value or null type: null. The same type and kind: the value itself.
/// Otherwise element by element through text: everything to and from string; numbers, booleans and
/// char16 among each other as far as the text fits; dates and references only to and from string. A
/// scalar becomes an array of one; of an array the first element is taken (none: null). Throws
/// CIMException FAILED; a text that is no date throws CIMDateTimeException.
CIMValue castValueToDataType(const CIMValue& value, const CIMDataType& type);

} // namespace CIMValueCast
} // namespace OpenWBEM
