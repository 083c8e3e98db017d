#include "host/command/Svg.hpp"

#include <algorithm>
#include <cstddef>

namespace vigil {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool isTail(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// The length of the UTF-8 sequence at the front, or 0 where there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isTail(text[i])) return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool surrogate = lead == 0xED && second > 0x9F;
    const bool beyond = lead == 0xF4 && second > 0x8F;
    // U+FFFE and U+FFFF are no characters of XML.
    const bool none = lead == 0xEF && second == 0xBF && static_cast<unsigned char>(text[2]) > 0xBD;
    return overlong || surrogate || beyond || none ? 0 : length;
}

}  // namespace

void appendXmlText(std::string& to, std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        const char c = text.front();
        if (c == '&')
            to += "&amp;";
        else if (c == '<')
            to += "&lt;";
        else if (c == '>')
            to += "&gt;";
        else if (c == '"')
            to += "&quot;";
        else if (length == 0 || (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n'))
            to += kReplacement;
        else
            to += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
}

std::string xmlText(std::string_view text) {
    std::string to;
    appendXmlText(to, text);
    return to;
}

std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return !isTail(c); }));
}

std::string shortened(std::string_view text, std::size_t characters) {
    std::size_t seen = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isTail(text[i])) continue;
        if (seen++ == characters) return std::string(text.substr(0, i)) + "…";
    }
    return std::string(text);
}

}  // namespace vigil
