#include "host/run/LedgerScripts.hpp"

#include <utility>

namespace vigil {
namespace {

std::string spoken(std::string name, const std::vector<std::string>& arguments) {
    if (name.empty()) name = "script";
    for (const std::string& argument : arguments)
        name += " " + argument;
    return name;
}

std::string detail(const ScriptResult& result) {
    return result.sentence() + (result.lastLines.empty() ? "" : "\n" + result.lastLines);
}

}  // namespace

LedgerScripts::LedgerScripts(EffectLedger& ledger, ScriptRunner::Options options, NameOf nameOf)
    : m_ledger(ledger), m_nameOf(std::move(nameOf)), m_runner(std::move(options)) {}

void LedgerScripts::refused(const ScriptRequest& request, const std::shared_ptr<const Object>& plugIn,
                            const std::string& reason) {
    auto record =
        m_ledger.make(EffectRecord::Script, spoken(m_nameOf(request.source), request.arguments), plugIn);
    if (record.station.empty()) record.station = request.station;
    m_ledger.ended(std::move(record), m_ledger.now(), "refused", reason, /*failed=*/true);
}

std::optional<Error> LedgerScripts::accept(ScriptRequest request,
                                           const std::shared_ptr<const Object>& plugIn) {
    auto record = std::make_shared<EffectRecord>(
        m_ledger.make(EffectRecord::Script, spoken(m_nameOf(request.source), request.arguments), plugIn));
    if (record->station.empty()) record->station = request.station;
    m_ledger.queued(*record, [this, record, request = std::move(request)]() mutable {
        if (m_ledger.isStopping())
            return m_ledger.ended(*record, m_ledger.now(), scriptOutcomeName(ScriptResult::Interrupted),
                                  "the host stopped before its turn came", /*failed=*/true);
        m_runner.submit(
            std::move(request),
            [this, record](const ScriptResult& result) {
                if (record->state == EffectRecord::Queued && result.started < result.ended)
                    record->started = result.started;
                m_ledger.ended(*record, result.ended, scriptOutcomeName(result.outcome), detail(result),
                               result.outcome != ScriptResult::Succeeded);
            },
            [this, record](Date when) { m_ledger.started(*record, when); });
    });
    return std::nullopt;
}

}  // namespace vigil
