#include "host/kit/MonitorModule.hpp"

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {

Result<Done> loadMonitorModule(const std::string& programFolder) {
    registerKitClasses();
    const auto module = loadPlugIn(programFolder + "/../lib/vigil/VigilPlugIn");
    if (!module) return module.error();
    return Done{};
}

Result<std::shared_ptr<QRVPlugIn>> monitorFromArchive(const std::string& archive,
                                                      const std::shared_ptr<QRVAgentPlugIn>& station) {
    const World::Scope scope(station->world());
    auto read = readArchive(archive, station);
    if (!read) return read.error();
    auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(read.value());
    if (!plugIn) return Error{"root: an object of class " + read.value()->className() + " is no plug-in"};
    return plugIn;
}

std::string statusText(QRVPlugIn& monitor) {
    InterfaceOwner* owner = monitor.interfaceOwner();
    const auto* status = owner ? owner->propertyNamed("actionStatus") : nullptr;
    if (!status) return {};
    const Value value = status->get(*owner);
    const auto* text = value.as<std::string>();
    return text ? *text : std::string();
}

}  // namespace vigil
