#include "host/kit/InterfaceFile_Widgets.hpp"

#include <pugixml.hpp>

#include "platform/Files.hpp"

namespace vigil {
namespace {

std::string_view nameOf(const pugi::xml_node& node) {
    return node.name();
}

// The text inside the one element that holds a property's value: <property name="text"><string>x</string>.
std::string valueOf(const pugi::xml_node& property) {
    for (const pugi::xml_node& held : property.children())
        if (held.type() == pugi::node_element) return held.text().get();
    return {};
}

std::optional<std::string> propertyOf(const pugi::xml_node& node, std::string_view name) {
    for (const pugi::xml_node& property : node.children("property"))
        if (name == property.attribute("name").value()) return valueOf(property);
    return std::nullopt;
}

InterfaceWidget widgetFrom(const pugi::xml_node& node) {
    InterfaceWidget widget;
    widget.kind = node.attribute("class").value();
    widget.name = node.attribute("name").value();
    widget.text = propertyOf(node, "text").value_or("");
    widget.checked = propertyOf(node, "checked") == "true";
    for (const pugi::xml_node& item : node.children("item"))
        if (auto title = propertyOf(item, "text")) widget.items.push_back(std::move(*title));
    for (const pugi::xml_node& property : node.children("property"))
        if (std::string_view("currentIndex") == property.attribute("name").value())
            widget.currentIndex = property.child("number").text().as_int();
    widget.bind = propertyOf(node, "bind");
    widget.action = propertyOf(node, "action");
    widget.outlet = propertyOf(node, "outlet");
    return widget;
}

// The library walks without recursion, however deep the file is.
class Collector : public pugi::xml_tree_walker {
  public:
    bool for_each(pugi::xml_node& node) override {
        if (nameOf(node) == "widget") widgets.push_back(widgetFrom(node));
        return true;
    }
    std::vector<InterfaceWidget> widgets;
};

}  // namespace

Result<std::vector<InterfaceWidget>> parseInterfaceFile(std::string_view text) {
    if (!isValidUtf8(text)) return Error{"it is no UTF-8"};
    pugi::xml_document document;
    const auto parsed =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed)
        return Error{"not XML at byte " + std::to_string(parsed.offset) + ": " + parsed.description()};
    if (nameOf(document.document_element()) != "ui") return Error{"its outermost element is not \"ui\""};
    Collector collector;
    document.traverse(collector);
    return std::move(collector.widgets);
}

}  // namespace vigil
