#include <algorithm>
#include <atomic>
#include <utility>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/PlugInState.hpp"
#include "host/run/RunningSite.hpp"

// What a running site writes down: fires, archives, and, at its start, what the last stop left open.

namespace vigil {
namespace {

/// Without a fire an archive is written at most so often, in seconds.
constexpr double kSaveEvery = 60;
/// Stations with rolling readings look at their ages so often.
constexpr double kRemindEvery = 30;

}  // namespace

RunningSite::Entry* RunningSite::entryOf(RecordId plugIn) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Entry& entry) { return entry.record.id == plugIn; });
    return found == m_entries.end() ? nullptr : &*found;
}

Result<std::string> RunningSite::archiveOf(Entry& entry) {
    return entry.hosted->call(
        [&](QRVPlugIn& plugIn) { return writeArchive(entry.hosted->plugIn(), plugIn.agent().get()); });
}

// On a strand. A main queue that takes nothing more is one that closes, and then the end writes everything.
void RunningSite::complete(std::vector<Fire> fires, std::function<void()> durable) {
    auto shared = std::make_shared<std::vector<Fire>>(std::move(fires));
    const bool posted =
        m_world.mailbox().dispatchAsync([this, shared, durable] { completeOnMain(*shared, durable); });
    if (!posted) durable();
}

void RunningSite::completeOnMain(const std::vector<Fire>& fires, const std::function<void()>& durable) {
    struct Pending {
        std::function<void()> durable;
        ~Pending() { durable(); }
    };
    // Whoever lets go of it last lets the strand go on.
    const auto pending = std::make_shared<Pending>(Pending{durable});
    for (const Fire& fire : fires) {
        Entry* entry = entryOf(fire.of.plugIn);
        if (!entry || !entry->hosted) continue;
        entry->lastFire = fire.began;
        auto archive = archiveOf(*entry);
        if (!archive) {
            m_log.logLevel(kLogProblem, "\"" + entry->record.title +
                                            "\" fired, and what it is now cannot be written down: " +
                                            archive.error().message);
            continue;
        }
        entry->record.archive = std::move(archive).value();
        entry->savedHash = std::hash<std::string>()(entry->record.archive);
        entry->saved = m_world.now();
        if (m_history) m_history->archived(entry->record, entry->saved, ArchiveReason::Saved);
        m_log.logLevel(kLogNotice, "\"" + entry->record.title + "\" fired (" + fire.of.station + ")");
        m_writer.completeFire(fire.id, entry->record,
                              [this, pending = std::shared_ptr<Pending>(pending),
                               title = entry->record.title](const Result<Done>& done) mutable {
                                  if (!done)
                                      m_log.logLevel(kLogProblem,
                                                     "the fire of \"" + title +
                                                         "\" is not written down: " + done.error().message);
                                  pending.reset();
                              });
        entry->record.archive.clear();
    }
}

void RunningSite::save(Entry& entry) {
    entry.saved = m_world.now();
    auto archive = archiveOf(entry);
    if (!archive) {
        m_log.logLevel(kLogProblem,
                       "\"" + entry.record.title + "\" cannot be saved: " + archive.error().message);
        return;
    }
    const std::size_t hash = std::hash<std::string>()(archive.value());
    if (hash == entry.savedHash) return;
    entry.savedHash = hash;
    PlugInRecord record = entry.record;
    record.archive = std::move(archive).value();
    if (m_history) m_history->archived(record, entry.saved, ArchiveReason::Saved);
    m_writer.saveArchive(std::move(record), {});
}

void RunningSite::tick() {
    const Date now = m_world.now();
    if (now.secondsSince(m_reminded) >= kRemindEvery) {
        m_reminded = now;
        for (const auto& [id, station] : m_stations)
            if (!station->record().rolling.empty()) station->remind();
    }
    // A share of them each time, so that the main thread is never away for long.
    std::size_t share = m_entries.size() / 60 + 1;
    for (Entry& entry : m_entries) {
        if (!entry.hosted || now.secondsSince(entry.saved) < kSaveEvery) continue;
        if (!entry.notes->takeChanged()) continue;
        save(entry);
        if (--share == 0) break;
    }
}

// A fire without its completion: the process ended between the two. Its wait is taken to have begun.
void RunningSite::waitForUnfinished(const Interrupted& interrupted) {
    for (const FireRecord& fire : interrupted.fires) {
        Entry* entry = entryOf(fire.plugIn);
        if (!entry || !entry->hosted) continue;
        QRVPlugIn& plugIn = *entry->hosted->plugIn();
        std::string outcome = "it offers no wait, so it may fire again at once";
        const auto wait = retriggerSeconds(plugIn);
        if (wait && waitAtLeastUntil(plugIn, fire.time.plus(*wait)))
            outcome = "it waits as if that fire had been completed";
        m_log.logLevel(kLogProblem, "\"" + entry->record.title + "\" was in the middle of a fire of " +
                                        fire.time.isoText() + " when the last run ended; " + outcome);
        auto archive = archiveOf(*entry);
        if (!archive) continue;
        PlugInRecord record = entry->record;
        record.archive = std::move(archive).value();
        m_writer.completeFire(fire.id, std::move(record), {});
    }
}

void RunningSite::reportInterrupted(const Interrupted& interrupted) {
    for (const EffectRecord& effect : interrupted.effects)
        m_log.logLevel(kLogProblem,
                       (effect.title.empty() ? std::string("a monitor") : "\"" + effect.title + "\"") +
                           ": the " + effectKindName(effect.kind) + " \"" + effect.what + "\" of " +
                           effect.queued.isoText() + " was interrupted and is not repeated" +
                           (effect.detail.empty() ? "" : ": " + effect.detail));
}

}  // namespace vigil
