// `cimserver --check-config`: everything that is wrong with a configuration, without a start.
#pragma once

#include "cimserver/Configuration.hpp"

#include <filesystem>
#include <iosfwd>

namespace cimserver {

/// Writes a line to `err` for every mistake and every item that nobody knows, in the order of the
/// file; to `out` a line for every item that only OpenWBEM uses and for every repeated one, and a
/// last one when all is well. True when all is well. Known are the items of the server's table,
/// and those that `cimserver.library_items` names.
bool IsConfigurationWell(const Configuration& configuration,
                         const std::filesystem::path& defaultProviders, std::ostream& out,
                         std::ostream& err);

} // namespace cimserver
