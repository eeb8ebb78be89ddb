#include "ActiveTest.hpp"

using namespace OpenWBEM;
using test_support::ToolAnswer;

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
            ASSERT_EQ(ValueOf(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(ACTIVE).size(), 10U); };
    const auto get = [&] { ASSERT_EQ(ValueOf(Get("update7 7"), "Name"), "update7"); };
    const auto cancel = [&] { ASSERT_EQ(Invoke("update3 3", "Cancel"), CIMValue("")); };
    SideBySide({enumerate, names, get, cancel}, 5);
}

TEST_F(ActiveOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--rback", ToolAnswer().Held());
    std::thread slow([&] { EXPECT_EQ(Invoke("update3 3", "Cancel"), CIMValue("")); });
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(ValueOf(Get("update7 7"), "Name"), "update7");
    tool.Release("--rback");
    slow.join();
}
