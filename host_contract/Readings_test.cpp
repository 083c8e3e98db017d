#include "host_contract/Readings.hpp"

#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace vigil {
namespace {

AgentProperty reading(const std::string& key, double value) {
    return AgentProperty::number(key, value, std::nullopt);
}

TEST(KeyTable, GivesEachKeyItsSlotInTheOrderGivenAndTheFirstOfEqualOnesCounts) {
    const auto table = KeyTable::make({"b", "a", "b"});
    EXPECT_EQ(table->size(), 2U);
    EXPECT_EQ(table->slot("b"), 0U);
    EXPECT_EQ(table->slot("a"), 1U);
    EXPECT_EQ(table->slot("c"), std::nullopt);
    EXPECT_EQ(table->key(1), "a");
    EXPECT_EQ(table->keys(), (std::vector<std::string>{"b", "a"}));
}

TEST(KeyTable, EveryTableHasAnIdOfItsOwn) {
    EXPECT_NE(KeyTable::make({"a"})->id(), KeyTable::make({"a"})->id());
}

TEST(Readings, KeepOrderAndDuplicatesAndAnswerWithTheLastOfAKey) {
    const auto batch = Readings::make({reading("a", 1), reading("b", 2), reading("a", 3)});
    ASSERT_EQ(batch->entries().size(), 3U);
    EXPECT_TRUE(batch->hasDuplicates());
    EXPECT_EQ(batch->slotOf(2), 0U);
    EXPECT_EQ(batch->objectForKey("a")->value(), 3);
    EXPECT_EQ(batch->objectForKey("c"), nullptr);
    EXPECT_FALSE(Readings::make({reading("a", 1)})->hasDuplicates());
}

TEST(Readings, ATableMayHoldKeysThatTheBatchDoesNotAndInAnotherOrder) {
    const auto table = KeyTable::make({"a", "b", "c"});
    const auto batch = Readings::make(table, {reading("c", 3), reading("a", 1)});
    EXPECT_EQ(batch->table(), table);
    EXPECT_EQ(batch->slotOf(0), 2U);
    EXPECT_EQ(batch->view().at(1), nullptr);
    EXPECT_EQ(batch->objectForKey("c")->value(), 3);
    EXPECT_EQ(batch->description(), "{a = 1, c = 3}");
}

TEST(Readings, AReadingOutsideItsTableIsABrokenPromise) {
    EXPECT_THROW(Readings::make(KeyTable::make({"a"}), {reading("b", 1)}), std::out_of_range);
}

TEST(Readings, PrintWhatIsJudgedAndOfEqualKeysTheOneThatCounts) {
    const auto batch = Readings::make({reading("a", 1), reading("b", 2), reading("a", 3)});
    EXPECT_EQ(batch->description(), "{a = 3, b = 2}");
    const AgentProperty* only[] = {nullptr, &batch->entries()[1]};
    std::string text = "judged ";
    batch->appendDescription(text, {batch->table().get(), only});
    EXPECT_EQ(text, "judged {b = 2}");
    EXPECT_EQ(Readings::make({})->description(), "{}");
}

TEST(Readings, MayBePrintedByManyThreadsAtOnce) {
    const auto batch = Readings::make({reading("a", 1), reading("b", 2)});
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] { EXPECT_EQ(batch->description(), "{a = 1, b = 2}"); });
    for (auto& thread : threads)
        thread.join();
}

// Each monitor's line holds other readings of the batch; a text printed for one serves the next.
TEST(Readings, PrintAnyPartInAnyOrderOfAsking) {
    const auto batch = Readings::make({reading("a", 1), reading("b", 2), reading("c", 3), reading("b", 4)});
    const auto printed = [&batch](const std::vector<std::size_t>& entries) {
        std::vector<const AgentProperty*> bySlot(batch->table()->size(), nullptr);
        for (const std::size_t entry : entries)
            bySlot[batch->slotOf(entry)] = &batch->entries()[entry];
        std::string text;
        batch->appendDescription(text, {batch->table().get(), bySlot.data()});
        return text;
    };
    EXPECT_EQ(printed({2}), "{c = 3}");
    EXPECT_EQ(printed({0, 1}), "{a = 1, b = 2}");
    EXPECT_EQ(printed({}), "{}");
    EXPECT_EQ(batch->description(), "{a = 1, b = 4, c = 3}");
    EXPECT_EQ(printed({1, 2}), "{b = 2, c = 3}");
}

}  // namespace
}  // namespace vigil
