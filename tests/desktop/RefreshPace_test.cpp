#include "host/desktop/RefreshPace.hpp"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <thread>

#include <gtest/gtest.h>

#include "tests/desktop/Stage.hpp"

namespace vigil::test {
namespace {

TEST(RefreshPace, AnyNumberOfRingsAreAtMostTenCallsASecondAndTheLastIsHeard) {
    int calls = 0;
    RefreshPace pace([&] { ++calls; });
    std::atomic<int> rung{0};
    QElapsedTimer since;
    since.start();
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
    const auto tenths = since.elapsed() / 100;
    turn(300);
    EXPECT_GT(during, 3);
    EXPECT_LE(during, tenths + 2);
    EXPECT_GE(calls, during);
    const int before = calls;
    pace.ring();
    EXPECT_TRUE(waitUntil([&] { return calls > before; }, 1000));
}

TEST(RefreshPace, WhatCannotWaitIsHeardBeforeItsTurn) {
    int calls = 0;
    RefreshPace pace([&] { ++calls; });
    pace.ring();
    ASSERT_TRUE(waitUntil([&] { return calls == 1; }));
    pace.ring();
    QCoreApplication::processEvents();  // it waits for its turn now
    pace.ringAtOnce();
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
    EXPECT_EQ(calls, 2);
    turn(300);
    EXPECT_EQ(calls, 2) << "both rings were heard by the one call";
}

}  // namespace
}  // namespace vigil::test
