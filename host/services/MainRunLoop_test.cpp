#include "host/services/MainRunLoop.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(MainRunLoop, ServesOneTaskAndReturnsEarly) {
    Mailbox mailbox;
    MainRunLoop loop(mailbox, systemNow);
    int ran = 0;
    mailbox.dispatchAsync([&] { ++ran; });
    mailbox.dispatchAsync([&] { ++ran; });
    loop.runUntil(systemNow().plus(10));
    EXPECT_EQ(ran, 1);
}

TEST(MainRunLoop, WaitsUntilTheDateWhenNothingArrives) {
    Mailbox mailbox;
    MainRunLoop loop(mailbox, systemNow);
    const auto begin = Clock::now();
    loop.runUntil(systemNow().plus(0.03));
    EXPECT_GE(Clock::now() - begin, 25ms);
}

TEST(MainRunLoop, ADateThatIsPastOrNoneDoesNotWait) {
    Mailbox mailbox;
    MainRunLoop loop(mailbox, systemNow);
    loop.runUntil(Date::distantPast());
    loop.runUntil(Date(std::numeric_limits<double>::quiet_NaN()));
    const auto past = deadlineFor(Date(0), Date(5));
    const auto none = deadlineFor(Date(std::numeric_limits<double>::quiet_NaN()), Date(5));
    EXPECT_LE(past, Clock::now());
    EXPECT_LE(none, Clock::now());
}

TEST(MainRunLoop, ADateWithoutEndIsADayAway) {
    const auto begin = Clock::now();
    const auto deadline = deadlineFor(Date(std::numeric_limits<double>::infinity()), Date(0));
    EXPECT_GE(deadline, begin + 24h);
    EXPECT_LE(deadline, Clock::now() + 24h);
}

TEST(SleepingRunLoop, WaitsUntilTheDate) {
    SleepingRunLoop loop(systemNow);
    const auto begin = Clock::now();
    loop.runUntil(systemNow().plus(0.03));
    EXPECT_GE(Clock::now() - begin, 25ms);
}

}  // namespace
}  // namespace vigil
