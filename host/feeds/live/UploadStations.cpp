#include "host/feeds/live/UploadStations.hpp"

#include <algorithm>
#include <utility>

namespace vigil {
namespace {

std::string folded(std::string_view identity) {
    std::string same(identity);
    for (char& c : same)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return same;
}

}  // namespace

Result<Done> UploadStations::add(std::shared_ptr<FeedOutlet> outlet, std::optional<std::string> identity) {
    if (identity) identity = folded(*identity);
    const std::lock_guard lock(m_mutex);
    for (const Station& station : m_stations)
        if (identity && station.named == identity)
            return Error{"feed: the station \"" + station.outlet->station() +
                         "\" takes the uploads of this id at this port"};
    m_stations.push_back({std::move(outlet), std::move(identity), std::nullopt});
    return Done{};
}

void UploadStations::remove(const FeedOutlet& outlet) {
    const std::lock_guard lock(m_mutex);
    std::erase_if(m_stations, [&](const Station& station) { return station.outlet.get() == &outlet; });
}

std::shared_ptr<FeedOutlet> UploadStations::claim(std::string_view identity) {
    const std::string wanted = folded(identity);
    const std::lock_guard lock(m_mutex);
    Station* free = nullptr;
    std::size_t withoutName = 0;
    Station* anyWithoutName = nullptr;
    for (Station& station : m_stations) {
        if (station.named ? station.named == wanted : station.heard == wanted) return station.outlet;
        if (station.named) continue;
        ++withoutName;
        anyWithoutName = &station;
        if (!station.heard && !free) free = &station;
    }
    if (free) {
        free->heard = wanted;
        return free->outlet;
    }
    return withoutName == 1 ? anyWithoutName->outlet : nullptr;
}

std::vector<std::shared_ptr<FeedOutlet>> UploadStations::all() const {
    const std::lock_guard lock(m_mutex);
    std::vector<std::shared_ptr<FeedOutlet>> found;
    for (const Station& station : m_stations)
        found.push_back(station.outlet);
    return found;
}

}  // namespace vigil
