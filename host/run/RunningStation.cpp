#include "host/run/RunningStation.hpp"

#include <chrono>
#include <utility>

#include "host/kit/StandardLog.hpp"
#include "host/run/CycleNotes.hpp"
#include "host/run/PlugInState.hpp"

namespace vigil {
namespace {

/// What cannot be read is told once in so many seconds; all of it is counted.
constexpr std::chrono::seconds kTellEvery{60};

/// What the plug-in's wait counts from, by its own dates; else the end of its actions.
Date waitFrom(const Fire& fire) {
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(std::const_pointer_cast<Object>(fire.plugIn));
    const auto next = plugIn ? retriggerDate(*plugIn) : std::nullopt;
    const auto wait = plugIn ? retriggerSeconds(*plugIn) : std::nullopt;
    return next && wait ? next->plus(-*wait) : fire.ended;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

RunningStation::RunningStation(Surroundings around, StationRecord record, std::shared_ptr<Station> station,
                               std::unique_ptr<Decoder> decoder, StationReadingsSettings settings)
    : m_around(std::move(around)),
      m_record(std::move(record)),
      m_station(std::move(station)),
      m_decoder(std::move(decoder)),
      m_readings(std::move(settings)) {
    m_counts.feed.since = m_around.world.now();
}

void RunningStation::arrived(RawMessage message) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed) return;
        ++m_counts.messages;
        m_counts.lastMessage = message.arrived;
        m_bytes += message.payload.size();
        m_messages.push_back(std::move(message));
        while (m_messages.size() > kMessagesOfStation ||
               (m_bytes > kBytesOfStation && m_messages.size() > 1)) {
            m_bytes -= m_messages.front().payload.size();
            m_messages.pop_front();
            ++m_counts.drops["queue full"];
        }
    }
    m_around.pool.wake(shared_from_this());
}

void RunningStation::problem(const std::string& words) {
    {
        const std::lock_guard lock(m_mutex);
        ++m_counts.drops["not taken"];
    }
    tell(words);
}

void RunningStation::tell(const std::string& words) {
    const auto now = std::chrono::steady_clock::now();
    std::uint64_t untold = 0;
    {
        const std::lock_guard lock(m_mutex);
        m_counts.lastProblem = words;
        if (m_toldProblem && now - *m_toldProblem < kTellEvery) {
            ++m_untold;
            return;
        }
        m_toldProblem = now;
        untold = std::exchange(m_untold, 0);
    }
    const std::string more = untold == 0 ? "" : " (and " + std::to_string(untold) + " more before it)";
    m_around.world.log().logLevel(kLogNotice, m_record.name + ": " + words + more);
}

void RunningStation::state(FeedState state) {
    bool changed = false;
    {
        const std::lock_guard lock(m_mutex);
        changed = m_counts.feed.kind != state.kind || m_counts.feed.words != state.words;
        m_counts.feed = state;
    }
    if (!changed) return;
    const bool bad = state.kind == FeedState::Retrying || state.kind == FeedState::Failed;
    const char* const kinds[] = {"is starting", "is live", "tries again", "has ended", "has failed"};
    m_around.world.log().logLevel(
        bad ? kLogProblem : kLogNotice,
        m_record.name + ": its feed " + kinds[state.kind] + (state.words.empty() ? "" : ": " + state.words));
}

void RunningStation::close() {
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    m_messages.clear();
    m_bytes = 0;
}

bool RunningStation::isAtRest() const {
    const std::lock_guard lock(m_mutex);
    return !m_busy && m_messages.empty();
}

RunningStation::Counts RunningStation::counts() const {
    const std::lock_guard lock(m_mutex);
    Counts counts = m_counts;
    counts.queued = m_messages.size();
    return counts;
}

bool RunningStation::wantsPause() const {
    const std::lock_guard lock(m_mutex);
    return m_messages.size() >= kMessagesOfStation / 2;
}

void RunningStation::remind() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_closed) return;
        m_reminded = true;
    }
    m_around.pool.wake(shared_from_this());
}

std::optional<RawMessage> RunningStation::takeMessage() {
    const std::lock_guard lock(m_mutex);
    m_busy = !m_messages.empty();
    if (!m_busy) return std::nullopt;
    RawMessage message = std::move(m_messages.front());
    m_messages.pop_front();
    m_bytes -= message.payload.size();
    return message;
}

Strand::Step RunningStation::step() {
    if (m_packets.empty()) {
        const auto message = takeMessage();
        if (!message) return age();
        decode(*message);
    }
    while (!m_packets.empty()) {
        const Packet packet = std::move(m_packets.front());
        m_packets.pop_front();
        if (!take(packet)) return Step::Wait;
    }
    return Step::More;
}

Strand::Step RunningStation::age() {
    {
        const std::lock_guard lock(m_mutex);
        if (!std::exchange(m_reminded, false)) return Step::Idle;
    }
    const Date now = m_around.world.now();
    const auto batch = m_readings.tick(now);
    if (batch && !announce(batch, now)) return Step::Wait;
    return Step::More;
}

void RunningStation::decode(const RawMessage& message) {
    m_decoded.clear();
    m_decoder->decode(message, m_decoded, [this](const std::string& words) {
        {
            const std::lock_guard lock(m_mutex);
            ++m_counts.drops["not read"];
        }
        tell(words);
    });
    for (Packet& packet : m_decoded)
        m_packets.push_back(std::move(packet));
}

bool RunningStation::take(const Packet& packet) {
    const Date now = m_around.world.now();
    const Taken taken = m_readings.take(packet, now);
    const auto& counts = m_readings.counts();
    if (taken.kind != Taken::Kind::News || counts.readingsDropped() + counts.wrongTimes + counts.jumps != 0)
        noteDrops();
    if (!taken.batch) return true;
    {
        const std::lock_guard lock(m_mutex);
        m_counts.lastData = packet.arrived;
    }
    return announce(taken.batch, now);
}

void RunningStation::noteDrops() {
    const StationReadingsCounts& counts = m_readings.counts();
    const std::lock_guard lock(m_mutex);
    for (const auto& [why, count] :
         {std::pair{"repeated", counts.repeats}, std::pair{"late", counts.late},
          std::pair{"retained", counts.retained}, std::pair{"empty", counts.empty},
          std::pair{"missing", counts.missing}, std::pair{"implausible", counts.implausible},
          std::pair{"unreadable", counts.unreadable}, std::pair{"wrong unit", counts.wrongUnit},
          std::pair{"name too long", counts.longNames}, std::pair{"key too many", counts.noPlace},
          std::pair{"wrong time", counts.wrongTimes}, std::pair{"clock set back", counts.jumps}})
        if (count != 0) m_counts.drops[why] = count;
}

bool RunningStation::announce(const std::shared_ptr<const Readings>& batch, Date now) {
    const auto start = std::chrono::steady_clock::now();
    FireDesk::Announcement announcement;
    CycleNotes::begin();
    if (m_around.history) m_around.history->append(m_record.id, std::nullopt, now, batch);
    auto failures = m_station->announce(batch);
    m_around.notificationTimes.add(secondsSince(start));
    {
        const std::lock_guard lock(m_mutex);
        ++m_counts.notifications;
    }
    if (!failures.empty()) m_around.settle(std::move(failures));
    if (announcement.fires.empty()) return true;
    if (m_around.history)
        for (const Fire& fire : announcement.fires)
            m_around.history->fired(m_record.id, fire.of.plugIn, now, fire.began, waitFrom(fire));
    const auto self = std::static_pointer_cast<RunningStation>(shared_from_this());
    m_around.complete(std::move(announcement.fires), [self] { self->m_around.pool.resume(self); });
    return false;
}

}  // namespace vigil
