#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

#include <stdexcept>

namespace vigil {

Criterion::~Criterion() {
    setName(std::nullopt);
    if (const auto list = children()) list->clear();
}

void Criterion::addChild(std::shared_ptr<Criterion> child) {
    if (!children()) setChildren(std::make_shared<CriterionList>());
    children()->push_back(std::move(child));
}

std::int64_t Criterion::numberOfChildren() const {
    const auto list = children();
    return list ? static_cast<std::int64_t>(list->size()) : 0;
}

std::shared_ptr<Criterion> Criterion::childAtIndex(std::int64_t index) const {
    const auto list = children();
    if (!list) return nullptr;
    if (index < 0 || index >= static_cast<std::int64_t>(list->size()))
        throw std::out_of_range("child " + std::to_string(index) + " of " + std::to_string(list->size()));
    return (*list)[static_cast<std::size_t>(index)];
}

DisplayValue Criterion::displayValue() {
    if (auto text = name()) return *std::move(text);
    return {};
}

void Criterion::performActionWithDisplayValues(const DisplayValueList&) {}

std::string Criterion::className() const {
    return "Criterion";
}

bool Criterion::isEqual(const Object* other) const {
    const auto* node = dynamic_cast<const Criterion*>(other);
    const auto mine = name();
    return node && mine && node->name() == mine;
}

std::string Criterion::description() const {
    // Asking for the display value makes a control for some nodes and changes none.
    return defaultDescription(*this) + " " + vigil::description(const_cast<Criterion*>(this)->displayValue());
}

HostWorld* Criterion::world() const {
    const auto station = agent();
    return station ? &station->world() : HostWorld::current();
}

}  // namespace vigil
