#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/kit/InterfaceFile.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/InterfaceOwner.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil::test {

/// A monitor from the built bundle, in a world of its own with the bundle's real interface files and the
/// sounds bell.wav and horn.mp3; its station knows windChill, windSpeed and the text sky. Main thread.
class ShownMonitor {
  public:
    ShownMonitor();

    /// Throws std::runtime_error with the reason where the archive is refused.
    void read(const std::string& archive);
    std::string archive() const;
    /// Loads the view's interface file. Throws std::runtime_error with the reason where that gives nothing.
    void show();

    /// The view's objects of a class, in the file's order; nothing is shown yet before `show`.
    template <class T>
    std::vector<std::shared_ptr<T>> controls() const {
        std::vector<std::shared_ptr<T>> found;
        for (const auto& object : m_objects)
            if (auto control = std::dynamic_pointer_cast<T>(object)) found.push_back(std::move(control));
        return found;
    }
    template <class T>
    std::shared_ptr<T> control() const {
        const auto found = controls<T>();
        return found.empty() ? throw std::runtime_error("the view has no such control") : found.front();
    }

    InterfaceOwner& owner() const { return *m_plugIn->interfaceOwner(); }
    Value get(std::string_view property) const { return owner().propertyNamed(property)->get(owner()); }
    bool set(std::string_view property, const Value& value) const {
        return owner().propertyNamed(property)->set(owner(), value);
    }
    /// What the condition prints; empty where there is none.
    std::string condition() const;

    const LoadedModule& module() const { return m_module; }
    FakeWorld& world() { return m_world; }

  private:
    FakeWorld m_world;
    World::Scope m_scope{m_world};
    InterfaceFile m_interfaceFile;
    LoadedModule m_module;
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<QRVPlugIn> m_plugIn;
    std::vector<std::shared_ptr<Object>> m_objects;
};

}  // namespace vigil::test
