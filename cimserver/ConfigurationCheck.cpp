#include "cimserver/ConfigurationCheck.hpp"

#include "cimserver/Items.hpp"
#include "cimserver/Settings.hpp"

#include <algorithm>
#include <ostream>
#include <set>
#include <string>

namespace cimserver {

namespace {

std::set<std::string, std::less<>> KnownNames(const Settings& settings) {
    std::set<std::string, std::less<>> names(settings.libraryItems.begin(),
                                             settings.libraryItems.end());
    for (const ItemRow& row : Items()) {
        names.emplace(row.name);
    }
    return names;
}

void CheckNames(const Configuration& configuration, const Settings& settings,
                std::vector<Mistake>& mistakes, std::ostream& out) {
    const auto known = KnownNames(settings);
    for (const auto& [name, item] : configuration.All()) {
        if (known.find(name) != known.end()) {
            continue;
        }
        if (IsUnusedItemOfOpenWbem(name)) {
            out << item.origin << ": " << name << ": not used by this server\n";
            continue;
        }
        mistakes.push_back({item.line, item.origin + ": " + name +
                                           ": unknown item; one that a provider library reads has "
                                           "to be named in " +
                                           items::libraryItems});
    }
}

} // namespace

bool IsConfigurationWell(const Configuration& configuration,
                         const std::filesystem::path& defaultProviders, std::ostream& out,
                         std::ostream& err) {
    std::vector<Mistake> mistakes;
    const Settings settings = ReadSettings(configuration, defaultProviders, mistakes);
    CheckNames(configuration, settings, mistakes, out);
    for (const std::string& note : configuration.Repetitions()) {
        out << note << '\n';
    }
    std::stable_sort(mistakes.begin(), mistakes.end(),
                     [](const Mistake& a, const Mistake& b) { return a.line < b.line; });
    for (const Mistake& mistake : mistakes) {
        err << mistake.text << '\n';
    }
    if (mistakes.empty()) {
        out << "The configuration is in order.\n";
    }
    return mistakes.empty();
}

} // namespace cimserver
