#include "host/feeds/OrderWindow.hpp"

#include <algorithm>
#include <utility>

namespace vigil {
namespace {

std::size_t roughSize(const RecordedNotification& notification) {
    std::size_t size = sizeof notification;
    for (const AgentProperty& entry : notification.readings->entries()) {
        size += sizeof entry + sizeof(void*) + sizeof(KeyTable::Slot);
        if (entry.givenStringValue()) size += entry.givenStringValue()->size();
        const auto& unitString = entry.parts().unitStringValueWithUnitShort;
        if (unitString) size += unitString->size();
    }
    return size;
}

}  // namespace

OrderWindow::OrderWindow(std::size_t rows, ProblemTeller tell, std::size_t mostHeldBytes)
    : m_rows(rows), m_tell(std::move(tell)), m_mostHeldBytes(mostHeldBytes) {}

void OrderWindow::add(RecordedNotification notification) {
    if (m_rows == 0) {
        m_ready.push_back(std::move(notification));
        return;
    }
    Station& station = m_stations[notification.station];
    const Date time = notification.time;
    if (station.last && time < *station.last) {
        if (m_tell)
            m_tell({notification.line, time.isoText() + " comes more than " + std::to_string(m_rows) +
                                           " rows too late to be put in order; left out"});
        return;
    }
    m_heldBytes += roughSize(notification);
    // Most data is in order already: then the place is at the end and needs no search.
    const bool atEnd = station.held.empty() || !(time < station.held.rbegin()->first);
    const auto place = atEnd ? station.held.end() : station.held.upper_bound(time);
    station.held.emplace_hint(place, time, std::move(notification));
    while (!station.held.empty() && (station.held.size() > m_rows || m_heldBytes > m_mostHeldBytes))
        letGo(station);
}

void OrderWindow::letGo(Station& station) {
    auto first = station.held.extract(station.held.begin());
    m_heldBytes -= roughSize(first.mapped());
    station.last = first.key();
    m_ready.push_back(std::move(first.mapped()));
}

std::optional<RecordedNotification> OrderWindow::take() {
    if (m_ready.empty()) return std::nullopt;
    std::optional<RecordedNotification> first = std::move(m_ready.front());
    m_ready.pop_front();
    return first;
}

void OrderWindow::finish() {
    const auto already = static_cast<std::ptrdiff_t>(m_ready.size());
    for (auto& [name, station] : m_stations)
        while (!station.held.empty())
            letGo(station);
    std::sort(m_ready.begin() + already, m_ready.end(),
              [](const RecordedNotification& a, const RecordedNotification& b) {
                  return a.time != b.time ? a.time < b.time : a.line < b.line;
              });
}

}  // namespace vigil
