#include "AvailableTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::ToolAnswer;

class AvailableOverlap : public AvailableTest {
protected:
    AvailableOverlap() {
        std::string output;
        for (int i = 0; i < SIZE; ++i) {
            output += Line("u" + std::to_string(i));
        }
        Lists(output);
        Prints("a\nb\n");
        tool.Plays("-l", ToolAnswer().Output("The text.\n"));
        tool.Plays("--status", ToolAnswer().Output("1\tHalf of it\n"));
        tool.Plays("--warnings", ToolAnswer().Output("Beware.\n"));
        tool.Plays("--hascomponents", ToolAnswer());
        tool.Plays("--setinprogress", ToolAnswer());
        tool.Plays("--apply", ToolAnswer());
        Updates();
    }

    CIMValue InvokeAlone(const char* id, const char* method) {
        CIMParamValueArray result;
        return provider.invokeMethod(env, "root/cimv2",
                                     test_support::PathOf(UPDATE, "InstanceID", id), method,
                                     CIMParamValueArray(), result);
    }

    static constexpr int SIZE = 50;
};

TEST_F(AvailableOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = Updates();
        ASSERT_EQ(instances.size(), std::size_t{SIZE});
        ASSERT_EQ(ValueOf(instances[SIZE - 1], "Name"), "u49");
    };
    const auto get = [&] {
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(ValueOf(GetUpdate("7"), "Name"), "u7");
        }
    };
    const auto describe = [&] {
        const StringArray description(1, "UpdateDescription");
        ASSERT_EQ(ValueOf(GetUpdate("7", &description), "UpdateDescription"), "The text.\n");
    };
    const auto progress = [&] { ASSERT_EQ(InvokeAlone("7", "GetProgress"), CIMValue(Int8(1))); };
    const auto warnings = [&] { ASSERT_EQ(InvokeAlone("7", "Warnings"), CIMValue("Beware.\n")); };
    const auto select = [&](const char* id) {
        return [this, id] {
            ASSERT_EQ(InvokeAlone(id, "HasOptionalComponents"), CIMValue(true));
            calls.EnumInstances(COMPONENT);
            CimErrorOf([&] { Choose("1"); });
        };
    };
    const auto apply = [&] { ASSERT_EQ(InvokeAlone("7", "Apply"), CIMValue("")); };
    SideBySide(
        {enumerate, enumerate, get, describe, progress, warnings, select("1"), select("2"), apply},
        10);
}

TEST_F(AvailableOverlap, AnEnumerationKeepsItsRecordsWhileAnotherReplacesTheList) {
    InterruptedResult result([&] {
        Lists("");
        EXPECT_TRUE(Updates().empty());
    });
    available.EnumInstances(UPDATE, result);
    EXPECT_EQ(result.handled, std::size_t{SIZE});
}

TEST_F(AvailableOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.ForgetCalls();
    tool.Plays("--cache", ToolAnswer().Output(Line("late")).Held());
    std::thread slow([&] { EXPECT_EQ(Updates().size(), 1U); });
    ASSERT_TRUE(tool.WaitForCalls(1));
    EXPECT_EQ(ValueOf(GetUpdate("7"), "Name"), "u7");
    EXPECT_EQ(InvokeAlone("7", "Warnings"), CIMValue("Beware.\n"));
    tool.Release("--cache");
    slow.join();
    EXPECT_EQ(ValueOf(GetUpdate("0"), "Name"), "late");
}
