#pragma once

#include <string>
#include <vector>

#include "host_contract/CycleObserver.hpp"

namespace vigil {

/// How one notification ended for the monitor of its station.
struct ReplayedCycle {
    std::string station;
    Date time;
    CycleOutcome outcome = CycleOutcome::Waiting;
    std::vector<std::string> inputs;  ///< keys that were judged, sorted; empty while waiting
    std::string status;
    std::optional<Date> next;
};

/// Takes down what a cycle reports while its pointers are good. To be read on the thread that announces, when
/// the announcement has returned.
class CycleNote : public CycleObserver {
  public:
    /// `inputs` asks for the judged keys, which cost time.
    explicit CycleNote(bool inputs) : m_inputs(inputs) {}
    void cycleEnded(const Object& plugIn, const CycleReport& report) override;

    ReplayedCycle cycle;

  private:
    const bool m_inputs;
};

}  // namespace vigil
