// The page of each class (README.md in its folder) names its properties and methods as the schema
// declares them.

#include "schema/ZnxSchema.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Row = std::vector<std::string>;
using Lines = std::vector<std::string>;
using testing::ElementsAreArray;

struct Page {
    const char* folder;
    std::vector<const char*> classes; // in the order of their tables
};

const std::vector<Page>& Pages() {
    static const std::vector<Page> pages = {
        {"available", {"ZNX_AvailableSoftwareUpdate"}},
        {"scheduled", {"ZNX_ScheduledSoftwareUpdate"}},
        {"active", {"ZNX_ActiveSoftwareUpdate"}},
        {"history", {"ZNX_HistorySoftwareUpdate"}},
        {"component", {"ZNX_SoftwareUpdateComponent"}},
        {"filename", {"ZNX_AvailableSoftwareFileName"}},
        {"filelist", {"ZNX_AvailableSoftwareFileList"}},
        {"inventory", {"ZNX_SoftwareIdentity", "ZNX_ElementManagerCartridgeVersionInfo"}},
    };
    return pages;
}

Lines LinesOf(const std::string& folder) {
    const std::string file = PROVIDER_DIRECTORY "/" + folder + "/README.md";
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error("cannot read " + file);
    }
    Lines lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

Row Cells(const std::string& line) {
    Row cells;
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) {
        std::string bare;
        for (const char byte : cell) {
            if (byte != '`') {
                bare += byte;
            }
        }
        const std::size_t first = bare.find_first_not_of(' ');
        const std::size_t last = bare.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : bare.substr(first, last - first + 1));
    }
    return cells;
}

// The rows of each table whose header begins with these cells.
std::vector<std::vector<Row>> Tables(const Lines& lines, const std::string& header) {
    std::vector<std::vector<Row>> tables;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].compare(0, header.size(), header) != 0) {
            continue;
        }
        tables.emplace_back();
        for (i += 2; i < lines.size() && lines[i].compare(0, 1, "|") == 0; ++i) {
            tables.back().push_back(Cells(lines[i]));
        }
    }
    return tables;
}

std::string TypeOf(const OpenWBEM::CIMDataType& type) {
    return type.isReferenceType() ? std::string("ref ") + type.getRefClassName().c_str()
                                  : std::string(type.toString().c_str());
}

// `Name: string key` of a row, whose second cell reads `string, key` or `string; the key of …`.
std::string PropertyOf(const Row& row) {
    const std::string& cell = row.at(1);
    const bool isKey = cell.find("key") != std::string::npos;
    return row.at(0) + ": " + cell.substr(0, cell.find_first_of(",;")) + (isKey ? " key" : "");
}

std::string PropertyOf(const OpenWBEM::CIMProperty& property) {
    const bool isKey = property.hasTrueQualifier("Key");
    return std::string(property.getName().c_str()) + ": " + TypeOf(property.getDataType()) +
           (isKey ? " key" : "");
}

std::string MethodOf(const Row& row) {
    return row.at(0) + "(" + row.at(1) + ") out " + row.at(2) + " returns " + row.at(3);
}

std::string ParametersOf(const OpenWBEM::CIMMethod& method, bool out) {
    std::string text;
    const OpenWBEM::CIMParameterArray parameters = method.getParameters();
    for (const OpenWBEM::CIMParameter& parameter : parameters) {
        if (parameter.hasTrueQualifier("Out") == out) {
            text += (text.empty() ? "" : ", ") + std::string(parameter.getName().c_str()) + " " +
                    TypeOf(parameter.getType());
        }
    }
    return text.empty() ? "none" : text;
}

std::string MethodOf(const OpenWBEM::CIMMethod& method) {
    return std::string(method.getName().c_str()) + "(" + ParametersOf(method, false) + ") out " +
           ParametersOf(method, true) + " returns " + TypeOf(method.getReturnType());
}

const OpenWBEM::CIMClass& ClassOf(const char* name) {
    const OpenWBEM::CIMClass* const found = test::ZnxSchema().FindClass(name);
    if (found == nullptr) {
        throw std::runtime_error(std::string("no class ") + name);
    }
    return *found;
}

template <class Elements>
Lines Described(const Elements& elements) {
    Lines lines;
    for (const auto& element : elements) {
        if constexpr (std::is_same_v<Elements, OpenWBEM::CIMMethodArray>) {
            lines.push_back(MethodOf(element));
        } else {
            lines.push_back(PropertyOf(element));
        }
    }
    return lines;
}

TEST(Pages, StandForEveryClassOfTheSchema) {
    std::vector<std::string> described;
    for (const Page& page : Pages()) {
        described.insert(described.end(), page.classes.begin(), page.classes.end());
    }
    EXPECT_THAT(described, testing::UnorderedElementsAreArray(test::znxClasses));
}

TEST(Pages, NamePropertiesAsTheSchemaDeclaresThem) {
    for (const Page& page : Pages()) {
        SCOPED_TRACE(page.folder);
        const auto tables = Tables(LinesOf(page.folder), "| property | type |");
        ASSERT_EQ(tables.size(), page.classes.size());
        for (std::size_t i = 0; i < tables.size(); ++i) {
            Lines rows;
            for (const Row& row : tables[i]) {
                rows.push_back(PropertyOf(row));
            }
            EXPECT_THAT(rows, testing::UnorderedElementsAreArray(
                                  Described(ClassOf(page.classes[i]).getAllProperties())));
        }
    }
}

TEST(Pages, NameMethodsAsTheSchemaDeclaresThem) {
    const std::string header = "| method | in-parameters | out-parameters | returns |";
    for (const Page& page : Pages()) {
        SCOPED_TRACE(page.folder);
        Lines rows;
        for (const auto& table : Tables(LinesOf(page.folder), header)) {
            for (const Row& row : table) {
                rows.push_back(MethodOf(row));
            }
        }
        Lines declared;
        for (const char* const name : page.classes) {
            const Lines more = Described(ClassOf(name).getAllMethods());
            declared.insert(declared.end(), more.begin(), more.end());
        }
        EXPECT_THAT(rows, ElementsAreArray(declared));
    }
}

TEST(Pages, HaveTheirHeadingsInOneOrder) {
    for (const Page& page : Pages()) {
        Lines headings;
        for (const std::string& line : LinesOf(page.folder)) {
            if (line.compare(0, 3, "## ") == 0) {
                headings.push_back(line.substr(3));
            }
        }
        EXPECT_THAT(headings, testing::ElementsAre("What it shows", "Command", "Columns",
                                                   "Properties and keys", "Methods",
                                                   "Answers and errors", "Oddities", "Tests"))
            << page.folder;
    }
}

} // namespace
