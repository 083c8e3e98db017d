#include "host/run/EffectLedger.hpp"

#include "host/kit/StandardLog.hpp"
#include "host/site/SiteWriter.hpp"

namespace vigil {

const char* effectKindName(EffectRecord::Kind kind) {
    switch (kind) {
        case EffectRecord::Script:
            return "script";
        case EffectRecord::Sound:
            return "sound";
        case EffectRecord::Speech:
            return "speech";
        case EffectRecord::Mail:
            return "mail";
        case EffectRecord::Sms:
            return "sms";
    }
    return "";
}

bool isFailure(const EffectRecord& effect) {
    return effect.state == EffectRecord::Ended && effect.result != "succeeded";
}

namespace {

/// What stands behind it may be a whole text that was not sent: that is for the ledger alone.
std::string firstLine(const std::string& detail) {
    return detail.substr(0, detail.find('\n'));
}

}  // namespace

EffectLedger::EffectLedger(FireDesk& desk, SiteWriter& writer, QRVLog& log, std::function<Date()> clock)
    : m_desk(desk), m_writer(writer), m_log(log), m_clock(std::move(clock)) {}

EffectRecord EffectLedger::make(EffectRecord::Kind kind, std::string what,
                                const std::shared_ptr<const Object>& plugIn) {
    EffectRecord record;
    record.id = m_writer.newId();
    record.kind = kind;
    record.what = std::move(what);
    record.queued = m_clock();
    const Fire* fire = m_desk.acting();
    // A test by hand can be served inside the wait of another plug-in's fire.
    if (fire && (!plugIn || fire->plugIn == plugIn)) record.fire = fire->id;
    auto who = plugIn ? m_desk.identity(*plugIn) : std::nullopt;
    if (!who && fire) who = fire->of;
    if (who) {
        record.plugIn = who->plugIn;
        record.station = std::move(who->station);
        record.title = std::move(who->title);
    }
    return record;
}

void EffectLedger::queued(const EffectRecord& record, std::function<void()> release) {
    m_writer.putEffect(record, [release = std::move(release)](const Result<Done>&) { release(); });
}

void EffectLedger::started(EffectRecord& record, Date when) {
    record.state = EffectRecord::Started;
    record.started = when;
    m_writer.putEffect(record, {});
}

void EffectLedger::started(EffectRecord& record, Date when, std::function<void(bool)> go) {
    record.state = EffectRecord::Started;
    record.started = when;
    m_writer.putEffect(record,
                       [go = std::move(go)](const Result<Done>& done) { go(static_cast<bool>(done)); });
}

EffectRecord EffectLedger::another(const EffectRecord& last) {
    EffectRecord record = last;
    record.id = m_writer.newId();
    record.firstAttempt = last.firstAttempt != 0 ? last.firstAttempt : last.id;
    record.attempt = last.attempt + 1;
    record.state = EffectRecord::Queued;
    record.queued = m_clock();
    record.started = record.ended = record.again = std::nullopt;
    record.result.clear();
    record.detail.clear();
    return record;
}

void EffectLedger::ended(EffectRecord record, Date when, std::string result, std::string detail,
                         bool failed) {
    if (record.state == EffectRecord::Queued) record.started = when;
    record.state = EffectRecord::Ended;
    record.ended = when;
    record.result = std::move(result);
    record.detail = std::move(detail);
    if (failed)
        m_log.logLevel(kLogProblem, "\"" + record.title + "\": the " + effectKindName(record.kind) + " \"" +
                                        record.what + "\" " + record.result +
                                        (record.detail.empty() ? "" : ": " + firstLine(record.detail)));
    m_writer.putEffect(record, {});
    const std::lock_guard lock(m_mutex);
    ++m_counts[{effectKindName(record.kind), record.result}];
    if (failed) ++m_failures;
    if (record.plugIn != 0)
        m_last[record.plugIn] = {std::move(record.what), std::move(record.result), when, failed};
}

void EffectLedger::remember(const EffectRecord& ended) {
    const std::lock_guard lock(m_mutex);
    m_last[ended.plugIn] = {ended.what, ended.result, ended.ended.value_or(ended.queued), isFailure(ended)};
}

std::optional<EffectLedger::Last> EffectLedger::last(RecordId plugIn) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_last.find(plugIn);
    if (found == m_last.end()) return std::nullopt;
    return found->second;
}

std::map<std::pair<std::string, std::string>, std::uint64_t> EffectLedger::counts() const {
    const std::lock_guard lock(m_mutex);
    return m_counts;
}

std::uint64_t EffectLedger::failures() const {
    const std::lock_guard lock(m_mutex);
    return m_failures;
}

}  // namespace vigil
