// The evaluator against a naive judge that shares no code with it.

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/NaiveCondition.hpp"

namespace vigil {
namespace {

using test::GeneratedReadings;

// Every combination of two readings, each absent, NaN, below, at or above the literals, or a text.
std::vector<GeneratedReadings> smallDictionaries() {
    std::vector<GeneratedReadings> all;
    constexpr int kStates = 6;
    for (int pair = 0; pair < kStates * kStates; ++pair) {
        GeneratedReadings made;
        const int states[] = {pair / kStates, pair % kStates};
        for (int i = 0; i < 2; ++i) {
            const std::string key = i == 0 ? "a" : "b";
            switch (states[i]) {
                case 0:
                    break;
                case 1:
                    made.addNumber(key, NAN, NAN);
                    break;
                case 2:
                    made.addNumber(key, 0, -1);
                    break;
                case 3:
                    made.addNumber(key, 1, 1);
                    break;
                case 4:
                    made.addNumber(key, 2, 3, "1");
                    break;
                default:
                    made.addText(key, "x");
            }
        }
        all.push_back(made);
    }
    return all;
}

std::vector<std::string> comparisons(const std::vector<std::string>& keys,
                                     const std::vector<std::string>& operators,
                                     const std::vector<std::string>& members) {
    std::vector<std::string> all;
    for (const std::string& key : keys)
        for (const std::string& op : operators)
            for (const std::string& member : members) {
                const auto blank = member.find(' ');
                all.push_back(key + "." + member.substr(0, blank) + " " + op + member.substr(blank));
            }
    return all;
}

class Comparer {
  public:
    void compare(const std::string& text) {
        const auto read = ConditionPredicate::predicateWithFormat(text);
        ASSERT_TRUE(read) << text << ": " << read.error().message();
        for (const GeneratedReadings& each : m_dictionaries) {
            const auto naive = test::naiveVerdict(text, each.naive);
            ASSERT_TRUE(naive.has_value()) << text;
            ASSERT_EQ(read.value()->evaluateWithObject(each.readings), *naive)
                << text << " of " << each.readings.description();
            ++(*naive ? m_true : m_false);
        }
    }

    // A comparison of judges that always say the same would show nothing.
    void expectBothVerdicts(long least) const {
        EXPECT_GT(m_true, least);
        EXPECT_GT(m_false, least);
    }

  private:
    std::vector<GeneratedReadings> m_dictionaries = smallDictionaries();
    long m_true = 0;
    long m_false = 0;
};

const std::vector<std::string> kOperators{"==", "!=", "<", "<=", ">", ">="};
const std::vector<std::string> kMembers{"unitValue 1", "unitValue -0", "value CAST(1, \"NSDate\")",
                                        "stringValue \"1\"", "stringValue \"x\""};

TEST(ConditionOracle, AgreesOnEveryComparison) {
    Comparer comparer;
    for (const std::string& one : comparisons({"a", "b", "missing"}, kOperators, kMembers))
        ASSERT_NO_FATAL_FAILURE(comparer.compare(one));
    comparer.expectBothVerdicts(900);
}

TEST(ConditionOracle, AgreesOnEveryPairOfComparisons) {
    Comparer comparer;
    const auto all = comparisons({"a", "missing"}, kOperators,
                                 {"unitValue 1", "value CAST(1, \"NSDate\")", "stringValue \"1\""});
    for (const std::string& first : all)
        for (const std::string& second : all)
            for (const char* connective : {" AND ", " OR "})
                ASSERT_NO_FATAL_FAILURE(
                    comparer.compare(first + connective + "b" + second.substr(second.find('.'))));
    comparer.expectBothVerdicts(10000);
}

// Every way to join three comparisons: two connectives, and parentheses nowhere, left or right.
TEST(ConditionOracle, AgreesOnEveryGroupingOfThreeComparisons) {
    Comparer comparer;
    const bool more = test::longFactor() > 1;
    const auto first = comparisons({"a"}, more ? kOperators : std::vector<std::string>{"<", "!="},
                                   {"unitValue 1", "stringValue \"1\""});
    const auto second =
        comparisons({"b", "missing"}, more ? kOperators : std::vector<std::string>{"==", "!="},
                    {"unitValue 1", "value CAST(1, \"NSDate\")"});
    const auto third =
        comparisons({"a", "b"}, more ? kOperators : std::vector<std::string>{">=", "!="}, {"unitValue 1"});
    for (const std::string& a : first)
        for (const std::string& b : second)
            for (const std::string& c : third)
                for (const std::string& left : {std::string(" AND "), std::string(" OR ")})
                    for (const std::string& right : {std::string(" AND "), std::string(" OR ")})
                        for (const std::string& text :
                             {a + left + b + right + c, "(" + a + left + b + ")" + right + c,
                              a + left + "(" + b + right + c + ")"})
                            ASSERT_NO_FATAL_FAILURE(comparer.compare(text));
    comparer.expectBothVerdicts(10000);
}

TEST(ConditionOracle, AgreesOnRandomConditionsAndReadings) {
    test::ConditionGenerator random(20261121);
    long held = 0;
    const int rounds = 2000 * test::longFactor();
    for (int round = 0; round < rounds; ++round) {
        const std::string text = random.text(12);
        const auto read = ConditionPredicate::predicateWithFormat(text);
        ASSERT_TRUE(read) << text << ": " << read.error().message();
        for (int i = 0; i < 8; ++i) {
            const GeneratedReadings each = random.readings();
            const auto naive = test::naiveVerdict(text, each.naive);
            ASSERT_TRUE(naive.has_value()) << text;
            ASSERT_EQ(read.value()->evaluateWithObject(each.readings), *naive)
                << text << " of " << each.readings.description();
            held += *naive ? 1 : 0;
        }
    }
    EXPECT_GT(held, rounds);
    EXPECT_LT(held, rounds * 7);
}

// What one takes for a condition the other does too, also when a byte of it is damaged.
TEST(ConditionOracle, AgreesOnWhatIsNoCondition) {
    test::ConditionGenerator random(7);
    long accepted = 0;
    long rejected = 0;
    const int rounds = 20000 * test::longFactor();
    for (int round = 0; round < rounds; ++round) {
        std::string text = random.damaged(random.text(3));
        if (random.below(3) == 0) text = random.damaged(text);
        const bool taken = bool(ConditionPredicate::predicateWithFormat(text));
        ASSERT_EQ(taken, test::naiveVerdict(text, {}).has_value()) << text;
        ++(taken ? accepted : rejected);
    }
    EXPECT_GT(accepted, rounds / 20);
    EXPECT_GT(rejected, rounds / 20);
}

}  // namespace
}  // namespace vigil
