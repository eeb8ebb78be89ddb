#include "cimserver/host/HostTest.hpp"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

using namespace std::chrono_literals;

namespace hosttest {
namespace {

// Counts who is inside at the same time.
class Room {
public:
    /// Enters, and waits for that many to be inside together, at most so long.
    bool EnterAndMeet(int others, std::chrono::milliseconds longest) {
        std::unique_lock lock(mutex_);
        ++inside_;
        most_ = std::max(most_, inside_);
        changed_.notify_all();
        return changed_.wait_for(lock, longest, [&] { return most_ >= others; });
    }
    void Leave() {
        const std::lock_guard lock(mutex_);
        --inside_;
    }
    int Most() const { return most_; }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int inside_ = 0;
    int most_ = 0;
};

class Overlap : public HostTest {
protected:
    void CallInto(const std::string& id, Room& room, std::chrono::milliseconds longest) {
        TheHost().WithInstanceProvider({"root/cimv2", "HT_Class", ("c++::" + id).c_str()}, {"", ""},
                                       [&](auto&, const auto&) {
                                           room.EnterAndMeet(2, longest);
                                           room.Leave();
                                       });
    }
    int MostInside(const std::string& one, const std::string& two,
                   std::chrono::milliseconds longest) {
        Room room;
        std::thread first([&] { CallInto(one, room, longest); });
        std::thread second([&] { CallInto(two, room, longest); });
        first.join();
        second.join();
        return room.Most();
    }
};

TEST_F(Overlap, OneCallAtATimeEntersALibrary) {
    Install("Good");
    Start();
    EXPECT_EQ(MostInside("Good", "Good", 300ms), 1);
}

TEST_F(Overlap, ProvidersOfOneLibraryShareItsGate) {
    Install("Good");
    Install("Good", "Twin");
    Start();
    EXPECT_EQ(MostInside("Good", "Twin", 300ms), 1);
}

TEST_F(Overlap, AllInterfacesOfALibraryShareItsGate) {
    Install("Serving");
    Start();
    Room room;
    const auto visit = [&room](auto&, const auto&) {
        room.EnterAndMeet(2, 200ms);
        room.Leave();
    };
    const cimserver::host::Target target{"root/cimv2", "HT_Class", "c++::Serving"};
    std::vector<std::thread> threads;
    threads.emplace_back([&] { TheHost().WithInstanceProvider(target, {"", ""}, visit); });
    threads.emplace_back([&] { TheHost().WithAssociatorProvider(target, {"", ""}, visit); });
    threads.emplace_back([&] { TheHost().WithMethodProvider(target, "M", {"", ""}, visit); });
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(room.Most(), 1);
}

TEST_F(Overlap, DifferentLibrariesRunSideBySide) {
    Install("Good");
    Install("Other");
    Start();
    EXPECT_EQ(MostInside("Good", "Other", 20000ms), 2);
}

TEST_F(Overlap, ManyRequestsLoadAndInitializeOnce) {
    Install("Good");
    Start();
    TakeLines();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] { Enumerate("c++::Good"); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const auto lines = TakeLines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Good: initialize for "), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Good: enumInstanceNames HT_Class"), 8);
}

TEST_F(Overlap, RequestsAndUnloadingDoNotMeet) {
    Install("Good");
    Install("Other");
    auto settings = Settings();
    settings.idleTime = 0ms;
    settings.housekeepingInterval = 1ms;
    Start(settings);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            for (int call = 0; call < 200; ++call) {
                EXPECT_TRUE(Enumerate((i + call) % 2 == 0 ? "c++::Good" : "c++::Other"));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(LogTaken(), testing::IsEmpty());
}

} // namespace
} // namespace hosttest
