#include "platform/ToolbarItem.hpp"

#include <utility>

namespace vigil {

ToolbarItem::ToolbarItem(std::string itemIdentifier) : m_itemIdentifier(std::move(itemIdentifier)) {}

std::string ToolbarItem::className() const {
    return "ToolbarItem";
}

bool ToolbarItem::press() {
    const auto owner = target();
    const InterfaceAction* wanted = owner ? owner->actionNamed(m_action) : nullptr;
    if (!wanted) return false;
    wanted->perform(*owner, this);
    return true;
}

}  // namespace vigil
