#include "host/feeds/wire/SensorChoice.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace vigil {
namespace {

bool anyChooses(const std::vector<std::string>& names, std::string_view sensor) {
    return std::any_of(names.begin(), names.end(), [sensor](const std::string& name) {
        return sensor.starts_with(name) && (sensor.size() == name.size() || sensor[name.size()] == '/');
    });
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kInside = {{
    {"outsideTemp", "insideTemp"},
    {"outsideHumidity", "insideHumidity"},
    {"dewPoint", "insideDewPoint"},
    {"batteryOutdoor", "batteryIndoor"},
}};

}  // namespace

SensorChoice::SensorChoice(const FeedUrl& url)
    : m_outside(url.allOptions("sensor")), m_inside(url.allOptions("inside")) {}

SensorChoice::Place SensorChoice::place(std::string_view sensor) const {
    if (anyChooses(m_inside, sensor)) return Place::Inside;
    // Whoever has only said what stands inside takes all others as they come.
    return m_outside.empty() || anyChooses(m_outside, sensor) ? Place::Outside : Place::Elsewhere;
}

void SensorChoice::moveInside(PacketReading& reading) {
    for (const auto& [outside, inside] : kInside) {
        if (reading.key != outside) continue;
        reading.key = inside;
        return;
    }
}

void SensorChoice::noteKey(std::string_view sensor, const std::string& key, const DecodeProblem& problem) {
    if (m_told || !m_outside.empty() || sensor.empty()) return;
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
