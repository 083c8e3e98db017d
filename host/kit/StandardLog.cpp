#include "host/kit/StandardLog.hpp"

#include <cstdlib>
#include <utility>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

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

StandardLog::StandardLog(std::FILE* stream, int highestLevel, Clock clock, LogForm form)
    : m_stream(stream), m_highest(highestLevel), m_clock(std::move(clock)), m_form(form) {}

std::string StandardLog::lineOf(int level, std::string_view message) const {
    std::string line;
    switch (m_form) {
        case LogForm::Text:
            line = m_clock().isoText(3);
            line.append(" ").append(std::to_string(level)).append(" ");
            appendOneLine(line, message);
            break;
        case LogForm::Journal:
            line = level <= kLogProblem ? "<4>" : level == kLogNotice ? "<6>" : "<7>";
            appendOneLine(line, message);
            break;
        case LogForm::Json:
            line =
                nlohmann::ordered_json{{"time", m_clock().isoText(3)}, {"level", level}, {"message", message}}
                    .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
            break;
    }
    return line += '\n';
}

// The service manager names the device and inode of what it has connected.
bool isJournal(int descriptor) {
    const char* stream = std::getenv("JOURNAL_STREAM");
    struct stat status {};
    if (!stream || ::fstat(descriptor, &status) != 0) return false;
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino) == stream;
}

void StandardLog::logLevel(int level, std::string_view message) {
    if (!takesLevel(level)) return;
    const std::string line = lineOf(level, message);
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
