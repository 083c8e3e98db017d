#include "host/command/JsonText.hpp"

#include "host/readings/KeyNames.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

void appendEscaped(std::string& to, char c) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    switch (c) {
        case '"':
            to += "\\\"";
            return;
        case '\\':
            to += "\\\\";
            return;
        case '\n':
            to += "\\n";
            return;
        case '\r':
            to += "\\r";
            return;
        case '\t':
            to += "\\t";
            return;
        default:
            to += "\\u00";
            to += kDigits[static_cast<unsigned char>(c) >> 4];
            to += kDigits[static_cast<unsigned char>(c) & 0xF];
    }
}

}  // namespace

void appendJsonText(std::string& to, std::string_view text) {
    if (!isValidUtf8(text)) return appendJsonText(to, repairedUtf8(text));
    to += '"';
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\' || c == 0x7F)
            appendEscaped(to, c);
        else
            to += c;
    }
    to += '"';
}

}  // namespace vigil
