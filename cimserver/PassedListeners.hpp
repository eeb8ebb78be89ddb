// Sockets that a service manager passed, as addresses of the configuration: then the rules for
// addresses hold for them as for those that the server opens itself.
#pragma once

#include "cimserver/Configuration.hpp"
#include "cimserver/ServiceManager.hpp"

#include <vector>

namespace cimserver {

/// Overrides where the server listens when there are sockets. The order of the addresses is that
/// of `PlainSockets`. Throws ConfigurationError for a socket that this server cannot use.
void OverrideAddresses(const std::vector<PassedSocket>& sockets, Configuration& configuration);

/// The descriptors of those named `http`, or of a single one without a name.
std::vector<int> PlainSockets(const std::vector<PassedSocket>& sockets);

} // namespace cimserver
