#include "host/site/HistoryLayout.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(HistoryLayout, StaysWhileTheSameLabelsComeInOtherObjects) {
    const auto batch = Readings::make({AgentProperty::number("a", 1, std::nullopt)});
    const auto again = Readings::make({AgentProperty::number("a", 2, std::nullopt)});
    auto layout = HistoryLayout().grown(*batch);
    EXPECT_TRUE(layout.fits(*again));
    EXPECT_FALSE(layout.fits(*Readings::make({AgentProperty::text("a", "x", std::nullopt)})));
    EXPECT_FALSE(layout.fits(*Readings::make({AgentProperty::number("b", 1, std::nullopt)})));
}

TEST(HistoryLayout, ForgetsLabelsThatNobodyBearsWhenTheyGrowTooMany) {
    HistoryLayout layout;
    for (int i = 0; i < 50; ++i) {
        auto label =
            std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{"a", std::to_string(i), ""});
        layout = layout.grown(*Readings::make({AgentProperty(label, {})}));
        EXPECT_LE(layout.labels().size(), 2U);
        EXPECT_EQ(layout.labels().back()->name, std::to_string(i));
    }
}

}  // namespace
}  // namespace vigil
