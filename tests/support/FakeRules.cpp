#include "tests/support/FakeRules.hpp"

namespace vigil::test {
namespace {

const RuleNode& node(const std::shared_ptr<Object>& criterion) {
    return dynamic_cast<const RuleNode&>(*criterion);
}

std::string text(const DisplayValue& value) {
    const auto typed = stringValue(value);
    if (std::holds_alternative<std::shared_ptr<TextField>>(value)) return "[" + *typed + "]";
    return typed.value_or(std::holds_alternative<std::monostate>(value) ? "nothing" : "---");
}

}  // namespace

std::string RuleNode::className() const {
    return "RuleNode";
}

bool RuleNode::isEqual(const Object* other) const {
    const auto* compared = dynamic_cast<const RuleNode*>(other);
    return compared && !name.empty() && compared->name == name;
}

std::shared_ptr<RuleNode> ruleNode(std::string name, RuleNodes children) {
    auto made = std::make_shared<RuleNode>();
    made->name = std::move(name);
    made->children = std::move(children);
    return made;
}

std::shared_ptr<RuleNode> ruleField() {
    auto made = std::make_shared<RuleNode>();
    made->shows = RuleNode::Shows::Field;
    return made;
}

std::shared_ptr<RuleNode> ruleSeparator() {
    auto made = std::make_shared<RuleNode>();
    made->shows = RuleNode::Shows::Separator;
    return made;
}

void FakeRules::answering(RuleEditor& editor) {
    if (const auto call = std::exchange(onAnswer, nullptr)) call(editor);
}

std::int64_t FakeRules::ruleEditorNumberOfChildrenForCriterion(RuleEditor& editor,
                                                               const std::shared_ptr<Object>& criterion,
                                                               RuleEditorRowType) {
    answering(editor);
    return static_cast<std::int64_t>((criterion ? node(criterion).children : roots).size());
}

std::shared_ptr<Object> FakeRules::ruleEditorChildForCriterion(RuleEditor& editor, std::int64_t index,
                                                               const std::shared_ptr<Object>& criterion,
                                                               RuleEditorRowType) {
    answering(editor);
    return (criterion ? node(criterion).children : roots).at(static_cast<std::size_t>(index));
}

DisplayValue FakeRules::ruleEditorDisplayValueForCriterion(RuleEditor& editor,
                                                           const std::shared_ptr<Object>& criterion,
                                                           std::int64_t) {
    answering(editor);
    switch (node(criterion).shows) {
        case RuleNode::Shows::Field:
            return std::make_shared<TextField>();
        case RuleNode::Shows::Separator:
            return MenuItem::separatorItem();
        case RuleNode::Shows::Name:
            break;
    }
    return node(criterion).name;
}

void FakeRules::ruleEditorRowsDidChange(const Notification& heard) {
    ++changes;
    changed = heard.object;
    notification = heard.name;
    if (onChange) onChange();
}

std::string shown(const RuleEditor& editor) {
    std::string rows;
    for (std::int64_t row = 0; row < editor.numberOfRows(); ++row) {
        std::string columns;
        for (const DisplayValue& value : editor.displayValuesForRow(row))
            columns += (columns.empty() ? "" : " > ") + text(value);
        rows += (row == 0 ? "" : " | ") + columns;
    }
    return rows;
}

}  // namespace vigil::test
