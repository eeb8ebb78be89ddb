#pragma once

#include "OW_config.h"

#include "OW_String.hpp"

namespace OpenWBEM {

// One line on its way to a log, as a logger's implementation receives it.
//
// The texts belong to the message. filename and methodname are borrowed: they are normally string
// literals of the place that logged, and may be null. fileline is -1 when the place is unknown.
struct OW_COMMON_API LogMessage {
    LogMessage(const String& component_, const String& category_, const String& message_,
               const char* filename_, int fileline_, const char* methodname_);

    String component;
    String category;
    String message;
    const char* filename;
    int fileline;
    const char* methodname;
};

} // namespace OpenWBEM
