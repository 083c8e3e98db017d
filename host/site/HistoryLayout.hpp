#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/site/SiteRecords.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// What packed rows of a station leave out: its keys in their order, and the labels that its readings bear. A
/// reading is stored under the place of its label. A layout never changes once a row refers to it. One thread
/// at a time.
class HistoryLayout {
  public:
    using Label = std::shared_ptr<const AgentPropertyLabel>;

    HistoryLayout() = default;
    /// As it was stored. A label whose key is none of the table's makes it unusable: std::out_of_range.
    HistoryLayout(std::shared_ptr<const KeyTable> table, std::vector<Label> labels);

    const std::shared_ptr<const KeyTable>& table() const { return m_table; }
    const std::vector<Label>& labels() const { return m_labels; }

    /// The place of a label of `slot`, or nothing.
    std::optional<std::size_t> placeOf(KeyTable::Slot slot, const Label& label);

    /// Whether rows of the batch can refer to this layout as it stands.
    bool fits(const Readings& batch);
    /// One that a batch fits in: this one with what the batch brings, so that a station whose readings come
    /// and go does not switch to and fro. Without what is no longer in the table, and without all that the
    /// batch does not bear where there would be more labels than twice the keys.
    HistoryLayout grown(const Readings& batch) const;

  private:
    void add(KeyTable::Slot slot, Label label);
    bool adopt(const std::shared_ptr<const KeyTable>& table);

    std::shared_ptr<const KeyTable> m_table;
    std::vector<Label> m_labels;
    std::vector<std::vector<std::uint32_t>> m_bySlot;
};

}  // namespace vigil
