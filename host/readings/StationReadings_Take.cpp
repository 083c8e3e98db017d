#include <algorithm>
#include <cmath>

#include "host/readings/StationReadings_State.hpp"

namespace vigil {
namespace {

bool isWithin(double seconds, Date earlier, Date later) {
    const double passed = later.secondsSince(earlier);
    return passed >= 0 && passed <= seconds;
}

bool saysTheSame(const AgentProperty& one, const AgentProperty& other) {
    return one.value() == other.value() && one.unitValue() == other.unitValue() &&
           one.givenStringValue() == other.givenStringValue();
}

/// Absent times are those of packets that tell none: the arrival has been judged already.
bool isOfOneTransmission(const std::optional<Date>& one, const std::optional<Date>& other) {
    return !one || !other || std::abs(one->secondsSince(*other)) <= StationReadings::kRepeatSeconds;
}

}  // namespace

bool StationReadings::State::isTime(Date time, Date now, bool recorded) {
    if (recorded) return time >= Date::distantPast() && std::isfinite(time.secondsSinceReference());
    return time >= Date::distantPast() && time.secondsSince(now) <= kFutureSeconds;  // false for NaN
}

Taken StationReadings::State::take(const Packet& packet, Date now) {
    using enum Taken::Kind;
    ++counts.packets;
    noteClock(now);
    arrived = isTime(packet.arrived, now) ? packet.arrived : now;
    const bool timed = packet.time && isTime(*packet.time, now, packet.recorded.has_value());
    if (packet.time && !timed) ++counts.wrongTimes;
    Sensor& sensor = sensors[sensorNamed(packet.sensor)];
    if (!packet.retained) {
        sensor.heard = now;
        const auto verdict =
            timed ? sensor.clock.judge(*packet.time, arrived) : SensorClock::Verdict::InOrder;
        if (verdict == SensorClock::Verdict::Late) return ++counts.late, Taken{Late};
        if (verdict == SensorClock::Verdict::SetBack) {
            ++counts.jumps;
            forgetAfter(*packet.time, &sensor);
        }
    }
    values.clear();
    gone.clear();
    left = {};
    // When a broker got what it retained is known by the packet alone.
    const auto arrival = packet.retained ? std::nullopt : std::optional(arrived);
    readValues(packet, sensor, timed ? packet.time : arrival, now);
    if (packet.retained) {
        countLeft();
        keepRetained();
        return ++counts.retained, Taken{Retained};
    }
    const bool another = packet.recorded && packet.recorded != sensor.recorded;
    sensor.recorded = packet.recorded;
    const bool repeat = !another && isRepeat(sensor);
    if (!repeat) countLeft();
    for (const std::size_t index : gone)
        table.at(index).missing = true;
    if (repeat) return ++counts.repeats, Taken{Repeat};
    if (values.empty()) return ++counts.empty, Taken{Nothing};
    besides = !packet.sensor.empty();
    return {News, announce(sensor, now)};
}

void StationReadings::State::noteClock(Date now) {
    constexpr double kStep = 5;  // seconds; a clock that is only slowed down never goes back so far
    const bool setBack = lastNow && lastNow->secondsSince(now) > kStep;
    lastNow = now;
    if (!setBack) return;
    ++counts.jumps;
    for (Sensor& sensor : sensors) {
        sensor.clock.forget();
        sensor.heard = std::min(sensor.heard, now);
    }
    for (StationEntry& entry : table.entries())
        if (entry.heard) entry.heard = std::min(*entry.heard, now);
    if (announced) announced = std::min(*announced, now);
    forgetAfter(now, nullptr);
}

std::size_t StationReadings::State::sensorNamed(const std::string& name) {
    if (lastSensor < sensors.size() && sensors[lastSensor].name == name) return lastSensor;
    auto found =
        std::find_if(sensors.begin(), sensors.end(), [&](const Sensor& known) { return known.name == name; });
    if (found == sensors.end()) {
        Sensor fresh{.name = name, .number = ++sensorsSeen, .heard = *lastNow};
        if (sensors.size() < kMostSensors) {
            found = sensors.insert(found, std::move(fresh));
        } else {
            found = std::min_element(sensors.begin(), sensors.end(),
                                     [](const Sensor& a, const Sensor& b) { return a.heard < b.heard; });
            *found = std::move(fresh);
        }
    }
    return lastSensor = static_cast<std::size_t>(found - sensors.begin());
}

bool StationReadings::State::isRepeat(const Sensor& sensor) const {
    return !values.empty() && std::all_of(values.begin(), values.end(), [&](const Value& value) {
        const StationEntry& entry = table.at(value.entry);
        return entry.heard && !entry.missing && entry.sensor == sensor.number &&
               isWithin(kRepeatSeconds, *entry.heard, arrived) &&
               saysTheSame(value.reading, *entry.current) &&
               isOfOneTransmission(value.reading.time(), entry.current->time());
    });
}

void StationReadings::State::keepRetained() {
    for (Value& value : values) {
        StationEntry& entry = table.at(value.entry);
        entry.sent = true;
        if (entry.news == 0) entry.current = std::move(value.reading);
    }
    current = nullptr;
}

std::shared_ptr<const Readings> StationReadings::State::announce(const Sensor& sensor, Date now) {
    ++news;
    announced = now;
    for (Value& value : values) {
        StationEntry& entry = table.at(value.entry);
        entry.sent = true;
        entry.missing = false;
        entry.sensor = sensor.number;
        put(entry, std::move(value.reading));
    }
    if (settings.derive) derive();
    roll(now);
    return batch();
}

void StationReadings::State::countLeft() {
    counts.missing += left.missing;
    counts.implausible += left.implausible;
    counts.unreadable += left.unreadable;
    counts.wrongUnit += left.wrongUnit;
    counts.longNames += left.longNames;
    counts.noPlace += left.noPlace;
    counts.wrongTimes += left.wrongTimes;
}

}  // namespace vigil
