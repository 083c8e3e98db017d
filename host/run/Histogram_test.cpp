#include "host/run/Histogram.hpp"

#include <numeric>

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(Histogram, ATimeCountsWithTheFirstBoundThatItDoesNotPass) {
    Histogram histogram;
    for (const double seconds : {0.5e-6, 1e-6, 2e-6, 0.5, 10.0, 11.0})
        histogram.add(seconds);
    const auto counts = histogram.counts();
    EXPECT_EQ(counts.each[0], 2u) << "up to a microsecond, the bound included";
    EXPECT_EQ(counts.each[1], 1u);
    EXPECT_EQ(counts.each[12], 1u) << "above 0.316 s, up to 1 s";
    EXPECT_EQ(counts.each[14], 1u) << "ten seconds";
    EXPECT_EQ(counts.each[15], 1u) << "the rest";
    EXPECT_EQ(counts.all, 6u);
    EXPECT_NEAR(counts.sum, 21.5000035, 1e-8);
}

TEST(Histogram, ATimeThatRunsBackwardsCountsAsNone) {
    Histogram histogram;
    histogram.add(-1);
    EXPECT_EQ(histogram.counts().each[0], 1u);
    EXPECT_EQ(histogram.counts().sum, 0);
}

}  // namespace
}  // namespace vigil
