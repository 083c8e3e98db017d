#include "host/kit/StandardLog.hpp"

#include <utility>

namespace vigil {
namespace {

void appendOneLine(std::string& to, std::string_view message) {
    static const char* const digits = "0123456789abcdef";
    for (const char c : message) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            to += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            to += "\\x";
            to += digits[byte >> 4];
            to += digits[byte & 15];
        } else {
            to += c;
        }
    }
}

}  // namespace

StandardLog::StandardLog(std::FILE* stream, int highestLevel, Clock clock)
    : m_stream(stream), m_highest(highestLevel), m_clock(std::move(clock)) {}

void StandardLog::logLevel(int level, std::string_view message) {
    if (!takesLevel(level)) return;
    std::string line = m_clock().isoText(3);
    line.append(" ").append(std::to_string(level)).append(" ");
    appendOneLine(line, message);
    line += '\n';
    const std::lock_guard lock(m_mutex);
    const bool written = std::fwrite(line.data(), 1, line.size(), m_stream) == line.size();
    if (std::fflush(m_stream) != 0 || !written) ++m_lost;
}

bool StandardLog::takesLevel(int level) const {
    return level <= m_highest;
}

void StandardLog::setHighestLevel(int level) {
    m_highest = level;
}

std::uint64_t StandardLog::lostLines() const {
    return m_lost;
}

}  // namespace vigil
