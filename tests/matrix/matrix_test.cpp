#include "matrix/Scene.hpp"

#include "support/ToolDouble.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace matrix {

void PrintTo(const Table& table, std::ostream* out) {
    *out << table.unit;
}

namespace {

// What the log says of a run: as much of the command line as a trace line holds, without what
// collects the output.
std::string LoggedRun(std::string command) {
    const std::string collects = " 2>&1";
    const std::size_t end = command.size() - std::min(command.size(), collects.size());
    if (command.compare(end, std::string::npos, collects) == 0) {
        command.resize(end);
    }
    return ("Executing: " + command).substr(0, 1023);
}

std::vector<std::string> LoggedRuns(const Row& row) {
    std::vector<std::string> lines;
    for (const std::string& command : row.commands) {
        lines.push_back(LoggedRun(command));
    }
    for (const std::string& command : row.inVain) {
        lines.push_back(LoggedRun(command));
    }
    return lines;
}

std::vector<std::string> LoggedRuns(const Scene& scene) {
    const std::string begin = "INFO: Executing: ";
    std::vector<std::string> lines;
    for (const std::string& line : scene.log->All()) {
        if (line.rfind(begin, 0) == 0) {
            lines.push_back(line.substr(begin.find('E')));
        }
    }
    return lines;
}

void CarriesOut(const Row& row) {
    Scene scene;
    for (const Call& call : row.before) {
        EXPECT_EQ(AnswerOf(call, scene), call.given) << "before: " << call.text;
    }
    Scene::Settle();
    scene.tool.ForgetCalls();
    scene.log->Forget();
    const std::string answer = AnswerOf(row.call, scene);
    Scene::Settle();
    EXPECT_EQ(answer, row.answer);
    EXPECT_EQ(scene.tool.ShellCommands(), row.commands);
    EXPECT_EQ(LoggedRuns(scene), LoggedRuns(row));
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
