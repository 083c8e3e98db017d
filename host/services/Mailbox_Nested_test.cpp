#include <atomic>
#include <future>

#include <gtest/gtest.h>

#include "host/services/Mailbox.hpp"
#include "platform/CallNote.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using namespace std::chrono_literals;

Mailbox::Deadline soon() {
    return std::chrono::steady_clock::now() + 10s;
}

const Mailbox::Deadline kNow{};

/// Waits until `count` of them wait in the mailbox.
void awaitWaiting(const Mailbox& mailbox, std::size_t count) {
    while (mailbox.waiting() < count)
        std::this_thread::yield();
}

TEST(MailboxNested, ALoopInsideATaskServesWhatArrivesMeanwhile) {
    Mailbox mailbox;
    std::vector<std::string> order;
    std::atomic<bool> begun{false};
    auto first = std::async(std::launch::async, [&] {
        mailbox.dispatchSync([&] {
            begun = true;
            order.push_back("outer begins");
            EXPECT_TRUE(mailbox.serveOneNested(soon()));
            order.push_back("outer ends");
        });
    });
    auto second = std::async(std::launch::async, [&] {
        while (!begun)
            std::this_thread::yield();
        mailbox.dispatchSync([&] { order.push_back("inner"); });
    });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    first.get();
    second.get();
    EXPECT_EQ(order, (std::vector<std::string>{"outer begins", "inner", "outer ends"}));
    EXPECT_EQ(mailbox.depth(), 0);
}

TEST(MailboxNested, HandOversStandAtMostEightDeepAndTheHostsOwnTasksAreServedThere) {
    Mailbox mailbox;
    constexpr int kWorkers = kHandOverDepth + 1;
    int deepest = 0;
    bool hostTaskRan = false;
    int ended = 0;
    const MainQueue::Task descend = [&] {
        deepest = std::max(deepest, mailbox.depth());
        if (mailbox.depth() < kHandOverDepth) {
            EXPECT_TRUE(mailbox.serveOneNested(soon()));
        } else {
            awaitWaiting(mailbox, 1);  // the ninth hand-over
            EXPECT_FALSE(mailbox.serveOneNested(std::chrono::steady_clock::now() + 20ms));
            EXPECT_TRUE(mailbox.dispatchAsync([&] { hostTaskRan = true; }));
            EXPECT_TRUE(mailbox.serveOneNested(soon()));
        }
        ++ended;
    };
    std::vector<std::thread> workers;
    for (int i = 0; i < kWorkers; ++i)
        workers.emplace_back([&] { mailbox.dispatchSync(descend); });
    awaitWaiting(mailbox, kWorkers);
    EXPECT_TRUE(mailbox.serveOne(soon()));
    EXPECT_EQ(deepest, kHandOverDepth);
    EXPECT_TRUE(hostTaskRan);
    EXPECT_EQ(ended, kHandOverDepth);
    // The ninth begins now that the others are out of its way; a second one lets it end.
    std::thread last([&] { mailbox.dispatchSync([&] { ++ended; }); });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    last.join();
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(ended, kWorkers + 1);
}

TEST(MailboxNested, NotesNestWithTheHandOversThatCarryThem) {
    FakeWorld world;
    const auto a = std::make_shared<FakeAgent>(world);
    const auto b = std::make_shared<FakeAgent>(world);
    Mailbox mailbox;
    std::vector<const Object*> notes;
    std::atomic<bool> begun{false};
    auto first = std::async(std::launch::async, [&] {
        const CallNote::Scope note(a);
        mailbox.dispatchSync([&] {
            begun = true;
            notes.push_back(CallNote::current().get());
            EXPECT_TRUE(mailbox.serveOneNested(soon()));
            notes.push_back(CallNote::current().get());
        });
    });
    auto second = std::async(std::launch::async, [&] {
        while (!begun)
            std::this_thread::yield();
        const CallNote::Scope note(b);
        mailbox.dispatchSync([&] { notes.push_back(CallNote::current().get()); });
    });
    EXPECT_TRUE(mailbox.serveOne(soon()));
    first.get();
    second.get();
    EXPECT_EQ(notes, (std::vector<const Object*>{a.get(), b.get(), a.get()}));
}

TEST(MailboxNested, ATaskThatWaitsForRestRunsOnlyInTheMainLoopAndKeepsNewHandOversOut) {
    Mailbox mailbox;
    std::vector<std::string> order;
    std::thread later;
    mailbox.dispatchAsync([&] {
        EXPECT_TRUE(mailbox.dispatchAtRest([&] {
            order.push_back("at rest");
            EXPECT_FALSE(mailbox.serveOneNested(kNow));  // not even from a loop of its own
        }));
        later = std::thread([&] { mailbox.dispatchSync([&] { order.push_back("hand-over"); }); });
        awaitWaiting(mailbox, 2);
        EXPECT_FALSE(mailbox.serveOneNested(std::chrono::steady_clock::now() + 20ms));
        EXPECT_FALSE(mailbox.serveOne(std::chrono::steady_clock::now() + 20ms));  // inside a task: nested
        order.push_back("task ends");
    });
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(mailbox.serveOne(soon()));
    later.join();
    EXPECT_EQ(order, (std::vector<std::string>{"task ends", "at rest", "hand-over"}));
}

TEST(MailboxNested, AHeldNoteKeepsItsHandOversWaitingAndNoOthers) {
    FakeWorld world;
    const auto tested = std::make_shared<FakeAgent>(world);
    Mailbox mailbox;
    std::vector<std::string> order;
    auto hold = std::make_unique<Mailbox::Hold>(mailbox, tested);
    std::thread held([&] {
        const CallNote::Scope note(tested);
        mailbox.dispatchSync([&] { order.push_back("held"); });
    });
    awaitWaiting(mailbox, 1);
    std::thread free([&] { mailbox.dispatchSync([&] { order.push_back("free"); }); });
    awaitWaiting(mailbox, 2);
    EXPECT_TRUE(mailbox.serveOne(soon()));
    EXPECT_FALSE(mailbox.serveOne(std::chrono::steady_clock::now() + 20ms));
    hold.reset();
    EXPECT_TRUE(mailbox.serveOne(soon()));
    held.join();
    free.join();
    EXPECT_EQ(order, (std::vector<std::string>{"free", "held"}));
}

}  // namespace
}  // namespace vigil
