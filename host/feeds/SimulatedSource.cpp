#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/SimulatedWeather.hpp"
#include "host/readings/Derived.hpp"
#include "host/readings/KnownReadings.hpp"

namespace vigil {
namespace {

// A station's sensors show a tenth of a degree and of a km/h.
double tenth(double value) {
    return std::round(value * 10) / 10;
}

// People read the wind in km/h; the raw value stays in m/s.
constexpr double kKilometresAnHour = 3.6;

bool isWindSpeed(std::string_view key) {
    return key == "windSpeed" || key == "windGust";
}

class SimulatedSource final : public RecordedSource {
  public:
    SimulatedSource(std::uint64_t seed, SimulatedOptions options)
        : m_options(std::move(options)), m_weather(seed, m_options.start) {
        std::vector<std::string> keys;
        for (const std::string_view key :
             {"stationName",    "readingTime", "outsideTemp", "outsideHumidity", "dewPoint",
              "windChill",      "heatIndex",   "feelsLike",   "windSpeed",       "windGust",
              "windDir",        "windDirText", "barometer",   "rainRate",        "rainDaily",
              "solarRadiation", "uvIndex",     "sunrise",     "sunset",          "batteryOutdoor"}) {
            const KnownReading* known = knownReading(key);
            m_labels.push_back(std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{
                std::string(key), std::string(known->name),
                std::string(isWindSpeed(key) ? "km/h" : known->unit(UnitSystem::Metric)), known->kind}));
            keys.emplace_back(key);
        }
        m_table = KeyTable::make(std::move(keys));
    }

    Result<std::optional<RecordedNotification>> next() override {
        if (m_options.count && m_given >= *m_options.count) return std::optional<RecordedNotification>();
        const Date time = m_options.start.plus(static_cast<double>(m_given) * m_options.step);
        ++m_given;
        return std::optional(RecordedNotification{m_options.station, time, readingsAt(time), m_given});
    }

  private:
    std::shared_ptr<const Readings> readingsAt(Date time) {
        const SimulatedWeather::Moment now = m_weather.at(time);
        const double chill = windChill(now.temperature, now.windSpeed);
        const double felt = feelsLike(now.temperature, now.humidity, now.windSpeed);
        std::vector<AgentProperty> entries;
        entries.reserve(m_labels.size());
        const auto text = [&](std::string_view value) {
            entries.emplace_back(m_labels[entries.size()],
                                 AgentProperty::Parts{.stringValue = std::string(value), .time = time});
        };
        const auto number = [&](double value) {
            entries.emplace_back(m_labels[entries.size()],
                                 AgentProperty::Parts{.value = value, .unitValue = value, .time = time});
        };
        const auto speed = [&](double value) {
            const double shown = tenth(value * kKilometresAnHour);
            entries.emplace_back(m_labels[entries.size()],
                                 AgentProperty::Parts{.value = value, .unitValue = shown, .time = time});
        };
        text(m_options.station);
        number(time.secondsSinceReference());
        number(now.temperature);
        number(now.humidity);
        number(tenth(dewPoint(now.temperature, now.humidity)));
        number(tenth(chill));
        number(tenth(heatIndex(now.temperature, now.humidity)));
        number(tenth(felt));
        speed(now.windSpeed);
        speed(now.windGust);
        number(now.windDir);
        text(compassText(now.windDir));
        number(now.barometer);
        number(now.rainRate);
        number(now.rainDaily);
        number(now.solarRadiation);
        number(now.uvIndex);
        number(now.sun.rise.secondsSinceReference());
        number(now.sun.set.secondsSinceReference());
        constexpr double kBatteryFeelsCold = 6;
        text(now.temperature < kBatteryFeelsCold ? "low" : "ok");
        return Readings::make(m_table, std::move(entries));
    }

    SimulatedOptions m_options;
    SimulatedWeather m_weather;
    std::vector<std::shared_ptr<const AgentPropertyLabel>> m_labels;
    std::shared_ptr<const KeyTable> m_table;
    std::size_t m_given = 0;
};

}  // namespace

std::unique_ptr<RecordedSource> simulatedSource(std::uint64_t seed, SimulatedOptions options) {
    return std::make_unique<SimulatedSource>(seed, std::move(options));
}

}  // namespace vigil
