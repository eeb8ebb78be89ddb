#include "matrix/Scene.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace matrix {

void PrintTo(const Table& table, std::ostream* out) {
    *out << table.unit;
}

namespace {

void CarriesOut(const Row& row) {
    Scene scene;
    for (const Call& call : row.before) {
        AnswerOf(call, scene);
    }
    Scene::Settle();
    scene.tool.ForgetCalls();
    const std::string answer = AnswerOf(row.call, scene);
    Scene::Settle();
    EXPECT_EQ(answer, row.answer);
    EXPECT_EQ(scene.tool.ShellCommands(), row.commands);
}

class Matrix : public testing::TestWithParam<Table> {};

TEST_P(Matrix, EveryRowHolds) {
    const std::vector<Row> rows = GetParam().rows();
    ASSERT_FALSE(rows.empty());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call.className + ": " + row.call.text.substr(0, 200) + ": " +
                     row.situation);
        CarriesOut(row);
    }
}

TEST_P(Matrix, NoTwoRowsAreTheSame) {
    std::set<std::string> seen;
    for (const Row& row : GetParam().rows()) {
        std::string text = row.call.className + row.call.text + row.situation;
        EXPECT_FALSE(row.situation.empty()) << text;
        EXPECT_TRUE(seen.insert(text).second) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Matrix, testing::ValuesIn(Tables()),
                         [](const auto& row) { return std::string(row.param.unit); });

} // namespace
} // namespace matrix
