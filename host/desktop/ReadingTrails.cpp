#include "host/desktop/ReadingTrails.hpp"

#include <algorithm>
#include <cmath>

namespace vigil {

void ReadingTrails::take(const Readings& readings, Date now) {
    for (const AgentProperty& reading : readings.entries()) {
        if (reading.type() == kTextType || reading.type() == kDateType) continue;
        if (!std::isfinite(reading.unitValue())) continue;
        const double when = reading.time().value_or(now).secondsSinceReference();
        Trail& trail = m_trails[reading.propertyName()];
        auto& points = trail.points;
        if (!points.empty() && when <= points.back().when) continue;
        ++m_changes;
        // The last point always shows what is now.
        if (points.size() > 1 && when - points[points.size() - 2].when < trail.apart)
            points.back() = {when, reading.unitValue()};
        else
            points.push_back({when, reading.unitValue()});
        const auto old = std::find_if(points.begin(), points.end(), [when](const Point& point) {
            return point.when > when - kTrailSeconds;
        });
        points.erase(points.begin(), old);
        if (points.size() < kTrailPoints) continue;
        std::size_t kept = 0;
        for (std::size_t i = 0; i < points.size(); i += 2)
            points[kept++] = points[i];
        points.resize(kept);
        trail.apart = (points.back().when - points.front().when) / static_cast<double>(kept);
    }
}

const std::vector<ReadingTrails::Point>& ReadingTrails::of(const std::string& key) const {
    static const std::vector<Point> none;
    const auto found = m_trails.find(key);
    return found == m_trails.end() ? none : found->second.points;
}

}  // namespace vigil
