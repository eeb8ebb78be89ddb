// What is measured; each function starts the servers and tools that it needs and ends them.
#pragma once

#include "bench/Table.hpp"

#include <vector>

namespace bench {

/// The installed software, from the tool to the client: what each stage costs.
std::vector<Row> MeasureInventory();

/// The server: large answers, many clients, small calls.
std::vector<Row> MeasureServer();

/// The server that others reach: many clients for a minute, TLS, a flood of connections.
std::vector<Row> MeasureExposure();

} // namespace bench
