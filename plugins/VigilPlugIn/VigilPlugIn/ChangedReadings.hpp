#pragma once

#include <optional>
#include <vector>

#include "host_contract/EvaluationDictionary.hpp"
#include "host_contract/Readings.hpp"

namespace vigil {

/// Picks from a batch the readings that count with only-on-change: those that are newer than the snapshot's
/// and whose raw value differs from the snapshot's. Keeps its memory from batch to batch. One thread at a
/// time.
class ChangedReadings {
  public:
    /// Valid until the next call, and as long as the batch. A key that the snapshot lacks has the value 0 and
    /// no time there. Of two readings with one key the later one that passes wins; one left out removes none.
    ReadingsView select(const Readings& batch, const std::optional<EvaluationDictionary>& snapshot);

    /// The same for some slots alone. What the view holds at any other one means nothing.
    ReadingsView select(const Readings& batch, const std::optional<EvaluationDictionary>& snapshot,
                        const std::vector<KeyTable::Slot>& slots);

  private:
    std::vector<const AgentProperty*> m_bySlot;
};

}  // namespace vigil
