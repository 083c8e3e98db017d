#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/Date.hpp"
#include "platform/Export.hpp"

namespace vigil {

/// What of a reading a comparison looks at.
enum class ComparisonMember { UnitValue, StringValue, Value };
enum class ComparisonOperator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
enum class Connective { And, Or };

/// "unitValue", "stringValue", "value"
VIGIL_KIT std::string_view memberText(ComparisonMember member);
/// "==", "!=", "<", "<=", ">", ">="
VIGIL_KIT std::string_view operatorText(ComparisonOperator op);
/// "AND", "OR"
VIGIL_KIT std::string_view connectiveText(Connective connective);

/// A number with unitValue, a text with stringValue, a date with value.
using ComparisonLiteral = std::variant<double, std::string, Date>;

/// "windChill.unitValue < 10"
struct VIGIL_KIT Comparison {
    std::string key;
    ComparisonMember member = ComparisonMember::UnitValue;
    ComparisonOperator op = ComparisonOperator::Equal;
    ComparisonLiteral literal;

    /// Numbers bit by bit, so that equal comparisons print equally (0 and -0 differ).
    friend VIGIL_KIT bool operator==(const Comparison& a, const Comparison& b);
};

/// A condition as a tree: a comparison, or at least two parts joined by one connective. A value: it does not
/// change once made, and a copy is independent. Any thread.
class VIGIL_KIT ConditionNode {
  public:
    explicit ConditionNode(Comparison comparison);

    /// The parts joined; one part alone is that part itself. No part at all is std::invalid_argument; parts
    /// that nest deeper than a printed condition may (`depth` above kMaxParenthesisDepth + 1) are
    /// std::length_error.
    static ConditionNode compound(Connective connective, std::vector<ConditionNode> parts);

    /// The comparison, or nothing when this is a compound.
    const Comparison* comparison() const { return std::get_if<Comparison>(&m_held); }
    bool isCompound() const { return m_held.index() == 1; }
    /// Of a compound; a comparison answers `And` and no parts.
    Connective connective() const;
    const std::vector<ConditionNode>& parts() const;

    /// How many compounds lie one in another, this one counted; 0 for a comparison.
    std::size_t depth() const { return m_depth; }

    friend VIGIL_KIT bool operator==(const ConditionNode& a, const ConditionNode& b);

  private:
    struct Compound {
        Connective connective;
        std::vector<ConditionNode> parts;
    };
    explicit ConditionNode(Compound compound, std::size_t depth);

    std::variant<Comparison, Compound> m_held;
    std::size_t m_depth = 0;
};

}  // namespace vigil
