#include "host/feeds/wire/WeewxReader.hpp"

#include <utility>

#include <simdjson.h>

#include "host/feeds/Recorded.hpp"
#include "host/feeds/wire/WireTime.hpp"
#include "host/readings/KeyNames.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;
using simdjson::dom::object;

/// A text reading is a word or two; what is longer is something else.
constexpr std::size_t kLongestValue = 1024;

std::string_view groupOf(std::string_view route) {
    const auto slash = route.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : route.substr(0, slash);
}

std::string_view nameOf(std::string_view route) {
    const auto slash = route.rfind('/');
    return slash == std::string_view::npos ? route : route.substr(slash + 1);
}

/// Packets may be partial, and a topic may carry one value of many: what comes by one topic never is all that
/// the station has.
std::string sensorOf(const RawMessage& message) {
    return message.route.empty() ? "weewx" : repairedUtf8(shortened(message.route, kLongestName));
}

std::string shownName(std::string_view name) {
    return "weewx: " + repairedUtf8(shortened(name, kLongestName));
}

std::optional<Date> timeOf(const JsonValue& value, Date arrived, const DecodeProblem& problem) {
    if (value.missing) return std::nullopt;
    const auto time = wireTime(value.text, arrived, {});
    if (time) return time.value();
    tell(problem, "weewx: dateTime: " + time.error().message + "; the time of arrival is taken");
    return std::nullopt;
}

}  // namespace

WeewxReader::WeewxReader(const FeedUrl& url) : m_chosen(weewxSystemNamed(url.option("units").value_or(""))) {}

std::optional<WeewxSystem> WeewxReader::systemOf(std::string_view group) const {
    if (m_chosen) return m_chosen;
    const auto known = m_systems.find(group);
    return known == m_systems.end() ? std::nullopt : std::optional(known->second);
}

void WeewxReader::noteSystem(std::string_view group, const JsonValue& value, const DecodeProblem& problem) {
    const auto system = value.number ? weewxSystem(*value.number) : std::nullopt;
    if (!system)
        return tell(problem, "weewx: usUnits: expected 1, 16 or 17, found " + quotedForPeople(value.text));
    const auto known = m_systems.find(group);
    if (known != m_systems.end())
        known->second = *system;
    else if (m_systems.size() < kMostGroups)
        m_systems.emplace(group, *system);
}

std::optional<PacketReading> WeewxReader::reading(std::string_view name, const JsonValue& value,
                                                  std::optional<WeewxSystem> system,
                                                  const DecodeProblem& problem) const {
    if (name.empty() || name.size() > kLongestName || value.text.size() > kLongestValue) {
        tell(problem, shownName(name) + ": a name has 1 to " + std::to_string(kLongestName) +
                          " bytes and a value at most " + std::to_string(kLongestValue) + "; left out");
        return std::nullopt;
    }
    WeewxKey key = weewxKey(name, system);
    if (value.missing) return wireMissing(std::move(key.key), kNumericType);
    if (!value.number) {
        if (key.unit == Unit::None) return wireText(std::move(key.key), value.text);
        tell(problem, "weewx: " + notANumber(name, value.text));
        return std::nullopt;
    }
    if (key.unitUnknown) {
        tell(problem, shownName(name) +
                          ": neither its name nor usUnits tells the unit; say units=us, "
                          "units=metric or units=metricwx; left out");
        return std::nullopt;
    }
    PacketReading made = wireNumber(std::move(key.key), *value.number, key.unit);
    made.unitText = key.unitText;
    return made;
}

void WeewxReader::take(const object& given, const RawMessage& message, std::vector<Packet>& packets,
                       const DecodeProblem& problem) {
    Packet packet{.sensor = sensorOf(message), .arrived = message.arrived, .retained = message.retained};
    const std::string_view group = groupOf(message.route);
    if (element units; given["usUnits"].get(units) == simdjson::SUCCESS)
        noteSystem(group, jsonValue(units), problem);
    const auto system = systemOf(group);
    ReadingList list(packet.readings, problem);
    for (const auto [name, element] : given) {
        if (name == "usUnits") continue;
        const JsonValue value = jsonValue(element);
        if (value.kind == JsonValue::Other) {
            tell(problem, shownName(name) + ": expected a number or a text; left out");
        } else if (name == "dateTime") {
            packet.time = timeOf(value, message.arrived, problem);
        } else if (auto made = reading(name, value, system, problem)) {
            list.add(*std::move(made));
        }
    }
    packets.push_back(std::move(packet));
}

void WeewxReader::takeValue(const RawMessage& message, std::vector<Packet>& packets,
                            const DecodeProblem& problem) {
    const std::string name = repairedUtf8(nameOf(message.route));
    const std::string_view group = groupOf(message.route);
    if (message.payload.size() > kLongestValue)
        return tell(problem,
                    shownName(name) + ": more than " + std::to_string(kLongestValue) + " bytes; left out");
    const JsonValue value = textValue(repairedUtf8(message.payload));
    if (name == "usUnits") return noteSystem(group, value, problem);
    // The time has a topic of its own and could only be matched with the values by guessing.
    if (name == "dateTime") return;
    auto made = reading(name, value, systemOf(group), problem);
    if (!made) return;
    Packet packet{.sensor = sensorOf(message), .arrived = message.arrived, .retained = message.retained};
    packet.readings.push_back(*std::move(made));
    packets.push_back(std::move(packet));
}

}  // namespace vigil
