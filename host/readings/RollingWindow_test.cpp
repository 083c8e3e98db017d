#include "host/readings/RollingWindow.hpp"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

/// All samples ever, looked through anew each time: what the window must answer, however it does it.
class NaiveWindow {
  public:
    explicit NaiveWindow(double minutes)
        : m_slotSeconds(minutes * 60 / static_cast<double>(RollingWindow::kSlots)) {}

    void add(double time, double value) {
        m_samples.push_back({time, value});
        const double newest = slot(newestTime());  // what it has pushed out stays out
        std::erase_if(m_samples, [&](const Sample& sample) { return slot(sample.time) <= newest - kSpan; });
    }
    void forgetAfter(double time) {
        std::erase_if(m_samples, [&](const Sample& sample) { return slot(sample.time) > slot(time); });
    }
    std::vector<double> within(double now) const {
        std::vector<double> values;
        for (const Sample& sample : m_samples) {
            const bool inside = slot(sample.time) <= slot(now) && slot(sample.time) > slot(now) - kSpan;
            if (inside) values.push_back(sample.value);
        }
        return values;
    }

  private:
    struct Sample {
        double time;
        double value;
    };
    static constexpr double kSpan = static_cast<double>(RollingWindow::kSlots);
    double slot(double time) const { return std::floor(time / m_slotSeconds); }
    double newestTime() const {
        return std::max_element(m_samples.begin(), m_samples.end(),
                                [](const Sample& a, const Sample& b) { return a.time < b.time; })
            ->time;
    }

    double m_slotSeconds;
    std::vector<Sample> m_samples;
};

void expectSame(const RollingWindow& window, const NaiveWindow& naive, double now) {
    const auto values = naive.within(now);
    ASSERT_EQ(window.mean(Date(now)).has_value(), !values.empty());
    if (values.empty()) return;
    double sum = 0;
    for (const double value : values)
        sum += value;
    EXPECT_NEAR(window.mean(Date(now))->value, sum / static_cast<double>(values.size()), 1e-9);
    EXPECT_NEAR(window.mean(Date(now))->unitValue, 2 * sum / static_cast<double>(values.size()), 1e-9);
    EXPECT_EQ(window.min(Date(now))->value, *std::min_element(values.begin(), values.end()));
    EXPECT_EQ(window.max(Date(now))->unitValue, 2 * *std::max_element(values.begin(), values.end()));
}

TEST(RollingWindow, saysWhatLookingThroughAllSamplesSays) {
    std::mt19937 random(20261121);
    std::uniform_real_distribution<double> value(-50, 50);
    for (const int minutes : {1, 10, 1440}) {
        RollingWindow window(minutes);
        NaiveWindow naive(minutes);
        std::exponential_distribution<double> step(30.0 / (minutes * 60));
        double time = 7.5e8;
        for (int i = 0; i < 1500; ++i) {
            time += step(random) * (i % 400 == 399 ? 100 : 1);  // now and then a long silence
            if (i % 500 == 250) {                               // a clock is set back
                time -= minutes * 25;
                window.forgetAfter(Date(time));
                naive.forgetAfter(time);
            }
            const double late = i % 7 == 0 ? minutes * 70 * std::abs(value(random)) / 50 : 0;
            const double sample = value(random);
            window.add(Date(time - late), {sample, 2 * sample});
            naive.add(time - late, sample);
            expectSame(window, naive, time);
            expectSame(window, naive, time + minutes * 20);
            ASSERT_FALSE(::testing::Test::HasFailure()) << minutes << " min, sample " << i;
        }
    }
}

TEST(RollingWindow, keepsNoMoreThanItsSlotsHoweverOftenItIsFed) {
    RollingWindow window(1);
    for (int i = 0; i < 100000; ++i)
        window.add(Date(7e8 + i * 0.01), {1, 1});
    EXPECT_LE(window.slotsInUse(), RollingWindow::kSlots);
    EXPECT_GE(window.slotsInUse(), RollingWindow::kSlots - 1);
    EXPECT_EQ(window.mean(Date(7e8 + 1000))->value, 1);
}

TEST(RollingWindow, isEmptyWhenItsMinutesHavePassed) {
    RollingWindow window(10);
    EXPECT_FALSE(window.mean(Date(0)));
    window.add(Date(0), {5, 5});
    EXPECT_TRUE(window.min(Date(598)));
    EXPECT_FALSE(window.min(Date(600)));
    EXPECT_FALSE(window.max(Date(-1)));
    EXPECT_FALSE(window.meanDirection(Date(600)));
}

TEST(RollingWindow, theMeanOfDirectionsGoesRoundTheCircle) {
    RollingWindow window(10);
    window.add(Date(0), {350, 350});
    window.add(Date(10), {20, 20});
    EXPECT_NEAR(window.meanDirection(Date(10))->value, 5, 1e-9);
    window.add(Date(20), {350, 350});
    window.add(Date(30), {340, 340});
    EXPECT_NEAR(window.meanDirection(Date(30))->value, 355, 0.2);

    RollingWindow opposite(10);
    opposite.add(Date(0), {0, 0});
    opposite.add(Date(10), {180, 180});
    EXPECT_FALSE(opposite.meanDirection(Date(10)));
}

TEST(RollingRun, countsFromTheFirstSampleThatHolds) {
    RollingRun run;
    EXPECT_EQ(run.minutes(), 0);
    run.add(Date(0), true);
    EXPECT_EQ(run.minutes(), 0);
    run.add(Date(300), true);
    EXPECT_EQ(run.minutes(), 5);
    run.add(Date(240), false);  // older than the last one
    EXPECT_EQ(run.minutes(), 5);
    run.add(Date(360), false);
    EXPECT_EQ(run.minutes(), 0);
    run.add(Date(420), true);
    run.add(Date(480), true);
    EXPECT_EQ(run.minutes(), 1);
}

TEST(RollingRun, beginsAnewWhereNobodyKnowsWhatWasMeanwhile) {
    RollingRun run;
    run.add(Date(0), true);
    run.add(Date(RollingRun::kLongestGap), true);
    EXPECT_EQ(run.minutes(), 120);
    run.add(Date(2 * RollingRun::kLongestGap + 1), true);
    EXPECT_EQ(run.minutes(), 0);
    run.add(Date(2 * RollingRun::kLongestGap + 61), true);
    EXPECT_EQ(run.minutes(), 1);
    run.forget();
    EXPECT_EQ(run.minutes(), 0);
    run.add(Date(0), true);
    run.add(Date(60), true);
    EXPECT_EQ(run.minutes(), 1);
}

}  // namespace
}  // namespace vigil
