#include "provider/ProviderTest.hpp"

#include "provider/common/SharedList.hpp"

using OpenWBEM::Array;
using OpenWBEM::CIMException;
using test_support::CimErrorOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<int> Numbers(const Array<int>& list) {
    return {list.begin(), list.end()};
}

} // namespace

TEST(SharedList, AChangeIsSeenByLaterSnapshotsOnly) {
    Array<int> shared(3, 7);
    const Array<int> before = ListSnapshot(shared);
    ChangeList(shared, [](Array<int>& list) { list[1] = 8; });
    EXPECT_THAT(Numbers(before), ElementsAre(7, 7, 7));
    EXPECT_THAT(Numbers(ListSnapshot(shared)), ElementsAre(7, 8, 7));
}

TEST(SharedList, WhatAChangeThrowsPassesAndTheLockIsFreeAgain) {
    Array<int> shared;
    const auto refuse = [](Array<int>&) { OW_THROWCIM(CIMException::NOT_FOUND); };
    EXPECT_EQ(CimErrorOf([&] { ChangeList(shared, refuse); }), test_support::NotFound());
    EXPECT_TRUE(gSharedListLock.try_lock());
    gSharedListLock.unlock();
}

TEST(SharedList, AChangeIsMadeUnderTheLock) {
    Array<int> shared;
    bool free = true;
    ChangeList(shared, [&](Array<int>&) {
        std::thread([&] {
            free = gSharedListLock.try_lock();
            if (free) {
                gSharedListLock.unlock();
            }
        }).join();
    });
    EXPECT_FALSE(free);
}

TEST(SharedList, SideBySideChangesAreAllKept) {
    Array<int> shared(4, 0);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < 4; ++i) {
        threads.emplace_back([&shared, i] {
            for (int n = 0; n < 1000; ++n) {
                ChangeList(shared, [i](Array<int>& list) { ++list[i]; });
                const Array<int> list = ListSnapshot(shared);
                ASSERT_EQ(list.size(), 4U);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(Numbers(shared), ElementsAre(1000, 1000, 1000, 1000));
}

TEST(SharedList, ARefreshPublishesWhatItHasGatheredWhenItLeavesItsScope) {
    Array<int> shared(1, 7);
    {
        ListRefresh<int> refresh(shared);
        refresh.Records().push_back(1);
        EXPECT_THAT(Numbers(ListSnapshot(shared)), ElementsAre(7));
    }
    EXPECT_THAT(Numbers(ListSnapshot(shared)), ElementsAre(1));
    { const ListRefresh<int> failed(shared); }
    EXPECT_THAT(Numbers(ListSnapshot(shared)), IsEmpty());
}
