#include "host/kit/InterfaceFile_Binding.hpp"

#include <functional>
#include <optional>

#include "host_contract/QRVPlugIn.hpp"
#include "platform/Controls.hpp"

namespace vigil {
namespace {

using Token = std::shared_ptr<const void>;

/// The owner's side of a binding. A plug-in may die before the control; any other owner does not.
class BoundText {
  public:
    BoundText(InterfaceOwner& owner, const InterfaceProperty& property)
        : m_owner(owner), m_property(property) {
        auto* const plugIn = dynamic_cast<QRVPlugIn*>(&owner);
        m_isPlugIn = plugIn != nullptr;
        if (plugIn) m_plugIn = plugIn->weak_from_this();
    }

    bool holdsTextOrNothing() const {
        const Value value = m_property.get(m_owner);
        return value.isNothing() || value.as<std::string>();
    }

    /// Nothing when the owner is gone.
    std::optional<std::string> text() const {
        const auto kept = m_plugIn.lock();
        if (m_isPlugIn && !kept) return std::nullopt;
        const Value value = m_property.get(m_owner);
        const auto* text = value.as<std::string>();
        return text ? *text : std::string();
    }

    void set(const std::string& text) const {
        const auto kept = m_plugIn.lock();
        if (m_property.set && (!m_isPlugIn || kept)) m_property.set(m_owner, Value(text));
    }

    Token observe(std::function<void()> call) const {
        return m_property.observe ? m_property.observe(m_owner, std::move(call)) : nullptr;
    }

  private:
    InterfaceOwner& m_owner;
    const InterfaceProperty& m_property;
    bool m_isPlugIn = false;
    std::weak_ptr<QRVPlugIn> m_plugIn;
};

std::string shownBy(const Object& control) {
    if (const auto* field = dynamic_cast<const TextField*>(&control)) return field->stringValue();
    if (const auto* popUp = dynamic_cast<const PopUpButton*>(&control))
        return popUp->titleOfSelectedItem().value_or("");
    return {};
}

void show(Object& control, const std::string& text) {
    if (shownBy(control) == text) return;
    if (auto* field = dynamic_cast<TextField*>(&control)) field->setStringValue(text);
    if (auto* popUp = dynamic_cast<PopUpButton*>(&control)) popUp->selectItemWithTitle(text);
}

Token observe(Object& control, std::function<void()> call) {
    if (auto* field = dynamic_cast<TextField*>(&control))
        return field->stringValueProperty().observe(std::move(call));
    if (auto* popUp = dynamic_cast<PopUpButton*>(&control))
        return popUp->selectionProperty().observe(std::move(call));
    return nullptr;
}

/// What whoever holds the control holds with it.
struct Bound {
    std::shared_ptr<Object> control;
    Token fromOwner;
    Token fromControl;
};

}  // namespace

std::shared_ptr<Object> makeControl(const InterfaceWidget& widget) {
    if (widget.kind == "QLineEdit") return std::make_shared<TextField>(widget.text);
    if (widget.kind != "QComboBox") return nullptr;
    auto popUp = std::make_shared<PopUpButton>();
    for (const std::string& title : widget.items)
        popUp->addItemWithTitle(title);
    if (!widget.currentIndex) return popUp;
    const auto index = static_cast<std::size_t>(*widget.currentIndex);
    // An index of no item, -1 among them, selects nothing; so does a title that no item bears.
    popUp->selectItemWithTitle(index < widget.items.size() ? widget.items[index] : std::string());
    return popUp;
}

std::shared_ptr<Object> boundControl(const std::shared_ptr<Object>& control, InterfaceOwner& owner,
                                     const InterfaceProperty& property, MainQueue* queue) {
    const auto text = std::make_shared<const BoundText>(owner, property);
    if (!text->holdsTextOrNothing()) return nullptr;
    const auto bound = std::make_shared<Bound>(Bound{control, nullptr, nullptr});
    const std::weak_ptr<Object> weak = control;

    const auto update = [weak, text] {
        const auto alive = weak.lock();
        const auto shown = alive ? text->text() : std::nullopt;
        if (shown) show(*alive, *shown);
    };
    bound->fromOwner = text->observe([update, queue] {
        if (!queue || queue->isMainThread())
            update();
        else
            queue->dispatchAsync(update);
    });
    update();
    // Whatever the owner makes of the text, the control then shows it.
    bound->fromControl = observe(*control, [weak, text, update] {
        const auto alive = weak.lock();
        const auto held = alive ? text->text() : std::nullopt;
        if (!held || *held == shownBy(*alive)) return;
        text->set(shownBy(*alive));
        update();
    });
    return {bound, control.get()};
}

}  // namespace vigil
