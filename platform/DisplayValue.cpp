#include "platform/Controls.hpp"

namespace vigil {
namespace {

template <class T>
const T* control(const DisplayValue& value) {
    const auto* held = std::get_if<std::shared_ptr<T>>(&value);
    return held ? held->get() : nullptr;
}

template <class T>
std::shared_ptr<Object> object(const DisplayValue& value) {
    const auto* held = std::get_if<std::shared_ptr<T>>(&value);
    return held ? *held : nullptr;
}

std::shared_ptr<Object> controlObject(const DisplayValue& value) {
    if (auto field = object<TextField>(value)) return field;
    if (auto popUp = object<PopUpButton>(value)) return popUp;
    return object<MenuItem>(value);
}

}  // namespace

std::optional<std::string> stringValue(const DisplayValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto* field = control<TextField>(value)) return field->stringValue();
    return std::nullopt;
}

std::optional<std::string> titleOfSelectedItem(const DisplayValue& value) {
    if (const auto* popUp = control<PopUpButton>(value)) return popUp->titleOfSelectedItem();
    return std::nullopt;
}

std::string description(const DisplayValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (const auto held = controlObject(value)) return held->description();
    return kAbsentText;
}

Value archiveValue(const DisplayValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    if (auto held = controlObject(value)) return held;
    return {};
}

std::optional<DisplayValue> displayValueFrom(const Value& value) {
    if (value.isNothing()) return DisplayValue{};
    if (const auto* text = value.as<std::string>()) return DisplayValue{*text};
    const auto* held = value.as<std::shared_ptr<Object>>();
    if (!held) return std::nullopt;
    if (auto field = std::dynamic_pointer_cast<TextField>(*held)) return DisplayValue{field};
    if (auto popUp = std::dynamic_pointer_cast<PopUpButton>(*held)) return DisplayValue{popUp};
    if (auto item = std::dynamic_pointer_cast<MenuItem>(*held)) return DisplayValue{item};
    return std::nullopt;
}

}  // namespace vigil
