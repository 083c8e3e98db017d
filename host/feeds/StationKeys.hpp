#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/readings/KeyNames.hpp"
#include "host_contract/AgentProperty.hpp"
#include "host_contract/KeyTable.hpp"

namespace vigil {

/// The keys that one station has sent so far, in the order in which they first came. One thread at a time.
class StationKeys {
  public:
    struct Entry {
        std::string written;                                ///< as the data has it
        std::string key;                                    ///< of the condition language
        std::shared_ptr<const AgentPropertyLabel> label{};  ///< of the last reading with this key
    };

    /// The entry of a name, a new one behind the others if need be; nothing when the station is full.
    /// `guess` is where it probably stands. Entries never move to another place.
    std::optional<std::size_t> find(std::string_view written, std::size_t guess);
    Entry& at(std::size_t index) { return m_entries[index]; }

    /// Of all keys so far; the same table as long as no key is added.
    const std::shared_ptr<const KeyTable>& table();

  private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string, std::size_t> m_places;  // by the name as written
    KeyNames m_names;
    std::shared_ptr<const KeyTable> m_table;
};

}  // namespace vigil
