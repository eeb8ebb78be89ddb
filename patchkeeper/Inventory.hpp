#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "patchkeeper/PackageDatabase.hpp"
#include "patchkeeper/Record.hpp"
#include "patchkeeper/Store.hpp"

namespace patchkeeper {

// The fields of one line of the inventory: name, version, classification and date. Name and version
// that do not fit a line beside the others are cut.
std::vector<std::string> InventoryFields(std::string_view name, std::string_view version,
                                         std::string_view classification,
                                         std::optional<std::time_t> date);

// A date as `Thu Jan  2 03:04:05 UTC 2025`: a text that readers understand without knowing the time
// zone of this machine. What is unknown, before 1970 or after 9999 is told as 1 January 1970,
// because readers accept no text that is not a date.
std::string DateText(std::optional<std::time_t> date);

// Prints the inventory: a record per installed package of the database, then one for each update
// that a bundle has installed; of several versions of it the one applied last.
void PrintInventory(const PackageDatabase& packages, const std::vector<AppliedUpdate>& applied,
                    RecordWriter& out);

} // namespace patchkeeper
