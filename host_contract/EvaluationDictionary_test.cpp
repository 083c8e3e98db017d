#include "host_contract/EvaluationDictionary.hpp"

#include <map>
#include <random>

#include <gtest/gtest.h>

namespace vigil {
namespace {

AgentProperty reading(const std::string& key, double value) {
    return AgentProperty::number(key, value, std::nullopt);
}

TEST(EvaluationDictionary, AnEmptyOneAnswersNothing) {
    const EvaluationDictionary empty;
    EXPECT_EQ(empty.size(), 0U);
    EXPECT_EQ(empty.objectForKey("a"), nullptr);
    EXPECT_EQ(empty.description(), "{}");
    EXPECT_EQ(EvaluationDictionary(nullptr).size(), 0U);
}

TEST(EvaluationDictionary, SharesABatchWithoutDuplicatesAndOtherwiseTheLastWins) {
    const auto plain = Readings::make({reading("a", 1), reading("b", 2)});
    EXPECT_EQ(EvaluationDictionary(plain).readings(), plain);
    const EvaluationDictionary last(Readings::make({reading("a", 1), reading("b", 2), reading("a", 3)}));
    EXPECT_EQ(last.size(), 2U);
    EXPECT_EQ(last.keys(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(last.objectForKey("a")->value(), 3);
}

TEST(EvaluationDictionary, ACopyIsIndependentOfWhatIsWrittenToTheOther) {
    EvaluationDictionary original(Readings::make({reading("a", 1)}));
    const EvaluationDictionary copy = original;
    original.setObject(reading("a", 2));
    original.setObject(reading("b", 3));
    EXPECT_EQ(original.description(), "{a = 2, b = 3}");
    EXPECT_EQ(copy.description(), "{a = 1}");
}

TEST(EvaluationDictionary, GoesThroughAnArchiveValueAndBack) {
    const EvaluationDictionary original(Readings::make({reading("b", 2), reading("a", 1)}));
    const Value value = original.archiveValue();
    const auto* entries = value.as<ValueDictionary>();
    ASSERT_TRUE(entries);
    const auto back = EvaluationDictionary::fromArchive(*entries);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->description(), "{b = 2, a = 1}");
    EXPECT_NE(back->objectForKey("a"), original.objectForKey("a"));
}

TEST(EvaluationDictionary, AnEntryThatIsNoReadingOrUnderAnotherKeyIsRefused) {
    const auto object = std::static_pointer_cast<Object>(std::make_shared<AgentProperty>(reading("a", 1)));
    EXPECT_TRUE(EvaluationDictionary::fromArchive({{"a", Value(object)}}));
    EXPECT_FALSE(EvaluationDictionary::fromArchive({{"b", Value(object)}}));
    EXPECT_FALSE(EvaluationDictionary::fromArchive({{"a", Value(1)}}));
    EXPECT_FALSE(EvaluationDictionary::fromArchive({{"a", Value()}}));
}

TEST(EvaluationDictionary, AnyNumberOfCopiesReadLikeAMapEachWhateverIsWrittenToTheOthers) {
    std::mt19937 random(20260131);
    std::vector<EvaluationDictionary> copies(1);
    std::vector<std::map<std::string, double>> maps(1);
    for (int step = 0; step < 2000; ++step) {
        const std::size_t from = random() % copies.size();
        if (random() % 4 == 0) {
            copies.push_back(copies[from]);
            maps.push_back(maps[from]);
        } else {
            const std::string key(1, static_cast<char>('a' + random() % 6));
            copies[from].setObject(AgentProperty::number(key, step, std::nullopt));
            maps[from][key] = step;
        }
        const std::size_t seen = random() % copies.size();
        ASSERT_EQ(copies[seen].size(), maps[seen].size()) << "step " << step;
        for (const auto& [key, value] : maps[seen])
            ASSERT_EQ(copies[seen].objectForKey(key)->value(), value) << "step " << step;
    }
}

}  // namespace
}  // namespace vigil
