#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/run/EffectLedger.hpp"
#include "host/services/automation/Courier.hpp"
#include "host/site/SiteFile.hpp"
#include "platform/AutomationScripts.hpp"

namespace vigil {

/// Mail and short messages of a site. What an action hands over is read, recorded, and delivered off the main
/// thread as soon as its record stands. Each attempt is a record whose beginning is written down before
/// anything is sent; one that has begun is never repeated, except where it ended as certainly not sent and
/// worth another try. Main thread, where nothing else is said.
class LedgerAutomation : public AutomationScripts {
  public:
    /// The ledger is the caller's and outlives this.
    LedgerAutomation(EffectLedger& ledger, AutomationOptions options);

    /// An error where the text is malformed, nothing of its kind is set up, or too many wait: then its record
    /// says so with the whole text, and nothing else happens. The script that brings up a mail window has no
    /// effect and no record.
    Result<Done> run(const std::string& source) override;

    /// Goes on with what an earlier run could not deliver, and gives up what was asked for too long ago.
    void resume(const std::vector<DeferredEffect>& deferred);

    /// Gives up what is under way. What has not begun is deferred, for the next run. Waits about a second.
    void stop() { m_courier->stop(); }

    /// Messages that wait or are under way.
    std::size_t waiting(Courier::Lane lane) const { return m_courier->taken(lane); }

  private:
    Error refuse(EffectRecord record, const std::string& result, const std::string& why,
                 const std::string& source);

    EffectLedger& m_ledger;
    const std::shared_ptr<Courier> m_courier;  // shared with releases that the writer still holds
};

}  // namespace vigil
