#include "host/feeds/live/LineCutter.hpp"

namespace vigil {

void LineCutter::take(std::string_view bytes, const Line& line, const TooLong& tooLong) {
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const bool ends = end != std::string_view::npos;
        const std::string_view piece = bytes.substr(0, end);
        bytes.remove_prefix(ends ? end + 1 : bytes.size());
        if (!m_skipping && m_begun.size() + piece.size() > m_longest) {
            skipRest();
            tooLong();
        }
        if (m_skipping) {
            m_skipping = !ends;
        } else if (!ends) {
            m_begun += piece;
        } else if (m_begun.empty()) {
            give(piece, line);
        } else {
            m_begun += piece;
            finish(line);
        }
    }
}

void LineCutter::finish(const Line& line) {
    std::string whole;
    whole.swap(m_begun);  // a long line's memory is not kept
    m_skipping = false;
    give(whole, line);
}

void LineCutter::skipRest() {
    clear();
    m_skipping = true;
}

void LineCutter::clear() {
    std::string().swap(m_begun);
    m_skipping = false;
}

void LineCutter::give(std::string_view whole, const Line& line) {
    if (whole.ends_with('\r')) whole.remove_suffix(1);
    if (!whole.empty()) line(whole);
}

}  // namespace vigil
