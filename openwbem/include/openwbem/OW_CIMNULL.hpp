// The argument that makes a null object of a CIM class: CIMInstance(CIMNULL).
#pragma once

#include "OW_config.h"

namespace OpenWBEM {

enum CIMNULL_t { CIMNULL };

} // namespace OpenWBEM
