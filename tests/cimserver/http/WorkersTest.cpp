#include "cimserver/http/Workers.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <iterator>
#include <latch>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

using cimserver::http::Workers;
using namespace std::chrono_literals;

Workers::Clock::time_point Soon() {
    return Workers::Clock::now() + 20s;
}

std::size_t Threads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(tasks, std::filesystem::directory_iterator()));
}

/// The thread of one task, which has ended.
std::thread::id ThreadOfATask(Workers& workers) {
    std::promise<std::thread::id> id;
    workers.Run([&id] { id.set_value(std::this_thread::get_id()); });
    auto found = id.get_future().get();
    EXPECT_TRUE(workers.WaitUntilIdle(Soon()));
    return found;
}

TEST(Workers, AnIdleThreadIsUsedAgain) {
    Workers workers(60s);
    const auto first = ThreadOfATask(workers);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(ThreadOfATask(workers), first);
    }
}

TEST(Workers, WhoeverIsToldOfTheEndIsServedByTheSameThread) {
    Workers workers(60s);
    std::set<std::thread::id> ids;
    for (int i = 0; i < 2000; ++i) {
        const auto end = std::make_shared<std::promise<void>>();
        workers.Run([&ids] { ids.insert(std::this_thread::get_id()); },
                    [end] { end->set_value(); });
        end->get_future().wait();
    }
    EXPECT_EQ(ids.size(), 1U);
}

TEST(Workers, NoTaskWaitsForAnother) {
    Workers workers(60s);
    constexpr int count = 40;
    for (int round = 0; round < 2; ++round) {
        std::latch all(count + 1);
        for (int i = 0; i < count; ++i) {
            workers.Run([&all] { all.arrive_and_wait(); });
        }
        all.arrive_and_wait();
        EXPECT_TRUE(workers.WaitUntilIdle(Soon()));
    }
    EXPECT_LE(Threads(), count + 2U);
}

// Were the threads used in turn, all would stay.
TEST(Workers, ThreadsThatAreNotNeededEndAlsoWhileTasksCome) {
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    const std::size_t before = Threads();
    Workers workers(100ms);
    std::latch all(6);
    for (int i = 0; i < 5; ++i) {
        workers.Run([&all] { all.arrive_and_wait(); });
    }
    all.arrive_and_wait();
    EXPECT_TRUE(workers.WaitUntilIdle(Soon()));
    const auto limit = Soon();
    while (Threads() > before + 1 && Workers::Clock::now() < limit) {
        ThreadOfATask(workers);
    }
    EXPECT_EQ(Threads(), before + 1);
}

TEST(Workers, IdleThreadsEnd) {
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    const std::size_t before = Threads();
    Workers workers(1ms);
    std::latch all(11);
    for (int i = 0; i < 10; ++i) {
        workers.Run([&all] { all.arrive_and_wait(); });
    }
    all.arrive_and_wait();
    const auto limit = Soon();
    while (Threads() > before && Workers::Clock::now() < limit) {
        std::this_thread::yield();
    }
    EXPECT_EQ(Threads(), before);
    ThreadOfATask(workers);
}

TEST(Workers, RunsEveryTaskOnceWhileThreadsComeAndGo) {
    std::atomic<int> done = 0;
    {
        Workers workers(0ms);
        std::vector<std::thread> callers;
        for (int i = 0; i < 4; ++i) {
            callers.emplace_back([&] {
                for (int task = 0; task < 500; ++task) {
                    workers.Run([&done] { ++done; });
                }
            });
        }
        for (auto& caller : callers) {
            caller.join();
        }
    }
    EXPECT_EQ(done, 2000);
}

TEST(Workers, TheDestructorWaitsForTheTasks) {
    std::promise<void> mayEnd;
    std::atomic<bool> hasEnded = false;
    auto workers = std::make_unique<Workers>();
    workers->Run([&] {
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    auto gone = std::async(std::launch::async, [&] {
        workers.reset();
        return hasEnded.load();
    });
    EXPECT_EQ(gone.wait_for(50ms), std::future_status::timeout);
    mayEnd.set_value();
    EXPECT_TRUE(gone.get());
}

TEST(Workers, WaitingForThemHasAnEnd) {
    std::promise<void> mayEnd;
    Workers workers;
    workers.Run([&] { mayEnd.get_future().wait(); });
    EXPECT_FALSE(workers.WaitUntilIdle(Workers::Clock::now() + 20ms));
    mayEnd.set_value();
    EXPECT_TRUE(workers.WaitUntilIdle(Soon()));
}

TEST(Workers, BlockNoSignalWhoeverStartsThem) {
    Workers workers;
    std::promise<bool> isAnyBlocked;
    std::thread([&] {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, nullptr);
        workers.Run([&] {
            sigset_t blocked;
            pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
            isAnyBlocked.set_value(sigisemptyset(&blocked) == 0);
        });
    }).join();
    EXPECT_FALSE(isAnyBlocked.get_future().get());
}

} // namespace
