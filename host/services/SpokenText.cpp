#include "host/services/SpokenText.hpp"

#include <algorithm>
#include <string_view>

#include "platform/Files.hpp"

namespace vigil {
namespace {

/// Bytes of the character at the front; 0 where none begins.
std::size_t characterSize(std::string_view text) {
    for (std::size_t size = 1; size <= std::min<std::size_t>(4, text.size()); ++size)
        if (isValidUtf8(text.substr(0, size))) return size;
    return 0;
}

bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) return first < 0x20 || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

}  // namespace

SpokenText spokenText(const std::optional<std::string>& text) {
    SpokenText made;
    std::string_view rest = text ? std::string_view(*text) : std::string_view();
    std::size_t characters = 0;
    std::size_t behind = 0;
    while (!rest.empty()) {
        const std::size_t size = characterSize(rest);
        std::string_view character = rest.substr(0, std::max<std::size_t>(size, 1));
        rest.remove_prefix(character.size());
        if (size == 0 || isControl(character)) character = " ";
        if (character == " " && made.text.empty()) continue;
        if (characters == kSpokenCharacters) {
            ++behind;
            if (character != " ") made.leftOut = behind;  // blanks at the end are nobody's loss
            continue;
        }
        if (character == "[" && made.text.ends_with('[')) made.text += ' ';
        made.text += character;
        ++characters;
    }
    made.text.erase(made.text.find_last_not_of(' ') + 1);
    return made;
}

}  // namespace vigil
