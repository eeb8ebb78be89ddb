// The table of the server's configuration items: the only place where one is declared. Help,
// checks, settings and the comparison with docs/running.md all follow it.
#pragma once

#include "cimserver/Settings.hpp"

#include <span>
#include <string_view>

namespace cimserver {

class ItemValue;

/// When a changed value counts.
enum class Effect : bool {
    atRestart,
    atReload, ///< also when the configuration is read again while the server runs
};

struct ItemRow {
    const char* name;
    const char* fallback; ///< the value without the item: a text of the same form, or empty
    const char* unit;     ///< empty when the value is no quantity
    const char* meaning;  ///< one line
    Effect effect;
    /// Puts the value, or the fallback, into the settings. Throws ConfigurationError.
    void (*read)(const ItemValue& value, Settings& settings);
};

/// In the order of docs/running.md.
std::span<const ItemRow> Items();

/// True for an item that OpenWBEM has and this server has no use for.
bool IsUnusedItemOfOpenWbem(std::string_view name);

} // namespace cimserver
