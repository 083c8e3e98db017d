#include "host_contract/EvaluationDictionary.hpp"

#include <utility>

namespace vigil {
namespace {

const std::shared_ptr<const Readings>& emptyReadings() {
    static const auto empty = Readings::make(std::vector<AgentProperty>{});
    return empty;
}

std::shared_ptr<const Readings> withoutDuplicates(std::shared_ptr<const Readings> readings) {
    if (!readings) return emptyReadings();
    if (!readings->hasDuplicates()) return readings;
    std::vector<AgentProperty> last;
    const ReadingsView view = readings->view();
    for (std::size_t slot = 0; slot < view.table->size(); ++slot)
        if (const AgentProperty* entry = view.bySlot[slot]) last.push_back(*entry);
    return Readings::make(readings->table(), std::move(last));
}

}  // namespace

EvaluationDictionary::EvaluationDictionary() : m_readings(emptyReadings()) {}

EvaluationDictionary::EvaluationDictionary(std::shared_ptr<const Readings> readings)
    : m_readings(withoutDuplicates(std::move(readings))) {}

std::size_t EvaluationDictionary::size() const {
    return m_readings->entries().size();
}

std::vector<std::string> EvaluationDictionary::keys() const {
    std::vector<std::string> keys;
    const ReadingsView all = view();
    for (std::size_t slot = 0; slot < all.table->size(); ++slot)
        if (all.bySlot[slot]) keys.push_back(all.bySlot[slot]->propertyName());
    return keys;
}

const AgentProperty* EvaluationDictionary::objectForKey(std::string_view key) const {
    return m_readings->objectForKey(key);
}

void EvaluationDictionary::setObject(const AgentProperty& property) {
    std::vector<AgentProperty> entries = m_readings->entries();
    bool replaced = false;
    for (AgentProperty& entry : entries) {
        if (entry.propertyName() != property.propertyName()) continue;
        entry = property;
        replaced = true;
    }
    if (!replaced) entries.push_back(property);
    m_readings = Readings::make(std::move(entries));
}

Value EvaluationDictionary::archiveValue() const {
    ValueDictionary entries;
    for (const AgentProperty& entry : m_readings->entries())
        entries.emplace_back(entry.propertyName(),
                             std::static_pointer_cast<Object>(std::make_shared<AgentProperty>(entry)));
    return entries;
}

std::optional<EvaluationDictionary> EvaluationDictionary::fromArchive(const ValueDictionary& entries) {
    std::vector<AgentProperty> readings;
    for (const auto& [key, value] : entries) {
        const auto* object = value.as<std::shared_ptr<Object>>();
        const auto property = object ? std::dynamic_pointer_cast<AgentProperty>(*object) : nullptr;
        if (!property || property->propertyName() != key) return std::nullopt;
        readings.push_back(*property);
    }
    return EvaluationDictionary(Readings::make(std::move(readings)));
}

}  // namespace vigil
