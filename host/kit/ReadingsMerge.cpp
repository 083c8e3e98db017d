#include "host/kit/ReadingsMerge.hpp"

#include <utility>

namespace vigil {
namespace {

bool isWhole(const Readings& batch) {
    return !batch.hasDuplicates() && batch.entries().size() == batch.table()->size();
}

}  // namespace

std::shared_ptr<const Readings> merged(const std::shared_ptr<const Readings>& current,
                                       const std::shared_ptr<const Readings>& batch, std::size_t mostKeys,
                                       std::uint64_t& dropped) {
    const bool sameKeys = current->entries().empty() || current->table() == batch->table();
    if (sameKeys && isWhole(*batch) && batch->entries().size() <= mostKeys) return batch;

    std::vector<AgentProperty> entries;
    std::vector<std::string> newKeys;
    const ReadingsView old = current->view();
    const ReadingsView news = batch->view();
    for (KeyTable::Slot slot = 0; slot < old.table->size(); ++slot) {
        const AgentProperty* replacing = news.find(old.table->key(slot));
        if (replacing || old.at(slot)) entries.push_back(replacing ? *replacing : *old.at(slot));
    }
    for (KeyTable::Slot slot = 0; slot < news.table->size(); ++slot) {
        if (!news.at(slot) || old.table->slot(news.table->key(slot))) continue;
        if (old.table->size() + newKeys.size() < mostKeys) {
            entries.push_back(*news.at(slot));
            newKeys.push_back(news.table->key(slot));
        } else {
            ++dropped;
        }
    }
    if (newKeys.empty()) return Readings::make(current->table(), std::move(entries));
    return Readings::make(std::move(entries));
}

}  // namespace vigil
