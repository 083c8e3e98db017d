#include "host/kit/ReadingsMerge.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

using Batch = std::shared_ptr<const Readings>;

Batch batch(std::vector<std::pair<std::string, double>> readings) {
    std::vector<AgentProperty> entries;
    for (auto& [key, value] : readings)
        entries.push_back(AgentProperty::number(std::move(key), value, std::nullopt));
    return Readings::make(std::move(entries));
}

class ReadingsMergeTest : public testing::Test {
  protected:
    Batch merge(const Batch& current, const Batch& news, std::size_t most = 512) {
        return merged(current, news, most, dropped);
    }
    std::uint64_t dropped = 0;
    Batch none = batch({});
};

TEST_F(ReadingsMergeTest, TheFirstBatchIsTakenAsItIs) {
    const Batch first = batch({{"a", 1}, {"b", 2}});
    EXPECT_EQ(merge(none, first), first);
}

TEST_F(ReadingsMergeTest, ABatchWithAllKeysOfTheSameTableIsTakenAsItIs) {
    const Batch first = batch({{"a", 1}, {"b", 2}});
    const Batch second = Readings::make(first->table(), {AgentProperty::number("a", 3, std::nullopt),
                                                         AgentProperty::number("b", 4, std::nullopt)});
    EXPECT_EQ(merge(first, second), second);
}

TEST_F(ReadingsMergeTest, APartialBatchReplacesItsKeysAndKeepsTheOthersAndTheTable) {
    const Batch first = batch({{"a", 1}, {"b", 2}});
    const Batch now = merge(first, batch({{"b", 5}}));
    EXPECT_EQ(now->description(), "{a = 1, b = 5}");
    EXPECT_EQ(now->table(), first->table());
}

TEST_F(ReadingsMergeTest, OfEqualKeysTheLastReadingCounts) {
    EXPECT_EQ(merge(none, batch({{"a", 1}, {"b", 2}, {"a", 3}}))->description(), "{a = 3, b = 2}");
    EXPECT_FALSE(merge(none, batch({{"a", 1}, {"a", 3}}))->hasDuplicates());
}

TEST_F(ReadingsMergeTest, NewKeysComeBehindTheOthersInTheirOrder) {
    const Batch now = merge(batch({{"m", 1}}), batch({{"z", 2}, {"m", 3}, {"a", 4}}));
    EXPECT_EQ(now->description(), "{m = 3, z = 2, a = 4}");
}

TEST_F(ReadingsMergeTest, KeysWithoutAPlaceAreDroppedAndCountedAndTheKnownOnesStillRead) {
    const Batch two = merge(none, batch({{"a", 1}, {"b", 2}, {"c", 3}}), 2);
    EXPECT_EQ(two->description(), "{a = 1, b = 2}");
    EXPECT_EQ(dropped, 1U);
    EXPECT_EQ(merge(two, batch({{"d", 1}, {"b", 7}, {"e", 1}}), 2)->description(), "{a = 1, b = 7}");
    EXPECT_EQ(dropped, 3U);
}

TEST_F(ReadingsMergeTest, ExactlyTheMostKeysAreKept) {
    const Batch two = batch({{"a", 1}, {"b", 2}});
    EXPECT_EQ(merge(none, two, 2), two);
    EXPECT_EQ(merge(batch({{"a", 1}}), two, 2)->description(), "{a = 1, b = 2}");
    EXPECT_EQ(dropped, 0U);
}

}  // namespace
}  // namespace vigil
