#include "host/feeds/wire/WireReading.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "host/readings/KeyNames.hpp"
#include "host/readings/MissingMarks.hpp"

namespace vigil {
namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string lowered(std::string_view text) {
    std::string low(text);
    std::transform(low.begin(), low.end(), low.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return low;
}

}  // namespace

PacketReading wireNumber(std::string key, double value, Unit unit) {
    PacketReading reading;
    reading.key = std::move(key);
    reading.value = value;
    reading.unit = unit;
    return reading;
}

PacketReading wireText(std::string key, std::string text) {
    PacketReading reading;
    reading.key = std::move(key);
    reading.type = kTextType;
    reading.text = std::move(text);
    return reading;
}

PacketReading wireDate(std::string key, Date date) {
    PacketReading reading;
    reading.key = std::move(key);
    reading.type = kDateType;
    reading.value = date.secondsSinceReference();
    return reading;
}

PacketReading wireMissing(std::string key, FourCharCode type) {
    PacketReading reading;
    reading.key = std::move(key);
    reading.type = type;
    reading.missing = true;
    return reading;
}

std::optional<double> numberInText(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
    if (!std::isfinite(number)) return std::nullopt;
    return number;
}

bool isNoValue(std::string_view text) {
    if (isMissingWord(text)) return true;
    const auto number = numberInText(text);
    return number && isMissingNumber(*number);
}

std::string_view shortened(std::string_view text, std::size_t most) {
    if (text.size() <= most) return text;
    const auto continues = [&text](std::size_t at) {
        return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    while (most > 0 && continues(most))
        --most;
    return text.substr(0, most);
}

std::string quotedForPeople(std::string_view text) {
    constexpr std::size_t kMostShown = 40;
    const std::string repaired = repairedUtf8(shortened(text, kMostShown));
    return "\"" + repaired + (text.size() > kMostShown ? "…\"" : "\"");
}

void tell(const DecodeProblem& problem, const std::string& words) {
    if (problem) problem(words);
}

std::string batteryText(std::string_view text) {
    const std::string low = lowered(trimmed(text));
    if (low == "ok" || low == "normal" || low == "good" || low == "high") return "OK";
    if (low == "low" || low == "bad" || low == "replace") return "LOW";
    return std::string(text);
}

std::string notANumber(std::string_view name, std::string_view found) {
    return std::string(name) + ": expected a number, found " + quotedForPeople(found) + "; left out";
}

PacketReading& ReadingList::next(std::string_view key) {
    if (m_readings.size() < kMostReadingsOfMessage) return m_readings.emplace_back();
    if (!m_told)
        tell(m_problem, "a message gives at most " + std::to_string(kMostReadingsOfMessage) + " readings; " +
                            quotedForPeople(key) + " and all further ones are left out");
    m_told = true;
    return m_unseen = {};
}

}  // namespace vigil
