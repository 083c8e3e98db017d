#include "host/desktop/ConditionTree.hpp"

#include <gtest/gtest.h>

#include "tests/support/EditorBench.hpp"

namespace vigil::test {
namespace {

std::string moved(const char* text, std::size_t row, bool up) {
    EditorBench bench;
    bench.show(text);
    const auto rows = bench.editor->rows();
    const auto place = up ? placeAbove(rows, row) : placeBelow(rows, row);
    if (!place) return "stays";
    const auto made = conditionWithMoved(rows, row, place->group, place->position);
    return made ? made->printed() : "nothing";
}

constexpr const char* kGrouped =
    "windChill.unitValue < 1 OR (windSpeed.unitValue > 2 AND sky.stringValue == \"Fog\")";

TEST(ConditionTree, ARowPassesItsNeighbour) {
    EXPECT_EQ(moved("windChill.unitValue < 1 AND windSpeed.unitValue > 2", 2, /*up=*/true),
              "windSpeed.unitValue > 2 AND windChill.unitValue < 1");
    EXPECT_EQ(moved("windChill.unitValue < 1 AND windSpeed.unitValue > 2", 1, /*up=*/true), "stays");
    EXPECT_EQ(moved("windChill.unitValue < 1 AND windSpeed.unitValue > 2", 2, /*up=*/false), "stays");
}

TEST(ConditionTree, ARowGoesIntoAGroupAndOutOfIt) {
    EXPECT_EQ(moved(kGrouped, 1, /*up=*/false),
              "windChill.unitValue < 1 AND windSpeed.unitValue > 2 AND sky.stringValue == \"Fog\"")
        << "the outer group has one part left and is that part";
    EXPECT_EQ(moved(kGrouped, 3, /*up=*/true),
              "windChill.unitValue < 1 OR windSpeed.unitValue > 2 OR sky.stringValue == \"Fog\"");
    EXPECT_EQ(moved(kGrouped, 4, /*up=*/false),
              "windChill.unitValue < 1 OR windSpeed.unitValue > 2 OR sky.stringValue == \"Fog\"");
}

TEST(ConditionTree, AGroupMovesWithWhatItHoldsAndNeverIntoItself) {
    EXPECT_EQ(moved(kGrouped, 2, /*up=*/true),
              "(windSpeed.unitValue > 2 AND sky.stringValue == \"Fog\") OR windChill.unitValue < 1");
    EditorBench bench;
    bench.show(kGrouped);
    EXPECT_EQ(conditionWithMoved(bench.editor->rows(), 2, 2, 0), nullptr);
    EXPECT_EQ(conditionWithMoved(bench.editor->rows(), 0, 2, 0), nullptr);
    EXPECT_EQ(conditionWithMoved(bench.editor->rows(), 1, 0, 1), nullptr) << "it is there already";
}

}  // namespace
}  // namespace vigil::test
