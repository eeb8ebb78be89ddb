#include "InventoryTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::ToolAnswer;

class InventoryOverlap : public InventoryTest {
protected:
    InventoryOverlap() {
        std::string output;
        for (int i = 0; i < SIZE; ++i) {
            output += Line("package" + std::to_string(i), std::to_string(i));
        }
        output += Line("znxliteEMcartridge", "7");
        Prints(output);
        tool.Plays("--setinprogress", ToolAnswer());
        tool.Plays("--apply", ToolAnswer().ExitCode(3));
        calls.EnumInstances(IDENTITY);
    }

    static constexpr int SIZE = 50;
};

TEST_F(InventoryOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
        ASSERT_EQ(instances.size(), SIZE + 1U);
        for (std::size_t i = 0; i < SIZE; ++i) {
            ASSERT_EQ(instances[i].getPropertyValue("Name"),
                      CIMValue(("package" + std::to_string(i)).c_str()));
        }
    };
    const auto names = [&] { ASSERT_EQ(calls.EnumInstanceNames(IDENTITY).size(), SIZE + 1U); };
    const auto cartridges = [&] { ASSERT_EQ(calls.EnumInstances(CARTRIDGE).size(), 1U); };
    const auto get = [&] {
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(Get("7").getPropertyValue("Name"), CIMValue("package7"));
        }
    };
    const auto failureOf = [](const char* field) {
        return [field] {
            const std::string text = std::string("Failed to parse ") + field +
                                     " field from b\n#SWU_Error_ParsingFailed," + field + ",b#";
            for (int i = 0; i < 100; ++i) {
                char line[] = "only\n";
                ASSERT_EQ(Text(GetNextToken(line, "First", "b")), "only");
                ASSERT_EQ(CimErrorOf([&] { GetNextToken(nullptr, field, "b"); }),
                          test_support::Failed(text));
            }
        };
    };
    const auto background = [] { SpawnBackgroundThread("/qv/bin/patchkeeper --apply"); };
    SideBySide({enumerate, enumerate, names, cartridges, get, get, failureOf("B"),
                failureOf("Other"), background},
               20);
}

TEST_F(InventoryOverlap, AnEnumerationKeepsItsRecordsWhileAnotherReplacesTheList) {
    // In the middle of the first enumeration a second one replaces the list by an empty one.
    InterruptedResult result([&] {
        Prints("");
        EXPECT_TRUE(calls.EnumInstances(IDENTITY).empty());
    });
    calls.EnumInstances(IDENTITY, result);
    EXPECT_EQ(result.handled, SIZE + 1U);
}

TEST_F(InventoryOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.ForgetCalls();
    tool.Plays("", ToolAnswer().Output(Line("late", "1")).Held());
    std::thread slow([&] { EXPECT_EQ(calls.EnumInstances(IDENTITY).size(), 1U); });
    ASSERT_TRUE(tool.WaitForCalls(1));
    EXPECT_EQ(Get("7").getPropertyValue("Name"), CIMValue("package7"));
    tool.Release("");
    slow.join();
    EXPECT_EQ(Get("0").getPropertyValue("Name"), CIMValue("late"));
}

TEST_F(InventoryOverlap, AFailingEnumerationDoesNotSpoilAnotherOne) {
    const auto enumerate = [&] {
        const std::size_t size = calls.EnumInstances(IDENTITY).size();
        ASSERT_EQ(size, SIZE + 1U);
    };
    const auto fail = [&] {
        // What a failed refresh publishes: nothing.
        ListRefresh<InventoryObject> refresh(gInventoryList);
    };
    SideBySide({enumerate, enumerate, fail, fail}, 30);
}
