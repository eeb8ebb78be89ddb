// Fetch, apply and roll-back killed at each call that changes something, and the recovery from that
// killed likewise. After every kill the next command brings all into order: the files are, byte by
// byte, those from before or those from after, the store agrees, and nothing is left over.

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "patchkeeper/State.hpp"
#include "patchkeeper/kill/Appliance.hpp"

namespace {

namespace fs = std::filesystem;
using patchkeeper::Store;
using patchkeeper_test::Ended;
using patchkeeper_test::Tree;
using patchkeeper_test::TreeOf;
using testing::AnyOf;
using testing::HasSubstr;

constexpr const char* applyCommand = "--apply demo 1.0 docs";
constexpr const char* rollBackCommand = "--rback demo 1.0";
constexpr long mostPoints = 2'000; // a command that makes more calls does not end

std::set<std::string> NamesIn(const fs::path& directory) {
    std::set<std::string> names;
    if (fs::exists(directory)) {
        for (const auto& entry : fs::directory_iterator(directory)) {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

class Kill : public testing::Test {
protected:
    patchkeeper::Store OpenStore() const {
        const patchkeeper::State state(appliance_.Root());
        return state.OpenOrMake(state.Settings());
    }
    std::string fetchCommand() const { return "--hd " + appliance_.Bundle().string(); }

    void RunWell(const std::string& command) const {
        const Ended ended = appliance_.Run(command);
        ASSERT_FALSE(ended.killed) << command;
        ASSERT_EQ(ended.exitCode, 0) << command << ": " << ended.errors;
    }

    // The next command recovers, and says so when files below the target were at stake.
    void Recover() const {
        const Tree found = TreeOf(appliance_.Target());
        const Ended ended = appliance_.Run("prune");
        EXPECT_EQ(ended.exitCode, 0) << ended.errors;
        if (found != before_ && found != after_) {
            EXPECT_THAT(ended.errors, AnyOf(HasSubstr("apply of demo 1.0 has been undone"),
                                            HasSubstr("roll-back of demo 1.0 has been finished")));
        }
    }

    // Nothing stands in the root directory that the store does not know. (SQLite leaves an empty
    // journal for its next transaction.)
    void ExpectNothingLeftOver(Store& store) const {
        EXPECT_TRUE(store.UnfinishedUpdates().empty());
        for (const auto& name : NamesIn(appliance_.Root())) {
            EXPECT_THAT(name, AnyOf("bundles", "kept", "lock", "patchkeeper.conf", "progress",
                                    "state.db", "state.db-journal", "target"));
        }
        std::set<std::string> bundles;
        for (const auto& bundle : store.Bundles()) {
            bundles.insert(bundle.file);
        }
        EXPECT_EQ(NamesIn(appliance_.Root() / "bundles"), bundles);
        const auto kept = store.KeptDirectories();
        EXPECT_EQ(NamesIn(appliance_.Root() / "kept"),
                  std::set<std::string>(kept.begin(), kept.end()));
    }

    void ExpectBeforeOrAfter() const {
        Store store = OpenStore();
        EXPECT_EQ(TreeOf(appliance_.Target()), store.AppliedUpdates().empty() ? before_ : after_);
        ExpectNothingLeftOver(store);
    }
    void ExpectBefore() const {
        ExpectBeforeOrAfter();
        EXPECT_EQ(TreeOf(appliance_.Target()), before_);
    }

    // Kills the command at its first, second … last call (or at every so many), each time from the
    // saved state on, and calls `check` after each. Returns how often.
    long KillEverywhere(const std::string& saved, const std::string& command,
                        const std::function<void()>& check, long step = 1) const {
        long kills = 0;
        for (long point = 1; point <= mostPoints; point += step) {
            SCOPED_TRACE(command + ", killed at call " + std::to_string(point));
            appliance_.BringBack(saved);
            const Ended ended = appliance_.Run(command, point);
            if (!ended.killed) {
                EXPECT_EQ(ended.exitCode, 0) << ended.errors;
                std::cout << command << ": " << kills << " kill points\n";
                return kills;
            }
            ++kills;
            check();
            if (HasFailure()) {
                return kills; // the next ones fail for the same reason
            }
        }
        ADD_FAILURE() << command << " makes more than " << mostPoints << " calls";
        return kills;
    }

    // Kills the command where it has changed some files below the target and others not, and saves
    // that.
    void SaveInTheMiddle(const std::string& saved, const std::string& command) const {
        appliance_.BringBack(saved);
        for (long point = appliance_.CallsOf(command); point > 0; --point) {
            appliance_.BringBack(saved);
            ASSERT_TRUE(appliance_.Run(command, point).killed);
            Tree tree = TreeOf(appliance_.Target());
            const bool hasNewOne = tree["etc/demo.conf"] == after_.at("etc/demo.conf");
            const bool hasNewOther = tree["etc/was-file"] == after_.at("etc/was-file");
            if (hasNewOne != hasNewOther) {
                appliance_.Save("middle");
                return;
            }
        }
        FAIL() << "the middle was not found";
    }

    void PrepareApply() {
        RunWell(fetchCommand());
        appliance_.Save("fetched");
        RunWell(applyCommand);
        appliance_.Save("applied");
        after_ = TreeOf(appliance_.Target());
        ASSERT_NE(before_, after_);
    }

    patchkeeper_test::Appliance appliance_;
    Tree before_ = TreeOf(appliance_.Target());
    Tree after_ = before_;
};

TEST_F(Kill, FetchIsThereAsAWholeOrNotAtAll) {
    RunWell("prune"); // the first command ever makes the database, which is a test of its own
    appliance_.Save("empty");
    const long points = KillEverywhere("empty", fetchCommand(), [&] {
        Recover();
        Store store = OpenStore();
        ExpectNothingLeftOver(store);
        const auto bundles = store.Bundles();
        ASSERT_LE(bundles.size(), 1U);
        if (!bundles.empty()) {
            const fs::path held = appliance_.Root() / "bundles" / bundles[0].file;
            EXPECT_EQ(TreeOf(held.parent_path()).at(bundles[0].file),
                      TreeOf(appliance_.Bundle().parent_path()).at("demo.tar.gz"));
            EXPECT_EQ(bundles[0].faults, "");
        }
        RunWell(fetchCommand());
        EXPECT_EQ(store.Bundles().size(), 1U);
    });
    EXPECT_GE(points, 60);
}

TEST_F(Kill, FirstCommandLeavesNoDatabaseOrAWholeOne) {
    appliance_.Save("new");
    const long points = KillEverywhere("new", "prune", [&] {
        RunWell("--cache");
        RunWell("prune");
        Store store = OpenStore();
        ExpectNothingLeftOver(store);
    });
    EXPECT_GE(points, 10);
}

TEST_F(Kill, ApplyHappensAsAWholeOrNotAtAll) {
    PrepareApply();
    const long points = KillEverywhere("fetched", applyCommand, [&] {
        Recover();
        ExpectBeforeOrAfter();
    });
    EXPECT_GE(points, 100);
}

TEST_F(Kill, RollBackHappensAsAWholeOrNotAtAll) {
    PrepareApply();
    const long points = KillEverywhere("applied", rollBackCommand, [&] {
        Recover();
        ExpectBeforeOrAfter();
    });
    EXPECT_GE(points, 60);
}

TEST_F(Kill, DueUpdateStaysDueUntilItIsApplied) {
    PrepareApply();
    appliance_.BringBack("fetched");
    {
        Store store = OpenStore();
        store.WriteSchedule({store.Bundles()[0].id, 1'000'000'000, ""});
    }
    appliance_.Save("due");
    RunWell("--run-due");
    after_ = TreeOf(appliance_.Target()); // without the optional component
    const long points = KillEverywhere(
        "due", "--run-due",
        [&] {
            Recover();
            Store store = OpenStore();
            EXPECT_EQ(store.Schedules().size(), store.AppliedUpdates().empty() ? 1U : 0U);
            for (const auto& schedule : store.Schedules()) {
                EXPECT_EQ(schedule.failure, "");
            }
            ExpectBeforeOrAfter();
        },
        5);
    EXPECT_GE(points, 20);
}

TEST_F(Kill, UndoingAnApplyMayBeKilledToo) {
    PrepareApply();
    SaveInTheMiddle("fetched", applyCommand);
    const long points = KillEverywhere("middle", "prune", [&] {
        Recover();
        ExpectBefore();
    });
    EXPECT_GE(points, 30);
}

TEST_F(Kill, FinishingARollBackMayBeKilledToo) {
    PrepareApply();
    SaveInTheMiddle("applied", rollBackCommand);
    const long points = KillEverywhere("middle", "prune", [&] {
        Recover();
        ExpectBefore();
    });
    EXPECT_GE(points, 30);
}

TEST_F(Kill, ApplyMayBeRepeatedAfterEveryKill) {
    PrepareApply();
    int killed = 0;
    for (long point = 3; point < mostPoints; point += 10) {
        SCOPED_TRACE("killed at call " + std::to_string(point));
        appliance_.BringBack("fetched");
        if (!appliance_.Run(applyCommand, point).killed) {
            break;
        }
        ++killed;
        if (OpenStore().AppliedUpdates().empty()) {
            RunWell(applyCommand); // recovers by itself
        }
        EXPECT_EQ(TreeOf(appliance_.Target()), after_);
        RunWell(rollBackCommand);
        ExpectBefore();
    }
    EXPECT_GE(killed, 10);
}

} // namespace
