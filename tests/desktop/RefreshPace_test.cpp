#include "host/desktop/RefreshPace.hpp"

#include <thread>

#include <gtest/gtest.h>

#include "tests/desktop/Stage.hpp"

namespace vigil::test {
namespace {

TEST(RefreshPace, AnyNumberOfRingsAreAtMostTenCallsASecondAndTheLastIsHeard) {
    int calls = 0;
    RefreshPace pace([&] { ++calls; });
    std::atomic<int> rung{0};
    std::thread bell([&] {
        for (int i = 0; i < 500; ++i) {
            pace.ring();
            ++rung;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    ASSERT_TRUE(waitUntil([&] { return rung == 500; }));
    bell.join();
    const int during = calls;
    turn(300);
    EXPECT_GT(during, 3);
    EXPECT_LE(during, 25) << "about two seconds on a busy machine";
    EXPECT_GE(calls, during);
    const int before = calls;
    pace.ring();
    EXPECT_TRUE(waitUntil([&] { return calls > before; }, 1000));
}

}  // namespace
}  // namespace vigil::test
