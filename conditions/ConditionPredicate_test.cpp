#include "conditions/ConditionPredicate.hpp"

#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ClassRegistry.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {
namespace {

std::shared_ptr<ConditionPredicate> condition(const std::string& text) {
    auto read = ConditionPredicate::predicateWithFormat(text);
    if (!read) throw std::invalid_argument(text + ": " + read.error().message());
    return read.value();
}

class MemoryArchive : public KeyedEncoder, public KeyedDecoder {
  public:
    void encode(std::string_view key, Value value) override { entries[std::string(key)] = std::move(value); }
    bool contains(std::string_view key) const override { return entries.contains(std::string(key)); }
    Value decode(std::string_view key) override {
        const auto found = entries.find(std::string(key));
        return found == entries.end() ? Value() : found->second;
    }
    void refuse(std::string_view key, std::string reason) override {
        refusals.push_back(std::string(key) + ": " + reason);
    }

    std::map<std::string, Value> entries;
    std::vector<std::string> refusals;
};

TEST(ConditionPredicate, DescribesItselfAsItsPrintedForm) {
    const auto one = condition(" ( a.unitValue<1 ) ");
    EXPECT_EQ(one->printed(), "a.unitValue < 1");
    EXPECT_EQ(one->description(), "a.unitValue < 1");
    EXPECT_EQ(one->className(), "ConditionPredicate");
}

TEST(ConditionPredicate, IsEqualWhenTheTreesAre) {
    const auto one = condition("a.unitValue < 1 OR b.unitValue < 2");
    EXPECT_TRUE(one->isEqual(condition("((a.unitValue<1.0 OR b.unitValue<2e0))").get()));
    EXPECT_FALSE(one->isEqual(condition("b.unitValue < 2 OR a.unitValue < 1").get()));
    EXPECT_FALSE(one->isEqual(condition("a.unitValue < 1 AND b.unitValue < 2").get()));
    EXPECT_FALSE(one->isEqual(condition("a.unitValue < 1 OR b.unitValue <= 2").get()));
    EXPECT_FALSE(one->isEqual(condition("a.unitValue < 1 OR c.unitValue < 2").get()));
    EXPECT_FALSE(one->isEqual(condition("a.unitValue < 1 OR b.unitValue < 3").get()));
    EXPECT_FALSE(one->isEqual(condition("a.unitValue < 1").get()));
    EXPECT_FALSE(one->isEqual(nullptr));
    const AgentProperty other;
    EXPECT_FALSE(one->isEqual(&other));
}

TEST(ConditionPredicate, TellsZeroFromMinusZeroWhenComparedButNotWhenJudging) {
    const auto zero = condition("a.unitValue == 0");
    const auto minusZero = condition("a.unitValue == -0");
    EXPECT_FALSE(zero->isEqual(minusZero.get()));
    EXPECT_FALSE(condition("a.value == CAST(0, \"NSDate\")")
                     ->isEqual(condition("a.value == CAST(-0, \"NSDate\")").get()));
    const EvaluationDictionary readings(Readings::make({AgentProperty::number("a", 0, std::nullopt)}));
    EXPECT_TRUE(zero->evaluateWithObject(readings));
    EXPECT_TRUE(minusZero->evaluateWithObject(readings));
}

TEST(ConditionPredicate, OutlivesItsText) {
    std::shared_ptr<ConditionPredicate> kept;
    {
        const std::string text =
            "windChill.unitValue < 10 OR sky.stringValue == \"a text too long for a short one\"";
        kept = condition(text);
    }
    EXPECT_EQ(kept->printed(),
              "windChill.unitValue < 10 OR sky.stringValue == \"a text too long for a short one\"");
}

TEST(ConditionPredicate, JudgesTheLastOfSeveralReadingsOfOneKey) {
    const auto batch = Readings::make(
        {AgentProperty::number("a", 1, std::nullopt), AgentProperty::number("a", 2, std::nullopt)});
    EXPECT_TRUE(condition("a.unitValue == 2")->evaluateWithObject(batch->view()));
    EXPECT_TRUE(condition("a.unitValue == 2")->evaluateWithObject(EvaluationDictionary(batch)));
}

TEST(ConditionPredicate, TakesAViewOfNothingForNoReadings) {
    EXPECT_FALSE(condition("a.unitValue < 1 OR b.stringValue == \"x\"")->evaluateWithObject(ReadingsView{}));
    EXPECT_TRUE(condition("a.unitValue != 1 AND b.stringValue != \"x\"")->evaluateWithObject(ReadingsView{}));
}

TEST(ConditionPredicate, IsArchivedAsItsPrintedForm) {
    const auto one = condition("(a.unitValue<1 AND b.unitValue<2) OR c.stringValue==\"\t\"");
    MemoryArchive archive;
    one->encodeWithCoder(archive);
    ASSERT_EQ(archive.entries.size(), 1U);
    EXPECT_EQ(*archive.entries["text"].as<std::string>(), one->printed());
    ConditionPredicate back;
    EXPECT_TRUE(back.initWithCoder(archive));
    EXPECT_TRUE(archive.refusals.empty());
    EXPECT_TRUE(back.isEqual(one.get()));
    EXPECT_EQ(back.printed(), one->printed());
}

TEST(ConditionPredicate, RefusesAnArchiveWhoseTextIsNoCondition) {
    MemoryArchive archive;
    archive.entries["text"] = Value("a.unitValue < x");
    ConditionPredicate back;
    EXPECT_FALSE(back.initWithCoder(archive));
    EXPECT_EQ(archive.refusals, std::vector<std::string>{
                                    "text: not a condition: expected a number but found \"x\" at byte 14"});
}

TEST(ConditionPredicate, RefusesAnArchiveWithoutATextOnce) {
    MemoryArchive archive;
    ConditionPredicate back;
    EXPECT_FALSE(back.initWithCoder(archive));
    EXPECT_EQ(archive.refusals, std::vector<std::string>{"text: expected the text of a condition"});
    archive.refusals.clear();
    archive.entries["text"] = Value(5);
    EXPECT_FALSE(back.initWithCoder(archive));
    EXPECT_EQ(archive.refusals, std::vector<std::string>{"text: expected a text"});
}

TEST(ConditionPredicate, FreshFromTheConstructorIsEmpty) {
    const ConditionPredicate empty;
    EXPECT_EQ(empty.printed(), "");
    EXPECT_FALSE(empty.optionalTree());
    EXPECT_THROW(empty.tree(), std::bad_optional_access);
    EXPECT_FALSE(empty.evaluateWithObject(EvaluationDictionary()));
    MemoryArchive archive;
    empty.encodeWithCoder(archive);
    EXPECT_TRUE(archive.entries.empty());
}

TEST(ConditionPredicate, CanBeMadeOfATree) {
    const ConditionNode a(Comparison{"a", ComparisonMember::UnitValue, ComparisonOperator::Less, 1.0});
    const ConditionNode b(
        Comparison{"b", ComparisonMember::StringValue, ComparisonOperator::Equal, std::string("x\n")});
    const ConditionNode c(Comparison{"c", ComparisonMember::Value, ComparisonOperator::Equal, Date(5)});
    const auto tree =
        ConditionNode::compound(Connective::Or, {a, ConditionNode::compound(Connective::And, {b, c})});
    const auto made = ConditionPredicate::predicateWithTree(tree);
    ASSERT_TRUE(made) << made.error().message();
    EXPECT_EQ(made.value()->printed(),
              "a.unitValue < 1 OR (b.stringValue == \"x\\n\" AND c.value == CAST(5, \"NSDate\"))");
    EXPECT_EQ(made.value()->tree(), tree);
}

TEST(ConditionPredicate, RefusesATreeThatWouldNotReadBack) {
    const auto refused = [](Comparison comparison) {
        return !ConditionPredicate::predicateWithTree(ConditionNode(std::move(comparison)));
    };
    using enum ComparisonMember;
    const auto equal = ComparisonOperator::Equal;
    EXPECT_FALSE(refused({"a", UnitValue, equal, 1.0}));
    EXPECT_TRUE(refused({"", UnitValue, equal, 1.0}));
    EXPECT_TRUE(refused({"wind chill", UnitValue, equal, 1.0}));
    EXPECT_TRUE(refused({"AND", UnitValue, equal, 1.0}));
    EXPECT_TRUE(refused({"a.unitValue < 1 OR b", UnitValue, equal, 1.0})) << "reads back as another tree";
    EXPECT_TRUE(refused({" a", UnitValue, equal, 1.0})) << "reads back with another key";
    EXPECT_TRUE(refused({"a", StringValue, equal, 1.0}));
    EXPECT_TRUE(refused({"a", UnitValue, equal, std::string("x")}));
    EXPECT_TRUE(refused({"a", Value, equal, 1.0}));
    EXPECT_TRUE(refused({"a", UnitValue, equal, Date(1)}));
    EXPECT_TRUE(refused({"a", UnitValue, equal, std::nan("")}));
    EXPECT_TRUE(refused({"a", UnitValue, equal, HUGE_VAL}));
    EXPECT_TRUE(refused({"a", Value, equal, Date(HUGE_VAL)}));
}

}  // namespace
}  // namespace vigil
