#include "host/kit/InterfaceFile.hpp"

#include <filesystem>
#include <fstream>

#include "host/kit/InterfaceFile_Binding.hpp"
#include "host/kit/InterfaceFile_Controls.hpp"
#include "host/kit/InterfaceFile_Widgets.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/World.hpp"

namespace vigil {
namespace {

using Objects = std::vector<std::shared_ptr<Object>>;

Result<std::string> contentsOf(const std::string& path) {
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(path, unknown)) return Error{"there is no such file"};
    std::ifstream file(path, std::ios::binary);
    std::string text(kLongestInterfaceFile + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.is_open() || file.bad()) return Error{"it cannot be read"};
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kLongestInterfaceFile)
        return Error{"it is longer than " + std::to_string(kLongestInterfaceFile) + " bytes"};
    return text;
}

// Which name of the widget the owner does not know; empty when it knows all.
std::string unknownName(const InterfaceWidget& widget, const InterfaceOwner& owner) {
    if (widget.bind && !owner.propertyNamed(*widget.bind)) return "no property \"" + *widget.bind + '"';
    if (widget.action && !owner.actionNamed(*widget.action)) return "no action \"" + *widget.action + '"';
    if (widget.outlet && !owner.outletNamed(*widget.outlet)) return "no outlet \"" + *widget.outlet + '"';
    return {};
}

// Binds and makes the objects of all widgets, and fills no outlet yet.
Result<Objects> objectsFor(const std::vector<InterfaceWidget>& widgets, InterfaceOwner* owner,
                           MainQueue* queue) {
    Objects objects(widgets.size());
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        const InterfaceWidget& widget = widgets[i];
        if (owner) {
            if (const auto unknown = unknownName(widget, *owner); !unknown.empty())
                return Error{"widget \"" + widget.name + "\": its owner has " + unknown};
        }
        objects[i] = makeControl(widget);
        if (!objects[i] || !owner || !widget.bind) continue;
        auto bound = boundControl(objects[i], *owner, *owner->propertyNamed(*widget.bind), queue);
        if (!bound) return Error{"widget \"" + widget.name + "\": " + bound.error().message};
        objects[i] = std::move(bound.value());
    }
    return objects;
}

// All outlets or none.
std::optional<Error> fillOutlets(const std::vector<InterfaceWidget>& widgets, const Objects& objects,
                                 InterfaceOwner& owner) {
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        if (!objects[i] || !widgets[i].outlet) continue;
        if (owner.outletNamed(*widgets[i].outlet)->connect(owner, objects[i])) continue;
        for (std::size_t done = 0; done < i; ++done)
            if (objects[done] && widgets[done].outlet)
                owner.outletNamed(*widgets[done].outlet)->connect(owner, nullptr);
        return Error{"widget \"" + widgets[i].name + "\": the outlet \"" + *widgets[i].outlet +
                     "\" does not take a " + objects[i]->className()};
    }
    return std::nullopt;
}

Result<Objects> load(const std::string& path, InterfaceOwner* owner, MainQueue* queue) {
    const auto text = contentsOf(path);
    if (!text) return text.error();
    const auto widgets = parseInterfaceFile(text.value());
    if (!widgets) return widgets.error();
    auto objects = objectsFor(widgets.value(), owner, queue);
    if (!objects) return objects;
    if (owner) {
        if (auto refused = fillOutlets(widgets.value(), objects.value(), *owner)) return *refused;
        owner->awakeFromNib();
    }
    std::erase(objects.value(), nullptr);
    return objects;
}

}  // namespace

std::optional<Objects> InterfaceFile::instantiate(const Bundle& bundle, const std::string& name,
                                                  InterfaceOwner* owner) {
    World* const world = World::current();
    const std::string path = bundle.resourcePath + "/" + name + ".ui";
    auto objects = load(path, owner, world ? &world->mainQueue() : nullptr);
    m_lastError = objects ? std::string() : path + ": " + objects.error().message;
    if (!objects) return std::nullopt;
    return std::move(objects.value());
}

}  // namespace vigil
