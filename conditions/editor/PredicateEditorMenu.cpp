#include "conditions/editor/PredicateEditorMenu.hpp"

#include <algorithm>

#include "conditions/ConditionPredicate.hpp"

namespace vigil {

std::string_view operatorTitle(ComparisonOperator op) {
    switch (op) {
        case ComparisonOperator::Equal:
            return "is";
        case ComparisonOperator::NotEqual:
            return "is not";
        case ComparisonOperator::Less:
            return "is less than";
        case ComparisonOperator::LessOrEqual:
            return "is less than or equal to";
        case ComparisonOperator::Greater:
            return "is greater than";
        case ComparisonOperator::GreaterOrEqual:
            return "is greater than or equal to";
    }
    return {};
}

std::string_view connectiveTitle(Connective connective) {
    return connective == Connective::And ? "all of these" : "any of these";
}

namespace {

ComparisonMember memberOf(AttributeType type) {
    switch (type) {
        case AttributeType::String:
            return ComparisonMember::StringValue;
        case AttributeType::Date:
            return ComparisonMember::Value;
        case AttributeType::Double:
            break;
    }
    return ComparisonMember::UnitValue;
}

std::string_view sampleLiteral(ComparisonMember member) {
    switch (member) {
        case ComparisonMember::StringValue:
            return "\"\"";
        case ComparisonMember::Value:
            return "CAST(0, \"NSDate\")";
        case ComparisonMember::UnitValue:
            break;
    }
    return "0";
}

ComparisonOperator operatorOf(PredicateOperatorType type) {
    switch (type) {
        case PredicateOperatorType::LessThan:
            return ComparisonOperator::Less;
        case PredicateOperatorType::LessThanOrEqualTo:
            return ComparisonOperator::LessOrEqual;
        case PredicateOperatorType::GreaterThan:
            return ComparisonOperator::Greater;
        case PredicateOperatorType::GreaterThanOrEqualTo:
            return ComparisonOperator::GreaterOrEqual;
        case PredicateOperatorType::EqualTo:
            return ComparisonOperator::Equal;
        case PredicateOperatorType::NotEqualTo:
            break;
    }
    return ComparisonOperator::NotEqual;
}

/// The key, where the language takes the key path on the left of such a literal.
std::optional<std::string> keyOf(const std::string& keyPath, ComparisonMember member) {
    const auto sample =
        ConditionPredicate::predicateWithFormat(keyPath + " == " + std::string(sampleLiteral(member)));
    const Comparison* said = sample ? sample.value()->tree().comparison() : nullptr;
    if (!said || keyPath != said->key + "." + std::string(memberText(member))) return std::nullopt;
    return said->key;
}

template <class T>
void addOnce(std::vector<T>& to, T value) {
    if (std::find(to.begin(), to.end(), value) == to.end()) to.push_back(value);
}

std::string keyPathOf(const std::string& key, ComparisonMember member) {
    return key + "." + std::string(memberText(member));
}

}  // namespace

PredicateEditorMenu::PredicateEditorMenu(const Templates& templates) {
    for (const auto& one : templates) {
        if (!one) continue;
        if (one->isCompound())
            addCompound(*one);
        else
            addComparison(*one);
    }
}

void PredicateEditorMenu::addCompound(const PredicateEditorRowTemplate& from) {
    for (const CompoundPredicateType type : from.compoundTypes())
        addOnce(m_connectives, type == CompoundPredicateType::And ? Connective::And : Connective::Or);
}

void PredicateEditorMenu::addComparison(const PredicateEditorRowTemplate& from) {
    const ComparisonMember member = memberOf(from.rightExpressionAttributeType());
    for (const PredicateOperatorType type : from.operators())
        addOnce(m_operators[static_cast<std::size_t>(member)], operatorOf(type));
    for (const PredicateEditorMenuItem& item : from.itemArray()) {
        const std::string& keyPath = item.representedObject().keyPath();
        auto key = keyOf(keyPath, member);
        if (!key) continue;
        m_places.try_emplace(keyPath, m_properties.size());
        m_properties.push_back({item.title(), std::move(*key), member});
    }
}

std::optional<std::size_t> PredicateEditorMenu::propertyOf(const Comparison& comparison) const {
    const auto found = m_places.find(keyPathOf(comparison.key, comparison.member));
    if (found == m_places.end()) return std::nullopt;
    return found->second;
}

const std::vector<ComparisonOperator>& PredicateEditorMenu::operatorsOf(ComparisonMember member) const {
    return m_operators[static_cast<std::size_t>(member)];
}

}  // namespace vigil
