#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host_contract/CycleObserver.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// Monitors and cycles as texts, so that a difference between two can be seen at a glance.

namespace vigil::test {

/// "a=5@2026-01-31T06:00:00.000000Z": key, raw value, value in the user's unit, text, time.
std::string pictureOf(const AgentProperty& reading);

/// Outcome, keys that were judged, the next date with its bits, the status, and the snapshot's readings
/// sorted by key.
std::string pictureOfCycle(const std::string& outcome, std::vector<std::string> judged,
                           const std::optional<Date>& next, const std::string& status,
                           std::vector<std::string> snapshot);

/// All that an archive of the monitor keeps.
std::string pictureOf(const QRVVigilPlugIn& monitor);

/// Keeps the picture of the monitor's last cycle.
class CyclePicture : public CycleObserver {
  public:
    void cycleEnded(const Object& plugIn, const CycleReport& report) override;
    std::string last = "no cycle";
};

}  // namespace vigil::test
