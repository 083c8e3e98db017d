#include "host/command/PeopleName.hpp"

#include <algorithm>

#include "platform/Files.hpp"

namespace vigil {
namespace {

bool isControl(std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x20 || byte == 0x7F) return true;
    // U+0080 to U+009F: the same controls in their longer form
    return byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
}

}  // namespace

Result<std::string> nameFromUser(std::string_view what, std::string_view typed) {
    const std::size_t begin = std::min(typed.find_first_not_of(' '), typed.size());
    typed.remove_prefix(begin);
    typed = typed.substr(0, typed.find_last_not_of(' ') + 1);
    const std::string name(what);
    if (typed.size() > kLongestPeopleName)
        return Error{name + " has at most " + std::to_string(kLongestPeopleName) + " bytes; this one has " +
                     std::to_string(typed.size())};
    if (!isValidUtf8(typed)) return Error{name + " has to be UTF-8"};
    for (std::size_t i = 0; i < typed.size(); ++i)
        if (isControl(typed, i)) return Error{name + " takes no line ends, tabs or other control characters"};
    return std::string(typed);
}

}  // namespace vigil
