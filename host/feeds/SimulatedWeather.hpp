#pragma once

#include <cstdint>

#include "platform/Date.hpp"

namespace vigil {

/// Random numbers that are the same on every machine (splitmix64).
class SplitMix {
  public:
    explicit SplitMix(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next();
    /// From 0 to below 1.
    double uniform();
    /// About a normal distribution of deviation 1, never beyond 6 (a sum of twelve uniforms).
    double bell();

  private:
    std::uint64_t m_state;
};

/// Height and times of the sun at 50° north on the zero meridian, without the equation of time.
struct Sun {
    double sineOfHeight;  ///< below 0 at night
    Date rise, set;       ///< of the same day in UTC
};
Sun sunAt(Date time);

/// A spring day with showers. Everything is rounded as a station's sensors do.
class SimulatedWeather {
  public:
    SimulatedWeather(std::uint64_t seed, Date start);

    struct Moment {
        double temperature;     ///< °C
        double humidity;        ///< %
        double windSpeed;       ///< m/s
        double windGust;        ///< m/s
        double windDir;         ///< degrees
        double barometer;       ///< hPa at sea level
        double rainRate;        ///< mm/h
        double rainDaily;       ///< mm since midnight UTC
        double solarRadiation;  ///< W/m²
        double uvIndex;
        Sun sun;
    };
    /// `time` never goes back from one call to the next.
    Moment at(Date time);

  private:
    /// A deviation that lasts: pulled back to 0 over `lasts` seconds, of deviation `size`.
    void drift(double& value, double seconds, double lasts, double size);
    /// How much of a shower there is, 0 to 1.
    double showerAt(Date time);
    void addRain(Date time, double seconds, double rate);

    SplitMix m_random;
    Date m_last;
    Date m_showerBegins;
    double m_showerDepth;
    double m_warmth = 0, m_moisture = 0, m_wind = 0, m_turn = 0, m_pressure = 0, m_cloud = 0;
    double m_rainDaily = 0;
};

}  // namespace vigil
