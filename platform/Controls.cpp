#include "platform/Controls.hpp"

#include <algorithm>
#include <utility>

#include "platform/KeyedCoder.hpp"

namespace vigil {

TextField::TextField() = default;
TextField::TextField(std::string text) : m_stringValue(std::move(text)) {}

std::string TextField::className() const {
    return "TextField";
}

bool TextField::initWithCoder(KeyedDecoder& coder) {
    setStringValue(coder.decodeText("stringValue").value_or(""));
    return true;
}

void TextField::encodeWithCoder(KeyedEncoder& coder) const {
    coder.encodeText("stringValue", stringValue());
}

std::string PopUpButton::className() const {
    return "PopUpButton";
}

void PopUpButton::addItemWithTitle(const std::string& title) {
    auto items = m_items.get();
    std::erase(items, title);
    items.push_back(title);
    const bool first = items.size() == 1;
    m_items.set(std::move(items));
    if (first) m_selected.set(title);
}

void PopUpButton::selectItemWithTitle(const std::string& title) {
    const auto items = m_items.get();
    const bool stands = std::find(items.begin(), items.end(), title) != items.end();
    m_selected.set(stands ? std::optional(title) : std::nullopt);
}

bool PopUpButton::initWithCoder(KeyedDecoder& coder) {
    std::vector<std::string> titles;
    for (const Value& item : coder.decodeList("items").value_or(ValueList{})) {
        if (const auto* title = item.as<std::string>())
            titles.push_back(*title);
        else
            coder.refuse("items", "expected a list of texts");
    }
    m_items.set(std::move(titles));
    m_selected.set(coder.decodeText("titleOfSelectedItem"));
    return true;
}

void PopUpButton::encodeWithCoder(KeyedEncoder& coder) const {
    ValueList titles;
    for (std::string& title : m_items.get())
        titles.emplace_back(std::move(title));
    coder.encode("items", std::move(titles));
    coder.encodeText("titleOfSelectedItem", titleOfSelectedItem());
}

std::shared_ptr<MenuItem> MenuItem::separatorItem() {
    return std::make_shared<MenuItem>();
}

std::string MenuItem::className() const {
    return "MenuItem";
}

}  // namespace vigil
