// A library in which a call is, as those who wait for it see it.
#include "cimserver/host/HostTest.hpp"

#include <chrono>
#include <future>
#include <mutex>
#include <thread>

using namespace std::chrono_literals;

namespace hosttest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

const cimserver::host::Target target{"root/cimv2", "HT_Slow", "c++::Good"};

/// A call that stays inside the library until it is told to go.
class Inside {
public:
    explicit Inside(cimserver::host::Host& host)
        : call_(std::async(std::launch::async, [this, &host] {
              host.WithInstanceProvider(target, {"DeleteInstance", ""}, [this](auto&, const auto&) {
                  isInside_.set_value();
                  mayGo_.get_future().wait();
              });
          })) {
        isInside_.get_future().wait();
    }
    void Leave() {
        mayGo_.set_value();
        call_.get();
    }

private:
    std::promise<void> isInside_;
    std::promise<void> mayGo_;
    std::future<void> call_;
};

class Busy : public HostTest {
protected:
    void StartWithWait(std::chrono::milliseconds longestWait) {
        Install("Good");
        auto settings = Settings();
        settings.longestWait = longestWait;
        Start(settings);
    }
};

TEST_F(Busy, WhoWaitsTooLongIsToldForWhatAndSinceWhen) {
    StartWithWait(20ms);
    Inside first(TheHost());
    EXPECT_EQ(Failure("c++::Good"),
              "1 general error (busy with DeleteInstance of HT_Slow since 0 s)");
    std::this_thread::sleep_for(1s);
    EXPECT_THAT(Failure("c++::Good"),
                MatchesRegex("1 general error \\(busy with DeleteInstance of HT_Slow since [1-9] "
                             "s\\)"));
    first.Leave();
    EXPECT_TRUE(Enumerate("c++::Good"));
    EXPECT_THAT(LogTaken(), IsEmpty());
}

TEST_F(Busy, WhoWaitsLessGetsIn) {
    StartWithWait(20s);
    Inside first(TheHost());
    auto second = std::async(std::launch::async, [this] { return Enumerate("c++::Good"); });
    EXPECT_EQ(second.wait_for(50ms), std::future_status::timeout);
    first.Leave();
    EXPECT_TRUE(second.get());
}

TEST_F(Busy, ZeroWaitsForEver) {
    StartWithWait(0ms);
    Inside first(TheHost());
    auto second = std::async(std::launch::async, [this] { return Enumerate("c++::Good"); });
    EXPECT_EQ(second.wait_for(100ms), std::future_status::timeout);
    first.Leave();
    EXPECT_TRUE(second.get());
}

TEST_F(Busy, OtherLibrariesServe) {
    Install("Other");
    StartWithWait(20ms);
    Inside first(TheHost());
    EXPECT_TRUE(Enumerate("c++::Other"));
    first.Leave();
}

TEST_F(Busy, ACallThatHasFailedIsNoLongerInside) {
    StartWithWait(20ms);
    EXPECT_THROW(
        TheHost().WithInstanceProvider(target, {"", ""}, [](auto&, const auto&) { throw 5; }),
        OpenWBEM::CIMException);
    EXPECT_TRUE(Enumerate("c++::Good"));
}

class Watched : public Busy {
protected:
    cimserver::host::CallInfo Info() {
        return {"GetInstance", "", [this](const std::string& what) { Note("in: " + what); },
                [this] { Note("out"); }};
    }
    void Note(const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }
    Lines Noted() {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    std::mutex mutex_;
    Lines lines_;
};

TEST_F(Watched, ACallIsInsideFromBeforeItsProviderIsLoadedUntilItReturns) {
    StartWithWait(0ms);
    for (int call = 0; call < 2; ++call) {
        TheHost().WithInstanceProvider(target, Info(), [&](auto&, const auto&) { Note("runs"); });
    }
    EXPECT_THAT(Noted(), ElementsAre("in: GetInstance of HT_Slow", "runs", "out",
                                     "in: GetInstance of HT_Slow", "runs", "out"));
}

TEST_F(Watched, ACallThatThrowsLeavesToo) {
    StartWithWait(0ms);
    EXPECT_THROW(
        TheHost().WithInstanceProvider(target, Info(), [](auto&, const auto&) { throw 5; }),
        OpenWBEM::CIMException);
    EXPECT_THAT(Noted(), ElementsAre("in: GetInstance of HT_Slow", "out"));
}

TEST_F(Watched, ACallThatWaitsIsNotInside) {
    StartWithWait(20ms);
    Inside first(TheHost());
    EXPECT_THROW(TheHost().WithInstanceProvider(target, Info(), [](auto&, const auto&) {}),
                 OpenWBEM::CIMException);
    first.Leave();
    EXPECT_THAT(Noted(), IsEmpty());
}

} // namespace
} // namespace hosttest
