#include "host/feeds/SimulatedWeather.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/readings/Derived.hpp"

namespace vigil {
namespace {

constexpr double kDay = 86400;
constexpr double kTurn = 2 * std::numbers::pi;

double rounded(double value, double step) {
    const double steps = std::round(value / step);
    return step < 1 ? steps / std::round(1 / step) : steps * step;
}

double midnightBefore(Date time) {
    return std::floor(time.secondsSinceReference() / kDay) * kDay;
}

/// -1 to 1, highest at `peak` hours UTC.
double dailyWave(Date time, double peak) {
    const double hours = (time.secondsSinceReference() - midnightBefore(time)) / 3600;
    return std::cos(kTurn * (hours - peak) / 24);
}

}  // namespace

std::uint64_t SplitMix::next() {
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

double SplitMix::uniform() {
    return static_cast<double>(next() >> 11) * 0x1p-53;
}

double SplitMix::bell() {
    double sum = -6;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    return sum;
}

Sun sunAt(Date time) {
    constexpr double kLatitude = 50 * kTurn / 360;
    constexpr double kTilt = 23.44 * kTurn / 360;
    constexpr double kRiseHeight = -0.833 * kTurn / 360;  // the upper edge, through the air
    constexpr double kEccentricity = 0.0167;              // of the earth's orbit
    constexpr double kYear = 365.2425 * kDay;
    const double midnight = midnightBefore(time);
    // The origin is a 1 January; the sun stands lowest ten days before it, and the earth is nearest to the
    // sun, and so fastest, two days behind it.
    const double fromSolstice = kTurn * (midnight + 10 * kDay) / kYear;
    const double ahead = 2 * kEccentricity * std::sin(kTurn * (midnight - 2 * kDay) / kYear);
    const double declination = std::asin(-std::sin(kTilt) * std::cos(fromSolstice + ahead));
    const double across = std::cos(kLatitude) * std::cos(declination);
    const double along = std::sin(kLatitude) * std::sin(declination);
    const double angle = kTurn * ((time.secondsSinceReference() - midnight) / kDay - 0.5);
    const double half = std::acos((std::sin(kRiseHeight) - along) / across) / kTurn * kDay;
    const double noon = midnight + kDay / 2;
    return {along + across * std::cos(angle), Date(rounded(noon - half, 60)), Date(rounded(noon + half, 60))};
}

SimulatedWeather::SimulatedWeather(std::uint64_t seed, Date start)
    : m_random(seed), m_last(start), m_showerBegins(start.plus(600)), m_showerDepth(6.5) {}

void SimulatedWeather::drift(double& value, double seconds, double lasts, double size) {
    const double kept = std::exp(-seconds / lasts);
    value = value * kept + size * std::sqrt(1 - kept * kept) * m_random.bell();
}

double SimulatedWeather::showerAt(Date time) {
    constexpr double kFull = 300;    // the gust front takes so many seconds to arrive,
    constexpr double kEasing = 900;  // the rain eases from here
    constexpr double kOver = 1800;
    const double age = time.secondsSince(m_showerBegins);
    if (age < 0) return 0;
    if (age < kFull) return age / kFull;
    if (age < kEasing) return 1;
    if (age < kOver) return (kOver - age) / (kOver - kEasing);
    const double pause = 3600 * (2 + 2 * m_random.uniform());
    m_showerBegins = std::max(time, m_showerBegins.plus(kOver)).plus(pause);
    m_showerDepth = 5 + 2 * m_random.uniform();
    return 0;
}

void SimulatedWeather::addRain(Date time, double seconds, double rate) {
    if (midnightBefore(time) != midnightBefore(m_last)) m_rainDaily = 0;
    m_rainDaily += rate * seconds / 3600;
    m_last = time;
}

SimulatedWeather::Moment SimulatedWeather::at(Date time) {
    const double seconds = time.secondsSince(m_last);
    drift(m_warmth, seconds, 3600, 0.2);
    drift(m_moisture, seconds, 7200, 0.4);
    drift(m_wind, seconds, 900, 0.7);
    drift(m_turn, seconds, 1800, 12);
    drift(m_pressure, seconds, 6 * 3600.0, 1.5);
    drift(m_cloud, seconds, 1200, 0.15);
    const double shower = showerAt(time);
    const Sun sun = sunAt(time);

    Moment now{};
    now.sun = sun;
    now.temperature = rounded(12.5 + 4 * dailyWave(time, 15) + m_warmth - m_showerDepth * shower, 0.1);
    const double dew = 6.5 + m_moisture;
    now.humidity = std::min(99.0, rounded(humidityOfDewPoint(now.temperature, dew), 1));
    const double wind = 4.5 + 1.5 * dailyWave(time, 14) + m_wind + 8 * shower;
    now.windSpeed = rounded(std::max(0.0, wind), 0.1);
    now.windGust = rounded(now.windSpeed * (1.35 + 0.15 * m_random.uniform() + 0.2 * shower), 0.1);
    now.windDir = rounded(235 + m_turn + 60 * shower, 1);
    now.windDir -= 360 * std::floor(now.windDir / 360);
    now.barometer = rounded(1009 + m_pressure + 1.2 * shower, 0.1);
    now.rainRate = rounded(shower * shower * (14 + 2 * m_cloud), 0.1);
    addRain(time, seconds, now.rainRate);
    now.rainDaily = rounded(m_rainDaily, 0.1);
    const double clear = std::clamp(0.75 + m_cloud, 0.1, 1.0) * (1 - 0.85 * shower);
    const double height = std::max(0.0, sun.sineOfHeight);
    now.solarRadiation = rounded(1050 * std::pow(height, 1.15) * clear, 1);
    now.uvIndex = rounded(9 * height * height * clear, 0.1);
    return now;
}

}  // namespace vigil
