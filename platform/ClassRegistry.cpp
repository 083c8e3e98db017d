#include "platform/ClassRegistry.hpp"

#include <utility>

#include "platform/Controls.hpp"

namespace vigil {

ClassRegistry::ClassRegistry() {
    add("TextField", &makeObject<TextField>);
    add("PopUpButton", &makeObject<PopUpButton>);
    add("MenuItem", &makeObject<MenuItem>);
}

ClassRegistry& ClassRegistry::shared() {
    static ClassRegistry registry;
    return registry;
}

bool ClassRegistry::add(const std::string& name, Factory factory, std::shared_ptr<const Bundle> bundle) {
    const std::lock_guard lock(m_mutex);
    const auto [place, added] = m_classes.try_emplace(name, Entry{factory, std::move(bundle)});
    return added || place->second.factory == factory;
}

std::shared_ptr<Object> ClassRegistry::make(std::string_view name) const {
    Factory factory = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_classes.find(std::string(name));
        if (found != m_classes.end()) factory = found->second.factory;
    }
    return factory ? factory() : nullptr;
}

bool ClassRegistry::contains(std::string_view name) const {
    const std::lock_guard lock(m_mutex);
    return m_classes.contains(std::string(name));
}

std::shared_ptr<const Bundle> ClassRegistry::bundleForClass(std::string_view name) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_classes.find(std::string(name));
    return found == m_classes.end() ? nullptr : found->second.bundle;
}

}  // namespace vigil
