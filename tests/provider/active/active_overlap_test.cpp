#include "ActiveTest.hpp"

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

class ActiveOverlap : public ActiveProviderTest {
protected:
    ActiveOverlap() {
        std::string output;
        for (int i = 0; i < 10; ++i) {
            output += Line("update" + std::to_string(i), std::to_string(i));
        }
        Prints(output);
        tool.Plays("--rback", ToolAnswer());
    }
};

TEST_F(ActiveOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = calls.EnumInstances(ACTIVE);
        ASSERT_EQ(instances.size(), 10U);
        for (std::size_t i = 0; i < instances.size(); ++i) {
            ASSERT_EQ(Value(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(ACTIVE).size(), 10U); };
    const auto get = [&] { ASSERT_EQ(Value(Get("update7 7"), "Name"), "update7"); };
    const auto cancel = [&] { ASSERT_EQ(Invoke("update3 3", "Cancel"), CIMValue("")); };
    RunTogether({enumerate, names, get, cancel}, 5);
}

TEST_F(ActiveOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--rback", ToolAnswer().Held());
    std::thread slow([&] { EXPECT_EQ(Invoke("update3 3", "Cancel"), CIMValue("")); });
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(Value(Get("update7 7"), "Name"), "update7");
    tool.Release("--rback");
    slow.join();
}
