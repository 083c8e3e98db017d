#include "host/kit/InterfaceFile_Controls.hpp"

#include <optional>
#include <string>
#include <utility>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/editor/PredicateEditor.hpp"
#include "platform/Button.hpp"
#include "platform/Controls.hpp"
#include "platform/RuleEditor.hpp"

namespace vigil {
namespace {

using Call = std::function<void()>;
using Token = std::shared_ptr<const void>;

template <class T>
bool is(const Object& object) {
    return dynamic_cast<const T*>(&object) != nullptr;
}

std::shared_ptr<Object> makePopUpButton(const InterfaceWidget& widget) {
    auto popUp = std::make_shared<PopUpButton>();
    for (const std::string& title : widget.items)
        popUp->addItemWithTitle(title);
    if (!widget.currentIndex) return popUp;
    const auto index = static_cast<std::size_t>(*widget.currentIndex);
    // An index of no item, -1 among them, selects nothing; so does a title that no item bears.
    popUp->selectItemWithTitle(index < widget.items.size() ? widget.items[index] : std::string());
    return popUp;
}

std::shared_ptr<Object> makeButton(const InterfaceWidget& widget) {
    auto button = std::make_shared<Button>(widget.text);
    button->setState(widget.checked);
    return button;
}

bool isText(const Value& value) {
    return value.isNothing() || value.as<std::string>();
}

std::string textOf(const Value& value) {
    const auto* text = value.as<std::string>();
    return text ? *text : std::string();
}

std::shared_ptr<ConditionPredicate> conditionOf(const Value& value) {
    const auto* object = value.as<std::shared_ptr<Object>>();
    return object ? std::dynamic_pointer_cast<ConditionPredicate>(*object) : nullptr;
}

constexpr ControlValue kFieldText = {
    "text", &isText,
    [](const Object& control) { return Value(dynamic_cast<const TextField&>(control).stringValue()); },
    [](Object& control, const Value& value) {
        auto& field = dynamic_cast<TextField&>(control);
        if (field.stringValue() != textOf(value)) field.setStringValue(textOf(value));
    },
    [](Object& control, Call call) -> Token {
        return dynamic_cast<TextField&>(control).stringValueProperty().observe(std::move(call));
    }};

constexpr ControlValue kSelectedTitle = {
    "text", &isText,
    [](const Object& control) {
        return Value(dynamic_cast<const PopUpButton&>(control).titleOfSelectedItem().value_or(""));
    },
    [](Object& control, const Value& value) {
        auto& popUp = dynamic_cast<PopUpButton&>(control);
        if (popUp.titleOfSelectedItem().value_or("") != textOf(value))
            popUp.selectItemWithTitle(textOf(value));
    },
    [](Object& control, Call call) -> Token {
        return dynamic_cast<PopUpButton&>(control).selectionProperty().observe(std::move(call));
    }};

constexpr ControlValue kState = {
    "flag", [](const Value& value) { return value.as<bool>() != nullptr; },
    [](const Object& control) { return Value(dynamic_cast<const Button&>(control).state()); },
    [](Object& control, const Value& value) {
        auto& button = dynamic_cast<Button&>(control);
        if (const bool* on = value.as<bool>(); on && button.state() != *on) button.setState(*on);
    },
    [](Object& control, Call call) -> Token {
        return dynamic_cast<Button&>(control).stateProperty().observe(std::move(call));
    }};

constexpr ControlValue kCondition = {
    "condition", [](const Value& value) { return value.isNothing() || conditionOf(value); },
    [](const Object& control) {
        const auto& condition = dynamic_cast<const PredicateEditor&>(control).objectValue();
        return condition ? Value(std::static_pointer_cast<Object>(condition)) : Value();
    },
    [](Object& control, const Value& value) {
        dynamic_cast<PredicateEditor&>(control).setObjectValue(conditionOf(value));
    },
    // What it is given to show is no change of its own.
    [](Object& control, Call call) -> Token {
        return dynamic_cast<PredicateEditor&>(control).observeEdits(std::move(call));
    }};

}  // namespace

std::shared_ptr<Object> makeControl(const InterfaceWidget& widget) {
    if (widget.kind == "QLineEdit") return std::make_shared<TextField>(widget.text);
    if (widget.kind == "QComboBox") return makePopUpButton(widget);
    if (widget.kind == "QCheckBox" || widget.kind == "QPushButton") return makeButton(widget);
    if (widget.kind == "RuleEditor") return std::make_shared<RuleEditor>();
    if (widget.kind == "PredicateEditor") return std::make_shared<PredicateEditor>();
    return nullptr;
}

const ControlValue* controlValueOf(const Object& control) {
    if (is<TextField>(control)) return &kFieldText;
    if (is<PopUpButton>(control)) return &kSelectedTitle;
    if (is<Button>(control)) return &kState;
    if (is<PredicateEditor>(control)) return &kCondition;
    return nullptr;
}

}  // namespace vigil
