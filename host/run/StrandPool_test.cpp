#include "host/run/StrandPool.hpp"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace vigil {
namespace {

using namespace std::chrono_literals;

/// Counts its steps and notices two at a time.
class Counted : public Strand {
  public:
    using Step = Strand::Step;
    explicit Counted(std::function<Step(int)> body) : m_body(std::move(body)) {}

    std::atomic<int> steps = 0;
    std::atomic<bool> overlapped = false;

  protected:
    Step step() override {
        if (m_inside.exchange(true)) overlapped = true;
        const Step next = m_body(++steps);
        m_inside = false;
        return next;
    }

  private:
    const std::function<Step(int)> m_body;
    std::atomic<bool> m_inside = false;
};

void waitFor(const std::function<bool()>& what) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (!what()) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited ten seconds";
        std::this_thread::sleep_for(1ms);
    }
}

TEST(StrandPool, AStrandThatIsWokenFromManyThreadsTakesAllItsWorkOneStepAtATime) {
    StrandPool pool(4);
    std::atomic<int> left = 0;
    const auto strand = std::make_shared<Counted>(
        [&](int) { return --left > 0 ? Counted::Step::More : Counted::Step::Idle; });
    std::vector<std::thread> wakers;
    for (int i = 0; i < 4; ++i)
        wakers.emplace_back([&] {
            for (int n = 0; n < 500; ++n) {
                ++left;
                pool.wake(strand);
            }
        });
    for (std::thread& waker : wakers)
        waker.join();
    waitFor([&] { return left <= 0; });
    EXPECT_FALSE(strand->overlapped);
}

TEST(StrandPool, OneThatWaitsIsNotWokenButResumed) {
    StrandPool pool(1);
    const auto strand = std::make_shared<Counted>(
        [](int step) { return step == 1 ? Counted::Step::Wait : Counted::Step::Idle; });
    pool.wake(strand);
    waitFor([&] { return strand->steps == 1; });
    pool.wake(strand);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(strand->steps, 1);
    pool.resume(strand);
    waitFor([&] { return strand->steps == 2; });
}

TEST(StrandPool, OneThatIsResumedBeforeItsStepHasEndedDoesNotWait) {
    StrandPool pool(1);
    std::shared_ptr<Counted> strand;
    strand = std::make_shared<Counted>([&](int step) {
        if (step > 1) return Counted::Step::Idle;
        pool.resume(strand);
        return Counted::Step::Wait;
    });
    pool.wake(strand);
    waitFor([&] { return strand->steps == 2; });
    pool.stop();
    strand.reset();
}

TEST(StrandPool, OneThatIsWokenDuringItsLastStepStepsOnceMore) {
    StrandPool pool(1);
    std::shared_ptr<Counted> strand;
    strand = std::make_shared<Counted>([&](int step) {
        if (step == 1) pool.wake(strand);
        return Counted::Step::Idle;
    });
    pool.wake(strand);
    waitFor([&] { return strand->steps == 2; });
    pool.stop();
    strand.reset();
}

TEST(StrandPool, AThreadThatIsAwayLeavesItsPlaceToAnother) {
    StrandPool pool(1);
    std::promise<void> over;
    auto waiting = over.get_future().share();
    const auto slow = std::make_shared<Counted>([&](int) {
        const StrandPool::Away away;
        waiting.wait();
        return Counted::Step::Idle;
    });
    const auto quick = std::make_shared<Counted>([](int) { return Counted::Step::Idle; });
    pool.wake(slow);
    waitFor([&] { return slow->steps == 1; });
    pool.wake(quick);
    waitFor([&] { return quick->steps == 1; });
    EXPECT_EQ(pool.counts().away, 1u);
    over.set_value();
    waitFor([&] { return pool.counts().away == 0; });
    // The one too many goes when there is nothing to do, and the pool works on.
    waitFor([&] { return pool.counts().threads == 1; });
    pool.wake(quick);
    waitFor([&] { return quick->steps == 2; });
}

TEST(StrandPool, ItsEndWaitsForStepsUnderWayAndBeginsNone) {
    std::atomic<bool> ended = false;
    const auto strand = std::make_shared<Counted>([&](int) {
        std::this_thread::sleep_for(30ms);
        ended = true;
        return Counted::Step::More;
    });
    StrandPool pool(2);
    pool.wake(strand);
    waitFor([&] { return strand->steps == 1; });
    pool.stop();
    EXPECT_TRUE(ended);
    const int steps = strand->steps;
    pool.wake(strand);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(strand->steps, steps);
}

TEST(StrandPool, WhereNothingIsToBeDoneThereAreNoThreads) {
    const StrandPool pool(4);
    EXPECT_EQ(pool.counts().threads, 0u);
}

}  // namespace
}  // namespace vigil
