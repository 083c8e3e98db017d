#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/Export.hpp"

namespace vigil {

/// The keys of a station in their order, each with its slot (0, 1, …). Never changed once made: a station
/// that gains a key gets a new table. Batches with the same table agree on the slots, so whoever has looked a
/// key up once for a table need not look it up again.
class VIGIL_KIT KeyTable {
  public:
    using Slot = std::uint32_t;

    /// Of equal keys the first counts.
    static std::shared_ptr<const KeyTable> make(std::vector<std::string> keys);

    /// Different for every table of the process, so that what was looked up for one is never used for
    /// another.
    std::uint64_t id() const { return m_id; }
    std::size_t size() const { return m_keys.size(); }
    const std::string& key(Slot slot) const { return m_keys[slot]; }
    const std::vector<std::string>& keys() const { return m_keys; }
    std::optional<Slot> slot(std::string_view key) const;

  private:
    KeyTable();
    std::uint64_t m_id;
    std::vector<std::string> m_keys;
    std::unordered_map<std::string_view, Slot> m_slots;
};

}  // namespace vigil
