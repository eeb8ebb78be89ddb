#pragma once

#include "patchkeeper/network/Server.hpp"

namespace patchkeeper {

// What the program and the module that it loads for network fetches agree on. The module is found
// by the program's run path.
constexpr const char* networkModule = "libpatchkeeper_network.so";
constexpr const char* makeServerName = "PatchkeeperMakeServer";

// The caller owns the server. Throws TransferFailed.
using MakeServerFunction = Server*(const Place& place, const TransferSettings& settings);

} // namespace patchkeeper
