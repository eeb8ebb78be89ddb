#include "provider/ProviderTest.hpp"

#include <csignal>
#include <map>

using test_support::CimErrorOf;
using test_support::Failed;
using test_support::ToolAnswer;
using testing::ElementsAre;

TEST(PatchkeeperError_, KnowsTheCodesThatHaveAMessage) {
    const std::map<int, std::string> table = {
        {11, "SWU_Patchkeeper_FtpFailed"},           {12, "SWU_Patchkeeper_SoftwareUpdateFailed"},
        {13, "SWU_Patchkeeper_RpmInstallFailed"},    {14, "SWU_Patchkeeper_PatchDownloadFailed"},
        {15, "SWU_Patchkeeper_PatchApplyFailed"},    {16, "SWU_Patchkeeper_PatchRemoveFailed"},
        {17, "SWU_Patchkeeper_PatchScheduleFailed"}, {18, "SWU_Patchkeeper_PatchModifyFailed"},
        {19, "SWU_Patchkeeper_HttpFailed"},          {20, "SWU_Patchkeeper_HttpsFailed"},
        {21, "SWU_Patchkeeper_SambaFailed"},         {22, "SWU_Patchkeeper_UsbFailed"},
        {23, "SWU_Patchkeeper_NoPatchesFound"},      {33, "SWU_Patchkeeper_NoLocalPatchesFound"},
        {34, "SWU_Patchkeeper_TimeZoneNotSet"},
    };
    for (int code = -300; code <= 70000; ++code) {
        const auto row = table.find(code);
        ASSERT_EQ(PatchkeeperError(code),
                  row == table.end() ? "SWU_Patchkeeper_Unknown" : row->second)
            << code;
    }
}

using ThrowPatchKeeperError_ = ToolTest;

TEST_F(ThrowPatchKeeperError_, AsksTheToolForItsDescription) {
    tool.Plays("--errors", ToolAnswer().Output("The update\nfailed.\n"));
    const std::string text = "The update\nfailed.\n\n#SWU_Patchkeeper_SoftwareUpdateFailed#";
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(12); }), Failed(text));
    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--errors", "12")));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --errors 12",
                                        "INFO: Exception: " + text));
}

TEST_F(ThrowPatchKeeperError_, CollectsErrorOutputAsDescription) {
    tool.Plays("--errors", ToolAnswer().ErrorText("Said on standard error.\n"));
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(23); }),
              Failed("Said on standard error.\n\n#SWU_Patchkeeper_NoPatchesFound#"));
}

TEST_F(ThrowPatchKeeperError_, DescribesAToolThatCouldNotStart) {
    tool.Plays("--errors", ToolAnswer().Output("Unknown.\n"));
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(-1); }),
              Failed("Unknown.\n\n#SWU_Patchkeeper_Unknown#"));
    EXPECT_THAT(tool.Calls(), ElementsAre(ElementsAre("/qv/bin/patchkeeper", "--errors", "-1")));
}

TEST_F(ThrowPatchKeeperError_, TakesAnEmptyDescriptionForOne) {
    tool.Plays("--errors", ToolAnswer());
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(11); }),
              Failed("\n#SWU_Patchkeeper_FtpFailed#"));
}

TEST_F(ThrowPatchKeeperError_, HandsTheDescriptionOnByteByByte) {
    tool.Plays("--errors", ToolAnswer().Output("a,b#c\r\n\xff\xc3 and no newline"));
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(11); }),
              Failed("a,b#c\r\n\xff\xc3 and no newline\n#SWU_Patchkeeper_FtpFailed#"));
}

TEST_F(ThrowPatchKeeperError_, GivesTheIdAloneWhenTheToolIsKilled) {
    tool.Plays("--errors", ToolAnswer().Output("Some of it.\n").DiesBySignal(SIGKILL));
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(11); }), Failed("SWU_Patchkeeper_FtpFailed"));
}

TEST_F(ThrowPatchKeeperError_, GivesTheIdAloneWhenTheToolIsGone) {
    tool.TakeToolAway();
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(127); }), Failed("SWU_Patchkeeper_Unknown"));
    tool.MakeToolNotExecutable();
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(11); }), Failed("SWU_Patchkeeper_FtpFailed"));
}

class CommonOddities : public ToolTest {};

TEST_F(CommonOddities, CM8_TheCodesFrom24To32HaveNoMessageOfTheirOwn) {
    for (int code = 24; code <= 32; ++code) {
        EXPECT_STREQ(PatchkeeperError(code), "SWU_Patchkeeper_Unknown");
    }
    EXPECT_STREQ(PatchkeeperError(23), "SWU_Patchkeeper_NoPatchesFound");
    EXPECT_STREQ(PatchkeeperError(33), "SWU_Patchkeeper_NoLocalPatchesFound");
}

TEST_F(CommonOddities, CM10_WithoutADescriptionTheTextIsTheBareId) {
    tool.Plays("--errors", ToolAnswer().Output("No use.\n").ExitCode(1));
    EXPECT_EQ(CimErrorOf([] { ThrowPatchKeeperError(15); }),
              Failed("SWU_Patchkeeper_PatchApplyFailed"));
    EXPECT_THAT(log->All(), ElementsAre("INFO: Executing: /qv/bin/patchkeeper --errors 15",
                                        "INFO: Exception: SWU_Patchkeeper_PatchApplyFailed"));
}
