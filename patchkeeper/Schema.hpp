#pragma once

#include <span>
#include <string_view>

#include "patchkeeper/Database.hpp"

namespace patchkeeper {

// What brings the tables from each version to the next: step i leads from version i to i + 1, and
// version 0 is an empty file. A step that has been released is never changed; a new one is added.
std::span<const std::string_view> SchemaSteps();

// Brings a database to the version that the steps lead to, as a whole or not at all. The version is
// SQLite's user_version. Throws StateProblem for a newer database, for a file of another program's
// making, and when a step cannot be taken.
void BringUpToDate(Database& database, std::span<const std::string_view> steps = SchemaSteps());

} // namespace patchkeeper
