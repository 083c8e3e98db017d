#include "host/desktop/LogBook.hpp"

#include "host/services/SystemClock.hpp"

namespace vigil {

void LogBook::logLevel(int level, std::string_view message) {
    if (!takesLevel(level)) return;
    if (m_next.takesLevel(level)) m_next.logLevel(level, message);
    const std::lock_guard lock(m_mutex);
    m_lines.push_back({++m_count, systemNow(), level, std::string(message)});
    if (m_lines.size() > kLogBookLines) m_lines.pop_front();
}

std::vector<LogBook::Line> LogBook::since(std::uint64_t number) const {
    const std::lock_guard lock(m_mutex);
    std::vector<Line> found;
    for (auto line = m_lines.rbegin(); line != m_lines.rend() && line->number > number; ++line)
        found.push_back(*line);
    return {found.rbegin(), found.rend()};
}

}  // namespace vigil
