#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host_contract/AgentProperty.hpp"
#include "host_contract/KeyTable.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// One reading a slot, or nothing where the slot has none: what a condition is judged against. Valid as long
/// as what it was taken from.
struct VIGIL_KIT ReadingsView {
    const KeyTable* table = nullptr;
    const AgentProperty* const* bySlot = nullptr;  ///< table->size() entries

    const AgentProperty* at(KeyTable::Slot slot) const { return bySlot[slot]; }
    /// Looks the key up; nothing when there is no such entry.
    const AgentProperty* find(std::string_view key) const;
};

/// The readings of one notification: an ordered batch that never changes once made, shared by all who look at
/// it. A key may stand several times; the order is kept. Any thread.
class VIGIL_KIT Readings final : public Object {
  public:
    /// A batch whose keys all stand in `table`. A reading with another key is a broken promise:
    /// std::out_of_range.
    static std::shared_ptr<const Readings> make(std::shared_ptr<const KeyTable> table,
                                                std::vector<AgentProperty> entries);
    /// A batch with a table of its own.
    static std::shared_ptr<const Readings> make(std::vector<AgentProperty> entries);

    const std::shared_ptr<const KeyTable>& table() const { return m_table; }
    const std::vector<AgentProperty>& entries() const { return m_entries; }
    KeyTable::Slot slotOf(std::size_t entry) const { return m_slots[entry]; }
    bool hasDuplicates() const { return m_hasDuplicates; }

    /// Of each key its last reading.
    ReadingsView view() const { return {m_table.get(), m_bySlot.data()}; }
    /// The last reading of that key, or nothing. (Keyword form: objectForKey:)
    const AgentProperty* objectForKey(std::string_view key) const { return view().find(key); }

    /// "{a = 1 °C, b = 2}" for the slots that `judged` holds, in the table's order. The text of a reading is
    /// built once a batch, whoever asks first. `judged` must be a view of this batch.
    void appendDescription(std::string& to, const ReadingsView& judged) const;

    std::string className() const override;
    std::string description() const override;

  private:
    Readings() = default;
    struct Piece {
        std::size_t begin = 0;
        std::size_t end = 0;  // 0 where the entry has not been printed yet
    };
    std::string_view printed(std::size_t entry) const;

    std::shared_ptr<const KeyTable> m_table;
    std::vector<AgentProperty> m_entries;
    std::vector<KeyTable::Slot> m_slots;
    std::vector<const AgentProperty*> m_bySlot;
    bool m_hasDuplicates = false;
    mutable std::mutex m_printMutex;
    mutable std::string m_printedText;
    mutable std::vector<Piece> m_printedPieces;  // of entry i; empty while nobody has asked
};

}  // namespace vigil
