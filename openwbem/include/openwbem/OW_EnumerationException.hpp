// Thrown when nothing is left to take out of an enumeration.
#pragma once

#include "OW_Exception.hpp"
#include "OW_config.h"

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(Enumeration, OW_COMMON_API)

} // namespace OpenWBEM
