#include "host_contract/QRVPlugIn.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {

std::string QRVPlugIn::bundleIdentifier() const {
    const auto bundle = ClassRegistry::shared().bundleForClass(className());
    return bundle ? bundle->identifier : std::string();
}

long QRVPlugIn::bundleVersion() const {
    const auto bundle = ClassRegistry::shared().bundleForClass(className());
    return bundle ? bundle->bundleVersion : 0;
}

std::string QRVPlugIn::name() const {
    return {};
}
std::string QRVPlugIn::textDescription() const {
    return {};
}
std::string QRVPlugIn::htmlDescription() const {
    return {};
}
std::optional<std::string> QRVPlugIn::xmlDescription() const {
    return std::nullopt;
}
std::optional<std::string> QRVPlugIn::jsonDescription() const {
    return std::nullopt;
}
std::shared_ptr<Image> QRVPlugIn::icon() const {
    return nullptr;
}
std::optional<std::string> QRVPlugIn::group() const {
    return std::nullopt;
}
bool QRVPlugIn::isUndockable() const {
    return false;
}
bool QRVPlugIn::isRenamable() const {
    return false;
}
bool QRVPlugIn::isDeletable() const {
    return false;
}
std::shared_ptr<ToolbarItem> QRVPlugIn::toolbarItem() {
    return nullptr;
}

}  // namespace vigil
