#include "conditions/Binder.hpp"

#include <cmath>
#include <limits>
#include <utility>

#include "conditions/Relation.hpp"

namespace vigil {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

bool isOrdering(const ConditionNode& node) {
    const Comparison* comparison = node.comparison();
    return comparison && comparison->member != ComparisonMember::StringValue &&
           comparison->op != ComparisonOperator::Equal && comparison->op != ComparisonOperator::NotEqual;
}

double numberOf(const ComparisonLiteral& literal) {
    if (const auto* date = std::get_if<Date>(&literal)) return date->secondsSinceReference();
    return std::get<double>(literal);
}

}  // namespace

void Binder::bind(const ConditionNode& tree) {
    const Label whenTrue = newLabel();
    const Label whenFalse = newLabel();
    node(tree, {whenTrue, whenFalse, whenTrue});
    place(whenTrue);
    m_bound.m_steps.push_back({.kind = BoundCondition::StepKind::True});
    place(whenFalse);
    m_bound.m_steps.push_back({.kind = BoundCondition::StepKind::False});
    for (BoundCondition::Step& step : m_bound.m_steps)
        step.target = m_places[step.target];
}

void Binder::node(const ConditionNode& node, Exits exits) {
    const Comparison* comparison = node.comparison();
    if (!comparison)
        compound(node, exits);
    else if (comparison->member == ComparisonMember::StringValue)
        text(*comparison, exits);
    else if (isOrdering(node))
        orderings(&node, 1, Connective::And, exits);
    else
        equality(*comparison, exits);
}

void Binder::compound(const ConditionNode& node, Exits exits) {
    const auto& parts = node.parts();
    for (std::size_t i = 0; i < parts.size();) {
        std::size_t end = i;
        while (end < parts.size() && isOrdering(parts[end]))
            ++end;
        const std::size_t count = end == i ? 1 : end - i;
        Exits here = exits;
        const bool last = i + count == parts.size();
        if (!last) {
            here.next = newLabel();
            (node.connective() == Connective::And ? here.whenTrue : here.whenFalse) = here.next;
        }
        if (end == i)
            this->node(parts[i], here);
        else
            orderings(&parts[i], count, node.connective(), here);
        if (!last) place(here.next);
        i += count;
    }
}

void Binder::orderings(const ConditionNode* first, std::size_t count, Connective connective, Exits exits) {
    const std::size_t start = m_bound.m_numbers.size();
    for (std::size_t i = 0; i < count; ++i) {
        const Comparison& comparison = *first[i].comparison();
        numberTest(comparison, comparison.op);
    }
    const bool all = connective == Connective::And;
    step(all ? BoundCondition::StepKind::AllNumbers : BoundCondition::StepKind::AnyNumber, start, count,
         exits.whenTrue, exits.whenFalse, exits.next);
}

// Equal is neither above nor below; unequal is what is not equal, no value included.
void Binder::equality(const Comparison& comparison, Exits exits) {
    const std::size_t start = m_bound.m_numbers.size();
    numberTest(comparison, ComparisonOperator::LessOrEqual);
    numberTest(comparison, ComparisonOperator::GreaterOrEqual);
    if (comparison.op == ComparisonOperator::NotEqual) std::swap(exits.whenTrue, exits.whenFalse);
    step(BoundCondition::StepKind::AllNumbers, start, 2, exits.whenTrue, exits.whenFalse, exits.next);
}

void Binder::numberTest(const Comparison& comparison, ComparisonOperator ordering) {
    using enum ComparisonOperator;
    const double literal = numberOf(comparison.literal);
    const auto slot = m_table.slot(comparison.key);
    // x > a says the same as -x < -a, and x < a that x is at most the next number below a.
    const bool turned = ordering == Greater || ordering == GreaterOrEqual;
    const bool strict = ordering == Greater || ordering == Less;
    const double bound = turned ? -literal : literal;
    m_bound.m_numbers.push_back({.bound = !slot    ? kNaN
                                          : strict ? std::nextafter(bound, -kInfinity)
                                                   : bound,
                                 .signFlip = turned ? kSignBit : 0,
                                 .member = comparison.member == ComparisonMember::Value
                                               ? &AgentProperty::Parts::value
                                               : &AgentProperty::Parts::unitValue,
                                 .slot = slot.value_or(0)});
}

void Binder::text(const Comparison& comparison, Exits exits) {
    m_bound.m_texts.push_back({.literal = std::get<std::string>(comparison.literal),
                               .slot = m_table.slot(comparison.key).value_or(BoundCondition::kNoSlot),
                               .wanted = wantedRelations(comparison.op)});
    step(BoundCondition::StepKind::Text, m_bound.m_texts.size() - 1, 1, exits.whenTrue, exits.whenFalse,
         exits.next);
}

void Binder::step(BoundCondition::StepKind kind, std::size_t first, std::size_t count, Label yes, Label no,
                  Label next) {
    const bool jumpWhen = yes != next;
    m_bound.m_steps.push_back({.kind = kind,
                               .jumpWhen = jumpWhen,
                               .first = static_cast<std::uint32_t>(first),
                               .count = static_cast<std::uint32_t>(count),
                               .target = jumpWhen ? yes : no});
}

Binder::Label Binder::newLabel() {
    m_places.push_back(0);
    return static_cast<Label>(m_places.size() - 1);
}

void Binder::place(Label label) {
    m_places[label] = static_cast<std::uint32_t>(m_bound.m_steps.size());
}

}  // namespace vigil
