#include "ScheduledTest.hpp"

#include <functional>

using namespace OpenWBEM;
using test_support::ToolAnswer;

namespace {

// Runs the actions side by side, each the given number of times.
void RunTogether(const std::vector<std::function<void()>>& actions, int times) {
    std::vector<std::thread> threads;
    for (const auto& action : actions) {
        threads.emplace_back([&action, times] {
            for (int i = 0; i < times; ++i) {
                action();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

class ScheduledOverlap : public ScheduledProviderTest {
protected:
    ScheduledOverlap() {
        std::string output;
        for (int i = 0; i < 10; ++i) {
            output += Line("update" + std::to_string(i), std::to_string(i));
        }
        Prints(output);
        tool.Plays("--msched", ToolAnswer());
    }
};

TEST_F(ScheduledOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = calls.EnumInstances(SCHEDULED);
        ASSERT_EQ(instances.size(), 10U);
        for (std::size_t i = 0; i < instances.size(); ++i) {
            ASSERT_EQ(Value(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(SCHEDULED).size(), 10U); };
    const auto get = [&] { ASSERT_EQ(Value(Get("update7 7"), "Name"), "update7"); };
    const auto remove = [&] { ASSERT_EQ(Invoke("update3 3", "Remove"), CIMValue("")); };
    RunTogether({enumerate, names, get, remove}, 5);
}

TEST_F(ScheduledOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--msched", ToolAnswer().Held());
    std::thread slow([&] { EXPECT_EQ(Invoke("update3 3", "Remove"), CIMValue("")); });
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(Value(Get("update7 7"), "Name"), "update7");
    tool.Release("--msched");
    slow.join();
}
