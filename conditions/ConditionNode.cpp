#include "conditions/ConditionNode.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "conditions/Limits.hpp"

namespace vigil {

std::string_view memberText(ComparisonMember member) {
    switch (member) {
        case ComparisonMember::UnitValue:
            return "unitValue";
        case ComparisonMember::StringValue:
            return "stringValue";
        case ComparisonMember::Value:
            return "value";
    }
    return {};
}

std::string_view operatorText(ComparisonOperator op) {
    switch (op) {
        case ComparisonOperator::Equal:
            return "==";
        case ComparisonOperator::NotEqual:
            return "!=";
        case ComparisonOperator::Less:
            return "<";
        case ComparisonOperator::LessOrEqual:
            return "<=";
        case ComparisonOperator::Greater:
            return ">";
        case ComparisonOperator::GreaterOrEqual:
            return ">=";
    }
    return {};
}

std::string_view connectiveText(Connective connective) {
    return connective == Connective::And ? "AND" : "OR";
}

namespace {

bool sameBits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

bool sameLiteral(const ComparisonLiteral& a, const ComparisonLiteral& b) {
    if (a.index() != b.index()) return false;
    if (const auto* number = std::get_if<double>(&a)) return sameBits(*number, std::get<double>(b));
    if (const auto* date = std::get_if<Date>(&a))
        return sameBits(date->secondsSinceReference(), std::get<Date>(b).secondsSinceReference());
    return std::get<std::string>(a) == std::get<std::string>(b);
}

}  // namespace

bool operator==(const Comparison& a, const Comparison& b) {
    return a.member == b.member && a.op == b.op && a.key == b.key && sameLiteral(a.literal, b.literal);
}

ConditionNode::ConditionNode(Comparison comparison) : m_held(std::move(comparison)) {}

ConditionNode::ConditionNode(Compound compound, std::size_t depth)
    : m_held(std::move(compound)), m_depth(depth) {}

ConditionNode ConditionNode::compound(Connective connective, std::vector<ConditionNode> parts) {
    if (parts.empty()) throw std::invalid_argument("a compound condition without parts");
    if (parts.size() == 1) return std::move(parts.front());
    std::size_t depth = 0;
    for (const ConditionNode& part : parts)
        depth = std::max(depth, part.depth());
    // The outermost compound prints without parentheses. Whoever walks a tree, its destructor included, may
    // rely on this bound.
    if (depth > kMaxParenthesisDepth) throw std::length_error("a condition nested too deeply");
    return ConditionNode(Compound{connective, std::move(parts)}, depth + 1);
}

Connective ConditionNode::connective() const {
    const auto* compound = std::get_if<Compound>(&m_held);
    return compound ? compound->connective : Connective::And;
}

const std::vector<ConditionNode>& ConditionNode::parts() const {
    static const std::vector<ConditionNode> none;
    const auto* compound = std::get_if<Compound>(&m_held);
    return compound ? compound->parts : none;
}

bool operator==(const ConditionNode& a, const ConditionNode& b) {
    if (a.m_held.index() != b.m_held.index() || a.m_depth != b.m_depth) return false;
    if (const Comparison* comparison = a.comparison()) return *comparison == *b.comparison();
    return a.connective() == b.connective() && a.parts() == b.parts();
}

}  // namespace vigil
