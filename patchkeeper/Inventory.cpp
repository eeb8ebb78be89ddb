#include "patchkeeper/Inventory.hpp"

#include <array>
#include <cstddef>
#include <map>

#include "patchkeeper/Classification.hpp"

namespace patchkeeper {

namespace {

constexpr std::size_t longestField = 470; // two of these, a classification, a date and the tabs fit
constexpr std::time_t lastTime = 253'402'300'799; // the last second of the year 9999

} // namespace

std::string DateText(std::optional<std::time_t> date) {
    const std::time_t time = date && *date >= 0 && *date <= lastTime ? *date : 0;
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 40> text{};
    const std::size_t length =
        std::strftime(text.data(), text.size(), "%a %b %e %H:%M:%S UTC %Y", &parts);
    return {text.data(), length};
}

std::vector<std::string> InventoryFields(std::string_view name, std::string_view version,
                                         std::string_view classification,
                                         std::optional<std::time_t> date) {
    return {FieldText(name, longestField), FieldText(version, longestField),
            std::string(classification), DateText(date)};
}

void PrintInventory(const PackageDatabase& packages, const std::vector<AppliedUpdate>& applied,
                    RecordWriter& out) {
    packages.ForEachInstalled([&](const InstalledPackage& package) {
        out.Add(InventoryFields(package.name, package.version, Classification(package.section),
                                package.lastInstalled));
    });
    std::map<std::string_view, const AppliedUpdate*> last;
    for (const auto& update : applied) {
        last[update.name] = &update;
    }
    for (const auto& update : applied) {
        if (last[update.name] == &update) {
            out.Add(InventoryFields(update.name, update.version, update.classification,
                                    update.appliedAt));
        }
    }
}

} // namespace patchkeeper
