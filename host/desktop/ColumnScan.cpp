#include "host/desktop/ColumnScan.hpp"

#include <cmath>
#include <limits>

#include "conditions/Relation.hpp"

namespace vigil {
namespace {

using Column = Columns::Column;
using Flags = std::vector<std::uint8_t>;

/// A comparison with its answer for every row, were its reading taken into account.
struct Leaf {
    const Comparison* comparison;
    const Column* column;
    Flags answers;
    bool withoutValue;
};

template <class Compare>
void fill(Flags& answers, const std::vector<double>& values, double literal, Compare compare) {
    const std::size_t rows = values.size();
    answers.resize(rows);
    for (std::size_t i = 0; i < rows; ++i)
        answers[i] = compare(values[i], literal) ? 1 : 0;
}

// Against what is no number all are false but "!=", as they are against no value.
void answerNumbers(Flags& answers, const std::vector<double>& values, ComparisonOperator op, double literal) {
    switch (op) {
        case ComparisonOperator::Equal:
            return fill(answers, values, literal, [](double a, double b) { return a == b; });
        case ComparisonOperator::NotEqual:
            return fill(answers, values, literal, [](double a, double b) { return a != b; });
        case ComparisonOperator::Less:
            return fill(answers, values, literal, [](double a, double b) { return a < b; });
        case ComparisonOperator::LessOrEqual:
            return fill(answers, values, literal, [](double a, double b) { return a <= b; });
        case ComparisonOperator::Greater:
            return fill(answers, values, literal, [](double a, double b) { return a > b; });
        case ComparisonOperator::GreaterOrEqual:
            return fill(answers, values, literal, [](double a, double b) { return a >= b; });
    }
}

void answerTexts(Flags& answers, const Column& column, ComparisonOperator op, const std::string& literal) {
    const std::uint8_t wanted = wantedRelations(op);
    Flags each;
    for (const std::string& text : column.texts) {
        // The order of UTF-8's bytes is the order of code points.
        const int order = text.compare(literal);
        each.push_back((wanted & (order < 0 ? kLess : order > 0 ? kGreater : kEqual)) != 0 ? 1 : 0);
    }
    answers.resize(column.text.size());
    const std::uint8_t none = (wanted & kNoValue) != 0 ? 1 : 0;
    for (std::size_t i = 0; i < answers.size(); ++i)
        answers[i] = column.text[i] < 0 ? none : each[static_cast<std::size_t>(column.text[i])];
}

Leaf leafOf(const Columns& columns, const Comparison& comparison) {
    Leaf leaf{&comparison, columns.column(comparison.key), {}, comparison.op == ComparisonOperator::NotEqual};
    const bool isText = std::holds_alternative<std::string>(comparison.literal);
    if (!leaf.column || (isText && !leaf.column->hasTexts))
        leaf.answers.assign(columns.rows(), leaf.withoutValue ? 1 : 0);
    else if (const auto* text = std::get_if<std::string>(&comparison.literal))
        answerTexts(leaf.answers, *leaf.column, comparison.op, *text);
    else if (const auto* date = std::get_if<Date>(&comparison.literal))
        answerNumbers(leaf.answers, leaf.column->value, comparison.op, date->secondsSinceReference());
    else
        answerNumbers(leaf.answers, leaf.column->unitValue, comparison.op,
                      std::get<double>(comparison.literal));
    return leaf;
}

// The parser bounds the depth, here and below.
void collect(const Columns& columns, const ConditionNode& node, std::vector<Leaf>& leaves) {
    if (const Comparison* comparison = node.comparison()) leaves.push_back(leafOf(columns, *comparison));
    for (const ConditionNode& part : node.parts())
        collect(columns, part, leaves);
}

/// The whole condition for every row, all readings taken into account.
Flags join(const ConditionNode& node, std::vector<Leaf>& leaves, std::size_t& next) {
    if (node.comparison()) return leaves[next++].answers;
    const bool isAnd = node.connective() == Connective::And;
    Flags all;
    for (const ConditionNode& part : node.parts()) {
        Flags one = join(part, leaves, next);
        if (all.empty()) {
            all = std::move(one);
            continue;
        }
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = isAnd ? all[i] & one[i] : all[i] | one[i];
    }
    return all;
}

bool judge(const ConditionNode& node, const Flags& answers, std::size_t& next) {
    if (node.comparison()) return answers[next++] != 0;
    const bool isAnd = node.connective() == Connective::And;
    bool result = isAnd;
    for (const ConditionNode& part : node.parts()) {
        const bool one = judge(part, answers, next);
        result = isAnd ? result && one : result || one;
    }
    return result;
}

/// Whether the reading is newer and another than in the row of the last snapshot.
bool isChanged(const Column& column, std::size_t row, std::size_t snapshot, bool hasSnapshot) {
    if (!column.there[row]) return false;
    const bool known = hasSnapshot && column.there[snapshot];
    const double before = known ? column.value[snapshot] : 0.0;
    if (before == column.value[row]) return false;
    const double time = column.time[row];
    if (std::isnan(time)) return false;
    return !known || std::isnan(column.time[snapshot]) || time > column.time[snapshot];
}

/// Fires of a monitor that looks at changes alone: what it sees depends on when it last looked.
void fireOnChange(const Columns& columns, const ConditionNode& condition, const std::vector<Leaf>& leaves,
                  double wait, std::vector<double>& fires) {
    double until = -std::numeric_limits<double>::infinity();
    std::size_t snapshot = 0;
    bool hasSnapshot = false;
    Flags answers(leaves.size());
    for (std::size_t row = 0; row < columns.rows(); ++row) {
        const double now = columns.times()[row];
        if (until - now > 0) continue;
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            const Leaf& leaf = leaves[i];
            const bool seen = leaf.column && isChanged(*leaf.column, row, snapshot, hasSnapshot);
            answers[i] = seen ? leaf.answers[row] : leaf.withoutValue ? 1 : 0;
        }
        std::size_t next = 0;
        if (judge(condition, answers, next)) {
            fires.push_back(now);
            until = now + wait;
        }
        snapshot = row;
        hasSnapshot = true;
    }
}

}  // namespace

double waitSeconds(double minutes) {
    return static_cast<double>(static_cast<float>(minutes)) * 60.0;
}

ScanResult scan(const Columns& columns, const ConditionNode& condition, const ScanRule& rule) {
    ScanResult result;
    std::vector<Leaf> leaves;
    collect(columns, condition, leaves);
    std::size_t next = 0;
    const Flags holds = join(condition, leaves, next);
    const auto& times = columns.times();
    const double wait = waitSeconds(rule.retriggerMinutes);
    double until = -std::numeric_limits<double>::infinity();
    for (std::size_t row = 0; row < columns.rows(); ++row) {
        if (!holds[row]) continue;
        ++result.heldRows;
        if (row == 0 || !holds[row - 1]) result.held.push_back({times[row], times[row]});
        result.held.back().to = times[row];
        if (rule.onlyOnChange || until - times[row] > 0) continue;
        result.fires.push_back(times[row]);
        until = times[row] + wait;
    }
    if (rule.onlyOnChange) fireOnChange(columns, condition, leaves, wait, result.fires);
    return result;
}

}  // namespace vigil
