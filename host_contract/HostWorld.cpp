#include "host_contract/HostWorld.hpp"

#include "host_contract/QRVKit.hpp"

namespace vigil {

const char* const kAppRealTimeDataNotification = "kAppRealTimeDataNotification";

QRVLog::~QRVLog() = default;
PlugInHost::~PlugInHost() = default;

QRVLog& QRVLog::sharedLog(HostWorld& world) {
    return world.log();
}

bool QRVLog::takesLevel(int) const {
    return true;
}

std::string QRVKit::scriptsFolder(HostWorld& world) {
    return world.scriptsFolder();
}

HostWorld* HostWorld::current() {
    return dynamic_cast<HostWorld*>(World::current());
}

bool PlugInHost::admits(const std::string&) {
    return true;
}

std::shared_ptr<Object> PlugInHost::startResult(const Object&) {
    return nullptr;
}

std::shared_ptr<Object> PlugInHost::stopResult(const Object&) {
    return nullptr;
}

}  // namespace vigil
