// Assertions of the libraries and of providers.
#pragma once

#include "OW_Exception.hpp"
#include "OW_config.h"

namespace OpenWBEM {

OW_DECLARE_APIEXCEPTION(Assertion, OW_COMMON_API)

} // namespace OpenWBEM

// Does nothing, and does not even evaluate, unless OW_DEBUG is defined: a standard build has no
// checks.
#ifdef OW_DEBUG
#define OW_ASSERT(CON)                                                                             \
    do {                                                                                           \
        if (!(CON)) {                                                                              \
            OW_THROW(::OpenWBEM::AssertionException, #CON);                                        \
        }                                                                                          \
    } while (false)
#else
#define OW_ASSERT(CON) static_cast<void>(0)
#endif
