#include "tests/laws/NaiveMonitor.hpp"

#include <stdexcept>

#include "tests/laws/MonitorPicture.hpp"
#include "tests/support/NaiveCondition.hpp"

namespace vigil::test {

NaiveMonitor::NaiveMonitor(const RandomMonitor::Settings& settings) : m_settings(settings) {
    if (settings.hasDate) m_next = Date::distantPast();
}

bool NaiveMonitor::counts(const AgentProperty& reading) const {
    if (!m_settings.onlyOnChange) return true;
    const auto found = m_snapshot.find(reading.propertyName());
    const double lastValue = found == m_snapshot.end() ? 0 : found->second.value();
    const std::optional<Date> lastTime = found == m_snapshot.end() ? std::nullopt : found->second.time();
    const bool isNewer = reading.time() && (!lastTime || *lastTime < *reading.time());
    const bool isSame = lastValue == reading.value();
    return isNewer && !isSame;
}

std::string NaiveMonitor::notify(Date now, const std::vector<AgentProperty>& readings) {
    std::vector<std::string> judged;
    std::string outcome = "waiting";
    if (!m_next || m_next->secondsSinceReference() - now.secondsSinceReference() <= 0) {
        std::map<std::string, AgentProperty> input;
        for (const AgentProperty& reading : readings)
            if (counts(reading)) input.insert_or_assign(reading.propertyName(), reading);
        NaiveReadings naive;
        for (const auto& [key, reading] : input) {
            naive[key] = {reading.value(), reading.unitValue(), reading.stringValue()};
            judged.push_back(pictureOf(reading));
        }
        const auto holds = naiveVerdict(m_settings.condition, naive);
        if (!holds) throw std::logic_error("no condition: " + m_settings.condition);
        outcome = *holds ? "fired" : "missed";
        if (*holds) {
            const double minutes = m_settings.interval ? m_settings.interval->doubleValue() : 0;
            m_next =
                Date(now.secondsSinceReference() + static_cast<double>(static_cast<float>(minutes)) * 60);
        } else {
            m_status = "The conditions have NOT triggered an alert yet.";
        }
        m_status += "Next trigger at " + (m_next ? m_next->description() : "(null)");
        m_snapshot.clear();
        m_hasSnapshot = true;
        for (const AgentProperty& reading : readings)
            m_snapshot.insert_or_assign(reading.propertyName(), reading);
    }
    std::vector<std::string> snapshot;
    if (!m_hasSnapshot) snapshot.push_back("none");
    for (const auto& [key, reading] : m_snapshot)
        snapshot.push_back(pictureOf(reading));
    return pictureOfCycle(outcome, judged, m_next, m_status, snapshot);
}

}  // namespace vigil::test
