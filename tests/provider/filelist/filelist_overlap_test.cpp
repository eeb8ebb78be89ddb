#include "FileListTest.hpp"

using namespace OpenWBEM;
using test_support::ToolAnswer;
using testing::ElementsAre;

class FileListOverlap : public FileListTest {};

TEST_F(FileListOverlap, AnEnumerationKeepsItsUpdatesWhileTheListIsReplaced) {
    class Interrupted : public CIMInstanceResultHandlerIFC {
    public:
        std::vector<std::string> ids;

    private:
        void doHandle(const CIMInstance& instance) override {
            Holds({});
            ids.push_back(
                Text(Target(instance, "Antecedent").getKeyValue("InstanceID").toString()));
        }
    } result;
    calls.EnumInstances(FILE_LIST, result);
    EXPECT_THAT(result.ids, ElementsAre("0", "0", "1", "1"));
    EXPECT_TRUE(calls.EnumInstances(FILE_LIST).empty());
}

TEST_F(FileListOverlap, NothingIsLockedWhileTheToolRuns) {
    tool.Plays("--files", ToolAnswer().Output("late").Held());
    std::thread slow([&] { EXPECT_EQ(References(Update("0")).size(), 1U); });
    EXPECT_TRUE(tool.WaitForCalls(1));
    EXPECT_EQ(Associators(Update("1"), UPDATES).size(), 1U);
    Holds({});
    tool.Release("--files");
    slow.join();
}

TEST_F(FileListOverlap, EverythingAtOnceGivesEveryCallItsOwnAnswer) {
    const auto enumerate = [&] {
        const std::size_t count = calls.EnumInstances(FILE_LIST).size();
        EXPECT_TRUE(count == 4 || count == 2) << count;
    };
    const auto files = [&] { EXPECT_EQ(AssociatorNames(Update("0"), FILE_NAMES).size(), 2U); };
    const auto references = [&] {
        EXPECT_EQ(Target(References(Update("0"))[1], "Dependent"), File("two"));
    };
    const auto replace = [&] {
        Holds({{"vim", "9.0"}});
        Holds({{"vim", "9.0"}, {"bash", "5"}});
    };
    SideBySide({enumerate, enumerate, files, references, replace}, 5);
}
