#include "host/feeds/wire/SensorChoice.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace vigil {
namespace {

constexpr std::string_view kBattery = "batteryOutdoor";

/// The number of the first name that chooses the sensor.
std::optional<std::size_t> chosenBy(const std::vector<std::string>& names, std::string_view sensor) {
    const auto found = std::find_if(names.begin(), names.end(), [sensor](const std::string& name) {
        return sensor.starts_with(name) && (sensor.size() == name.size() || sensor[name.size()] == '/');
    });
    if (found == names.end()) return std::nullopt;
    return static_cast<std::size_t>(found - names.begin());
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kInside = {{
    {"outsideTemp", "insideTemp"},
    {"outsideHumidity", "insideHumidity"},
    {"dewPoint", "insideDewPoint"},
    {kBattery, "batteryIndoor"},
}};

}  // namespace

SensorChoice::SensorChoice(const FeedUrl& url)
    : m_outside(url.allOptions("sensor")), m_inside(url.allOptions("inside")) {}

SensorChoice::Place SensorChoice::place(std::string_view sensor) const {
    if (const auto number = chosenBy(m_inside, sensor)) return {Place::Inside, *number};
    if (const auto number = chosenBy(m_outside, sensor)) return {Place::Outside, *number};
    // Whoever has only said what stands inside takes all others as they come.
    return {m_outside.empty() ? Place::Outside : Place::Elsewhere};
}

void SensorChoice::put(PacketReading& reading, const Place& place) {
    const bool isBattery = reading.key == kBattery;
    if (place.where == Place::Inside)
        for (const auto& [outside, inside] : kInside)
            if (reading.key == outside) {
                reading.key = inside;
                break;
            }
    if (isBattery && place.number > 0) reading.key += std::to_string(place.number + 1);
}

void SensorChoice::noteKey(std::string_view sensor, const std::string& key, const DecodeProblem& problem) {
    if (m_told || !m_outside.empty() || sensor.empty() || key == kBattery) return;
    const auto known = m_sensorOfKey.find(key);
    if (known == m_sensorOfKey.end()) {
        if (m_sensorOfKey.size() < kMostReadingsOfMessage) m_sensorOfKey.emplace(key, sensor);
        return;
    }
    if (known->second == sensor) return;
    m_told = true;
    tell(problem, "two sensors send " + key + ", " + quotedForPeople(known->second) + " and " +
                      quotedForPeople(sensor) + "; choose with sensor= and inside=");
    m_sensorOfKey.clear();
}

}  // namespace vigil
