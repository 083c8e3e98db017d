#include "platform/InterfaceOwner.hpp"

#include "platform/InterfaceFiles.hpp"

namespace vigil {
namespace {

template <class Entry>
const Entry* named(const std::vector<Entry>& entries, std::string_view name) {
    for (const Entry& entry : entries)
        if (entry.name == name) return &entry;
    return nullptr;
}

}  // namespace

InterfaceFiles::~InterfaceFiles() = default;
InterfaceOwner::~InterfaceOwner() = default;

void InterfaceOwner::awakeFromNib() {}

const InterfaceProperty* InterfaceOwner::propertyNamed(std::string_view name) const {
    return named(interfaceTable().properties, name);
}

const InterfaceAction* InterfaceOwner::actionNamed(std::string_view name) const {
    return named(interfaceTable().actions, name);
}

const InterfaceOutlet* InterfaceOwner::outletNamed(std::string_view name) const {
    return named(interfaceTable().outlets, name);
}

}  // namespace vigil
