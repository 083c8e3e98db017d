#include "plugins/VigilPlugIn/VigilPlugIn/Criterion_Display.hpp"

#include "platform/ClassRegistry.hpp"

namespace vigil {
namespace {

/// The first object of class T of an interface file of the module, a new one on every call.
template <class T>
std::shared_ptr<T> firstOf(HostWorld* world, const std::string& className, const std::string& file,
                           InterfaceOwner* owner) {
    const auto bundle = ClassRegistry::shared().bundleForClass(className);
    if (!world || !bundle) return nullptr;
    const auto objects = world->interfaceFiles().instantiate(*bundle, file, owner);
    if (!objects) return nullptr;
    for (const auto& object : *objects)
        if (auto wanted = std::dynamic_pointer_cast<T>(object)) return wanted;
    return nullptr;
}

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

std::string SeparatorCriterion::className() const {
    return "SeparatorCriterion";
}

DisplayValue SeparatorCriterion::displayValue() {
    return MenuItem::separatorItem();
}

std::string TextFieldCriterion::className() const {
    return "TextFieldCriterion";
}

DisplayValue TextFieldCriterion::displayValue() {
    if (auto field = firstOf<TextField>(world(), className(), "TextField", nullptr)) return field;
    return {};
}

std::string PopUpCriterion::className() const {
    return "PopUpCriterion";
}

DisplayValue PopUpCriterion::displayValue() {
    const auto popUp = firstOf<PopUpButton>(world(), className(), "PopUpButton", this);
    if (!popUp) return {};
    for (const std::string& sound : getArrayOfSounds().value_or(std::vector<std::string>{}))
        if (contains(sound, ".wav") || contains(sound, ".mp3")) popUp->addItemWithTitle(sound);
    return popUp;
}

std::optional<std::vector<std::string>> PopUpCriterion::getArrayOfSounds() const {
    const auto bundle = ClassRegistry::shared().bundleForClass(className());
    HostWorld* host = world();
    if (!host || !bundle) return std::nullopt;
    return host->files().contentsOfDirectory(bundle->resourcePath);
}

const InterfaceTable& PopUpCriterion::interfaceTable() const {
    static const InterfaceTable nothing;
    return nothing;
}

}  // namespace vigil
