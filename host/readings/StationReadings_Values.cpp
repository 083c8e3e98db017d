#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "host/readings/MissingMarks.hpp"
#include "host/readings/StationReadings_State.hpp"
#include "host/readings/Units.hpp"
#include "platform/Files.hpp"

namespace vigil {
namespace {

/// A number that is all of a text, blanks around it apart.
std::optional<double> numberInText(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) return std::nullopt;
    text = text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

std::optional<std::string> given(const std::string& text) {
    if (text.empty()) return std::nullopt;
    return isValidUtf8(text) ? text : repairedUtf8(text);
}

}  // namespace

void StationReadings::State::readValues(const Packet& packet, Sensor& sensor, std::optional<Date> time,
                                        Date now) {
    std::size_t guess = sensor.first;
    std::size_t before = kNowhere;
    for (const PacketReading& sent : packet.readings) {
        if (sent.key.size() > kLongestReadingName) {
            ++left.longNames;
            continue;
        }
        // What has no value makes no entry: the station may never have had such a reading.
        const bool empty = sent.missing || (sent.type == kTextType && isMissingWord(sent.text));
        const std::size_t index = empty ? table.find(sent.key, guess) : table.findOrAdd(sent.key, guess);
        if (index == kNowhere) {
            ++(empty ? left.missing : left.noPlace);
            continue;
        }
        (before == kNowhere ? sensor.first : table.at(before).next) = index;
        before = index;
        guess = table.at(index).next;
        std::optional<Date> taken = time;
        if (sent.time && isTime(*sent.time, now, packet.recorded.has_value()))
            taken = sent.time;
        else if (sent.time)
            ++left.wrongTimes;
        if (empty)
            hasNoValue(index);
        else if (sent.type == kDateType)
            readDate(sent, index, taken);
        else if (sent.type == kTextType && !table.at(index).wantsNumber())
            readText(sent, index, taken);
        else
            readNumber(sent, index, taken);
    }
}

void StationReadings::State::hasNoValue(std::size_t index) {
    ++left.missing;
    gone.push_back(index);
}

void StationReadings::State::readText(const PacketReading& sent, std::size_t index,
                                      std::optional<Date> time) {
    const auto& label = table.label(table.at(index), sent.name, sent.unitText, kTextType, sent.visible);
    values.push_back({index,
                      {label,
                       {.stringValue = given(sent.text),
                        .time = time,
                        .unitStringValueWithUnitShort = given(sent.unitString)}}});
}

void StationReadings::State::readDate(const PacketReading& sent, std::size_t index,
                                      std::optional<Date> time) {
    if (!std::isfinite(sent.value) || !std::isfinite(sent.unitValue.value_or(0))) return hasNoValue(index);
    const auto& label = table.label(table.at(index), sent.name, {}, kDateType, sent.visible);
    values.push_back({index,
                      {label,
                       {.value = sent.value,
                        .unitValue = sent.unitValue.value_or(sent.value),
                        .stringValue = given(sent.text),
                        .time = time,
                        .unitStringValueWithUnitShort = given(sent.unitString)}}});
}

void StationReadings::State::readNumber(const PacketReading& sent, std::size_t index,
                                        std::optional<Date> time) {
    StationEntry& entry = table.at(index);
    const bool inText = sent.type == kTextType;
    double number = sent.value;
    if (inText) {
        const auto read = numberInText(sent.text);
        if (!read) {
            ++left.unreadable;
            return;
        }
        number = *read;
    }
    if (isMissingNumber(number)) return hasNoValue(index);
    // A sender that gives both numbers knows the reading as a station does, and has judged it.
    const bool judged = sent.unitValue.has_value();
    table.settleUnits(entry, judged ? Unit::None : sent.unit, judged ? std::string_view() : sent.unitText);
    if (entry.wrongUnit) {
        ++left.wrongUnit;
        return;
    }
    const double value = *convert(number, entry.from, entry.held);
    const double unitValue = judged ? *sent.unitValue : *convert(number, entry.from, entry.shown);
    const Bounds bounds = judged ? Bounds{} : entry.bounds;
    if (!bounds.hold(value) || !std::isfinite(unitValue)) {
        if (isMissingWhereImplausible(number)) return hasNoValue(index);
        ++left.implausible;
        return;
    }
    std::string_view unit = entry.ownText ? std::string_view(sent.unitText) : unitText(entry.shown);
    if (judged) unit = sent.unitText.empty() ? unitText(sent.unit) : std::string_view(sent.unitText);
    const FourCharCode type = inText ? kNumericType : sent.type;
    const bool isShown = judged || entry.from == entry.shown;
    const auto& label = table.label(entry, sent.name, unit, type, sent.visible);
    values.push_back({index,
                      {label,
                       {.value = value,
                        .unitValue = unitValue,
                        .stringValue = inText ? std::nullopt : given(sent.text),
                        .time = time,
                        .unitStringValueWithUnitShort = isShown ? given(sent.unitString) : std::nullopt}}});
}

}  // namespace vigil
