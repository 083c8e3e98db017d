#include "host/helper/OutputTail.hpp"

#include "host/services/ScriptRequest.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

// One byte more than is shown tells whether the first line shown is whole.
constexpr std::size_t kKept = kLastLines + 1;

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80u;
}

// How many bytes of `text` are its first character: 0 when they are none or one that no line shows.
std::size_t characterSize(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return lead == '\n' || lead == '\t' || (lead >= 0x20 && lead != 0x7F) ? 1 : 0;
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (text.size() < size || !isValidUtf8(text.substr(0, size))) return 0;
    const bool control = lead == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
    return control ? 0 : size;
}

// Never longer than `text`.
std::string readable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t size = characterSize(text);
        if (size > 0)
            shown.append(text.substr(0, size));
        else if (!text.starts_with("\r\n"))
            shown.push_back('?');
        text.remove_prefix(size > 0 ? size : 1);
    }
    return shown;
}

}  // namespace

void OutputTail::append(std::string_view bytes) {
    m_bytes += bytes.size();
    if (bytes.size() >= kKept) {
        m_tail = bytes.substr(bytes.size() - kKept);
        return;
    }
    m_tail.append(bytes);
    if (m_tail.size() > 2 * kKept) m_tail.erase(0, m_tail.size() - kKept);
}

std::string_view OutputTail::window() const {
    std::string_view all = m_tail;
    if (all.size() <= kLastLines) return all;
    std::string_view shown = all.substr(all.size() - kLastLines);
    if (all[all.size() - kLastLines - 1] == '\n') return shown;
    const std::size_t end = shown.find('\n');
    if (end != std::string_view::npos && end + 1 < shown.size()) return shown.substr(end + 1);
    while (!shown.empty() && isContinuation(shown[0]))
        shown.remove_prefix(1);
    return shown;
}

bool OutputTail::truncated() const {
    return window().size() < m_bytes;
}

std::string OutputTail::lastLines() const {
    return readable(window());
}

}  // namespace vigil
