// Thrown when a property or key of that name does not exist; the message is the name.
#pragma once

#include "OW_Exception.hpp"
#include "OW_config.h"

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(NoSuchProperty, OW_COMMON_API)

} // namespace OpenWBEM
