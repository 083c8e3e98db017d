#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conditions/editor/PredicateEditor.hpp"

namespace vigil {

/// An editor that offers two numbers, a text and a date, and counts what its observers hear.
struct EditorBench {
    using Template = PredicateEditorRowTemplate;
    using Op = PredicateOperatorType;

    static std::shared_ptr<Template> comparing(
        AttributeType type, Template::Operators operators,
        const std::vector<std::pair<std::string, std::string>>& items) {
        Template::Expressions expressions;
        for (const auto& [keyPath, title] : items)
            expressions.push_back(KeyPathExpression::expressionForKeyPath(keyPath));
        auto made = Template::initWithLeftExpressions(std::move(expressions), type,
                                                      ComparisonPredicateModifier::Direct,
                                                      std::move(operators), ComparisonPredicateOptions::None);
        for (std::size_t i = 0; i < items.size(); ++i)
            made->itemArray()[i].setTitle(items[i].second);
        return made;
    }

    static PredicateEditor::Templates templates() {
        return {Template::initWithCompoundTypes({CompoundPredicateType::And, CompoundPredicateType::Or}),
                comparing(AttributeType::Double,
                          {Op::EqualTo, Op::LessThan, Op::GreaterThan, Op::LessThanOrEqualTo,
                           Op::GreaterThanOrEqualTo},
                          {{"windChill.unitValue", "Wind chill"}, {"windSpeed.unitValue", "Wind speed"}}),
                comparing(AttributeType::String, {Op::EqualTo, Op::NotEqualTo}, {{"sky.stringValue", "Sky"}}),
                comparing(AttributeType::Date, {Op::EqualTo, Op::NotEqualTo}, {{"sunset.value", "Sunset"}})};
    }

    static std::shared_ptr<ConditionPredicate> parsed(std::string_view text) {
        auto condition = ConditionPredicate::predicateWithFormat(text);
        if (!condition) throw std::invalid_argument(std::string(text));
        return condition.value();
    }

    EditorBench() {
        editor->setRowTemplates(templates());
        m_edits = editor->observeEdits([this] { ++edits; });
        m_changes = editor->observe([this] { ++changes; });
    }

    void show(std::string_view text) { editor->setObjectValue(parsed(text)); }
    /// The condition, or "nothing".
    std::string says() const { return editor->objectValue() ? editor->objectValue()->printed() : "nothing"; }
    /// "    Sky | is | Rain", two blanks a level.
    std::vector<std::string> lines() const {
        std::vector<std::string> all;
        for (const PredicateEditorRow& row : editor->rows()) {
            std::string line(2 * row.depth, ' ');
            line += row.popUps[0].shown;
            if (!row.isGroup) line += " | " + row.popUps[1].shown + " | " + row.valueText;
            all.push_back(std::move(line));
        }
        return all;
    }

    std::shared_ptr<PredicateEditor> editor = std::make_shared<PredicateEditor>();
    int edits = 0;
    int changes = 0;

  private:
    PredicateEditor::Token m_edits;
    PredicateEditor::Token m_changes;
};

}  // namespace vigil
