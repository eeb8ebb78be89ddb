// The shared data behind instances. Private to the library.
#pragma once

#include "OW_CIMInstance.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"

namespace OpenWBEM {

struct CIMInstanceData : COWIntrusiveCountableBase {
    CIMName className;
    CIMPropertyArray properties;
    CIMPropertyArray keys;
    CIMQualifierArray qualifiers;
};

} // namespace OpenWBEM
