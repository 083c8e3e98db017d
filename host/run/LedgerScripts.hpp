#pragma once

#include <functional>
#include <string>

#include "host/kit/ScriptSink.hpp"
#include "host/run/EffectLedger.hpp"
#include "host/services/ScriptRunner.hpp"

namespace vigil {

/// Runs a site's scripts, each as soon as its record stands in the site file. `accept` on the main thread.
class LedgerScripts : public ScriptSink {
  public:
    /// Gives the name of the file whose text was read last, for people; may be empty.
    using NameOf = std::function<std::string(const std::string& source)>;

    LedgerScripts(EffectLedger& ledger, ScriptRunner::Options options, NameOf nameOf);

    std::optional<Error> accept(ScriptRequest request, const std::shared_ptr<const Object>& plugIn) override;

    void refused(const ScriptRequest& request, const std::shared_ptr<const Object>& plugIn,
                 const std::string& reason) override;

    const ScriptRunner& runner() const { return m_runner; }
    /// Ends what runs and waits; every script has its result when this returns.
    void stop(std::chrono::milliseconds deadline) { m_runner.stop(deadline); }

  private:
    EffectLedger& m_ledger;
    const NameOf m_nameOf;
    ScriptRunner m_runner;  // last: its thread uses the others
};

}  // namespace vigil
