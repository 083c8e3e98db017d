#include "tests/support/RecordingLog.hpp"

namespace vigil {

void RecordingLog::logLevel(int level, std::string_view message) {
    const std::lock_guard lock(m_mutex);
    m_lines.push_back({level, std::string(message)});
}

bool RecordingLog::takesLevel(int level) const {
    const std::lock_guard lock(m_mutex);
    return level <= m_highest;
}

void RecordingLog::setHighestLevel(int level) {
    const std::lock_guard lock(m_mutex);
    m_highest = level;
}

std::vector<RecordingLog::Line> RecordingLog::lines() const {
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

void RecordingLog::clear() {
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
}

}  // namespace vigil
