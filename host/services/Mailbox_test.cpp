#include "host/services/Mailbox.hpp"

#include <atomic>
#include <future>
#include <numeric>

#include <gtest/gtest.h>

#include "platform/CallNote.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using namespace std::chrono_literals;

Mailbox::Deadline soon() {
    return std::chrono::steady_clock::now() + 10s;  // reached only by a mailbox that lost something
}

const Mailbox::Deadline kNow{};

TEST(Mailbox, TheThreadThatMadeItIsTheMainThreadAndRunsItsOwnHandOversAtOnce) {
    Mailbox mailbox;
    EXPECT_TRUE(mailbox.isMainThread());
    bool ran = false;
    mailbox.dispatchSync([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_FALSE(std::async(std::launch::async, [&] { return mailbox.isMainThread(); }).get());
}

TEST(Mailbox, AHandOverFromAnotherThreadRunsOnTheMainThreadAndReturnsOnlyThen) {
    Mailbox mailbox;
    std::atomic<bool> ran{false};
    bool ranOnMain = false;
    std::thread worker([&] {
        mailbox.dispatchSync([&] {
            ranOnMain = mailbox.isMainThread();
            ran = true;
        });
        EXPECT_TRUE(ran);
        mailbox.wake();
    });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    worker.join();
    EXPECT_TRUE(ranOnMain);
}

TEST(Mailbox, WhatAHandOverThrowsIsThrownAgainOnThePostingThread) {
    Mailbox mailbox;
    auto heard = std::async(std::launch::async, [&]() -> std::string {
        try {
            mailbox.dispatchSync([] { throw std::out_of_range("row 7"); });
        } catch (const std::out_of_range& thrown) {
            return thrown.what();
        }
        return "nothing";
    });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    EXPECT_EQ(heard.get(), "row 7");
}

TEST(Mailbox, NoHandOverOfManyThreadsIsLost) {
    Mailbox mailbox;
    constexpr int kThreads = 4, kEach = 500;
    int served = 0;  // of the main thread alone, so a lost or doubled one is seen by the sum
    std::atomic<int> working{kThreads};
    std::vector<std::thread> workers;
    for (int t = 0; t < kThreads; ++t)
        workers.emplace_back([&] {
            for (int i = 0; i < kEach; ++i)
                mailbox.dispatchSync([&] { ++served; });
            --working;
            mailbox.wake();
        });
    while (working > 0)
        mailbox.serveUntil(soon());
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(served, kThreads * kEach);
}

TEST(Mailbox, TasksOfOneThreadRunInTheOrderInWhichTheyCame) {
    Mailbox mailbox;
    std::vector<int> order;
    auto worker = std::async(std::launch::async, [&] {
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(mailbox.dispatchAsync([&order, i] { order.push_back(i); }));
        mailbox.dispatchSync([&] { order.push_back(3); });
    });
    while (order.size() < 4 && mailbox.serveOne(soon())) {
    }
    worker.get();
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3}));
}

TEST(Mailbox, PostedTasksAreBoundedAndTheOneTooManyIsDroppedWithWhatItHolds) {
    Mailbox mailbox;
    for (std::size_t i = 0; i < kPostedTasks; ++i)
        ASSERT_TRUE(mailbox.dispatchAsync([] {}));
    auto held = std::make_shared<int>(1);
    EXPECT_FALSE(mailbox.dispatchAsync([held] {}));
    EXPECT_FALSE(mailbox.dispatchAtRest([held] {}));
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_TRUE(mailbox.serveOne(kNow));
    EXPECT_TRUE(mailbox.dispatchAsync([] {}));
}

TEST(Mailbox, WhatAPostedTaskThrowsIsHeardByTheHostAndStopsNothing) {
    std::vector<std::string> heard;
    Mailbox mailbox([&](const std::exception_ptr& what) {
        try {
            std::rethrow_exception(what);
        } catch (const std::exception& known) {
            heard.push_back(known.what());
        }
    });
    bool ran = false;
    mailbox.dispatchAsync([] { throw std::runtime_error("first"); });
    mailbox.dispatchAsync([&] { ran = true; });
    EXPECT_TRUE(mailbox.serveOne(kNow));
    EXPECT_TRUE(mailbox.serveOne(kNow));
    EXPECT_TRUE(ran);
    EXPECT_EQ(heard, std::vector<std::string>{"first"});
}

TEST(Mailbox, AHandOverCarriesNoteAndWorldAndAPostedTaskTheWorldAlone) {
    FakeWorld world;
    const auto observer = std::make_shared<FakeAgent>(world);
    Mailbox mailbox;
    std::shared_ptr<const Object> noteInSync, noteInAsync = observer;
    World *worldInSync = nullptr, *worldInAsync = nullptr;
    auto worker = std::async(std::launch::async, [&] {
        const World::Scope scope(world);
        const CallNote::Scope note(observer);
        mailbox.dispatchAsync([&] {
            noteInAsync = CallNote::current();
            worldInAsync = World::current();
        });
        mailbox.dispatchSync([&] {
            noteInSync = CallNote::current();
            worldInSync = World::current();
        });
    });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    EXPECT_TRUE(mailbox.serveOne(soon()));
    worker.get();
    EXPECT_EQ(noteInSync, observer);
    EXPECT_EQ(noteInAsync, nullptr);
    EXPECT_EQ(worldInSync, &world);
    EXPECT_EQ(worldInAsync, &world);
    EXPECT_EQ(CallNote::current(), nullptr);
    EXPECT_EQ(World::current(), nullptr);
}

TEST(Mailbox, ServingWithoutWorkReturnsAtTheDeadlineAndAtAWake) {
    Mailbox mailbox;
    EXPECT_FALSE(mailbox.serveOne(kNow));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(mailbox.serveOne(begin + 20ms));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 20ms);
    std::thread waking([&] { mailbox.wake(); });
    mailbox.serveUntil(Mailbox::Deadline::max());
    waking.join();
}

TEST(Mailbox, EveryArrivalCallsTheWaker) {
    Mailbox mailbox;
    std::atomic<int> calls{0};
    mailbox.setWaker([&] { ++calls; });
    mailbox.dispatchAsync([] {});
    EXPECT_EQ(calls, 1);
    auto worker = std::async(std::launch::async, [&] { mailbox.dispatchSync([] {}); });
    mailbox.serveOne(kNow);
    EXPECT_TRUE(mailbox.serveOne(soon()));
    worker.get();
    EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace vigil
