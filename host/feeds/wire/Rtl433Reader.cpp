#include "host/feeds/wire/Rtl433Reader.hpp"

#include <utility>

#include <simdjson.h>

#include "host/feeds/Recorded.hpp"
#include "host/feeds/TimeForms.hpp"
#include "host/feeds/wire/JsonValue.hpp"
#include "host/feeds/wire/Rtl433Keys.hpp"
#include "host/feeds/wire/WireTime.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;
using simdjson::dom::object;

/// "Acurite-Tower/11524/A": what is there of model, id and channel.
std::string sensorOf(const object& given) {
    std::string sensor;
    for (const char* member : {"model", "id", "channel"}) {
        element value;
        if (given[member].get(value) != simdjson::SUCCESS) continue;
        const JsonValue read = jsonValue(value);
        if (read.kind == JsonValue::Other || read.text.empty()) continue;
        if (!sensor.empty()) sensor += '/';
        sensor += shortened(read.text, kLongestName);
    }
    return sensor;
}

bool isTyre(const object& given) {
    std::string_view type;
    return given["type"].get(type) == simdjson::SUCCESS && type == "TPMS";
}

/// 1 is good and 0 is low; what lies between is a level.
PacketReading batteryOk(const JsonValue& value) {
    if (value.missing) return wireMissing("batteryOutdoor", kTextType);
    if (value.number == 1 || value.text == "true") return wireText("batteryOutdoor", "OK");
    if (value.number == 0 || value.text == "false") return wireText("batteryOutdoor", "LOW");
    return wireText("batteryOutdoor", batteryText(value.text));
}

std::optional<PacketReading> readingOf(std::string_view member, const JsonValue& value,
                                       const DecodeProblem& problem) {
    if (value.kind == JsonValue::Other) {
        tell(problem, "rtl_433: " + std::string(shortened(member, kLongestName)) +
                          ": expected a number or a text; left out");
        return std::nullopt;
    }
    if (member == "battery_ok") return batteryOk(value);
    if (member == "battery" && !value.number) return wireText("batteryOutdoor", batteryText(value.text));
    auto [key, unit] = rtl433Key(member);
    if (value.missing) return wireMissing(std::move(key), kNumericType);
    if (value.number) return wireNumber(std::move(key), *value.number, unit);
    if (unit == Unit::None && key == member) return wireText(std::move(key), std::string(value.text));
    tell(problem, "rtl_433: " + notANumber(member, value.text));
    return std::nullopt;
}

}  // namespace

Rtl433Reader::Rtl433Reader(const FeedUrl& url, WallClockZone localTime) : m_choice(url) {
    if (url.option("time") != "utc") m_localTime = std::move(localTime);
}

std::optional<Date> Rtl433Reader::timeOf(const object& given, Date arrived,
                                         const DecodeProblem& problem) const {
    element value;
    if (given["time"].get(value) != simdjson::SUCCESS) return std::nullopt;
    const JsonValue read = jsonValue(value);
    const auto time = wireTime(read.text, arrived, m_localTime);
    if (time) return time.value();
    tell(problem, "rtl_433: time: " + time.error().message + "; the time of arrival is taken");
    return std::nullopt;
}

void Rtl433Reader::take(const object& given, const RawMessage& message, std::vector<Packet>& packets,
                        const DecodeProblem& problem) {
    Packet packet{.sensor = sensorOf(given), .arrived = message.arrived, .retained = message.retained};
    const auto place = m_choice.place(packet.sensor);
    if (place.where == SensorChoice::Place::Elsewhere) return;
    packet.time = timeOf(given, message.arrived, problem);
    const bool tyre = isTyre(given);
    const bool hasIndex = given["uvi"].error() == simdjson::SUCCESS;
    ReadingList list(packet.readings, problem);
    for (const auto [member, value] : given) {
        if (isReception(member)) continue;
        if (member.size() > kLongestName) {
            tell(problem,
                 "rtl_433: a name has more than " + std::to_string(kLongestName) + " bytes; left out");
            continue;
        }
        auto reading = readingOf(member, jsonValue(value), problem);
        if (!reading) continue;
        // A car's tyre, or a sensor's raw count beside the index, is no weather.
        if ((tyre && member != "battery_ok") || (member == "uv" && hasIndex)) reading->key = member;
        if (reading->key != member && place.where == SensorChoice::Place::Outside)
            m_choice.noteKey(packet.sensor, reading->key, problem);
        SensorChoice::put(*reading, place);
        list.add(*std::move(reading));
    }
    packets.push_back(std::move(packet));
}

}  // namespace vigil
