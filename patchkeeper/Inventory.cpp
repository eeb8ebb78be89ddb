#include "patchkeeper/Inventory.hpp"

#include <array>

#include "patchkeeper/Classification.hpp"

namespace patchkeeper {

namespace {

constexpr std::size_t longestField = 470; // two of these, a classification, a date and the tabs fit
constexpr std::time_t lastTime = 253'402'300'799; // the last second of the year 9999

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::string Field(std::string_view text) {
    if (text.size() > longestField) {
        std::size_t length = longestField;
        while (length > 0 && IsContinuationByte(text[length])) {
            --length;
        }
        text = text.substr(0, length);
    }
    if (text.empty()) {
        return "-";
    }
    std::string field(text);
    for (char& letter : field) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20 || code == 0x7F) {
            letter = ' ';
        }
    }
    return field;
}

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

std::string InventoryLine(std::string_view name, std::string_view version,
                          std::string_view classification, std::optional<std::time_t> date) {
    std::string line = Field(name);
    line += '\t';
    line += Field(version);
    line += '\t';
    line += classification;
    line += '\t';
    line += DateText(date);
    line += '\n';
    return line;
}

void PrintInventory(const PackageDatabase& packages, std::ostream& out) {
    packages.ForEachInstalled([&](const InstalledPackage& package) {
        out << InventoryLine(package.name, package.version, Classification(package.section),
                             package.lastInstalled);
    });
}

} // namespace patchkeeper
