// Thrown when a value that was asked for is null.
#pragma once

#include "OW_Exception.hpp"
#include "OW_config.h"

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(NULLValue, OW_COMMON_API)

} // namespace OpenWBEM
