// The page that a person reads and the table that the server follows say the same.
#include "cimserver/Items.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

/// The lines of docs/running.md that describe an item, in order.
std::vector<std::string> DocumentedItems() {
    std::ifstream page(RUNNING_PAGE);
    if (!page) {
        throw std::runtime_error("there is no " RUNNING_PAGE);
    }
    std::vector<std::string> lines;
    bool isInTable = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("| item | default |")) {
            isInTable = true;
        } else if (isInTable && line.empty()) {
            return lines;
        } else if (isInTable && line.starts_with("| `")) {
            lines.push_back(line);
        }
    }
    throw std::runtime_error("there is no table of items in " RUNNING_PAGE);
}

std::string LineOf(const cimserver::ItemRow& row) {
    std::string line = std::string("| `") + row.name + "` | ";
    line += *row.fallback == '\0' ? "none" : std::string("`") + row.fallback + "`";
    line += *row.unit == '\0' ? "" : std::string(" ") + row.unit;
    line += row.effect == cimserver::Effect::atReload ? " | SIGHUP | " : " | start | ";
    return line + row.meaning + " |";
}

TEST(RunningPage, HasEveryItemOfTheTableWithItsDefaultAndMeaning) {
    const auto documented = DocumentedItems();
    const auto items = cimserver::Items();
    ASSERT_EQ(documented.size(), items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(documented[i], LineOf(items[i]));
    }
}

} // namespace
