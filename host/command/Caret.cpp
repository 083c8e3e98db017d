#include "host/command/Caret.hpp"

#include <algorithm>
#include <vector>

#include "host/readings/KeyNames.hpp"

namespace vigil {
namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kAround = 60;  // characters kept on either side of the place

/// One entry a character that is shown.
std::vector<std::string> characters(std::string_view bytes) {
    std::vector<std::string> result;
    for (const char c : repairedUtf8(bytes)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continues = (byte & 0xC0u) == 0x80u;
        if (continues && !result.empty())
            result.back() += c;
        else
            result.emplace_back(1, byte < 0x20 || byte == 0x7F ? ' ' : c);
    }
    return result;
}

std::string joined(const std::vector<std::string>& parts, std::size_t begin, std::size_t end) {
    std::string text;
    for (std::size_t i = begin; i < end; ++i)
        text += parts[i];
    return text;
}

}  // namespace

std::string caretText(std::string_view text, std::size_t offset, std::size_t length) {
    offset = std::min(offset, text.size());
    const std::size_t before = offset == 0 ? std::string_view::npos : text.rfind('\n', offset - 1);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::size_t end = std::min(text.find('\n', offset), text.size());
    length = std::min(length, end - offset);

    const auto front = characters(text.substr(begin, offset - begin));
    const auto found = characters(text.substr(offset, length));
    const auto back = characters(text.substr(offset + length, end - offset - length));
    const bool cutFront = front.size() > kAround;
    const bool cutFound = found.size() > kAround;
    const bool cutBack = cutFound || back.size() > kAround;

    const std::size_t shownFound = cutFound ? kAround : found.size();
    const std::size_t skipped = cutFront ? front.size() - kAround : 0;
    std::string shown(kIndent, ' ');
    if (cutFront) shown += "…";
    shown += joined(front, skipped, front.size());
    shown += joined(found, 0, shownFound);
    if (!cutFound) shown += joined(back, 0, std::min(back.size(), kAround));
    if (cutBack) shown += "…";
    const std::size_t column = kIndent + (cutFront ? 1 : 0) + front.size() - skipped;
    return shown + "\n" + std::string(column, ' ') + "^" +
           std::string(shownFound > 1 ? shownFound - 1 : 0, '~') + "\n";
}

}  // namespace vigil
