#pragma once

#include <functional>
#include <memory>

#include "host/kit/InterfaceFile_Widgets.hpp"
#include "platform/Object.hpp"
#include "platform/Value.hpp"

// The models that widgets of an interface file become. Main thread.

namespace vigil {

/// The model of a widget, or nothing when the widget has none.
std::shared_ptr<Object> makeControl(const InterfaceWidget& widget);

/// How a model shows a value of its owner's: a text field its text, a pop-up button the title that is
/// selected, a button its state, a condition editor its condition.
struct ControlValue {
    const char* kind;  ///< "text": for messages
    /// Whether the control can show such a value.
    bool (*takes)(const Value&);
    Value (*shown)(const Object&);
    /// Shows what it `takes`; what it shows already changes nothing.
    void (*show)(Object&, const Value&);
    /// Calls back when the control comes to show something else by itself, while the token lives.
    std::shared_ptr<const void> (*observe)(Object&, std::function<void()>);
};

/// Nothing for a model that shows no value.
const ControlValue* controlValueOf(const Object& control);

}  // namespace vigil
