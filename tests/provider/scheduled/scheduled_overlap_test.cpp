#include "ScheduledTest.hpp"

using namespace OpenWBEM;
using test_support::ToolAnswer;

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
            ASSERT_EQ(ValueOf(instances[i], "Name"), "update" + std::to_string(i));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(SCHEDULED).size(), 10U); };
    const auto get = [&] { ASSERT_EQ(ValueOf(Get("update7 7"), "Name"), "update7"); };
    const auto remove = [&] { ASSERT_EQ(Invoke("update3 3", "Remove"), CIMValue("")); };
    SideBySide({enumerate, names, get, remove}, 5);
}

TEST_F(ScheduledOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--msched", ToolAnswer().Held());
    std::thread slow([&] { EXPECT_EQ(Invoke("update3 3", "Remove"), CIMValue("")); });
    EXPECT_TRUE(tool.WaitForCalls(2));
    EXPECT_EQ(ValueOf(Get("update7 7"), "Name"), "update7");
    tool.Release("--msched");
    slow.join();
}
