#include "ComponentTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::NotFound;
using test_support::ToolAnswer;

class ComponentOverlap : public ComponentTest {
protected:
    ComponentOverlap() {
        SelectComponentsOf("N", "V");
        Prints("a\nb\nc\n");
        calls.EnumInstances(COMPONENT);
    }
};

TEST_F(ComponentOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = calls.EnumInstances(COMPONENT);
        ASSERT_EQ(instances.size(), 3U);
        ASSERT_EQ(ValueOf(instances[2], "Name"), "c");
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(COMPONENT).size(), 3U); };
    // Where a selection has just emptied the list there is nothing to be found.
    const auto choose = [&] {
        for (int i = 0; i < 50; ++i) {
            const int code = CimErrorOf([&] { Choose("1"); }).number;
            ASSERT_TRUE(code == 0 || code == 6) << code;
        }
    };
    const auto get = [&] {
        for (int i = 0; i < 50; ++i) {
            const int code = CimErrorOf([&] { ASSERT_EQ(ValueOf(Get("1"), "Name"), "b"); }).number;
            ASSERT_TRUE(code == 0 || code == 6) << code;
        }
    };
    const auto read = [&] {
        for (int i = 0; i < 50; ++i) {
            const std::string chosen = Text(GetOptionalComponentList());
            ASSERT_TRUE(chosen.empty() || chosen == "b") << chosen;
        }
    };
    const auto select = [] {
        SelectComponentsOf("N", "V");
        SelectComponentsOf("M", "W");
    };
    SideBySide({enumerate, enumerate, names, choose, get, read, select}, 20);
}

// Each thread alone changes its component, so it always finds what it has stored last.
TEST_F(ComponentOverlap, SideBySideChoicesAreAllKept) {
    std::string output;
    std::vector<std::function<void()>> actions;
    for (int i = 0; i < 4; ++i) {
        output += "c" + std::to_string(i) + "\n";
        actions.emplace_back([this, id = std::to_string(i)] {
            for (int n = 0; n < 500; ++n) {
                const bool install = n % 2 != 0;
                Choose(id.c_str(), install);
                ASSERT_EQ(Get(id.c_str()).getPropertyValue("Install"), CIMValue(install));
            }
        });
    }
    Prints(output);
    calls.EnumInstances(COMPONENT);
    SideBySide(actions, 1);
    EXPECT_EQ(Text(GetOptionalComponentList()), "c0 c1 c2 c3");
}

TEST_F(ComponentOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.ForgetCalls();
    tool.Plays("--components", ToolAnswer().Output("late\n").Held());
    std::thread slow([&] { EXPECT_EQ(calls.EnumInstances(COMPONENT).size(), 1U); });
    ASSERT_TRUE(tool.WaitForCalls(1));
    Choose("0");
    EXPECT_EQ(Text(GetOptionalComponentList()), "a");
    tool.Release("--components");
    slow.join();
    EXPECT_EQ(ValueOf(Get("0"), "Name"), "late");
    EXPECT_EQ(Text(GetOptionalComponentList()), "");
}

TEST_F(ComponentOverlap, AnEnumerationThatWasOvertakenByASelectionLeavesTheListAlone) {
    tool.ForgetCalls();
    tool.Plays("--components", ToolAnswer().Output("late\n").Held());
    std::thread slow([&] { EXPECT_EQ(calls.EnumInstances(COMPONENT).size(), 1U); });
    ASSERT_TRUE(tool.WaitForCalls(1));
    SelectComponentsOf("M", "W");
    tool.Release("--components");
    slow.join();
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
}

TEST_F(ComponentOverlap, TheSameSelectionAgainDoesNotTakeALateEnumeration) {
    const std::vector<std::vector<const char*>> overtakings = {{"M", "N"}, {"N"}};
    for (const std::vector<const char*>& names : overtakings) {
        SelectComponentsOf("N", "V");
        tool.ForgetCalls();
        tool.Plays("--components", ToolAnswer().Output("late\n").Held());
        std::thread slow([&] { EXPECT_EQ(calls.EnumInstances(COMPONENT).size(), 1U); });
        ASSERT_TRUE(tool.WaitForCalls(1));
        for (const char* const name : names) {
            SelectComponentsOf(name, "V");
        }
        tool.Release("--components");
        slow.join();
        EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound()) << names.size();
        Prints("late\n");
        Enumerate();
        EXPECT_EQ(ValueOf(Get("0"), "Name"), "late");
    }
}

TEST_F(ComponentOverlap, NameAndVersionOfTheSelectionStayTogether) {
    tool.ForgetCalls();
    const auto enumerate = [&] { calls.EnumInstances(COMPONENT); };
    const auto select = [](const char* text) { return [text] { SelectComponentsOf(text, text); }; };
    SelectComponentsOf("one", "one");
    SideBySide({enumerate, enumerate, select("one"), select("two"), select("three")}, 30);
    for (const std::vector<std::string>& call : tool.Calls()) {
        ASSERT_EQ(call.size(), 4U);
        EXPECT_EQ(call[2], call[3]);
    }
}
