#include "plugins/VigilPlugIn/VigilPlugIn/ActionTexts.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

TEST(ActionTexts, PlaceholdersAreFilledInTheirOrder) {
    EXPECT_EQ(filled("%@ and %@.", {"a", "b"}), "a and b.");
    EXPECT_EQ(filled("%@%@", {"", "b"}), "b");
    EXPECT_EQ(filled("nothing", {}), "nothing");
}

TEST(ActionTexts, APlaceholderInsideAValueIsText) {
    EXPECT_EQ(filled("%@ %@", {"%@", "b"}), "%@ b");
}

TEST(ActionTexts, TooFewValuesLeavePlaceholdersAndTooManyAreLeftOut) {
    EXPECT_EQ(filled("%@ %@", {"a"}), "a %@");
    EXPECT_EQ(filled("%@!", {"a", "b"}), "a!");
}

TEST(ActionTexts, ASiteWithoutANameAnAbsentNameAndNoStationReadAsMissing) {
    FakeWorld world;
    const auto agent = std::make_shared<FakeAgent>(world);
    EXPECT_EQ(siteNameText(agent), "(LOCATION DATA MISSING IN AGENT)");
    agent->setSiteName(SiteName(std::nullopt));
    EXPECT_EQ(siteNameText(agent), "(LOCATION DATA MISSING IN AGENT)");
    EXPECT_EQ(siteNameText(nullptr), "(LOCATION DATA MISSING IN AGENT)");
    agent->setSiteName(SiteName("Aarhus"));
    EXPECT_EQ(siteNameText(agent), "Aarhus");
    agent->setSiteName(SiteName(""));
    EXPECT_EQ(siteNameText(agent), "") << "an empty name is a name";
}

}  // namespace
}  // namespace vigil
