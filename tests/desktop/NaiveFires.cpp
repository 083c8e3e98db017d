#include "tests/desktop/NaiveFires.hpp"

#include <map>
#include <optional>
#include <stdexcept>

#include "tests/support/NaiveCondition.hpp"

namespace vigil::test {
namespace {

using Snapshot = std::map<std::string, AgentProperty>;

bool isNews(const AgentProperty& reading, const Snapshot& last) {
    const auto found = last.find(reading.propertyName());
    const double before = found == last.end() ? 0 : found->second.value();
    if (reading.value() == before || !reading.time()) return false;
    const std::optional<Date> seen = found == last.end() ? std::nullopt : found->second.time();
    return !seen || *seen < *reading.time();
}

}  // namespace

std::vector<double> naiveFires(const std::string& condition, const ScanRule& rule, const Announced& batches) {
    std::vector<double> fires;
    std::optional<double> next;
    Snapshot last;
    const double wait = static_cast<double>(static_cast<float>(rule.retriggerMinutes)) * 60;
    for (const auto& [when, batch] : batches) {
        const double now = when.secondsSinceReference();
        if (next && *next > now) continue;
        NaiveReadings judged;
        Snapshot all;
        for (const AgentProperty& reading : batch->entries()) {
            all.insert_or_assign(reading.propertyName(), reading);
            if (rule.onlyOnChange && !isNews(reading, last)) continue;
            judged[reading.propertyName()] = {reading.value(), reading.unitValue(), reading.stringValue()};
        }
        last = std::move(all);
        const auto holds = naiveVerdict(condition, judged);
        if (!holds) throw std::logic_error("no condition: " + condition);
        if (!*holds) continue;
        fires.push_back(now);
        next = now + wait;
    }
    return fires;
}

}  // namespace vigil::test
