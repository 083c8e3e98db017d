#include "host/kit/RecordedScripts.hpp"

#include <utility>

namespace vigil {

std::optional<Error> RecordedScripts::accept(ScriptRequest request,
                                             const std::shared_ptr<const Object>& plugIn) {
    m_entries.push_back({m_world.now(), std::move(request), plugIn});
    return std::nullopt;
}

std::vector<RecordedScripts::Entry> RecordedScripts::take() {
    return std::exchange(m_entries, {});
}

}  // namespace vigil
