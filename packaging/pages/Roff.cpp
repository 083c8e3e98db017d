#include "packaging/pages/Roff.hpp"

#include <cctype>
#include <cstdint>
#include <cstdio>

namespace vigil {
namespace {

/// The bytes of the character that begins here, by its first one; 1 for what is no UTF-8.
std::size_t lengthOf(unsigned char first) {
    return first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
}

std::string byItsNumber(std::string_view character) {
    std::uint32_t number = static_cast<unsigned char>(character[0]) & (0xFFu >> (character.size() + 1));
    for (const char byte : character.substr(1))
        number = (number << 6) | (static_cast<unsigned char>(byte) & 0x3Fu);
    char name[16];
    std::snprintf(name, sizeof name, "\\[u%04X]", static_cast<unsigned>(number));
    return name;
}

std::string_view escaped(char character) {
    switch (character) {
        case '\\':
            return "\\e";
        case '-':
            return "\\-";
        case '\'':
            return "\\(aq";
        case '"':
            return "\\(dq";
        case '`':
            return "\\(ga";
        case '^':
            return "\\(ha";
        case '~':
            return "\\(ti";
        default:
            return {};
    }
}

bool isLetter(std::string_view text, std::size_t at) {
    return at < text.size() && std::isalpha(static_cast<unsigned char>(text[at])) != 0;
}

/// One character at `at`, which moves behind it.
void append(std::string& roff, std::string_view text, std::size_t& at) {
    const std::size_t length = lengthOf(static_cast<unsigned char>(text[at]));
    if (length > 1 && at + length <= text.size())
        roff += byItsNumber(text.substr(at, length));
    else if (const std::string_view name = escaped(text[at]); !name.empty())
        roff += name;
    else
        roff += text[at];
    at += length;
}

/// Lines of source that end at a blank before they get longer than this, as far as they can.
constexpr std::size_t kLongestLine = 78;

std::string broken(const std::string& roff) {
    std::string lines;
    std::size_t begin = 0;
    while (roff.size() - begin > kLongestLine) {
        std::size_t blank = roff.rfind(' ', begin + kLongestLine);
        if (blank == std::string::npos || blank <= begin) blank = roff.find(' ', begin);
        // What begins a line must not be read as a request, so the blank before a full stop stays.
        while (blank != std::string::npos && roff.compare(blank, 2, " .") == 0)
            blank = roff.find(' ', blank + 1);
        if (blank == std::string::npos) break;
        lines += roff.substr(begin, blank - begin) + "\n";
        begin = blank + 1;
    }
    return lines + roff.substr(begin);
}

std::string guarded(std::string roff) {
    return roff.starts_with('.') ? "\\&" + roff : roff;
}

}  // namespace

std::string roffTyped(std::string_view text) {
    std::string roff;
    for (std::size_t at = 0; at < text.size();)
        append(roff, text, at);
    return guarded(std::move(roff));
}

std::string roffText(std::string_view text) {
    std::string roff;
    bool bold = false;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '`' && (bold || text.find('`', at + 1) != std::string_view::npos)) {
            bold = !bold;
            roff += bold ? "\\fB" : "\\fR";
            ++at;
        } else if (text[at] == '-' && !bold && at > 0 && isLetter(text, at - 1) && isLetter(text, at + 1)) {
            roff += text[at++];
        } else {
            append(roff, text, at);
        }
    }
    return broken(guarded(std::move(roff)));
}

}  // namespace vigil
