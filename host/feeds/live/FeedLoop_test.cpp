#include "host/feeds/live/FeedLoop.hpp"

#include <atomic>

#include <sys/epoll.h>

#include "host/feeds/live/testing/LiveBench.hpp"

namespace vigil {
namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct Counter final : FeedLoop::Member {
    std::function<FeedLoop::Time()> work = [] { return FeedLoop::kNever; };
    std::atomic<int> served{0};

  private:
    FeedLoop::Time serve() override {
        ++served;
        return work();
    }
};

bool eventually(const std::function<bool()>& condition) {
    for (int i = 0; i < 5000 && !condition(); ++i)
        sleepFor(2);
    return condition();
}

struct FeedLoopTest : testing::Test {
    std::unique_ptr<FeedLoop> loop = std::move(FeedLoop::start("loop-test")).value();
};

TEST_F(FeedLoopTest, ServesAtOnceThenWhenItsTimeHasComeAndSleepsBetween) {
    Counter counter;
    const auto began = Steady::now();
    std::atomic<bool> early{false};
    counter.work = [&] {
        const auto now = Steady::now();
        if (counter.served > 1 && now - began < milliseconds(100) * (counter.served - 1)) early = true;
        return began + milliseconds(100) * counter.served.load();
    };
    loop->add(counter);
    EXPECT_TRUE(eventually([&] { return counter.served >= 4; }));
    loop->remove(counter);
    EXPECT_FALSE(early);
    EXPECT_EQ(counter.served, 4) << "nothing but its time has served it";
}

TEST_F(FeedLoopTest, AMemberThatIsWokenWhileItIsServedIsServedAgain) {
    Counter counter;
    counter.work = [&] {
        if (counter.served == 1) loop->wake(counter);
        return FeedLoop::kNever;
    };
    loop->add(counter);
    EXPECT_TRUE(eventually([&] { return counter.served == 2; }));
    loop->remove(counter);
}

TEST_F(FeedLoopTest, RemovingWaitsForTheCallUnderWayAndNoOtherFollows) {
    Counter counter;
    std::atomic<bool> inside{false}, left{false};
    counter.work = [&] {
        inside = true;
        sleepFor(100);
        left = true;
        return Steady::now();
    };
    loop->add(counter);
    ASSERT_TRUE(eventually([&] { return inside.load(); }));
    loop->remove(counter);
    EXPECT_TRUE(left);
    const int served = counter.served;
    sleepFor(50);
    EXPECT_EQ(counter.served, served);
}

TEST_F(FeedLoopTest, ServesWhenADescriptorHasSomethingUntilItIsUnwatched) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const UniqueFd from(ends[0]), to(ends[1]);
    Counter counter;
    bool watching = true;
    counter.work = [&] {
        if (counter.served == 1) watching = loop->watch(from.get(), EPOLLIN, counter);
        if (counter.served == 2) loop->unwatch(from.get());
        return FeedLoop::kNever;
    };
    loop->add(counter);
    ASSERT_TRUE(eventually([&] { return counter.served == 1; }));
    sleepFor(30);
    ASSERT_EQ(::write(to.get(), "x", 1), 1);
    EXPECT_TRUE(eventually([&] { return counter.served == 2; }));
    sleepFor(30);
    loop->remove(counter);
    EXPECT_TRUE(watching);
    EXPECT_EQ(counter.served, 2) << "what was written is still there, but nobody asks";
}

TEST_F(FeedLoopTest, AThousandMembersHaveTheirTimesSideBySide) {
    std::vector<std::unique_ptr<Counter>> all;
    for (int i = 0; i < 1000; ++i) {
        all.push_back(std::make_unique<Counter>());
        all.back()->work = [at = Steady::now() + milliseconds(i % 100)] {
            return Steady::now() < at ? at : FeedLoop::kNever;
        };
        loop->add(*all.back());
    }
    EXPECT_TRUE(eventually([&] {
        return std::all_of(all.begin(), all.end(), [](const auto& one) { return one->served >= 1; });
    }));
    sleepFor(150);
    const auto before = processorTime();
    sleepFor(200);
    EXPECT_LT(processorTime() - before, milliseconds(50)) << "nobody is due, so it sleeps";
    for (const auto& one : all)
        loop->remove(*one);
}

}  // namespace
}  // namespace vigil
