#include "host/readings/RollingWindow.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vigil {
namespace {

constexpr double kRadians = std::numbers::pi / 180;
constexpr auto kSpan = static_cast<std::int64_t>(RollingWindow::kSlots);

}  // namespace

std::int64_t RollingWindow::slotOf(Date time) const {
    return static_cast<std::int64_t>(std::floor(time.secondsSinceReference() / m_slotSeconds));
}

void RollingWindow::add(Date time, RollingSample sample) {
    const std::int64_t index = slotOf(time);
    if (!m_slots.empty() && index <= m_slots.back().index - kSpan) return;
    auto place = m_slots.end();  // of the first slot behind the sample's
    while (place != m_slots.begin() && std::prev(place)->index > index)
        --place;
    if (place == m_slots.begin() || std::prev(place)->index != index)
        place = std::next(m_slots.insert(place, {index, 0, {0, 0}, sample, sample, 0, 0}));
    Slot& slot = *std::prev(place);
    slot.count += 1;
    slot.sum.value += sample.value;
    slot.sum.unitValue += sample.unitValue;
    slot.least.value = std::min(slot.least.value, sample.value);
    slot.least.unitValue = std::min(slot.least.unitValue, sample.unitValue);
    slot.most.value = std::max(slot.most.value, sample.value);
    slot.most.unitValue = std::max(slot.most.unitValue, sample.unitValue);
    slot.east += std::sin(sample.value * kRadians);
    slot.north += std::cos(sample.value * kRadians);
    while (m_slots.front().index <= m_slots.back().index - kSpan)
        m_slots.pop_front();
}

void RollingWindow::forgetAfter(Date time) {
    const std::int64_t last = slotOf(time);
    while (!m_slots.empty() && m_slots.back().index > last)
        m_slots.pop_back();
}

/// Whether there was any.
template <class Take>
bool RollingWindow::each(Date now, const Take& take) const {
    const std::int64_t last = slotOf(now);
    bool any = false;
    for (const Slot& slot : m_slots) {
        if (slot.index <= last - kSpan || slot.index > last) continue;
        take(slot);
        any = true;
    }
    return any;
}

std::optional<RollingSample> RollingWindow::mean(Date now) const {
    RollingSample sum;
    double count = 0;
    const bool any = each(now, [&](const Slot& slot) {
        sum.value += slot.sum.value;
        sum.unitValue += slot.sum.unitValue;
        count += slot.count;
    });
    if (!any) return std::nullopt;
    return RollingSample{sum.value / count, sum.unitValue / count};
}

std::optional<RollingSample> RollingWindow::meanDirection(Date now) const {
    constexpr double kShortest = 1e-9;  // of an arrow whose direction is more than rounding
    double east = 0;
    double north = 0;
    double count = 0;
    each(now, [&](const Slot& slot) {
        east += slot.east;
        north += slot.north;
        count += slot.count;
    });
    if (std::hypot(east, north) <= kShortest * count) return std::nullopt;
    double direction = std::atan2(east, north) / kRadians;
    if (direction < 0) direction += 360;
    if (direction >= 360) direction = 0;  // of a tiny negative angle
    return RollingSample{direction, direction};
}

std::optional<RollingSample> RollingWindow::min(Date now) const {
    std::optional<RollingSample> least;
    each(now, [&](const Slot& slot) {
        if (!least) least = slot.least;
        least->value = std::min(least->value, slot.least.value);
        least->unitValue = std::min(least->unitValue, slot.least.unitValue);
    });
    return least;
}

std::optional<RollingSample> RollingWindow::max(Date now) const {
    std::optional<RollingSample> most;
    each(now, [&](const Slot& slot) {
        if (!most) most = slot.most;
        most->value = std::max(most->value, slot.most.value);
        most->unitValue = std::max(most->unitValue, slot.most.unitValue);
    });
    return most;
}

void RollingRun::add(Date time, bool holds) {
    if (m_last && time < *m_last) return;
    const bool gap = m_last && time.secondsSince(*m_last) > kLongestGap;
    m_last = time;
    if (!holds)
        m_since.reset();
    else if (!m_since || gap)
        m_since = time;
}

}  // namespace vigil
