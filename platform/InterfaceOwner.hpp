#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Value.hpp"

namespace vigil {

class InterfaceOwner;

/// A property that an interface file may bind and that a host may read by name.
struct InterfaceProperty {
    std::string_view name;
    Value (*get)(InterfaceOwner&);
    /// Absent for a property that only the owner sets. False when the value is of a kind that it cannot take.
    bool (*set)(InterfaceOwner&, const Value&) = nullptr;
    /// Calls back after every set, on the setting thread, while the token lives. Absent where nobody can
    /// know.
    std::shared_ptr<const void> (*observe)(InterfaceOwner&, std::function<void()>) = nullptr;
};

/// Something that a control of an interface file can ask for; `sender` may be absent.
struct InterfaceAction {
    std::string_view name;
    void (*perform)(InterfaceOwner&, Object* sender);
};

/// A place that an interface file fills with one of its objects. False when it is of the wrong class.
struct InterfaceOutlet {
    std::string_view name;
    bool (*connect)(InterfaceOwner&, const std::shared_ptr<Object>&);
};

/// What a class offers to interface files and hosts by name: one table a class, the same for all its objects.
struct InterfaceTable {
    std::vector<InterfaceProperty> properties;
    std::vector<InterfaceAction> actions;
    std::vector<InterfaceOutlet> outlets;
};

class VIGIL_KIT InterfaceOwner {
  public:
    virtual ~InterfaceOwner();
    virtual const InterfaceTable& interfaceTable() const = 0;
    /// Called once the owner's interface file has been loaded and its outlets are connected. Main thread.
    virtual void awakeFromNib();

    /// The entry of that name, or nothing.
    const InterfaceProperty* propertyNamed(std::string_view name) const;
    const InterfaceAction* actionNamed(std::string_view name) const;
    const InterfaceOutlet* outletNamed(std::string_view name) const;
};

}  // namespace vigil
