// Every row of the table is sent over a socket, and the table is the one in the documentation.
#include "cimserver/conformance/Table.hpp"
#include "support/DtdCheck.hpp"
#include "support/server/ServerProcess.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

namespace {

using conformance::Expected;
using conformance::Row;
using conformance::Section;
using test_support::CimClient;
using test_support::HttpAnswer;

struct Sections {
    const char* name;
    Section (*make)();
};

const Sections all[] = {
    {"HttpLibrary", &conformance::HttpLibraryRows},
    {"Http", &conformance::HttpRows},
    {"Headers", &conformance::HeaderRows},
    {"MPost", &conformance::ExtensionRows},
    {"NotWellFormed", &conformance::NotWellFormedRows},
    {"NotValid", &conformance::NotValidRows},
    {"Versions", &conformance::VersionRows},
    {"NotLooselyValid", &conformance::NotLooselyValidRows},
    {"NotSupported", &conformance::NotSupportedRows},
    {"Operations", &conformance::OperationRows},
    {"OddHeaders", &conformance::OddHeaderRows},
    {"OddXml", &conformance::OddXmlRows},
};

const std::string allowed = "POST, M-POST";

void PrintTo(const Sections& section, std::ostream* stream) {
    *stream << section.name;
}

void ExpectRefused(const HttpAnswer& answer, const Expected& expected) {
    EXPECT_EQ(answer.Header(expected.prefix + "CIMError"), expected.cimError);
    EXPECT_EQ(answer.Header("CIMOperation"), "");
    EXPECT_EQ(answer.Header("Allow"), answer.status == 405 ? allowed : "");
    if (!expected.cimError.empty()) {
        EXPECT_EQ(answer.body, "");
    }
}

void ExpectAnswered(const HttpAnswer& answer, const Expected& expected) {
    EXPECT_EQ(answer.Header(expected.prefix + "CIMOperation"), "MethodResponse");
    EXPECT_EQ(answer.Header(expected.prefix + "CIMError"), "");
    EXPECT_EQ(answer.Header("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_THAT(test_support::DtdProblems(answer.body), testing::IsEmpty());
    EXPECT_THAT(answer.body, testing::HasSubstr(expected.holds));
    if (expected.error.empty()) {
        EXPECT_THAT(answer.body, testing::Not(testing::HasSubstr("<ERROR")));
        return;
    }
    const std::size_t blank = expected.error.find(' ');
    const std::string start = "<ERROR CODE=\"" + expected.error.substr(0, blank) + "\"";
    EXPECT_THAT(answer.body, testing::HasSubstr(start));
    const std::string text =
        answer.body.substr(std::min(answer.body.find(start), answer.body.size()));
    EXPECT_THAT(text, testing::HasSubstr(expected.error.substr(blank + 1)));
}

void ExpectExtension(const HttpAnswer& answer, const std::string& prefix) {
    if (!prefix.empty()) {
        EXPECT_EQ(answer.Header("Man"), "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=" +
                                            prefix.substr(0, prefix.size() - 1));
        EXPECT_EQ(answer.Header("Cache-Control"), "no-cache");
    }
    const auto isExt = [](const auto& header) { return header.first == "Ext"; };
    EXPECT_TRUE(prefix.empty() || std::any_of(answer.headers.begin(), answer.headers.end(), isExt));
}

class Conformance : public testing::TestWithParam<Sections> {};

TEST_P(Conformance, EveryRowIsAnsweredAsTheTableSays) {
    const test_support::ServerProcess server(
        {"--provider-dir", SHELF_PROVIDERS, "--mof", SHELF_MOF});
    for (const Row& row : GetParam().make().rows) {
        SCOPED_TRACE(row.what);
        CimClient client(server.Port());
        client.Send(row.request.Text());
        const HttpAnswer answer = client.Receive();
        EXPECT_EQ(answer.status, row.expected.status);
        if (row.expected.status == 200) {
            ExpectAnswered(answer, row.expected);
        } else {
            ExpectRefused(answer, row.expected);
        }
        ExpectExtension(answer, row.expected.prefix);
        if (!row.expected.cimError.empty()) {
            client.Send(conformance::Request().Text());
            EXPECT_EQ(client.Receive().status, 200) << "the connection goes on";
        }
    }
    CimClient client(server.Port());
    client.Send(conformance::Request().Text());
    EXPECT_EQ(client.Receive().status, 200) << "the server goes on";
}

INSTANTIATE_TEST_SUITE_P(Of, Conformance, testing::ValuesIn(all),
                         [](const auto& section) { return section.param.name; });

const char* NameOf(const std::string& number) {
    const std::pair<const char*, const char*> names[] = {
        {"1", "CIM_ERR_FAILED"},
        {"2", "CIM_ERR_ACCESS_DENIED"},
        {"3", "CIM_ERR_INVALID_NAMESPACE"},
        {"4", "CIM_ERR_INVALID_PARAMETER"},
        {"5", "CIM_ERR_INVALID_CLASS"},
        {"6", "CIM_ERR_NOT_FOUND"},
        {"7", "CIM_ERR_NOT_SUPPORTED"},
        {"11", "CIM_ERR_ALREADY_EXISTS"},
        {"12", "CIM_ERR_NO_SUCH_PROPERTY"},
        {"13", "CIM_ERR_TYPE_MISMATCH"},
        {"17", "CIM_ERR_METHOD_NOT_FOUND"},
    };
    for (const auto& [key, name] : names) {
        if (key == number) {
            return name;
        }
    }
    return "an error without name";
}

std::string Described(const Expected& expected) {
    if (!expected.error.empty()) {
        const std::size_t blank = expected.error.find(' ');
        return "`" + std::string(NameOf(expected.error.substr(0, blank))) + "`, names `" +
               expected.error.substr(blank + 1) + "`";
    }
    if (!expected.cimError.empty()) {
        return "`" + expected.prefix + "CIMError: " + expected.cimError + "`";
    }
    if (expected.status == 405) {
        return "`Allow: " + allowed + "`";
    }
    return expected.status == 200 ? "the answer" : "";
}

std::string AsMarkdown() {
    std::string text;
    for (const Sections& section : all) {
        const Section rows = section.make();
        text += "## " + rows.title + "\n\n| request | status | answer |\n|---|---|---|\n";
        for (const Row& row : rows.rows) {
            text += "| " + row.what + " | " + std::to_string(row.expected.status) + " | " +
                    Described(row.expected) + " |\n";
        }
        text += "\n";
    }
    text.pop_back();
    return text;
}

std::string ReadFile(const char* name) {
    std::ifstream file(name);
    EXPECT_TRUE(file.is_open()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ConformanceTable, StandsInTheDocumentationAsItIsTested) {
    const std::string document = ReadFile(CONFORMANCE_PAGE);
    const std::string expected = AsMarkdown();
    const std::size_t start = std::min(document.find("## "), document.size());
    std::ofstream("conformance.md") << document.substr(0, start) << expected;
    EXPECT_TRUE(document.substr(start) == expected)
        << "docs/conformance.md is not the table that is tested; the right page now stands in the "
           "folder where this test ran, as conformance.md";
}

TEST(ConformanceTable, HasAtLeastNinetyDifferentRequests) {
    std::set<std::string> requests;
    std::set<std::string> names;
    std::size_t rows = 0;
    for (const Sections& section : all) {
        for (const Row& row : section.make().rows) {
            requests.insert(row.request.Text());
            names.insert(section.name + row.what);
            ++rows;
        }
    }
    EXPECT_EQ(names.size(), rows) << "a row stands twice";
    EXPECT_EQ(requests.size(), rows) << "a request stands twice";
    EXPECT_GE(rows, 90U);
}

} // namespace
