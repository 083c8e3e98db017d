#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "host_contract/Readings.hpp"
#include "platform/Number.hpp"

namespace vigil {
class QRVVigilPlugIn;
}

namespace vigil::test {

/// How a monitor is set, and what a station sends to it. Everything follows from the seed.
class RandomMonitor {
  public:
    explicit RandomMonitor(std::uint32_t seed);

    struct Settings {
        std::string condition;
        bool onlyOnChange = false;
        std::optional<Number> interval;  ///< minutes
        bool hasDate = true;             ///< whether it has a retrigger date at first
    };
    const Settings& settings() const { return m_settings; }
    /// Sets the monitor so and switches it on.
    void apply(QRVVigilPlugIn& monitor) const;
    /// Gives it some rows out of its own roots and whatever an archive keeps besides.
    void fill(QRVVigilPlugIn& monitor);

    /// Seconds until the next notification: none, less than a wait, exactly one, or more.
    double step();
    /// Some readings, keys given twice, zeros, old and missing times, texts and NaN among them; now and then
    /// with a table of the station's own, now and then with none.
    std::shared_ptr<const Readings> batch(Date now);

    int below(int limit) { return static_cast<int>(m_random() % static_cast<std::uint32_t>(limit)); }

  private:
    AgentProperty reading(const std::string& key, Date now);

    std::mt19937 m_random;
    Settings m_settings;
    std::shared_ptr<const KeyTable> m_table;
};

}  // namespace vigil::test
