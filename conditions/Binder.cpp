#include "conditions/Binder.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "conditions/Relation.hpp"

namespace vigil {
namespace {

bool isOrdering(const ConditionNode& node) {
    const Comparison* comparison = node.comparison();
    return comparison && comparison->member != ComparisonMember::StringValue &&
           comparison->op != ComparisonOperator::Equal && comparison->op != ComparisonOperator::NotEqual;
}

// How many parts from `first` on are orderings of one member.
std::size_t runLength(const std::vector<ConditionNode>& parts, std::size_t first) {
    std::size_t end = first;
    while (end < parts.size() && isOrdering(parts[end]) &&
           parts[end].comparison()->member == parts[first].comparison()->member)
        ++end;
    return end - first;
}

StepKind kindOf(ComparisonMember member, Connective connective) {
    const bool all = connective == Connective::And;
    if (member == ComparisonMember::Value) return all ? StepKind::AllValues : StepKind::AnyValue;
    return all ? StepKind::AllUnitValues : StepKind::AnyUnitValue;
}

NumberTest numberTest(const Comparison& comparison, ComparisonOperator ordering, const KeyTable& table) {
    using enum ComparisonOperator;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const auto* date = std::get_if<Date>(&comparison.literal);
    const double literal = date ? date->secondsSinceReference() : std::get<double>(comparison.literal);
    // x < a says the same as -x > -a, and x > a that x is at least the next number above a.
    const bool turned = ordering == Less || ordering == LessOrEqual;
    double bound = turned ? -literal : literal;
    if (ordering == Less || ordering == Greater) bound = std::nextafter(bound, kInfinity);
    const auto slot = table.slot(comparison.key);
    if (!slot) bound = std::numeric_limits<double>::quiet_NaN();
    return {.sign = turned ? -1.0 : 1.0, .bound = bound, .slot = slot.value_or(0)};
}

class Binder {
  public:
    explicit Binder(const KeyTable& table) : m_table(table) {}

    Program bind(const ConditionNode& tree);

  private:
    // Where to go on after a node: an end of the program, or a label, a place that is not known yet.
    struct Exits {
        Place whenTrue;
        Place whenFalse;
    };

    void node(const ConditionNode& node, Exits exits);
    void compound(const ConditionNode& node, Exits exits);
    void orderings(const ConditionNode* nodes, std::size_t count, Connective connective, Exits exits);
    void equality(const Comparison& comparison, Exits exits);
    void text(const Comparison& comparison, Exits exits);
    void step(StepKind kind, std::size_t first, std::size_t end, Exits exits);

    Place newLabel();
    void settle(Place& target) const;

    const KeyTable& m_table;
    Program m_program;
    std::vector<Place> m_places;  // of each label
};

Program Binder::bind(const ConditionNode& tree) {
    node(tree, {kHolds, kFails});
    for (Step& step : m_program.steps) {
        settle(step.whenTrue);
        settle(step.whenFalse);
    }
    m_program.start = 0;
    return std::move(m_program);
}

void Binder::node(const ConditionNode& node, Exits exits) {
    const Comparison* comparison = node.comparison();
    if (!comparison) {
        compound(node, exits);
    } else if (comparison->member == ComparisonMember::StringValue) {
        text(*comparison, exits);
    } else if (isOrdering(node)) {
        orderings(&node, 1, Connective::And, exits);
    } else {
        equality(*comparison, exits);
    }
}

// The depth of a tree is bounded, and with it that of these calls.
void Binder::compound(const ConditionNode& node, Exits exits) {
    const auto& parts = node.parts();
    for (std::size_t i = 0; i < parts.size();) {
        const std::size_t run = runLength(parts, i);
        const std::size_t after = i + std::max<std::size_t>(run, 1);
        const bool last = after == parts.size();
        Exits here = exits;
        const Place next = last ? kFails : newLabel();
        if (!last) (node.connective() == Connective::And ? here.whenTrue : here.whenFalse) = next;
        if (run > 0)
            orderings(&parts[i], run, node.connective(), here);
        else
            this->node(parts[i], here);
        if (!last) m_places[next] = static_cast<Place>(m_program.steps.size());
        i = after;
    }
}

void Binder::orderings(const ConditionNode* nodes, std::size_t count, Connective connective, Exits exits) {
    auto& tests = m_program.numbers;
    const std::size_t first = tests.size();
    for (std::size_t i = 0; i < count; ++i)
        tests.push_back(numberTest(*nodes[i].comparison(), nodes[i].comparison()->op, m_table));
    step(kindOf(nodes->comparison()->member, connective), first, tests.size(), exits);
}

// Equal is at most and at least; unequal is what is not equal, no value included.
void Binder::equality(const Comparison& comparison, Exits exits) {
    auto& tests = m_program.numbers;
    const std::size_t first = tests.size();
    tests.push_back(numberTest(comparison, ComparisonOperator::LessOrEqual, m_table));
    tests.push_back(numberTest(comparison, ComparisonOperator::GreaterOrEqual, m_table));
    if (comparison.op == ComparisonOperator::NotEqual) std::swap(exits.whenTrue, exits.whenFalse);
    step(kindOf(comparison.member, Connective::And), first, tests.size(), exits);
}

void Binder::text(const Comparison& comparison, Exits exits) {
    auto& tests = m_program.texts;
    tests.push_back({.literal = std::get<std::string>(comparison.literal),
                     .slot = m_table.slot(comparison.key).value_or(TextTest::kNoSlot),
                     .wanted = wantedRelations(comparison.op)});
    step(StepKind::Text, tests.size() - 1, tests.size(), exits);
}

void Binder::step(StepKind kind, std::size_t first, std::size_t end, Exits exits) {
    m_program.steps.push_back({.kind = kind,
                               .first = static_cast<std::uint32_t>(first),
                               .end = static_cast<std::uint32_t>(end),
                               .whenTrue = exits.whenTrue,
                               .whenFalse = exits.whenFalse});
}

Place Binder::newLabel() {
    m_places.push_back(kFails);
    return static_cast<Place>(m_places.size() - 1);
}

void Binder::settle(Place& target) const {
    if (target < kFails) target = m_places[target];
}

}  // namespace

Program boundProgram(const ConditionNode& tree, const KeyTable& table) {
    return Binder(table).bind(tree);
}

}  // namespace vigil
