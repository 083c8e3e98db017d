#include "benchmarks/DecentMonitor.hpp"

#include <cstdio>

#include "host/services/SystemClock.hpp"

namespace vigil::bench {
namespace {

constexpr int kLogLevel = 3;

}  // namespace

std::vector<std::vector<PlainReading>> plainFrames(const Workload& work) {
    std::vector<std::vector<PlainReading>> frames;
    for (const auto& batch : work.batches) {
        std::vector<PlainReading> frame;
        for (const AgentProperty& reading : batch->entries())
            frame.push_back({.key = reading.propertyName(),
                             .name = reading.name(),
                             .text = reading.stringValue(),
                             .unit = reading.unit(),
                             .value = reading.value(),
                             .unitValue = reading.unitValue(),
                             .time = reading.time().value()});
        frames.push_back(std::move(frame));
    }
    return frames;
}

bool DecentMonitor::counts(const PlainReading& reading) const {
    const auto last = m_snapshot.find(reading.key);
    if (last == m_snapshot.end()) return reading.value != 0;
    return reading.time > last->second.time && reading.value != last->second.value;
}

void DecentMonitor::writeLine(const Dictionary& dictionary) {
    m_line = "Vigil evaluation dictionary: {";
    const char* between = "";
    for (const auto& [key, reading] : dictionary) {
        char text[128];
        std::snprintf(text, sizeof text, "%s%s = %g %s", between, reading->key.c_str(), reading->unitValue,
                      reading->unit.c_str());
        m_line += text;
        between = ", ";
    }
    m_line += "} #QRVVigilPlugIn";
    m_log.logLevel(kLogLevel, m_line);
}

bool DecentMonitor::cycle(const std::vector<PlainReading>& readings) {
    if (m_next > systemNow()) return false;
    Dictionary dictionary;
    dictionary.reserve(readings.size());
    for (const PlainReading& reading : readings)
        if (!m_onlyOnChange || counts(reading)) dictionary.insert_or_assign(reading.key, &reading);
    if (m_log.takesLevel(kLogLevel)) writeLine(dictionary);
    const auto chill = dictionary.find("windChill");
    bool holds = chill != dictionary.end() && chill->second->unitValue < 10;
    if (!holds) {
        const auto speed = dictionary.find("windSpeed");
        holds = speed != dictionary.end() && speed->second->unitValue > 25;
    }
    if (holds) m_next = systemNow();
    for (const PlainReading& reading : readings)
        m_snapshot.insert_or_assign(reading.key, reading);
    return holds;
}

}  // namespace vigil::bench
