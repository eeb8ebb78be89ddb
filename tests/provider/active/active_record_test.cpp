#include "ActiveTest.hpp"

using namespace OpenWBEM;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

// What a getter of a text gives.
std::string TextBy(const ActiveUpdate& record, bool (ActiveUpdate::*get)(String&) const) {
    String text = "as before";
    EXPECT_TRUE((record.*get)(text));
    return Text(text);
}

std::string DateBy(const ActiveUpdate& record, bool (ActiveUpdate::*get)(CIMDateTime&) const) {
    CIMDateTime date;
    EXPECT_TRUE((record.*get)(date));
    return Text(date.toString());
}

bool RebootOf(const ActiveUpdate& record) {
    bool reboot = false;
    EXPECT_TRUE(record.getRebootRequired(reboot));
    return reboot;
}

} // namespace

class ActiveRecord : public ActiveTest {
protected:
    ActiveUpdate RecordOf(const std::string& line) {
        Prints(line);
        ActiveUpdate_ObjectList list;
        list.getObjectList();
        EXPECT_TRUE(list.hasObject());
        const ActiveUpdate record(list);
        tool.ForgetCalls();
        log->Forget();
        return record;
    }

    ActiveUpdate Vim() { return RecordOf(Line("vim", "9.0")); }
};

TEST_F(ActiveRecord, ANewRecordHoldsEmptyTexts) {
    const ActiveUpdate record;
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getInstanceID), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getVersion), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getShortDescription), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getLocation), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getStatus), "");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getSize), "");
    EXPECT_FALSE(RebootOf(record));
}

TEST_F(ActiveRecord, ItHoldsEveryColumnOfTheListsCurrentRecord) {
    Prints(Line("a", "1") + "vim\t9.0\td\tl\tFeb 3 2025 04:05:06\treboot\ts\tt\n");
    ActiveUpdate_ObjectList list;
    list.getObjectList();
    EXPECT_TRUE(list.hasObject());
    EXPECT_TRUE(list.hasObject());
    const ActiveUpdate made(list);
    ActiveUpdate record;
    record = made;
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getInstanceID), "vim 9.0");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "vim");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getVersion), "9.0");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getShortDescription), "d");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getLocation), "l");
    EXPECT_EQ(DateBy(record, &ActiveUpdate::getApplyDate), "20250203040506.000000+000");
    EXPECT_TRUE(RebootOf(record));
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getSize), "s");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getStatus), "t");
}

TEST_F(ActiveRecord, DatesAreReadAsTheProviderApiDoes) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    const ActiveUpdate record = RecordOf("a\t1\td\tl\t20260713225900.000000+060\tno\ts\tt\n");
    EXPECT_EQ(DateBy(record, &ActiveUpdate::getApplyDate), "20260713235900.000000+120");
    const ActiveUpdate other = RecordOf("a\t1\td\tl\tThu Jan  2 03:04:05 UTC 2025\tno\ts\tt\n");
    EXPECT_EQ(DateBy(other, &ActiveUpdate::getApplyDate), "20250102040405.000000+060");
}

TEST_F(ActiveRecord, AnUnreadableDateIsTheLibrarysException) {
    const ActiveUpdate record = RecordOf("a\t1\td\tl\tsoon\tno\ts\tt\n");
    CIMDateTime date;
    EXPECT_THROW(record.getApplyDate(date), DateTimeException);
}

TEST_F(ActiveRecord, TheDescriptionIsTheWholeOutput) {
    const ActiveUpdate record = Vim();
    String description;
    EXPECT_TRUE(record.getUpdateDescription(description));
    EXPECT_EQ(Text(description), "The long\ntext.\n");
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper -l vim-9.0 2>&1"));
}

TEST_F(ActiveRecord, AFailingDescriptionIsNoFailure) {
    const ActiveUpdate record = Vim();
    tool.Plays("-l", ToolAnswer().Output("x").ExitCode(255));
    String description;
    EXPECT_FALSE(record.getUpdateDescription(description));
    tool.TakeToolAway();
    EXPECT_FALSE(record.getUpdateDescription(description));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper -l vim-9.0",
                                        "INFO: Executing: /qv/bin/patchkeeper -l vim-9.0"));
}

TEST_F(ActiveRecord, CancelRunsTheToolAndWaits) {
    const ActiveUpdate record = Vim();
    tool.Plays("--rback", ToolAnswer().Output("Rolled back.\n"));
    EXPECT_EQ(Text(record.Cancel()), "");
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --rback vim 9.0"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --rback vim 9.0"));
    EXPECT_FALSE(BackgroundTasksRun());
}

TEST_F(ActiveRecord, ARefusingToolIsDescribed) {
    const ActiveUpdate record = Vim();
    tool.Plays("--rback", ToolAnswer().ExitCode(16));
    const std::string text = "It failed.\n\n#SWU_Patchkeeper_PatchRemoveFailed#";
    EXPECT_EQ(CimErrorOf([&] { record.Cancel(); }), Failed(text));
    EXPECT_THAT(tool.ShellCommands(), ElementsAre("/qv/bin/patchkeeper --rback vim 9.0",
                                                  "/qv/bin/patchkeeper --errors 16 2>&1"));
}

class ActiveManager : public ActiveTest {
protected:
    ActiveUpdate_ObjectInstanceManager manager;
    ActiveUpdate record;
};

TEST_F(ActiveManager, AnIterationHandsOverEachRecordOnce) {
    Prints(Line("a", "1") + Line("b", "2"));
    manager.startIteration();
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getInstanceID), "a 1");
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getInstanceID), "b 2");
    EXPECT_FALSE(manager.hasNext());
    manager.endIteration();
    EXPECT_EQ(tool.Calls().size(), 1U);
}

TEST_F(ActiveManager, EachIterationAsksTheToolAnew) {
    Prints(Line("a", "1"));
    manager.startIteration();
    Prints(Line("b", "2"));
    manager.startIteration();
    ASSERT_TRUE(manager.hasNext());
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "b");
    Prints("");
    manager.startIteration();
    EXPECT_FALSE(manager.hasNext());
}

TEST_F(ActiveManager, AFailingToolFailsTheIteration) {
    tool.Plays("--apply", ToolAnswer().ExitCode(34));
    EXPECT_EQ(CimErrorOf([&] { manager.startIteration(); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_TimeZoneNotSet#"));
    EXPECT_FALSE(manager.hasNext());
}

TEST_F(ActiveManager, InitAsksTheToolNothing) {
    ActiveUpdate_ObjectInstanceManager::init();
    EXPECT_THAT(tool.Calls(), testing::IsEmpty());
}

TEST_F(ActiveManager, ALookupFindsTheRecordOfExactlyThatIdentifier) {
    Prints(Line("a", "1") + Line("b", "2", "no") + Line("c", "3"));
    manager.getOneObject("b 2", record);
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "b");
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getVersion), "2");
    EXPECT_FALSE(RebootOf(record));
    for (const char* const other : {"B 2", "b", "b 2 ", " b 2", "b  2", "b-2", "2 b", "", "b 22"}) {
        EXPECT_EQ(CimErrorOf([&] { manager.getOneObject(other, record); }), NotFound()) << other;
    }
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "b");
}

TEST_F(ActiveManager, EachLookupAsksTheToolAnew) {
    Prints(Line("a", "1"));
    manager.getOneObject("a 1", record);
    manager.getOneObject("a 1", record);
    EXPECT_EQ(tool.Calls().size(), 2U);
    Prints(Line("a", "2"));
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }), NotFound());
}

TEST_F(ActiveManager, ALookupLeavesAnIterationAlone) {
    Prints(Line("a", "1") + Line("b", "2"));
    manager.startIteration();
    EXPECT_TRUE(manager.hasNext());
    ActiveUpdate other;
    manager.getOneObject("b 2", other);
    manager.getNext(record);
    EXPECT_EQ(TextBy(record, &ActiveUpdate::getName), "a");
}

TEST_F(ActiveManager, ALookupPassesOnWhatTheListingFailsWith) {
    Prints("");
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }), NotFound());
    Prints(Line("a", "1") + "short\n");
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }),
              Failed(MissingField("Version")));
    tool.Plays("--apply", ToolAnswer().ExitCode(15));
    EXPECT_EQ(CimErrorOf([&] { manager.getOneObject("a 1", record); }),
              Failed("It failed.\n\n#SWU_Patchkeeper_PatchApplyFailed#"));
}

TEST_F(ActiveManager, DuplicatesAreAnsweredByTheFirst) {
    Prints(Line("a", "1", "reboot") + Line("a", "1", "no"));
    manager.getOneObject("a 1", record);
    EXPECT_TRUE(RebootOf(record));
}
