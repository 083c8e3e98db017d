#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"
#include "platform/Value.hpp"

namespace vigil {

/// A dictionary from property key to reading, the object that a condition is judged against and the snapshot
/// that the next cycle compares with. A value over a shared batch: copying it costs a pointer, and since a
/// batch never changes, every copy is independent. Writing to one copies first. As thread-safe as an int.
class VIGIL_KIT EvaluationDictionary {
  public:
    EvaluationDictionary();
    /// Every key of the batch with its last reading.
    explicit EvaluationDictionary(std::shared_ptr<const Readings> readings);

    std::size_t size() const;
    /// In enumeration order (the table's).
    std::vector<std::string> keys() const;
    /// Nothing when there is no such entry. Valid as long as a copy of this dictionary lives.
    const AgentProperty* objectForKey(std::string_view key) const;
    /// Puts a reading under its own `propertyName`, replacing the one that stands there.
    void setObject(const AgentProperty& property);

    ReadingsView view() const { return m_readings->view(); }
    const std::shared_ptr<const Readings>& readings() const { return m_readings; }
    std::string description() const { return m_readings->description(); }

    /// As a dictionary of readings for an archive, and back. Nothing when an entry is no reading, or when an
    /// entry stands under a key that is not its own.
    Value archiveValue() const;
    static std::optional<EvaluationDictionary> fromArchive(const ValueDictionary& entries);

  private:
    std::shared_ptr<const Readings> m_readings;  // never absent, never with duplicates
};

}  // namespace vigil
