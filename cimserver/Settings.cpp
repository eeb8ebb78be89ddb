#include "cimserver/Settings.hpp"

#include "cimserver/ItemValue.hpp"
#include "cimserver/Items.hpp"
#include "cimserver/Process.hpp"

#include <algorithm>

namespace cimserver {

namespace {

void ReadItem(const ItemRow& row, const Configuration& configuration, Settings& settings,
              std::vector<Mistake>& mistakes) {
    const Configuration::Item* item = configuration.Find(row.name);
    try {
        row.read(ItemValue(row.name, item, row.fallback), settings);
    } catch (const ConfigurationError& error) {
        mistakes.push_back({item == nullptr ? 0 : item->line, error.what()});
    }
}

/// What no item says alone.
void CheckTogether(const Configuration& configuration, const Settings& settings,
                   std::vector<Mistake>& mistakes) {
    const Configuration::Item* type = configuration.Find(items::logType);
    if (settings.logsToFile && settings.logLocation.empty()) {
        mistakes.push_back({type->line, type->origin + ": " + items::logType +
                                            " = file: name the file with the item " +
                                            items::logLocation});
    }
    if (configuration.Find(items::mofFiles) == nullptr) {
        mistakes.push_back({Mistake::nowhere,
                            std::string("no MOF file: name the files that declare the classes with "
                                        "--mof FILE or with the item ") +
                                items::mofFiles});
    }
}

} // namespace

std::filesystem::path DefaultProviderDirectory() {
    return (ProgramDirectory() / "../lib/providers").lexically_normal();
}

Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders,
                      std::vector<Mistake>& mistakes) {
    Settings settings;
    settings.providerDirectories = {defaultProviders};
    mistakes = configuration.Mistakes();
    for (const ItemRow& row : Items()) {
        ReadItem(row, configuration, settings, mistakes);
    }
    CheckTogether(configuration, settings, mistakes);
    std::stable_sort(mistakes.begin(), mistakes.end(),
                     [](const Mistake& a, const Mistake& b) { return a.line < b.line; });
    return settings;
}

Settings ReadSettings(const Configuration& configuration,
                      const std::filesystem::path& defaultProviders) {
    std::vector<Mistake> mistakes;
    Settings settings = ReadSettings(configuration, defaultProviders, mistakes);
    if (!mistakes.empty()) {
        throw ConfigurationError(mistakes.front().text);
    }
    return settings;
}

} // namespace cimserver
