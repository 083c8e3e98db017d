#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "conditions/BindingCache.hpp"
#include "conditions/ConditionNode.hpp"
#include "conditions/SyntaxError.hpp"
#include "host_contract/EvaluationDictionary.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A monitor's condition: comparisons of readings with literals, joined by AND and OR.
///
///     windChill.unitValue < 10 OR windSpeed.unitValue > 25
///     (rain.stringValue == "Rain" AND sunset.value < CAST(725803200, "NSDate")) OR uv.unitValue >= 8e0
///
/// A key path is a key (an ASCII letter, then letters, digits and "_"; not AND, OR or CAST), a dot and
/// unitValue, stringValue or value, without blanks. Operators are == != < <= > >= for every member. The
/// literal is a decimal number after unitValue, a double-quoted text after stringValue (escapes \\ \" \' \n
/// \r \t; any other byte stands for itself, also 0 and bytes that are no UTF-8), a date in seconds since
/// 2001-01-01 00:00:00 UTC after value. AND binds closer than OR. Blanks and tabs are free between tokens.
/// No condition: "windChill < 10" (no member), "windChill.unitValue < .5", "windChill.unitValue == \"10\"".
///
/// A reading that is not there is no value: == and the orderings are false, != is true; so it is for NaN.
/// Texts compare exactly and order by code point, numbers and dates as doubles.
///
/// A condition never changes once made; judging is safe from any thread. One fresh from the constructor waits
/// for `initWithCoder`; until then it is empty: it prints as an empty text and never holds.
class VIGIL_KIT ConditionPredicate final : public Object {
  public:
    ConditionPredicate();
    ~ConditionPredicate() override;

    /// The condition that a text says, or why it says none. Refuses texts longer than kMaxTextBytes or nested
    /// deeper than kMaxParenthesisDepth, as given or as printed. (Keyword form: predicateWithFormat:)
    static Result<std::shared_ptr<ConditionPredicate>, SyntaxError> predicateWithFormat(
        std::string_view text);

    /// The condition that a tree says. Refuses one that would not read back as itself (a key that is no key,
    /// a literal that does not fit its member, a number that is not finite), with the place in its printed
    /// form.
    static Result<std::shared_ptr<ConditionPredicate>, SyntaxError> predicateWithTree(ConditionNode tree);

    /// Whether it holds. Looks no name up and allocates nothing once it has met the readings' table; the last
    /// few tables are remembered. (Keyword form: evaluateWithObject:)
    bool evaluateWithObject(const ReadingsView& readings) const { return m_bindings.holds(readings); }
    bool evaluateWithObject(const EvaluationDictionary& readings) const {
        return evaluateWithObject(readings.view());
    }

    /// The condition bound to a table, for whoever judges many batches of it: judging then takes no lock
    /// either. Nothing where the condition is empty.
    std::shared_ptr<const BoundCondition> binding(const KeyTable& table) const {
        return m_bindings.binding(table);
    }

    /// The canonical text; `predicateWithFormat` of it gives an equal condition.
    const std::string& printed() const { return m_printed; }
    /// Nothing in an empty condition, which comes only of the constructor.
    const std::optional<ConditionNode>& optionalTree() const { return m_tree; }
    /// The tree. Asked of an empty condition: std::bad_optional_access.
    const ConditionNode& tree() const { return m_tree.value(); }

    std::string className() const override;
    /// The printed form.
    std::string description() const override;
    /// Whether the other is a condition with an equal tree.
    bool isEqual(const Object* other) const override;
    /// Archived as its printed form under "text".
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

  private:
    void adopt(ConditionNode tree, std::string printed);

    std::optional<ConditionNode> m_tree;
    std::string m_printed;
    BindingCache m_bindings;
};

}  // namespace vigil
