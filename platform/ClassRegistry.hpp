#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/Bundle.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// The classes that archives may name, with the bundle each comes from. One for the process: a module is
/// loaded once and never unloaded. Any thread.
class VIGIL_KIT ClassRegistry {
  public:
    using Factory = std::shared_ptr<Object> (*)();

    static ClassRegistry& shared();

    /// False, with nothing changed, when a class of that name stands already with another factory.
    bool add(const std::string& name, Factory factory, std::shared_ptr<const Bundle> bundle = nullptr);

    /// A fresh object for `initWithCoder`, or nothing when no such class is known.
    std::shared_ptr<Object> make(std::string_view name) const;
    bool contains(std::string_view name) const;

    /// The bundle that holds the class, or nothing.
    std::shared_ptr<const Bundle> bundleForClass(std::string_view name) const;

  private:
    struct Entry {
        Factory factory;
        std::shared_ptr<const Bundle> bundle;
    };
    ClassRegistry();

    mutable std::mutex m_mutex;
    std::unordered_map<std::string, Entry> m_classes;
};

/// The factory of a class for `ClassRegistry::add`.
template <class T>
std::shared_ptr<Object> makeObject() {
    return std::make_shared<T>();
}

}  // namespace vigil
