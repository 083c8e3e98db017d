#include "host/feeds/TextLines.hpp"

#include <cstring>
#include <utility>

namespace vigil {

TextLines::Found TextLines::next() {
    bool tooLong = false;
    std::size_t searched = 0;
    for (;;) {
        const char* begin = m_buffer.data() + m_at;
        const std::size_t size = m_end - m_at;
        const void* newline =
            size > searched ? std::memchr(begin + searched, '\n', size - searched) : nullptr;
        if (newline) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(newline) - begin);
            m_at += length + 1;
            return tooLong || length > m_longest ? foundTooLong() : found({begin, length});
        }
        searched = size;
        if (size > m_longest) {
            tooLong = true;
            m_at = m_end;
            searched = 0;
        }
        if (refill()) continue;
        m_at = m_end;
        if (m_failure) return Found::End;  // what has been read of the line may lack its end
        if (tooLong) return foundTooLong();
        if (searched == 0) return Found::End;
        return found({m_buffer.data() + m_end - searched, searched});
    }
}

TextLines::Found TextLines::found(std::string_view text) {
    if (text.ends_with('\r')) text.remove_suffix(1);
    if (m_line == 0 && text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    ++m_line;
    m_text = text;
    return Found::Line;
}

TextLines::Found TextLines::foundTooLong() {
    ++m_line;
    m_text = {};
    return Found::TooLong;
}

bool TextLines::refill() {
    constexpr std::size_t kChunk = 65536;
    if (m_ended) return false;
    if (m_at > 0) {
        std::memmove(m_buffer.data(), m_buffer.data() + m_at, m_end - m_at);
        m_end -= m_at;
        m_at = 0;
    }
    if (m_buffer.size() < m_end + kChunk + kPadding) m_buffer.resize(m_end + kChunk + kPadding);
    const auto got = m_from->read(m_buffer.data() + m_end, kChunk);
    if (!got) m_failure = got.error();
    const std::size_t count = got ? got.value() : 0;
    m_end += count;
    m_ended = count == 0;
    return !m_ended;
}

}  // namespace vigil
