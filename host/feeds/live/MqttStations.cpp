#include "host/feeds/live/MqttStations.hpp"

#include <algorithm>
#include <utility>

#include <mosquitto.h>

namespace vigil {
namespace {

bool hasWildcard(const std::string& topic) {
    return topic.find_first_of("+#") != std::string::npos;
}

}  // namespace

void MqttStations::add(std::shared_ptr<FeedOutlet> outlet, std::string topic, int qos) {
    const std::lock_guard lock(m_mutex);
    Station station{std::move(outlet), topic, qos, ++m_version};
    if (hasWildcard(topic))
        m_wild.push_back(std::move(station));
    else
        m_plain.emplace(std::move(topic), std::move(station));
}

void MqttStations::remove(const FeedOutlet& outlet) {
    const std::lock_guard lock(m_mutex);
    ++m_version;
    std::erase_if(m_wild, [&](const Station& station) { return station.outlet.get() == &outlet; });
    std::erase_if(m_plain, [&](const auto& entry) { return entry.second.outlet.get() == &outlet; });
}

bool MqttStations::empty() const {
    const std::lock_guard lock(m_mutex);
    return m_plain.empty() && m_wild.empty();
}

std::uint64_t MqttStations::version() const {
    const std::lock_guard lock(m_mutex);
    return m_version;
}

MqttStations::Wanted MqttStations::wanted(std::uint64_t since) const {
    const std::lock_guard lock(m_mutex);
    Wanted all;
    all.version = m_version;
    const auto take = [&](const Station& station) {
        int& qos = all.topics.try_emplace(station.topic, station.qos).first->second;
        qos = std::max(qos, station.qos);
        if (station.version > since) all.fresh.insert(station.topic);
    };
    for (const auto& [topic, station] : m_plain)
        take(station);
    for (const Station& station : m_wild)
        take(station);
    return all;
}

void MqttStations::find(const std::string& topic, std::vector<std::shared_ptr<FeedOutlet>>& found) const {
    found.clear();
    const std::lock_guard lock(m_mutex);
    const auto [begin, end] = m_plain.equal_range(topic);
    for (auto it = begin; it != end; ++it)
        found.push_back(it->second.outlet);
    for (const Station& station : m_wild) {
        bool matches = false;
        if (::mosquitto_topic_matches_sub(station.topic.c_str(), topic.c_str(), &matches) ==
                MOSQ_ERR_SUCCESS &&
            matches)
            found.push_back(station.outlet);
    }
}

std::vector<std::shared_ptr<FeedOutlet>> MqttStations::outlets(const std::string* topic) const {
    const std::lock_guard lock(m_mutex);
    std::vector<std::shared_ptr<FeedOutlet>> all;
    for (const auto& [written, station] : m_plain)
        if (!topic || written == *topic) all.push_back(station.outlet);
    for (const Station& station : m_wild)
        if (!topic || station.topic == *topic) all.push_back(station.outlet);
    return all;
}

void MqttStations::tellAll(FeedState::Kind kind, const std::string& words) const {
    for (const auto& outlet : outlets(nullptr))
        outlet->state(kind, words);
}

void MqttStations::tell(const std::string& topic, FeedState::Kind kind, const std::string& words) const {
    for (const auto& outlet : outlets(&topic))
        outlet->state(kind, words);
}

}  // namespace vigil
