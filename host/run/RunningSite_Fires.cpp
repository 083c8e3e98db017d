#include <algorithm>
#include <atomic>
#include <utility>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/run/PlugInState.hpp"
#include "host/run/RunningSite.hpp"

// What a running site writes down: fires, archives, and, at its start, what the last stop left open.

namespace vigil {
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
    if (posted) return;
    const std::lock_guard lock(m_unpostedMutex);
    m_unposted.push_back([this, shared, durable] { completeOnMain(*shared, durable); });
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
        keepWait(*entry, fire);
        auto archive = archiveOf(*entry);
        if (!archive) {
            m_log.logLevel(kLogProblem, "\"" + entry->record.title +
                                            "\" fired, and what it is now cannot be written down: " +
                                            archive.error().message);
            continue;
        }
        entry->record.archive = std::move(archive).value();
        entry->savedHash = std::hash<std::string>()(entry->record.archive);
        entry->saved = Clock::now();
        if (m_history) m_history->archived(entry->record, m_world.now(), ArchiveReason::Saved);
        m_log.logLevel(kLogNotice, "\"" + entry->record.title + "\" fired (" + fire.of.station + ")");
        m_writer.completeFire(
            fire.id, entry->record,
            [this, pending = std::shared_ptr<Pending>(pending), notes = entry->notes,
             title = entry->record.title](const Result<Done>& done) mutable {
                if (!done) {
                    notes->noteUnsaved();
                    m_log.logLevel(kLogProblem, "the fire of \"" + title +
                                                    "\" is not written down yet: " + done.error().message);
                }
                pending.reset();
            });
        entry->record.archive.clear();
    }
}

// Somebody changed the monitor while it fired: another object stands for it now, and has to wait as long.
void RunningSite::keepWait(Entry& entry, const Fire& fire) {
    QRVPlugIn& now = *entry.hosted->plugIn();
    if (&now == fire.plugIn.get()) return;
    if (const auto wait = retriggerSeconds(now)) waitAtLeastUntil(now, fire.ended.plus(*wait));
}

void RunningSite::save(Entry& entry) {
    entry.saved = Clock::now();
    auto archive = archiveOf(entry);
    if (!archive) {
        m_log.logLevel(kLogProblem,
                       "\"" + entry.record.title + "\" cannot be saved: " + archive.error().message);
        return;
    }
    const std::size_t hash = std::hash<std::string>()(archive.value());
    if (hash == entry.savedHash && !entry.notes->takeUnsaved()) return;
    entry.savedHash = hash;
    PlugInRecord record = entry.record;
    record.archive = std::move(archive).value();
    if (m_history) m_history->archived(record, m_world.now(), ArchiveReason::Saved);
    m_writer.saveArchive(std::move(record), [notes = entry.notes](const Result<Done>& done) {
        if (!done) notes->noteUnsaved();
    });
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
        m_log.logLevel(kLogProblem, "\"" + entry->record.title + "\" has not completed its fire of " +
                                        fire.time.isoText() + "; " + outcome);
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
