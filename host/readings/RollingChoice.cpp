#include "host/readings/RollingChoice.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "host/readings/KeyNames.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

using Kind = RollingChoice::Kind;

/// In the order of the enumeration.
struct KindRow {
    Kind kind;
    std::string_view word;
    std::string_view inKey;
};
constexpr std::array<KindRow, 6> kKinds = {{
    {Kind::Mean, "mean", "Mean"},
    {Kind::Min, "min", "Min"},
    {Kind::Max, "max", "Max"},
    {Kind::Age, "age", "Age"},
    {Kind::Below, "below", "MinutesBelow"},
    {Kind::Above, "above", "MinutesAbove"},
}};

const KindRow& row(Kind kind) {
    return kKinds[static_cast<std::size_t>(kind)];
}

bool isWindow(Kind kind) {
    return kind == Kind::Mean || kind == Kind::Min || kind == Kind::Max;
}

struct Word {
    std::string_view text;
    std::size_t offset;
};

std::vector<Word> wordsOf(std::string_view text) {
    constexpr std::size_t kMost = 4;  // one more than there may be
    std::vector<Word> words;
    std::size_t at = 0;
    while (words.size() < kMost) {
        const std::size_t begin = text.find_first_not_of(" \t", at);
        if (begin == std::string_view::npos) break;
        at = std::min(text.find_first_of(" \t", begin), text.size());
        words.push_back({text.substr(begin, at - begin), begin});
    }
    return words;
}

Error refused(std::size_t offset, std::string_view reason) {
    return {"rolling reading, byte " + std::to_string(offset) + ": " + std::string(reason)};
}

std::optional<double> numberOf(std::string_view text) {
    double number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(number)) return std::nullopt;
    return number == 0 ? 0 : number;  // no minus zero
}

bool isThreshold(double number) {
    const double size = std::abs(number);
    return size == 0 || (size >= RollingChoice::kLeastThreshold && size <= RollingChoice::kMostThreshold);
}

bool isMinutes(double number) {
    return number >= 1 && number <= RollingChoice::kMostMinutes && number == std::floor(number);
}

}  // namespace

Result<RollingChoice> RollingChoice::parse(std::string_view text) {
    const std::vector<Word> words = wordsOf(text);
    if (words.empty()) return refused(0, "expected the key of a reading");
    const std::string_view source = words[0].text;
    if (keyFromName(source) != source)
        return refused(words[0].offset, "expected a key: letters, digits and _, a letter first");
    if (words.size() < 2) return refused(text.size(), "expected mean, min, max, age, below or above");
    const auto* found = std::find_if(kKinds.begin(), kKinds.end(),
                                     [&](const KindRow& known) { return known.word == words[1].text; });
    if (found == kKinds.end())
        return refused(words[1].offset, "expected mean, min, max, age, below or above");
    RollingChoice choice{.source = std::string(source), .kind = found->kind};
    const std::size_t wanted = found->kind == Kind::Age ? 2 : 3;
    if (words.size() > wanted) return refused(words[wanted].offset, "expected nothing more");
    if (wanted == 2) return choice;
    const bool window = isWindow(found->kind);
    const std::string_view expected = window ? "expected whole minutes, 1 to 1440"
                                             : "expected a number without exponent, 0 or of a size from "
                                               "0.00001 to 1000000000";
    if (words.size() < 3) return refused(text.size(), expected);
    const auto number = numberOf(words[2].text);
    if (!number || !(window ? isMinutes(*number) : isThreshold(*number)))
        return refused(words[2].offset, expected);
    choice.number = *number;
    return choice;
}

std::string RollingChoice::text() const {
    std::string made = source + " " + std::string(row(kind).word);
    if (kind != Kind::Age) appendNumber(made += ' ', number);
    return made;
}

std::string RollingChoice::key() const {
    std::string made = source + std::string(row(kind).inKey);
    if (kind == Kind::Age) return made;
    std::string digits = numberText(number);
    std::replace(digits.begin(), digits.end(), '.', '_');
    if (digits.starts_with('-')) digits.replace(0, 1, "Minus");
    return made += digits;
}

std::string RollingChoice::words() const {
    const std::string digits = numberText(number);
    const std::string word(row(kind).word);
    if (kind == Kind::Age) return word;
    return isWindow(kind) ? word + " of " + digits + " min" : "minutes " + word + " " + digits;
}

}  // namespace vigil
