#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// What stands on the right of a comparison.
enum class AttributeType : int { Double = 600, String = 700, Date = 900 };
enum class PredicateOperatorType : int {
    LessThan = 0,
    LessThanOrEqualTo = 1,
    GreaterThan = 2,
    GreaterThanOrEqualTo = 3,
    EqualTo = 4,
    NotEqualTo = 5,
};
enum class ComparisonPredicateModifier : int { Direct = 0 };
/// How texts compare; no option is exactly, character for character.
enum class ComparisonPredicateOptions : unsigned { None = 0 };
enum class CompoundPredicateType : int { And = 1, Or = 2 };

/// The left side of a comparison: "windChill.unitValue".
class VIGIL_KIT KeyPathExpression {
  public:
    /// (Keyword form: expressionForKeyPath:)
    static KeyPathExpression expressionForKeyPath(std::string keyPath) {
        return KeyPathExpression(std::move(keyPath));
    }
    const std::string& keyPath() const { return m_keyPath; }

  private:
    explicit KeyPathExpression(std::string keyPath) : m_keyPath(std::move(keyPath)) {}
    std::string m_keyPath;
};

/// An entry of a template's left-hand menu: what people read, and the expression behind it.
class VIGIL_KIT PredicateEditorMenuItem {
  public:
    explicit PredicateEditorMenuItem(KeyPathExpression expression)
        : m_title(expression.keyPath()), m_representedObject(std::move(expression)) {}

    const std::string& title() const { return m_title; }
    void setTitle(std::string title) { m_title = std::move(title); }
    const KeyPathExpression& representedObject() const { return m_representedObject; }
    void setRepresentedObject(KeyPathExpression expression) { m_representedObject = std::move(expression); }

  private:
    std::string m_title;
    KeyPathExpression m_representedObject;
};

/// A kind of row that a condition editor offers: a comparison of one of several readings with a value of one
/// type, or a group. Main thread.
class VIGIL_KIT PredicateEditorRowTemplate : public Object {
  public:
    using Expressions = std::vector<KeyPathExpression>;
    using Operators = std::vector<PredicateOperatorType>;
    using CompoundTypes = std::vector<CompoundPredicateType>;

    /// A row that compares; its left-hand menu has one item an expression, titled with its key path.
    /// (Keyword form: initWithLeftExpressions:rightExpressionAttributeType:modifier:operators:options:)
    static std::shared_ptr<PredicateEditorRowTemplate> initWithLeftExpressions(
        Expressions leftExpressions, AttributeType rightExpressionAttributeType,
        ComparisonPredicateModifier modifier, Operators operators, ComparisonPredicateOptions options);
    /// A row that groups others. (Keyword form: initWithCompoundTypes:)
    static std::shared_ptr<PredicateEditorRowTemplate> initWithCompoundTypes(CompoundTypes compoundTypes);

    std::string className() const override;

    bool isCompound() const { return !m_compoundTypes.empty(); }
    /// In menu order; none of a row that compares.
    const CompoundTypes& compoundTypes() const { return m_compoundTypes; }
    AttributeType rightExpressionAttributeType() const { return m_rightType; }
    ComparisonPredicateModifier modifier() const { return m_modifier; }
    /// In menu order; none of a row that groups.
    const Operators& operators() const { return m_operators; }
    ComparisonPredicateOptions options() const { return m_options; }

    /// The items of the left-hand menu, which whoever makes the template may rewrite until an editor gets it;
    /// empty in a row that groups.
    std::vector<PredicateEditorMenuItem>& itemArray() { return m_items; }
    const std::vector<PredicateEditorMenuItem>& itemArray() const { return m_items; }

  private:
    std::vector<PredicateEditorMenuItem> m_items;
    AttributeType m_rightType = AttributeType::Double;
    ComparisonPredicateModifier m_modifier = ComparisonPredicateModifier::Direct;
    Operators m_operators;
    ComparisonPredicateOptions m_options = ComparisonPredicateOptions::None;
    CompoundTypes m_compoundTypes;
};

}  // namespace vigil
