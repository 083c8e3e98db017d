#include "host/site/HistoryLayout.hpp"

#include <stdexcept>
#include <utility>

namespace vigil {
namespace {

bool equal(const AgentPropertyLabel& a, const AgentPropertyLabel& b) {
    return a.propertyName == b.propertyName && a.name == b.name && a.unit == b.unit && a.type == b.type &&
           a.visible == b.visible;
}

}  // namespace

HistoryLayout::HistoryLayout(std::shared_ptr<const KeyTable> table, std::vector<Label> labels)
    : m_table(std::move(table)), m_bySlot(m_table->size()) {
    m_labels.reserve(labels.size());
    for (Label& label : labels) {
        const auto slot = m_table->slot(label->propertyName);
        if (!slot) throw std::out_of_range("label of no key: " + label->propertyName);
        add(*slot, std::move(label));
    }
}

void HistoryLayout::add(KeyTable::Slot slot, Label label) {
    m_bySlot[slot].push_back(static_cast<std::uint32_t>(m_labels.size()));
    m_labels.push_back(std::move(label));
}

std::optional<std::size_t> HistoryLayout::placeOf(KeyTable::Slot slot, const Label& label) {
    const auto& places = m_bySlot[slot];
    for (const std::uint32_t place : places)
        if (m_labels[place] == label) return place;
    for (const std::uint32_t place : places) {
        if (!equal(*m_labels[place], *label)) continue;
        m_labels[place] = label;  // the next batch most likely brings the same object
        return place;
    }
    return std::nullopt;
}

// A station that starts anew brings another table of the same keys.
bool HistoryLayout::adopt(const std::shared_ptr<const KeyTable>& table) {
    if (m_table == table) return true;
    if (!m_table || m_table->keys() != table->keys()) return false;
    m_table = table;
    return true;
}

bool HistoryLayout::fits(const Readings& batch) {
    if (!adopt(batch.table())) return false;
    for (std::size_t i = 0; i < batch.entries().size(); ++i)
        if (!placeOf(batch.slotOf(i), batch.entries()[i].label())) return false;
    return true;
}

HistoryLayout HistoryLayout::grown(const Readings& batch) const {
    const auto& table = batch.table();
    HistoryLayout next(table, {});
    for (const Label& label : m_labels)
        if (const auto slot = table->slot(label->propertyName)) next.add(*slot, label);
    const auto addMissing = [&batch](HistoryLayout& layout) {
        for (std::size_t i = 0; i < batch.entries().size(); ++i)
            if (!layout.placeOf(batch.slotOf(i), batch.entries()[i].label()))
                layout.add(batch.slotOf(i), batch.entries()[i].label());
    };
    addMissing(next);
    if (next.m_labels.size() <= 2 * table->size()) return next;
    HistoryLayout fresh(table, {});
    addMissing(fresh);
    return fresh;
}

}  // namespace vigil
