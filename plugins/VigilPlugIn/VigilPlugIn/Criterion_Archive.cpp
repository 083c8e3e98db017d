#include "platform/KeyedCoder.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// The class names and the keys "agent", "name" and "children" are the file format: saved rows refer to them.

namespace vigil {

bool Criterion::initWithCoder(KeyedDecoder& coder) {
    setAgent(coder.decodeObject<QRVAgentPlugIn>("agent"));
    setName(coder.decodeText("name"));
    const auto entries = coder.decodeList("children");
    if (!entries) return true;
    auto list = std::make_shared<CriterionList>();
    for (const Value& entry : *entries) {
        const auto* object = entry.as<std::shared_ptr<Object>>();
        auto node = object ? std::dynamic_pointer_cast<Criterion>(*object) : nullptr;
        if (node)
            list->push_back(std::move(node));
        else
            coder.refuse("children", "expected a list of criteria");
    }
    setChildren(std::move(list));
    return true;
}

void Criterion::encodeWithCoder(KeyedEncoder& coder) const {
    coder.encodeObject("agent", agent());
    coder.encodeText("name", name());
    const auto list = children();
    if (!list) return;
    ValueList entries;
    for (const auto& child : *list)
        entries.emplace_back(std::static_pointer_cast<Object>(child));
    coder.encode("children", std::move(entries));
}

}  // namespace vigil
