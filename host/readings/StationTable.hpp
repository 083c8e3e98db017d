#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/readings/KeyNames.hpp"
#include "host/readings/KnownReadings.hpp"
#include "host/readings/Packet.hpp"
#include "host/readings/StationReadings.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// One reading of a station: what is known of its key, and what it was last.
struct StationEntry {
    std::string written{};  ///< as it was sent
    std::string key{};
    const KnownReading* known = nullptr;
    std::shared_ptr<const AgentPropertyLabel> label{};
    std::optional<AgentProperty> current{};  ///< the last one; nothing before the first
    std::optional<Date> heard{};             ///< arrival of the last news; absent where it was only retained
    std::uint64_t news = 0;                  ///< number of the packet that last brought it or let it be made
    std::uint64_t sensor = 0;                ///< who sent it last
    bool reserved = false;                   ///< never found by a name that is sent
    bool sent = false;                       ///< by the station at least once, not only made by the host
    bool missing = false;                    ///< the sender said so, and has had no value since
    std::size_t next = 0;                    ///< the entry that a packet probably brings behind this one

    // How a number is taken, as long as it comes with `sentUnit` and `sentText`.
    bool taken = false;  ///< the rest is known
    bool wrongUnit = false;
    Unit sentUnit = Unit::None;
    std::string sentText{};
    Unit from = Unit::None;   ///< of the number as sent
    Unit held = Unit::None;   ///< of `value`
    Unit shown = Unit::None;  ///< of `unitValue`
    Bounds bounds{};          ///< in `held`
    bool ownText = false;     ///< the unit is unknown: its text stands, the number is not converted

    bool wantsNumber() const { return known && known->kind == kNumericType; }
};

/// The keys of a station and what is known under each. A station's strand.
class StationTable {
  public:
    static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

    explicit StationTable(const StationReadingsSettings& settings) : m_settings(settings) {}

    std::size_t size() const { return m_entries.size(); }
    StationEntry& at(std::size_t index) { return m_entries[index]; }
    const StationEntry& at(std::size_t index) const { return m_entries[index]; }
    std::vector<StationEntry>& entries() { return m_entries; }

    /// The entry of a name as sent, or nowhere. `guess` is where it probably stands.
    std::size_t find(std::string_view written, std::size_t guess) const;
    /// As `find`, a new entry behind the others if need be; nowhere when the station is full.
    std::size_t findOrAdd(std::string_view written, std::size_t guess);

    /// Keeps a key from being given to a name that is sent. Before any entry is there.
    void reserve(const std::string& key);
    /// A new entry for a reserved key; nowhere when the station is full.
    std::size_t addReserved(const std::string& key);

    /// Settles how numbers of that unit are taken by the entry; at once where that is settled already.
    void settleUnits(StationEntry& entry, Unit unit, std::string_view text) const;
    /// The entry's label, the one from before where it says the same.
    const std::shared_ptr<const AgentPropertyLabel>& label(StationEntry& entry, std::string_view name,
                                                           std::string_view unit, FourCharCode type,
                                                           bool visible) const;

    /// Of all entries so far; the same table as long as none is added.
    const std::shared_ptr<const KeyTable>& keys();

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    std::size_t add(std::string written, std::string key);

    const StationReadingsSettings& m_settings;
    std::vector<StationEntry> m_entries;
    std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> m_places;  // by `written`
    KeyNames m_names;
    std::shared_ptr<const KeyTable> m_keys;
};

}  // namespace vigil
