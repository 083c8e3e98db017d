#include "conditions/Binder.hpp"

#include <cmath>
#include <limits>

#include "conditions/Relation.hpp"

namespace vigil {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isNumeric(const ConditionNode& node) {
    return node.comparison() && node.comparison()->member != ComparisonMember::StringValue;
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
    if (node.isCompound())
        compound(node, exits);
    else if (isNumeric(node))
        numbers(&node, 1, Connective::And, exits);
    else
        text(*node.comparison(), exits);
}

void Binder::compound(const ConditionNode& node, Exits exits) {
    const auto& parts = node.parts();
    for (std::size_t i = 0; i < parts.size();) {
        std::size_t end = i;
        while (end < parts.size() && isNumeric(parts[end]))
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
            numbers(&parts[i], count, node.connective(), here);
        if (!last) place(here.next);
        i += count;
    }
}

void Binder::numbers(const ConditionNode* first, std::size_t count, Connective connective, Exits exits) {
    const std::size_t start = m_bound.m_numbers.size();
    const bool opposite = connective == Connective::Or;
    for (std::size_t i = 0; i < count; ++i) {
        BoundCondition::NumberTest test = numberTest(*first[i].comparison());
        if (opposite) test.negated = !test.negated;
        m_bound.m_numbers.push_back(test);
    }
    const Label yes = opposite ? exits.whenFalse : exits.whenTrue;
    const Label no = opposite ? exits.whenTrue : exits.whenFalse;
    step(BoundCondition::StepKind::Numbers, start, count, yes, no, exits.next);
}

BoundCondition::NumberTest Binder::numberTest(const Comparison& comparison) const {
    using enum ComparisonOperator;
    const double literal = numberOf(comparison.literal);
    BoundCondition::NumberTest test{.low = -kInfinity,
                                    .high = kInfinity,
                                    .member = comparison.member == ComparisonMember::Value
                                                  ? &AgentProperty::Parts::value
                                                  : &AgentProperty::Parts::unitValue,
                                    .slot = 0,
                                    .negated = comparison.op == NotEqual};
    switch (comparison.op) {
        case Equal:
        case NotEqual:
            test.low = test.high = literal;
            break;
        case Less:
            test.high = std::nextafter(literal, -kInfinity);
            break;
        case LessOrEqual:
            test.high = literal;
            break;
        case Greater:
            test.low = std::nextafter(literal, kInfinity);
            break;
        case GreaterOrEqual:
            test.low = literal;
            break;
    }
    if (const auto slot = m_table.slot(comparison.key)) {
        test.slot = *slot;
    } else {
        test.low = kInfinity;  // an interval that holds nothing, whatever stands in the slot
        test.high = -kInfinity;
    }
    return test;
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
