#pragma once

#include <memory>
#include <optional>

#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"

namespace vigil {

/// How one notification ended for a monitor.
enum class CycleOutcome {
    Waiting,  ///< inside the re-trigger wait; nothing was judged
    Missed,   ///< judged, the condition did not hold
    Fired,    ///< judged, the condition held and the actions were run
};

/// "waiting", "missed", "fired"
VIGIL_KIT const char* outcomeName(CycleOutcome outcome);

/// What a host may want to know of a cycle. The pointers are good during the call.
struct CycleReport {
    CycleOutcome outcome = CycleOutcome::Waiting;
    const Readings* readings = nullptr;  ///< the notification's batch; nothing while waiting
    ReadingsView judged;                 ///< what the condition was judged against; empty while waiting
    std::optional<Date> next;            ///< no fire before this moment
};

/// Hears of every cycle of one plug-in, on the posting thread, when the cycle has ended. Changes nothing.
class VIGIL_KIT CycleObserver {
  public:
    virtual ~CycleObserver();
    virtual void cycleEnded(const Object& plugIn, const CycleReport& report) = 0;
};

/// Implemented by plug-ins whose cycles can be observed.
class VIGIL_KIT CycleReporting {
  public:
    virtual ~CycleReporting();
    /// Set while the plug-in is stopped. Main thread.
    virtual void setCycleObserver(std::shared_ptr<CycleObserver> observer) = 0;
};

}  // namespace vigil
