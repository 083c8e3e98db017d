#include "plugins/ContractProbe/HostPromises.hpp"

namespace vigil {

const char* promiseText(HostPromise promise) {
    static constexpr std::array<const char*, kHostPromises> texts = {
        "a world is open while a plug-in is made",
        "a plug-in is made on the main thread",
        "a plug-in finds the bundle that its class came from",
        "a plug-in is told that it is loaded before it is started",
        "a plug-in is started on the main thread, in its station's world",
        "a notification comes with the station's world open",
        "a notification is about the plug-in's own station",
        "a notification holds readings",
        "the station's current readings include the batch that is announced",
        "a station announces one batch at a time",
        "what is handed over runs on the main thread, with the world open",
        "a hand-over has run when it returns",
        "the clock does not go back from one notification to the next",
        "a stopped plug-in hears nothing",
        "an archive keeps flags, integers, reals, texts, dates and lists apart",
        "an object that is archived twice comes back as one",
        "an absent value comes back absent",
        "the station comes back as the plug-in's own",
        "a plug-in is stopped before it is unloaded",
    };
    return texts.at(static_cast<std::size_t>(promise));
}

void HostPromises::note(HostPromise promise, bool kept) {
    const std::lock_guard lock(m_mutex);
    Seen& seen = m_seen.at(static_cast<std::size_t>(promise));
    if (seen != Seen::Broken) seen = kept ? Seen::Kept : Seen::Broken;
}

std::string HostPromises::table() const {
    const std::lock_guard lock(m_mutex);
    std::string text;
    for (std::size_t i = 0; i < kHostPromises; ++i) {
        text += m_seen[i] == Seen::Kept ? "kept    " : m_seen[i] == Seen::Broken ? "BROKEN  " : "unseen  ";
        text += promiseText(static_cast<HostPromise>(i));
        text += '\n';
    }
    return text;
}

}  // namespace vigil
