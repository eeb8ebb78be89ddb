// The server's log: lines on standard error, `TIME CATEGORY COMPONENT: MESSAGE`. The server's own
// lines and those of providers go through the same logger, which any thread may use.
#pragma once

#include "OW_Logger.hpp"

#include <string>

namespace cimserver {

/// A logger that writes the categories FATAL, ERROR, INFO and DEBUG up to `level`, and any other
/// category at DEBUG only; a message sent past the level test of `Logger` is held to the same rule.
/// Control characters of a message are written as escapes, so that a message stays one line. Clones
/// write to the same place.
OpenWBEM::LoggerRef MakeLogger(OpenWBEM::ELogLevel level);

/// A line for whoever waits for the server to be ready: written whatever the level, without time
/// and category.
void WriteReadinessLine(const std::string& line);

} // namespace cimserver
