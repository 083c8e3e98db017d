#include "conditions/Characters.hpp"

#include "platform/Files.hpp"

namespace vigil {
std::size_t characterLength(std::string_view text) {
    for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length)
        if (isValidUtf8(text.substr(0, length))) return length;
    return 1;
}

std::string describeCharacter(std::string_view text) {
    const std::size_t length = characterLength(text);
    const unsigned first = static_cast<unsigned char>(text.front());
    if (first == '\n' || first == '\r') return "a line break";
    if (length == 1 && (first < 0x20 || first > 0x7E)) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        return std::string("the byte 0x") + kDigits[first >> 4] + kDigits[first & 0xF];
    }
    return '"' + std::string(text.substr(0, length)) + '"';
}

}  // namespace vigil
