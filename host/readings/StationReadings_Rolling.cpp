#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "host/readings/StationReadings_State.hpp"
#include "host/readings/Units.hpp"

namespace vigil {
namespace {

using Kind = RollingChoice::Kind;

bool isThreshold(Kind kind) {
    return kind == Kind::Below || kind == Kind::Above;
}

}  // namespace

void StationReadings::State::startRolling() {
    for (const RollingChoice& choice : settings.rolling) {
        if (rollings.size() == kMostRollingChoices) return;
        std::string key = choice.key();
        const bool twice = std::any_of(rollings.begin(), rollings.end(),
                                       [&](const Rolling& other) { return other.key == key; });
        if (twice) continue;
        table.reserve(key);
        rollings.push_back(
            {.choice = choice, .key = std::move(key), .window = RollingWindow(std::max(1.0, choice.number))});
    }
}

bool StationReadings::State::findSource(Rolling& rolling) {
    for (std::size_t i = rolling.searched; rolling.source == kNowhere && i < table.size(); ++i)
        if (table.at(i).key == rolling.choice.source) rolling.source = i;
    rolling.searched = table.size();
    return rolling.source != kNowhere;
}

void StationReadings::State::roll(Date now) {
    for (Rolling& rolling : rollings) {
        if (!findSource(rolling)) continue;
        if (rolling.choice.kind == Kind::Age)
            rollAge(rolling, now);
        else if (isInBatch(table.at(rolling.source)))
            rollWindow(rolling);
    }
}

bool StationReadings::State::rollAge(Rolling& rolling, Date now) {
    const auto heard = table.at(rolling.source).heard;
    if (!heard) return false;
    const double minutes = std::max(0.0, now.secondsSince(*heard)) / 60;
    putRolling(rolling, {minutes, minutes}, unitText(Unit::Minute), now);
    return true;
}

void StationReadings::State::rollWindow(Rolling& rolling) {
    const StationEntry& source = table.at(rolling.source);
    const AgentProperty reading = *source.current;
    if (reading.type() == kTextType || reading.type() == kDateType) return;
    const Date time = reading.time().value_or(arrived);
    if (source.news == news) sample(rolling, reading, time);
    if (isThreshold(rolling.choice.kind)) {
        const double minutes = rolling.run.minutes();
        return putRolling(rolling, {minutes, minutes}, unitText(Unit::Minute), time);
    }
    const bool direction = source.held == Unit::Degree;
    std::optional<RollingSample> number;
    if (rolling.choice.kind == Kind::Mean)
        number = direction ? rolling.window.meanDirection(time) : rolling.window.mean(time);
    else
        number = rolling.choice.kind == Kind::Min ? rolling.window.min(time) : rolling.window.max(time);
    if (number) putRolling(rolling, *number, reading.unit(), time);
}

void StationReadings::State::sample(Rolling& rolling, const AgentProperty& reading, Date time) {
    // A reading that a station tells again with its old time is the same sample.
    const bool again = rolling.sampled == time && rolling.sample == reading.value();
    if (again) return;
    rolling.sampled = time;
    rolling.sample = reading.value();
    const double threshold = rolling.choice.number;
    if (rolling.choice.kind == Kind::Below)
        rolling.run.add(time, reading.unitValue() < threshold);
    else if (rolling.choice.kind == Kind::Above)
        rolling.run.add(time, reading.unitValue() > threshold);
    else
        rolling.window.add(time, {reading.value(), reading.unitValue()});
}

void StationReadings::State::putRolling(Rolling& rolling, const RollingSample& number, std::string_view unit,
                                        Date time) {
    if (!std::isfinite(number.value) || !std::isfinite(number.unitValue)) return;  // a sum too large
    if (rolling.entry == kNowhere) rolling.entry = table.addReserved(rolling.key);
    if (rolling.entry == kNowhere) {
        ++counts.noPlace;
        return;
    }
    const auto& source = table.at(rolling.source).label;
    if (rolling.named != source) {
        rolling.named = source;
        rolling.name = source->name + ", " + rolling.choice.words();
        if (isThreshold(rolling.choice.kind) && !source->unit.empty()) rolling.name += " " + source->unit;
    }
    StationEntry& entry = table.at(rolling.entry);
    const auto& label = table.label(entry, rolling.name, unit, kNumericType, true);
    put(entry, {label, {.value = number.value, .unitValue = number.unitValue, .time = time}});
}

void StationReadings::State::forgetAfter(Date time, const Sensor* sensor) {
    for (Rolling& rolling : rollings) {
        const bool concerned =
            !sensor || (rolling.source != kNowhere && table.at(rolling.source).sensor == sensor->number);
        if (!concerned) continue;
        rolling.window.forgetAfter(time);
        rolling.run.forget();
        rolling.sampled.reset();
    }
}

}  // namespace vigil
