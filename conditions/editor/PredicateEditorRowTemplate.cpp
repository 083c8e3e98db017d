#include "conditions/editor/PredicateEditorRowTemplate.hpp"

namespace vigil {

std::shared_ptr<PredicateEditorRowTemplate> PredicateEditorRowTemplate::initWithLeftExpressions(
    Expressions leftExpressions, AttributeType rightExpressionAttributeType,
    ComparisonPredicateModifier modifier, Operators operators, ComparisonPredicateOptions options) {
    auto made = std::make_shared<PredicateEditorRowTemplate>();
    for (KeyPathExpression& expression : leftExpressions)
        made->m_items.emplace_back(std::move(expression));
    made->m_rightType = rightExpressionAttributeType;
    made->m_modifier = modifier;
    made->m_operators = std::move(operators);
    made->m_options = options;
    return made;
}

std::shared_ptr<PredicateEditorRowTemplate> PredicateEditorRowTemplate::initWithCompoundTypes(
    CompoundTypes compoundTypes) {
    auto made = std::make_shared<PredicateEditorRowTemplate>();
    made->m_compoundTypes = std::move(compoundTypes);
    return made;
}

std::string PredicateEditorRowTemplate::className() const {
    return "PredicateEditorRowTemplate";
}

}  // namespace vigil
