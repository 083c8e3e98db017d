#include "host/kit/InterfaceFile_Binding.hpp"

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "host/kit/InterfaceFile_Controls.hpp"
#include "host_contract/QRVPlugIn.hpp"

namespace vigil {
namespace {

using Token = std::shared_ptr<const void>;

/// The owner's side of a binding. A plug-in may die before the control; any other owner does not.
class BoundProperty {
  public:
    BoundProperty(InterfaceOwner& owner, const InterfaceProperty& property)
        : m_owner(owner), m_property(property) {
        auto* const plugIn = dynamic_cast<QRVPlugIn*>(&owner);
        m_isPlugIn = plugIn != nullptr;
        if (plugIn) m_plugIn = plugIn->weak_from_this();
    }

    /// Nothing at all (not a value of nothing) when the owner is gone.
    std::optional<Value> value() const {
        const auto kept = m_plugIn.lock();
        if (m_isPlugIn && !kept) return std::nullopt;
        return m_property.get(m_owner);
    }

    void set(const Value& value) const {
        const auto kept = m_plugIn.lock();
        if (m_property.set && (!m_isPlugIn || kept)) m_property.set(m_owner, value);
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

/// What whoever holds the control holds with it.
struct Bound {
    std::shared_ptr<Object> control;
    Token fromOwner;
    Token fromControl;
};

/// Of the kinds that controls show.
bool same(const Value& a, const Value& b) {
    if (a.index() != b.index()) return false;
    if (const auto* text = a.as<std::string>()) return *text == *b.as<std::string>();
    if (const auto* flag = a.as<bool>()) return *flag == *b.as<bool>();
    if (const auto* object = a.as<std::shared_ptr<Object>>())
        return *object == *b.as<std::shared_ptr<Object>>();
    return a.isNothing();
}

}  // namespace

Result<std::shared_ptr<Object>> boundControl(const std::shared_ptr<Object>& control, InterfaceOwner& owner,
                                             const InterfaceProperty& property, MainQueue* queue) {
    const ControlValue* const shows = controlValueOf(*control);
    if (!shows) return Error{"a " + control->className() + " shows no property"};
    const auto bound = std::make_shared<Bound>(Bound{control, nullptr, nullptr});
    const auto held = std::make_shared<const BoundProperty>(owner, property);
    const auto first = held->value();
    if (!first || !shows->takes(*first))
        return Error{"the property \"" + std::string(property.name) + "\" is no " + shows->kind};

    const std::weak_ptr<Object> weak = control;
    const auto update = [weak, held, shows] {
        const auto alive = weak.lock();
        const auto value = alive ? held->value() : std::nullopt;
        if (value) shows->show(*alive, *value);
    };
    bound->fromOwner = held->observe([update, queue] {
        if (!queue || queue->isMainThread())
            update();
        else
            queue->dispatchAsync(update);
    });
    update();
    // Whatever the owner makes of the value, the control then shows it.
    bound->fromControl = shows->observe(*control, [weak, held, shows, update] {
        const auto alive = weak.lock();
        const auto value = alive ? held->value() : std::nullopt;
        if (!value || same(*value, shows->shown(*alive))) return;
        held->set(shows->shown(*alive));
        update();
    });
    return std::shared_ptr<Object>(bound, control.get());
}

}  // namespace vigil
