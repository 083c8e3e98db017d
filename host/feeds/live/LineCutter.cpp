#include "host/feeds/live/LineCutter.hpp"

#include <utility>

namespace vigil {

bool LineCutter::take(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const bool ends = end != std::string_view::npos;
        const std::string_view piece = bytes.substr(0, end);
        bytes.remove_prefix(ends ? end + 1 : bytes.size());
        if (!m_skipping && m_begun.size() + piece.size() > m_longest) {
            std::string().swap(m_begun);
            m_skipping = true;
            m_tooLong();
        }
        bool mayGoOn = true;
        if (m_skipping) {
            m_skipping = !ends;
        } else if (!ends) {
            m_begun += piece;
        } else if (m_begun.empty()) {
            mayGoOn = give(piece);
        } else {
            m_begun += piece;
            mayGoOn = giveBegun();
        }
        if (!mayGoOn && !bytes.empty()) {
            m_kept.assign(bytes);
            return false;
        }
    }
    return true;
}

bool LineCutter::goOn() {
    if (m_kept.empty()) return true;
    return take(std::exchange(m_kept, {}));
}

void LineCutter::finish() {
    giveBegun();
    m_skipping = false;
}

void LineCutter::skipRest() {
    clear();
    m_skipping = true;
}

void LineCutter::clear() {
    std::string().swap(m_begun);  // a long line's memory is not kept
    std::string().swap(m_kept);
    m_skipping = false;
}

bool LineCutter::giveBegun() {
    const std::string whole = std::exchange(m_begun, {});
    return give(whole);
}

bool LineCutter::give(std::string_view whole) {
    if (whole.ends_with('\r')) whole.remove_suffix(1);
    return whole.empty() || m_line(whole);
}

}  // namespace vigil
