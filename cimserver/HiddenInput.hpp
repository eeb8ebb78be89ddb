// Reading what must not be seen.
#pragma once

#include <string>

namespace cimserver {

/// A line of standard input. At a terminal it is asked for twice, without echo, with these words;
/// the terminal is as it was afterwards, also when a signal ends the asking. Throws
/// std::runtime_error when there is no line, both differ, or a signal came.
std::string ReadHidden(const std::string& question, const std::string& again);

} // namespace cimserver
