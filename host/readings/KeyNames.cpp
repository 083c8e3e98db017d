#include "host/readings/KeyNames.hpp"

#include <algorithm>

#include "platform/Files.hpp"

namespace vigil {
namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isKeyCharacter(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

/// Bytes of the character in front: those of one UTF-8 sequence, or one byte that belongs to none.
std::size_t characterLength(std::string_view text) {
    for (std::size_t length = 1; length <= std::min<std::size_t>(4, text.size()); ++length)
        if (isValidUtf8(text.substr(0, length))) return length;
    return 1;
}

}  // namespace

std::string keyFromName(std::string_view name) {
    std::string key;
    while (!name.empty()) {
        key += isKeyCharacter(name.front()) ? name.front() : '_';
        name.remove_prefix(characterLength(name));
    }
    const bool reserved = key == "AND" || key == "OR" || key == "CAST";
    if (key.empty() || !isLetter(key.front()) || reserved) key.insert(0, 1, 'k');
    return key;
}

std::string KeyNames::keyFor(std::string_view name) {
    const std::string wanted = keyFromName(name);
    std::string key = wanted;
    for (int number = 2; !m_taken.insert(key).second; ++number)
        key = wanted + "_" + std::to_string(number);
    return key;
}

std::string repairedUtf8(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        const std::string_view character = bytes.substr(0, length);
        text += isValidUtf8(character) ? character : std::string_view("\xEF\xBF\xBD");
        bytes.remove_prefix(length);
    }
    return text;
}

}  // namespace vigil
