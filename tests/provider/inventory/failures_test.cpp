#include "InventoryTest.hpp"

#include <csignal>

#include <malloc.h>

using namespace OpenWBEM;
using test_support::CimError;
using test_support::CimErrorOf;
using test_support::Failed;
using test_support::NotFound;
using test_support::ToolAnswer;
using testing::ElementsAre;

namespace {

// What is allocated and not given back. The address sanitizer's allocator tells nothing here, but
// has its own look for leaks at the end.
std::size_t AllocatedBytes() {
    return mallinfo2().uordblks;
}

} // namespace

// Every one of these leaves nothing open, nothing running, and a provider that answers the next
// call.
class InventoryFailures : public InventoryTest {
protected:
    InventoryFailures() {
        tool.Plays("--errors", ToolAnswer().Output("A description.\n"));
        Prints(Line("bash", "5"));
        calls.EnumInstances(IDENTITY);
        log->Forget();
        descriptors_ = OpenDescriptors();
    }

    ~InventoryFailures() override {
        EXPECT_EQ(OpenDescriptors(), descriptors_);
        EXPECT_TRUE(NoChildIsLeft());
        tool.RestoreTool();
        Prints(Line("vim", "9"));
        EXPECT_EQ(calls.EnumInstances(IDENTITY).size(), 1U);
    }

    CimError Enumerate() {
        return CimErrorOf([&] { calls.EnumInstances(IDENTITY); });
    }

    static std::string MissingField(const std::string& field) {
        return FailureToParse(field, "/qv/bin/patchkeeper ");
    }

private:
    std::size_t descriptors_ = 0;
};

TEST_F(InventoryFailures, AFailingToolIsDescribedAndLeavesNothing) {
    tool.Plays("", ToolAnswer().Output(Line("bash", "5")).ExitCode(23));
    const std::string text = "A description.\n\n#SWU_Patchkeeper_NoPatchesFound#";
    EXPECT_EQ(Enumerate(), Failed(text));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper ",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 23",
                                        "INFO: Exception: " + text));
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
}

TEST_F(InventoryFailures, EveryEnumerationFailsAlike) {
    tool.Plays("", ToolAnswer().ExitCode(34));
    const CimError error = Failed("A description.\n\n#SWU_Patchkeeper_TimeZoneNotSet#");
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(IDENTITY); }), error);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(CARTRIDGE); }), error);
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstanceNames(CARTRIDGE); }), error);
}

TEST_F(InventoryFailures, AMissingToolIsAFailureWithoutADescription) {
    tool.TakeToolAway();
    EXPECT_EQ(Enumerate(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper ",
                                        "INFO: Executing: /qv/bin/patchkeeper --errors 127",
                                        "INFO: Exception: SWU_Patchkeeper_Unknown"));
}

TEST_F(InventoryFailures, AToolThatIsNotExecutableIsAFailureWithoutADescription) {
    tool.MakeToolNotExecutable();
    EXPECT_EQ(Enumerate(), Failed("SWU_Patchkeeper_Unknown"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 126"));
}

// Debian's shell waits for the tool and turns the signal into an exit code.
TEST_F(InventoryFailures, AKilledToolFailsWith128AndItsSignal) {
    tool.Plays("", ToolAnswer().Output(Line("vim", "9")).DiesBySignal(SIGKILL));
    EXPECT_EQ(Enumerate(), Failed("A description.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_TRUE(log->Contains("INFO: Executing: /qv/bin/patchkeeper --errors 137"));
    EXPECT_EQ(CimErrorOf([&] { Get("0"); }), NotFound());
}

TEST_F(InventoryFailures, EachMissingFieldIsNamed) {
    Prints("\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Name")));
    Prints("bash\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
    Prints("bash\t5\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Classification")));
    Prints("bash\t5\tOther\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Date")));
}

TEST_F(InventoryFailures, AnEmptyFieldShiftsTheOthers) {
    Prints("bash\t\tOther\tThu Jan  2 03:04:05 UTC 2025\n");
    EXPECT_EQ(Enumerate(), Failed(MissingField("Date")));
}

TEST_F(InventoryFailures, AShortLineKeepsTheRecordsBeforeIt) {
    Prints(Line("a", "1") + Line("b", "2") + "c\t3\n" + Line("d", "4"));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Classification")));
    EXPECT_THAT(log->All(),
                ElementsAre("INFO: Executing: /qv/bin/patchkeeper ",
                            "ERROR: Failed to parse Classification field from /qv/bin/patchkeeper ",
                            "INFO: Exception: " + MissingField("Classification")));
    EXPECT_EQ(Get("1").getPropertyValue("Name"), CIMValue("b"));
    EXPECT_EQ(CimErrorOf([&] { Get("2"); }), NotFound());
}

TEST_F(InventoryFailures, FieldsBeyondTheFourthAreIgnored) {
    Prints("bash\t5\tOther\tThu Jan  2 03:04:05 UTC 2025\tmore\tand more\n");
    EXPECT_EQ(Enumerate().number, 0);
}

TEST_F(InventoryFailures, TheLastLineNeedsNoNewline) {
    Prints("bash\t5\tOther\tThu Jan  2 03:04:05 UTC 2025");
    EXPECT_EQ(Enumerate().number, 0);
}

TEST_F(InventoryFailures, ALineOf1023BytesIsReadWhole) {
    const std::string rest = Line("", "5");
    const std::string name(1023 - rest.size(), 'n');
    Prints(Line(name, "5"));
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), 1U);
    EXPECT_EQ(ValueOf(instances[0], "Name"), name);
}

TEST_F(InventoryFailures, ALineOf1024BytesLosesItsNewlineToALineOfItsOwn) {
    Prints(Line(std::string(1024 - Line("", "5").size(), 'n'), "5"));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Name")));
    EXPECT_EQ(ValueOf(Get("0"), "PackageVersion"), "5");
}

TEST_F(InventoryFailures, DuplicateRecordsStandSideBySide) {
    Prints(Line("bash", "5") + Line("bash", "5"));
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    ASSERT_EQ(instances.size(), 2U);
    EXPECT_EQ(ValueOf(instances[0], "InstanceID"), "0");
    EXPECT_EQ(ValueOf(instances[1], "InstanceID"), "1");
}

TEST_F(InventoryFailures, ALineOfMoreThan1023CharactersFallsApart) {
    Prints(Line(std::string(1100, 'n'), "5"));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
}

TEST_F(InventoryFailures, AnyBytesPassAsText) {
    Prints(Line("\xff\xc3\x01", "5") + Line("a\r", "6"));
    const CIMInstanceArray instances = calls.EnumInstances(IDENTITY);
    EXPECT_EQ(instances[0].getPropertyValue("Name"), CIMValue("\xff\xc3\x01"));
    EXPECT_EQ(instances[1].getPropertyValue("Name"), CIMValue("a\r"));
}

TEST_F(InventoryFailures, ACarriageReturnBehindTheDateIsWhiteSpace) {
    Prints("bash\t5\tOther\tThu Jan  2 03:04:05 UTC 2025\r\n");
    EXPECT_EQ(ValueOf(calls.EnumInstances(IDENTITY)[0], "InstalledDate"),
              "20250102030405.000000+000");
}

TEST_F(InventoryFailures, AZeroByteEndsItsLine) {
    Prints(std::string("ba\0sh\t5\tOther\tx\n", 16));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
}

TEST_F(InventoryFailures, AnUnreadableDateIsTheLibrarysException) {
    Prints("bash\t5\tOther\tyesterday\n");
    EXPECT_THROW(calls.EnumInstances(IDENTITY), DateTimeException);
    EXPECT_EQ(calls.EnumInstanceNames(IDENTITY).size(), 1U);
    EXPECT_THROW(Get("0"), DateTimeException);
}

TEST_F(InventoryFailures, SeventyThousandPackagesAreAllServed) {
    std::string output;
    for (int i = 0; i < 70'000; ++i) {
        output += Line("p" + std::to_string(i), "1");
    }
    Prints(output);
    EXPECT_EQ(calls.EnumInstanceNames(IDENTITY).size(), 70'000U);
    EXPECT_EQ(Get("69999").getPropertyValue("Name"), CIMValue("p69999"));
}

TEST_F(InventoryFailures, TenMegabytesOfGarbageLackAField) {
    Prints(std::string(10'000'000, 'x'));
    EXPECT_EQ(Enumerate(), Failed(MissingField("Version")));
}

TEST_F(InventoryFailures, AManyMegabytesLongDescriptionIsHandedOverWhole) {
    tool.Plays("", ToolAnswer().ExitCode(11));
    const std::string description(10'000'000, 'd');
    tool.Plays("--errors", ToolAnswer().Output(description));
    EXPECT_EQ(Enumerate(), Failed(description + "\n#SWU_Patchkeeper_FtpFailed#"));
}

TEST_F(InventoryFailures, AHandlerThatThrowsEndsTheEnumeration) {
    RefusingResult refusing;
    EXPECT_EQ(CimErrorOf([&] { calls.EnumInstances(IDENTITY, refusing); }).number, 2);
}

TEST_F(InventoryFailures, TwoHundredFailuresLeaveNothingBehind) {
    const auto failInEachWay = [&] {
        tool.Plays("", ToolAnswer().ExitCode(11));
        EXPECT_EQ(Enumerate().number, 1);
        Prints("short\n");
        EXPECT_EQ(Enumerate().number, 1);
    };
    failInEachWay();
    log->Forget();
    const std::size_t before = AllocatedBytes();
    for (int i = 0; i < 100; ++i) {
        failInEachWay();
        log->Forget();
    }
    EXPECT_LT(AllocatedBytes(), before + 1000);
}
