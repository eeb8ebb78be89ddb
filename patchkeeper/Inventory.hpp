#pragma once

#include <ctime>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "patchkeeper/PackageDatabase.hpp"

namespace patchkeeper {

// The longest line of the inventory in bytes, its newline included: readers take lines in pieces of
// this size, and a longer one would reach them as two records.
constexpr std::size_t longestLine = 1023;

// One line of the inventory, newline included: name, version, classification and date, separated by
// tabs. A tab, newline or other control character inside a text becomes a blank, an empty text "-"
// (readers take an empty field for a missing one), and a text that does not fit is cut.
std::string InventoryLine(std::string_view name, std::string_view version,
                          std::string_view classification, std::optional<std::time_t> date);

// A date as `Thu Jan  2 03:04:05 UTC 2025`: a text that readers understand without knowing the time
// zone of this machine. What is unknown, before 1970 or after 9999 is told as 1 January 1970,
// because readers accept no text that is not a date.
std::string DateText(std::optional<std::time_t> date);

// Prints the inventory: a line per installed package of the database. What update bundles have
// installed follows behind these lines once the tool installs any.
void PrintInventory(const PackageDatabase& packages, std::ostream& out);

} // namespace patchkeeper
