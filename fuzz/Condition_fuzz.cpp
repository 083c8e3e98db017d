// A condition's text: refused with a place inside it, or accepted, printed and read back as the same; judged
// over a small batch as a walk over the tree judges it.

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/Limits.hpp"
#include "fuzz/Law.hpp"

namespace vigil::fuzz {
namespace {

constexpr std::size_t kMostKeys = 16;

void collect(const ConditionNode& node, std::vector<Comparison>& to) {
    if (const Comparison* comparison = node.comparison()) to.push_back(*comparison);
    for (const ConditionNode& part : node.parts())
        collect(part, to);
}

// One reading a key, at the literal that it is compared with, beside it, NaN, or none at all.
std::vector<AgentProperty> readingsFor(const std::vector<Comparison>& comparisons, std::size_t variant) {
    std::vector<AgentProperty> readings;
    for (const Comparison& comparison : comparisons) {
        if (readings.size() == kMostKeys) break;
        const std::size_t choice = (variant + readings.size()) % 5;
        if (choice == 4) continue;
        const double offset = static_cast<double>(choice) - 1;
        if (const auto* number = std::get_if<double>(&comparison.literal))
            readings.push_back(AgentProperty::number(comparison.key, *number + offset, std::nullopt));
        else if (const auto* date = std::get_if<Date>(&comparison.literal))
            readings.push_back(AgentProperty::date(comparison.key, date->plus(offset), std::nullopt));
        else
            readings.push_back(AgentProperty::text(
                comparison.key, std::get<std::string>(comparison.literal) + (choice == 1 ? "" : "x"),
                std::nullopt));
    }
    return readings;
}

template <class T>
bool holds(ComparisonOperator op, const T& left, const T& right) {
    switch (op) {
        case ComparisonOperator::Equal:
            return left == right;
        case ComparisonOperator::NotEqual:
            return !(left == right);
        case ComparisonOperator::Less:
            return left < right;
        case ComparisonOperator::LessOrEqual:
            return left <= right;
        case ComparisonOperator::Greater:
            return left > right;
        case ComparisonOperator::GreaterOrEqual:
            return left >= right;
    }
    return false;
}

bool holds(const Comparison& comparison, const Readings& batch) {
    const AgentProperty* reading = batch.objectForKey(comparison.key);
    if (!reading) return comparison.op == ComparisonOperator::NotEqual;
    if (const auto* text = std::get_if<std::string>(&comparison.literal))
        return holds(comparison.op, reading->stringValue(), *text);
    if (const auto* date = std::get_if<Date>(&comparison.literal))
        return holds(comparison.op, reading->value(), date->secondsSinceReference());
    return holds(comparison.op, reading->unitValue(), std::get<double>(comparison.literal));
}

// A tree's depth is bounded, so this is too.
bool holds(const ConditionNode& node, const Readings& batch) {
    if (const Comparison* comparison = node.comparison()) return holds(*comparison, batch);
    const bool all = node.connective() == Connective::And;
    for (const ConditionNode& part : node.parts())
        if (holds(part, batch) != all) return !all;
    return all;
}

void judge(const ConditionPredicate& condition) {
    std::vector<Comparison> comparisons;
    collect(condition.tree(), comparisons);
    for (std::size_t variant = 0; variant < 5; ++variant) {
        const auto batch = Readings::make(readingsFor(comparisons, variant));
        require(condition.evaluateWithObject(batch->view()) == holds(condition.tree(), *batch),
                "the bound form judges as a walk over the tree does");
    }
}

void readAgain(const ConditionPredicate& condition) {
    const std::string& printed = condition.printed();
    require(printed.size() <= kMaxTextBytes, "a printed form keeps to the limit");
    const auto again = ConditionPredicate::predicateWithFormat(printed);
    require(static_cast<bool>(again), "what was printed is accepted");
    require(again.value()->isEqual(&condition), "what was printed reads back as the same condition");
    require(again.value()->printed() == printed, "a printed form prints as itself");
}

}  // namespace
}  // namespace vigil::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const auto text = fuzz::textOf(data, size);
    const auto read = ConditionPredicate::predicateWithFormat(text);
    if (!read) {
        const SyntaxError& error = read.error();
        fuzz::require(error.offset <= size && error.length <= size - error.offset,
                      "a mistake lies inside the text");
        fuzz::require(!error.found.empty() && !error.expected.empty(), "a refusal says why");
        return 0;
    }
    fuzz::readAgain(*read.value());
    fuzz::judge(*read.value());
    return 0;
}
