#include "conditions/BoundCondition.hpp"

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"

// Counts what this thread allocates.
namespace {
thread_local long g_allocations = 0;
}

void* operator new(std::size_t size) {
    ++g_allocations;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace vigil {
namespace {

std::shared_ptr<ConditionPredicate> condition(const std::string& text) {
    return ConditionPredicate::predicateWithFormat(text).value();
}

std::shared_ptr<const Readings> batchOf(const std::shared_ptr<const KeyTable>& table,
                                        const std::vector<std::pair<std::string, double>>& numbers) {
    std::vector<AgentProperty> entries;
    for (const auto& [key, value] : numbers)
        entries.push_back(AgentProperty::number(key, value, std::nullopt));
    return Readings::make(table, std::move(entries));
}

TEST(BoundCondition, JudgesEveryBatchOfItsTable) {
    const auto table = KeyTable::make({"x", "b", "a"});
    const BoundCondition bound(condition("a.unitValue < 1 AND b.unitValue > 1")->tree(), *table);
    EXPECT_EQ(bound.tableId(), table->id());
    EXPECT_TRUE(bound.holds(batchOf(table, {{"a", 0}, {"b", 2}})->view()));
    EXPECT_FALSE(bound.holds(batchOf(table, {{"a", 0}, {"b", 0}})->view()));
    EXPECT_FALSE(bound.holds(batchOf(table, {{"a", 0}, {"x", 2}})->view()));
}

TEST(BoundCondition, NeedsNeitherTreeNorTableAnyMore) {
    std::shared_ptr<const Readings> batch;
    std::unique_ptr<BoundCondition> bound;
    {
        const auto table = KeyTable::make({"a"});
        bound = std::make_unique<BoundCondition>(
            condition("a.stringValue == \"a text too long for a short one\"")->tree(), *table);
        batch = Readings::make(table,
                               {AgentProperty::text("a", "a text too long for a short one", std::nullopt)});
    }
    EXPECT_TRUE(bound->holds(batch->view()));
}

TEST(BoundCondition, FindsNoValueUnderAKeyThatTheTableLacks) {
    const auto table = KeyTable::make({"b"});  // whose slot 0 is another's
    const auto batch = batchOf(table, {{"b", 1}});
    const auto holds = [&](const char* text) {
        return BoundCondition(condition(text)->tree(), *table).holds(batch->view());
    };
    EXPECT_FALSE(holds("a.unitValue == 1"));
    EXPECT_FALSE(holds("a.unitValue < 5"));
    EXPECT_FALSE(holds("a.unitValue > -5"));
    EXPECT_FALSE(holds("a.stringValue == \"1\""));
    EXPECT_TRUE(holds("a.unitValue != 1"));
    EXPECT_TRUE(holds("a.stringValue != \"1\""));
    EXPECT_TRUE(holds("b.unitValue == 1"));
}

TEST(BoundCondition, KnowsItsVerdictForATableWithoutKeys) {
    const auto table = KeyTable::make({});
    const auto batch = Readings::make(table, {});
    EXPECT_FALSE(BoundCondition(condition("a.unitValue < 1")->tree(), *table).holds(batch->view()));
    EXPECT_TRUE(BoundCondition(condition("a.unitValue != 1 AND b.stringValue != \"x\"")->tree(), *table)
                    .holds(batch->view()));
}

TEST(BoundCondition, AllocatesNothingWhileJudging) {
    const auto table = KeyTable::make({"a", "b", "t", "n"});
    const auto batch = Readings::make(
        table, {AgentProperty::number("a", 5, std::nullopt),
                AgentProperty::text("t", "a text that is too long to stand inside a string", std::nullopt),
                AgentProperty::number("n", 0.30000000000000004, std::nullopt)});
    const auto one = condition(
        "(a.unitValue < 1 OR b.unitValue != 3) AND t.stringValue == \"a text that is too long to stand "
        "inside a "
        "string\" AND n.stringValue == \"0.30000000000000004\" AND a.value != CAST(1, \"NSDate\")");
    EXPECT_TRUE(
        one->evaluateWithObject(batch->view()));  // binds, and makes the thread's buffer for built texts
    const long before = g_allocations;
    bool all = true;
    for (int i = 0; i < 100; ++i)
        all = one->evaluateWithObject(batch->view()) && all;
    EXPECT_EQ(g_allocations, before);
    EXPECT_TRUE(all);
    const auto counted = std::make_unique<int>(0);
    EXPECT_GT(g_allocations, before) << "the count counts";
}

TEST(BindingCache, BindsOnceForATable) {
    const auto tree = condition("a.unitValue < 1")->tree();
    BindingCache cache;
    EXPECT_FALSE(cache.holds(ReadingsView{})) << "nothing is set yet";
    cache.reset(&tree);
    const auto table = KeyTable::make({"a"});
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(cache.holds(batchOf(table, {{"a", i % 2}})->view()), i % 2 == 0);
    EXPECT_EQ(cache.made(), 1U);
    EXPECT_EQ(cache.size(), 1U);
}

TEST(BindingCache, ForgetsTheTableUnusedForLongest) {
    const auto tree = condition("a.unitValue < 1")->tree();
    BindingCache cache;
    cache.reset(&tree);
    std::vector<std::shared_ptr<const Readings>> batches;
    for (std::size_t i = 0; i <= BindingCache::kMaxBindings; ++i)
        batches.push_back(batchOf(KeyTable::make({"x" + std::to_string(i), "a"}), {{"a", 0}}));
    for (std::size_t i = 0; i < BindingCache::kMaxBindings; ++i)
        EXPECT_TRUE(cache.holds(batches[i]->view()));
    EXPECT_EQ(cache.made(), BindingCache::kMaxBindings);
    EXPECT_TRUE(cache.holds(batches[0]->view()));  // used again, so the second is the oldest
    EXPECT_TRUE(cache.holds(batches.back()->view()));
    EXPECT_EQ(cache.made(), BindingCache::kMaxBindings + 1);
    EXPECT_EQ(cache.size(), BindingCache::kMaxBindings);
    EXPECT_TRUE(cache.holds(batches[0]->view()));
    EXPECT_TRUE(cache.holds(batches[2]->view()));
    EXPECT_EQ(cache.made(), BindingCache::kMaxBindings + 1) << "both were remembered";
    EXPECT_TRUE(cache.holds(batches[1]->view()));
    EXPECT_EQ(cache.made(), BindingCache::kMaxBindings + 2) << "the oldest was forgotten";
}

TEST(BindingCache, TellsTablesWithOtherSlotsApart) {
    const auto one = condition("a.unitValue == 1 AND b.unitValue == 2");
    const auto there = batchOf(KeyTable::make({"a", "b"}), {{"a", 1}, {"b", 2}});
    const auto back = batchOf(KeyTable::make({"b", "a"}), {{"a", 1}, {"b", 2}});
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(one->evaluateWithObject(there->view()));
        EXPECT_TRUE(one->evaluateWithObject(back->view()));
    }
}

TEST(BindingCache, ServesSeveralThreadsAtOnce) {
    const auto one = condition("a.unitValue == 1 AND t.stringValue == \"0.30000000000000004\"");
    constexpr int kRounds = 2000;
    std::vector<long> held(4, 0);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < held.size(); ++thread)
        threads.emplace_back([&one, &held, thread] {
            // More tables than are remembered, so that threads push each other's bindings out.
            std::vector<std::shared_ptr<const Readings>> batches;
            for (int i = 0; i < 3; ++i)
                batches.push_back(batchOf(KeyTable::make({"t", "x" + std::to_string(i), "a"}),
                                          {{"a", 1}, {"t", 0.30000000000000004}}));
            for (int round = 0; round < kRounds; ++round)
                held[thread] += one->evaluateWithObject(batches[static_cast<std::size_t>(round % 3)]->view());
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(held, std::vector<long>(4, kRounds));
}

TEST(BoundCondition, NamesTheSlotsThatItLooksAt) {
    const auto table = KeyTable::make({"x", "a", "b", "t"});
    const auto slots = [&table](const std::string& text) {
        return BoundCondition(condition(text)->tree(), *table).slots();
    };
    using Slots = std::vector<KeyTable::Slot>;
    EXPECT_EQ(slots("b.unitValue < 1 AND a.value > CAST(1, \"NSDate\") OR b.unitValue > 2"), (Slots{1, 2}));
    EXPECT_EQ(slots("t.stringValue == \"1\" OR lacking.stringValue != \"1\""), (Slots{3}));
    // It is passed by nothing, whatever stands at the slot that it is given.
    EXPECT_EQ(slots("lacking.unitValue < 1"), (Slots{0}));
    EXPECT_TRUE(BoundCondition(condition("a.unitValue < 1")->tree(), *KeyTable::make({})).slots().empty());
}

}  // namespace
}  // namespace vigil
