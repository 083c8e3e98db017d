#include "platform/SmallLock.hpp"

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(SmallLock, OneAtATimeIsInside) {
    constexpr int kThreads = 4, kRounds = 20000;
    SmallLock lock;
    long count = 0;  // plain, so that two inside at once lose some
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRounds; ++i) {
                const std::lock_guard inside(lock);
                ++count;
            }
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(count, long{kThreads} * kRounds);
}

TEST(SmallLock, WhoWaitsSleepsUntilItIsFreeAndEachGetsItsTurn) {
    SmallLock lock;
    std::atomic<int> entered{0};
    lock.lock();
    std::vector<std::thread> waiting;
    for (int t = 0; t < 3; ++t)
        waiting.emplace_back([&] {
            const std::lock_guard inside(lock);
            ++entered;
        });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(entered, 0);
    lock.unlock();
    for (auto& thread : waiting)
        thread.join();
    EXPECT_EQ(entered, 3);
}

TEST(SmallLock, TryingTakesOnlyAFreeOne) {
    SmallLock lock;
    ASSERT_TRUE(lock.try_lock());
    std::thread([&] { EXPECT_FALSE(lock.try_lock()); }).join();
    lock.unlock();
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

TEST(SmallLock, IsSmall) {
    EXPECT_EQ(sizeof(SmallLock), 4u);
}

}  // namespace
}  // namespace vigil
