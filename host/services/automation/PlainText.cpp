#include "host/services/automation/PlainText.hpp"

#include <algorithm>

#include "platform/Files.hpp"

namespace vigil {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// How many bytes the character at the front has; 0 where there is none.
std::size_t characterSize(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return 1;
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    return text.size() >= size && isValidUtf8(text.substr(0, size)) ? size : 0;
}

bool isControl(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character[0]);
    if (lead < 0x80) return lead < 0x20 || lead == 0x7F;
    if (lead == 0xC2) return static_cast<unsigned char>(character[1]) < 0xA0;
    return character == "\xE2\x80\xA8" || character == "\xE2\x80\xA9";
}

template <class Write>
std::string mapped(std::string_view bytes, Write write) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t size = characterSize(bytes);
        if (size == 0)
            text += kReplacement;
        else
            write(text, bytes.substr(0, size));
        bytes.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return text;
}

}  // namespace

std::string mendedUtf8(std::string_view bytes) {
    return mapped(bytes, [](std::string& to, std::string_view character) { to += character; });
}

std::string plainLine(std::string_view bytes) {
    return mapped(bytes, [](std::string& to, std::string_view character) {
        to += isControl(character) ? std::string_view(" ") : character;
    });
}

std::string plainLine(std::string_view bytes, std::size_t most) {
    std::string text = plainLine(bytes);
    if (text.size() > most) {
        while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0u) == 0x80u)
            --most;
        text.resize(most);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string plainLines(std::string_view bytes) {
    bool afterReturn = false;
    return mapped(bytes, [&](std::string& to, std::string_view character) {
        const bool pair = afterReturn && character == "\n";
        afterReturn = character == "\r";
        if (pair) return;
        if (character == "\n" || character == "\r")
            to += '\n';
        else
            to += character != "\t" && isControl(character) ? std::string_view(" ") : character;
    });
}

}  // namespace vigil
