#include "host/run/RunningSite.hpp"

// What goes wrong without anybody telling: silence, scripts that do not end, disks that take nothing.

namespace vigil {
namespace {

/// A station whose feed is live and that brings nothing for so long is silent.
constexpr double kSilentSeconds = 600;
/// A script that runs for so long may hang.
constexpr double kLongScriptSeconds = 15;

std::string minutes(double seconds) {
    return std::to_string(static_cast<long>(seconds / 60)) + " min";
}

}  // namespace

std::map<std::string, std::string> RunningSite::problems() const {
    std::map<std::string, std::string> found;
    const Date now = m_world.now();
    for (const auto& [id, station] : m_stations) {
        const auto counts = station->counts();
        if (counts.feed.kind != FeedState::Live) continue;
        const double silent = now.secondsSince(counts.lastData.value_or(m_since));
        if (silent >= kSilentSeconds)
            found["silent " + std::to_string(id)] =
                station->record().name + ": silent for more than " + minutes(kSilentSeconds);
    }
    for (const ScriptRunner::Running& script : m_scripts.runner().running())
        if (now.secondsSince(script.since) >= kLongScriptSeconds)
            found["script " + script.station] =
                "\"" + script.monitor + "\": its script has been running since " + script.since.isoText() +
                " and keeps the scripts of " + script.station + " waiting";
    const auto writer = m_writer.state();
    if (!writer.well) found["site file"] = writer.words;
    if (writer.refused > 0)
        found["refused"] = std::to_string(writer.refused) + " fires and effects found no place and are lost";
    if (!m_noHistory.empty()) found["history"] = m_noHistory;
    if (m_history)
        if (const auto failing = m_history->counts().failing; !failing.empty()) found["history"] = failing;
    return found;
}

}  // namespace vigil
