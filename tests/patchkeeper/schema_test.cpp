#include "patchkeeper/Schema.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "patchkeeper/Failure.hpp"
#include "patchkeeper/Store.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::BringUpToDate;
using patchkeeper::Database;
using patchkeeper::Statement;
using patchkeeper::Transaction;
using patchkeeper_test::TemporaryDirectory;
using testing::EndsWith;
using testing::HasSubstr;

using Steps = std::vector<std::string_view>;

class Schema : public testing::Test {
protected:
    Database Open() const {
        return {file_, Database::Access::CreateIfMissing, std::chrono::milliseconds(50)};
    }
    static std::int64_t Number(Database& database, const std::string& query) {
        Statement statement(database, query);
        EXPECT_TRUE(statement.Step());
        return statement.Integer(0);
    }
    static std::string ProblemOf(Database& database, const Steps& steps) {
        try {
            BringUpToDate(database, steps);
        } catch (const patchkeeper::StateProblem& problem) {
            return problem.what();
        }
        return "none";
    }

    TemporaryDirectory directory_;
    fs::path file_ = directory_.Path() / "state.db";
};

TEST_F(Schema, EmptyFileGetsAllTables) {
    Database database = Open();
    BringUpToDate(database);
    EXPECT_EQ(Number(database, "PRAGMA user_version"),
              static_cast<std::int64_t>(patchkeeper::SchemaSteps().size()));
    EXPECT_EQ(Number(database, "SELECT count(*) FROM bundles"), 0);
    EXPECT_EQ(Number(database, "SELECT count(*) FROM operation"), 1);
}

TEST_F(Schema, OlderDatabaseIsMigratedWithItsContents) {
    Database database = Open();
    BringUpToDate(database, Steps{"CREATE TABLE t (a); INSERT INTO t VALUES (7)"});
    const Steps three = {"CREATE TABLE wrong (a)", "ALTER TABLE t ADD COLUMN b DEFAULT 8",
                         "UPDATE t SET b = b + 1"};
    BringUpToDate(database, three);
    EXPECT_EQ(Number(database, "PRAGMA user_version"), 3);
    EXPECT_EQ(Number(database, "SELECT a * 10 + b FROM t"), 79);
    BringUpToDate(database, three); // nothing is done twice
    EXPECT_EQ(Number(database, "SELECT a * 10 + b FROM t"), 79);
}

TEST_F(Schema, WhatTheFirstVersionAppliedAndScheduledStaysSo) {
    Database database = Open();
    BringUpToDate(database, patchkeeper::SchemaSteps().first(1));
    database.Execute(
        "INSERT INTO applied VALUES (4, 'demo', '1.0', 's', 'l', 'c', 'Other', 1, 1735787045);"
        "INSERT INTO bundles VALUES (7, 'demo', '2.0', 's', 'l', 'c', 'Other', 0, 1, 5, 'f', '/', "
        "1735787045, ''); INSERT INTO schedules VALUES (7, 2000000000)");
    patchkeeper::Store store(file_, Database::Access::Existing, std::chrono::milliseconds(50));
    ASSERT_EQ(store.AppliedUpdates().size(), 1U);
    EXPECT_EQ(store.AppliedUpdates()[0].id, 4);
    EXPECT_TRUE(store.UnfinishedUpdates().empty());
    ASSERT_EQ(store.Schedules().size(), 1U);
    EXPECT_EQ(store.Schedules()[0].applyAt, 2'000'000'000);
    EXPECT_EQ(store.Schedules()[0].failure, "");
}

TEST_F(Schema, MigrationThatFailsLeavesTheOldVersionAsItWas) {
    Database database = Open();
    BringUpToDate(database, Steps{"CREATE TABLE t (a)"});
    EXPECT_THAT(ProblemOf(database, {"", "CREATE TABLE u (a)", "no statement"}),
                HasSubstr("state.db: near \"no\""));
    EXPECT_EQ(Number(database, "PRAGMA user_version"), 1);
    EXPECT_EQ(Number(database, "SELECT count(*) FROM sqlite_schema"), 1);
}

TEST_F(Schema, NewerDatabaseIsRefusedAndLeftAlone) {
    Database database = Open();
    BringUpToDate(database, Steps{"CREATE TABLE t (a)", "CREATE TABLE u (a)"});
    EXPECT_THAT(ProblemOf(database, {"CREATE TABLE t (a)"}),
                EndsWith("state.db has version 2, which is newer than this program's 1"));
    EXPECT_EQ(Number(database, "PRAGMA user_version"), 2);
}

TEST_F(Schema, DatabaseOfAnotherProgramIsRefused) {
    Database database = Open();
    database.Execute("CREATE TABLE theirs (a)");
    EXPECT_THAT(ProblemOf(database, {"CREATE TABLE t (a)"}),
                EndsWith("was made by another program"));
    EXPECT_EQ(Number(database, "SELECT count(*) FROM sqlite_schema"), 1);
}

TEST_F(Schema, TransactionThatIsNotCommittedChangesNothing) {
    Database database = Open();
    database.Execute("CREATE TABLE t (a)");
    {
        const Transaction transaction(database, Transaction::Kind::Write);
        database.Execute("INSERT INTO t VALUES (1)");
    }
    EXPECT_EQ(Number(database, "SELECT count(*) FROM t"), 0);
}

TEST_F(Schema, SecondWriterIsTurnedAwayAfterABoundedWait) {
    Database first = Open();
    Database second = Open();
    const Transaction writing(first, Transaction::Kind::Write);
    try {
        const Transaction waiting(second, Transaction::Kind::Write);
        FAIL() << "both write";
    } catch (const patchkeeper::StateProblem& problem) {
        EXPECT_THAT(problem.what(),
                    EndsWith("state.db is busy: another command has kept it for 50 ms"));
    }
}

// Another process makes the tables just when this one is looking whose database it is.
TEST_F(Schema, TablesThatAppearMeanwhileAreNotTakenForAnotherPrograms) {
    static const Steps steps = {"CREATE TABLE one (a)"};
    Database database = Open();
    std::function<void()> makeThem = [this] {
        Database other = Open();
        ProblemOf(other, steps); // it may have to wait, and then gives up
    };
    const auto beforeEach = [](unsigned, void* make, void*, void* text) -> int {
        if (std::string_view(static_cast<const char*>(text)).find("sqlite_schema") !=
            std::string_view::npos) {
            (*static_cast<std::function<void()>*>(make))();
        }
        return 0;
    };
    sqlite3_trace_v2(database.Handle(), SQLITE_TRACE_STMT, beforeEach, &makeThem);
    EXPECT_EQ(ProblemOf(database, steps), "none");
    sqlite3_trace_v2(database.Handle(), 0, nullptr, nullptr);
    EXPECT_EQ(Number(database, "PRAGMA user_version"), 1);
}

TEST_F(Schema, DamagedFileIsNamedWhenItIsOpenedForChanges) {
    {
        Database database = Open();
        database.Execute("CREATE TABLE t (a); INSERT INTO t VALUES (zeroblob(100000))");
    }
    fs::resize_file(file_, fs::file_size(file_) / 2);
    try {
        Open();
        FAIL() << "no problem";
    } catch (const patchkeeper::StateProblem& problem) {
        EXPECT_THAT(problem.what(), HasSubstr("state.db is damaged"));
    }
}

} // namespace
