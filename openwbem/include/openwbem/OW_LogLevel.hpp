#pragma once

#include "OW_config.h"

namespace OpenWBEM {

// How much a logger lets through, from nothing to everything. The order counts: a message passes
// when the logger's level is at or above the message's own.
enum ELogLevel {
    E_NONE_LEVEL,
    E_FATAL_ERROR_LEVEL,
    E_ERROR_LEVEL,
    E_INFO_LEVEL,
    E_DEBUG_LEVEL,
    E_ALL_LEVEL
};

} // namespace OpenWBEM
