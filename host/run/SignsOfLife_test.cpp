#include "host/run/SignsOfLife.hpp"

#include <memory>

#include <gtest/gtest.h>

namespace vigil {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(SignsOfLife, ComeAlsoWhileAnActionWaitsInANestedLoop) {
    Mailbox mailbox;
    int said = 0;
    const SignsOfLife signs(mailbox, milliseconds(10), [&] { ++said; });
    int saidInside = 0;
    mailbox.dispatchAsync([&] {
        const int before = said;
        const auto until = Clock::now() + std::chrono::seconds(20);
        while (said < before + 3 && Clock::now() < until)
            mailbox.serveOneNested(Clock::now() + milliseconds(250));
        saidInside = said - before;
    });
    mailbox.serveUntil(Clock::now() + milliseconds(100));
    EXPECT_GE(saidInside, 3);
}

TEST(SignsOfLife, AMainThreadThatHangsSaysNothing) {
    Mailbox mailbox;
    int said = 0;
    auto signs = std::make_unique<SignsOfLife>(mailbox, milliseconds(5), [&] { ++said; });
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(said, 0);
    signs.reset();
    mailbox.serveUntil(Clock::now());
    EXPECT_EQ(said, 0) << "nobody listens any more";
}

}  // namespace
}  // namespace vigil
