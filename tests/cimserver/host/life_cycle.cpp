#include "cimserver/host/HostTest.hpp"

using namespace std::chrono_literals;

namespace hosttest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int longest = 20000; // milliseconds until a wait is a failure
constexpr int moment = 300;    // milliseconds in which something must not happen

class LifeCycle : public HostTest {
protected:
    cimserver::host::Settings Impatient() const {
        auto settings = Settings();
        settings.idleTime = 1ms;
        settings.housekeepingInterval = 5ms;
        return settings;
    }
};

TEST_F(LifeCycle, StartAsksEveryLibraryAndClosesItWithoutInitialize) {
    Install("Good");
    Start();
    EXPECT_THAT(TakeLines(),
                ElementsAre("Good: opened", "Good: getOWVersion", "Good: getOWVersion",
                            "Good: made", "Good: getPolledProvider",
                            "Good: getIndicationExportProvider", "Good: getInstanceProvider",
                            "Good: getInstanceProviderInfo", "Good: getSecondaryInstanceProvider",
                            "Good: getAssociatorProvider", "Good: getMethodProvider",
                            "Good: getIndicationProvider", "Good: destroyed", "Good: closed"));
}

TEST_F(LifeCycle, FirstRequestLoadsAndInitializesOnceAndLaterOnesReuseIt) {
    Install("Good");
    Start();
    TakeLines();
    EXPECT_TRUE(Enumerate("c++::Good", "HT_Class", "anna"));
    EXPECT_THAT(TakeLines(), ElementsAre("Good: opened", "Good: getOWVersion", "Good: made",
                                         "Good: initialize for anna", "Good: getInstanceProvider",
                                         "Good: enumInstanceNames HT_Class"));
    EXPECT_TRUE(Enumerate("c++::Good", "HT_Second", "bert"));
    EXPECT_THAT(TakeLines(),
                ElementsAre("Good: getInstanceProvider", "Good: enumInstanceNames HT_Second"));
}

TEST_F(LifeCycle, EndDestroysProvidersAndClosesLibrariesOnItsThread) {
    Install("Good");
    Start();
    Enumerate("c++::Good");
    TakeLines();
    Stop();
    EXPECT_THAT(TakeLines(), ElementsAre("Good: destroyed", "Good: closed"));
    EXPECT_EQ(ThreadOf("Good: destroyed"), std::this_thread::get_id());
    EXPECT_EQ(ThreadOf("Good: closed"), std::this_thread::get_id());
}

TEST_F(LifeCycle, FailedInitializeIsTheAnswerAndTheNextRequestRepeatsAll) {
    Install("Good");
    Start();
    TakeLines();
    Switch("Good: initialize fails once", true);
    EXPECT_EQ(Failure("c++::Good"), "1 not yet");
    EXPECT_THAT(TakeLines(),
                ElementsAre("Good: opened", "Good: getOWVersion", "Good: made",
                            "Good: initialize for ", "Good: destroyed", "Good: closed"));
    EXPECT_TRUE(Enumerate("c++::Good"));
    EXPECT_THAT(TakeLines(), ElementsAre("Good: opened", "Good: getOWVersion", "Good: made",
                                         "Good: initialize for ", "Good: getInstanceProvider",
                                         "Good: enumInstanceNames HT_Class"));
}

TEST_F(LifeCycle, IdleProviderIsDroppedAndLoadedAfresh) {
    Install("Good");
    Start(Impatient());
    TakeLines();
    Enumerate("c++::Good");
    ASSERT_TRUE(WaitForLine("Good: closed", longest));
    auto lines = TakeLines();
    ASSERT_GE(lines.size(), 3U);
    lines.erase(lines.begin(), lines.end() - 3);
    EXPECT_THAT(lines, ElementsAre("Good: canUnload", "Good: destroyed", "Good: closed"));
    Enumerate("c++::Good");
    ASSERT_TRUE(WaitForLine("Good: initialize for ", longest));
}

TEST_F(LifeCycle, ProviderThatIsNotIdleForLongIsNotAsked) {
    Install("Good");
    auto settings = Impatient();
    settings.idleTime = 1h;
    Start(settings);
    Enumerate("c++::Good");
    TakeLines();
    EXPECT_FALSE(WaitForLine("Good: canUnload", moment));
}

TEST_F(LifeCycle, ProviderThatCannotBeUnloadedStaysUntilItCan) {
    Install("Good");
    Switch("Good: canUnload answers no", true);
    Start(Impatient());
    TakeLines();
    Enumerate("c++::Good");
    ASSERT_TRUE(WaitForLine("Good: canUnload", longest));
    TakeLines();
    ASSERT_TRUE(WaitForLine("Good: canUnload", longest));
    EXPECT_THAT(TakeLines(), testing::Each("Good: canUnload"));
    Switch("Good: canUnload answers no", false);
    EXPECT_TRUE(WaitForLine("Good: closed", longest));
}

TEST_F(LifeCycle, PersistentProviderIsNotEvenAsked) {
    Install("Good");
    Switch("Good: persists", true);
    Start(Impatient());
    Enumerate("c++::Good");
    TakeLines();
    EXPECT_FALSE(WaitForLine("Good: canUnload", moment));
    EXPECT_THAT(TakeLines(), IsEmpty());
}

TEST_F(LifeCycle, NegativeIdleTimeKeepsProviders) {
    Install("Good");
    auto settings = Impatient();
    settings.idleTime = -1ms;
    Start(settings);
    Enumerate("c++::Good");
    TakeLines();
    EXPECT_FALSE(WaitForLine("Good: canUnload", moment));
}

TEST_F(LifeCycle, ProviderInUseIsNotIdle) {
    Install("Good");
    Start(Impatient());
    bool askedMeanwhile = true;
    TheHost().WithInstanceProvider(
        {"root/cimv2", "HT_Class", "c++::Good"}, {"", ""},
        [&](auto&, const auto&) { askedMeanwhile = WaitForLine("Good: canUnload", moment); });
    EXPECT_FALSE(askedMeanwhile);
    EXPECT_TRUE(WaitForLine("Good: closed", longest));
}

TEST_F(LifeCycle, EachCallIsNotedAtTheProvider) {
    Install("Good");
    Start();
    OpenWBEM::DateTime before;
    before.setToCurrent();
    TheHost().WithInstanceProvider(
        {"root/cimv2", "HT_Class", "c++::Good"}, {"", ""},
        [&](auto& provider, const auto&) { EXPECT_GE(provider.getLastAccessTime(), before); });
}

TEST_F(LifeCycle, PolledProviderIsInitializedAtTheStartAndKept) {
    Install("Good");
    Switch("Good: polls", true);
    Start(Impatient());
    const auto lines = TakeLines();
    EXPECT_THAT(lines,
                ElementsAre("Good: opened", "Good: getOWVersion", "Good: getOWVersion",
                            "Good: made", "Good: getPolledProvider",
                            "Good: getIndicationExportProvider", "Good: initialize for ",
                            "Good: getInstanceProvider", "Good: getInstanceProviderInfo",
                            "Good: getSecondaryInstanceProvider", "Good: getAssociatorProvider",
                            "Good: getMethodProvider", "Good: getIndicationProvider"));
    EXPECT_TRUE(Enumerate("c++::Good"));
    EXPECT_FALSE(WaitForLine("Good: canUnload", moment));
    EXPECT_THAT(TakeLines(),
                ElementsAre("Good: getInstanceProvider", "Good: enumInstanceNames HT_Class"));
}

TEST_F(LifeCycle, ProviderWithoutIdThatPollsIsKeptUntilTheEnd) {
    Install("NoId");
    Switch("NoId: polls", true);
    Start();
    EXPECT_THAT(TakeLines(), ElementsAre("NoId: made", "NoId: initialize"));
    Stop();
    EXPECT_THAT(TakeLines(), ElementsAre("NoId: destroyed"));
}

TEST_F(LifeCycle, ProviderWithoutIdAndWithoutPollingIsDropped) {
    Install("NoId");
    Start();
    EXPECT_THAT(TakeLines(), ElementsAre("NoId: made", "NoId: destroyed"));
    EXPECT_THAT(LogTaken(), IsEmpty());
}

} // namespace
} // namespace hosttest
