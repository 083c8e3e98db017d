#include <atomic>
#include <future>

#include <gtest/gtest.h>

#include "host/services/Mailbox.hpp"

namespace vigil {
namespace {

using namespace std::chrono_literals;

const Mailbox::Deadline kNow{};

/// A hand-over of a thread of its own that says how it ended.
std::future<std::string> handOver(Mailbox& mailbox, std::atomic<int>& ran) {
    return std::async(std::launch::async, [&]() -> std::string {
        try {
            mailbox.dispatchSync([&] { ++ran; });
        } catch (const std::runtime_error& refused) {
            return refused.what();
        }
        return "ran";
    });
}

const char* const kRefusal = "the main queue is closing; the task was not begun";

TEST(MailboxClose, CallersThatWaitAreRefusedByThrowingAndTheirTasksNeverRun) {
    Mailbox mailbox;
    std::atomic<int> ran{0};
    std::vector<std::future<std::string>> callers;
    for (int i = 0; i < 3; ++i)
        callers.push_back(handOver(mailbox, ran));
    while (mailbox.waiting() < 3)
        std::this_thread::yield();
    mailbox.close();
    for (auto& caller : callers)
        EXPECT_EQ(caller.get(), kRefusal);
    EXPECT_FALSE(mailbox.serveOne(kNow));
    EXPECT_EQ(ran, 0);
}

TEST(MailboxClose, ACallerThatComesAfterTheCloseIsRefusedAtOnce) {
    Mailbox mailbox;
    mailbox.close();
    std::atomic<int> ran{0};
    EXPECT_EQ(handOver(mailbox, ran).get(), kRefusal);
    EXPECT_FALSE(mailbox.dispatchAsync([] {}));
    EXPECT_FALSE(mailbox.dispatchAtRest([] {}));
    int onMain = 0;
    mailbox.dispatchSync([&] { ++onMain; });  // the main thread hands nothing over
    EXPECT_EQ(onMain, 1);
}

TEST(MailboxClose, AHandOverThatHasBegunEndsAsUsual) {
    Mailbox mailbox;
    auto caller = std::async(std::launch::async, [&] {
        mailbox.dispatchSync([&] { mailbox.close(); });
        return true;
    });
    EXPECT_TRUE(mailbox.serveOne(std::chrono::steady_clock::now() + 10s));
    EXPECT_TRUE(caller.get());
}

TEST(MailboxClose, RefusingHandOversStillDeliversReportsUntilTheClose) {
    Mailbox mailbox;
    mailbox.refuseHandOvers();
    std::atomic<int> ran{0};
    EXPECT_EQ(handOver(mailbox, ran).get(), kRefusal);
    int reports = 0;
    EXPECT_TRUE(mailbox.dispatchAsync([&] { ++reports; }));
    mailbox.close();
    EXPECT_TRUE(mailbox.serveOne(kNow));
    EXPECT_EQ(reports, 1);
}

TEST(MailboxClose, TasksThatNeverRanEndWithTheMailbox) {
    auto held = std::make_shared<int>(1);
    {
        Mailbox mailbox;
        mailbox.dispatchAsync([held] {});
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace vigil
