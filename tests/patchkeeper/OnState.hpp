#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/Database.hpp"
#include "patchkeeper/Program.hpp"
#include "patchkeeper/State.hpp"
#include "patchkeeper/TemporaryDirectory.hpp"
#include "patchkeeper/TestBundle.hpp"

#include <sys/stat.h>

namespace patchkeeper_test {

// The program on a state of its own, in which unsigned bundles are good.
class OnState : public testing::Test {
protected:
    OnState() {
        umask(022); // for the modes of what the tests make themselves
        directory_.Write("root/patchkeeper.conf", "allow_unsigned = true\n");
    }

    std::filesystem::path Root() const { return directory_.Path() / "root"; }
    std::filesystem::path At(const std::string& name) const { return directory_.Path() / name; }

    // As in a shell: what stands before "patchkeeper" may set its surroundings.
    Result InShell(const std::string& command) const {
        return Shell("export PATCHKEEPER_ROOT='" + Root().string() + "'; " + command);
    }
    Result Run(const std::string& arguments) const { return InShell("patchkeeper " + arguments); }

    // Runs a command that has to succeed quietly, and returns what it prints.
    std::string Output(const std::string& arguments) const {
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, 0) << arguments << ": " << result.errors;
        EXPECT_EQ(result.errors, "") << arguments;
        return result.output;
    }

    void Take(const BundleContent& content) const {
        MakeTestBundle(At("incoming.tar.gz"), content);
        EXPECT_EQ(Output("--hd " + At("incoming.tar.gz").string()), "");
    }

    patchkeeper::Database OpenDatabase() const {
        return {Root() / "state.db", patchkeeper::Database::Access::Existing,
                std::chrono::seconds(10)};
    }
    void Sql(const std::string& statements) const { OpenDatabase().Execute(statements); }

    // As an apply of 2 January 2025 records it.
    void RecordApplied(const std::string& name, const std::string& version,
                       bool removable = true) const {
        Sql("INSERT INTO applied (name, version, short_description, long_description, category, "
            "classification, removable, applied_at) VALUES ('" +
            name + "', '" + version + "', 'short', 'long', 'Fixes', 'Firmware', " +
            (removable ? "1" : "0") + ", 1735787045)");
    }

    TemporaryDirectory directory_;
};

} // namespace patchkeeper_test
