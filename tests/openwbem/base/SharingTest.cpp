#include "OW_Array.hpp"
#include "OW_CIMException.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_MutexLock.hpp"
#include "OW_String.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace OpenWBEM {
namespace {

constexpr int THREADS = 4;
constexpr int ROUNDS = 2000;

// Runs `work` in several threads that start together.
template <class F>
void inThreads(F work) {
    std::atomic<int> waiting{THREADS};
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&waiting, &work, i] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            work(i);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Sharing, CopiesOfOneStringAreChangedInSeveralThreads) {
    const String shared("shared text");
    std::atomic<int> wrong{0};
    inThreads([&](int number) {
        for (int i = 0; i < ROUNDS; ++i) {
            String copy(shared);
            copy[0] = static_cast<char>('A' + number);
            copy += "!";
            const std::string expected =
                std::string(1, static_cast<char>('A' + number)) + "hared text!";
            wrong += copy != expected.c_str() || shared != "shared text";
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(shared, "shared text");
}

TEST(Sharing, LastHolderOfAStringMayBeAnyThread) {
    std::atomic<int> wrong{0};
    for (int round = 0; round < 200; ++round) {
        std::vector<String> handles(THREADS, String("text"));
        inThreads([&](int number) {
            String mine;
            mine.swap(handles[static_cast<size_t>(number)]);
            mine += 'x';
            wrong += mine != "textx";
        });
    }
    EXPECT_EQ(wrong, 0);
}

TEST(Sharing, CopiesOfOneArrayAreChangedInSeveralThreads) {
    const StringArray shared = String("a b c").tokenize();
    std::atomic<int> wrong{0};
    inThreads([&](int number) {
        for (int i = 0; i < ROUNDS; ++i) {
            StringArray copy(shared);
            copy[1] = String(number);
            copy.append(shared[2]);
            wrong += copy.size() != 4 || copy[1] != String(number) || shared[1] != "b";
        }
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(shared.size(), 3U);
}

struct Counted : IntrusiveCountableBase {
    explicit Counted(std::atomic<int>& deletedCounter) : deleted(deletedCounter) {}
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() override { ++deleted; }
    std::atomic<int>& deleted;
};

TEST(Sharing, HandlesOfOneObjectAreCopiedInSeveralThreads) {
    std::atomic<int> deleted{0};
    {
        const IntrusiveReference<Counted> shared(new Counted(deleted));
        inThreads([&](int) {
            for (int i = 0; i < ROUNDS; ++i) {
                const IntrusiveReference<Counted> copy(shared);
                const IntrusiveReference<Counted> again(copy);
            }
        });
        EXPECT_EQ(deleted, 0);
    }
    EXPECT_EQ(deleted, 1);
}

TEST(Sharing, TextOfOneExceptionIsSettledOnce) {
    const CIMException shared("f", 1, CIMException::FAILED, "text");
    std::vector<const char*> texts(THREADS);
    inThreads([&](int number) { texts[static_cast<size_t>(number)] = shared.getMessage(); });
    for (const char* const text : texts) {
        EXPECT_EQ(text, texts[0]);
    }
    EXPECT_STREQ(texts[0], "general error (text)");
}

TEST(Mutex, IsRecursiveAndExcludesOthers) {
    Mutex mutex;
    int counter = 0;
    inThreads([&](int) {
        for (int i = 0; i < ROUNDS; ++i) {
            const MutexLock outer(mutex);
            const MutexLock inner(mutex);
            ++counter;
        }
    });
    EXPECT_EQ(counter, THREADS * ROUNDS);
}

TEST(Mutex, LockCanBeReleasedEarlyAndTakenAgain) {
    Mutex mutex;
    int counter = 0;
    MutexLock lock(mutex);
    lock.release();
    lock.release();
    std::thread([&] {
        const MutexLock other(mutex);
        counter = 1;
    }).join();
    lock.lock();
    lock.lock();
    EXPECT_EQ(counter, 1);
    lock.release();
    std::thread([&] {
        mutex.acquire();
        counter = 2;
        mutex.release();
    }).join();
    EXPECT_EQ(counter, 2);
}

} // namespace
} // namespace OpenWBEM
