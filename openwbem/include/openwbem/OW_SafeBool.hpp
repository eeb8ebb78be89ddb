// Lets an object stand in a condition without becoming a number: it converts to a pointer to
// member, which converts to bool and to nothing else.
#pragma once

#include "OW_config.h"

// Inside a class, in a public section: declares safe_bool and operator!, both answering `test`.
#define OW_SAFE_BOOL(test)                                                                         \
    struct SafeBoolTarget {                                                                        \
        int member;                                                                                \
    };                                                                                             \
    typedef int SafeBoolTarget::*safe_bool;                                                        \
    operator safe_bool() const {                                                                   \
        return (test) ? &SafeBoolTarget::member : nullptr;                                         \
    }                                                                                              \
    bool operator!() const {                                                                       \
        return !(test);                                                                            \
    }
