#include "host/kit/LiveScripts.hpp"

#include <utility>

namespace vigil {

LiveScripts::LiveScripts(ScriptRunner::Options options, Told told)
    : m_told(std::move(told)), m_runner(std::move(options)) {}

std::optional<Error> LiveScripts::accept(ScriptRequest request, const std::shared_ptr<const Object>&) {
    auto entry = std::make_shared<Entry>(Entry{request.station, request.monitor, request.arguments, {}});
    m_runner.submit(std::move(request), [this, entry](const ScriptResult& result) {
        entry->result = result;
        ended(std::move(*entry));
    });
    return std::nullopt;
}

std::vector<LiveScripts::Entry> LiveScripts::entries() const {
    const std::lock_guard lock(m_mutex);
    return {m_entries.begin(), m_entries.end()};
}

void LiveScripts::ended(Entry entry) {
    {
        const std::lock_guard lock(m_mutex);
        m_entries.push_back(entry);
        if (m_entries.size() > kScriptEntries) m_entries.pop_front();
    }
    if (m_told) m_told(entry);
}

}  // namespace vigil
