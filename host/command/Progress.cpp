#include "host/command/Progress.hpp"

#include <fmt/format.h>

namespace vigil {

SiteProgress Progress::teller() {
    if (!m_shown) return {};
    return [this](const char* what, std::size_t done, std::size_t all) { show(what, done, all); };
}

void Progress::show(const char* what, std::size_t done, std::size_t all) {
    std::string line = all == 0 ? fmt::format("{} …", what) : fmt::format("{} {} %", what, done * 100 / all);
    if (line == m_line) return;  // a terminal is slower than what it is told of
    m_line = std::move(line);
    m_output.errorText("\r\x1b[K" + m_line);
}

void Progress::end() {
    if (m_line.empty()) return;
    m_line.clear();
    m_output.errorText("\r\x1b[K");
}

}  // namespace vigil
