#include <algorithm>
#include <cmath>
#include <string>

#include "host/readings/Derived.hpp"
#include "host/readings/StationReadings_State.hpp"
#include "host/readings/Units.hpp"
#include "platform/Number.hpp"

namespace vigil {
namespace {

/// The later of two times; of an absent one the other.
std::optional<Date> latest(const AgentProperty& one, const AgentProperty* other) {
    if (!other) return one.time();
    return std::max(one.time(), other->time());  // nothing is less than any time
}

/// A formula gives more digits than its inputs had, and people want to read one; "-0" is no number for them.
std::string roundedText(double value) {
    constexpr double kParts = 10;
    const double rounded = std::round(value * kParts) / kParts;
    return numberText(rounded == 0 ? 0.0 : rounded);
}

}  // namespace

const AgentProperty* StationReadings::State::input(Input which) {
    static constexpr std::array<std::string_view, kInputs> kKeys = {"outsideTemp", "outsideHumidity",
                                                                    "windSpeed", "windDir"};
    std::size_t& index = inputs[which];
    if (index == kNowhere) index = table.find(kKeys[which], kNowhere);
    if (index == kNowhere || !isInBatch(table.at(index))) return nullptr;
    const StationEntry& entry = table.at(index);
    // A unit that nobody knows, or a text, says nothing to a formula.
    const bool usable = entry.taken && !entry.ownText && entry.current->type() == kNumericType;
    return usable ? &*entry.current : nullptr;
}

StationEntry* StationReadings::State::made(std::size_t& index, std::string_view key) {
    index = table.findOrAdd(key, index);
    if (index == kNowhere) {
        ++counts.noPlace;
        return nullptr;
    }
    StationEntry& entry = table.at(index);
    return entry.sent ? nullptr : &entry;
}

void StationReadings::State::putDerived(std::size_t& index, std::string_view key, double value,
                                        std::optional<Date> time) {
    StationEntry* entry = made(index, key);
    if (!entry) return;
    table.settleUnits(*entry, Unit::None, {});
    if (!entry->bounds.hold(value)) return;  // of inputs that their sender alone has judged
    const auto& label = table.label(*entry, {}, unitText(entry->shown), kNumericType, true);
    const double unitValue = *convert(value, entry->held, entry->shown);
    put(*entry, {label,
                 {.value = value,
                  .unitValue = unitValue,
                  .time = time,
                  .unitStringValueWithUnitShort = roundedText(unitValue) + " " + label->unit}});
}

void StationReadings::State::derive() {
    const AgentProperty* direction = input(WindDirection);
    // Every entry may move where one is added, so what is needed is copied first.
    if (direction) {
        const double degrees = direction->value();
        const auto time = direction->time();
        if (StationEntry* entry = made(derived[Compass], "windDirText")) {
            const auto& label = table.label(*entry, {}, {}, kTextType, true);
            put(*entry, {label, {.stringValue = std::string(compassText(degrees)), .time = time}});
        }
    }
    const AgentProperty* air = input(Temperature);
    if (!air) return;
    const AgentProperty* water = input(Humidity);
    const AgentProperty* wind = input(WindSpeed);
    const double temperature = air->value();
    const auto humidity = water ? std::optional(std::min(water->value(), 100.0)) : std::nullopt;
    const auto speed = wind ? std::optional(wind->value()) : std::nullopt;
    const auto wet = latest(*air, water);
    const auto windy = latest(*air, wind);
    const auto all = water ? std::max(latest(*water, wind), air->time()) : windy;
    if (humidity && *humidity > 0)
        putDerived(derived[DewPoint], "dewPoint", dewPoint(temperature, *humidity), wet);
    if (speed) putDerived(derived[WindChill], "windChill", windChill(temperature, *speed), windy);
    if (humidity) putDerived(derived[HeatIndex], "heatIndex", heatIndex(temperature, *humidity), wet);
    if (humidity && speed)
        putDerived(derived[FeelsLike], "feelsLike", feelsLike(temperature, *humidity, *speed), all);
}

}  // namespace vigil
