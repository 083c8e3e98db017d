#include "host/readings/StationReadings.hpp"

#include <utility>

#include "host/readings/StationReadings_State.hpp"

namespace vigil {

StationReadings::State::State(StationReadingsSettings given) : settings(std::move(given)) {
    inputs.fill(kNowhere);
    derived.fill(kNowhere);
    startRolling();
}

StationReadings::StationReadings(StationReadingsSettings settings)
    : m_state(std::make_unique<State>(std::move(settings))) {}

StationReadings::~StationReadings() = default;

Taken StationReadings::take(const Packet& packet, Date now) {
    return m_state->take(packet, now);
}

std::shared_ptr<const Readings> StationReadings::tick(Date now) {
    constexpr double kSilence = 60;  // seconds without news
    State& state = *m_state;
    state.noteClock(now);
    if (!state.announced || now.secondsSince(*state.announced) < kSilence) return nullptr;
    ++state.news;
    state.besides = false;
    bool any = false;
    for (State::Rolling& rolling : state.rollings)
        if (rolling.choice.kind == RollingChoice::Kind::Age && state.findSource(rolling))
            any = state.rollAge(rolling, now) || any;
    if (!any) return nullptr;
    state.announced = now;
    return state.batch();
}

std::shared_ptr<const Readings> StationReadings::current() {
    State& state = *m_state;
    if (state.current) return state.current;
    std::vector<AgentProperty> entries;
    for (const StationEntry& entry : state.table.entries())
        if (entry.current) entries.push_back(*entry.current);
    return state.current = Readings::make(state.table.keys(), std::move(entries));
}

const StationReadingsCounts& StationReadings::counts() const {
    return m_state->counts;
}

}  // namespace vigil
