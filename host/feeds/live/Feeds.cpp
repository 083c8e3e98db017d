#include "host/feeds/live/Feeds.hpp"

#include <algorithm>
#include <utility>

#include "host/feeds/live/Feeds_State.hpp"

namespace vigil {

Feeds::Feeds(Context context) : m_state(std::make_unique<State>(std::move(context))) {}

Feeds::~Feeds() {
    stop();
}

Result<Done> Feeds::add(const std::string& station, const FeedUrl& url, std::shared_ptr<FeedSink> sink) {
    auto& entries = m_state->entries;
    if (entries.contains(station)) return Error{"the station \"" + station + "\" has a feed"};
    const bool standardInput = url.kind == FeedUrl::Kind::Lines && url.path == "-";
    for (const auto& [other, entry] : entries)
        if (standardInput && entry.readsStandardInput)
            return Error{"feed: standard input is read for the station \"" + other + "\""};
    const auto outlet = std::make_shared<FeedOutlet>(FeedOutlet::Options{
        station, std::move(sink), m_state->context.clock, m_state->context.timing.tellAgain});
    auto made = m_state->make(url, outlet);
    if (!made) {
        outlet->close();
        return made.error();
    }
    const std::lock_guard lock(m_state->mutex);
    entries.emplace(station, State::Entry{outlet, std::move(made).value(), standardInput});
    return Done{};
}

void Feeds::remove(const std::vector<std::string>& stations) {
    std::map<std::string, State::Entry> gone;
    {
        const std::lock_guard lock(m_state->mutex);
        for (const std::string& station : stations)
            gone.insert(m_state->entries.extract(station));
    }
    State::end(gone);
}

void Feeds::State::end(const std::map<std::string, Entry>& gone) {
    for (const auto& [station, entry] : gone) {
        entry.outlet->close();
        entry.feed->askToEnd();
    }
}

void Feeds::stop() {
    std::map<std::string, State::Entry> gone;
    {
        const std::lock_guard lock(m_state->mutex);
        gone.swap(m_state->entries);
    }
    State::end(gone);
}

std::optional<FeedCounts> Feeds::counts(const std::string& station) const {
    const std::lock_guard lock(m_state->mutex);
    const auto found = m_state->entries.find(station);
    if (found == m_state->entries.end()) return std::nullopt;
    return found->second.outlet->counts();
}

Result<FeedLoop*> Feeds::State::loop(std::unique_ptr<FeedLoop>& which, const char* threadName) {
    if (!which) {
        auto started = FeedLoop::start(threadName);
        if (!started) return started.error();
        which = std::move(started).value();
    }
    return which.get();
}

std::string Feeds::State::inFolder(const std::string& path) const {
    if (path.empty() || path == "-" || path.front() == '/' || context.folder.empty()) return path;
    return context.folder + "/" + path;
}

}  // namespace vigil
